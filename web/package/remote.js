// The two ends of a conversation with a worker. Every request has a number and gets one answer; the
// buffers of pictures travel with them and are not copied.

/** A picture's buffer can travel when nothing else lies in it. */
function detachable(view) {
  const whole = view instanceof ArrayBuffer || view.byteLength === view.buffer.byteLength;
  return whole ? view : view.slice();
}

function bufferOf(view) {
  return view instanceof ArrayBuffer ? view : view.buffer;
}

function plain(source) {
  return source instanceof URL ? source.href : source;
}

class RemoteSession {
  #ask;
  #id;

  constructor(ask, id, look) {
    this.#ask = ask;
    this.#id = id;
    this.look = look;
  }

  set(settings) {
    return this.#ask('set', [this.#id, settings]);
  }

  process(picture) {
    const travelling = detachable(picture);
    return this.#ask('process', [this.#id, travelling], [bufferOf(travelling)]);
  }

  free() {
    return this.#ask('free', [this.#id]);
  }
}

class RemoteLumora {
  #ask;
  #stop;

  constructor(ask, stop, { looks, limits }) {
    this.#ask = ask;
    this.#stop = stop;
    this.looks = looks;
    this.limits = limits;
  }

  async apply({ data, width, height }, settings) {
    const travelling = detachable(data);
    const back = await this.#ask(
      'apply',
      [{ data: travelling, width, height }, settings],
      [bufferOf(travelling)],
    );
    const isImageData = typeof ImageData !== 'undefined' && back instanceof Uint8ClampedArray;
    return isImageData ? new ImageData(back, width, height) : { data: back, width, height };
  }

  async session(options) {
    const { id, look } = await this.#ask('session', [options]);
    return new RemoteSession(this.#ask, id, look);
  }

  loadTextures() {
    return this.#ask('loadTextures', []);
  }

  close() {
    return this.#stop(new Error('the worker has been closed'));
  }
}

/**
 * @param {{post: Function, listen: Function, fail: Function, stop: Function}} worker
 * @param {object} sources as createLumora takes them
 */
export async function connect(worker, { wasm, textures }) {
  const open = new Map();
  let last = 0;
  let end = null;

  const stop = (reason) => {
    end ??= reason;
    for (const { reject } of open.values()) reject(end);
    open.clear();
    return worker.stop();
  };
  worker.fail(stop);
  worker.listen(({ id, result, error }) => {
    const waiting = open.get(id);
    open.delete(id);
    if (error === undefined) waiting?.resolve(result);
    else waiting?.reject(new Error(error));
  });

  const ask = (method, args, transfer = []) =>
    new Promise((resolve, reject) => {
      if (end) return reject(end);
      const id = ++last;
      worker.post({ id, method, args }, transfer);
      open.set(id, { resolve, reject });
    });

  try {
    const facts = await ask('create', [{ wasm: plain(wasm), textures: plain(textures) }]);
    return new RemoteLumora(ask, stop, facts);
  } catch (error) {
    stop(error);
    throw error;
  }
}

/** The worker's end: answers the requests that a port brings. */
export function serve(createLumora, post, listen) {
  const sessions = new Map();
  let lumora;
  let last = 0;

  const answers = {
    async create(sources) {
      lumora = await createLumora(sources);
      return { looks: lumora.looks, limits: lumora.limits };
    },
    loadTextures: () => lumora.loadTextures(),
    apply: async (picture, settings) => (await lumora.apply(picture, settings)).data,
    async session(options) {
      const session = await lumora.session(options);
      sessions.set(++last, session);
      return { id: last, look: session.look };
    },
    set: (id, settings) => sessions.get(id)?.set(settings),
    process(id, picture) {
      const session = sessions.get(id);
      if (!session) throw new Error('the session has been freed');
      return session.process(picture);
    },
    free(id) {
      sessions.get(id)?.free();
      sessions.delete(id);
    },
  };

  listen(async ({ id, method, args }) => {
    try {
      const result = await answers[method](...args);
      const carriesPicture = method === 'apply' || method === 'process';
      post({ id, result }, carriesPicture ? [bufferOf(result)] : []);
    } catch (error) {
      post({ id, error: error.message }, []);
    }
  });
}
