// What the package says about the looks, and what it does with pictures, is what the tool does.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFile } from 'node:fs/promises';
import test from 'node:test';

import { packageDir, root, testPicture, testPixels, tool, toolFrame } from './support.js';

const { createLumora } = await import(`${packageDir}/node.js`);
const lumora = await createLumora();

// The film look's marks are thrown anew in every second.
const isRepeatable = (look) => look.name !== 'laodianying';

const sameBytes = (expected, pixels) => expected.equals(Buffer.from(pixels.buffer));

const extraSettings = {
  lianghong: { direction: 3 },
  mosaic: { rect: [20, 10, 64, 48], block: 9 },
  'colour-fix': { colour: '#c83c28', tolerance: 60 },
  blur: { centre: [30, 40], radius: [20, 70] },
  'tilt-shift': { band: [20, 30, 90, 70], core: 7 },
};

test('facts are those of the tool', () => {
  const listed = JSON.parse(execFileSync(tool, ['looks', '--json'], { encoding: 'utf8' }));
  const said = lumora.looks.map((look) => ({
    ...Object.fromEntries(
      ['mode', 'name', 'alias', 'kind', 'summary', 'texture', 'strength', 'formats'].map((key) => [
        key,
        look[key],
      ]),
    ),
    options: look.settings.map((s) => ({
      option: `--${s.name}`,
      value: s.value,
      help: s.help,
      ...(s.numbers > 0 && { numbers: s.numbers }),
      ...(s.highest !== undefined && { range: [s.lowest, s.highest] }),
      ...(s.default !== undefined && { default: s.default }),
    })),
  }));
  const expected = listed.map(({ textures, blended, tuning, ...facts }) => facts);
  assert.deepEqual(said, expected);
});

test('the types know every setting', async () => {
  const types = await readFile(`${root}web/package/lumora.d.ts`, 'utf8');
  const settings = types.slice(types.indexOf('interface Settings'), types.indexOf('SettingName ='));
  assert.deepEqual(
    [...settings.matchAll(/^ {2}(\w+)\?:/gm)].map(([, name]) => name).sort(),
    ['strength', ...new Set(lumora.looks.flatMap((l) => l.settings.map((s) => s.name)))].sort(),
  );
});

test('the version is the library\'s', async () => {
  const { version } = JSON.parse(await readFile(`${packageDir}/package.json`));
  assert.match(await readFile(`${root}CMakeLists.txt`, 'utf8'), RegExp(`VERSION ${version} `));
});

for (const look of lumora.looks.filter(isRepeatable)) {
  for (const format of look.formats) {
    test(`${look.name} ${format} is the tool's, in sessions and single calls`, async () => {
      const shape = { width: 142, height: 110, format };
      const bytes = (format === 'rgba' ? 4 : 1.5) * shape.width * shape.height;
      const required = look.name === 'colour-fix' ? { pick: [30, 31] } : {};
      const session = await lumora.session({ look: look.name, ...shape, ...required });
      for (const settings of [required, { strength: 5 }, { strength: 27, ...extraSettings[look.name] }]) {
        if ('colour' in settings) settings.pick = undefined;
        session.set(settings);
        const effective = { look: look.name, strength: 16, ...required, ...settings };
        if ('colour' in settings) delete effective.pick;
        const pixels = testPixels(bytes);
        const expected = toolFrame(pixels, { ...shape, ...effective });
        const kept = pixels.slice();
        assert.equal(session.process(pixels), pixels);
        assert.ok(sameBytes(expected, pixels), `session, ${JSON.stringify(settings)}`);
        if (format !== 'rgba') continue;
        await lumora.apply({ data: kept, width: shape.width, height: shape.height }, effective);
        assert.ok(sameBytes(expected, kept), `single call, ${JSON.stringify(settings)}`);
      }
      session.free();
    });
  }
}

test('colour stays only where the mask has samples', async () => {
  const picture = testPicture(120, 100);
  const settings = { look: 'colour-fix', colour: [200, 60, 40], tolerance: 255 };
  const data = new Uint8Array(30 * 25);
  for (let y = 0; y < 25; ++y) data.fill(1, 30 * y, 30 * y + 15); // the left half
  const before = picture.data.slice();
  await lumora.apply(picture, { ...settings, mask: { data, width: 30, height: 25 } });
  const isGrey = (x) => picture.data[4 * x] === picture.data[4 * x + 1];
  assert.deepEqual(picture.data.slice(40, 44), before.slice(40, 44));
  assert.ok(isGrey(50 * 120 + 100) && isGrey(99 * 120 + 119));
});

test('the film look throws new marks and keeps to its ground', async () => {
  const pictures = [testPicture(600, 400), testPicture(600, 400)];
  for (const picture of pictures) await lumora.apply(picture, { look: 'laodianying' });
  const differing = pictures[0].data.filter((v, i) => v !== pictures[1].data[i]).length;
  assert.ok(differing < pictures[0].data.length / 10, `${differing} bytes differ`);
});

test('bytes around a view stay as they are, and looks go by alias and number', async () => {
  const whole = new Uint8Array(4 * 90 * 90 + 20).fill(77);
  const session = await lumora.session({ look: 'retro', width: 90, height: 90 });
  session.process(whole.subarray(10, whole.length - 10));
  assert.ok([...whole.subarray(0, 10), ...whole.subarray(-10)].every((byte) => byte === 77));
  const again = testPicture(90, 90);
  const byNumber = testPicture(90, 90);
  session.pixels.set(again.data);
  again.data.set(session.process());
  await lumora.apply(byNumber, { look: 3 });
  assert.deepEqual(again, byNumber);
  session.free();
});
