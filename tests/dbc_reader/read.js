// Reads DBC files and prints what is in them, one JSON object a line for each file:
//     {"file": ..., "errors": [...], "rows": ["id name length[ every time]{ | signal start size sign}", ...]}
'use strict';

const fs = require('fs');
const { Dbc } = require('candied');

function rowOf(message) {
    const time = message.attributes.get('GenMsgCycleTime')?.value;
    const signals = [...message.signals.values()].map(signal =>
        ` | ${signal.name} ${signal.startBit} ${signal.length} ${signal.signed ? 'signed' : 'unsigned'}`);
    return `${message.id} ${message.name} ${message.dlc}${time ? ` every ${time}` : ''}${signals.join('')}`;
}

for (const file of process.argv.slice(2)) {
    const dbc = new Dbc();
    const data = dbc.load(fs.readFileSync(file, 'utf8'));
    const errors = [...dbc.errors].map(([line, faults]) => `${line}: ${faults}`);
    console.log(JSON.stringify({ file, errors, rows: [...data.messages.values()].map(rowOf) }));
}
