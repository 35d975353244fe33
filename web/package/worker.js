// The same looks from a worker of the browser's.
import { connect } from './remote.js';

export function createLumora(sources = {}) {
  const worker = new Worker(new URL('./thread.js', import.meta.url), { type: 'module' });
  return connect(
    {
      post: (message, transfer) => worker.postMessage(message, transfer),
      listen: (take) => (worker.onmessage = ({ data }) => take(data)),
      fail: (take) =>
        (worker.onerror = (event) =>
          take(new Error(`the worker has failed: ${event.message ?? 'it could not be loaded'}`))),
      stop: () => worker.terminate(),
    },
    sources,
  );
}
