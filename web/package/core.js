// Looks on pictures, wherever the bytes of module and textures come from.
import { Instance } from './instance.js';
import { giveSettings } from './settings.js';

const kFormats = { rgba: 1, nv21: 2, nv12: 3 };

function isBytes(value) {
  return value instanceof ArrayBuffer || ArrayBuffer.isView(value);
}

function asBytes(value) {
  if (value instanceof Uint8Array) return value;
  if (ArrayBuffer.isView(value)) {
    if (value.byteLength === 0) return new Uint8Array(0); // a detached buffer takes no other view
    return new Uint8Array(value.buffer, value.byteOffset, value.byteLength);
  }
  return new Uint8Array(value);
}

async function bytesOf(source, read) {
  if (isBytes(source)) return asBytes(source);
  if (typeof Response !== 'undefined' && source instanceof Response) {
    return new Uint8Array(await source.arrayBuffer());
  }
  return read(source);
}

/** Servers may have unpacked the bytes already. */
async function unpacked(bytes) {
  if (bytes[0] !== 0x1f || bytes[1] !== 0x8b) return bytes;
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream('gzip'));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

/** Copies a picture into a filter, runs it, and copies the result back. */
function processIn(instance, filter, bytes) {
  const address = instance.call('lumora_pixels', filter);
  instance.bytes(address, bytes.length).set(bytes);
  instance.demand('lumora_process', filter);
  bytes.set(instance.bytes(address, bytes.length));
}

function bytesNeeded({ width, height, format }) {
  return (format === 'rgba' ? 4 : 1.5) * width * height;
}

function requireLength(bytes, shape) {
  const { width, height, format } = shape;
  const needed = bytesNeeded(shape);
  if (bytes.length === needed) return;
  const detached = bytes.buffer.byteLength === 0 ? ' (its buffer is detached or empty)' : '';
  throw new Error(
    `the ${format} picture of ${width} x ${height} pixels has ${bytes.length} bytes${detached}, ` +
      `not ${needed}`,
  );
}

function requirePixels(value) {
  const right =
    value instanceof Uint8Array || value instanceof Uint8ClampedArray || value instanceof ArrayBuffer;
  if (!right) throw new Error('a picture is a Uint8Array, a Uint8ClampedArray or an ArrayBuffer');
  return asBytes(value);
}

class Session {
  #instance;
  #facts;
  #look;
  #shape;
  #settings = {};
  #filter;

  constructor(instance, facts, look, shape, settings) {
    this.#instance = instance;
    this.#facts = facts;
    this.#look = look;
    this.#shape = shape;
    this.#filter = openFilter(instance, look, shape, true);
    try {
      this.set(settings);
    } catch (error) {
      this.free();
      throw error;
    }
  }

  get look() {
    return this.#look.name;
  }

  set(settings) {
    this.#requireOpen();
    const merged = { ...this.#settings, ...settings };
    giveSettings(this.#instance, this.#facts, this.#look, this.#filter, merged);
    this.#settings = merged;
  }

  get pixels() {
    this.#requireOpen();
    const address = this.#instance.call('lumora_pixels', this.#filter);
    const { buffer, byteOffset, length } = this.#instance.bytes(address, bytesNeeded(this.#shape));
    return new Uint8ClampedArray(buffer, byteOffset, length);
  }

  process(picture) {
    this.#requireOpen();
    if (picture === undefined) {
      this.#instance.demand('lumora_process', this.#filter);
      return this.pixels;
    }
    const bytes = requirePixels(picture);
    requireLength(bytes, this.#shape);
    processIn(this.#instance, this.#filter, bytes);
    return picture;
  }

  free() {
    if (this.#filter) this.#instance.call('lumora_close', this.#filter);
    this.#filter = 0;
  }

  #requireOpen() {
    if (!this.#filter) throw new Error('the session has been freed');
  }
}

function openFilter(instance, look, { format, width, height }, keepTextures) {
  if (!(format in kFormats)) {
    throw new Error(`there is no format '${format}'; formats: ${Object.keys(kFormats).join(', ')}`);
  }
  const isSide = (side) => Number.isInteger(side) && side >= 0 && side < 2 ** 31;
  if (!isSide(width) || !isSide(height)) {
    throw new Error(`width and height are whole numbers, not ${width} and ${height}`);
  }
  const number = kFormats[format];
  return instance.demand('lumora_open', look.mode, number, width, height, keepTextures ? 1 : 0);
}

class Lumora {
  #instance;
  #facts;
  #readTextures;
  #textures = null;

  constructor(instance, readTextures) {
    this.#instance = instance;
    this.#readTextures = readTextures;
    this.#facts = JSON.parse(instance.text(instance.call('lumora_facts')));
    const { shortestSide, longestSide, fullStrength, strongest } = this.#facts;
    this.limits = Object.freeze({ shortestSide, longestSide, fullStrength, strongest });
    for (const look of this.#facts.looks) {
      look.settings = look.settings.map((name) => this.#facts.settings.find((s) => s.name === name));
    }
    this.looks = this.#facts.looks;
  }

  get memoryBytes() {
    return this.#instance.memoryBytes;
  }

  async loadTextures() {
    if (this.#instance.hasPack) return;
    this.#textures ??= this.#fetchTextures().finally(() => (this.#textures = null));
    await this.#textures;
  }

  async apply(picture, { look, ...settings } = {}) {
    const facts = this.#findLook(look);
    const shape = { format: 'rgba', width: picture?.width, height: picture?.height };
    if (facts.texture && !this.#instance.hasPack) await this.loadTextures();
    const bytes = requirePixels(picture?.data);
    const filter = openFilter(this.#instance, facts, shape, false);
    try {
      requireLength(bytes, shape);
      giveSettings(this.#instance, this.#facts, facts, filter, settings);
      processIn(this.#instance, filter, bytes);
    } finally {
      this.#instance.call('lumora_close', filter);
    }
    return picture;
  }

  async session({ look, width, height, format = 'rgba', ...settings } = {}) {
    const facts = this.#findLook(look);
    if (facts.texture && !this.#instance.hasPack) await this.loadTextures();
    return new Session(this.#instance, this.#facts, facts, { width, height, format }, settings);
  }

  #findLook(look) {
    const found = this.looks.find((l) => l.name === look || l.alias === look || l.mode === look);
    if (found) return found;
    const names = this.looks.map((l) => l.name).join(', ');
    throw new Error(look === undefined ? `no look is named; looks: ${names}`
                                       : `there is no look '${look}'; looks: ${names}`);
  }

  async #fetchTextures() {
    try {
      this.#instance.usePack(await unpacked(await this.#readTextures()));
    } catch (error) {
      throw new Error(`the textures could not be loaded: ${error.message}`, { cause: error });
    }
  }
}

/**
 * @param {{wasm: *, textures: *}} sources
 * @param {(source: URL | string) => Promise<Uint8Array>} read
 */
export async function createLumoraFrom({ wasm, textures }, read) {
  const compiled = wasm instanceof WebAssembly.Module
    ? wasm
    : await WebAssembly.compile(await bytesOf(wasm, read));
  return new Lumora(await Instance.create(compiled), () => bytesOf(textures, read));
}
