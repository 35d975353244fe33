// One instance of the module: its imports, its memory, its texts.

/** What the module's C library asks of its surroundings: a clock, and streams that nobody reads. */
function surroundings(memory) {
  const view = () => new DataView(memory().buffer);
  return {
    clock_time_get(clock, precision, result) {
      view().setBigUint64(result, BigInt(Math.round(Date.now() * 1000)) * 1000n, true);
      return 0;
    },
    fd_write(stream, parts, count, written) {
      let bytes = 0;
      for (let i = 0; i < count; ++i) bytes += view().getUint32(parts + 8 * i + 4, true);
      view().setUint32(written, bytes, true);
      return 0;
    },
    fd_close: () => 0,
    fd_seek: () => 70, // no stream can be sought in
    proc_exit(code) {
      throw new Error(`the module has stopped with ${code}`);
    },
  };
}

export class Instance {
  #exports;
  #pack = null;

  /** @param {WebAssembly.Module} compiled */
  static async create(compiled) {
    const made = new Instance();
    const imports = {
      wasi_snapshot_preview1: surroundings(() => made.#exports.memory),
      env: {
        emscripten_notify_memory_growth() {},
        lumora_pack_size: () => made.#pack?.length ?? 0,
        lumora_read_pack: (to, offset, count) => {
          made.bytes(to, count).set(made.#pack.subarray(offset, offset + count));
          return count;
        },
      },
    };
    const instance = await WebAssembly.instantiate(compiled, imports);
    made.#exports = instance.exports;
    made.#exports._initialize();
    return made;
  }

  /** How much the module has taken so far, in bytes. */
  get memoryBytes() {
    return this.#exports.memory.buffer.byteLength;
  }

  get hasPack() {
    return this.#pack !== null;
  }

  /** A view that is good until memory grows. */
  bytes(address, count) {
    return new Uint8Array(this.#exports.memory.buffer, address >>> 0, count);
  }

  /** Calls a function that cannot fail. */
  call(name, ...args) {
    return this.#exports[name](...args);
  }

  /** Calls a function that gives 0 on failure: an Error then, with the library's words. */
  demand(name, ...args) {
    const result = this.#exports[name](...args) >>> 0;
    if (result === 0) throw new Error(this.text(this.#exports.lumora_error()));
    return result;
  }

  text(address) {
    const rest = new Uint8Array(this.#exports.memory.buffer, address >>> 0);
    return new TextDecoder().decode(rest.slice(0, rest.indexOf(0)));
  }

  /** From now on textures come from these bytes; from none where the library refuses them. */
  usePack(bytes) {
    this.#pack = bytes;
    try {
      this.demand('lumora_pack_changed');
    } catch (error) {
      this.#pack = null;
      this.call('lumora_pack_changed');
      throw error;
    }
  }
}
