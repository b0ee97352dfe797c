// One object whole: its subindices, what it is mapped in, what the check says of it.
'use strict';

const implementations = {
    managedVariable: ['managed', 'the stack keeps the value'],
    managedConst: ['constant', 'the value is compiled in'],
    variable: ['variable', 'the application keeps the value in a variable of its own'],
    virtual: ['virtual', 'functions of the application deliver and take the value'],
};
const mappings = { forbidden: '', allowed: 'RPDO, TPDO', default: 'RPDO, TPDO', rpdo: 'RPDO', tpdo: 'TPDO' };
const accesses = {
    ro: 'can be read', wo: 'can be written', rw: 'can be read and written', const: 'never changes',
    rww: 'can be read and written; mapped into RPDOs', rwr: 'can be read and written; mapped into TPDOs',
};

/// Objects whose elements name mapped subindices, as 0xIIIISSLL (CiA 301, EN 50325-5).
function isMapping(number) {
    return (number >= 0x1600 && number <= 0x17ff) || (number >= 0x1a00 && number <= 0x1bff) ||
        (number >= 0x1381 && number <= 0x13c0);
}

/// A value as it is written, with what it stands for.
function valueCell(text, node, object) {
    if (text === undefined || text === '')
        return '';
    const line = node.line.json;
    const value = numberOf(text, line);
    if (node.kind === 'sub' && node.data.subindex > 0 && isMapping(object.number) && value > 0xffff) {
        const address = `${hex(Math.floor(value / 0x10000), 4)}:${Math.floor(value / 0x100) % 0x100}`;
        const target = node.line.nodes.get(address);
        return [mono(text), ' ', target ? link(target, '→ ', mono(address), ' ', said(target.name)) : '',
                el('span', { class: 'quiet' }, ` ${countText(value % 0x100, 'bit')}`)];
    }
    return resolved(text, line);
}

function typeText(sub) {
    return sub.size ? `${sub.dataType}[${sub.size}]` : sub.dataType;
}

function limitsText(sub) {
    return sub.lowLimit || sub.highLimit ? mono(`${sub.lowLimit ?? ''} … ${sub.highLimit ?? ''}`) : '';
}

function subindexTable(node, chosen, prefix) {
    const object = node.data;
    const heads = [
        { name: 'Sub', class: 'number', always: true }, { name: 'Name' }, { name: 'Type' }, { name: 'Access' },
        { name: 'Default', text: 'value after a start' }, { name: 'Current', text: 'value that differs from the default' },
        { name: 'Limits' }, { name: 'PDO', text: 'can be mapped into', class: 'tight' },
        { name: 'Kept', text: 'who keeps the value' }, { name: 'Variable', text: 'of the application' },
        { name: 'Mapped in' }, { name: 'Denotation' }];
    const rows = object.subindices.map(sub => {
        const part = node.kids.find(kid => kid.data === sub) ?? node;
        const [word, meaning] = implementations[sub.implementation] ?? [sub.implementation, ''];
        const note = [sub.description ? el('p', { class: 'quiet' }, said(sub.description)) : '',
                      part === node ? '' : findingList(part.findings)];
        return {
            attributes: { id: `${prefix}${object.index}:${sub.subindex}`,
                          class: part === chosen && part !== node ? 'chosen' : undefined },
            cells: [
                part === node ? '0' : link(part, String(sub.subindex)), [said(sub.name), ...note], typeText(sub),
                el('span', { title: accesses[sub.access] }, sub.access ?? ''), valueCell(sub.default, part, object),
                isChanged(sub, node.line.json) ? valueCell(sub.current, part, object) : '', limitsText(sub),
                mappings[sub.mapping] ?? '', el('span', { title: meaning }, word),
                variableCell(sub.variable, part), mappedCell(part), sub.denotation ? said(sub.denotation) : ''],
        };
    });
    return table(`Subindices of ${object.index}`, heads, rows);
}

function mappedCell(node) {
    const address = node.kind === 'object' ? `${node.id}:0` : node.id;
    return (node.line.mappedIn.get(address) ?? []).map(
        pdo => [link(node.line.nodes.get(pdo.id), node.line.nodes.get(pdo.id).code), ' ']);
}

/// The PDO that a communication or mapping object describes.
function pdoOf(node) {
    const pdo = (node.line.json.pdos ?? []).find(
        candidate => candidate.communication === node.id || candidate.mapping === node.id);
    return pdo && node.line.nodes.get(pdo.id);
}

function objectBody(node, chosen, prefix = '') {
    const object = node.data;
    return [
        object.description ? el('p', {}, said(object.description)) : '',
        findingList(node.findings),
        object.subindices.length > 0 ? subindexTable(node, chosen, prefix)
                                     : el('p', { class: 'quiet' }, 'It has no subindices.'),
    ];
}

function areaOf(node) {
    return node.parent?.name ?? '';
}

/// A part with its heading; `chosen` is the subindex or signal that the address names.
function partView(node) {
    const whole = node.kind === 'sub' || node.kind === 'signal' ? node.parent : node;
    const kind = whole.kind === 'object' ? `${areaOf(whole)} object, ${whole.data.objectCode}, ${whole.data.dataType}`
        : { pdo: 'Process data object', pgn: 'Parameter group', can: 'CAN message' }[whole.kind];
    const title = whole.kind === 'pdo' ? '' : [' ', said(whole.name)];
    const pdo = whole.kind === 'object' ? pdoOf(whole) : undefined;
    return [
        el('p', { class: 'kind' }, several ? [said(whole.line.title), ' · '] : '', kind),
        el('h2', {}, el('span', { class: 'code' }, nameOfKind(whole)), title, ' ',
            el('a', { class: 'permalink', href: whole.line.href(node.id), 'aria-label': `Link to ${node.id}` }, '#')),
        whole.kind === 'object' ? objectBody(whole, node) : frameBody(whole),
        pdo ? [el('h3', {}, 'Describes ', link(pdo, pdo.code)), frameBody(pdo)] : '',
        neighbours(whole),
    ];
}

/// The way to the parts before and behind this one.
function neighbours(node) {
    const list = node.parent?.kids ?? [];
    const place = list.indexOf(node);
    const step = (other, text, rel) => other
        ? el('a', { href: other.line.href(other.id), rel }, text.replace('%', nameOfKind(other))) : el('span');
    return el('nav', { class: 'neighbours', 'aria-label': 'Neighbours' },
        step(list[place - 1], '← %', 'prev'), step(list[place + 1], '% →', 'next'));
}
