// The extension's plain computation, by gjs alone: gjs -m tests/gnome/protocol_test.js
import System from 'system';

import * as Protocol from '../../platform/linux/gnome/extension/protocol.js';

let failed = 0;
function same(what, seen, wanted) {
    if (JSON.stringify(seen) === JSON.stringify(wanted))
        return;
    failed += 1;
    print(`${what}: ${JSON.stringify(seen)} instead of ${JSON.stringify(wanted)}`);
}

function isRefused(action) {
    try {
        action();
        return false;
    } catch (error) {
        return error instanceof Protocol.Refused;
    }
}

const text = string => new TextEncoder().encode(string);
const decode = message => Protocol.decode(text(JSON.stringify(message)));

const hold = {cover: true, keys: true, until: 5000, absence: 60, words: ['until six']};
const panel = {id: 1, at: [0, 0, 1920, 1080], black: true, level: 2, alpha: 1, fade: 0, curve: 0, pointer: false};
const frame = {serial: 1, pool: 1, offset: 0, width: 2, height: 3, stride: 12, panels: [1], at: [0, 0, 2, 3]};

const bytes = Protocol.encode({hold});
same('a length', Protocol.lengthOf(bytes.subarray(0, 4)), bytes.length - 4);
same('there and back', Protocol.decode(bytes.subarray(4)), {kind: 'hold', body: hold});
same('the last row of a frame has no gap', decode({frame}).body.size, 12 * 2 + 8);

for (const [what, bad] of [
    ['two kinds', {hold, panel}],
    ['no kind', {}],
    ['nothing', null],
    ['a name of every object', {constructor: {}}],
    ['an unknown kind', {unlock: {}}],
    ['a text for a number', {panel: {...panel, alpha: '1'}}],
    ['more than opaque', {panel: {...panel, alpha: 1.01}}],
    ['no number at all', {panel: {...panel, at: [0, 0, null, 1]}}],
    ['half a panel', {drop: {id: 1.5}}],
    ['a frame before its pool', {frame: {...frame, offset: -4}}],
    ['rows that overlap', {frame: {...frame, stride: 4}}],
    ['a frame that fills the memory', {frame: {...frame, height: 16384, stride: 65536}}],
    ['a lock without an end', {hold: {...hold, until: null}}],
    ['words that are none', {hold: {...hold, words: [1]}}],
])
    same(what, isRefused(() => decode(bad)), true);
same('no text', isRefused(() => Protocol.decode(new Uint8Array([0xff, 0xfe]))), true);
same('no JSON', isRefused(() => Protocol.decode(text('{"hold"'))), true);
same('no end of it', isRefused(() => Protocol.lengthOf(new Uint8Array([0, 0, 0, 1]))), true);

for (const [executable, holder, may] of [
    ['/opt/Dormel', null, true],
    ['/opt/Dormel (deleted)', null, false],
    ['/usr/bin/python3', null, false],
    ['/old/Dormel', '/old/Dormel', true],
    ['', null, false],
])
    same(`${executable} may talk`, Protocol.mayTalk(executable, '/opt/Dormel\n/opt/DormelWindow\n', holder), may);

for (const [now, absent, over] of [[4999, null, false], [5000, null, true], [0, 59.9, false], [0, 60, true]])
    same(`over at ${now}, ${absent} s alone`, Protocol.isOver(hold, now, absent), over);
same('a rehearsal has no end', Protocol.isOver({...hold, until: null}, 1e10, null), false);

const budget = new Protocol.Budget(2, 10);
same('a budget', [0, 1, 2, 10, 11].map(now => budget.spend(now)), [0, 0, 8, 0, 0]);

const kept = {hold, holder: '/opt/Dormel', settings: [{schema: 's', key: 'k', rests: "''", was: null}]};
same('kept', Protocol.readKept(JSON.stringify(kept)), kept);
for (const bad of ['', '{}', '[]', JSON.stringify({...kept, settings: [{}]}), JSON.stringify({...kept, hold: {}})])
    same(`kept as ${bad}`, Protocol.readKept(bad), null);

print(failed === 0 ? 'all of it holds' : `${failed} failed`);
System.exit(failed === 0 ? 0 : 1);
