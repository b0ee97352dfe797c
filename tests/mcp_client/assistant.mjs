// A session with the server of ncx through the official client of the Model Context Protocol, which validates what the
// server sends, structured content against the schemas of its tools included.
// usage: node assistant.mjs PROGRAM DESCRIPTION [http]

import assert from 'node:assert/strict';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';

import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';
import Ajv from 'ajv';

import { HttpServer } from './httpserver.mjs';

const [program, description, overHttp] = process.argv.slice(2);
const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'ncx-mcp-client-'));
fs.copyFileSync(description, path.join(folder, 'device.eds'));

const environment = { ...process.env, HOME: folder };
let server; // over HTTP, which the client does not start

async function connection() {
    if (!overHttp)
        return new StdioClientTransport({ command: program, args: ['mcp'], cwd: folder, env: environment, stderr: 'inherit' });
    server = await HttpServer.start(program, folder, environment);
    return server.connection();
}

const transport = await connection();
const client = new Client({ name: 'ncx-test', version: '1.0.0' });
client.onerror = error => {
    // The client hears of progress a moment after a reply that comes in the same breath, and its end breaks the streams
    // of what it has taken back, which it may not have read by then.
    if (!/progress notification for an unknown token|disconnected: AbortError/.test(error.message))
        throw error;
};

const toolsOf = {};

async function call(name, args = {}, options = {}) {
    return client.callTool({ name, arguments: args }, undefined, options);
}

/// The structured content of a call that succeeds; the client has held it against the tool's schema.
async function done(name, args, options) {
    const result = await call(name, args, options);
    assert.ok(!result.isError, `${name}: ${result.content[0].text}`);
    assert.equal(typeof result.structuredContent, 'object', name);
    return result.structuredContent;
}

async function refused(name, args, words) {
    const result = await call(name, args);
    assert.ok(result.isError, name);
    assert.match(result.content[0].text, words);
}

async function look() {
    assert.equal(client.getServerVersion().name, 'ncx');
    assert.equal(transport.protocolVersion ?? '2025-11-25', '2025-11-25');
    await client.ping();
    const { tools } = await client.listTools(); // the client keeps the schemas of answers from here on
    const ajv = new Ajv({ allowUnionTypes: true });
    for (const tool of tools) {
        toolsOf[tool.name] = tool;
        assert.equal(ajv.compile(tool.inputSchema)({ 'no such argument': 1 }), false, tool.name);
        const example = tool.description.match(/ Example: (\{.*\})$/);
        assert.ok(example && ajv.compile(tool.inputSchema)(JSON.parse(example[1])), tool.name);
        assert.equal(typeof tool.annotations.readOnlyHint, 'boolean', tool.name);
        assert.equal(tool.outputSchema.type, 'object', tool.name);
    }
    assert.ok(tools.length > 50);
    assert.ok(JSON.stringify(tools).length < 64000, 'what each session begins with has grown');
    assert.ok(toolsOf.check_model.annotations.readOnlyHint);
    assert.ok(toolsOf.delete_line.annotations.destructiveHint);
    assert.ok(!toolsOf.add_index.annotations.destructiveHint);
    assert.ok(toolsOf.set_subindex.annotations.idempotentHint);
}

/// All pages of a list.
async function pages(list, member) {
    const all = [];
    let cursor;
    do {
        const page = await list(cursor ? { cursor } : {});
        all.push(...page[member]);
        cursor = page.nextCursor;
    } while (cursor);
    return all;
}

async function read() {
    const resources = await pages(page => client.listResources(page), 'resources');
    assert.equal(new Set(resources.map(one => one.uri)).size, resources.length);
    const documents = resources.filter(one => one.uri.startsWith('ncx://'));
    assert.ok(documents.length >= 7 && resources.length > documents.length + 20);
    for (const one of documents) {
        const { contents: [content] } = await client.readResource({ uri: one.uri });
        assert.equal(content.mimeType, 'text/markdown', one.uri);
        assert.ok(content.text.startsWith(`# ${one.title}\n`), one.uri);
        assert.equal(Buffer.byteLength(content.text), one.size, one.uri);
        assert.equal(content.text, fs.readFileSync(path.join(import.meta.dirname, '../..', one.uri.replace('ncx:/', '')), 'utf8'));
    }
    const { resourceTemplates } = await client.listResourceTemplates();
    assert.ok(resourceTemplates.some(one => one.uriTemplate === 'ncx://findings/{rule}'));
    await assert.rejects(client.readResource({ uri: 'ncx://docs/none.md' }), /resources\/list/);

    const prompts = await pages(page => client.listPrompts(page), 'prompts');
    assert.equal(prompts.length, 3);
    for (const prompt of prompts) {
        const needed = prompt.arguments.filter(one => one.required);
        const given = Object.fromEntries(needed.map(one => [one.name, `my ${one.name}`]));
        const { messages: [message] } = await client.getPrompt({ name: prompt.name, arguments: given });
        assert.equal(message.role, 'user');
        for (const one of needed) {
            assert.ok(message.content.text.includes(`my ${one.name}`), prompt.name);
            const { [one.name]: left, ...others } = given;
            await assert.rejects(client.getPrompt({ name: prompt.name, arguments: others }), new RegExp(one.name));
        }
    }
}

