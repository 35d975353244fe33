import type { LookName } from './looks.js';

export type { LookName };

export type Format = 'rgba' | 'nv12' | 'nv21';

/** One byte a sample, rows packed; stretched to the picture's size. Not 0 where colour may stay. */
export interface Mask {
  data: Uint8Array | Uint8ClampedArray;
  width: number;
  height: number;
}

/**
 * Settings of a look. All numbers are whole; positions are pixels of the picture. A setting that is
 * missing or `undefined` has its default; one that the look does not have is an error.
 */
export interface Settings {
  /** 0 half effect, 16 (the default) full, up to 32 stronger; of blur and tilt-shift the width. */
  strength?: number;
  /** lianghong: how the camera was held, 0..3 quarter turns; default 0. */
  direction?: number;
  /** mosaic: x, y, width, height; even, sides 8..2000; default: the middle half of the picture. */
  rect?: readonly [number, number, number, number];
  /** mosaic: edge of a block, 8..2000; default: a twelfth of the rectangle's shorter side. */
  block?: number;
  /** colour-fix: the colour that stays, '#rrggbb' or red, green, blue. Either this or `pick`. */
  colour?: string | readonly [number, number, number];
  /** colour-fix: x, y of the place whose colour stays. */
  pick?: readonly [number, number];
  /** colour-fix: how far a hue may be off, 0..255; default 20. */
  tolerance?: number;
  /** colour-fix: where colour may stay at all. */
  mask?: Mask;
  /** blur: x, y of the sharp circle's centre; default: the middle. */
  centre?: readonly [number, number];
  /** blur: sharp up to the first, fully blurred from the second on; default: a quarter and a half of
   *  the shorter side. */
  radius?: readonly [number, number];
  /** tilt-shift: x1, y1, x2, y2, two points on the edges of the sharp band, which stands at right
   *  angles on the line between them; default: level, from 2/5 to 4/5 of the height. */
  band?: readonly [number, number, number, number];
  /** tilt-shift: entirely sharp share of the band in 1/32, 0..32; default 16. */
  core?: number;
}

export type SettingName = Exclude<keyof Settings, 'strength'>;

export interface SettingFacts {
  readonly name: SettingName;
  /** What it looks like: `X,Y,W,H`. */
  readonly value: string;
  /** How many numbers it consists of, 0 where it is something else. */
  readonly numbers: number;
  readonly help: string;
  /** Range of each number, where there is one. */
  readonly lowest?: number;
  readonly highest?: number;
  readonly default?: number;
}

export interface LookFacts {
  readonly mode: number;
  readonly name: LookName;
  readonly alias: string | null;
  /** English words for people: `Light leak`. */
  readonly title: string;
  readonly kind: string;
  readonly summary: string;
  /** What the strength does, in words. */
  readonly strength: string;
  readonly usesStrength: boolean;
  /** What it takes from the textures, in words; null where it needs none. */
  readonly texture: string | null;
  readonly formats: readonly Format[];
  readonly settings: readonly SettingFacts[];
}

export interface Limits {
  /** Of a picture, in pixels: 88 and 20000. */
  readonly shortestSide: number;
  readonly longestSide: number;
  /** The strength that is the look as it is, 16, and the strongest, 32. */
  readonly fullStrength: number;
  readonly strongest: number;
}

/** RGBA, four bytes a pixel, rows packed. A canvas' `ImageData` is one. */
export interface Picture {
  data: Uint8ClampedArray | Uint8Array;
  width: number;
  height: number;
}

export type LookChoice = { look: LookName | (string & {}) | number };

export interface SessionOptions extends Settings {
  look: LookName | (string & {}) | number;
  /** Pixels, 88..20000; even for nv12 and nv21. */
  width: number;
  height: number;
  /** Default `rgba`. */
  format?: Format;
}

/** One look for many pictures of one size. */
export interface Session {
  readonly look: LookName;
  /** Changes these settings and keeps the others; on an Error all are as before. */
  set(settings: Settings): void;
  /**
   * Rewrites the picture in place and returns it. RGBA: 4 x width x height bytes. NV12, NV21: width x
   * height bytes of luma, then half as many of chroma pairs.
   */
  process<T extends Uint8Array | Uint8ClampedArray | ArrayBuffer>(picture: T): T;
  /** Rewrites the picture in `pixels` and returns that: without copies in and out. */
  process(): Uint8ClampedArray;
  /**
   * The session's own memory for a picture. The view is empty as soon as the module takes more
   * memory, which other sessions, calls and textures can cause: ask for it anew for every picture.
   */
  readonly pixels: Uint8ClampedArray;
  /** Gives the memory back; the session cannot be used afterwards. */
  free(): void;
}

export interface Lumora {
  /** The facts of all looks, in the order of their modes. */
  readonly looks: readonly LookFacts[];
  readonly limits: Limits;
  /** Memory that the module has taken, in bytes. It never shrinks, and is used again. */
  readonly memoryBytes: number;
  /**
   * Rewrites a picture in place and resolves to it. For a look that needs no textures, or when they
   * have been loaded, the work is done before the call returns.
   */
  apply<T extends Picture>(picture: T, settings: Settings & LookChoice): Promise<T>;
  session(options: SessionOptions): Promise<Session>;
  /** Fetches the textures now instead of at the first look that needs them. */
  loadTextures(): Promise<void>;
}

export type Source = URL | string | ArrayBuffer | ArrayBufferView | Response;

export interface Sources {
  /** Default: `lumora.wasm` beside the package's modules. */
  wasm?: Source | WebAssembly.Module;
  /** The texture pack, as it is or compressed with gzip. Default: `textures.pack` beside them. */
  textures?: Source;
}

/** Every Error of the package has a message for people, the library's own where that has one. */
export function createLumora(sources?: Sources): Promise<Lumora>;
