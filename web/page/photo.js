// A photograph as the page has it: all its pixels, and a smaller copy of the size that is shown.
import { readExif } from './exif.js';

const kTileSide = 2048; // canvases of any device can be that large
const kShownSide = 1600;

export function makeCanvas(width, height) {
  return new OffscreenCanvas(width, height);
}

export function context2d(canvas) {
  return canvas.getContext('2d', { willReadFrequently: true });
}

/** All pixels, tile by tile: no canvas has to be as large as the picture. */
export function pixelsOf(bitmap) {
  const { width, height } = bitmap;
  const pixels = new Uint8ClampedArray(4 * width * height);
  const context = context2d(makeCanvas(Math.min(width, kTileSide), Math.min(height, kTileSide)));
  for (let top = 0; top < height; top += kTileSide) {
    for (let left = 0; left < width; left += kTileSide) {
      const w = Math.min(kTileSide, width - left);
      const h = Math.min(kTileSide, height - top);
      context.clearRect(0, 0, w, h);
      context.drawImage(bitmap, left, top, w, h, 0, 0, w, h);
      const { data } = context.getImageData(0, 0, w, h);
      for (let y = 0; y < h; ++y) {
        pixels.set(data.subarray(4 * w * y, 4 * w * (y + 1)), 4 * (width * (top + y) + left));
      }
    }
  }
  return pixels;
}

function shownScale({ width, height }, shortestSide) {
  const wanted = Math.min(1, kShownSide / Math.max(width, height));
  return Math.min(1, Math.max(wanted, shortestSide / Math.min(width, height)));
}

function scaledCopy(source, width, height) {
  const context = context2d(makeCanvas(width, height));
  context.imageSmoothingQuality = 'high';
  context.drawImage(source, 0, 0, width, height);
  return context.getImageData(0, 0, width, height);
}

/** The middle of the picture as a square. */
function squareCopy(source, side) {
  const from = Math.min(source.width, source.height);
  const context = context2d(makeCanvas(side, side));
  context.imageSmoothingQuality = 'high';
  const left = (source.width - from) / 2;
  const top = (source.height - from) / 2;
  context.drawImage(source, left, top, from, from, 0, 0, side, side);
  return context.getImageData(0, 0, side, side);
}

export function requireSize({ width, height }, { shortestSide, longestSide }) {
  const fits = (side) => side >= shortestSide && side <= longestSide;
  if (fits(width) && fits(height)) return;
  throw new Error(
    `The picture is ${width} x ${height} pixels; looks need ${shortestSide} to ${longestSide} pixels ` +
      'on either side.',
  );
}

/** The picture of a bitmap, which is closed. */
export function photoOf(bitmap, name, exif, limits) {
  try {
    requireSize(bitmap, limits);
    const scale = shownScale(bitmap, limits.shortestSide);
    const width = Math.round(bitmap.width * scale);
    const height = Math.round(bitmap.height * scale);
    return {
      name,
      exif,
      scale,
      width: bitmap.width,
      height: bitmap.height,
      data: pixelsOf(bitmap),
      shown: scaledCopy(bitmap, width, height),
      square: squareCopy(bitmap, 144),
    };
  } finally {
    bitmap.close();
  }
}

/** Decodes a file upright, its colours converted to those of the screen's standard. */
export async function readPhoto(file, limits) {
  let bitmap;
  try {
    bitmap = await createImageBitmap(file, { imageOrientation: 'from-image' });
  } catch {
    const what = file.name ? `"${file.name}"` : 'What was given';
    throw new Error(`${what} is no picture that this browser can read, or it is damaged.`);
  }
  const exif = readExif(new Uint8Array(await file.arrayBuffer()));
  return photoOf(bitmap, file.name || 'picture', exif, limits);
}

/** The place with the most colourful pixel, in pixels of the given picture. */
export function mostColourfulPoint({ data, width, height }) {
  let best = [0, 0];
  let widest = -1;
  for (let y = 2; y + 2 < height; y += 3) {
    for (let x = 2; x + 2 < width; x += 3) {
      const p = 4 * (y * width + x);
      const range = Math.max(data[p], data[p + 1], data[p + 2]) - Math.min(data[p], data[p + 1], data[p + 2]);
      if (range > widest) {
        widest = range;
        best = [x, y];
      }
    }
  }
  return best;
}

/** The mean of up to 5 x 5 pixels as '#rrggbb'. */
export function colourAt({ data, width, height }, [x, y]) {
  const sums = [0, 0, 0];
  let count = 0;
  for (let v = Math.max(y - 2, 0); v <= Math.min(y + 2, height - 1); ++v) {
    for (let u = Math.max(x - 2, 0); u <= Math.min(x + 2, width - 1); ++u, ++count) {
      for (let c = 0; c < 3; ++c) sums[c] += data[4 * (v * width + u) + c];
    }
  }
  const hex = (sum) => Math.floor(sum / count).toString(16).padStart(2, '0');
  return `#${sums.map(hex).join('')}`;
}
