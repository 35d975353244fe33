// For browsers and workers.
import { createLumoraFrom } from './core.js';

async function read(source) {
  const response = await fetch(source);
  if (!response.ok) throw new Error(`${source} answered ${response.status}`);
  return new Uint8Array(await response.arrayBuffer());
}

export function createLumora({
  wasm = new URL('./lumora.wasm', import.meta.url),
  textures = new URL('./textures.pack', import.meta.url),
} = {}) {
  return createLumoraFrom({ wasm, textures }, read);
}
