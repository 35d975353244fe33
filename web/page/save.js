// Files from pictures, and their way to the person.
import { withExif } from './exif.js';
import { makeCanvas } from './photo.js';
import { encodePng } from './png.js';

const kSuffixes = { 'image/jpeg': 'jpg', 'image/png': 'png', 'image/webp': 'webp' };
const kQuality = 0.92;

export function suffixOf(type) {
  return kSuffixes[type];
}

function canvasOf(picture) {
  const canvas = makeCanvas(picture.width, picture.height);
  const context = canvas.getContext('2d');
  context?.putImageData(new ImageData(picture.data, picture.width, picture.height), 0, 0);
  return canvas;
}

/**
 * @param {{data: Uint8ClampedArray, width: number, height: number}} picture
 * @returns {Promise<Blob>}
 */
export async function encode(picture, type, exif) {
  if (type === 'image/png') return encodePng(picture, exif);
  let blob;
  try {
    blob = await canvasOf(picture).convertToBlob({ type, quality: kQuality });
  } catch {
    throw new Error('This browser cannot write a picture of that size as JPEG or WebP; PNG has no limit.');
  }
  if (blob.type !== type) {
    throw new Error(`This browser does not write ${kSuffixes[type].toUpperCase()}; JPEG and PNG work.`);
  }
  if (!exif) return blob;
  return new Blob([withExif(new Uint8Array(await blob.arrayBuffer()), type, exif, picture)], { type });
}

export function download(blob, name) {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(blob);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
}
