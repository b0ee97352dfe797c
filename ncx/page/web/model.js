// The device as the page works on it: the lines of the data, each with its parts in the order of the index, by their
// addresses. A part is a node: `id` is its address, `code` and `name` what is read first, `hay` what a search looks in.
'use strict';

const data = JSON.parse(document.getElementById('data').textContent);
const lines = data.device.lines;
const several = lines.length > 1;

/// Areas of the object dictionary (CiA 301).
const areas = [
    { name: 'Data types', first: 0x0001, last: 0x0fff, text: 'data type definitions' },
    { name: 'Communication', first: 0x1000, last: 0x1fff, text: 'how the device talks: identity, PDOs, heartbeat' },
    { name: 'Manufacturer', first: 0x2000, last: 0x5fff, text: 'what the maker of this device has added' },
    { name: 'Profile', first: 0x6000, last: 0xbfff, text: 'as a device or interface profile defines it' },
    { name: 'Reserved', first: 0xc000, last: 0xffff, text: 'reserved indices' },
];

const severities = ['error', 'warning', 'correction', 'note'];

/// "0x1a00:2", "pgn65265-receive", "can0x18f-transmit": where a finding is; empty for a line or the whole device.
function placeOf(finding) {
    if (finding.index !== undefined)
        return finding.index + (finding.subindex !== undefined ? ':' + finding.subindex : '');
    const direction = finding.direction ? '-' + finding.direction : '';
    if (finding.pgn !== undefined)
        return `pgn${finding.pgn}${direction}`;
    if (finding.canId !== undefined)
        return `can${hex(finding.canId % 0x80000000)}${finding.canId >= 0x80000000 ? 'x' : ''}${direction}`;
    return '';
}

function hay(...texts) {
    return texts.filter(text => text !== undefined && text !== '').join('\n').toLowerCase();
}

class LineModel {
    constructor(json, extra) {
        this.json = json;
        this.extra = extra;
        this.number = json.line;
        this.isFirst = json === lines[0];
        this.nodes = new Map();
        this.mappedIn = new Map(); // by "0x2000:0": the PDOs that map it
        this.roots = [];
        this.both = this.numbersOfBoth();
        this.addDictionary();
        this.addGroup('pdos', 'PDOs', json.pdos, pdo => this.pdoNode(pdo));
        this.addGroup('pgns', 'PGNs', json.pgns, pgn => this.messageNode(pgn, 'pgn'));
        this.addGroup('messages', 'CAN messages', json.canIds, message => this.messageNode(message, 'can'));
        this.addFindings();
    }

    get title() {
        return this.json.name || `line ${this.number}`;
    }

    /// The address of a part as a link: other lines than the first one stand in front of it.
    href(id) {
        return '#' + (this.isFirst ? '' : `${this.number}/`) + id;
    }

    add(node) {
        node.line = this;
        node.kids ??= [];
        node.findings ??= [];
        for (const kid of node.kids) {
            kid.parent = node;
            kid.line = this;
            kid.kids ??= [];
            kid.findings ??= [];
            this.nodes.set(kid.id, kid);
        }
        this.nodes.set(node.id, node);
        return node;
    }

    addRoot(id, name, kids, text) {
        if (kids.length > 0)
            this.roots.push(this.add({ id, kind: 'area', code: '', name, kids, text, open: true, data: {} }));
        for (const kid of kids)
            this.add(kid);
    }

    addGroup(id, name, list, make) {
        this.addRoot(id, name, (list ?? []).map(make));
    }

    addDictionary() {
        for (const object of this.json.objects ?? [])
            object.number = parseInt(object.index, 16);
        for (const area of areas) {
            const objects = (this.json.objects ?? []).filter(
                object => object.number >= area.first && object.number <= area.last);
            this.addRoot(area.name.toLowerCase().replace(' ', '-'), area.name,
                         objects.map(object => this.objectNode(object)), area.text);
        }
    }

    objectNode(object) {
        const subs = object.subindices;
        const isVariable = subs.length === 1 && subs[0].subindex === 0;
        const kid = sub => ({
            id: `${object.index}:${sub.subindex}`, kind: 'sub', code: `:${sub.subindex}`, name: sub.name, data: sub,
            hay: hay(`${object.index}:${sub.subindex}`, sub.name, ...this.valueTexts(sub), sub.denotation,
                     sub.description),
        });
        const own = isVariable ? subs[0] : {};
        const node = {
            id: object.index, kind: 'object', code: object.index, name: object.name, data: object, facts: own,
            kids: isVariable ? [] : subs.map(kid),
            hay: hay(object.index, object.name, ...this.valueTexts(own), object.description),
        };
        if (isVariable)
            this.nodes.set(`${object.index}:0`, node);
        return node;
    }

