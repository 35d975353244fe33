// The camera, live with a look; a picture or a recording of it.

const kWanted = {
  audio: false,
  video: { width: { ideal: 1280 }, height: { ideal: 720 }, facingMode: { ideal: 'environment' } },
};

const kRefusals = {
  NotAllowedError: 'The camera may not be used here: allow it in the browser, then try again.',
  NotFoundError: 'There is no camera on this device.',
  NotReadableError: 'The camera is in use by another program.',
};

async function openStream() {
  if (!navigator.mediaDevices) throw new Error('This browser gives no access to a camera here.');
  try {
    return await navigator.mediaDevices.getUserMedia(kWanted);
  } catch (error) {
    throw new Error(kRefusals[error.name] ?? `The camera does not work: ${error.message}`);
  }
}

export class Camera {
  #lumora;
  #video;
  #canvas;
  #context = null;
  #stream = null;
  #session = null;
  #chosen = null;
  #recorder = null;
  #failed;
  #counted;
  #second = null; // when the last count began, and with which frame of the camera

  /**
   * Frames with their look are put into the canvas.
   * failed(error): a look cannot be given; the camera goes on without.
   * counted({ shown, missed }): every second, of the frames that the camera had.
   */
  constructor(lumora, video, canvas, { failed, counted }) {
    this.#lumora = lumora;
    this.#video = video;
    this.#canvas = canvas;
    this.#failed = failed;
    this.#counted = counted;
  }

  get isOpen() {
    return this.#stream !== null;
  }

  get isRecording() {
    return this.#recorder !== null;
  }

  get size() {
    return { width: this.#video.videoWidth, height: this.#video.videoHeight };
  }

  async open(prepare) {
    const stream = await openStream();
    this.#stream = stream;
    this.#video.srcObject = stream;
    await this.#video.play();
    const { width, height } = this.size;
    this.#context = new OffscreenCanvas(width, height).getContext('2d', { willReadFrequently: true });
    stream.getVideoTracks()[0].addEventListener('ended', () => this.#failed(new Error('The camera has gone.')));
    this.#second = null;
    await prepare(this.size);
    this.#next();
  }

  /** From the next frame on. */
  async choose(look, settings) {
    const chosen = {};
    this.#chosen = chosen;
    const options = { look: look.name, ...this.size, ...settings };
    const session = await this.#lumora.session(options).catch((error) => this.#failed(error));
    if (this.#chosen !== chosen || !this.isOpen) return session?.free();
    this.#session?.free();
    this.#session = session ?? null;
  }

  startRecording(done) {
    const type = ['video/webm;codecs=vp9', 'video/webm', 'video/mp4'].find((name) =>
      globalThis.MediaRecorder?.isTypeSupported(name),
    );
    if (!type) throw new Error('This browser cannot record.');
    const parts = [];
    const recorder = new MediaRecorder(this.#canvas.captureStream(30), { mimeType: type });
    recorder.ondataavailable = ({ data }) => parts.push(data);
    recorder.onstop = () => done(new Blob(parts, { type: type.split(';')[0] }));
    recorder.start();
    this.#recorder = recorder;
  }

  stopRecording() {
    this.#recorder?.stop();
    this.#recorder = null;
  }

  close() {
    this.stopRecording();
    for (const track of this.#stream?.getTracks() ?? []) track.stop();
    this.#stream = null;
    this.#video.srcObject = null;
    this.#session?.free();
    this.#session = this.#chosen = null;
  }

  /** The frame that the camera has now, without the look. */
  picture() {
    const { width, height } = this.#context.canvas;
    this.#context.drawImage(this.#video, 0, 0, width, height);
    return this.#context.getImageData(0, 0, width, height);
  }

  #next() {
    this.#video.requestVideoFrameCallback((now, { presentedFrames }) => {
      if (!this.isOpen) return;
      this.#show();
      this.#count(now, presentedFrames);
      this.#next();
    });
  }

  #show() {
    const frame = this.picture();
    this.#canvas.getContext('2d').putImageData(this.#filtered(frame), 0, 0);
  }

  #filtered(frame) {
    if (!this.#session) return frame;
    try {
      this.#session.pixels.set(frame.data);
      return new ImageData(this.#session.process(), frame.width, frame.height);
    } catch (error) {
      this.#failed(error);
      return frame;
    }
  }

  #count(now, presented) {
    this.#second ??= { start: now, first: presented, shown: 0 };
    const { start, first } = this.#second;
    if (now - start >= 1000) {
      const { shown } = this.#second;
      this.#counted({ shown, missed: presented - first - shown });
      this.#second = { start: now, first: presented, shown: 0 };
    }
    ++this.#second.shown;
  }
}