async function work() {
    await refused('list_lines', {}, /new_project/);
    await done('new_project', { path: 'device.ncxp', emptyLine: 0, lineTypes: ['CANopen', 'J1939+RawCAN'] });
    const steps = [];
    await done('import_file', { path: 'device.eds', line: 0, adopt: true, repair: true },
        { onprogress: step => steps.push(step) });
    assert.equal((await done('check_model', { severity: 'error' })).findings.errors, 0);
    assert.ok((await done('list_indices', { line: 0, limit: 3 })).nextOffset === 3);
    const edit = await done('add_index', { line: 0, index: 0x2fff, name: 'New', objectType: 'Array', dataType: 5 });
    assert.equal(edit.new[0].rule, 'noSubindices');
    assert.equal((await done('undo')).gone[0].rule, 'noSubindices');
    await done('add_pgn', { line: 1, pgn: 65280, direction: 'Transmit', name: 'Quick' });
    await done('add_spn', { line: 1, pgn: 65280, direction: 'Transmit', spn: 1, name: 'S', dataType: 5, bitSize: 8, varname: 's' });
    await done('list_spns', { line: 1, pgn: 65280, direction: 'Transmit' });
    await done('add_can_id', { line: 1, canId: 0x18ff50e5, extended: true, direction: 'Transmit', name: 'Raw' });
    await done('add_data_element', { line: 1, canId: 0x18ff50e5, extended: true, direction: 'Transmit', number: 1, name: 'E',
        dataType: 5, bitSize: 8, varname: 'e' });
    assert.equal((await done('get_can_id', { line: 1, canId: 0x18ff50e5, extended: true, direction: 'Transmit' })).canIdDec,
        0x18ff50e5);
    await done('list_can_ids', { line: 1 });
    for (const [name, args] of [['list_lines', {}], ['get_line', { line: 0 }], ['list_profiles', {}], ['show', { line: 1 }],
        ['get_settings', { group: 'general' }], ['list_j1939_settings', { line: 1 }], ['diff_project', {}],
        ['list_description_settings', { line: 0 }], ['list_profile_indices', { profile: '402', limit: 5 }],
        ['set_line', { line: 0, name: 'bus' }], ['delete_line', { line: 1 }], ['undo', {}]])
        await done(name, args);
    await done('generate', { outputPath: 'out' }, { onprogress: step => steps.push(step) });
    assert.ok(steps.filter(step => step.message === 'writing').length > 8, 'each file is a step');
    assert.ok(steps.some(step => step.message === 'adopting') && steps.at(-1).progress < steps.at(-1).total);
    assert.ok(fs.existsSync(path.join(folder, 'out', 'gen_define.h')));
    await refused('save_project', { path: 'device.ncxt' }, /cannot hold/);
    await done('save_project');
}

/// What is taken back gets no answer, and leaves nothing.
async function cancel() {
    const abort = new AbortController();
    const running = call('generate', { outputPath: 'cancelled' }, { signal: abort.signal });
    if (overHttp) { // connections overtake each other: what comes first is tested without this client
        abort.abort('changed my mind');
        await assert.rejects(running);
        assert.equal((await done('list_lines')).items.length, 2);
        return;
    }
    const queued = call('add_line', { line: 7, lineType: 'J1939' }, { signal: abort.signal });
    abort.abort('changed my mind');
    await assert.rejects(running);
    await assert.rejects(queued);
    assert.equal((await done('list_lines')).items.length, 2);
    assert.ok(!fs.existsSync(path.join(folder, 'cancelled')));

    const before = (await done('list_indices', { line: 0 })).total;
    const importAbort = new AbortController();
    const importing = call('import_file', { path: 'device.eds', line: 0 }, { signal: importAbort.signal });
    importAbort.abort('not that one');
    await assert.rejects(importing);
    assert.equal((await done('list_indices', { line: 0 })).total, before);
    assert.equal((await done('diff_project')).total, 0);
}

await client.connect(transport);
await look();
await read();
await work();
await cancel();
if (overHttp)
    await transport.terminateSession();
await client.close();
if (overHttp)
    await server.end();

const workingCopies = fs.readdirSync(folder, { recursive: true }).filter(name => String(name).includes('qvxdatatemp'));
assert.deepEqual(workingCopies, [], 'the server did not end by itself');
fs.rmSync(folder, { recursive: true });
console.log('The client accepted all that the server said.');
