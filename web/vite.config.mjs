// Builds one file, viewer.html, that needs nothing else: script, worker, style and module are within
// it, and its own content policy allows those and no other.
import { createHash } from "node:crypto";
import { readFileSync } from "node:fs";
import { gzipSync } from "node:zlib";
import { defineConfig } from "vite";
import { viteSingleFile } from "vite-plugin-singlefile";

const MODULE = process.env.CORVANTIS_MODULE ?? "../build/wasm/web/module/corvantis.wasm";

/** `virtual:module`: the WebAssembly module, compressed, as base64 text. */
function embeddedModule() {
  return {
    name: "embedded-module",
    resolveId: (id) => (id === "virtual:module" ? "\0virtual:module" : null),
    load(id) {
      if (id !== "\0virtual:module") return null;
      const packed = gzipSync(readFileSync(MODULE), { level: 9 });
      return `export default "${packed.toString("base64")}";`;
    },
  };
}

const digest = (text) => `'sha256-${createHash("sha256").update(text).digest("base64")}'`;
const contentsOf = (html, tag) =>
  [...html.matchAll(new RegExp(`<${tag}\\b[^>]*>([\\s\\S]*?)</${tag}>`, "g"))].map((m) => m[1]);

/** The policy that allows what stands in the page, by its digests. */
function contentPolicy(html) {
  return [
    "default-src 'none'",
    `script-src ${contentsOf(html, "script").map(digest).join(" ")} 'wasm-unsafe-eval'`,
    `style-src ${contentsOf(html, "style").map(digest).join(" ")}`,
    "img-src data: blob:",
    "worker-src blob:",
    "connect-src 'self'",
    "base-uri 'none'",
    "form-action 'none'",
  ].join("; ");
}

function sealedPage() {
  return {
    name: "sealed-page",
    enforce: "post",
    // Behind the plugin that puts everything into the page.
    generateBundle: {
      order: "post",
      handler(_, bundle) {
        for (const file of Object.values(bundle)) {
          if (!file.fileName.endsWith(".html")) continue;
          const html = String(file.source);
          file.source = html.replace("CONTENT-POLICY", () => contentPolicy(html));
        }
      },
    },
  };
}

export default defineConfig({
  plugins: [embeddedModule(), viteSingleFile({ removeViteModuleLoader: true }), sealedPage()],
  worker: { format: "iife", plugins: () => [embeddedModule()] },
  build: {
    target: "es2022",
    outDir: process.env.CORVANTIS_PAGE ?? "dist",
    emptyOutDir: true,
    modulePreload: { polyfill: false },
    rollupOptions: { input: "viewer.html" },
  },
});
