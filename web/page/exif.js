// The EXIF of JPEG, PNG and WebP files: found, made upright, and put into the file that is written.

const text = (bytes, at, count) => String.fromCharCode(...bytes.subarray(at, at + count));
const viewOf = (bytes) => new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
const kJpegHead = new TextEncoder().encode('Exif\0\0');

function joined(...parts) {
  const all = new Uint8Array(parts.reduce((sum, part) => sum + part.length, 0));
  let at = 0;
  for (const part of parts) {
    all.set(part, at);
    at += part.length;
  }
  return all;
}

/** The segments of a JPEG file up to its pixels: [marker, start of the content, its length]. */
function* jpegSegments(bytes) {
  const view = viewOf(bytes);
  for (let at = 2; at + 4 <= bytes.length && bytes[at] === 0xff; ) {
    const marker = bytes[at + 1];
    const length = view.getUint16(at + 2);
    if (marker === 0xda || length < 2) return;
    yield [marker, at + 4, length - 2];
    at += 2 + length;
  }
}

function exifOfJpeg(bytes) {
  for (const [marker, at, length] of jpegSegments(bytes)) {
    if (marker === 0xe1 && text(bytes, at, 6) === 'Exif\0\0') return bytes.slice(at + 6, at + length);
  }
  return null;
}

function exifOfPng(bytes) {
  const view = viewOf(bytes);
  for (let at = 8; at + 12 <= bytes.length; at += 12 + view.getUint32(at)) {
    if (text(bytes, at + 4, 4) === 'eXIf') return bytes.slice(at + 8, at + 8 + view.getUint32(at));
  }
  return null;
}

function exifOfWebp(bytes) {
  const view = viewOf(bytes);
  for (let at = 12; at + 8 <= bytes.length; ) {
    const length = view.getUint32(at + 4, true);
    if (text(bytes, at, 4) === 'EXIF') {
      const content = bytes.slice(at + 8, at + 8 + length);
      return text(content, 0, 6) === 'Exif\0\0' ? content.slice(6) : content;
    }
    at += 8 + length + (length % 2);
  }
  return null;
}

function kindOf(bytes) {
  if (bytes[0] === 0xff && bytes[1] === 0xd8) return 'image/jpeg';
  if (text(bytes, 1, 3) === 'PNG') return 'image/png';
  if (text(bytes, 0, 4) === 'RIFF' && text(bytes, 8, 4) === 'WEBP') return 'image/webp';
  return '';
}

/**
 * Of the picture as it is now: upright, and without the small picture of how it was. null for what
 * is no EXIF at all.
 */
function madeUpright(exif) {
  const order = text(exif, 0, 2);
  if (exif.length < 14 || (order !== 'II' && order !== 'MM')) return null;
  const little = order === 'II';
  const view = viewOf(exif);
  const first = view.getUint32(4, little);
  if (first + 2 > exif.length) return null;
  const count = view.getUint16(first, little);
  const next = first + 2 + 12 * count;
  if (next + 4 > exif.length) return null;
  for (let at = first + 2; at < next; at += 12) {
    const isOrientation = view.getUint16(at, little) === 0x0112;
    if (isOrientation) view.setUint16(at + 8, 1, little);
  }
  view.setUint32(next, 0, little);
  return exif;
}

/** The EXIF of a file for the upright picture; null where it has none that can be used. */
export function readExif(bytes) {
  const readers = { 'image/jpeg': exifOfJpeg, 'image/png': exifOfPng, 'image/webp': exifOfWebp };
  try {
    const exif = readers[kindOf(bytes)]?.(bytes);
    return exif ? madeUpright(exif) : null;
  } catch (error) {
    if (error instanceof RangeError) return null; // a chunk that claims more than there is
    throw error;
  }
}

function intoJpeg(bytes, exif) {
  if (exif.length > 0xffff - 8) return bytes; // no segment holds more
  const head = new Uint8Array(4);
  viewOf(head).setUint32(0, 0xffe10000 + 2 + kJpegHead.length + exif.length);
  return joined(bytes.subarray(0, 2), head, kJpegHead, exif, bytes.subarray(2));
}

function webpChunk(name, content) {
  const head = new Uint8Array(8);
  head.set(new TextEncoder().encode(name));
  viewOf(head).setUint32(4, content.length, true);
  return joined(head, content, new Uint8Array(content.length % 2));
}

/** A picture alone has to become a file of several chunks, whose first says what is in them. */
function intoWebp(bytes, exif, { width, height }) {
  const hasHead = text(bytes, 12, 4) === 'VP8X';
  const head = hasHead ? bytes.slice(20, 30) : new Uint8Array(10);
  if (!hasHead) {
    const view = viewOf(head);
    view.setUint32(4, width - 1, true);
    view.setUint16(7, height - 1, true);
    view.setUint8(9, (height - 1) >> 16);
    if (text(bytes, 12, 4) === 'VP8L') head[0] |= 0x10; // it may have alpha
  }
  head[0] |= 0x08;
  const rest = bytes.subarray(hasHead ? 30 : 12);
  const body = joined(webpChunk('VP8X', head), rest, webpChunk('EXIF', exif));
  const start = bytes.slice(0, 12);
  viewOf(start).setUint32(4, 4 + body.length, true);
  return joined(start, body);
}

/** A JPEG or WebP file with the EXIF in it; PNG files get theirs when they are made. */
export function withExif(bytes, type, exif, size) {
  if (type === 'image/jpeg') return intoJpeg(bytes, exif);
  return type === 'image/webp' ? intoWebp(bytes, exif, size) : bytes;
}
