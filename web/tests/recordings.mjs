// Recordings for the tests, of the demo's bytes by docs/file-format.md: long, large and damaged ones.
import { execFileSync } from "node:child_process";
import {
  closeSync,
  ftruncateSync,
  openSync,
  readFileSync,
  writeFileSync,
  writeSync,
} from "node:fs";
import { join } from "node:path";
import { folder } from "./browser.mjs";

const FILE_HEADER = 580;
const [NUM_EPOCHS, TABLE_POSITION] = [536, 540];
const [EPOCH_HEADER, EPOCH_POINTS] = [912, 576];
const [PULSE_POINTS, PULSE_RECORD] = [8, 32];

/** Header and parameters of an epoch of one pulse, made as long as that; 2,000 points are no pulse. */
function pulseEpoch(demo, start, points) {
  const bytes = Buffer.from(demo.subarray(start, start + EPOCH_HEADER + PULSE_RECORD));
  bytes.writeInt32BE(points, EPOCH_POINTS);
  bytes.writeInt32BE(points - 2000, EPOCH_HEADER + PULSE_POINTS);
  return bytes;
}

/** A sound file of such epochs, all samples 0 but those given: [epoch, point, count]. */
export function writeLong(path, demoPath, start, points, epochs, samples = []) {
  const demo = readFileSync(demoPath);
  const epoch = pulseEpoch(demo, start, points);
  const size = epoch.length + 2 * points;
  const end = FILE_HEADER + epochs * size;
  const header = Buffer.from(demo.subarray(0, FILE_HEADER));
  header.writeInt32BE(epochs, NUM_EPOCHS);
  header.writeUInt32BE(end, TABLE_POSITION);
  const table = Buffer.alloc(4 * epochs);
  const file = openSync(path, "w");
  ftruncateSync(file, end + table.length);
  writeSync(file, header, 0, header.length, 0);
  for (let k = 0; k < epochs; ++k) {
    table.writeUInt32BE(FILE_HEADER + k * size, 4 * k);
    writeSync(file, epoch, 0, epoch.length, FILE_HEADER + k * size);
  }
  for (const [k, point, count] of samples) {
    const bytes = Buffer.alloc(2);
    bytes.writeInt16BE(count);
    writeSync(file, bytes, 0, 2, FILE_HEADER + k * size + epoch.length + 2 * point);
  }
  writeSync(file, table, 0, table.length, end);
  closeSync(file);
}

/** The demo with some of its bytes replaced: [place, byte]. */
export function writeDamaged(path, demoPath, length, changes) {
  const bytes = Buffer.from(readFileSync(demoPath).subarray(0, length));
  for (const [place, byte] of changes) bytes[place] = byte;
  writeFileSync(path, bytes);
}

/** What the tool says of a recording's epochs. */
export function epochsOf(path) {
  const said = execFileSync(process.env.CORVANTIS_TOOL, ["info", "--json", path]);
  return JSON.parse(said).recordings[0].epochs;
}

/** Recordings of the kinds that the Python package's tests are made of. */
export function writeKinds(kinds) {
  const python = process.env.CORVANTIS_PYTHON;
  const settings = { env: { ...process.env, PYTHONPATH: python }, stdio: "ignore" };
  return kinds.map((kind) => {
    const path = join(folder, `${kind}.dat`);
    execFileSync("/usr/bin/python3", [join(python, "tests/rig.py"), kind, path], settings);
    return path;
  });
}
