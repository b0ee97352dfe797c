// Looks at the pages of all examples, and at one whose texts try to break out of it.
// usage: node look.mjs PROGRAM

import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';

import { answer, folder, open, top, writePage } from './browser.mjs';
import { changes } from './changes.mjs';
import { browser, evil, example, faulty, hash, program, rawProject, texts, violationsOf } from './kit.mjs';

async function go(tab, address) {
    await tab.evaluate(to => { history.replaceState(null, '', '#' + to); go(); }, address);
}

/// Visits each part of a device: every link leads somewhere, and each field of a frame is drawn and listed.
function visitAll() {
    const faults = [];
    const check = (address, node) => {
        if (node)
            main.replaceChildren(...[partView(node)].flat(Infinity).filter(Boolean));
        else
            history.replaceState(null, '', '#' + address), go();
        if (node && partOf(address) !== node)
            faults.push(`${address} leads elsewhere`);
        if (document.querySelector('.unknown'))
            faults.push(`${address} leads nowhere`);
        for (const card of document.querySelectorAll('.card'))
            card.fill?.();
        for (const link of document.querySelectorAll('#main a[href^="#"], #tabs a')) {
            const to = decodeURIComponent(link.getAttribute('href').slice(1));
            if (!partOf(to) && !/^(\d+\/)?(overview|frames|bus)$/.test(to) && !(to in wholeViews))
                faults.push(`${address}: ${to} leads nowhere`);
        }
        if (!document.querySelector('#main h2')?.textContent.trim())
            faults.push(`${address} is empty`);
    };
    let parts = 0;
    for (const view of [...Object.keys(wholeViews), ...models.flatMap(model => Object.keys(views).map(id => model.href(id).slice(1)))])
        check(view);
    for (const model of models) {
        for (const node of new Set(model.nodes.values())) {
            if (node.kind === 'area')
                continue;
            check(model.href(node.id).slice(1), node);
            ++parts;
            const frame = node.data.frame;
            const drawn = document.querySelectorAll('svg.frame .field').length;
            if (frame && frame.bits <= 512 && drawn !== frame.fields.filter(field => field.address).length)
                faults.push(`${node.id}: ${drawn} fields are drawn`);
            if (frame && document.querySelectorAll('table.fields tbody tr').length !== frame.fields.length)
                faults.push(`${node.id}: not all fields are listed`);
        }
    }
    return { parts, faults };
}

