// Serves a folder on the loopback address:  node web/serve.js FOLDER [PORT]
import { createReadStream } from 'node:fs';
import { stat } from 'node:fs/promises';
import { createServer } from 'node:http';
import { extname, join, normalize } from 'node:path';
import { pathToFileURL } from 'node:url';

const kTypes = {
  '.css': 'text/css; charset=utf-8',
  '.html': 'text/html; charset=utf-8',
  '.js': 'text/javascript; charset=utf-8',
  '.png': 'image/png',
  '.svg': 'image/svg+xml',
  '.wasm': 'application/wasm',
  '.webmanifest': 'application/manifest+json',
};

async function answer(folder, request, response) {
  const path = normalize(decodeURIComponent(new URL(request.url, 'http://page').pathname));
  const file = join(folder, path.endsWith('/') ? `${path}index.html` : path);
  const facts = await stat(file);
  if (!facts.isFile()) throw new Error('not a file');
  response.writeHead(200, {
    'content-type': kTypes[extname(file)] ?? 'application/octet-stream',
    'content-length': facts.size,
    'cache-control': 'no-cache',
  });
  createReadStream(file).pipe(response);
}

/** Resolves to the server, listening; port 0 takes any free one. */
export function serve(folder, port = 0) {
  const server = createServer((request, response) =>
    answer(folder, request, response).catch(() => response.writeHead(404).end('Not found')),
  );
  return new Promise((resolve, reject) => {
    server.once('error', reject);
    server.listen(port, '127.0.0.1', () => resolve(server));
  });
}

if (import.meta.url === pathToFileURL(process.argv[1]).href) {
  const [folder, port = 8080] = process.argv.slice(2);
  const server = await serve(folder, Number(port)).catch(() => serve(folder));
  console.log(`The page is at http://127.0.0.1:${server.address().port}/ (Ctrl-C ends it)`);
}
