// Settings by name: checked for what they are, and handed to a filter of the module.

const kFarthest = 2 ** 30; // positions may lie outside the picture, but not farther

const quote = (value) => (typeof value === 'string' ? `'${value}'` : String(value));

function coloursOf(value) {
  const digits = /^#?([0-9a-f]{2})([0-9a-f]{2})([0-9a-f]{2})$/i.exec(value);
  if (!digits) throw new Error(`colour: ${quote(value)} is not of the form '#rrggbb'`);
  return digits.slice(1).map((digit) => parseInt(digit, 16));
}

function isArray(value) {
  return Array.isArray(value) || (ArrayBuffer.isView(value) && !(value instanceof DataView));
}

/** The numbers of a setting, as many as it takes. */
function numbersOf(facts, value) {
  if (facts.name === 'colour' && typeof value === 'string') return coloursOf(value);
  const numbers = isArray(value) ? Array.from(value) : [value];
  const expected = facts.name === 'colour' ? 3 : facts.numbers;
  const fits = (n) => Number.isInteger(n) && Math.abs(n) <= kFarthest;
  if (numbers.length !== expected || !numbers.every(fits)) {
    const form = expected === 1 ? 'a whole number' : `${expected} whole numbers`;
    throw new Error(`${facts.name} takes ${form} (${facts.value}), not ${quote(value)}`);
  }
  return numbers;
}

function giveMask(instance, filter, mask) {
  const { data, width, height } = mask ?? {};
  const right = data instanceof Uint8Array || data instanceof Uint8ClampedArray;
  if (!right || !(width > 0) || !(height > 0) || data.length !== width * height) {
    throw new Error('mask takes { data, width, height } with one byte for each of its samples');
  }
  const to = instance.demand('lumora_give_mask', filter, width, height);
  instance.bytes(to, data.length).set(data);
}

function giveOne(instance, filter, facts, number, value) {
  if (facts.name === 'mask') return giveMask(instance, filter, value);
  const numbers = numbersOf(facts, value);
  instance.demand('lumora_give', filter, number, numbers.length, ...numbers);
}

/** An Error for a setting that the look does not have. */
function checkName(facts, look, name) {
  if (look.settings.some((setting) => setting.name === name)) return;
  const owner = facts.looks.find((other) => other.settings.some((s) => s.name === name));
  if (owner) throw new Error(`${name} belongs to the look ${owner.name}, not ${look.name}`);
  const own = ['strength', ...look.settings.map((setting) => setting.name)];
  throw new Error(`there is no setting '${name}'; ${look.name} has: ${own.join(', ')}`);
}

/** Gives a filter these settings and its defaults for all others. */
export function giveSettings(instance, facts, look, filter, settings) {
  instance.call('lumora_begin', filter);
  for (const [name, value] of Object.entries(settings)) {
    if (value === undefined) continue;
    if (name === 'strength') {
      const [strength] = numbersOf({ name, numbers: 1, value: '0..32' }, value);
      instance.demand('lumora_give_strength', filter, strength);
      continue;
    }
    checkName(facts, look, name);
    const number = facts.settings.findIndex((setting) => setting.name === name);
    giveOne(instance, filter, facts.settings[number], number, value);
  }
  instance.demand('lumora_commit', filter);
}
