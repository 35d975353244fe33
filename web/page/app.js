// The page: what there is to see, and who does what when.
import { createLumora } from './package/lumora.js';
import { createLumora as createRemote } from './package/worker.js';

import { Camera } from './camera.js';
import { Controls } from './controls.js';
import { Divider } from './divider.js';
import { Editor } from './editor.js';
import { defaultPlaces, settled } from './geometry.js';
import { LookList } from './looks.js';
import { Overlay } from './overlay.js';
import { colourAt, mostColourfulPoint, photoOf, readPhoto } from './photo.js';
import { download, encode, suffixOf } from './save.js';

const find = (id) => document.getElementById(id);

class Page {
  #lumora;
  #remote = null;
  #photo = null;
  #look;
  #strength;
  #settings = new Map(); // by look, of the picture that is shown
  #editor;
  #overlay;
  #controls;
  #looks;
  #divider = new Divider(find('frame'));
  #camera;
  #drawing = false;

  constructor(lumora) {
    this.#lumora = lumora;
    this.#look = lumora.looks.find(({ name }) => name === 'fugu');
    this.#strength = lumora.limits.fullStrength;
    this.#editor = new Editor(lumora, () => this.#worker(), (picture) => this.#drawAfter(picture));
    const change = (settings) => this.#change(settings);
    this.#overlay = new Overlay(find('shapes'), find('handles'), change);
    this.#controls = new Controls(find('settings'), change);
    this.#looks = new LookList(find('look-list'), lumora, (name) => this.#choose(name));
    this.#camera = new Camera(lumora, find('video'), find('after'), {
      failed: (error) => this.#tell(error),
      counted: ({ shown, missed }) =>
        this.#say(`Live, ${shown} frames a second${missed ? `, ${missed} left out` : ''}`),
    });
    this.#looks.select(this.#look.name);
    this.#listen();
    this.#showLook();
  }

  async openFile(file) {
    this.#quiet();
    if (this.#camera.isOpen) this.#closeCamera();
    this.#say('Reading the photograph ...');
    await this.#guard(async () => this.#setPhoto(await readPhoto(file, this.#lumora.limits)));
    if (!this.#photo) this.#say('');
    else this.#sayPhoto();
  }

  #listen() {
    const on = (id, event, act) => find(id).addEventListener(event, (e) => this.#guard(() => act(e)));
    on('open', 'click', () => find('file').click());
    on('file', 'change', ({ target }) => {
      const [file] = target.files;
      target.value = '';
      if (file) return this.openFile(file);
    });
    on('strength', 'input', ({ target }) => {
      this.#strength = Number(target.value);
      this.#refresh();
    });
    on('download', 'click', () => this.#download());
    on('camera', 'click', () => this.#openCamera());
    on('snapshot', 'click', () => this.#takePicture());
    on('record', 'click', () => this.#record());
    on('stop', 'click', () => this.#closeCamera());
    addEventListener('resize', () => this.#fit());
    this.#listenForFiles();
  }

  #listenForFiles() {
    const hasFile = (event) => [...(event.dataTransfer?.types ?? [])].includes('Files');
    addEventListener('dragover', (event) => {
      if (!hasFile(event)) return;
      event.preventDefault();
      document.body.classList.add('dragging');
    });
    addEventListener('dragleave', (event) => {
      if (!event.relatedTarget) document.body.classList.remove('dragging');
    });
    addEventListener('drop', (event) => {
      document.body.classList.remove('dragging');
      if (!hasFile(event)) return;
      event.preventDefault();
      const [file] = event.dataTransfer.files;
      if (file) this.openFile(file);
    });
    addEventListener('paste', (event) => {
      const [file] = event.clipboardData?.files ?? [];
      if (file) this.openFile(file);
    });
  }

  #setPhoto(photo) {
    this.#photo = photo;
    this.#settings.clear();
    this.#resize(photo.shown);
    find('before').getContext('2d').putImageData(photo.shown, 0, 0);
    this.#looks.draw(photo.square);
    this.#refresh();
    this.#divider.move(33);
  }

  #resize({ width, height }) {
    for (const id of ['before', 'after']) Object.assign(find(id), { width, height });
    this.#fit();
  }

  /** As large as the stage allows, and not larger than the picture has pixels. */
  #fit() {
    const { width, height } = find('after');
    const stage = find('stage');
    const isNarrow = matchMedia('(max-width: 860px)').matches;
    const style = getComputedStyle(stage);
    const room = stage.clientWidth - parseFloat(style.paddingLeft) - parseFloat(style.paddingRight);
    const rest = [...stage.children]
      .filter((child) => child !== find('frame') && child.id !== 'drop-hint')
      .reduce((sum, child) => sum + (child.hidden ? 0 : child.offsetHeight + 12), 0);
    const tall = isNarrow ? innerHeight * 0.5 : stage.clientHeight - rest - 40;
    const scale = Math.min(room / width, Math.max(tall, 120) / height, 2);
    Object.assign(find('frame').style, {
      width: `${Math.floor(width * scale)}px`,
      height: `${Math.floor(height * scale)}px`,
    });
  }

  /** The pixels that settings with a place refer to. */
  get #ground() {
    return this.#camera.isOpen ? { ...this.#camera.size } : this.#photo;
  }

  get #current() {
    const { name } = this.#look;
    if (!this.#settings.has(name)) this.#settings.set(name, this.#defaults());
    return this.#settings.get(name);
  }

  #defaults() {
    const facts = this.#look.settings.filter((setting) => setting.default !== undefined);
    const plain = Object.fromEntries(facts.map((setting) => [setting.name, setting.default]));
    if (!this.#ground) return plain;
    return { ...plain, ...defaultPlaces(this.#look, this.#ground), ...this.#startColour() };
  }

  #startColour() {
    if (this.#look.name !== 'colour-fix') return {};
    if (!this.#photo) return { colour: '#c83c28' };
    const { shown } = this.#photo;
    return { colour: colourAt(shown, mostColourfulPoint(shown)) };
  }

  get #call() {
    return { ...(this.#look.usesStrength && { strength: this.#strength }), ...this.#current };
  }

  #choose(name) {
    this.#look = this.#lumora.looks.find((look) => look.name === name);
    this.#quiet();
    this.#refresh();
    this.#looks.select(name); // the settings may have taken the room where it was
  }

  #change({ pick, ...settings }) {
    if (pick) settings.colour = this.#colourOf(pick);
    this.#settings.set(this.#look.name, settled({ ...this.#current, ...settings }, this.#ground));
    this.#refresh();
  }

  #colourOf(point) {
    return colourAt(this.#camera.isOpen ? this.#camera.picture() : this.#photo, point);
  }

  /** However many changes there are, the picture is drawn once a frame. */
  #refresh() {
    this.#showLook();
    if (this.#drawing) return;
    this.#drawing = true;
    requestAnimationFrame(() => {
      this.#drawing = false;
      this.#guard(() => this.#draw());
    });
  }

  async #draw() {
    if (this.#camera.isOpen) return this.#camera.choose(this.#look, this.#call);
    if (!this.#photo) return;
    await this.#editor.show(this.#photo, this.#look, this.#call);
  }

  #drawAfter(picture) {
    const context = find('after').getContext('2d');
    if (picture instanceof ImageData) context.putImageData(picture, 0, 0);
    else context.drawImage(picture, 0, 0);
  }

  #showLook() {
    const look = this.#look;
    find('look-name').textContent = look.title;
    const own = look.alias ? `${look.name}: ${look.summary}` : look.summary;
    find('look-summary').textContent = `${own[0].toUpperCase()}${own.slice(1)}.`;
    find('strength-row').hidden = !look.usesStrength;
    find('strength').value = this.#strength;
    find('strength-value').value = String(this.#strength);
    find('strength-words').textContent = look.strength;
    const settings = this.#ground ? this.#current : {};
    this.#controls.show(look, settings);
    this.#overlay.show(look, settings, this.#ground);
    find('download').disabled = !this.#photo || this.#camera.isOpen;
  }

  async #download() {
    const photo = this.#photo;
    const type = find('format').value;
    find('download').disabled = true;
    this.#quiet();
    this.#say('Making the whole picture ...');
    try {
      const picture = await this.#editor.whole(photo, this.#look, this.#call);
      const blob = await encode(picture, type, photo.exif);
      const name = photo.name.replace(/\.[^.]*$/, '');
      download(blob, `${name}_${this.#look.name}.${suffixOf(type)}`);
      this.#say(`Saved ${photo.width} x ${photo.height} pixels.`);
    } finally {
      find('download').disabled = false;
    }
  }

  async #openCamera() {
    if (this.#camera.isOpen) return;
    this.#quiet();
    this.#say('Waiting for the camera ...');
    try {
      await this.#camera.open(async (size) => {
        this.#editor.cancel();
        this.#settings.clear();
        this.#resize(size);
        this.#divider.move(0);
        this.#showCamera(true);
        this.#showLook();
        await this.#camera.choose(this.#look, this.#call);
      });
    } catch (error) {
      if (this.#camera.isOpen) this.#closeCamera();
      throw error;
    }
  }

  #showCamera(isOpen) {
    find('camera-bar').hidden = !isOpen;
    for (const id of ['divider', 'tags']) find(id).hidden = isOpen;
    find('camera').disabled = isOpen;
    this.#fit();
  }

  #closeCamera() {
    this.#camera.close();
    this.#showRecording();
    this.#showCamera(false);
    this.#settings.clear();
    if (this.#photo) this.#setPhoto(this.#photo);
    this.#sayPhoto();
  }

  async #takePicture() {
    const name = `camera-${new Date().toISOString().slice(0, 19).replace(/[T:]/g, '-')}`;
    const photo = photoOf(await createImageBitmap(this.#camera.picture()), name, null, this.#lumora.limits);
    this.#photo = photo;
    this.#closeCamera();
  }

  #record() {
    if (this.#camera.isRecording) this.#camera.stopRecording();
    else {
      this.#camera.startRecording((blob) => {
        download(blob, `${this.#look.name}.${blob.type.split('/')[1]}`);
        this.#say('The recording is saved.');
      });
    }
    this.#showRecording();
  }

  #showRecording() {
    find('record').setAttribute('aria-pressed', this.#camera.isRecording);
    find('record').textContent = this.#camera.isRecording ? 'Stop recording' : 'Record';
  }

  #worker() {
    this.#remote ??= createRemote().catch((error) => {
      this.#remote = null;
      throw error;
    });
    return this.#remote;
  }

  async #guard(act) {
    try {
      await act();
    } catch (error) {
      this.#tell(error);
    }
  }

  #tell(error) {
    const words = error.message;
    find('trouble').textContent = words[0].toUpperCase() + words.slice(1);
    find('trouble').hidden = false;
    this.#say('');
    this.#fit();
  }

  #quiet() {
    find('trouble').hidden = true;
    this.#fit();
  }

  #say(words) {
    find('status').textContent = words;
  }

  #sayPhoto() {
    const { name, width, height } = this.#photo ?? {};
    this.#say(name ? `${name}, ${width} x ${height} pixels` : '');
  }
}

async function start() {
  try {
    const page = new Page(await createLumora());
    const sample = await fetch('sample.jpg');
    await page.openFile(new File([await sample.blob()], 'sample.jpg', { type: 'image/jpeg' }));
  } catch (error) {
    find('trouble').textContent = `The page could not be started: ${error.message}`;
    find('trouble').hidden = false;
  }
  navigator.serviceWorker?.register('service-worker.js').catch(() => {});
}

start();