    /// What a search for a value looks in: as it is written, and as the number that comes of a node-id.
    valueTexts(sub) {
        const texts = [sub.default, sub.current, sub.variable];
        for (const text of [sub.default, sub.current]) {
            if (text?.includes('$')) {
                const value = numberOf(text, this.json);
                if (!Number.isNaN(value))
                    texts.push(hex(value), String(value));
            }
        }
        return texts;
    }

    pdoNode(pdo) {
        const code = (pdo.direction === 'transmit' ? 'TPDO ' : 'RPDO ') + pdo.number;
        pdo.id = code.toLowerCase().replace(' ', '');
        for (const field of pdo.frame.fields) {
            if (field.address)
                this.mappedIn.set(field.address, [...this.mappedIn.get(field.address) ?? [], pdo]);
        }
        const names = pdo.frame.fields.map(field => field.name).filter(Boolean).join(', ');
        const number = numberOf(pdo.cobId, this.json);
        return { id: pdo.id, kind: 'pdo', code, name: names, data: pdo,
                 hay: hay(code, pdo.id, names, pdo.cobId, Number.isNaN(number) ? '' : hex(number)) };
    }

    /// The PGNs and CAN-IDs that are sent and received.
    numbersOfBoth() {
        const seen = new Set();
        const numbers = [...(this.json.pgns ?? []).map(pgn => pgn.pgn), ...(this.json.canIds ?? []).map(id => id.canId)];
        return new Set(numbers.filter(number => seen.has(number) || !seen.add(number)));
    }

    messageNode(message, kind) {
        const number = kind === 'pgn' ? message.pgn : message.canId;
        const full = `${kind}${number}-${message.direction}`;
        message.id = this.both.has(number) ? full : `${kind}${number}`;
        const parts = message.spns ?? message.signals;
        const node = {
            id: message.id, kind, code: String(number), name: message.name, data: message,
            hay: hay(kind === 'pgn' ? `pgn ${number} ${hex(number, 4)}` : String(number), message.name,
                     message.description),
        };
        node.kids = parts.map((part, i) => ({
            id: `${message.id}:${part.spn ?? i + 1}`, kind: 'signal', code: part.spn ? `SPN ${part.spn}` : `#${i + 1}`,
            name: part.name, data: part,
            hay: hay(part.spn ? `spn ${part.spn}` : '', part.name, part.default, part.variable, part.description),
        }));
        this.nodes.set(full, node);
        return node;
    }

    addFindings() {
        for (const finding of data.check?.findings ?? []) {
            if (finding.line !== undefined && finding.line !== this.number)
                continue;
            const place = placeOf(finding);
            const node = this.nodes.get(place) ?? this.nodes.get(place.split(':')[0]);
            if (!place || !node || finding.node)
                continue;
            finding.node = node;
            node.findings.push(finding);
        }
    }
}

const models = lines.map((line, i) => new LineModel(line, data.lines[i]));

/// The part that an address names ("0x1a00:2", "1/pgn65265", "spn84"), or undefined. Without a line, the first that
/// has it.
function partOf(address) {
    const match = /^(?:(\d+)\/)?(.+)$/.exec(address);
    if (!match)
        return undefined;
    const id = match[2].toLowerCase();
    for (const model of models) {
        if (match[1] !== undefined && model.number !== Number(match[1]))
            continue;
        const node = model.nodes.get(id) ?? model.nodes.get(id.replace(/^([0-9a-f]{4})/, '0x$1'));
        if (node)
            return node;
        const spn = /^spn(\d+)$/.exec(id);
        const message = spn && (model.json.pgns ?? []).find(pgn => pgn.spns.some(part => part.spn === Number(spn[1])));
        if (message)
            return model.nodes.get(`${message.id}:${spn[1]}`);
    }
    return undefined;
}

/// All parts that the application keeps in a variable, by its name, over all lines.
const sharedVariables = new Map();
for (const model of models) {
    for (const node of new Set(model.nodes.values())) {
        const variable = node.kind === 'object' ? node.facts.variable : node.data.variable;
        if (variable)
            sharedVariables.set(variable, [...sharedVariables.get(variable) ?? [], node]);
    }
}
