// Reads DBC files and prints what is in them, one JSON object a line for each file:
//     {"file": ..., "errors": [...], "rows": ["id name length[ every time]{ | signal start size sign}", ...]}
'use strict';

const fs = require('fs');
const { Dbc } = require('candied');

// The library knows no frames of more than 8 bytes and no signals of more than 64 bits. Of longer ones, which a text on
// a J1939 line may need, it gets the beginning.
function withoutLongFrames(text) {
    return text.replace(/^(BO_ \d+ \w+: )(\d+) /gm, (all, head, length) => `${head}${Math.min(length, 8)} `)
        .replace(/^( *SG_ [^|]*\|)(\d+)@/gm, (all, head, size) => `${head}${Math.min(size, 64)}@`);
}

function rowOf(message) {
    const time = message.attributes.get('GenMsgCycleTime')?.value;
    const signals = [...message.signals.values()].map(signal =>
        ` | ${signal.name} ${signal.startBit} ${signal.length} ${signal.signed ? 'signed' : 'unsigned'}`);
    return `${message.id} ${message.name} ${message.dlc}${time ? ` every ${time}` : ''}${signals.join('')}`;
}

for (const file of process.argv.slice(2)) {
    const dbc = new Dbc();
    const data = dbc.load(withoutLongFrames(fs.readFileSync(file, 'utf8')));
    const errors = [...dbc.errors].map(([line, faults]) => `${line}: ${faults}`);
    console.log(JSON.stringify({ file, errors, rows: [...data.messages.values()].map(rowOf) }));
}
