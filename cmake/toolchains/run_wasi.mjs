// Runs a WebAssembly program with the whole file system: node run_wasi.mjs PROGRAM [ARGUMENT...]
import { readFileSync } from "node:fs";
import { WASI } from "node:wasi";

const [program, ...rest] = process.argv.slice(2);
const wasi = new WASI({
  version: "preview1",
  args: [program, ...rest],
  env: { ...process.env, PWD: process.cwd() },
  preopens: { "/": "/" },
  returnOnExit: true,
});
const { instance } = await WebAssembly.instantiate(readFileSync(program), wasi.getImportObject());
process.exitCode = wasi.start(instance);
