// The bytes of every mode, format, texture path, size and strength are those of the native library.
import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import test from 'node:test';

import { packFile, root } from './support.js';

const { Instance } = await import(`${root}web/package/instance.js`);

const file = await readFile(`${root}tests/reliability/digests.txt`, 'utf8');
const expected = file.split('\n').filter((line) => line !== '' && !line.startsWith('#'));

for (const onCaller of [0, 1]) {
  test(`digests ${onCaller ? 'in one piece' : 'in four stripes'}`, async () => {
    const module = await readFile(`${root}build/wasm/web/tests/digests.wasm`);
    const instance = await Instance.create(await WebAssembly.compile(module));
    instance.usePack(await readFile(packFile));
    const table = instance.text(instance.call('lumora_digests', onCaller)).trimEnd().split('\n');
    assert.ok(expected.length > 100);
    assert.deepEqual(table, expected);
  });
}
