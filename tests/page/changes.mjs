// Looks at the pages of what differs between two devices.

import assert from 'node:assert/strict';
import path from 'node:path';

import { answer, folder, open } from './browser.mjs';
import { browser, changesPage, evil, example, program, rawProject, texts, violationsOf } from './kit.mjs';

export const changes = {
    async 'What differs is told by groups, with the frames of both sides, and can be narrowed to what breaks'() {
        const changed = path.join(folder, 'changed.ncxt');
        const page = changesPage(example('gateway'), changed, text => text.replace(/^0x1a00.1.defaultvalue=.*/m, '0x1a00\\1\\defaultvalue=0x20000020')
            .replace(/^(0x2000(.0)?.datatype=)6/gm, '$17').replace(/^0x1014.*\n/gm, '').replace(/^(65281.520301.bitposition=)8/m, '$116')
            .replace(/^65265.cycletime_ms=.*/m, '65265\\cycletime_ms=50').replace(/^co_timer_interval=.*/m, 'co_timer_interval=500')
            .replace(/^0.name=.*/m, '0\\name=plant'));
        const tab = await open(browser, page);
        const { diff, lines } = await tab.evaluate(() => JSON.parse(document.getElementById('data').textContent));
        assert.deepEqual(diff, JSON.parse(answer(program, 'diff', '--json', example('gateway'), changed)));
        for (const [label, project] of [['old', example('gateway')], ['new', changed]]) {
            const device = JSON.parse(answer(program, 'show', '--json', project));
            assert.deepEqual(lines[0][label].device.pdos, device.lines[0].pdos);
            assert.deepEqual(lines[1][label].device.pgns, device.lines[1].pgns);
        }
        assert.deepEqual(await texts(tab, '#groups a'), ['Lines 1', 'Objects 2', 'PDOs 1', 'PGNs 3', 'Settings 1']);
        assert.equal(await tab.locator('.change').count(), diff.changes.length);
        assert.deepEqual(await texts(tab, '[id="0x2000:0.data-type"] td'), ['breaking', '0x2000:0 Vehicle speed', 'data type', 'UNSIGNED16', 'UNSIGNED32', '#']);
        const rows = id => tab.$$eval(`[id="${id}"] .sides > section`, list => list.map(side => side.querySelectorAll('svg.frame .byte').length));
        assert.deepEqual([await rows('tpdo1'), await rows('1/pgn65281')], [[2, 4], [2, 3]]);
        assert.deepEqual(await texts(tab, '[id="1/pgn65281"] tr.differs td:nth-child(2)'), ['2.1', '3.1']);
        await tab.focus('#breaking');
        await tab.keyboard.press('Space');
        const isBreaking = list => list.filter(change => change.breaking).length;
        assert.equal(await tab.locator('.change:visible').count(), isBreaking(diff.changes));
        assert.deepEqual(await texts(tab, '#groups a:visible'), ['Objects 2', 'PDOs 1', 'PGNs 3']);
        assert.equal(await tab.isVisible('[id="1/pgn65265"]'), false);
        assert.equal(await tab.textContent('#shown'), `${diff.breaking} of ${diff.changes.length} are shown.`);
        await tab.evaluate(() => { location.hash = '1/pgn65265'; }); // what an address names is shown
        await tab.waitForSelector('[id="1/pgn65265"].chosen:visible');
        const search = async (text, ...keys) => {
            await tab.evaluate(() => document.activeElement.blur());
            await tab.keyboard.press('/');
            await tab.keyboard.type(text);
            for (const key of keys)
                await tab.keyboard.press(key);
            const shown = await texts(tab, '#sections > section:not([hidden]) .card:not([hidden]) .change:not([hidden]) td:nth-child(2)');
            return [await tab.textContent('#shown'), shown];
        };
        assert.deepEqual(await search('vehicle UNSIGNED32'), [`1 of ${diff.changes.length} are shown.`, ['0x2000:0 Vehicle speed']]);
        assert.deepEqual(await texts(tab, '#groups a:visible'), ['Objects 2']);
        assert.deepEqual(await search('1a00', 'Enter'), [`1 of ${diff.changes.length} are shown.`, ['0x1a00:1 Mapped object']]);
        assert.equal(await tab.evaluate(() => location.hash), '#0x1a00:1.mapping');
        assert.deepEqual(await search('no such thing'), [`0 of ${diff.changes.length} are shown.`, []]);
        await tab.keyboard.press('Escape');
        assert.equal(await tab.locator('.change:visible').count(), diff.changes.length);
        const lost = await tab.$$eval('#main a, #groups a', list => list.map(link => decodeURIComponent(link.hash.slice(1)))
            .filter(id => !document.getElementById(id)));
        assert.deepEqual(lost, []);
        const ids = await tab.$$eval('[id]', list => list.map(element => element.id));
        assert.equal(new Set(ids).size, ids.length);
        assert.deepEqual(await tab.evaluate(() => [partOf('0x1a00').id, partOf('1/pgn65281:520301').id]),
                         ['0x1a00:1.mapping', '1/pgn65281:520301.first-bit']);
        assert.ok((await tab.pdf({ format: 'A4' })).toString('latin1').startsWith('%PDF'));
        await tab.setViewportSize({ width: 390, height: 800 });
        assert.equal(await tab.evaluate(() => document.documentElement.scrollWidth), 390);
        assert.deepEqual(tab.faults, []);
        await tab.close();
    },

    async 'Raw messages that have changed stand with both of their frames, and one that is gone with its old one'() {
        const file = path.join(folder, 'changes.html');
        const compare = async (from, to) => {
            answer(program, 'diff', from, to, '--html', file, '--force');
            const tab = await open(browser, file, '#can0x18f');
            const told = await tab.$$eval('.chosen .sides > section', list => list.map(
                side => [...side.querySelectorAll('svg.frame .field title, :scope > p')].map(part => part.textContent)));
            assert.deepEqual(tab.faults, []);
            await tab.close();
            return told;
        };
        const old = rawProject('raw', calls => calls);
        const frame = ['#1 Speed: start 0.0 (bit 0), 16 bits', '#2 Brake: start 2.2 (bit 18), 3 bits'];
        assert.deepEqual(await compare(old, rawProject('moved', calls => calls.replace('"bitPosition":18', '"bitPosition":20'))),
                         [frame, [frame[0], '#2 Brake: start 2.4 (bit 20), 3 bits']]);
        assert.deepEqual(await compare(old, rawProject('gone', calls => calls.replace('"canId":399', '"canId":400'))), [frame, ['Not there.']]);
    },

    async 'Everybody can use the changes, and no text breaks out of them'() {
        const changed = path.join(folder, 'changed.ncxt');
        let next = 0;
        const page = changesPage(example('j1939_sensor'), changed, text => text.replace(/\\(name|cycletime_ms)=.*/g,
            (all, key) => key === 'name' ? `\\name="${evil[next++ % evil.length].replace(/["\\]/g, '\\$&')}"` : '\\cycletime_ms=77')
            .replace(/^\[DescriptionSettings\]$/m, `$&\nProductName="${evil[0]}"`).replace(/^startaddress=.*/m, 'startaddress=33'));
        for (const colorScheme of ['light', 'dark']) {
            const tab = await open(browser, page, '', { colorScheme });
            assert.ok(await tab.locator('svg.frame').count() > 2);
            assert.equal(await tab.evaluate(() => document.pwned), undefined);
            assert.equal(await tab.locator('img').count(), 0);
            const shown = await tab.textContent('#sections');
            for (const name of evil.slice(0, 4))
                assert.ok(shown.includes(name), name);
            assert.deepEqual(await violationsOf(tab), [], colorScheme);
            assert.deepEqual(tab.faults, []);
            await tab.close();
        }
    },
};
