// Reads device descriptions and prints what is in them, one JSON object a line for each file:
//     {"file": ..., "rows": [[index, subindex, name, data type, access, mappable, default], ...]}
// or {"file": ..., "error": ...} for a file that the library refuses. An ARRAY or RECORD itself has no row.
'use strict';

const { Eds } = require('canopen/source/eds');

function row(index, subindex, object) {
    return [index, subindex, object.parameterName, object.dataType, object.accessType, Number(object.pdoMapping),
            object.defaultValue ?? ''];
}

function rowsOf(eds) {
    const rows = [];
    for (const object of Object.values(eds.dataObjects)) {
        const index = object.index;
        if (object._subObjects === undefined)
            rows.push(row(index, 0, object));
        for (const [subindex, sub] of Object.entries(object._subObjects ?? []))
            rows.push(row(index, Number(subindex), sub));
    }
    return rows;
}

for (const file of process.argv.slice(2)) {
    try {
        console.log(JSON.stringify({ file, rows: rowsOf(Eds.fromFile(file)) }));
    } catch (error) {
        console.log(JSON.stringify({ file, error: error.message }));
    }
}
