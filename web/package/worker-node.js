// The same looks from a thread of Node's.
import { Worker } from 'node:worker_threads';

import { connect } from './remote.js';

export function createLumora(sources = {}) {
  const worker = new Worker(new URL('./thread-node.js', import.meta.url));
  return connect(
    {
      post: (message, transfer) => worker.postMessage(message, transfer),
      listen: (take) => worker.on('message', take),
      fail: (take) =>
        worker.on('error', (error) => take(new Error(`the worker has failed: ${error.message}`))),
      stop: () => worker.terminate(),
    },
    sources,
  );
}
