// Opens a recording in the module as a page does, its bytes given piece by piece, and holds each
// stimulus that it computes to what was played: node check_stimuli.mjs MODULE RECORDING PLAYED
import { closeSync, fstatSync, openSync, readFileSync, readSync } from "node:fs";

const [modulePath, recordingPath, playedPath] = process.argv.slice(2);
const file = openSync(recordingPath);
let module;
const memory = () => new DataView(module.memory.buffer);

const page = {
  size: () => fstatSync(file).size,
  read: (number, offset, address, count) =>
    readSync(file, new Uint8Array(module.memory.buffer, address, count), 0, count, offset),
};
const refused = 8; // no such descriptor: a page has no files of its own
const system = new Proxy({}, { get: () => () => refused });
const compiled = await WebAssembly.compile(readFileSync(modulePath));
module = (await WebAssembly.instantiate(compiled, { page, wasi_snapshot_preview1: system }))
  .exports;
module._initialize();

const textAt = (address) => {
  const bytes = Buffer.from(module.memory.buffer, address);
  return bytes.subarray(0, bytes.indexOf(0)).toString();
};
const { structures } = JSON.parse(textAt(module.CorvantisStructures()));
const make = (name) => {
  const address = module.malloc(structures[name].size);
  return { address, at: (member) => address + structures[name].members[member].place };
};
const problem = make("CorvantisProblem");
const checked = (result) => {
  if (result !== 0) throw new Error(textAt(problem.at("text")));
};

const name = module.malloc(8);
memory().setUint8(name, 0);
const handle = module.malloc(4);
checked(module.CorvantisOpenPageFile(0, name, handle, problem.address));
const recording = memory().getUint32(handle, true);

const played = readFileSync(playedPath); // each play: 64 bits of count, and the samples
const info = make("CorvantisEpochInfo");
let place = 0;
let samples = 0;
let different = 0;
const epochs = module.CorvantisEpochs(recording);
for (let epoch = 0n; epoch < epochs; ++epoch) {
  const count = Number(played.readBigUInt64LE(place));
  const expected = played.subarray(place + 8, place + 8 + 2 * count);
  place += 8 + 2 * count;
  const values = module.malloc(2 * count);
  checked(module.CorvantisEpoch(recording, epoch, info.address, problem.address));
  const points = BigInt(memory().getInt32(info.at("points"), true));
  const entries = memory().getInt32(info.at("entries"), true);
  if (Number(points) * entries !== count) throw new Error(`epoch ${epoch} has other samples`);
  checked(
    module.CorvantisStimulus(recording, epoch, -1, 0n, points, values, 0n, 0, problem.address),
  );
  if (!expected.equals(Buffer.from(module.memory.buffer, values, 2 * count))) ++different;
  samples += count;
  module.free(values);
}
module.CorvantisClose(recording);
closeSync(file);
console.log(`${epochs} epochs, ${samples} samples played, ${different} stimuli differ`);
process.exitCode = epochs > 0n && different === 0 && place === played.length ? 0 : 1;
