// The changes as the page works on them: a card for each part of a device that people speak of, with what has changed
// of it, and the messages of both sides.
'use strict';

const data = JSON.parse(document.getElementById('data').textContent);
const several = data.lines.length > 1;
const sharedVariables = new Map(); // a device's page tells where else a variable is

const groups = [
    { id: 'lines', name: 'Lines' }, { id: 'objects', name: 'Objects' }, { id: 'pdos', name: 'PDOs' },
    { id: 'pgns', name: 'PGNs' }, { id: 'messages', name: 'CAN messages' }, { id: 'services', name: 'UDS services' },
    { id: 'settings', name: 'Settings' }];

/// Communication and mapping objects of PDOs (CiA 301).
function isOfPdo(index) {
    return index >= 0x1400 && index <= 0x1bff;
}

class ChangeCards {
    constructor() {
        this.cards = new Map();
        this.addresses = new Set();
        this.byObject = new Map(); // by line and index: the changes of an object
        this.pdoByObject = new Map(); // by line and index: the id and code of the PDO that an object describes
        this.messages = new Map(); // by line and what the sides of a message have in common: its sides
        this.both = new Map(); // by line and number: the directions of a message
        for (const line of data.lines)
            this.addMessages(line);
        for (const change of data.diff.changes)
            this.addChange(change);
        for (const [key, sides] of this.messages)
            this.addSides(key, sides);
    }

    /// The cards of a group, in the order of lines and addresses.
    of(group) {
        const cards = [...this.cards.values()].filter(card => card.group === group.id);
        return cards.sort((a, b) => (a.line ?? -1) - (b.line ?? -1) || a.order - b.order);
    }

    /// Addresses of other lines than the first one begin with the number of the line.
    prefix(line) {
        return line === undefined || line === data.lines[0]?.line ? '' : `${line}/`;
    }

    addMessages(line) {
        for (const label of ['old', 'new']) {
            const side = line[label];
            for (const pdo of side?.device.pdos ?? []) {
                const code = (pdo.direction === 'transmit' ? 'TPDO ' : 'RPDO ') + pdo.number;
                const key = `${line.line} ${pdo.communication}`;
                this.addMessage(key, line.line, label, side, pdo, 'pdo', code);
                for (const index of [pdo.communication, pdo.mapping])
                    this.pdoByObject.set(`${line.line} ${index}`, { key, code, order: parseInt(pdo.communication, 16) });
            }
            for (const pgn of side?.device.pgns ?? [])
                this.addMessage(`${line.line} pgn${pgn.pgn} ${pgn.direction}`, line.line, label, side, pgn, 'pgn', `PGN ${pgn.pgn}`);
            for (const can of side?.device.canIds ?? [])
                this.addMessage(`${line.line} can${can.canId} ${can.direction}`, line.line, label, side, can, 'can',
                                `CAN-ID ${can.canId}`);
        }
    }

    addMessage(key, line, label, side, message, kind, code) {
        const sides = this.messages.get(key) ?? { line, kind, code };
        // What draws a message on the page of a device draws this one: it asks for no more of the line.
        sides[label] = {
            kind, code: `${code}, ${label}`, name: message.name, data: message, kids: [], findings: [],
            line: { json: side.device, extra: side, nodes: new Map() },
        };
        sides.code = code;
        this.messages.set(key, sides);
    }

