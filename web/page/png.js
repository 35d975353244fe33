// PNG files straight from pixels: of any size, and exact where pixels are transparent, which canvases
// are not.

const kTable = Uint32Array.from({ length: 256 }, (_, n) => {
  for (let k = 0; k < 8; ++k) n = n & 1 ? 0xedb88320 ^ (n >>> 1) : n >>> 1;
  return n;
});

function checksum(bytes) {
  let sum = 0xffffffff;
  for (const byte of bytes) sum = kTable[(sum ^ byte) & 0xff] ^ (sum >>> 8);
  return (sum ^ 0xffffffff) >>> 0;
}

function chunk(name, content) {
  const bytes = new Uint8Array(12 + content.length);
  const view = new DataView(bytes.buffer);
  view.setUint32(0, content.length);
  bytes.set(new TextEncoder().encode(name), 4);
  bytes.set(content, 8);
  view.setUint32(8 + content.length, checksum(bytes.subarray(4, 8 + content.length)));
  return bytes;
}

/** Rows with the differences to the pixel on the left, which deflate well. */
function* filteredRows({ data, width, height }, channels) {
  for (let y = 0; y < height; ++y) {
    const row = new Uint8Array(1 + channels * width);
    row[0] = 1;
    const from = 4 * width * y;
    for (let c = 0; c < channels; ++c) {
      let left = 0;
      for (let x = 0; x < width; ++x) {
        const value = data[from + 4 * x + c];
        row[1 + channels * x + c] = value - left;
        left = value;
      }
    }
    yield row;
  }
}

function isOpaque(data) {
  for (let i = 3; i < data.length; i += 4) if (data[i] !== 255) return false;
  return true;
}

/** @returns {Promise<Blob>} */
export async function encodePng(picture, exif) {
  const channels = isOpaque(picture.data) ? 3 : 4;
  const head = new Uint8Array(13);
  const view = new DataView(head.buffer);
  view.setUint32(0, picture.width);
  view.setUint32(4, picture.height);
  head.set([8, channels === 3 ? 2 : 6], 8);

  const rows = filteredRows(picture, channels);
  const source = new ReadableStream({
    pull(controller) {
      const { value, done } = rows.next();
      if (done) controller.close();
      else controller.enqueue(value);
    },
  });
  const packed = await new Response(source.pipeThrough(new CompressionStream('deflate'))).arrayBuffer();
  const parts = [
    new Uint8Array([0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]),
    chunk('IHDR', head),
    chunk('sRGB', new Uint8Array(1)),
    ...(exif ? [chunk('eXIf', exif)] : []),
    chunk('IDAT', new Uint8Array(packed)),
    chunk('IEND', new Uint8Array(0)),
  ];
  return new Blob(parts, { type: 'image/png' });
}
