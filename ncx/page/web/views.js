// What the page shows beside single parts: a line at a glance, its frames, the findings and the settings.
'use strict';

/// Names of device profiles by their numbers (CiA).
const profiles = {
    401: 'generic I/O modules', 402: 'drives and motion control', 404: 'measuring devices and closed-loop controllers',
    405: 'programmable devices', 406: 'encoders', 408: 'proportional valves', 410: 'inclinometers',
    413: 'truck gateways', 415: 'road construction machinery', 417: 'lift control', 418: 'battery modules',
    419: 'battery chargers', 422: 'municipal vehicles', 425: 'medical add-on modules', 437: 'photovoltaic systems',
    443: 'SIIS level-2 devices', 450: 'pumps', 454: 'energy management',
};

const words = {
    CANopen: [
        ['Object dictionary', 'all that a CANopen device can be asked for, by index (0x1018) and subindex (0x1018:1)'],
        ['PDO', 'process data object: values sent without being asked for. A TPDO is sent, an RPDO received; '
            + 'a communication object says when, a mapping object says what'],
        ['SDO', 'service data object: a master asks for one value of the object dictionary, or writes it'],
        ['COB-ID', 'the identifier of a CANopen message on the bus; $NODEID stands for the number of the node'],
    ],
    J1939: [
        ['PGN', 'parameter group: a message with a number, which stands in its 29-bit identifier; the last byte of that is the '
            + 'address of the sender, which is open (··) for what this device receives'],
        ['SPN', 'a value within a parameter group, with a number of its own; byte and bit are counted from 1'],
    ],
    RawCAN: [['CAN message', 'a message that belongs to no protocol: an identifier and its data elements']],
};

function profileText(model) {
    const type = valueAt(model, '0x1000:0');
    const number = Number.isNaN(type) ? 0 : type % 0x10000;
    if (number === 0)
        return model.nodes.has('0x1000') ? 'none' : '';
    return `CiA ${number}${profiles[number] ? `, ${profiles[number]}` : ''}`;
}

function addressText(model) {
    return model.extra.sourceAddress === undefined ? '' : String(model.extra.sourceAddress);
}

function messagesOf(model) {
    return ['pdos', 'pgns', 'messages'].flatMap(id => model.roots.find(root => root.id === id)?.kids ?? []);
}

/// The way to the object dictionary that every node has (CiA 301), with the identifiers of 0x1200 or the predefined ones.
function sdoRow(model) {
    const server = model.nodes.get('0x1200');
    const node = numberOf(model.json.nodeId ?? '', model.json);
    const identifier = (sub, base) => {
        const own = valueAt(model, `0x1200:${sub}`);
        return own > 0 ? hex(own % 0x20000000) : node > 0 ? hex(base + node) : `${hex(base)} + node-id`;
    };
    return { attributes: {}, cells: [
        server ? link(server, 'SDO') : 'SDO', 'answers', [mono(identifier(1, 0x600)), ' → ', mono(identifier(2, 0x580))],
        'on request', '8', 'any object'] };
}

/// The messages of CANopen that objects switch on by themselves.
function serviceRows(model) {
    const emcy = model.nodes.get('0x1014');
    const isSwitchedOff = valueAt(model, '0x1014:0') >= 0x80000000;
    const emcyId = emcy && !isSwitchedOff ? [resolved(emcy.facts.current ?? emcy.facts.default, model.json)] : [];
    return [
        ...(model.json.objects?.length > 0 ? [sdoRow(model)] : []),
        ...emcyId.map(id => ({ attributes: {}, cells: [link(emcy, 'EMCY'), 'sends', id, 'on an error', '8', 'the error']})),
        ...[...syncMessages(model), ...heartbeatMessages(model), ...srdoMessages(model)].map(message => ({
            attributes: {}, cells: [
                link(message.node, message.name), message.isSent ? 'sends' : 'receives', mono(message.id),
                `every ${message.cycle} ms`, String(message.bytes),
                { SYNC: 'the beat for PDOs', Heartbeat: 'the state of the node' }[message.name] ?? 'safety-relevant data'],
        })),
    ];
}

function messageTable(model) {
    const nodes = messagesOf(model);
    const services = serviceRows(model);
    if (nodes.length + services.length === 0)
        return el('p', { class: 'quiet' }, 'This line has no PDOs, PGNs or CAN messages.');
    const heads = [{ name: 'Message', class: 'tight' }, { name: '' }, { name: 'CAN-ID', class: 'tight' }, { name: 'When', class: 'tight' },
                   { name: 'Bytes', class: 'number' }, { name: 'What is in it' }];
    const names = node => node.data.frame.fields.map(field => field.name).filter(Boolean);
    const content = node => {
        const all = names(node);
        const first = said(all.slice(0, 4).join(', ') + (all.length > 4 ? ` and ${all.length - 4} more` : ''));
        return node.kind === 'pdo' ? first : [said(node.name), all.length > 0 ? ': ' : '', first];
    };
    return table(`Messages of ${model.title}`, heads, nodes.map(node => ({ attributes: {}, cells: [
        link(node, nameOfKind(node)), node.data.direction === 'transmit' ? 'sends' : 'receives', identifierOf(node),
        timingOf(node), String(Math.ceil(node.data.frame.bits / 8)), content(node)] })).concat(services));
}

/// Which way a value goes on the bus by a part.
function wayOf(node) {
    const way = message => (message.direction === 'transmit' ? 'sent' : 'received');
    if (node.kind === 'signal')
        return way(node.parent.data);
    const pdos = node.line.mappedIn.get(node.kind === 'object' ? `${node.id}:0` : node.id) ?? [];
    return pdos.map(pdo => `${way(pdo)} in ${pdo.id.toUpperCase().replace('PDO', 'PDO ')}`).join(', ');
}

