import type {
  LookChoice, LookFacts, Limits, LookName, Picture, SessionOptions, Settings, Sources,
} from './lumora.js';

export type * from './lumora.js';

/**
 * As `Session`, in the worker. A picture's buffer travels there and back: the array that was given is
 * empty afterwards, the one that the promise resolves to has the result.
 */
export interface RemoteSession {
  readonly look: LookName;
  set(settings: Settings): Promise<void>;
  process<T extends Uint8Array | Uint8ClampedArray | ArrayBuffer>(picture: T): Promise<T>;
  free(): Promise<void>;
}

export interface RemoteLumora {
  readonly looks: readonly LookFacts[];
  readonly limits: Limits;
  /** Resolves to a new picture (an `ImageData` for one) with the result; the given one is empty. */
  apply<T extends Picture>(picture: T, settings: Settings & LookChoice): Promise<T>;
  session(options: SessionOptions): Promise<RemoteSession>;
  loadTextures(): Promise<void>;
  /** Ends the worker; requests that are under way reject. */
  close(): void;
}

/** As `createLumora` of `lumora-filters`, in a worker of its own. */
export function createLumora(sources?: Omit<Sources, 'wasm' | 'textures'> & {
  wasm?: URL | string | ArrayBuffer | ArrayBufferView | WebAssembly.Module;
  textures?: URL | string | ArrayBuffer | ArrayBufferView;
}): Promise<RemoteLumora>;
