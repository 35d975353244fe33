// Chromium on the built page, for the tests of the page.
import { createRequire } from 'node:module';
import { readFile } from 'node:fs/promises';
import { after, before } from 'node:test';

import { chromium } from 'playwright-core';

import { serve } from '../serve.js';
import { root } from './support.js';

const kArguments = [
  '--no-sandbox', // tests run as root in containers
  '--use-fake-ui-for-media-stream',
  '--use-fake-device-for-media-stream=fps=30',
];

export const desktop = { width: 1280, height: 800 };
export const phone = { width: 390, height: 844 };

/** A browser for the tests of a file; its pages open the built page. */
export function useBrowser() {
  const state = {};
  before(async () => {
    state.server = await serve(`${root}build/page`);
    state.url = `http://127.0.0.1:${state.server.address().port}/`;
    state.browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: kArguments });
  });
  after(async () => {
    await state.browser?.close();
    state.server?.closeAllConnections?.();
    state.server?.close();
  });

  /** A fresh page, ready, in a context of its own; what it says in the console is a fault. */
  state.open = async (t, { viewport = desktop, prepare, ...options } = {}) => {
    const context = await state.browser.newContext({ viewport, serviceWorkers: 'block', ...options });
    t.after(() => context.close());
    const page = await context.newPage();
    page.faults = [];
    page.on('pageerror', (error) => page.faults.push(String(error)));
    await prepare?.(page);
    await page.goto(state.url);
    await said(page, /^sample.jpg/);
    return page;
  };
  return state;
}

/** Waits until the page's status says so. */
export async function said(page, words) {
  await page.waitForFunction(
    ([source]) => RegExp(source).test(document.getElementById('status').textContent),
    [words.source],
    { timeout: 60_000 },
  );
}

export async function openPhoto(page, name, mimeType, buffer) {
  await page.setInputFiles('#file', { name, mimeType, buffer });
  await said(page, RegExp(`^${name.replace('.', '\\.')}, `));
}

export async function choose(page, look) {
  await page.locator(`input[value="${look}"]`).check({ force: true });
}

export async function setStrength(page, strength) {
  await page.locator('#strength').fill(String(strength));
}

/** The bytes of what a click downloads, with the name. */
export async function downloaded(page, button = '#download') {
  const [file] = await Promise.all([page.waitForEvent('download'), page.click(button)]);
  return { name: file.suggestedFilename(), bytes: await readFile(await file.path()) };
}

/** Size and digest of a picture file's pixels, as the browser decodes it. */
export function decoded(page, bytes) {
  return page.evaluate(async (base64) => {
    const binary = Uint8Array.from(atob(base64), (c) => c.charCodeAt(0));
    const bitmap = await createImageBitmap(new Blob([binary]));
    const context = new OffscreenCanvas(bitmap.width, bitmap.height).getContext('2d');
    context.drawImage(bitmap, 0, 0);
    const { data } = context.getImageData(0, 0, bitmap.width, bitmap.height);
    const digest = new Uint8Array(await crypto.subtle.digest('SHA-256', data));
    return `${bitmap.width} x ${bitmap.height} ${[...digest].map((b) => b.toString(16)).join('')}`;
  }, bytes.toString('base64'));
}

/** Width and height of a recording, as the browser plays it. */
export function videoSize(page, bytes) {
  return page.evaluate(async (base64) => {
    const binary = Uint8Array.from(atob(base64), (c) => c.charCodeAt(0));
    const video = document.createElement('video');
    video.src = URL.createObjectURL(new Blob([binary], { type: 'video/webm' }));
    await new Promise((resolve, reject) => Object.assign(video, { onloadeddata: resolve, onerror: reject }));
    return [video.videoWidth, video.videoHeight];
  }, bytes.toString('base64'));
}

/** What is wrong with the page for people who cannot see it well or at all. */
export async function accessibilityFaults(page) {
  const { source } = createRequire(import.meta.url)('axe-core');
  await page.evaluate(source);
  const { violations } = await page.evaluate(() => globalThis.axe.run());
  return violations.map(({ id, nodes }) => `${id}: ${nodes.map((n) => n.target).join(', ')}`);
}
