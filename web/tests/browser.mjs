// A browser with the page in it, which fails the test that leaves an error or asks anyone else.
import { mkdtempSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { chromium } from "playwright-core";

const FLAGS = [
  "--headless",
  "--no-sandbox",
  "--disable-gpu",
  "--disable-quic",
  "--no-first-run",
  "--disable-background-networking",
  "--disable-component-update",
  "--disable-sync",
];

export const folder = mkdtempSync(join(tmpdir(), "corvantis-page-"));

export function launch() {
  return chromium.launchPersistentContext(join(folder, "profile"), {
    executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
    args: FLAGS,
    acceptDownloads: true,
    viewport: { width: 1280, height: 900 },
  });
}

/** A page that opened an address; `problems` is to stay empty. */
export async function visit(context, address) {
  const page = await context.newPage();
  const problems = [];
  const own = new URL(address);
  page.on("console", (message) => {
    if (["error", "warning"].includes(message.type())) problems.push(message.text());
  });
  page.on("pageerror", (error) => problems.push(String(error)));
  page.on("request", (request) => {
    const url = new URL(request.url());
    const isOwn = url.protocol === own.protocol && url.host === own.host;
    if (!isOwn && !["blob:", "data:"].includes(url.protocol)) problems.push(`asked ${url}`);
  });
  await page.goto(address);
  return { page, problems };
}

export async function openFiles(page, paths) {
  await page.setInputFiles("#file", paths);
  await page.waitForFunction(
    () =>
      document.querySelector("#upper canvas") !== null ||
      !document.querySelector("#message").hidden ||
      document.querySelector("#title").textContent === "There are no epochs.",
  );
}

// Chromium drops, without a word, what a page saves beyond ten files within a second of the first.
const [BURST, PAUSE] = [10, 1100];
const times = [];

async function keepPace(page) {
  const first = times[times.length - BURST] ?? -PAUSE;
  const wait = first + PAUSE - performance.now();
  if (wait > 0) await page.waitForTimeout(wait);
  times.push(performance.now());
}

/** What a person gets who saves the drawing. */
export async function saved(page, kind) {
  await keepPace(page);
  const [download] = await Promise.all([
    page.waitForEvent("download"),
    page.selectOption("#save", kind),
  ]).catch(async (problem) => {
    const state = await page.evaluate(() => [location.hash, document.body.innerText.slice(0, 400)]);
    throw new Error(`${kind} was not saved: ${state.join("\n")}`, { cause: problem });
  });
  const stream = await download.createReadStream();
  const pieces = [];
  for await (const piece of stream) pieces.push(piece);
  return Buffer.concat(pieces);
}

export const title = (page, text) =>
  page.waitForFunction(
    (wanted) => document.querySelector("#title").textContent.includes(wanted),
    text,
  );

/** The columns of a CSV file by their names. */
export function columnsOf(csv) {
  const [heads, ...lines] = csv.toString().trim().split("\n");
  const rows = lines.map((line) => line.split(",").map(Number));
  return new Map(heads.split(",").map((head, i) => [head, rows.map((row) => row[i])]));
}
