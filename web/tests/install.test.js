// The package as others get it: packed, installed into an empty project, used and bundled there.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import test, { after, before } from 'node:test';
import { fileURLToPath } from 'node:url';
import { gzipSync } from 'node:zlib';

import { packageDir } from './support.js';

const modules = fileURLToPath(new URL('node_modules', import.meta.url));
let project;

const run = (command, ...args) =>
  execFileSync(command, args, { cwd: project, encoding: 'utf8', stdio: ['ignore', 'pipe', 'pipe'] });

// A grey picture's first bytes after a look: what a project would print.
const use = (entry, close) => `
  import { createLumora } from '${entry}';
  const lumora = await createLumora();
  const grey = { data: new Uint8Array(4 * 100 * 100).fill(100), width: 100, height: 100 };
  const result = await lumora.apply(grey, { look: 'earlybird' });
  console.log([...result.data.slice(0, 4)].join());
  ${close}`;

before(() => {
  project = mkdtempSync(join(tmpdir(), 'lumora-install-'));
  run('npm', 'pack', '--silent', packageDir);
  const [archive] = readdirSync(project);
  writeFileSync(join(project, 'package.json'), '{"private": true, "type": "module"}');
  run('npm', 'install', '--silent', '--offline', '--no-audit', '--no-fund', `./${archive}`);
});
after(() => rmSync(project, { recursive: true, force: true }));

test('module, loaders and types take at most 200 kB compressed', () => {
  const installed = join(project, 'node_modules/lumora-filters');
  const files = readdirSync(installed).filter((name) => /\.(js|ts|wasm)$/.test(name));
  assert.ok(files.includes('lumora.wasm') && files.includes('lumora.d.ts'));
  const bytes = files.reduce((sum, name) => sum + gzipSync(readFileSync(join(installed, name))).length, 0);
  assert.ok(bytes <= 200_000, `${bytes} bytes`);
  const facts = JSON.parse(readFileSync(join(installed, 'package.json')));
  assert.equal(facts.scripts ?? facts.dependencies, undefined);
});

test('Node uses it, directly and from a worker, with the same result', () => {
  writeFileSync(join(project, 'direct.mjs'), use('lumora-filters', ''));
  writeFileSync(join(project, 'thread.mjs'), use('lumora-filters/worker', 'await lumora.close();'));
  const direct = run('node', 'direct.mjs');
  assert.match(direct, /^\d+,\d+,\d+,100\n$/);
  assert.equal(run('node', 'thread.mjs'), direct);
});

test('a bundler takes it for browsers', () => {
  const source = `
    import { createLumora } from 'lumora-filters';
    import wasm from 'lumora-filters/lumora.wasm';
    import textures from 'lumora-filters/textures.pack';
    ${use('lumora-filters', '').replace(/import.*\n/, '').replace('createLumora()', `createLumora({
      wasm: new URL(wasm, import.meta.url), textures: new URL(textures, import.meta.url) })`)}`;
  writeFileSync(join(project, 'app.js'), source);
  run(join(modules, 'esbuild/bin/esbuild'), 'app.js', '--bundle', '--format=esm', '--outdir=out',
    '--loader:.wasm=file', '--loader:.pack=file', '--log-level=error');
  // The browser's entry on Node, which has everything but a fetch of files.
  const shim = `
    import { readFile } from 'node:fs/promises';
    globalThis.fetch = async (url) => new Response(await readFile(new URL(url)));
    await import('./out/app.js');`;
  writeFileSync(join(project, 'run.mjs'), shim);
  assert.equal(run('node', 'run.mjs'), run('node', 'direct.mjs'));
});

test('the types fit what people write, and refuse what is wrong', () => {
  const source = `
    import { createLumora, type Session } from 'lumora-filters';
    import { createLumora as createRemote } from 'lumora-filters/worker';
    export async function use(image: ImageData, frame: Uint8Array): Promise<ImageData> {
      const lumora = await createLumora({ wasm: new URL('https://example.org/lumora.wasm') });
      const names: string[] = lumora.looks.map((look) => look.name);
      const session: Session = await lumora.session({ look: 'blur', width: 640, height: 480,
                                                      format: 'nv12', centre: [320, 240] });
      session.set({ strength: names.length, radius: [50, 90] });
      const same: Uint8Array = session.process(frame);
      session.free();
      const remote = await createRemote();
      const other: ImageData = await remote.apply(image, { look: 'colour-fix', colour: '#aa2030' });
      // @ts-expect-error a rectangle has four numbers
      session.set({ rect: [1, 2, 3] });
      // @ts-expect-error no such setting
      session.set({ warmth: same.length });
      return lumora.apply(other, { look: 'fugu', strength: 16 });
    }`;
  writeFileSync(join(project, 'use.ts'), source);
  run(join(modules, 'typescript/bin/tsc'), '--noEmit', '--strict', '--target', 'es2022',
    '--lib', 'es2022,dom', '--module', 'nodenext', 'use.ts');
});
