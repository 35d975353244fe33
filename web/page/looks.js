// The list of looks: a small picture of the person's own photograph under each.
import { colourAt, mostColourfulPoint } from './photo.js';

function makeEntry(look, choose) {
  const label = document.createElement('label');
  label.className = 'look';
  label.title = look.summary;
  const input = Object.assign(document.createElement('input'), {
    type: 'radio',
    name: 'look',
    value: look.name,
  });
  input.addEventListener('change', () => choose(look.name));
  const canvas = Object.assign(document.createElement('canvas'), { width: 144, height: 144 });
  const words = document.createElement('span');
  words.textContent = look.title;
  label.append(input, canvas, words);
  return { label, input, canvas };
}

export class LookList {
  #lumora;
  #entries = new Map();
  #round = 0;

  constructor(element, lumora, choose) {
    this.#lumora = lumora;
    for (const look of lumora.looks) {
      const entry = makeEntry(look, choose);
      element.append(entry.label);
      this.#entries.set(look.name, entry);
    }
  }

  select(name) {
    const { input, label } = this.#entries.get(name);
    input.checked = true;
    label.scrollIntoView({ block: 'nearest', inline: 'center' });
  }

  /** Draws a square picture under every look; a later call takes over from an earlier one. */
  async draw(square) {
    const round = ++this.#round;
    const colour = colourAt(square, mostColourfulPoint(square));
    for (const look of this.#lumora.looks) {
      const copy = new ImageData(square.data.slice(), square.width, square.height);
      const own = look.name === 'colour-fix' ? { colour } : {};
      // A look whose textures did not come shows the picture as it is; choosing it says why.
      await this.#lumora.apply(copy, { look: look.name, ...own }).catch(() => {});
      if (round !== this.#round) return;
      this.#entries.get(look.name).canvas.getContext('2d').putImageData(copy, 0, 0);
    }
  }
}
