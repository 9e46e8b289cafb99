// Epochs of every kind in the list and the drawing, by mouse and by fingers. The environment is that
// of page.test.mjs, with CORVANTIS_LIBRARY for the recordings that are made of every type.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { columnsOf, launch, openFiles, saved, title, visit } from "./browser.mjs";
import { epochsOf, writeKinds } from "./recordings.mjs";

const { CORVANTIS_DEMO: demo, CORVANTIS_PAGE: pagePath } = process.env;
const address = `file://${pagePath}`;
let context;

before(async () => (context = await launch()));
after(() => context.close());

const said = (page, selector, text) =>
  page.waitForFunction(
    ([place, wanted]) => document.querySelector(place)?.textContent.includes(wanted),
    [selector, text],
  );
const numbersInList = (page) =>
  page.$$eval(".row", (rows) => rows.map((row) => Number(row.id.replace("row-", ""))));

/** What comes of it when an address is shown. */
async function shown(page, hash) {
  await page.evaluate((wanted) => (location.hash = wanted), hash);
  await title(page, `Epoch ${/epochs=(\d+)/.exec(hash)[1]}`);
}

test("the list is filtered and sorted by its columns, spikes included", async () => {
  const { page, problems } = await visit(context, `${address}#epochs=6`);
  await openFiles(page, [demo]);
  await title(page, "Epoch 6");
  const response = columnsOf(await saved(page, "csv")).get("response_mV");
  const spikes = response.filter((value, i) => i > 0 && value > -20 && response[i - 1] <= -20);
  assert.ok(spikes.length > 10);
  await said(page, "#row-6 .spikes", `${spikes.length} spikes`);

  await page.click("#filters summary");
  await page.selectOption("#sort", "spikes");
  await page.check("#descending");
  await said(page, ".row", "44 spikes");
  await page.click(".row");
  const [most, second] = await numbersInList(page);
  await title(page, `Epoch ${most}:`);
  await page.click("#next");
  await title(page, `Epoch ${second}:`);

  await page.click("#no-filters");
  await said(page, "#found", "14 epochs");
  await page.fill("#level-from", "100");
  await page.fill("#level-to", "250");
  await page.selectOption("#sort", "level");
  await said(page, "#found", " of 14");
  const levelOf = ({ levels, components }) =>
    levels.amplitude ?? Math.max(...components.map(levelOf), -Infinity);
  const expected = epochsOf(demo)
    .map(({ number, entries }) => [number, entries.map(({ stimulus }) => levelOf(stimulus))])
    .map(([number, levels]) => [number, levels.find((level) => level >= 100 && level <= 250)])
    .filter(([, level]) => level !== undefined)
    .sort((a, b) => a[1] - b[1] || a[0] - b[0]);
  assert.ok(expected.length > 3);
  assert.deepEqual(
    await numbersInList(page),
    expected.map(([number]) => number),
  );
  await page.selectOption("#filter-type", "summed");
  await said(page, "#found", "1 of 14");
  await page.click("#row-12");
  await page.check("#components");
  await said(page, "#key", "component 0: sine 30 pA on 0 pA, 800 ms after 50 ms, period 20 ms");
  await said(page, "#key", "component 1: ramp 200 pA on 0 pA, 800 ms after 50 ms");
  assert.deepEqual(problems, []);
  await page.close();
});

test("digital lines, conductances and doubts are drawn as what they are", async () => {
  const [types, clamps, unstored] = writeKinds(["types", "clamps", "unstored"]);
  const { page, problems } = await visit(context, `${address}#epochs=11&channel=1`);
  await openFiles(page, [types, clamps, unstored]);
  // A sine of 500 and 40 points on 100 from point 30 on: at point 50 it is 100, or lines 2, 5 and 6.
  await shown(page, "#epochs=11&channel=1&a=0.005");
  await said(page, "#cursor-rows tr", "0x0064 (high: 2,5-6)");
  const lines = (await saved(page, "svg")).toString();
  assert.equal(lines.match(/<polyline/g).length, 32);
  const words = columnsOf(await saved(page, "csv")).get("stimulus_word");
  assert.deepEqual([words[0], words[50]], [100, 100]);
  assert.ok(Math.abs(words[40] - 600) <= 1);
  await shown(page, "#recording=1&epochs=4&channel=2");
  await said(page, "#lines", "Digital output: line 6 drawn; the others low");

  await shown(page, "#epochs=6");
  const columns = columnsOf(await saved(page, "csv"));
  for (const [name, first, last] of [
    ["excitatory_nS", 0, 3],
    ["inhibitory_nS", 9, 4],
  ])
    assert.deepEqual([columns.get(name)[0], columns.get(name).at(-1)], [first, last]);
  await said(page, "#doubt", "epoch 6: what was played followed the measured potential");

  await shown(page, "#recording=2&epochs=9");
  await said(page, "#doubt", "epoch 9: epoch 8 cannot be recomputed");
  assert.match((await saved(page, "svg")).toString(), /stroke-dasharray="2 3"/);
  await shown(page, "#recording=2&epochs=7");
  assert.doesNotMatch((await saved(page, "svg")).toString(), /stroke-dasharray/);
  await shown(page, "#recording=2&epochs=0");
  await said(page, "#doubt", "file wave");
  assert.deepEqual(problems, []);
  await page.close();
});

test("one finger moves the drawing, two zoom it", async () => {
  const { page, problems } = await visit(context, `${address}#epochs=4&from=0.2&to=0.4`);
  await openFiles(page, [demo]);
  await title(page, "Epoch 4");
  const browser = await context.newCDPSession(page);
  await browser.send("Emulation.setTouchEmulationEnabled", { enabled: true, maxTouchPoints: 2 });
  const box = await page.locator("#upper .u-over").boundingBox();
  const at = (share, id) => ({ x: box.x + share * box.width, y: box.y + 60, id });
  const touch = (type, ...points) =>
    browser.send("Input.dispatchTouchEvent", { type, touchPoints: points });
  const window = async (from, to) => {
    await page.waitForFunction(
      (wanted) => {
        const parts = new URLSearchParams(location.hash.slice(1));
        const near = (name, value) => Math.abs(Number(parts.get(name)) - value) < 0.002;
        return near("from", wanted[0]) && near("to", wanted[1]);
      },
      [from, to],
    );
  };
  await touch("touchStart", at(0.5, 0));
  for (const share of [0.55, 0.65, 0.75]) await touch("touchMove", at(share, 0));
  await touch("touchEnd");
  await window(0.15, 0.35); // a quarter of 200 ms earlier

  await touch("touchStart", at(0.25, 0), at(0.75, 1));
  for (const share of [0.3, 0.35, 0.375]) await touch("touchMove", at(share, 0), at(1 - share, 1));
  await touch("touchEnd");
  await window(0.05, 0.45); // twice as wide about its middle
  assert.deepEqual(problems, []);
  await page.close();
});
