// What search and filters leave of a line's index, as a flat list of rows.
'use strict';

const filters = [
    { id: 'mapping', name: 'PDO mapping', all: 'any',
      values: ['mappable', 'into RPDOs', 'into TPDOs', 'mapped now'] },
    { id: 'access', name: 'Access', all: 'any', valuesOf: data => data.access },
    { id: 'dataType', name: 'Data type', all: 'any', valuesOf: data => data.dataType },
    { id: 'changed', name: 'Changed from its default', isSwitch: true },
    { id: 'findings', name: 'With findings', isSwitch: true },
];

/// The data that filters look at: of an object with one value, that value.
function factsOf(node) {
    return node.facts ?? node.data;
}

function isChanged(facts, line) {
    if (facts.current === undefined || facts.current === facts.default)
        return false;
    const numbers = [facts.current, facts.default ?? '0'].map(text => numberOf(text, line));
    return Number.isNaN(numbers[0]) || numbers[0] !== numbers[1];
}

function fitsMapping(node, wanted) {
    const mapping = factsOf(node).mapping;
    switch (wanted) {
    case 'mappable': return mapping !== undefined && mapping !== 'forbidden';
    case 'into RPDOs': return mapping === 'rpdo' || mapping === 'allowed' || mapping === 'default';
    case 'into TPDOs': return mapping === 'tpdo' || mapping === 'allowed' || mapping === 'default';
    default: return node.line.mappedIn.has(node.kind === 'object' ? `${node.id}:0` : node.id);
    }
}

function fits(node, chosen) {
    return Object.entries(chosen).every(([id, wanted]) => {
        switch (id) {
        case 'mapping': return fitsMapping(node, wanted);
        case 'changed': return isChanged(factsOf(node), node.line.json);
        case 'findings': return node.findings.length > 0;
        default: return factsOf(node)[id] === wanted;
        }
    });
}

function contains(node, words) {
    for (const word of words) {
        if (!node.hay.includes(word))
            return false;
    }
    return true;
}

/// What a search looks in for a part or any of its kids, so that most parts are passed over in one step.
function hayWithin(node) {
    node.hayWithin ??= [node.hay, ...node.kids.map(kid => kid.hay)].join('\n');
    return node.hayWithin;
}

/// Makes that ready while nothing else is to be done, for the first letter that is typed.
function prepareSearch(model) {
    let next = 0;
    const nodes = model.roots.flatMap(root => root.kids);
    const goOn = deadline => {
        while (next < nodes.length && deadline.timeRemaining() > 1)
            hayWithin(nodes[next++]);
        if (next < nodes.length)
            requestIdleCallback(goOn);
    };
    requestIdleCallback(goOn);
}

const none = [];

/// The kids of a part that are shown: where something is looked for, those that have what the part itself has not.
function shownKids(node, words, chosen, isFiltered) {
    if (node.kids.length === 0)
        return none;
    const rest = words.length > 0 && !contains(node, words) ? words.filter(word => !node.hay.includes(word)) : none;
    if (rest.length === 0 && !isFiltered)
        return node.open ? node.kids : none;
    return node.kids.filter(kid => contains(kid, rest) && (!isFiltered || fits(kid, chosen)));
}

/// The rows of a line's index: { node, level, hasKids, isOpen }, and how many parts fit.
function rowsOf(model, query, chosen) {
    const words = query.toLowerCase().split(/\s+/).filter(Boolean);
    const isFiltered = Object.keys(chosen).length > 0;
    const isActive = words.length > 0 || isFiltered;
    const rows = [];
    let hits = 0;
    for (const root of model.roots) {
        const head = { node: root, level: 1, hasKids: true, isOpen: root.open || isActive, size: 0 };
        rows.push(head);
        for (const node of root.kids) {
            if (words.length > 0 && words.some(word => !hayWithin(node).includes(word)))
                continue;
            const kids = shownKids(node, words, chosen, isFiltered);
            const isHit = contains(node, words) && (!isFiltered || fits(node, chosen));
            if (!isHit && kids.length === 0)
                continue;
            if (isActive)
                hits += Math.max(1, isHit && !isFiltered ? 1 : kids.length);
            head.size++;
            if (head.isOpen)
                rows.push({ node, level: 2, hasKids: node.kids.length > 0, isOpen: kids.length > 0 });
            // Of tens of thousands of rows, which a letter can leave, nothing is made anew.
            for (const kid of head.isOpen ? kids : none)
                rows.push(kid.row ??= { node: kid, level: 3 });
        }
        if (isActive && head.size === 0)
            rows.pop();
    }
    return { rows, hits, isActive };
}

/// The fields of the filters for a line; `changed` is called with what is chosen.
function filterFields(model, changed) {
    const chosen = {};
    const choose = (id, value) => {
        if (value)
            chosen[id] = value;
        else
            delete chosen[id];
        changed(chosen);
    };
    const valuesOf = filter => [...new Set([...model.nodes.values()].map(node => filter.valuesOf(factsOf(node))))]
        .filter(Boolean).sort();
    return filters.map(filter => {
        if (filter.isSwitch)
            return el('label', { class: 'switch' },
                el('input', { type: 'checkbox', name: filter.id, change: event => choose(filter.id, event.target.checked) }),
                filter.name);
        const values = filter.values ?? valuesOf(filter);
        return el('label', {}, filter.name,
            el('select', { name: filter.id, change: event => choose(filter.id, event.target.value) },
                el('option', { value: '' }, filter.all),
                values.map(value => el('option', { value }, value))));
    });
}
