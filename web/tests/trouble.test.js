// What goes wrong is an Error with a plain message, changes no picture, and leaves the package usable.
import assert from 'node:assert/strict';
import { createReadStream } from 'node:fs';
import { readFile } from 'node:fs/promises';
import { createServer } from 'node:http';
import test from 'node:test';
import { gzipSync } from 'node:zlib';

import { packageDir, packFile, testPicture } from './support.js';

const { createLumora } = await import(`${packageDir}/node.js`);
const { createLumora: createRemote } = await import(`${packageDir}/worker-node.js`);
const lumora = await createLumora();

const size = { width: 96, height: 90 };
const filled = (bytes) => new Uint8ClampedArray(bytes);

const refused = [
  ['an unknown look', { look: 'fuguu' }, /there is no look 'fuguu'; looks: moran, rixi/],
  ['no look', {}, /no look is named/],
  ['a strength above 32', { look: 'fugu', strength: 33 }, /33 is outside 0\.\.32 of strength/],
  ['a strength that is no number', { look: 'fugu', strength: 'full' }, /strength takes a whole number/],
  ['a setting of another look', { look: 'fugu', rect: [0, 0, 8, 8] }, /rect belongs to the look mosaic/],
  ['an unknown setting', { look: 'fugu', warmth: 2 }, /there is no setting 'warmth'; fugu has: strength/],
  ['too few numbers', { look: 'mosaic', rect: [0, 0, 8] }, /rect takes 4 whole numbers \(X,Y,W,H\)/],
  ['odd numbers', { look: 'mosaic', rect: [1, 0, 8, 8] }, /odd or below 0/],
  ['a rectangle outside', { look: 'mosaic', rect: [80, 0, 40, 40] }, /reaches beyond the picture/],
  ['no colour', { look: 'colour-fix' }, /needs the colour to keep/],
  ['a colour that is none', { look: 'colour-fix', colour: 'red' }, /not of the form '#rrggbb'/],
  ['a mask that is none', { look: 'colour-fix', pick: [1, 1], mask: { data: filled(3), width: 2, height: 2 } },
    /mask takes/],
  ['a point outside', { look: 'colour-fix', pick: [96, 0] }, /outside the picture of 96 x 90/],
  ['radii the wrong way round', { look: 'blur', radius: [9, 3] }, /INNER <= OUTER/],
];

for (const [name, settings, message] of refused) {
  test(`refuses ${name}`, async () => {
    const picture = testPicture(size.width, size.height);
    const before = picture.data.slice();
    await assert.rejects(lumora.apply(picture, settings), message);
    assert.deepEqual(picture.data, before);
  });
}

const pictures = [
  ['50 x 50', { width: 50, height: 50, data: filled(10000) }, /is 50 x 50 pixels; looks need 88 to 20000/],
  ['20001 wide', { width: 20001, height: 88, data: filled(4 * 20001 * 88) }, /is 20001 x 88 pixels/],
  ['0 x 0', { width: 0, height: 0, data: filled(0) }, /is 0 x 0 pixels/],
  ['of the wrong length', { ...size, data: filled(100) }, /96 x 90 pixels has 100 bytes, not 34560/],
  ['without pixels', { ...size }, /a picture is a Uint8Array/],
  ['with fractions of pixels', { width: 96.5, height: 90, data: filled(34740) }, /whole numbers/],
  ['that is none', undefined, /whole numbers|a picture is/],
];

for (const [name, picture, message] of pictures) {
  test(`refuses a picture ${name}`, () =>
    assert.rejects(lumora.apply(picture, { look: 'heibai' }), message));
}

test('refuses a detached buffer', async () => {
  const picture = testPicture(96, 90);
  structuredClone(picture.data.buffer, { transfer: [picture.data.buffer] });
  await assert.rejects(lumora.apply(picture, { look: 'heibai' }), /detached or empty/);
});

test('refuses formats that a look or a size has not', async () => {
  const of = (options) => lumora.session({ ...size, ...options });
  await assert.rejects(of({ look: 'fugu', format: 'i420' }), /no format 'i420'; formats: rgba/);
  await assert.rejects(of({ look: 'colour-fix', format: 'nv12' }), /exists for rgba frames only/);
  await assert.rejects(of({ look: 'fugu', format: 'nv21', width: 97 }), /even sides, not 97 x 90/);
});

test('a session keeps its settings when new ones are refused, and ends once freed', async () => {
  const session = await lumora.session({ look: 'mosaic', ...size, rect: [0, 0, 40, 40], block: 8 });
  const before = testPicture(96, 90);
  const after = testPicture(96, 90);
  session.process(before.data);
  assert.throws(() => session.set({ block: 12, rect: [1, 1, 9, 9] }), /odd/);
  session.process(after.data);
  assert.deepEqual(after.data, before.data);
  assert.throws(() => session.process(filled(7)), /has 7 bytes/);
  session.free();
  session.free();
  assert.throws(() => session.process(before.data), /has been freed/);
  assert.throws(() => session.set({}), /has been freed/);
});

