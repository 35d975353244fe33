// Times every look on a 1080p picture in this module and in the native library at its lowest vector
// level, look by look in turn, on one thread; then the packages that people use instead.
//   node web/bench/speed.js NATIVE-BENCHMARK-PROGRAM PACK-FOLDER
import { execFileSync } from 'node:child_process';
import { fileURLToPath } from 'node:url';

const root = fileURLToPath(new URL('../..', import.meta.url));
const { createLumora } = await import(`${root}build/package/node.js`);
const { testPicture } = await import(`${root}web/tests/support.js`);
const [program, resources] = process.argv.slice(2);

const kShape = { width: 1920, height: 1080 };
const kRounds = 15;
const kCalls = 8;
const kTurns = 3; // of a look in both; the medians stand a moment in which others had the caches

const shorter = Math.min(kShape.width, kShape.height);
// As the native program has them.
const kSettings = {
  mosaic: { rect: [0, 0, 1920, 1080], block: 16 },
  'colour-fix': { colour: [200, 60, 60], tolerance: 30 },
  blur: { centre: [960, 540], radius: [shorter / 6, shorter / 3] },
  'tilt-shift': { band: [864, 432, 1056, 648] },
};

const median = (values) => values.sort((a, b) => a - b)[values.length >> 1];

/** Milliseconds of processor time, which other programs do not lengthen much. */
function timed(work, calls = kCalls) {
  work();
  const rounds = Array.from({ length: kRounds }, () => {
    const start = process.cpuUsage();
    for (let i = 0; i < calls; ++i) work();
    const { user, system } = process.cpuUsage(start);
    return (user + system) / 1000 / calls;
  });
  return median(rounds);
}

function nativeTime(look) {
  const name = look.name.replace('-', '').toUpperCase();
  const filter = `^${name}/rgba/1920x1080/s16/t1/prepared`;
  const options = ['--all', '--level', 'ssse3', '--cpu-time', '--resources', resources];
  const json = execFileSync(
    program,
    [...options, `--benchmark_filter=${filter}`, '--benchmark_format=json'],
    { encoding: 'utf8', stdio: ['ignore', 'pipe', 'ignore'] },
  );
  return JSON.parse(json).benchmarks[0].real_time;
}

const lumora = await createLumora();
const picture = testPicture(kShape.width, kShape.height);
const row = (...cells) => console.log(`| ${cells.join(' | ')} |`);
const ms = (value) => value.toFixed(2);

row('Look', 'Module, ms', 'with copies', 'Native SSSE3, ms', 'Module / native');
row('---', '--:', '--:', '--:', '--:');
for (const look of lumora.looks) {
  const own = kSettings[look.name] ?? {};
  const session = await lumora.session({ look: look.name, ...kShape, ...own });
  session.pixels.set(picture.data);
  const turns = Array.from({ length: kTurns }, () => ({
    native: nativeTime(look),
    inside: timed(() => session.process()),
    around: timed(() => session.process(picture.data)),
  }));
  const [native, inside, around] = ['native', 'inside', 'around'].map((name) =>
    median(turns.map((turn) => turn[name])));
  session.free();
  row(look.name, ms(inside), ms(around), ms(native), ms(inside / native));
}

/** The nearest work of another package, where it is installed. */
async function peer(name, make) {
  try {
    row(name, ms(timed(await make(), 1)));
  } catch (error) {
    row(name, error.code === 'ERR_MODULE_NOT_FOUND' ? 'not installed' : error.message);
  }
}

console.log();
row('Other packages', 'ms');
row('---', '--:');
const photon = () => import('@silvia-odwyer/photon-node').then((module) => module.default ?? module);
const makeImage = ({ PhotonImage }) =>
  new PhotonImage(new Uint8Array(picture.data), kShape.width, kShape.height);
for (const filter of ['oceanic', 'lofi']) {
  await peer(`@silvia-odwyer/photon-node, ${filter}`, async () => {
    const module = await photon();
    const image = makeImage(module);
    return () => module.filter(image, filter);
  });
}
await peer('jimp, greyscale', async () => {
  const { Jimp } = await import('jimp');
  const image = new Jimp({ ...kShape, data: Buffer.from(picture.data) });
  return () => image.greyscale();
});
await peer('jimp, a curve for each channel', async () => {
  const { Jimp } = await import('jimp');
  const image = new Jimp({ ...kShape, data: Buffer.from(picture.data) });
  const curve = Uint8Array.from({ length: 256 }, (_, v) => 255 * Math.sqrt(v / 255));
  return () =>
    image.scan((x, y, at) => {
      const { data } = image.bitmap;
      for (let c = 0; c < 3; ++c) data[at + c] = curve[data[at + c]];
    });
});
