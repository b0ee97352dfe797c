// What the cases share: the program, its examples, and the browser that they look with.

import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import { createRequire } from 'node:module';

import { answer, folder, launch, top } from './browser.mjs';

export const program = path.resolve(process.argv[2]);
const axe = fs.readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');
export const example = name => {
    const home = path.join(top, 'examples', name);
    return path.join(home, fs.readdirSync(home).find(file => file.endsWith('.ncxt')));
};
export const faulty = path.join(top, 'tests/data/ncx/files/faulty.ncxt');
export const browser = await launch();

/// Names that try to become something else.
export const evil = [`</script><script>document.pwned=1</script>`, `<img src=x onerror="document.pwned=1">`, `"'&amp;&lt;`,
              '中文 ‮rtl', '𝒙\u0001\u0007bell', 'اَلْعَرَبِيَّةُ'];

/// The texts of the elements that a selector finds.
export const texts = (tab, selector) => tab.$$eval(selector, list => list.map(element => element.textContent.trim()));
export const hash = tab => tab.evaluate(() => decodeURIComponent(location.hash));

/// A project with the raw CAN messages that edited calls of the server make.
export function rawProject(name, edit) {
    const text = path.join(folder, `${name}.ncxt`);
    const project = path.join(folder, `${name}.ncxp`);
    fs.writeFileSync(text, '[GeneralSettings]\nco_timer_interval=1000\nline0type=4\n[Nodes]\n0\\name=can0\n');
    answer(program, 'convert', text, project, '--force');
    const calls = fs.readFileSync(path.join(top, 'tests/data/ncx/files/raw.calls'), 'utf8').replaceAll('raw.ncxp', `${name}.ncxp`);
    execFileSync(path.join(path.dirname(program), 'ncx_cli_can'), ['--mcp'], {
        cwd: folder, env: { ...process.env, HOME: folder }, input: edit(calls) });
    return project;
}

/// What a page has against levels A and AA of WCAG.
export async function violationsOf(tab) {
    if (await tab.evaluate(() => typeof axe === 'undefined'))
        await tab.evaluate(axe);
    const { violations } = await tab.evaluate(() => axe.run({
        runOnly: ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa'] }));
    return violations.map(({ id, nodes }) => [id, nodes.map(node => node.html)]);
}

/// The page of what an edit changes.
export function changesPage(project, changed, edit) {
    fs.writeFileSync(changed, edit(fs.readFileSync(project, 'utf8')));
    const file = path.join(folder, 'changes.html');
    answer(program, 'diff', project, changed, '--html', file, '--force');
    return file;
}
