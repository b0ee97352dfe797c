// Several official clients at one server of ncx over HTTP: each has its own project, and none keeps another one or the
// server from going on.
// usage: node clients.mjs PROGRAM DESCRIPTION

import assert from 'node:assert/strict';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';

import { Client } from '@modelcontextprotocol/sdk/client/index.js';

import { HttpServer } from './httpserver.mjs';

const [program, description] = process.argv.slice(2);
const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'ncx-mcp-clients-'));
fs.copyFileSync(description, path.join(folder, 'device.eds'));
const server = await HttpServer.start(program, folder, { ...process.env, HOME: folder });

async function connected() {
    const client = new Client({ name: 'ncx-test', version: '1.0.0' });
    await client.connect(server.connection());
    return client;
}

function call(client, name, args = {}, options = {}) {
    return client.callTool({ name, arguments: args }, undefined, options);
}

async function done(client, name, args, options) {
    const result = await call(client, name, args, options);
    assert.ok(!result.isError, `${name}: ${result.content[0].text}`);
    return result.structuredContent;
}

async function refused(client, name, args, words) {
    const result = await call(client, name, args);
    assert.ok(result.isError, name);
    assert.match(result.content[0].text, words);
}

/// Both edit at once, in projects of two kinds, and save what is theirs.
async function workApart(one, two) {
    await Promise.all([
        done(one, 'new_project', { path: 'one.ncxt', emptyLine: 0 }),
        done(two, 'new_project', { path: 'two.ncxt', lineTypes: ['J1939'] }),
    ]);
    const edits = [];
    for (let i = 0; i < 10; ++i) {
        edits.push(done(one, 'add_index', { line: 0, index: 0x2000 + i, name: `Value ${i}`, objectType: 'Variable', dataType: 5 }));
        edits.push(done(two, 'add_pgn', { line: 0, pgn: 65280 + i, direction: 'Transmit', name: `Group ${i}` }));
    }
    await Promise.all(edits);
    assert.equal((await done(one, 'find_indices', { line: 0, globPattern: 'Value *' })).items.length, 10);
    assert.equal((await done(two, 'list_pgns', { line: 0 })).items.length, 10);
    await Promise.all([done(one, 'save_project'), done(two, 'save_project')]);
    assert.match(fs.readFileSync(path.join(folder, 'one.ncxt'), 'utf8'), /Value 9/);
    assert.doesNotMatch(fs.readFileSync(path.join(folder, 'one.ncxt'), 'utf8'), /Group/);
}

/// Whoever else has changed a file, another session or another program, is not overwritten.
async function workTogether(one, two) {
    await done(two, 'open_project', { path: 'one.ncxt' });
    for (const client of [one, two])
        await done(client, 'set_line', { line: 0, name: client === one ? 'first' : 'second' });
    await done(one, 'save_project');
    await refused(two, 'save_project', {}, /somebody else has changed/);
    fs.appendFileSync(path.join(folder, 'one.ncxt'), '\n');
    await done(one, 'set_line', { line: 0, name: 'third' });
    await refused(one, 'save_project', {}, /somebody else has changed/);
    assert.match(fs.readFileSync(path.join(folder, 'one.ncxt'), 'utf8'), /first/);
}

/// A client whose connection breaks while its generation runs.
async function vanish(client) {
    await done(client, 'new_project', { path: 'gone.ncxt', emptyLine: 0 });
    await done(client, 'import_file', { path: 'device.eds', line: 0, adopt: true, repair: true });
    await new Promise(begun => {
        call(client, 'generate', { outputPath: 'out' }, { onprogress: begun }).catch(() => {});
    });
    await client.close();
}

const [one, two, three] = await Promise.all([connected(), connected(), connected()]);
await workApart(one, two);
await workTogether(one, two);
await vanish(three);
await done(one, 'list_lines');
// Unsaved edits and open sessions do not hold the end up.
await server.end();

const left = fs.readdirSync(folder, { recursive: true }).map(String);
assert.deepEqual(left.filter(name => name.includes('qvxdatatemp')), [], 'the server did not clean up');
assert.deepEqual(left.filter(name => /^[^/]*\.ncx/.test(name)).sort(), ['gone.ncxt', 'one.ncxt', 'two.ncxt']);
fs.rmSync(folder, { recursive: true });
console.log('Three clients worked side by side.');
