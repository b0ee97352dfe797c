// The cyclic messages of a line: when they are sent, and an estimate of how busy they keep the bus.
'use strict';

/// Lengths that a frame can have, those above 8 with CAN FD.
const lengths = [0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 20, 24, 32, 48, 64];

/// Bits of a frame on the bus with its intermission: without stuff bits, and with the most that there can be. Of
/// CAN FD frames of more than 8 bytes all is counted at the arbitration rate.
function frameBits(wanted, isExtended) {
    const bytes = lengths.find(length => length >= wanted) ?? wanted;
    if (bytes > 8) {
        const head = (isExtended ? 41 : 22) + 8 * bytes;
        const least = head + (bytes > 16 ? 32 : 27) + 13;
        return { least, most: least + Math.floor((head - 1) / 4) };
    }
    const least = (isExtended ? 67 : 47) + 8 * bytes;
    return { least, most: least + Math.floor(((isExtended ? 54 : 34) + 8 * bytes - 1) / 4) };
}

/// What a message costs in one cycle: frames, and their bits.
function costOf(message, isFd) {
    const isSegmented = message.bytes > 8 && !(isFd && message.bytes <= 64);
    if (!isSegmented)
        return { frames: 1, ...frameBits(message.bytes, message.isExtended) };
    // The transport protocol of SAE J1939-21: an announcement, and 7 bytes in each frame of 8.
    const frames = 1 + Math.ceil(message.bytes / 7);
    const { least, most } = frameBits(8, message.isExtended);
    return { frames, least: frames * least, most: frames * most };
}

function valueAt(model, address) {
    const node = model.nodes.get(address);
    return node ? numberOf(factsOf(node).current ?? factsOf(node).default, model.json) : NaN;
}

function syncMessages(model) {
    const cycle = valueAt(model, '0x1006:0') / 1000;
    const cobId = valueAt(model, '0x1005:0');
    if (!(cycle > 0) || Number.isNaN(cobId))
        return [];
    const isSent = Math.floor(cobId / 0x40000000) % 2 === 1;
    return [{ node: model.nodes.get('0x1006'), name: 'SYNC', id: hex(cobId % 0x800), cycle, isSent,
              bytes: valueAt(model, '0x1019:0') > 0 ? 1 : 0, isExtended: false }];
}

function heartbeatMessages(model) {
    const cycle = valueAt(model, '0x1017:0');
    const node = numberOf(model.json.nodeId ?? '', model.json);
    return cycle > 0 ? [{ node: model.nodes.get('0x1017'), name: 'Heartbeat', cycle, isSent: true, bytes: 1,
                          id: node > 0 ? hex(0x700 + node) : '0x700 + node-id', isExtended: false }] : [];
}

function pdoMessages(model) {
    const sync = valueAt(model, '0x1006:0') / 1000;
    return (model.json.pdos ?? []).filter(pdo => pdo.enabled).map(pdo => {
        const type = valueAt(model, `${pdo.communication}:2`);
        const cycle = type >= 1 && type <= 240 ? type * sync : pdo.eventTimer;
        const cobId = numberOf(pdo.cobId, model.json);
        return { node: model.nodes.get(pdo.id), name: model.nodes.get(pdo.id).code, cycle,
                 isSent: pdo.direction === 'transmit', bytes: Math.ceil(pdo.frame.bits / 8),
                 id: Number.isNaN(cobId) ? pdo.cobId : hex(cobId % 0x20000000),
                 isExtended: Math.floor(cobId / 0x20000000) % 2 === 1 };
    });
}

/// Safety-relevant data objects (EN 50325-5): the data, and once more inverted under the second COB-ID.
function srdoMessages(model) {
    const messages = [];
    for (let number = 0x1301; number <= 0x1340; ++number) {
        const direction = valueAt(model, `${hex(number, 4)}:1`);
        const mapping = model.nodes.get(hex(number + 0x80, 4));
        if (direction !== 1 && direction !== 2)
            continue;
        const bits = (mapping?.kids ?? []).filter(kid => kid.data.subindex > 0)
            .reduce((sum, kid) => sum + (numberOf(kid.data.default, model.json) % 0x100 || 0), 0);
        for (const sub of [5, 6])
            messages.push({ node: model.nodes.get(hex(number, 4)), name: `SRDO ${number - 0x1300}`,
                            cycle: valueAt(model, `${hex(number, 4)}:2`), isSent: direction === 1,
                            bytes: Math.ceil(bits / 16), id: hex(valueAt(model, `${hex(number, 4)}:${sub}`) || 0),
                            isExtended: false });
    }
    return messages;
}

function cyclicMessages(model) {
    const pgns = (model.json.pgns ?? []).map(pgn => ({
        node: model.nodes.get(pgn.id), name: `PGN ${pgn.pgn} ${pgn.name}`, id: pgnIdentifier(pgn, model),
        cycle: pgn.cycleTime, isSent: pgn.direction === 'transmit', bytes: Math.ceil(pgn.frame.bits / 8),
        isExtended: true }));
    const raw = (model.json.canIds ?? []).map(message => ({
        node: model.nodes.get(message.id), name: message.name, id: message.canId.replace(/x$/, ''),
        cycle: message.cycleTime, isSent: message.direction === 'transmit', bytes: Math.ceil(message.frame.bits / 8),
        isExtended: message.canId.endsWith('x') }));
    return [...syncMessages(model), ...heartbeatMessages(model), ...srdoMessages(model), ...pdoMessages(model), ...pgns,
            ...raw]
        .filter(message => message.cycle > 0)
        .map(message => ({ ...message, ...costOf(message, model.extra.canFd) }))
        .sort((a, b) => a.cycle - b.cycle);
}

