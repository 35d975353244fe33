// The page in a real browser: its jobs end to end, and pixels compared with the tool's.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import test, { after, before } from 'node:test';

import {
  accessibilityFaults, choose, decoded, desktop, downloaded, openPhoto, phone, said, setStrength,
  useBrowser, videoSize,
} from './browser.js';
import { root, testPicture, tool } from './support.js';

const { encodePng } = await import(`${root}web/page/png.js`);

const browser = useBrowser();
let folder;
let photo; // a PNG file
const size = { width: 1800, height: 640 }; // of it; more than is shown

const fileOf = async (picture) => Buffer.from(await (await encodePng(picture)).arrayBuffer());
const makePng = (width, height) => fileOf(opaque(testPicture(width, height)));

function opaque(picture) {
  for (let i = 3; i < picture.data.length; i += 4) picture.data[i] = 255;
  return picture;
}

/** The tool's PNG of the photograph. */
function toolPicture(options) {
  const result = join(folder, 'tool.png');
  const settings = Object.entries(options).map(([name, value]) => `--${name}=${value}`);
  execFileSync(tool, ['apply', '--force', ...settings, join(folder, 'photo.png'), result]);
  return readFileSync(result);
}

async function expectTools(page, options) {
  const { name, bytes } = await downloaded(page);
  assert.equal(name, `photo_${options.look}.png`);
  assert.equal(await decoded(page, bytes), await decoded(page, toolPicture(options)), options.look);
}

const fieldsOf = (page, title) =>
  page.locator('fieldset.setting', { hasText: title }).locator('input').evaluateAll(
    (inputs) => inputs.map((input) => Number(input.value)),
  );

/** Drags between two places of the picture, in shares of its sides, with a finger where there is one. */
async function drag(page, from, to) {
  const box = await page.locator('#frame').boundingBox();
  const at = ([x, y]) => [box.x + x * box.width, box.y + y * box.height];
  if (await page.evaluate(() => navigator.maxTouchPoints > 0)) return dragFinger(page, at(from), at(to));
  await page.mouse.move(...at(from));
  await page.mouse.down();
  await page.mouse.move(...at(to), { steps: 5 });
  await page.mouse.up();
}

async function dragFinger(page, from, to) {
  const client = await page.context().newCDPSession(page);
  const touch = (type, ...places) =>
    client.send('Input.dispatchTouchEvent', { type, touchPoints: places.map(([x, y]) => ({ x, y })) });
  await touch('touchStart', from);
  for (const share of [0.25, 0.5, 0.75, 1]) {
    await touch('touchMove', from.map((start, i) => start + share * (to[i] - start)));
  }
  await touch('touchEnd');
}

before(async () => {
  folder = mkdtempSync(join(tmpdir(), 'lumora-page-'));
  photo = await makePng(size.width, size.height);
  writeFileSync(join(folder, 'photo.png'), photo);
});
after(() => rmSync(folder, { recursive: true, force: true }));

for (const viewport of [desktop, phone]) {
  test(`a photograph gets a look, a rectangle and a place on the disk, ${viewport.width} wide`, async (t) => {
    const page = await browser.open(t, { viewport, hasTouch: viewport === phone });
    const requests = [];
    page.on('request', (request) => requests.push(`${request.method()} ${request.url()}`));
    await openPhoto(page, 'photo.png', 'image/png', photo);
    await page.selectOption('#format', 'image/png');
    await choose(page, 'earlybird');
    await setStrength(page, 21);
    await expectTools(page, { look: 'earlybird', strength: 21 });

    await choose(page, 'mosaic');
    await drag(page, [0.12, 0.2], [0.6, 0.72]);
    const rect = await fieldsOf(page, 'Rectangle');
    const [block] = await fieldsOf(page, 'Block size');
    assert.ok(Math.abs(rect[0] - 0.12 * size.width) < 12 && Math.abs(rect[3] - 0.52 * size.height) < 12, `${rect}`);
    await expectTools(page, { look: 'mosaic', strength: 21, rect, block });
    assert.deepEqual(requests.filter((r) => !r.startsWith(`GET ${browser.url}`) && !r.startsWith('GET blob:')), []);
    assert.deepEqual(page.faults, []);
  });
}

