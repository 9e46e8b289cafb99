/// <reference types="vite/client" />
declare module "virtual:module" {
  /** The WebAssembly module: gzip, as base64 text. */
  const packed: string;
  export default packed;
}
