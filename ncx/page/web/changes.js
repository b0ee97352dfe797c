// The page of what differs between two devices.
'use strict';

const main = document.getElementById('main');
const query = document.getElementById('query');
const onlyBreaking = document.getElementById('breaking');
const shownGroups = []; // what search and filter look through: groups with their cards, and these with their rows
const drawnAtOnce = 30; // frames; of more, those are drawn that come near what is seen
const isLong = cards.messages.size > drawnAtOnce;

function lineName(number) {
    const line = data.lines.find(one => one.line === number);
    const name = (line?.new ?? line?.old)?.device.name;
    return name ? `Line ${number}, ${name}` : `Line ${number}`;
}

function valueCell(change, label) {
    if (change.change !== 'changed')
        return el('span', { class: 'quiet' }, (change.change === 'added') === (label === 'new') ? 'there' : 'not there');
    const text = change[label === 'new' ? 'after' : 'before'];
    return text === '' ? el('span', { class: 'quiet' }, 'nothing') : mono(text);
}

function breakingMark(isBreaking) {
    return isBreaking ? el('strong', { class: 'breaking' }, 'breaking') : '';
}

function changeTable(card) {
    const heads = [{ name: 'Effect' }, { name: 'Part', always: card.group !== 'settings' }, { name: 'What', always: true },
                   { name: 'Old', class: 'old', always: true }, { name: 'New', class: 'new', always: true }, { name: 'Address' }];
    const rows = card.changes.map(change => ({
        attributes: { id: change.address, class: change.breaking ? 'change breaks' : 'change' },
        cells: [breakingMark(change.breaking),
                card.group === 'settings' ? '' : [change.code ? mono(change.code) : said(card.code), ' ', card.isLine ? '' : said(change.name ?? '')],
                card.group === 'settings' ? mono(change.property) : change.property ?? change.change,
                valueCell(change, 'old'), valueCell(change, 'new'),
                el('a', { class: 'permalink', href: `#${change.address}`, 'aria-label': `Link to ${change.address}` }, '#')],
    }));
    return table(`Changes of ${card.code}${several && card.line !== undefined ? ` on line ${card.line}` : ''}`, heads, rows);
}

/// Marks in a frame the fields that the other side has not like this.
function markOthers(body, node, other) {
    const texts = of => of.data.frame.fields.map((field, i) => JSON.stringify([field, (of.data.spns ?? of.data.signals)?.[i]]));
    const known = new Set(texts(other));
    texts(node).forEach((text, i) => {
        if (!known.has(text))
            for (const part of body.querySelectorAll(`[data-field="${i}"]`))
                part.classList.add('differs');
    });
}

function sideView(sides, label) {
    const node = sides[label];
    const title = el('h4', {}, label === 'old' ? 'Old' : 'New');
    if (!node)
        return el('section', {}, title, el('p', { class: 'quiet' }, 'Not there.'));
    const body = frameBody(node);
    const other = sides[label === 'old' ? 'new' : 'old'];
    if (other)
        markOthers(body, node, other);
    return el('section', { class: label }, title, body);
}

function sidesView(card) {
    if (!card.sides)
        return '';
    const box = el('div', { class: 'sides' });
    return later(box, () => box.append(sideView(card.sides, 'old'), sideView(card.sides, 'new')), !isLong);
}

function causesView(card) {
    const places = new Map(card.causes.map(change => [change.index, change]));
    if (places.size === 0)
        return '';
    return el('p', { class: 'causes' }, 'Mapped objects that have changed: ', [...places].map(([index, change], i) => [
        i > 0 ? ', ' : '', el('a', { href: `#${change.address}` }, mono(index))]));
}

function cardView(card) {
    const breaks = [...card.changes, ...card.causes].some(change => change.breaking);
    return el('section', { class: breaks ? 'card breaks' : 'card', id: card.address },
        el('h3', {}, said(card.isLine ? lineName(card.line) : card.code), ' ', card.isLine ? '' : said(card.name ?? ''),
            card.direction ? el('span', { class: 'quiet' }, ` ${card.direction === 'transmit' ? 'sent' : 'received'}`) : '',
            several && card.line !== undefined && !card.isLine ? el('span', { class: 'quiet' }, ' · ', said(lineName(card.line))) : '', ' ',
            el('a', { class: 'permalink', href: `#${card.address}`, 'aria-label': `Link to ${card.address}` }, '#')),
        card.changes.length > 0 ? changeTable(card) : '', causesView(card), sidesView(card));
}

function counted(number, ofBreaking) {
    const count = number === 0 ? 'No difference' : number === 1 ? '1 difference' : `${number} differences`;
    return ofBreaking > 0 ? `${count}, ${ofBreaking} of them breaking` : count;
}

function showHead() {
    const { old, new: now, changes, breaking } = data.diff;
    const short = path => path.split('/').pop();
    const names = short(old) === short(now) ? [old, now] : [short(old), short(now)];
    document.getElementById('files').replaceChildren(said(names[0]), ' → ', said(names[1]));
    document.title = plain(`Changes: ${names[0]} → ${names[1]}`);
    document.getElementById('count').textContent = counted(changes.length, breaking);
    document.querySelector('.choice').hidden = changes.length === 0;
    document.getElementById('only').hidden = breaking === 0;
    document.getElementById('legend').hidden = cards.messages.size === 0;
}