/// Bits per second of messages: at least, and with the most stuff bits.
function trafficOf(messages) {
    const sum = key => messages.reduce((total, message) => total + message[key] * 1000 / message.cycle, 0);
    return { least: sum('least'), most: sum('most') };
}

function percent(bitsPerSecond, kilobits) {
    const load = bitsPerSecond / kilobits / 10;
    return `${load.toFixed(load < 10 ? 2 : 1)} %`;
}

function loadTable(model, messages) {
    const sent = trafficOf(messages.filter(message => message.isSent));
    const all = trafficOf(messages);
    const range = (traffic, rate) => [...new Set([percent(traffic.least, rate), percent(traffic.most, rate)])].join(' to ');
    const rates = model.extra.bitRates;
    if (rates.length === 0)
        return el('p', { class: 'quiet' }, 'The description of this line allows no bit rate, so there is no load to tell.');
    return table('Bus load', [{ name: 'Bit rate' }, { name: 'What this device sends', class: 'number' },
                              { name: 'With what it receives', class: 'number' }],
        rates.map(rate => ({ attributes: {}, cells: [`${rate} kbit/s`, range(sent, rate), range(all, rate)] })));
}

/// The stretch of time that the timeline shows, in ms.
function stretchOf(messages) {
    const longest = Math.max(...messages.map(message => message.cycle));
    return [10, 20, 50, 100, 200, 500, 1000, 2000, 5000].find(time => time >= longest) ?? 10000;
}

function strip(message, stretch) {
    const svg = document.createElementNS('http://www.w3.org/2000/svg', 'svg');
    const path = document.createElementNS('http://www.w3.org/2000/svg', 'path');
    const most = 500; // more marks than that are a band
    const marks = Math.min(Math.floor(stretch / message.cycle), most);
    let d = '';
    for (let i = 0; i <= marks; ++i)
        d += `M${(i * Math.max(message.cycle, stretch / most) / stretch * 1000).toFixed(2)} 0v10`;
    path.setAttribute('d', d);
    svg.append(path);
    svg.setAttribute('viewBox', '0 0 1000 10');
    svg.setAttribute('preserveAspectRatio', 'none');
    svg.setAttribute('class', message.isSent ? 'sent' : 'received');
    svg.setAttribute('aria-hidden', 'true');
    return svg;
}

function timeline(messages) {
    const stretch = stretchOf(messages);
    return el('figure', { class: 'timeline' },
        el('figcaption', {}, `The first ${stretch} ms, if all begin together: `,
            el('span', { class: 'key sent' }, 'sent'), ' ', el('span', { class: 'key received' }, 'received')),
        el('ul', {}, messages.map(message => el('li', {},
            el('span', { class: 'label' }, link(message.node, said(message.name))),
            el('span', { class: 'quiet' }, `${message.cycle} ms`), strip(message, stretch))),
        el('li', { 'aria-hidden': 'true' }, el('span', { class: 'marks' },
            [0, 1, 2, 3, 4].map(i => el('span', {}, `${stretch * i / 4}${i === 4 ? ' ms' : ''}`))))));
}

const formulas = [
    'Counted is what has a cycle: SYNC and PDOs at SYNC (0x1006), heartbeat (0x1017), PDOs with an event timer, SRDOs, '
        + 'PGNs and CAN messages with a cycle time. What goes on event, SDO and EMCY come on top.',
    'A frame of n data bytes has 47 + 8n bits with an 11-bit identifier and 67 + 8n with one of 29 bits, the three bits '
        + 'between frames included; stuff bits add at most ⌊(34 + 8n − 1) / 4⌋ and ⌊(54 + 8n − 1) / 4⌋.',
    'Load = sum of (bits per cycle ÷ cycle time) ÷ bit rate; first without stuff bits, then with the most.',
    'More than 8 bytes go by the transport protocol of SAE J1939-21, as 1 + ⌈n / 7⌉ frames; with CAN FD in one frame of '
        + 'the next length that there is, all of which is counted at the arbitration rate, which is too much where bit rates switch.',
];

function busBody(model) {
    const messages = cyclicMessages(model);
    if (messages.length === 0)
        return [el('p', { class: 'quiet' }, 'Nothing on this line is sent in a cycle.')];
    const rate = model.extra.bitRates[0];
    const heads = [{ name: 'Message' }, { name: 'CAN-ID' }, { name: '' }, { name: 'Cycle', class: 'number' },
                   { name: 'Bytes', class: 'number' }, { name: 'Bits', class: 'number', text: 'of all frames of a cycle' },
                   { name: 'Frames/s', class: 'number' },
                   { name: rate ? `Load at ${rate} kbit/s` : '', class: 'number', text: 'with the most stuff bits' }];
    return [
        loadTable(model, messages), timeline(messages),
        table('Cyclic messages', heads, messages.map(message => ({ attributes: {}, cells: [
            link(message.node, said(message.name)), mono(message.id), message.isSent ? 'sent' : 'received',
            `${message.cycle} ms`, String(message.bytes), `${message.least} to ${message.most}`,
            String(Number((message.frames * 1000 / message.cycle).toFixed(2))),
            rate ? percent(message.most * 1000 / message.cycle, rate) : ''] }))),
        el('details', { open: true }, el('summary', {}, 'How this is estimated'),
            el('ul', {}, formulas.map(text => el('li', {}, text)))),
    ];
}
