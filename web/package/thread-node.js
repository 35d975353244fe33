import { parentPort } from 'node:worker_threads';

import { createLumora } from './node.js';
import { serve } from './remote.js';

serve(
  createLumora,
  (message, transfer) => parentPort.postMessage(message, transfer),
  (take) => parentPort.on('message', take),
);