test('every family of looks gives the tool\'s pixels, with the settings made on the picture', async (t) => {
  const page = await browser.open(t);
  await openPhoto(page, 'photo.png', 'image/png', photo);
  await page.selectOption('#format', 'image/png');
  for (const look of ['moran', 'fugu', 'xpro2', 'meishimenghuan']) {
    await choose(page, look);
    await expectTools(page, { look, strength: 16 });
  }
  await choose(page, 'colour-fix');
  await drag(page, [0.3, 0.4], [0.3, 0.4]);
  const colour = await page.inputValue('#setting-colour');
  await expectTools(page, { look: 'colour-fix', colour });

  await choose(page, 'blur');
  await page.getByRole('button', { name: 'Centre of the sharp circle' }).press('ArrowRight');
  await page.getByRole('button', { name: 'Edge of the sharp circle' }).press('Shift+ArrowLeft');
  const [centre, radius] = [await fieldsOf(page, 'Centre'), await fieldsOf(page, 'Radius')];
  assert.ok(centre[0] > size.width / 2 && radius[0] < size.height / 4, `${centre} ${radius}`);
  await expectTools(page, { look: 'blur', strength: 16, centre, radius });

  await choose(page, 'tilt-shift');
  await drag(page, [0.5, 0.4], [0.4, 0.15]);
  await page.locator('#setting-core').fill('5');
  const band = await fieldsOf(page, 'Sharp band');
  await expectTools(page, { look: 'tilt-shift', strength: 16, band, core: 5 });
  assert.deepEqual(page.faults, []);
});

/** A JPEG file with an EXIF that says: turn me by a quarter, made by Lumora. */
function turnedJpeg() {
  const exif = Buffer.alloc(8 + 2 + 2 * 12 + 4 + 8);
  exif.write('II*\0', 'latin1');
  exif.writeUInt32LE(8, 4);
  exif.writeUInt16LE(2, 8);
  const entry = (at, tag, type, count, value) => {
    exif.writeUInt16LE(tag, at);
    exif.writeUInt16LE(type, at + 2);
    exif.writeUInt32LE(count, at + 4);
    exif.writeUInt32LE(value, at + 8);
  };
  entry(10, 0x010f, 2, 7, 38);
  entry(22, 0x0112, 3, 1, 6);
  exif.write('Lumora\0', 38, 'latin1');
  const sample = join(folder, 'sample.jpg');
  execFileSync(tool, ['sample', '--force', '--size', '400x300', sample]);
  const jpeg = readFileSync(sample);
  const head = Buffer.from([0xff, 0xe1, 0, exif.length + 8]);
  return Buffer.concat([jpeg.subarray(0, 2), head, Buffer.from('Exif\0\0'), exif, jpeg.subarray(2)]);
}

test('photographs come out upright, with their EXIF in every format', async (t) => {
  const page = await browser.open(t);
  await openPhoto(page, 'turned.jpg', 'image/jpeg', turnedJpeg());
  await said(page, /300 x 400 pixels/);
  for (const [type, suffix] of [['jpeg', 'jpg'], ['png', 'png'], ['webp', 'webp']]) {
    await page.selectOption('#format', `image/${type}`);
    const { name, bytes } = await downloaded(page);
    assert.equal(name, `turned_fugu.${suffix}`);
    assert.match(await decoded(page, bytes), /^300 x 400 /);
    assert.ok(bytes.includes('Lumora\0'), type);
    // The same file again: its EXIF is found, and nothing turns it a second time.
    await openPhoto(page, name, `image/${type}`, bytes);
    await said(page, /300 x 400 pixels/);
    const again = await downloaded(page);
    assert.ok(again.bytes.includes('Lumora\0'), `${type} again`);
    await openPhoto(page, 'turned.jpg', 'image/jpeg', turnedJpeg());
  }
});