    /// The card of a change: where it is, in the words of the page of a device.
    placeOf(change) {
        const { line, index, pgn, canId, direction } = change;
        if (change.part === 'project')
            return { key: 'project', group: 'settings', id: 'project', code: 'Project', order: 0 };
        if (index !== undefined) {
            const pdo = this.pdoByObject.get(`${line} ${index}`);
            const number = parseInt(index, 16);
            if (pdo)
                return { key: pdo.key, line, group: 'pdos', id: pdo.code.toLowerCase().replace(' ', ''), code: pdo.code, order: pdo.order };
            return { key: `${line} ${index}`, line, group: isOfPdo(number) ? 'pdos' : 'objects', id: index, code: index, order: number };
        }
        if (pgn !== undefined)
            return { key: `${line} pgn${pgn} ${direction}`, line, group: 'pgns', id: this.directed(line, `pgn${pgn}`, direction),
                     code: `PGN ${pgn}`, direction, order: pgn };
        if (canId !== undefined)
            return { key: `${line} can${canId} ${direction}`, line, group: 'messages', id: this.directed(line, `can${canId}`, direction),
                     code: `CAN-ID ${canId}`, direction, order: parseInt(canId, 16) };
        if (change.service !== undefined)
            return { key: `${line} uds${change.service}`, line, group: 'services', id: `uds${change.service}`, code: change.service,
                     order: parseInt(change.service, 16) };
        // A setting has its key for a name, and the part has none.
        const isSetting = change.change === 'changed' && change.name === undefined;
        return { key: `${line} ${isSetting}`, line, group: isSetting ? 'settings' : 'lines',
                 id: isSetting ? `line${line}-settings` : `line${line}`, code: `Line ${line}`, isLine: true, order: 0 };
    }

    /// The address of a message; with its direction where the other one has changed, too.
    directed(line, id, direction) {
        if (this.both.size === 0) {
            for (const { pgn, canId, direction: way, line: of } of data.diff.changes) {
                const key = `${of} ${pgn !== undefined ? `pgn${pgn}` : `can${canId}`}`;
                this.both.set(key, (this.both.get(key) ?? new Set()).add(way));
            }
        }
        return this.both.get(`${line} ${id}`)?.size > 1 ? `${id}-${direction}` : id;
    }

    card(place) {
        const known = this.cards.get(place.key);
        if (known)
            return known;
        const card = { ...place, address: this.unique(this.prefix(/^line|^project/.test(place.id) ? undefined : place.line) + place.id),
                       changes: [], causes: [] };
        this.cards.set(place.key, card);
        return card;
    }

    unique(address) {
        let free = address;
        for (let i = 2; this.addresses.has(free); ++i)
            free = `${address}~${i}`;
        this.addresses.add(free);
        return free;
    }

    addChange(change) {
        const card = this.card(this.placeOf(change));
        const own = change.index ? change.index + (change.subindex !== undefined ? `:${change.subindex}` : '') : undefined;
        const sub = change.spn ?? change.signal;
        const part = own ? this.prefix(change.line) + own : card.address + (sub !== undefined ? `:${sub}` : '');
        const what = (change.property ?? change.change).replace(/[^\w]+/g, '-');
        change.address = this.unique(`${part}.${what}`);
        change.code = own ?? (change.spn !== undefined ? `SPN ${change.spn}` : change.signal !== undefined ? `#${change.signal}` : '');
        if (change.index) {
            const key = `${change.line} ${change.index}`;
            this.byObject.set(key, [...this.byObject.get(key) ?? [], change]);
        }
        if (sub === undefined && change.subindex === undefined)
            card.name ??= change.name;
        card.changes.push(change);
    }

    /// The sides of a message stand on its card; a PDO that only maps what has changed has a card for that.
    addSides(key, sides) {
        const message = sides.new ?? sides.old;
        const card = this.card({
            key, line: sides.line, group: 'pdos', id: sides.code.toLowerCase().replace(' ', ''), code: sides.code,
            order: parseInt(message.data.communication ?? '0', 16) });
        card.sides = sides;
        card.name ??= message.data.name;
        if (card.group !== 'pdos')
            return;
        const fields = ['old', 'new'].flatMap(label => sides[label]?.data.frame.fields ?? []);
        card.name = [...new Set(message.data.frame.fields.map(field => field.name).filter(Boolean))].join(', ');
        const objects = new Set(fields.map(field => field.address.split(':')[0]).filter(Boolean));
        card.causes = [...objects].flatMap(index => this.byObject.get(`${sides.line} ${index}`) ?? []);
    }
}

const cards = new ChangeCards();
