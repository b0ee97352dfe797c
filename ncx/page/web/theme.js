// Colours and paper, as the buttons in the head of a page have them.
'use strict';

function setTheme(theme) {
    document.documentElement.dataset.theme = theme;
    document.getElementById('theme').value = theme;
}

/// What the browser keeps for a page; a page of a file may have no such place.
function stored(value) {
    try {
        if (value !== undefined)
            localStorage.setItem('ncx-theme', value);
        return localStorage.getItem('ncx-theme') ?? '';
    } catch {
        return '';
    }
}

document.getElementById('theme').addEventListener('change', event => setTheme(stored(event.target.value) && event.target.value));
document.getElementById('print').addEventListener('click', () => window.print());

setTheme(stored());