test('wide-gamut colours are converted to those of the screen\'s standard', async (t) => {
  const page = await browser.open(t);
  const data = Uint8ClampedArray.from({ length: 4 * 100 * 100 }, (_, i) => [180, 120, 60, 255][i % 4]);
  const file = await fileOf({ data, width: 100, height: 100 });
  // Primaries of Display P3, sRGB's curve; before the chunk that names sRGB.
  const p3 = Buffer.from('00000004634943500c0d00016e03e3ef', 'hex');
  await openPhoto(page, 'p3.png', 'image/png', Buffer.concat([file.subarray(0, 33), p3, file.subarray(33)]));
  const pixel = await page.evaluate(() =>
    [...document.getElementById('before').getContext('2d').getImageData(50, 50, 1, 1).data]);
  // By the matrices of both standards; the file's numbers are 180, 120, 60.
  assert.ok([190, 117, 45, 255].every((v, i) => Math.abs(v - pixel[i]) <= 1), `${pixel}`);
});

test('a photograph of 12 megapixels follows the slider within 100 ms', async (t) => {
  const page = await browser.open(t);
  const data = new Uint8ClampedArray(4 * 4000 * 3000);
  for (let i = 0; i < data.length; ++i) data[i] = i % 4 === 3 ? 255 : (i >> 9) + 60 * (i % 4);
  await openPhoto(page, 'large.png', 'image/png', await fileOf({ data, width: 4000, height: 3000 }));
  const times = await page.evaluate(async () => {
    const canvas = document.getElementById('after');
    const slider = document.getElementById('strength');
    const context = canvas.getContext('2d');
    const seen = () => context.getImageData(700, 500, 8, 8).data.join();
    const frame = () => new Promise(requestAnimationFrame);
    const found = [];
    for (const value of [2, 30, 5, 27, 9]) {
      const before = seen();
      const start = performance.now();
      slider.value = value;
      slider.dispatchEvent(new Event('input'));
      while (seen() === before && performance.now() - start < 2000) await frame();
      found.push(performance.now() - start);
    }
    return found;
  });
  t.diagnostic(`milliseconds: ${times.map(Math.round)}`);
  assert.ok(Math.min(...times) < 100, `${times}`);
});

/** Waits for a second in which at least two thirds of the camera's frames were shown. */
async function seenLive(page) {
  const words = await page.waitForFunction(() => {
    const { textContent } = document.getElementById('status');
    const [, shown = 0, missed = 0] = /^Live, (\d+) frames a second(?:, (\d+) left out)?/.exec(textContent) ?? [];
    return Number(shown) >= 10 && 2 * missed <= shown && textContent;
  }, undefined, { timeout: 60_000 });
  return words.jsonValue();
}

for (const [viewport, looks] of [
  [desktop, ['xpro2', 'meishimenghuan', 'mosaic', 'heibai']],
  [phone, ['heibai']],
]) {
  test(`the camera is live with a look, to be taken and recorded, ${viewport.width} wide`, async (t) => {
    const page = await browser.open(t, { viewport });
    await page.click('#camera');
    for (const look of looks) {
      await choose(page, look);
      await page.waitForTimeout(1500); // the seconds before the choice pass
      t.diagnostic(`${look}: ${await seenLive(page)}`);
    }
    const isGrey = await page.evaluate(() => {
      const { data } = document.getElementById('after').getContext('2d').getImageData(300, 200, 400, 300);
      return data.every((v, i) => i % 4 === 3 || Math.abs(v - data[i - (i % 4)]) < 2);
    });
    assert.ok(isGrey, 'heibai is black and white');

    await page.click('#record');
    await page.waitForTimeout(1500);
    const { name, bytes } = await downloaded(page, '#record');
    assert.equal(name, 'heibai.webm');
    assert.deepEqual(await videoSize(page, bytes), [1280, 720]);

    await page.click('#snapshot');
    await said(page, /^camera-.*1280 x 720 pixels/);
    await page.selectOption('#format', 'image/jpeg');
    assert.match((await downloaded(page)).name, /^camera-.*_heibai\.jpg$/);
    assert.deepEqual(page.faults, []);
  });
}

