// The page on paper: all of it, each part under its address, so that links lead on in a PDF, too. Of a line whose index
// is searched or filtered, the objects that are left.
'use strict';

/// Addresses on paper, which links in the text name; those of another line than the first begin with its number.
function prefixOf(model) {
    return model.isFirst ? '' : `${model.number}/`;
}

function printedObjects(model, rowsOf) {
    const prefix = prefixOf(model);
    return model.roots.filter(root => root.text).map(root => {
        const nodes = root.kids.filter(node => rowsOf.has(node));
        return nodes.length === 0 ? '' : el('section', { id: prefix + root.id }, el('h3', {}, `${root.name} objects`),
            nodes.map(node => {
                const isWhole = node.kids.length > 0;
                return el('section', { class: 'card', id: prefix + node.id },
                    el('h4', {}, mono(node.code), ' ', said(node.name), ' ',
                        el('span', { class: 'quiet' }, `${node.data.objectCode}${isWhole ? '' : `, ${node.data.dataType}`}`)),
                    objectBody(node, undefined, prefix));
            }));
    });
}

function printedLine(model, nodes) {
    const prefix = prefixOf(model);
    const line = el('section', { class: 'line', id: `${prefix}overview` },
        overview(model),
        messagesOf(model).length > 0 ? el('section', { id: `${prefix}frames` }, el('h2', {}, 'Frames'),
            messagesOf(model).map(node => el('section', { class: 'card', id: prefix + node.id },
                el('h3', {}, nameOfKind(node), ' ', said(node.name)), frameBody(node, prefix)))) : '',
        el('section', { id: `${prefix}bus` }, busView(model)),
        model.roots.some(root => root.text) ? el('h2', {}, 'Object dictionary') : '',
        printedObjects(model, nodes));
    for (const details of line.querySelectorAll('details'))
        details.open = true;
    return line;
}

/// The whole device; `nodesOf` tells the parts of a line that are wanted.
function printed(nodesOf) {
    return [
        models.map(model => printedLine(model, nodesOf(model))),
        el('section', { id: 'findings' }, findingsView()),
        el('section', { id: 'settings' }, settingsView()),
    ];
}
