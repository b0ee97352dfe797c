// Frames: PDOs, PGNs and CAN messages with their drawings and the tables of their fields.
'use strict';

const drawingLists = { pdo: ['pdos', 'pdos'], pgn: ['pgns', 'pgns'], can: ['canIds', 'canIds'] };

/// The drawing of a message's frame; nothing where it has none.
function drawingOf(node) {
    const [list, drawings] = drawingLists[node.kind];
    const text = node.line.extra.drawings[drawings]?.[node.line.json[list].indexOf(node.data)];
    if (!text)
        return '';
    return document.importNode(new DOMParser().parseFromString(text, 'image/svg+xml').documentElement, true);
}

function letterOf(field) {
    if (field < 52)
        return String.fromCharCode((field < 26 ? 65 : 71) + field);
    return letterOf(field % 26) + String(Math.floor(field / 26) - 1);
}

/// "3.1": byte and bit as the protocol counts them, from 1 (SAE J1939-71) or from 0.
function startText(bit, kind) {
    const first = kind === 'pgn' ? 1 : 0;
    return `${Math.floor(bit / 8) + first}.${bit % 8 + first}`;
}

/// A number of the project with what comes of it on this line.
function resolved(text, line) {
    const value = numberOf(text, line);
    if (!text?.includes('$') || Number.isNaN(value))
        return mono(text ?? '');
    return [mono(hex(value)), el('span', { class: 'quiet' }, ' = ', mono(text))];
}

/// The 29-bit identifier of a PGN (SAE J1939-21); of a received one without the address of its sender.
function pgnIdentifier(pgn, line) {
    const head = (pgn.priority * 0x4000000 + pgn.pgn * 0x100).toString(16).padStart(8, '0').slice(0, 6);
    const isSent = pgn.direction === 'transmit' && line.extra.sourceAddress !== undefined;
    return `0x${head}${isSent ? line.extra.sourceAddress.toString(16).padStart(2, '0') : '··'}`;
}

function identifierOf(node) {
    const { data, line } = node;
    if (node.kind === 'pdo')
        return data.enabled ? resolved(data.cobId, line.json) : [resolved(data.cobId, line.json), ' (off)'];
    if (node.kind === 'pgn' && data.direction !== 'transmit')
        return el('code', { title: 'dots: the address of its sender' }, pgnIdentifier(data, line));
    return mono(node.kind === 'pgn' ? pgnIdentifier(data, line) : data.canId.replace(/x$/, ' (29 bits)'));
}

function milliseconds(time) {
    return time > 0 ? `${time} ms` : '';
}

/// When a message is sent, in words.
function timingOf(node) {
    const { data } = node;
    if (node.kind !== 'pdo')
        return data.cycleTime > 0 ? `every ${data.cycleTime} ms` : data.direction === 'transmit' ? 'on event' : '';
    const timer = data.eventTimer > 0
        ? `${data.direction === 'transmit' ? 'at least every' : 'expected every'} ${data.eventTimer} ms` : '';
    return [data.transmission, timer].filter(Boolean).join(', ');
}

function messageFacts(node) {
    const { data } = node;
    const inhibit = node.kind === 'pdo' ? data.inhibitTime / 10 : data.inhibitTime;
    return facts(
        ['PGN', node.kind === 'pgn' ? mono(hex(data.pgn, 4)) : ''],
        [node.kind === 'pdo' ? 'COB-ID' : 'CAN-ID', identifierOf(node)],
        ['Direction', data.direction === 'transmit' ? 'sent by this device' : 'received by this device'],
        ['Sent', node.kind === 'pdo' ? timingOf(node) : milliseconds(data.cycleTime) && `every ${data.cycleTime} ms`],
        ['Not more often than', milliseconds(inhibit) && `every ${milliseconds(inhibit)}`],
        ['Priority', node.kind === 'pgn' ? `${data.priority} (0 is the highest, 7 the lowest)` : ''],
        ['Length', `${countText(data.frame.bits, 'bit')}, ${countText(Math.ceil(data.frame.bits / 8), 'byte')}`],
        ['Described by', node.kind === 'pdo' ? ['communication', 'mapping'].map(key => node.line.nodes.get(data[key]))
            .filter(Boolean).map(object => [link(object, mono(object.code)), ' ']) : '']);
}