test('what cannot be opened is told, and the page goes on', async (t) => {
  const page = await browser.open(t);
  const trouble = page.locator('#trouble');
  const jpeg = turnedJpeg();
  const cases = [
    ['notes.txt', Buffer.from('not a picture'), /"notes.txt" is no picture/],
    ['cut.png', photo.subarray(0, 40), /"cut.png" is no picture/],
    ['half.png', photo.subarray(0, photo.length / 2), /"half.png" is no picture/],
    ['empty.jpg', Buffer.alloc(0), /"empty.jpg" is no picture/],
    ['tiny.png', await makePng(50, 50), /50 x 50 pixels; looks need 88 to 20000/],
    ['flat.png', await makePng(20001, 88), /20001 x 88 pixels; looks need/],
  ];
  for (const [name, buffer, words] of cases) {
    await page.setInputFiles('#file', { name, mimeType: 'image/png', buffer });
    await trouble.filter({ hasText: words }).waitFor();
  }
  await openPhoto(page, 'turned.jpg', 'image/jpeg', jpeg);
  assert.ok(await trouble.isHidden());
});

test('without textures or a camera the rest works', async (t) => {
  const page = await browser.open(t, {
    prepare: async (p) => {
      await p.route('**/textures.pack', (route) => route.fulfill({ status: 404, body: 'gone' }));
      await p.addInitScript(() => {
        navigator.mediaDevices.getUserMedia = async () => {
          throw new DOMException('no', 'NotAllowedError');
        };
      });
    },
  });
  await choose(page, 'lofi');
  await page.locator('#trouble', { hasText: /textures could not be loaded: .*404/ }).waitFor();
  await page.click('#camera');
  await page.locator('#trouble', { hasText: 'camera may not be used here' }).waitFor();
  await choose(page, 'fugu');
  assert.ok(await page.locator('#trouble').isHidden());
  assert.equal((await downloaded(page)).name, 'sample_fugu.jpg');
});

test('keys choose looks and move the divider; files are dropped and pasted', async (t) => {
  const page = await browser.open(t);
  await page.locator('input[value="fugu"]').focus();
  await page.keyboard.press('ArrowRight');
  assert.equal(await page.textContent('#look-name'), 'Valencia');
  const divider = page.getByRole('slider', { name: 'Divider' });
  await divider.focus();
  await page.keyboard.press('End');
  assert.equal(await divider.getAttribute('aria-valuenow'), '100');

  for (const [event, holder] of [['drop', 'dataTransfer'], ['paste', 'clipboardData']]) {
    await page.evaluate(([kind, name, base64]) => {
      const binary = Uint8Array.from(atob(base64), (c) => c.charCodeAt(0));
      const transfer = new DataTransfer();
      transfer.items.add(new File([binary], `${kind}.png`, { type: 'image/png' }));
      const init = { [name]: transfer, bubbles: true };
      dispatchEvent(kind === 'drop' ? new DragEvent(kind, init) : new ClipboardEvent(kind, init));
    }, [event, holder, (await makePng(300, 200)).toString('base64')]);
    await said(page, RegExp(`^${event}.png, 300 x 200`));
  }
});

for (const [viewport, colorScheme] of [[desktop, 'light'], [phone, 'dark']]) {
  test(`nothing keeps people out, ${viewport.width} wide, ${colorScheme}`, async (t) => {
    const page = await browser.open(t, { viewport, colorScheme });
    for (const look of ['fugu', 'mosaic', 'tilt-shift', 'colour-fix']) {
      await choose(page, look);
      assert.deepEqual(await accessibilityFaults(page), [], look);
    }
    const width = await page.evaluate(() => document.documentElement.scrollWidth);
    assert.ok(width <= viewport.width, `${width} wide`);
  });
}

test('once visited the page can be installed and needs no network', async (t) => {
  const page = await browser.open(t, { serviceWorkers: 'allow' });
  await page.evaluate(() => navigator.serviceWorker.ready);
  await page.waitForFunction(async () => {
    const [name] = await caches.keys();
    return name && (await (await caches.open(name)).match('./package/textures.pack')) !== undefined;
  });
  const client = await page.context().newCDPSession(page);
  const { installabilityErrors } = await client.send('Page.getInstallabilityErrors');
  const reasons = installabilityErrors.map(({ errorId }) => errorId);
  assert.deepEqual(reasons.filter((id) => id !== 'in-incognito'), []); // as all tests are
  await page.context().setOffline(true);
  await page.reload();
  await said(page, /^sample.jpg/);
  await choose(page, 'earlybird');
  await page.waitForTimeout(300);
  assert.ok(await page.locator('#trouble').isHidden());
  assert.match((await downloaded(page)).name, /earlybird/);
});
