// The settings of a look on the picture itself: shapes, handles to drag or to move with the arrow
// keys, and what dragging on the picture does.
import { rectBetween } from './geometry.js';

const kSvg = 'http://www.w3.org/2000/svg';

function shape(name, attributes) {
  const element = document.createElementNS(kSvg, name);
  for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
  return element;
}

const add = ([x, y], [dx, dy]) => [x + dx, y + dy];
const rounded = (point) => point.map(Math.round);
const distance = ([x1, y1], [x2, y2]) => Math.round(Math.hypot(x2 - x1, y2 - y1));

/** Two lines through a band's points, at right angles to the way from the one to the other. */
function bandLines([x1, y1, x2, y2], reach) {
  const length = Math.hypot(x2 - x1, y2 - y1) || 1;
  const [nx, ny] = [(-(y2 - y1) / length) * reach, ((x2 - x1) / length) * reach];
  return [[x1, y1], [x2, y2]].map(([x, y]) =>
    shape('line', { x1: x - nx, y1: y - ny, x2: x + nx, y2: y + ny }),
  );
}

// A look's shapes; its handles, each with its place and what a new place of it means; and what a drag
// on the picture from one point to another means.
const kEditors = {
  mosaic: {
    shapes: ({ rect: [x, y, width, height] }) => [shape('rect', { x, y, width, height })],
    handles: {
      'Rectangle': {
        at: ({ rect: [x, y, w, h] }) => [x + w / 2, y + h / 2],
        move: ({ rect: [, , w, h] }, [x, y]) => ({ rect: [x - w / 2, y - h / 2, w, h] }),
      },
      'Corner of the rectangle': {
        at: ({ rect: [x, y, w, h] }) => [x + w, y + h],
        move: ({ rect: [x, y] }, [right, bottom]) => ({ rect: [x, y, right - x, bottom - y] }),
      },
    },
    drag: (settings, from, to, photo) => ({ rect: rectBetween(from, to, photo) }),
  },
  blur: {
    shapes: ({ centre: [cx, cy], radius: [inner, outer] }) => [
      shape('circle', { cx, cy, r: inner }),
      shape('circle', { cx, cy, r: outer, class: 'faint' }),
    ],
    handles: {
      'Centre of the sharp circle': {
        at: ({ centre }) => centre,
        move: (settings, point) => ({ centre: rounded(point) }),
      },
      'Edge of the sharp circle': {
        at: ({ centre, radius }) => add(centre, [radius[0], 0]),
        move: ({ centre, radius }, point) => ({
          radius: [Math.min(distance(centre, point), radius[1]), radius[1]],
        }),
      },
      'Edge of the full blur': {
        at: ({ centre, radius }) => add(centre, [0, radius[1]]),
        move: ({ centre, radius }, point) => ({
          radius: [radius[0], Math.max(distance(centre, point), radius[0])],
        }),
      },
    },
    drag: (settings, from, to) => ({ centre: rounded(to) }),
  },
  'tilt-shift': {
    shapes: ({ band }, { width, height }) => bandLines(band, width + height),
    handles: {
      'First edge of the sharp band': {
        at: ({ band }) => band.slice(0, 2),
        move: ({ band }, point) => ({ band: [...rounded(point), ...band.slice(2)] }),
      },
      'Second edge of the sharp band': {
        at: ({ band }) => band.slice(2),
        move: ({ band }, point) => ({ band: [...band.slice(0, 2), ...rounded(point)] }),
      },
    },
    drag({ band: [x1, y1, x2, y2] }, from, to) {
      const [dx, dy] = [Math.round(to[0] - (x1 + x2) / 2), Math.round(to[1] - (y1 + y2) / 2)];
      return { band: [x1 + dx, y1 + dy, x2 + dx, y2 + dy] };
    },
  },
  'colour-fix': {
    shapes: () => [],
    handles: {},
    drag: (settings, from, to) => ({ pick: to.map(Math.floor) }),
  },
};

const kSteps = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };

export class Overlay {
  #shapes;
  #surface;
  #change;
  #state = null;

  /** change(settings): some settings of the look are new. */
  constructor(shapes, surface, change) {
    this.#shapes = shapes;
    this.#surface = surface;
    this.#change = change;
    surface.addEventListener('pointerdown', (event) => this.#press(event));
  }

  /** Shows the look's settings on the photograph; nothing where they have no place. */
  show(look, settings, photo) {
    const editor = photo && kEditors[look.name];
    const isSame = editor && this.#state?.editor === editor;
    this.#state = editor ? { editor, settings, photo } : null;
    this.#surface.classList.toggle('picking', look.name === 'colour-fix' && Boolean(photo));
    this.#surface.style.pointerEvents = editor ? 'auto' : 'none';
    this.#shapes.replaceChildren();
    if (!editor) return this.#surface.replaceChildren();
    this.#shapes.setAttribute('viewBox', `0 0 ${photo.width} ${photo.height}`);
    this.#shapes.append(...editor.shapes(settings, photo));
    if (!isSame) this.#makeHandles(editor);
    Object.values(editor.handles).forEach((handle, i) => {
      const [x, y] = handle.at(settings);
      const { style } = this.#surface.children[i];
      style.left = `${(100 * x) / photo.width}%`;
      style.top = `${(100 * y) / photo.height}%`;
    });
  }

  #makeHandles(editor) {
    const buttons = Object.entries(editor.handles).map(([label, handle]) => {
      const button = Object.assign(document.createElement('button'), { type: 'button' });
      button.setAttribute('aria-label', `${label}; arrow keys move it`);
      button.addEventListener('keydown', (event) => this.#step(event, handle));
      return button;
    });
    this.#surface.replaceChildren(...buttons);
  }

  #pointOf(event) {
    const box = this.#surface.getBoundingClientRect();
    const { width, height } = this.#state.photo;
    const inside = (n, whole) => Math.min(Math.max(n, 0), whole - 1);
    return [
      inside(((event.clientX - box.left) / box.width) * width, width),
      inside(((event.clientY - box.top) / box.height) * height, height),
    ];
  }

  #press(event) {
    if (!this.#state || event.button !== 0) return;
    event.preventDefault();
    const index = [...this.#surface.children].indexOf(event.target);
    const handle = Object.values(this.#state.editor.handles)[index];
    if (handle) event.target.focus();
    const from = this.#pointOf(event);
    const move = (next) => {
      if (!this.#state) return;
      const { editor, settings, photo } = this.#state;
      const to = this.#pointOf(next);
      this.#change(handle ? handle.move(settings, to) : editor.drag(settings, from, to, photo));
    };
    const stop = new AbortController();
    this.#surface.setPointerCapture(event.pointerId);
    this.#surface.addEventListener('pointermove', move, { signal: stop.signal });
    const end = (last) => {
      stop.abort();
      if (last.type === 'pointerup' && !handle) move(last);
    };
    for (const name of ['pointerup', 'pointercancel']) {
      this.#surface.addEventListener(name, end, { signal: stop.signal });
    }
  }

  #step(event, handle) {
    const step = kSteps[event.key];
    if (!step) return;
    event.preventDefault();
    const { settings, photo } = this.#state;
    const size = Math.max(2, Math.round(Math.min(photo.width, photo.height) / (event.shiftKey ? 20 : 100)));
    this.#change(handle.move(settings, add(handle.at(settings), step.map((s) => s * size))));
  }
}