function swatch(field, letter) {
    return el('span', { class: `swatch f${field % 8}` }, letter);
}

/// The fields of a frame as a table, each with its start bit and length.
function fieldTable(node, prefix) {
    const parts = node.data.spns ?? node.data.signals;
    const heads = [
        { name: '', always: true }, { name: 'Start', text: 'byte.bit of the least significant bit' },
        { name: 'First bit', class: 'number', text: 'counted from 0 over the whole frame' },
        { name: 'Bits', class: 'number' }, { name: 'Address' }, { name: 'Name' }, { name: 'Type' }, { name: 'Default' },
        { name: 'Variable', text: 'of the application' }, { name: 'Description' }];
    const rows = node.data.frame.fields.map((field, i) => {
        const target = node.kind === 'pdo' ? node.line.nodes.get(field.address) : undefined;
        const part = target ? factsOf(target) : parts?.[i] ?? {};
        return {
            attributes: { 'data-field': i, id: node.kids[i] && `${prefix}${node.kids[i].id}` },
            cells: [
                field.address ? swatch(i, letterOf(i)) : '', startText(field.firstBit, node.kind), String(field.firstBit),
                String(field.bits), target ? link(target, mono(field.address)) : mono(field.address),
                field.name ? said(field.name) : el('span', { class: 'quiet' }, 'unused'), part.dataType ?? '',
                part.default ? resolved(part.default, node.line.json) : '', variableCell(part.variable, target ?? node.kids[i]),
                part.description ? said(part.description) : ''],
        };
    });
    return table(`Fields of ${node.code}`, heads, rows, { class: 'fields' });
}

/// A variable of the application, with the other places that it is kept for.
function variableCell(variable, node) {
    if (!variable)
        return '';
    const others = (sharedVariables.get(variable) ?? []).filter(other => other !== node);
    return [mono(variable), others.map(other => [' ', link(other, '↔ ', placeText(other))])];
}

/// What a part is called where it stands alone: "TPDO 1", "0x2000:1", "SPN 84 of PGN 65265".
function placeText(node) {
    const line = several ? ` on ${node.line.title}` : '';
    switch (node.kind) {
    case 'sub': return node.id + line;
    case 'signal': return `${node.code} of ${nameOfKind(node.parent)}${line}`;
    default: return nameOfKind(node) + line;
    }
}

function nameOfKind(node) {
    return { pgn: `PGN ${node.code}`, can: `CAN-ID ${node.code}` }[node.kind] ?? node.code;
}

/// What points at a field, in the drawing or in the table, marks it in both.
function followFields(card) {
    const mark = (event, isHot) => {
        const field = event.target.closest?.('[data-field]')?.dataset.field;
        if (field !== undefined)
            for (const part of card.querySelectorAll(`[data-field="${field}"]`))
                part.classList.toggle('hot', isHot);
    };
    card.addEventListener('mouseover', event => mark(event, true));
    card.addEventListener('mouseout', event => mark(event, false));
    return card;
}

function frameBody(node, prefix = '') {
    const body = el('div', { class: 'frame-body' },
        node.data.description ? el('p', {}, said(node.data.description)) : '',
        messageFacts(node), findingList([...node.findings, ...node.kids.flatMap(kid => kid.findings)]));
    const drawing = drawingOf(node);
    if (drawing)
        body.append(el('div', { class: 'wide', role: 'region', tabindex: 0, 'aria-label': `Frame of ${node.code}` }, drawing));
    else if (node.data.frame.fields.length > 0)
        body.append(el('p', { class: 'quiet' }, 'The frame goes in several messages; its fields:'));
    else
        body.append(el('p', { class: 'quiet' }, node.kind === 'pdo' ? 'Nothing is mapped.' : 'No fields.'));
    if (node.data.frame.fields.length > 0)
        body.append(fieldTable(node, prefix));
    return followFields(body);
}

/// A message under its name, for a list of messages.
function frameCard(node, isNow) {
    const card = el('section', { class: 'card' }, el('h3', {}, link(node, nameOfKind(node)), ' ', said(node.name)));
    return later(card, () => card.append(frameBody(node)), isNow);
}
