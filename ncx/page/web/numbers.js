// Numbers, as projects and the field write them.
'use strict';

/// The number that a text of the project stands for on a line, or NaN: decimal, 0x, octal, $NODEID and sums of these.
function numberOf(text, line) {
    let sum = 0;
    for (const part of String(text).split('+')) {
        const word = part.trim();
        if (/^\$nodeid$/i.test(word))
            sum += line.nodeId ? numberOf(line.nodeId, {}) : NaN;
        else if (/^0x[0-9a-f]+$/i.test(word) || /^-?[1-9][0-9]*$/.test(word) || word === '0')
            sum += Number(word);
        else if (/^0[0-7]+$/.test(word))
            sum += parseInt(word, 8);
        else
            return NaN;
    }
    return sum;
}

function hex(number, digits = 3) {
    return '0x' + number.toString(16).padStart(digits, '0');
}
