// A session with the official client of the Model Context Protocol, which validates whatever the server sends.
// usage: node session.mjs PROGRAM EXAMPLE_PROJECT

import assert from 'node:assert/strict';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';

import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';
import Ajv from 'ajv';

const [program, example] = process.argv.slice(2);
const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'ncx-mcp-client-'));
const project = path.join(folder, path.basename(example));
const output = path.join(folder, 'out');
fs.copyFileSync(example, project);
fs.mkdirSync(output);

const transport = new StdioClientTransport({
    command: program,
    args: ['--mcp'],
    env: { ...process.env, HOME: folder },
    stderr: 'inherit',
});
const client = new Client({ name: 'ncx-test', version: '1.0.0' });
client.onerror = error => { throw error; };

async function call(name, args = {}) {
    const result = await client.callTool({ name, arguments: args });
    assert.equal(result.content.length, 1);
    assert.equal(result.content[0].type, 'text');
    return { text: result.content[0].text, failed: result.isError ?? false };
}

async function done(name, args) {
    const { text, failed } = await call(name, args);
    assert.equal(failed, false, text);
    return text;
}

async function data(name, args) {
    return JSON.parse(await done(name, args));
}

async function look() {
    assert.equal(client.getServerVersion().name, 'ncx-mcp');
    assert.deepEqual(client.getServerCapabilities(), { tools: {}, resources: {} });
    assert.match(client.getInstructions(), /^CAN NodeComposer MCP server\. Send one request at a time/);

    const { tools } = await client.listTools();
    assert.equal(tools.length, 41);
    const ajv = new Ajv({ allowUnionTypes: true }); // strict: an unknown or misplaced keyword throws
    for (const { name, inputSchema } of tools) {
        const fits = ajv.compile({ ...inputSchema, additionalProperties: false });
        assert.equal(fits({ 'no such argument': 1 }), false, name);
    }

    const { resources } = await client.listResources();
    const profile = resources.find(({ uri }) => uri === 'codb://402');
    assert.equal(profile.name, 'DS-402');
    const { contents } = await client.readResource({ uri: profile.uri });
    assert.ok(JSON.parse(contents[0].text).some(({ index }) => index === '0x6040'));
    const object = await client.readResource({ uri: 'codb://402/0x6040' });
    assert.equal(JSON.parse(object.contents[0].text).index, '0x6040');
    await assert.rejects(client.readResource({ uri: 'codb://none' }), { code: -32602 });
}

async function work() {
    assert.deepEqual(await call('list_lines'),
        { text: 'No project open. Call open_project first.', failed: true });
    assert.equal(await done('open_project', { path: project }), `Project opened: ${project}`);
    assert.deepEqual(await data('list_lines'), [{ line: 0, lineTypeCode: 1 }]);

    const index = 0x2f00;
    await done('add_index', { line: 0, index, name: 'Oil temperature', objectType: 'Record', dataType: 5 });
    await done('add_subindex', { line: 0, index, sub: 1, name: 'Mean', dataType: 3, accessType: 'rw' });
    await done('set_subindex_value', { line: 0, index, sub: 0, defaultValue: '1' });
    await done('set_subindex_value', { line: 0, index, sub: 1, defaultValue: '-40' });
    assert.deepEqual(await data('find_indices', { line: 0, globPattern: 'oil*' }),
        [{ index: '0x2f00', indexDec: index, name: 'Oil temperature' }]);
    assert.equal((await data('get_index', { line: 0, index })).subs[1].defaultValue, '-40');
    await assert.rejects(client.callTool({ name: 'get_index', arguments: { line: 0 } }), { code: -32602 });
    await assert.rejects(client.callTool({ name: 'no_tool' }), { code: -32601 });

    await done('import_profile_indices', { profile: '402', line: 0, indices: [0x6040] });
    const settings = await data('get_settings', { group: 'general' });
    assert.notEqual(Object.keys(settings).length, 0);

    const { text: check, failed } = await call('check_model');
    assert.equal(JSON.parse(check).errorCount !== 0, failed);
    assert.match(await done('generate', { outputPath: output, disableCheck: true }), /^Generation completed\.\n/);
    assert.match(fs.readFileSync(path.join(output, 'gen_indices.h'), 'utf8'), /I_OIL_TEMPERATURE\s+0x2f00/i);
    assert.equal(await done('save_project'), 'Project saved.');
}

await client.connect(transport);
await look();
await work();
await client.close();

const workingCopies = fs.readdirSync(folder, { recursive: true }).filter(name => String(name).includes('qvxdatatemp'));
assert.deepEqual(workingCopies, [], 'the server did not end by itself');
assert.match(fs.readFileSync(project, 'utf8'), /Oil temperature/);
fs.rmSync(folder, { recursive: true });
console.log('The client accepted all that the server said.');
