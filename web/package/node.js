// For Node, which does not fetch files.
import { readFile } from 'node:fs/promises';

import { createLumoraFrom } from './core.js';

async function read(source) {
  if (/^https?:/.test(String(source))) {
    const response = await fetch(source);
    if (!response.ok) throw new Error(`${source} answered ${response.status}`);
    return new Uint8Array(await response.arrayBuffer());
  }
  return readFile(String(source).startsWith('file:') ? new URL(source) : source);
}

export function createLumora({
  wasm = new URL('./lumora.wasm', import.meta.url),
  textures = new URL('./textures.pack', import.meta.url),
} = {}) {
  return createLumoraFrom({ wasm, textures }, read);
}
