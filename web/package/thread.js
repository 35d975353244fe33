import { createLumora } from './lumora.js';
import { serve } from './remote.js';

serve(
  createLumora,
  (message, transfer) => self.postMessage(message, transfer),
  (take) => (self.onmessage = ({ data }) => take(data)),
);