const pack = await readFile(packFile);
const packs = [
  ['missing', new URL('file:///nowhere/textures.pack'), /textures could not be loaded: .*nowhere/],
  ['truncated', gzipSync(pack.subarray(0, 5e6), { level: 1 }), /textures could not be loaded: .*size/],
  ['cut short on the way', gzipSync(pack, { level: 1 }).subarray(0, 1e5), /could not be loaded/],
  ['not a pack', Buffer.alloc(pack.length, 5), /textures could not be loaded: .*file error/],
  ['a page instead', Buffer.from('<!doctype html><p>Not found'), /could not be loaded: .*size/],
];
for (const [name, textures, message] of packs) {
  test(`a pack that is ${name} leaves the looks without textures`, async () => {
    const limited = await createLumora({ textures });
    const picture = testPicture(96, 90);
    const before = picture.data.slice();
    await assert.rejects(limited.apply(picture, { look: 'earlybird' }), message);
    assert.deepEqual(picture.data, before);
    await assert.rejects(limited.session({ ...size, look: 'earlybird' }), message);
    await limited.apply(picture, { look: 'fugu' });
    assert.notDeepEqual(picture.data, before);
  });
}

test('textures are fetched once, by the first look that needs them', async () => {
  let reads = 0;
  const server = createServer((request, response) => {
    ++reads;
    response.writeHead(200, { 'content-encoding': 'gzip' });
    createReadStream(`${packageDir}/textures.pack`).pipe(response);
  });
  await new Promise((resolve) => server.listen(0, '127.0.0.1', resolve));
  const textures = `http://127.0.0.1:${server.address().port}/textures.pack`;
  const lazy = await createLumora({ textures });
  await lazy.apply(testPicture(96, 90), { look: 'fugu' });
  assert.equal(reads, 0);
  await Promise.all([
    lazy.apply(testPicture(96, 90), { look: 'lofi' }),
    lazy.apply(testPicture(96, 90), { look: 'hudson' }),
  ]);
  await lazy.apply(testPicture(96, 90), { look: 'yunduan' });
  assert.equal(reads, 1);
  server.closeAllConnections?.();
  server.close();
});

test('ten thousand calls take no more memory', async () => {
  const own = await createLumora();
  await own.loadTextures();
  const { data } = testPicture(160, 120);
  const round = async (i) => {
    const { name } = own.looks[i % own.looks.length];
    const required = name === 'colour-fix' ? { pick: [9, 9] } : {};
    await own.apply({ data, width: 160, height: 120 }, { look: name, strength: i % 33, ...required });
    if (i % 10 > 0) return;
    const session = await own.session({ look: name, width: 160, height: 120, ...required });
    session.process(data);
    session.free();
  };
  for (let i = 0; i < 400; ++i) await round(i);
  const taken = own.memoryBytes;
  for (let i = 0; i < 10000; ++i) await round(i);
  assert.equal(own.memoryBytes, taken);
});

test('a picture too large for the memory is an Error, and smaller ones still work', async () => {
  const own = await createLumora();
  const vast = { width: 20000, height: 20000 };
  const kept = await own.session({ look: 'fugu', ...vast });
  await assert.rejects(own.session({ look: 'earlybird', ...vast }), /not enough memory/);
  const second = await own.session({ look: 'fugu', ...vast });
  await assert.rejects(own.session({ look: 'fugu', ...vast }), /not enough memory for a picture of 20000/);
  kept.free();
  second.free();
  await own.apply(testPicture(96, 90), { look: 'earlybird' });
});

test('a worker does the same, and takes and gives buffers', async () => {
  const remote = await createRemote();
  assert.deepEqual(remote.looks, JSON.parse(JSON.stringify(lumora.looks)));
  const here = testPicture(200, 150);
  const there = testPicture(200, 150);
  await lumora.apply(here, { look: 'xpro2', strength: 9 });
  const back = await remote.apply(there, { look: 'xpro2', strength: 9 });
  assert.equal(there.data.length, 0);
  assert.deepEqual(back.data, here.data);

  const session = await remote.session({ look: 'blur', width: 200, height: 150, radius: [5, 50] });
  await assert.rejects(session.set({ radius: [50, 5] }), /INNER <= OUTER/);
  await assert.rejects(session.process(filled(8)), /has 8 bytes/);
  const partOfMore = new Uint8Array(4 * 200 * 150 + 8).subarray(4, -4);
  assert.equal((await session.process(partOfMore)).length, 120000);
  assert.equal(partOfMore.length, 120000);
  await session.free();
  await assert.rejects(session.process(filled(120000)), /has been freed/);
  await assert.rejects(remote.apply(testPicture(20, 20), { look: 'fugu' }), /is 20 x 20 pixels/);

  const pending = remote.apply(testPicture(2000, 2000), { look: 'meishimenghuan' });
  const settled = assert.rejects(pending, /has been closed/);
  await remote.close();
  await settled;
  await assert.rejects(remote.loadTextures(), /has been closed/);
});

test('a worker whose module is missing says so', () =>
  assert.rejects(createRemote({ wasm: 'file:///nowhere/lumora.wasm' }), /nowhere/));