const cases = {
    async 'The page of each example holds what the commands tell, and all of its links lead somewhere'() {
        const projects = fs.readdirSync(path.join(top, 'examples'))
            .filter(name => fs.existsSync(path.join(top, 'examples', name, 'expected'))).map(example);
        for (const project of [...projects, faulty]) {
            const file = writePage(program, project, 'example.html');
            const tab = await open(browser, file);
            const data = await tab.evaluate(() => JSON.parse(document.getElementById('data').textContent));
            assert.deepEqual(data.device, JSON.parse(answer(program, 'show', '--json', project)), project);
            assert.deepEqual(data.check, JSON.parse(answer(program, 'check', '--json', project)).projects[0], project);
            assert.ok(fs.statSync(file).size - JSON.stringify(data).length < 300000);
            const { parts, faults } = await tab.evaluate(visitAll);
            assert.deepEqual(faults, [], project);
            assert.ok(parts > 3, project);
            assert.deepEqual(tab.faults, [], project);
            await tab.close();
        }
    },

    async 'A search answers as one types, by index, name, value and variable, and filters narrow it'() {
        const tab = await open(browser, writePage(program, example('drive'), 'drive.html'));
        await tab.keyboard.press('/');
        const found = async words => {
            await tab.fill('#query', words);
            return texts(tab, '#tree .level2 code, #tree .level3 code');
        };
        assert.deepEqual(await found('0x1018:1'), ['0x1018', ':1']);
        assert.ok((await found('6040')).includes('0x1600')); // the value of its mapping
        assert.ok((await found('controlword')).includes('0x6040'));
        const variable = await tab.evaluate(() => [...sharedVariables.keys()][0]);
        assert.ok((await found(variable)).length > 0);
        assert.deepEqual(await found('no such thing'), []);
        assert.equal(await tab.textContent('#hits'), 'Nothing fits.');
        await tab.fill('#query', '');
        await tab.click('#filters summary');
        await tab.selectOption('[name=mapping]', 'mapped now');
        const mapped = await texts(tab, '#tree .level2 code');
        const expected = await tab.evaluate(() => [...models[0].mappedIn.keys()].map(address => address.split(':')[0]));
        assert.deepEqual([...new Set(mapped)].sort(), [...new Set(expected)].sort());
        await tab.selectOption('[name=mapping]', '');
        await tab.selectOption('[name=access]', 'const');
        assert.deepEqual(await tab.evaluate(() => tree.rows.filter(row => row.level > 1 && row.node.kids.length === 0)
            .map(row => factsOf(row.node).access).filter(access => access !== 'const')), []);
        assert.deepEqual(tab.faults, []);
        await tab.close();
    },

    async 'A search tells of other lines and goes on there'() {
        const tab = await open(browser, writePage(program, example('gateway'), 'gateway.html'));
        assert.ok((await texts(tab, 'main td')).includes('0x610 → 0x590')); // the predefined SDO of node 16
        await tab.keyboard.press('/');
        await tab.keyboard.type('speed');
        assert.equal(await tab.textContent('#hits'), '2 fit. 1 on engine');
        await tab.click('#hits a');
        await tab.waitForFunction(() => current.title === 'engine');
        assert.equal(await tab.inputValue('#query'), 'speed');
        assert.deepEqual(await texts(tab, '#tree .level2 .name'), ['Cruise Control and Vehicle Speed']);
        assert.deepEqual(tab.faults, []);
        await tab.close();
    },

    async 'What is changed from its default is found, and a group in both directions has two addresses'() {
        const project = path.join(folder, 'changed.ncxt');
        const base = fs.readFileSync(example('co_j1939'), 'utf8');
        fs.writeFileSync(project, base.replace('[SubObjects0]\n', '[SubObjects0]\n0x1017\\0\\currentvalue=500\n' +
            '0x1018\\1\\currentvalue=0x319\n'));
        const tab = await open(browser, writePage(program, project, 'changed.html'));
        await tab.click('#filters summary');
        await tab.check('[name=changed]');
        assert.deepEqual(await texts(tab, '#tree .level2 code, #tree .level3 code'), ['0x1017']);
        await go(tab, '0x1017');
        assert.match(await tab.textContent('main table'), /Current.*1000.*500/);
        const addresses = await tab.evaluate(() => {
            const pgn = number => ({ pgn: number, spns: [], frame: { bits: 0, fields: [] } });
            const line = new LineModel({ line: 0, pgns: [{ ...pgn(1), direction: 'receive' }, { ...pgn(2), direction: 'receive' },
                { ...pgn(1), direction: 'transmit' }] }, {});
            return line.roots[0].kids.map(node => node.id);
        });
        assert.deepEqual(addresses, ['pgn1-receive', 'pgn2', 'pgn1-transmit']);
        await tab.close();
    },

    async 'Keys lead from the search through the index to a part'() {
        const tab = await open(browser, writePage(program, example('drive'), 'drive.html'));
        await tab.keyboard.press('/');
        await tab.keyboard.type('1018');
        await tab.keyboard.press('Enter');
        assert.equal(await hash(tab), '#0x1018');
        await tab.keyboard.press('/');
        await tab.keyboard.press('Escape');
        await tab.keyboard.press('ArrowDown');
        await tab.keyboard.press('Home');
        await tab.keyboard.press('ArrowDown');
        await tab.keyboard.press('Enter');
        assert.equal(await hash(tab), '#0x1000');
        await tab.waitForSelector('h2:has-text("0x1000 Device type")'); // links are followed in their own time
        await tab.evaluate(() => { tree.goTo(tree.rows.findIndex(row => row.node.id === '0x1018')); });
        await tab.keyboard.press('ArrowRight');
        await tab.keyboard.press('ArrowRight');
        await tab.keyboard.press('ArrowDown');
        await tab.keyboard.press('Enter');
        assert.equal(await hash(tab), '#0x1018:1');
        await tab.waitForSelector('tr.chosen:has-text("Vendor")');
        const selected = '[role=treeitem][aria-selected=true]';
        assert.equal(await tab.getAttribute(selected, 'id'), await tab.getAttribute('#tree', 'aria-activedescendant'));
        await tab.keyboard.press('ArrowLeft');
        await tab.keyboard.press('ArrowLeft');
        assert.equal(await tab.evaluate(() => tree.rows.some(row => row.node.id === '0x1018:1')), false);
        await tab.close();
    },

    async 'Addresses name parts of every line'() {
        const tab = await open(browser, writePage(program, example('gateway'), 'gateway.html'), '#0x1a00:1');
        assert.match(await tab.textContent('tr.chosen'), /0x2000:0 Vehicle speed/);
        assert.match(await tab.textContent('svg.frame .field title'), /0x2000:0 Vehicle speed: start 0\.0 \(bit 0\), 16 bits/);
        await tab.click('tr.chosen a[href="#0x2000"], tr.chosen a[href="#0x2000:0"]');
        await tab.waitForSelector('h2:has-text("0x2000")');
        await tab.click('main a:has-text("SPN 84")');
        assert.equal(await hash(tab), '#1/pgn65265:84');
        await tab.waitForSelector('h2:has-text("PGN 65265")');
        assert.match(await tab.textContent('svg.frame .field title'), /start 2\.1 \(bit 8\), 16 bits/);
        await go(tab, 'spn84');
        assert.match(await tab.textContent('h2'), /PGN 65265/);
        await go(tab, '0x4711');
        assert.match(await tab.textContent('.unknown'), /no 0x4711/);
        await tab.hover('#tabs'); // away from the drawing
        await go(tab, '0x1a00');
        await tab.hover('svg.frame .field');
        assert.equal(await tab.locator('tr.hot').count(), 1);
        await tab.close();
    },

    async 'Raw CAN messages are drawn with the bits counted from 0'() {
        const project = rawProject('raw', calls => calls);
        const tab = await open(browser, writePage(program, project, 'raw.html'), '#can0x18f');
        assert.deepEqual(await texts(tab, 'svg.frame .field title'),
                         ['#1 Speed: start 0.0 (bit 0), 16 bits', '#2 Brake: start 2.2 (bit 18), 3 bits']);
        assert.deepEqual((await tab.evaluate(visitAll)).faults, []);
        assert.equal(await tab.evaluate(() => cyclicMessages(models[0])[0].most), 47 + 24 + 14);
        assert.deepEqual(tab.faults, []);
        await tab.close();
    },

    async 'The bus load is what the formula says'() {
        const tab = await open(browser, writePage(program, example('gateway'), 'gateway.html'), '#bus');
        // A heartbeat in a second: 47 + 8 bits, with at most (34 + 8 - 1) / 4 = 10 stuff bits.
        assert.deepEqual(await texts(tab, '[aria-label="Bus load"] tbody tr:first-child td'),
                         ['125 kbit/s', '0.04 % to 0.05 %', '0.04 % to 0.05 %']);
        await go(tab, '1/bus');
        // 16 and 24 bits of data in frames of 67 + 8n bits, the first once and the second ten times a second.
        assert.deepEqual(await texts(tab, '[aria-label="Bus load"] tbody tr:first-child td'),
                         ['250 kbit/s', '0.03 % to 0.04 %', '0.40 % to 0.48 %']);
        assert.equal(await tab.evaluate(() => JSON.stringify([frameBits(8, false), frameBits(8, true)])),
                     '[{"least":111,"most":135},{"least":131,"most":160}]');
        await tab.close();
    },

    async 'Findings stand beside their objects, and in a list that leads to them'() {
        const tab = await open(browser, writePage(program, faulty, 'faulty.html'),
                               '#findings');
        assert.equal(await tab.locator('.findings li').count(), 7);
        await tab.click('.findings a:has-text("0x1018:1")');
        assert.match(await tab.textContent('tr.chosen .findings'), /vendor-ID/);
        await tab.click('#filters summary');
        await tab.check('[name=findings]');
        const found = await texts(tab, '#tree .level2 code');
        assert.deepEqual(found, ['0x1018', '0x1a00', '0x2000']);
        assert.equal(await tab.locator('#tree .level2 .mark.error').count(), 3);
        await tab.close();
    },

    async 'Settings stand with their defaults and what they mean, on their lines'() {
        const tab = await open(browser, writePage(program, example('gateway'), 'gateway.html'), '#settings');
        const row = async key => (await texts(tab, `main tr:has(code:text-is("${key}")) td`)).slice(1);
        assert.deepEqual((await row('co_node_id')).slice(0, 3), ['machine', '16', 'not set']);
        assert.deepEqual((await row('startaddress')).slice(0, 3), ['engine', '50', 'not set']);
        assert.deepEqual((await row('VendorName')).slice(0, 3), ['machine', 'norvane', 'not set']);
        assert.match((await row('co_timer_interval')).join(), /1000,not set,Interval of the timer that drives the stack/);
        assert.match((await row('rxindication_cnt')).join(), /^engine,1,not set,numbers of functions/);
        assert.deepEqual(await row('OrderCode'), []);
        await tab.close();
    },

    async 'No text of a project breaks out of its place'() {
        let text = fs.readFileSync(example('j1939_sensor'), 'utf8').replace(/\\name=.*/g, '\\name=${NAME}')
            .replace(/^\[DescriptionSettings\]$/m, '[DescriptionSettings]\nProductName=${NAME}');
        let next = 0;
        text = text.replace(/\$\{NAME\}/g, () => `"${evil[next++ % evil.length].replace(/["\\]/g, '\\$&')}"`);
        const project = path.join(folder, 'evil.ncxt');
        fs.writeFileSync(project, text);
        const tab = await open(browser, writePage(program, project, 'evil.html'));
        const { faults } = await tab.evaluate(visitAll);
        assert.deepEqual(faults, []);
        await tab.evaluate(() => document.getElementById('paper').replaceChildren(...printed(wantedNodes).flat(Infinity)));
        assert.equal(await tab.evaluate(() => document.pwned), undefined);
        assert.equal(await tab.locator('img').count(), 0);
        const page = await tab.textContent('#paper');
        for (const name of evil.slice(0, 4))
            assert.ok(page.includes(name), name);
        assert.deepEqual(tab.faults, []);
        answer(program, 'show', project, '65110', '--svg', path.join(folder, 'evil.svg'));
        const picture = await open(browser, path.join(folder, 'evil.svg'));
        assert.equal(await picture.evaluate(() => document.querySelector('parsererror, script, img')), null);
        assert.ok((await picture.evaluate(() => document.documentElement.textContent)).includes('<img src=x onerror='));
        await tab.close();
    },

    async 'On paper everything is there, and links lead on'() {
        for (const name of ['gateway', 'drive']) {
            const tab = await open(browser, writePage(program, example(name), `${name}.html`), '#frames');
            await tab.emulateMedia({ media: 'print', colorScheme: 'dark' });
            await tab.evaluate(() => window.dispatchEvent(new Event('beforeprint')));
            const lost = await tab.evaluate(() => [...document.querySelectorAll('#paper a')].map(
                link => decodeURIComponent(link.getAttribute('href').slice(1))).filter(id => !document.getElementById(id)));
            assert.deepEqual(lost, []);
            const ids = await tab.evaluate(() => [...document.querySelectorAll('#paper [id]')].map(element => element.id));
            assert.equal(new Set(ids).size, ids.length);
            assert.ok(await tab.evaluate(() => lines.every((line, i) => (line.objects ?? []).every(
                object => document.getElementById((i > 0 ? `${i}/` : '') + object.index)))));
            assert.equal(await tab.evaluate(() => getComputedStyle(document.body).color), 'rgb(27, 32, 38)');
            await tab.evaluate(() => window.dispatchEvent(new Event('afterprint')));
            assert.equal(await tab.locator('#paper *').count(), 0);
            const pdf = (await tab.pdf({ format: 'A4' })).toString('latin1');
            assert.ok(pdf.startsWith('%PDF') && /\/Dest\b/.test(pdf), 'links in the PDF');
            await tab.close();
        }
    },

    async 'Both themes, and narrow windows'() {
        const tab = await open(browser, writePage(program, example('gateway'), 'gateway.html'), '#0x1a00', { colorScheme: 'dark' });
        const ground = () => tab.evaluate(() => getComputedStyle(document.documentElement).backgroundColor);
        assert.equal(await ground(), 'rgb(20, 24, 28)');
        await tab.selectOption('#theme', 'light');
        assert.equal(await ground(), 'rgb(255, 255, 255)');
        await tab.reload();
        assert.equal(await ground(), 'rgb(255, 255, 255)');
        await tab.selectOption('#theme', '');
        await tab.setViewportSize({ width: 390, height: 800 });
        for (const address of ['overview', 'frames', 'bus', '0x1018:1', '1/pgn65281', 'findings', 'settings']) {
            await go(tab, address);
            assert.equal(await tab.evaluate(() => document.documentElement.scrollWidth), 390, address);
        }
        await go(tab, 'overview');
        assert.equal(await tab.isVisible('#tree'), false);
        await tab.click('.to-index');
        await tab.fill('#query', 'vendor');
        await tab.click('#tree .level3');
        assert.equal(await hash(tab), '#0x1018:1');
        assert.equal(await tab.isVisible('#tree'), false);
        await tab.close();
    },

    async 'Everybody can use it: no findings of WCAG, levels A and AA'() {
        for (const colorScheme of ['light', 'dark']) {
            const tab = await open(browser, writePage(program, faulty, 'faulty.html'), '', { colorScheme });
            for (const address of ['overview', 'bus', '0x1018:1', 'findings', 'settings', 'frames']) {
                await go(tab, address);
                assert.deepEqual(await violationsOf(tab), [], `${address}, ${colorScheme}`);
            }
            await tab.close();
        }
    },
};

let failed = 0;
const wanted = process.argv[3] ?? '';
for (const [name, look] of Object.entries({ ...cases, ...changes })) {
    if (!name.includes(wanted))
        continue;
    const started = Date.now();
    try {
        await look();
        console.log(`ok    ${name} (${Date.now() - started} ms)`);
    } catch (error) {
        ++failed;
        console.log(`FAIL  ${name}\n${error.stack}`);
    }
}
await browser.close();
process.exit(failed > 0 ? 1 : 0);
