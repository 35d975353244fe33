// The chosen look on the photograph: at once on the picture that is shown, and when the hand rests on
// the whole one, in a worker.
import { scaledSettings } from './geometry.js';

const kRestMilliseconds = 250;

function copyOf({ data, width, height }) {
  return new ImageData(data.slice(), width, height);
}

/** Both ends of the same request: only the last one counts. */
export class Editor {
  #lumora;
  #remote;
  #draw;
  #timer = 0;
  #round = 0;
  #whole = null; // a promise of the whole picture for the round

  /**
   * @param {Lumora} lumora
   * @param {() => Promise<RemoteLumora>} remote
   * @param {(picture: ImageData | ImageBitmap) => void} draw
   */
  constructor(lumora, remote, draw) {
    this.#lumora = lumora;
    this.#remote = remote;
    this.#draw = draw;
  }

  /** Resolves when the picture that is shown has the look. */
  async show(photo, look, settings) {
    const round = ++this.#round;
    this.#whole = null;
    clearTimeout(this.#timer);
    const shown = copyOf(photo.shown);
    await this.#lumora.apply(shown, { look: look.name, ...scaledSettings(settings, photo) });
    if (round !== this.#round) return;
    this.#draw(shown);
    if (photo.scale === 1) {
      this.#whole = Promise.resolve(shown);
      return;
    }
    this.#timer = setTimeout(() => this.#showWhole(round, photo, look, settings), kRestMilliseconds);
  }

  /** The whole picture with the look as it was shown last. */
  whole(photo, look, settings) {
    clearTimeout(this.#timer);
    this.#whole ??= this.#filterWhole(photo, look, settings);
    return this.#whole;
  }

  /** Nothing that is under way is shown any more. */
  cancel() {
    ++this.#round;
    clearTimeout(this.#timer);
  }

  async #filterWhole(photo, look, settings) {
    const remote = await this.#remote();
    return remote.apply(copyOf(photo), { look: look.name, ...settings });
  }

  async #showWhole(round, photo, look, settings) {
    const whole = await this.whole(photo, look, settings).catch(() => null);
    if (!whole || round !== this.#round) return; // asked for again, a failure is told
    const { width, height } = photo.shown;
    const size = { resizeWidth: width, resizeHeight: height, resizeQuality: 'high' };
    const small = await createImageBitmap(whole, size).catch(() => null);
    if (small && round === this.#round) this.#draw(small);
    small?.close();
  }
}
