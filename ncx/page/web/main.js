// The way through the page: addresses, tabs, search, keys, colours and paper.
'use strict';

const main = document.getElementById('main');
const query = document.getElementById('query');
const views = { overview: ['At a glance', overview], frames: ['Frames', framesView], bus: ['Bus load', busView] };
const wholeViews = { findings: findingsView, settings: settingsView };
let current = models[0];
let chosen = {};
let keptQuery = ''; // of a search that goes on in another line

const tree = new Tree(document.getElementById('tree'), node => { location.hash = node.line.href(node.id); });
tree.changed = () => refresh();

/// Shows in the index what search and filters leave.
function refresh() {
    const { rows, hits, isActive } = rowsOf(current, query.value, chosen);
    tree.show(current, rows);
    document.getElementById('hits').replaceChildren(
        ...(!isActive ? [] : [hits === 0 ? 'Nothing fits.' : hits === 1 ? '1 fits.' : `${hits} fit.`, ...elsewhere()]));
    const count = Object.keys(chosen).length;
    document.getElementById('filter-count').textContent = count > 0 ? `(${count})` : '';
}

/// Links to the other lines that have what is looked for.
function elsewhere() {
    if (query.value.trim() === '')
        return [];
    return models.filter(model => model !== current).flatMap(model => {
        const { hits } = rowsOf(model, query.value, {});
        const keep = () => { keptQuery = query.value; };
        return hits === 0 ? [] : [' ', el('a', { href: model.href('overview'), click: keep }, `${hits} on `, said(model.title))];
    });
}

/// Makes a line the one that the index shows.
function take(model) {
    if (model === current && tree.model)
        return;
    current = model;
    chosen = {};
    query.value = keptQuery;
    keptQuery = '';
    document.getElementById('filter-fields').replaceChildren(...filterFields(model, filters => {
        chosen = filters;
        refresh();
    }));
    document.querySelector('.index').hidden = model.roots.length === 0;
    tree.box.scrollTop = 0;
    refresh();
}

function tab(href, isCurrent, ...content) {
    return el('a', { href, 'aria-current': isCurrent ? 'page' : undefined }, content);
}

function showTabs(view) {
    const check = data.check ?? {};
    const worst = severities.find(severity => check[`${severity}s`] > 0);
    const number = (check.findings ?? []).length;
    document.getElementById('tabs').replaceChildren(
        el('div', { class: 'main-tabs' },
            models.map(model => tab(model.href('overview'), model === current && !(view in wholeViews),
                said(several ? model.title : 'Device'), el('span', { class: 'quiet' }, ` ${model.json.type}`))),
            tab('#findings', view === 'findings', 'Findings ',
                el('span', { class: `badge ${worst ?? ''}` }, String(number))),
            tab('#settings', view === 'settings', 'Settings')),
        view in wholeViews ? '' : el('div', { class: 'sub-tabs' },
            el('button', { type: 'button', class: 'to-index', click: () => showIndex(true) }, 'Index and search'),
            Object.entries(views).map(([id, [name]]) => tab(current.href(id), view === id, name))));
}

function showIndex(isShown) {
    document.body.classList.toggle('show-index', isShown);
    if (isShown)
        query.focus();
}

/// Shows what the address of the page names.
function go() {
    const address = decodeAddress();
    const [, lineNumber, view] = /^(?:(\d+)\/)?(.*)$/.exec(address);
    const named = models.find(model => lineNumber === undefined ? model.isFirst : model.number === Number(lineNumber));
    const node = partOf(address);
    showIndex(false);
    if (view in wholeViews) {
        fill(view, wholeViews[view]());
    } else if (node && node.kind !== 'area') {
        take(node.line);
        fill('part', partView(node));
        tree.select(node);
        main.querySelector('.chosen, [data-field].chosen')?.scrollIntoView({ block: 'nearest' });
    } else {
        take(named ?? models[0]);
        tree.select(undefined);
        const known = view in views ? view : 'overview';
        const isUnknown = address !== '' && !(view in views);
        fill(known, [isUnknown ? el('p', { class: 'unknown' }, 'This device has no ', mono(address), '.') : '',
                     views[known][1](current)]);
    }
    window.scrollTo(0, 0);
}

function decodeAddress() {
    try {
        return decodeURIComponent(location.hash.slice(1));
    } catch {
        return location.hash.slice(1);
    }
}

function fill(view, content) {
    main.replaceChildren(...[content].flat(Infinity).filter(Boolean));
    document.body.dataset.view = view;
    document.querySelector('.index').hidden = view in wholeViews || current.roots.length === 0;
    showTabs(view);
    const title = main.querySelector('h2')?.textContent.replace(/ #$/, '') ?? '';
    document.title = `${title} – ${deviceName()}`;
}

function deviceName() {
    const named = data.lines.find(line => line.product);
    return plain(named?.product ?? data.device.file.split('/').pop());
}

function showHead() {
    const first = data.lines.find(line => line.vendor || line.product) ?? {};
    document.getElementById('device-name').textContent = deviceName();
    document.getElementById('device-facts').append(...[
        first.vendor && said(first.vendor), first.orderCode && el('span', {}, 'order code ', said(first.orderCode)),
        mono(data.device.file.split('/').pop()),
        several ? `${models.length} lines` : ''].filter(Boolean).flatMap((part, i) => i > 0 ? [' · ', part] : [part]));
}

function key(event) {
    if (isSearchKey(event)) {
        event.preventDefault();
        if (document.body.dataset.view in wholeViews)
            location.hash = current.href('overview');
        document.querySelector('.index').hidden = false;
        showIndex(true);
        query.select();
    }
}

/// In the field of the search: arrows lead into the index, Enter opens the first part that fits.
function queryKey(event) {
    const first = tree.rows.findIndex(row => row.level > 1);
    const best = tree.rows.findIndex(row => row.level > 1 && contains(row.node, query.value.toLowerCase().split(/\s+/)));
    if (event.key === 'ArrowDown' && first >= 0) {
        tree.goTo(best >= 0 ? best : first);
        tree.box.focus();
    } else if (event.key === 'Enter') {
        if (query.value.trim() && first >= 0)
            location.hash = tree.rows[best >= 0 ? best : first].node.line.href(tree.rows[best >= 0 ? best : first].node.id);
    } else if (event.key === 'Escape') {
        query.value = '';
        refresh();
    } else {
        return;
    }
    event.preventDefault();
}

function wantedNodes(model) {
    if (model !== current)
        return new Set(model.nodes.values());
    const { rows, isActive } = rowsOf(model, query.value, chosen);
    return new Set(isActive ? rows.map(row => row.node) : model.nodes.values());
}

document.getElementById('search').addEventListener('submit', event => event.preventDefault());
document.getElementById('skip').addEventListener('click', event => { event.preventDefault(); main.focus(); });
window.addEventListener('beforeprint', () => document.getElementById('paper').replaceChildren(...printed(wantedNodes).flat(Infinity)));
window.addEventListener('afterprint', () => document.getElementById('paper').replaceChildren());
window.addEventListener('hashchange', go);
document.addEventListener('keydown', key);
query.addEventListener('input', refresh);
query.addEventListener('keydown', queryKey);

showHead();
go();
models.forEach(prepareSearch);
