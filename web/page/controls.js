// The settings of a look as fields, made from what the package says about them.

const kTitles = {
  direction: 'Camera held',
  rect: 'Rectangle',
  block: 'Block size',
  colour: 'Colour that stays',
  tolerance: 'Tolerance',
  centre: 'Centre of the sharp circle',
  radius: 'Radius',
  band: 'Sharp band',
  core: 'Entirely sharp share of the band',
};
const kParts = {
  rect: ['Left', 'Top', 'Width', 'Height'],
  centre: ['Across', 'Down'],
  radius: ['Sharp', 'Blurred'],
  band: ['X 1', 'Y 1', 'X 2', 'Y 2'],
};
const kSliders = ['tolerance', 'core', 'direction'];

function element(name, properties, ...children) {
  const made = Object.assign(document.createElement(name), properties);
  made.append(...children);
  return made;
}

function slider(facts, change) {
  const id = `setting-${facts.name}`;
  const input = element('input', {
    id, type: 'range', min: facts.lowest, max: facts.highest, value: facts.default,
  });
  const output = element('output', { value: String(facts.default) });
  input.addEventListener('input', () => change({ [facts.name]: Number(input.value) }));
  const label = element('label', { htmlFor: id, textContent: kTitles[facts.name] });
  return {
    node: element('div', { className: 'setting slider' }, label, output, input),
    show(value) {
      input.value = value;
      output.value = String(value);
    },
  };
}

function colour(facts, change) {
  const input = element('input', { id: 'setting-colour', type: 'color' });
  input.addEventListener('input', () => change({ colour: input.value }));
  const label = element('label', { htmlFor: input.id, textContent: kTitles.colour });
  const hint = element('span', { className: 'fine', textContent: 'or touch it in the picture' });
  return {
    node: element('div', { className: 'setting' }, label, input, hint),
    show: (value) => (input.value = value),
  };
}

function numbers(facts, change) {
  const parts = kParts[facts.name] ?? [''];
  const fields = parts.map((part) => {
    const input = element('input', { type: 'number', inputMode: 'numeric', step: 1 });
    if (!part) input.setAttribute('aria-label', kTitles[facts.name]);
    return { input, label: element('label', { className: 'number' }, part, input) };
  });
  for (const { input } of fields) {
    input.addEventListener('change', () => {
      const values = fields.map((field) => Math.round(Number(field.input.value) || 0));
      change({ [facts.name]: values.length === 1 ? values[0] : values });
    });
  }
  const legend = element('legend', { textContent: kTitles[facts.name] });
  return {
    node: element('fieldset', { className: 'setting' }, legend, ...fields.map((f) => f.label)),
    show: (value) => [value].flat().forEach((n, i) => (fields[i].input.value = n)),
  };
}

function makeField(facts, change) {
  if (facts.name === 'colour') return colour(facts, change);
  return (kSliders.includes(facts.name) ? slider : numbers)(facts, change);
}

export class Controls {
  #parent;
  #change;
  #fields = new Map();
  #look = null;

  constructor(parent, change) {
    this.#parent = parent;
    this.#change = change;
  }

  show(look, settings) {
    if (look !== this.#look) {
      this.#look = look;
      // Places are picked on the picture, and a mask is made by other programs.
      const shown = look.settings.filter(({ name }) => kTitles[name]);
      this.#fields = new Map(shown.map((facts) => [facts.name, makeField(facts, this.#change)]));
      this.#parent.replaceChildren(...[...this.#fields.values()].map((field) => field.node));
    }
    for (const [name, field] of this.#fields) {
      if (settings[name] !== undefined) field.show(settings[name]);
    }
  }
}
