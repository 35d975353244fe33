// What the tests share: places, noise, the tool.
import { execFileSync } from 'node:child_process';
import { fileURLToPath } from 'node:url';

export const root = fileURLToPath(new URL('../..', import.meta.url));
export const packageDir = `${root}build/package`;
const native = `${root}build/${process.env.LUMORA_PRESET ?? 'release'}`;
export const tool = `${native}/tools/lumora/lumora`;
export const packFile = `${native}/mixIm.dat`;

/** Noise over soft colours: every path of the looks, and something to see for colour fix and blur. */
export function testPixels(bytes, seed = 1) {
  const pixels = new Uint8ClampedArray(bytes);
  let state = seed;
  for (let i = 0; i < bytes; ++i) {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    pixels[i] = 127 + 90 * Math.sin(i / (97 + 31 * (i % 4))) + (state >>> 26) - 32;
  }
  return pixels;
}

export function testPicture(width, height, seed) {
  return { data: testPixels(4 * width * height, seed), width, height };
}

/** The tool's result for a raw frame; settings are those of the package. */
export function toolFrame(pixels, { look, width, height, format = 'rgba', ...settings }) {
  const options = Object.entries(settings).map(([name, value]) => `--${name}=${value}`);
  const place = ['--format', format, '--size', `${width}x${height}`];
  return execFileSync(tool, ['frame', '--look', look, ...place, ...options], {
    input: pixels,
    maxBuffer: 2 ** 30,
  });
}