/// Variables that stand behind more than one part: what one line takes and another one gives.
function sharedTable(model) {
    const rows = [...sharedVariables].filter(([, nodes]) => nodes.length > 1 && nodes.some(node => node.line === model));
    if (rows.length === 0)
        return '';
    return [el('h3', {}, 'Values that several parts share'),
        el('p', { class: 'quiet' }, 'The application keeps each in one variable: what is received by one part is what another one sends.'),
        table('Shared variables', [{ name: 'Variable' }, { name: 'Used by' }], rows.map(([variable, nodes]) => ({
            attributes: {}, cells: [mono(variable), nodes.map((node, i) => [
                i > 0 ? ', ' : '', link(node, placeText(node)), ' ', said(node.name),
                el('strong', {}, wayOf(node) && ` (${wayOf(node)})`)])] })))];
}

function areaTable(model) {
    const roots = model.roots.filter(root => root.text);
    if (roots.length === 0)
        return '';
    const count = root => String(root.kids.length);
    return [el('h3', {}, 'Object dictionary'), table('Areas of the object dictionary',
        [{ name: 'Area' }, { name: 'Objects', class: 'number' }, { name: 'What is in it' }, { name: 'From' }],
        roots.map(root => ({ attributes: {}, cells: [
            root.name, count(root), root.text,
            link(root.kids[0], mono(root.kids[0].code), ' ', said(root.kids[0].name))] })))];
}

function glossary(model) {
    const known = model.json.type.split('+').flatMap(type => words[type] ?? []);
    return el('details', { class: 'glossary' }, el('summary', {}, 'Words on this page'),
        el('dl', {}, known.map(([word, meaning]) => [el('dt', {}, word), el('dd', {}, meaning)])));
}

function lineFacts(model) {
    const { json, extra } = model;
    return facts(
        ['Protocols', json.type || 'none'], ['Node-id', json.nodeId ?? ''],
        ['Source address', addressText(model)], ['Device profile', profileText(model)],
        ['Bit rates', extra.bitRates.length > 0
            ? `${extra.bitRates.join(', ')} kbit/s${json.type === 'J1939' ? ' (SAE J1939)' : ''}` : 'none told'],
        ['CAN FD', extra.canFd ? 'yes' : '']);
}

function overview(model) {
    const findings = (data.check?.findings ?? []).filter(finding => finding.line === model.number);
    return [
        el('h2', {}, several ? ['Line ', said(model.title)] : 'At a glance'),
        model.extra.comment ? el('p', {}, said(model.extra.comment)) : '',
        lineFacts(model),
        el('h3', {}, 'What it sends and receives'), messageTable(model),
        sharedTable(model), areaTable(model),
        findings.length > 0 ? [el('h3', {}, 'What the check says of this line'), findingList(findings, true)] : '',
        glossary(model),
    ];
}

function framesView(model, isNow) {
    const nodes = messagesOf(model);
    return [el('h2', {}, 'Frames', several ? [' of ', said(model.title)] : ''),
        nodes.length === 0 ? el('p', { class: 'quiet' }, 'This line has no PDOs, PGNs or CAN messages.')
                           : el('p', { class: 'quiet' }, 'A row is a byte, its most significant bit on the left. Small '
                               + 'numbers are the bits of the value. Point at a field for its start bit and length.'),
        nodes.map(node => frameCard(node, isNow))];
}

function busView(model) {
    return [el('h2', {}, 'Cyclic messages and bus load', several ? [' of ', said(model.title)] : ''), busBody(model)];
}

function findingsView() {
    const findings = data.check?.findings ?? [];
    const suppressed = Object.entries(data.check?.suppressed ?? {});
    return [
        el('h2', {}, 'What the check finds'),
        findings.length === 0 ? el('p', {}, 'Nothing: the project passes its check.') : [
            el('p', { class: 'quiet' }, 'An error stops a generation. A correction is what a generation puts right by itself. '
                + 'A warning belongs to a group; a note is a hint.'),
            severities.map(severity => {
                const list = findings.filter(finding => finding.severity === severity);
                return list.length === 0 ? '' : [el('h3', {}, countText(list.length, severity)), findingList(list, true)];
            })],
        suppressed.length === 0 ? '' : el('p', { class: 'quiet' }, 'Held back by the project: ',
            suppressed.map(([group, count]) => `${count} of ${group}`).join(', '), '.'),
    ];
}

function settingsView() {
    const settings = data.settings ?? [];
    const groups = [...new Set(settings.map(setting => setting.group))];
    const heads = [{ name: 'Setting' }, { name: 'Line' }, { name: 'Value' }, { name: 'Default' }, { name: 'What it says' }];
    return [
        el('h2', {}, 'Settings that differ from their defaults'),
        settings.length === 0 ? el('p', {}, 'None.') : '',
        groups.map(group => [el('h3', {}, group.replace(/Settings$/, ' settings')), table(`Settings in ${group}`, heads,
            settings.filter(setting => setting.group === group).map(setting => ({ attributes: {}, cells: [
                [setting.label ? el('span', { class: 'label' }, setting.label, el('br')) : '', mono(setting.key)],
                setting.line !== undefined && several ? said(models.find(model => model.number === setting.line)?.title
                    ?? String(setting.line)) : '',
                el('span', { class: 'value' }, mono(setting.value)),
                setting.default ? mono(setting.default) : el('span', { class: 'quiet' }, 'not set'),
                setting.meaning ?? ''] })))]),
    ];
}
