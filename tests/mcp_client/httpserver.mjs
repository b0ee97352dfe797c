// The server of ncx over HTTP, which clients do not start themselves.

import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import readline from 'node:readline';

import { StreamableHTTPClientTransport } from '@modelcontextprotocol/sdk/client/streamableHttp.js';

export class HttpServer {
    /// Starts it in a folder, and takes address and token from what it tells.
    static async start(program, folder, environment) {
        const server = new HttpServer();
        server.process = spawn(program, ['mcp', '--http=0'],
            { cwd: folder, env: environment, stdio: ['ignore', 'inherit', 'pipe'] });
        process.on('exit', () => server.process.kill()); // also where the test fails
        for await (const line of readline.createInterface({ input: server.process.stderr })) {
            server.url ??= line.match(/http:\S+/)?.[0];
            server.token = line.match(/Bearer (\S+)$/)?.[1];
            if (server.token)
                return server;
        }
        throw new Error('the server does not tell where it is');
    }

    /// For one more client.
    connection() {
        return new StreamableHTTPClientTransport(new URL(this.url),
            { requestInit: { headers: { Authorization: `Bearer ${this.token}` } } });
    }

    /// Asks it to end, which it does whatever its sessions have open.
    async end() {
        this.process.kill('SIGTERM');
        assert.deepEqual(await once(this.process, 'exit'), [0, null]);
    }
}
