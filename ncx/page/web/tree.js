// The index of a line as a tree (WAI-ARIA), of which only the rows in sight are in the page.
'use strict';

class Tree {
    constructor(box, opened) {
        this.box = box;
        this.holder = box.firstElementChild;
        this.opened = opened; // is called with the node that is chosen
        this.rows = [];
        this.active = -1;
        this.rowHeight = 26;
        box.addEventListener('scroll', () => this.draw());
        box.addEventListener('keydown', event => this.key(event));
        box.addEventListener('click', event => this.click(event));
        new ResizeObserver(() => this.draw()).observe(box);
    }

    show(model, rows) {
        const node = this.rows[this.active]?.node;
        this.model = model;
        this.rows = rows;
        this.active = rows.findIndex(row => row.node === node);
        this.box.hidden = rows.length === 0;
        this.holder.style.height = `${rows.length * this.rowHeight}px`;
        this.draw(true);
    }

    /// Draws the rows in sight, and some around them.
    draw(isNew = false) {
        const first = Math.max(0, Math.floor(this.box.scrollTop / this.rowHeight) - 8);
        const last = Math.min(this.rows.length, first + Math.ceil(this.box.clientHeight / this.rowHeight) + 16);
        if (!isNew && first === this.first && last === this.last)
            return;
        this.first = first;
        this.last = last;
        const fragment = document.createDocumentFragment();
        for (let i = first; i < last; ++i)
            fragment.append(this.rowElement(i));
        this.holder.replaceChildren(fragment);
        this.markActive();
    }

    rowElement(i) {
        const { node, level, hasKids, isOpen, size } = this.rows[i];
        const worst = severities.find(severity => this.findingsOf(node).some(finding => finding.severity === severity));
        return el('div', {
            id: `row${i}`, role: 'treeitem', class: `row level${level}`, style: `top:${i * this.rowHeight}px`,
            'data-row': i, 'aria-level': level, 'aria-expanded': hasKids ? String(Boolean(isOpen)) : undefined,
            'aria-selected': String(node === this.selected), title: plain(node.name),
        },
        el('span', { class: 'twist', 'aria-hidden': 'true' }, hasKids ? (isOpen ? '▾' : '▸') : ''),
        node.code ? mono(node.code) : '', el('span', { class: 'name' }, said(node.name)),
        level === 1 ? el('span', { class: 'count' }, String(size)) : '',
        worst ? el('span', { class: `mark ${worst}`, role: 'img', 'aria-label': `has a finding: ${worst}` }, '●') : '');
    }

    findingsOf(node) {
        if (node.kind === 'area')
            return [];
        return node.kids.length > 0 ? [...node.findings, ...node.kids.flatMap(kid => kid.findings)] : node.findings;
    }

    markActive() {
        for (const row of this.holder.children)
            row.classList.toggle('active', Number(row.dataset.row) === this.active);
        const isThere = this.active >= this.first && this.active < this.last;
        if (isThere)
            this.box.setAttribute('aria-activedescendant', `row${this.active}`);
        else
            this.box.removeAttribute('aria-activedescendant');
    }

    /// Marks a part as the one that is shown beside the tree, and brings it into sight.
    select(node) {
        const placeOf = part => this.rows.findIndex(row => row.node === part && row.level > 1);
        const place = placeOf(node) >= 0 ? placeOf(node) : placeOf(node?.parent);
        this.selected = this.rows[place]?.node;
        if (place >= 0)
            this.active = place;
        this.reveal();
        this.draw(true);
    }

    reveal() {
        if (this.active < 0)
            return;
        const top = this.active * this.rowHeight;
        if (top < this.box.scrollTop)
            this.box.scrollTop = top;
        else if (top + this.rowHeight > this.box.scrollTop + this.box.clientHeight)
            this.box.scrollTop = top + this.rowHeight - this.box.clientHeight;
    }

    goTo(row) {
        this.active = Math.max(0, Math.min(this.rows.length - 1, row));
        this.reveal();
        this.draw(true);
    }

    toggle(row, isOpen) {
        if (!row?.hasKids || Boolean(row.isOpen) === isOpen)
            return false;
        row.node.open = isOpen;
        this.changed();
        return true;
    }

    key(event) {
        const row = this.rows[this.active];
        const page = Math.max(1, Math.floor(this.box.clientHeight / this.rowHeight) - 1);
        const moves = { ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page, Home: -Infinity, End: Infinity };
        if (event.ctrlKey || event.altKey || event.metaKey)
            return;
        if (event.key === 'ArrowUp' && this.active <= 0)
            document.getElementById('query').focus();
        else if (event.key in moves)
            this.goTo(this.active + moves[event.key]);
        else if (event.key === 'ArrowRight' && row)
            this.toggle(row, true) || this.goTo(this.active + (row.isOpen ? 1 : 0));
        else if (event.key === 'ArrowLeft' && row)
            this.toggle(row, false) ||
                this.goTo(this.rows.findIndex(other => other.node === (row.node.parent ?? row.node)));
        else if ((event.key === 'Enter' || event.key === ' ') && row)
            this.choose(row);
        else
            return;
        event.preventDefault();
    }

    choose(row) {
        if (row.level === 1)
            this.toggle(row, !row.isOpen);
        else
            this.opened(row.node);
    }

    click(event) {
        const element = event.target.closest('[data-row]');
        if (!element)
            return;
        this.active = Number(element.dataset.row);
        const row = this.rows[this.active];
        if (row.hasKids && event.target.classList.contains('twist'))
            this.toggle(row, !row.isOpen);
        else
            this.choose(row);
    }
}
