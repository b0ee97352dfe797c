// Elements. Texts of a project come into the page as text only, never as markup.
'use strict';

/// Makes an element; attributes that are false or undefined are left out, functions become listeners.
function el(tag, attributes, ...children) {
    const element = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes ?? {})) {
        if (typeof value === 'function')
            element.addEventListener(name, value);
        else if (value !== undefined && value !== false && value !== null)
            element.setAttribute(name, value === true ? '' : value);
    }
    element.append(...children.flat(Infinity).filter(child => child !== undefined && child !== null && child !== ''));
    return element;
}

/// A text with its control characters made visible, kept from turning the text around it.
function plain(text) {
    return String(text).replace(/[\u0000-\u0009\u000b-\u001f\u007f]/g, letter => {
        const code = letter.charCodeAt(0);
        return String.fromCharCode(code === 0x7f ? 0x2421 : 0x2400 + code);
    });
}

/// A text of the project, in the direction of its script.
function said(text) {
    return el('bdi', {}, plain(text));
}

function mono(text) {
    return el('code', {}, plain(text));
}

function link(node, ...content) {
    return el('a', { href: node.line.href(node.id) }, ...content);
}

function countText(number, word) {
    return `${number} ${word}${number === 1 ? '' : 's'}`;
}

function isSomething(cell) {
    return Array.isArray(cell) ? cell.some(isSomething) : cell !== undefined && cell !== '';
}

/// A table; columns without a text in any row are left out. A cell is a node, a text, or empty.
function table(caption, heads, rows, attributes = {}) {
    const kept = heads.map((head, i) => head.always || rows.some(row => isSomething(row.cells[i])));
    return el('div', { class: 'wide', role: 'region', 'aria-label': caption, tabindex: 0 },
        el('table', attributes,
            el('caption', {}, caption),
            el('thead', {}, el('tr', {}, heads.filter((_, i) => kept[i]).map(
                head => el('th', { scope: 'col', class: head.class }, el('span', { title: head.text }, head.name))))),
            el('tbody', {}, rows.map(row => el('tr', row.attributes, row.cells.map(
                (cell, i) => kept[i] ? el('td', { class: heads[i].class }, cell ?? '') : ''))))));
}

/// True for the key that leads to the search, unless it is a letter of what somebody types.
function isSearchKey(event) {
    const isTyping = /^(INPUT|SELECT|TEXTAREA)$/.test(event.target.tagName) && event.target.type !== 'checkbox';
    return event.key === '/' && !isTyping && !event.ctrlKey && !event.metaKey && !event.altKey;
}

/// Facts under each other: names and values; those without a value are left out.
function facts(...pairs) {
    return el('dl', { class: 'facts' }, pairs.filter(([, value]) => isSomething(value)).map(
        ([name, value]) => el('div', {}, el('dt', {}, name), el('dd', {}, value))));
}

/// Fills an element when it comes near the part that is seen; at once where nothing is seen, on paper.
const watcher = new IntersectionObserver(entries => {
    for (const entry of entries) {
        if (entry.isIntersecting) {
            watcher.unobserve(entry.target);
            entry.target.fill?.();
            delete entry.target.fill;
        }
    }
}, { rootMargin: '600px' });

function later(element, fill, isNow) {
    if (isNow) {
        fill();
        return element;
    }
    element.fill = fill;
    watcher.observe(element);
    return element;
}

function findingList(findings, withPlace) {
    if (findings.length === 0)
        return '';
    return el('ul', { class: 'findings' }, findings.map(finding => el('li', { class: finding.severity },
        el('p', {},
            el('strong', {}, finding.severity), ' ',
            withPlace ? [findingPlace(finding), ' '] : '',
            said(finding.message),
            finding.group ? el('span', { class: 'group' }, ` ${finding.group}`) : ''),
        finding.advice ? el('p', { class: 'advice' }, said(finding.advice)) : '')));
}

function findingPlace(finding) {
    const line = several && finding.line !== undefined
        ? models.find(model => model.number === finding.line)?.title ?? `line ${finding.line}` : '';
    const part = finding.node ? link(finding.node, mono(finding.node.kind === 'sub' ? finding.node.id : finding.node.code))
                              : finding.setting && mono(finding.setting);
    return [line && said(line), line && part ? ', ' : '', part, line || part ? ': ' : ''];
}
