// The line between before (on its left) and after, in hundredths of the picture's width.

export class Divider {
  #frame;
  #handle;
  #after;
  #line;
  #at = 0;

  constructor(frame) {
    this.#frame = frame;
    this.#line = frame.querySelector('#divider');
    this.#handle = this.#line.querySelector('button');
    this.#after = frame.querySelector('#after');
    this.#handle.addEventListener('pointerdown', (event) => {
      event.preventDefault();
      event.stopPropagation();
      this.#handle.setPointerCapture(event.pointerId);
      this.#handle.focus();
    });
    this.#handle.addEventListener('pointermove', (event) => {
      if (!this.#handle.hasPointerCapture(event.pointerId)) return;
      const box = this.#frame.getBoundingClientRect();
      this.move((100 * (event.clientX - box.left)) / box.width);
    });
    this.#handle.addEventListener('keydown', (event) => {
      const steps = { ArrowLeft: -5, ArrowDown: -5, ArrowRight: 5, ArrowUp: 5 };
      const ends = { Home: 0, End: 100 };
      if (!(event.key in steps) && !(event.key in ends)) return;
      event.preventDefault();
      this.move(ends[event.key] ?? this.#at + steps[event.key]);
    });
  }

  move(hundredths) {
    this.#at = Math.min(Math.max(Math.round(hundredths), 0), 100);
    this.#line.style.left = `${this.#at}%`;
    this.#after.style.clipPath = `inset(0 0 0 ${this.#at}%)`;
    this.#handle.setAttribute('aria-valuenow', this.#at);
    this.#handle.setAttribute('aria-valuetext', `${this.#at} percent before`);
    this.#frame.querySelector('.before-tag').hidden = this.#at < 12;
    this.#frame.querySelector('.after-tag').hidden = this.#at > 88;
  }
}