function showGroups() {
    for (const group of groups) {
        const list = cards.of(group);
        if (list.length === 0)
            continue;
        const number = list.reduce((sum, card) => sum + card.changes.length, 0);
        const tab = el('a', { href: `#${group.id}` }, group.name, ' ', el('span', { class: 'badge' }, String(number)));
        const views = list.map(cardView);
        const section = el('section', { id: group.id }, el('h2', {}, group.name), views);
        document.getElementById('groups').append(tab);
        document.getElementById('sections').append(section);
        shownGroups.push({ tab, section, cards: list.map((card, i) => searched(card, views[i])) });
    }
}

function hayOf(...texts) {
    return texts.filter(text => text !== undefined).join('\n').toLowerCase();
}

/// A card as search and filter see it.
function searched(card, view) {
    const rows = view.querySelectorAll('.change');
    return {
        view, table: view.querySelector(':scope > .wide'), breaks: view.classList.contains('breaks'),
        hay: hayOf(card.code, card.name, several && card.line !== undefined ? lineName(card.line) : undefined),
        rows: card.changes.map((change, i) => ({
            view: rows[i], breaks: Boolean(change.breaking),
            hay: hayOf(change.code, change.name, change.property, change.change, change.before, change.after) })),
    };
}

function setHidden(element, isHidden) {
    if (element && element.hidden !== isHidden)
        element.hidden = isHidden;
}

/// Shows of a card what the words and the switch leave. How many changes that are; -1 if nothing of it is left.
function narrow(card, words, isOnly) {
    const rest = words.filter(word => !card.hay.includes(word));
    let left = 0;
    for (const row of card.rows) {
        const isLeft = (!isOnly || row.breaks) && rest.every(word => row.hay.includes(word));
        setHidden(row.view, !isLeft);
        left += isLeft ? 1 : 0;
    }
    // A card without a change of its own shows a frame that maps one.
    const isLeft = left > 0 || (rest.length === 0 && (!isOnly || card.breaks));
    setHidden(card.view, !isLeft);
    setHidden(card.table, left === 0);
    return isLeft ? left : -1;
}

/// Leaves what breaks something, and what has the words of the search; or all.
function filter() {
    const words = query.value.toLowerCase().split(/\s+/).filter(Boolean);
    const isOnly = onlyBreaking.checked;
    let shown = 0;
    for (const { tab, section, cards: list } of shownGroups) {
        const numbers = list.map(card => narrow(card, words, isOnly)).filter(number => number >= 0);
        shown += numbers.reduce((sum, number) => sum + number, 0);
        setHidden(section, numbers.length === 0);
        setHidden(tab, numbers.length === 0);
    }
    document.getElementById('shown').textContent =
        isOnly || words.length > 0 ? `${shown} of ${data.diff.changes.length} are shown.` : '';
}

/// The part of the page that an address names; of an object or a message, the first change in it.
function partOf(address) {
    return document.getElementById(address) ?? [...document.querySelectorAll('.card, .change')].find(
        part => part.id.startsWith(address) && /[.:-]/.test(part.id[address.length]));
}

function go() {
    let address = location.hash.slice(1);
    try {
        address = decodeURIComponent(address);
    } catch {
        // it stands for itself
    }
    for (const part of document.querySelectorAll('.chosen'))
        part.classList.remove('chosen');
    const part = address && partOf(address);
    if (!part)
        return;
    if (part.closest('[hidden]')) {
        onlyBreaking.checked = false;
        query.value = '';
        filter();
    }
    part.classList.add('chosen');
    part.scrollIntoView({ block: part.matches('.change') ? 'center' : 'start' });
}

function fillAll() {
    for (const box of document.querySelectorAll('.sides')) {
        box.fill?.();
        delete box.fill;
        watcher.unobserve(box);
    }
}

/// In the field of the search: Enter leads to the first change that is left.
function queryKey(event) {
    const first = document.querySelector('#sections > section:not([hidden]) .card:not([hidden])');
    if (event.key === 'Enter') {
        if (first)
            location.hash = first.querySelector('.change:not([hidden])')?.id ?? first.id;
    } else if (event.key === 'Escape') {
        query.value = '';
        filter();
    } else {
        return;
    }
    event.preventDefault();
}

onlyBreaking.addEventListener('change', filter);
query.addEventListener('input', filter);
query.addEventListener('keydown', queryKey);
document.addEventListener('keydown', event => {
    if (isSearchKey(event)) {
        event.preventDefault();
        query.focus();
        query.select();
    }
});
document.getElementById('search').addEventListener('submit', event => event.preventDefault());
document.getElementById('skip').addEventListener('click', event => { event.preventDefault(); main.focus(); });
window.addEventListener('beforeprint', fillAll);
window.addEventListener('hashchange', go);

showHead();
showGroups();
filter();
go();
