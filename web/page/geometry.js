// Settings with a place on the picture, in pixels of the whole picture: what they are by default,
// how they move, and what they are on the smaller picture that is shown.

const even = (n) => Math.round(n / 2) * 2;
const evenBelow = (n) => Math.floor(n / 2) * 2;
const clamp = (n, low, high) => Math.min(Math.max(n, low), high);

const kShortest = 8; // of a rectangle and of a block
const kLongest = 2000;

export function defaultPlaces(look, { width, height }) {
  const shorter = Math.min(width, height);
  const half = (side) => evenBelow(Math.min(side / 2, kLongest));
  switch (look.name) {
    case 'mosaic': {
      const [w, h] = [half(width), half(height)];
      const block = Math.max(kShortest, Math.floor(Math.min(w, h) / 12));
      return { rect: [evenBelow((width - w) / 2), evenBelow((height - h) / 2), w, h], block };
    }
    case 'blur':
      return {
        centre: [Math.floor(width / 2), Math.floor(height / 2)],
        radius: [Math.floor(shorter / 4), Math.floor(shorter / 2)],
      };
    case 'tilt-shift': {
      const x = Math.floor(width / 2);
      return { band: [x, Math.floor((height * 2) / 5), x, Math.floor((height * 4) / 5)] };
    }
    default:
      return {};
  }
}

/** The rectangle nearest to the given one that the mosaic takes. */
export function fittingRect([x, y, w, h], { width, height }) {
  const side = (length, whole) => clamp(even(length), kShortest, evenBelow(Math.min(whole, kLongest)));
  const [ownWidth, ownHeight] = [side(w, width), side(h, height)];
  const place = (at, length, whole) => clamp(even(at), 0, evenBelow(whole - length));
  return [place(x, ownWidth, width), place(y, ownHeight, height), ownWidth, ownHeight];
}

export function rectBetween([x1, y1], [x2, y2], photo) {
  const corner = [Math.min(x1, x2), Math.min(y1, y2)];
  return fittingRect([...corner, Math.abs(x2 - x1), Math.abs(y2 - y1)], photo);
}

/** Settings as they have to be once one of them has changed. */
export function settled(settings, photo) {
  const result = { ...settings };
  if (result.rect) {
    result.rect = fittingRect(result.rect, photo);
    result.block = clamp(result.block, kShortest, Math.min(result.rect[2], result.rect[3]));
  }
  if (result.radius) {
    const [inner, outer] = result.radius.map((r) => Math.max(0, r));
    result.radius = [Math.min(inner, outer), outer];
  }
  return result;
}

/** Settings for the picture that is shown. */
export function scaledSettings(settings, photo) {
  const { scale, shown } = photo;
  if (scale === 1) return settings;
  const times = (n) => Math.round(n * scale);
  const result = { ...settings };
  for (const name of ['centre', 'radius', 'band']) {
    if (result[name]) result[name] = result[name].map(times);
  }
  if (result.rect) {
    result.rect = fittingRect(result.rect.map(times), shown);
    const longest = Math.min(result.rect[2], result.rect[3]);
    result.block = clamp(times(result.block), kShortest, longest);
  }
  return result;
}
