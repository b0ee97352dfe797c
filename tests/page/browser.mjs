// The browser of the system, and the pages that a program writes.

import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

import { chromium } from 'playwright-core';

export const top = path.resolve(path.dirname(fileURLToPath(import.meta.url)), '../..');

/// A folder of its own, which the programs also have for their home.
export const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'ncx-page-'));
process.on('exit', () => fs.rmSync(folder, { recursive: true, force: true }));

/// What a call of the program answers; exit code 1 tells of findings and is none of a failure.
export function answer(program, ...args) {
    try {
        return execFileSync(program, args, { env: { ...process.env, HOME: folder }, maxBuffer: 1 << 28 }).toString();
    } catch (error) {
        if (error.status === 1)
            return error.stdout.toString();
        throw error;
    }
}

/// Writes the page of a project; its address.
export function writePage(program, project, name) {
    const file = path.join(folder, name);
    answer(program, 'show', project, '--html', file, '--force');
    return file;
}

export function launch() {
    return chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox', '--disable-gpu'] });
}

/// Opens a file in a new tab; whatever the page reports as an error is thrown into `faults`.
export async function open(browser, file, hash = '', options = {}) {
    const tab = await browser.newPage({ viewport: { width: 1280, height: 800 }, ...options });
    tab.setDefaultTimeout(120000); // a machine may be busy; what hangs for good is ended by the one who runs this
    tab.faults = [];
    tab.on('console', message => tab.faults.push(message.text()));
    tab.on('pageerror', error => tab.faults.push(error.stack));
    tab.on('dialog', dialog => { tab.faults.push(`a dialog: ${dialog.message()}`); dialog.dismiss(); });
    tab.on('request', request => request.url().startsWith('file:') || tab.faults.push(`a request: ${request.url()}`));
    await tab.goto(pathToFileURL(file) + hash);
    return tab;
}
