// The page in a real browser: node --test apps/web/tests. Needs the built page and the native tool.
import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import { once } from "node:events";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import path from "node:path";
import { after, before, beforeEach, test } from "node:test";
import { folder, launch, root, serve, tool } from "./browser.mjs";

const scratch = mkdtempSync(path.join(tmpdir(), "vek0-page-"));
const sample = (name) => path.join(root, "samples", name);
const vek0 = (...args) => execFileSync(tool, args, { maxBuffer: 1 << 30, stdio: ["ignore", "pipe", "ignore"] });
let server, browser, page;
const strange = [];

before(async () => {
  server = await serve();
  browser = await launch();
});
after(async () => {
  await browser?.close();
  server?.close();
  rmSync(scratch, { recursive: true });
});
beforeEach(async () => {
  await page?.close();
  page = await freshPage();
});

async function freshPage(options = {}) {
  const made = await browser.newPage({ viewport: { width: 1200, height: 800 }, ...options });
  made.on("pageerror", (error) => strange.push(error.message));
  made.on("console", (message) => message.type() === "error" && strange.push(message.text()));
  made.on("request", (request) => {
    const url = request.url();
    if (!url.startsWith(server.address) && !/^(blob|data):/.test(url)) strange.push(`request of ${url}`);
  });
  await made.goto(server.address);
  await made.evaluate(() => window.vek0.ready);
  return made;
}

function open(file, on = page) {
  const text = readFileSync(file).toString("base64");
  return on.evaluate(async ([name, data]) => {
    const bytes = Uint8Array.from(atob(data), (c) => c.charCodeAt(0));
    return window.vek0.open(name, bytes);
  }, [path.basename(file), text]);
}

const run = (work, argument) => page.evaluate(work, argument);

async function saved(version) {
  const text = await run(async (v) => {
    const bytes = await window.vek0.save("dxf", v ? { version: v } : {});
    let all = "";
    for (let i = 0; i < bytes.length; i += 32768)
      all += String.fromCharCode(...bytes.subarray(i, i + 32768));
    return btoa(all);
  }, version);
  return Buffer.from(text, "base64");
}

function toolEdits(file, lines, ...more) {
  const script = path.join(scratch, "script.txt");
  const out = path.join(scratch, "out.dxf");
  writeFileSync(script, lines.join("\n") + "\n");
  vek0("edit", file, "-o", out, "-f", "--script", script, ...more);
  return readFileSync(out);
}

test("opens what the tool opens, and lists the same", async () => {
  for (const name of ["flange.dxf", "house.dxf", "every_kind_r12.dxf", "room_ac1015.dxf"]) {
    const opened = await open(sample(name));
    assert.equal(opened.ok, true);
    const lines = vek0("list", "--json", "--quiet", sample(name)).toString().trim();
    const listed = lines === "" ? [] : lines.split("\n").map((line) => JSON.parse(line));
    // The tool measures texts without fonts.
    const compared = (all) => all.map((e) => (e.text === null && e.kind !== "INSERT"
      ? e : { ...e, extents: null }));
    assert.deepEqual(compared(await run(() => window.vek0.list())), compared(listed), name);
    assert.deepEqual(await saved(), readFileSync(sample(name)), name);
  }
  const broken = path.join(scratch, "broken.dxf");
  for (const content of ["", "not a drawing", "0\nSECTION\n2\nENTITIES\n0\nLINE\n10\n"]) {
    writeFileSync(broken, content);
    const failed = await open(broken);
    assert.equal(typeof failed.ok, "boolean");
    assert.equal(failed.ok, failed.error === null);
  }
});

test("measures, picks and snaps as the core does", async () => {
  await open(sample("flange.dxf"));
  const got = await run(async () => {
    const { vek0 } = window;
    const circle = (await vek0.list()).find((e) => e.kind === "CIRCLE" && e.layer === "OUTLINE");
    const center = [(circle.extents.min[0] + circle.extents.max[0]) / 2,
      (circle.extents.min[1] + circle.extents.max[1]) / 2];
    const right = await vek0.toScreen([circle.extents.max[0], center[1]]);
    const box = [await vek0.toScreen([circle.extents.min[0] - 1, circle.extents.min[1] - 1]),
      await vek0.toScreen([circle.extents.max[0] + 1, circle.extents.max[1] + 1])];
    return {
      circle: circle.handle, center,
      picked: await vek0.pick([right[0] + 2, right[1]]),
      nothing: await vek0.pick([2, 2]),
      window: await vek0.selectBox(...box, "window"),
      crossing: await vek0.selectBox(box[0], [box[0][0] + 20, box[1][1]], "crossing"),
      snapped: await vek0.snap(await vek0.toScreen([center[0] + 0.2, center[1] + 0.2])),
      noSnap: await vek0.snap([2, 2]),
      radius: await vek0.measure("radius", [circle.handle]),
      area: await vek0.measure("area", [circle.handle]),
      angle: await vek0.measure("angle", [[1, 0], [0, 0], [0, 5]]),
      distance: await vek0.measure("distance", [[0, 0], [3, 4]]),
      selected: await vek0.selection([circle.handle]),
      same: await vek0.selection(),
      errors: await Promise.all([vek0.measure("radius", ["FFFF"]), vek0.measure("volume", [[0, 0]]),
        vek0.selection(["zz"]), vek0.toScreen([NaN, 1]), vek0.pick()].map((p) => p.catch((e) => e.message))),
    };
  });
  assert.ok(got.picked.includes(got.circle));
  assert.deepEqual(got.nothing, []);
  assert.ok(got.window.includes(got.circle) && got.crossing.includes(got.circle));
  assert.ok(["center", "intersection"].includes(got.snapped.kind));
  assert.equal(got.noSnap, null);
  assert.ok(Math.abs(got.snapped.point[0] - got.center[0]) < 1e-9);
  assert.deepEqual([got.radius, got.angle, got.distance], [100, 90, 5]);
  assert.ok(Math.abs(got.area - Math.PI * 1e4) < 1e-6);
  assert.deepEqual([got.selected, got.same], [[got.circle], [got.circle]]);
  assert.ok(got.errors.every((error) => /^[a-z'].* .*/i.test(error) && !/undefined/.test(error)), got.errors);
});

const script = ["layer DRAFT", "line 0,0 @10<45", "circle 5,5 2", "rectangle 20,20 40,30",
  "arc 1,0 0,1 -1,0", "text 5,5 3 0 hello", "select layer=DRAFT", "move 3,4", "copy 50,0",
  "rotate 30@0,0", "scale 2@0,0", "mirror 0,0 0,1", "select kind=POLYLINE", "offset 2", "explode",
  "select kind=LINE", "set-color 3", "join 0.01", "select kind=CIRCLE layer=DRAFT", "hatch ANSI31",
  "delete", "layer color DRAFT 5", "layer lineweight DRAFT 0.35"];

test("every edit saves what the tool saves, and undo takes it back", async () => {
  for (const name of ["flange.dxf", "room_ac1015.dxf"]) {
    await open(sample(name));
    for (const line of script) {
      const { ok, message } = await run((l) => window.vek0.command(l), line);
      assert.equal(ok, true, `${line}: ${message}`);
    }
    const edited = toolEdits(sample(name), script, "--to", "keep");
    assert.deepEqual(await saved(), edited, name);
    const undone = await run(async () => {
      let count = 0;
      for (;; ++count) try { await window.vek0.undo(); } catch { return count; }
    });
    assert.ok(undone >= script.length / 2);
    assert.deepEqual(await saved(), readFileSync(sample(name)));
    await run(async (count) => { for (let i = 0; i < count; ++i) await window.vek0.redo(); }, undone);
    assert.deepEqual(await saved(), edited);
  }
  const wrong = await run(() => window.vek0.command("lime 0,0"));
  assert.equal(wrong.ok, false);
  assert.match(wrong.message, /not a command/);
});

test("edits upload only what they change", async () => {
  await open(sample("house.dxf"));
  const bytes = await run(async () => {
    await window.vek0.view({});
    const before = (await window.vek0.stats()).strokes;
    await window.vek0.command("line 0,0 10,10");
    await window.vek0.view({});
    return { before, stats: await window.vek0.stats() };
  });
  assert.ok(bytes.stats.strokes > 0 && bytes.stats.engineBytes > 0);
});

test("layers and views change what is shown", async () => {
  await open(sample("flange.dxf"));
  const got = await run(async () => {
    const { vek0 } = window;
    const view = await vek0.view({ center: [100, 100], height: 50 });
    const screen = await vek0.toScreen([100, 100]);
    const world = await vek0.toWorld(screen);
    const point = await vek0.toScreen([300, 148.5]);
    const shown = (await vek0.list()).find((e) => e.layer === "CENTER");
    await vek0.layer("CENTER", { on: false });
    const hidden = (await vek0.list()).find((e) => e.handle === shown.handle);
    await vek0.undo();
    return { view, screen, world, shown, hidden, none: await vek0.view({ layout: "nope" }).catch((e) => e.message) };
  });
  assert.deepEqual([got.view.center, got.view.height, got.view.layout], [[100, 100], 50, "Model"]);
  assert.ok(Math.abs(got.world[0] - 100) < 1e-9);
  assert.deepEqual([got.shown.visible, got.hidden.visible], [true, false]);
  assert.match(got.none, /no layout nope/);
});

// Ink of a PNG in cells of a grid, by the browser's own decoder.
function inkOf(bytes) {
  return run(async (data) => {
    const bytes = Uint8Array.from(atob(data), (c) => c.charCodeAt(0));
    const image = await createImageBitmap(new Blob([bytes], { type: "image/png" }));
    const canvas = new OffscreenCanvas(image.width, image.height);
    const context = canvas.getContext("2d");
    context.drawImage(image, 0, 0);
    const { data: pixels, width, height } = context.getImageData(0, 0, image.width, image.height);
    const cells = new Array(64).fill(0);
    for (let y = 0; y < height; ++y)
      for (let x = 0; x < width; ++x) {
        const at = 4 * (y * width + x);
        const ink = 765 - pixels[at] - pixels[at + 1] - pixels[at + 2];
        cells[8 * Math.floor((8 * y) / height) + Math.floor((8 * x) / width)] += ink / 765;
      }
    return { width, height, cells };
  }, bytes.toString("base64"));
}

// 10 km wide in millimeters, five million from the origin; its smallest circle measures 0.02.
function farDrawing() {
  const lines = ["0", "SECTION", "2", "ENTITIES"];
  for (let size = 1e7; size > 0.02; size /= 10)
    lines.push("0", "CIRCLE", "8", "0", "10", 5e6, "20", 5e6, "40", size / 2,
      "0", "LINE", "8", "0", "10", 5e6 - size, "20", 5e6 - size / 3, "11", 5e6 + size, "21", 5e6 + size / 4);
  const file = path.join(scratch, "far.dxf");
  writeFileSync(file, [...lines, "0", "ENDSEC", "0", "EOF", ""].join("\n"));
  return file;
}

test("pictures look like those of the tool, at any zoom", async () => {
  const views = [sample("flange.dxf"), sample("every_kind_r12.dxf"), sample("house.dxf")].map((f) => [f]);
  for (const height of [2e7, 100, 1, 0.03]) views.push([farDrawing(), { center: [5e6, 5e6], height }]);
  for (const [file, view] of views) {
    const name = `${path.basename(file)} ${view?.height ?? ""}`;
    await open(file);
    const window_ = await run((v) => window.vek0.view(v)
      .then(({ center, height }) => [center[0] - height / 2, center[1] - height / 2,
        center[0] + height / 2, center[1] + height / 2]), view ?? {});
    const text = await run(async (box) => {
      const bytes = await window.vek0.save("png",
        { width: 800, height: 800, window: box, background: "#ffffff" });
      return btoa(String.fromCharCode(...bytes.slice(0, 1e5)) +
        [...bytes.slice(1e5)].map((c) => String.fromCharCode(c)).join(""));
    }, window_);
    const out = path.join(scratch, "native.png");
    vek0("render", file, "-o", out, "-f", "--size", "800x800", "--window", window_.join(","),
      "--margin", "0", "--no-xrefs");
    const [ours, native] = [await inkOf(Buffer.from(text, "base64")), await inkOf(readFileSync(out))];
    assert.deepEqual([ours.width, ours.height], [native.width, native.height]);
    const total = native.cells.reduce((a, b) => a + b);
    const off = ours.cells.reduce((sum, ink, i) => sum + Math.abs(ink - native.cells[i]), 0);
    if (process.env.VEK0_SHOW) console.log(name, off / total, total);
    assert.ok(total > 100 && off / total < 0.2, `${name}: ${off / total} of the ink differs`);
  }
  const svg = await run(async () => new TextDecoder().decode(await window.vek0.save("svg")));
  assert.match(svg, /^<\?xml|^<svg/);
});

test("keys, wheel and touch reach the drawing", async () => {
  await open(sample("flange.dxf"));
  const before = await run(() => window.vek0.view({}));
  await page.focus("#canvas");
  await page.keyboard.press("+");
  await page.keyboard.press("ArrowLeft");
  const zoomed = await run(() => window.vek0.view({}));
  assert.ok(zoomed.height < before.height && zoomed.center[0] < before.center[0]);
  await page.keyboard.press("Home");
  assert.equal((await run(() => window.vek0.view({}))).height, before.height);
  await page.locator("#command").fill("line 0,0 10,10");
  await page.keyboard.press("Enter");
  await page.waitForFunction(() => document.title.startsWith("•"));
  await page.focus("#canvas");
  await page.keyboard.press("Control+z");
  await page.waitForFunction(() => !document.title.startsWith("•"));
  // Clicks give the points of a command; with Ortho they are straight beside each other.
  await page.locator("#command").fill("line");
  await page.keyboard.press("F8");
  const corner = await page.locator("#canvas").boundingBox();
  for (const [x, y] of [[12, 10], [62, 17]]) {
    const typed = await page.locator("#command").inputValue();
    await page.mouse.click(corner.x + x, corner.y + y);
    await page.waitForFunction((old) => document.getElementById("command").value !== old, typed);
  }
  await page.keyboard.press("Enter");
  await page.waitForFunction(() => document.title.startsWith("•"));
  const { min: start, max: end } = (await run(() => window.vek0.list())).at(-1).extents;
  assert.equal(start[1], end[1]);
  const [[left], [right]] = await run((ends) => Promise.all(ends.map(window.vek0.toScreen)), [start, end]);
  assert.ok(Math.abs(right - left - 50) < 0.01);
  // Dragging the right end of the line; F8 ends Ortho.
  await page.focus("#canvas");
  await page.keyboard.press("F8");
  await run((handle) => window.vek0.selection([handle]), (await run(() => window.vek0.list())).at(-1).handle);
  await page.mouse.move(corner.x + 62, corner.y + 10);
  await page.mouse.down();
  for (const y of [30, 60]) await page.mouse.move(corner.x + 62, corner.y + y);
  await page.mouse.up();
  await page.waitForFunction((y) => window.vek0.list().then((all) => all.at(-1).extents.min[1] < y), start[1]);
  const [[, top], [, bottom]] = await run(async () => {
    const { min, max } = (await window.vek0.list()).at(-1).extents;
    return Promise.all([max, min].map(window.vek0.toScreen));
  });
  assert.ok(Math.abs(bottom - top - 50) < 0.01);
  // Pasting puts the lower left corner where the click is.
  await page.keyboard.press("Control+c");
  await page.keyboard.press("Control+v");
  await page.waitForFunction(() => document.getElementById("command").value.startsWith("copy "));
  const count = (await run(() => window.vek0.list())).length;
  await page.mouse.click(corner.x + 20, corner.y + 300);
  await page.waitForFunction((n) => window.vek0.list().then((all) => all.length > n), count);
  const [x, y] = await run(async () =>
    window.vek0.toScreen((await window.vek0.list()).at(-1).extents.min));
  assert.ok(Math.hypot(x - 20, y - 300) < 0.1);
  const touch = await freshPage({ hasTouch: true });
  await open(sample("flange.dxf"), touch);
  const client = await touch.context().newCDPSession(touch);
  const points = (d) => [{ x: 500 - d, y: 400, id: 1 }, { x: 500 + d, y: 400, id: 2 }];
  await client.send("Input.dispatchTouchEvent", { type: "touchStart", touchPoints: points(50) });
  await client.send("Input.dispatchTouchEvent", { type: "touchMove", touchPoints: points(100) });
  await client.send("Input.dispatchTouchEvent", { type: "touchEnd", touchPoints: [] });
  assert.ok((await touch.evaluate(() => window.vek0.view({}))).height < before.height * 0.7);
  await touch.close();
});

test("names in drawings are never markup, and a lost context comes back", async () => {
  const evil = path.join(scratch, "evil.dxf");
  const name = "<img src=x onerror=alert(1)>";
  writeFileSync(evil, ["0", "SECTION", "2", "TABLES", "0", "TABLE", "2", "LAYER", "0", "LAYER", "2", name,
    "70", "0", "62", "7", "0", "ENDTAB", "0", "ENDSEC", "0", "SECTION", "2", "ENTITIES", "0", "TEXT", "8",
    name, "10", "0", "20", "0", "40", "5", "1", name, "0", "ENDSEC", "0", "EOF", ""].join("\n"));
  const opened = await open(evil);
  assert.equal(opened.layers[1].name, name);
  await page.locator("#search-text").fill("img");
  await page.locator("#search button").click();
  await page.waitForSelector("#found li");
  assert.equal(await run(() => document.querySelectorAll("img").length), 0);
  await open(sample("flange.dxf"));
  const strokes = (await run(() => window.vek0.stats())).strokes;
  const after_ = await run(async () => {
    const gl = document.getElementById("canvas").getContext("webgl2");
    const lose = gl.getExtension("WEBGL_lose_context");
    lose.loseContext();
    await new Promise((resolve) => setTimeout(resolve, 200));
    lose.restoreContext();
    await new Promise((resolve) => setTimeout(resolve, 1500));
    await window.vek0.view({});
    return (await window.vek0.stats()).strokes;
  });
  assert.equal(after_, strokes);
});

test("without WebGL 2 it says so and shows a picture", async () => {
  const plain = await browser.newPage();
  await plain.addInitScript(() => {
    const real = HTMLCanvasElement.prototype.getContext;
    HTMLCanvasElement.prototype.getContext = function (kind, ...more) {
      return kind === "webgl2" ? null : real.call(this, kind, ...more);
    };
  });
  await plain.goto(server.address);
  await plain.evaluate(() => window.vek0.ready);
  await plain.waitForSelector("#plain img");
  assert.match(await plain.textContent("#plain"), /no WebGL 2/);
  await plain.close();
});

test("unsaved changes come back after a crash", async () => {
  const context = await browser.newContext();
  const first = await context.newPage();
  await first.goto(server.address);
  await first.evaluate(() => window.vek0.ready);
  await open(sample("flange.dxf"), first);
  await first.evaluate(() => window.vek0.command("circle 1,2 3"));
  const isKept = () => first.evaluate(() => new Promise((resolve) => {
    indexedDB.open("vek0").onsuccess = ({ target: { result: database } }) => {
      const kept = database.transaction("journal").objectStore("journal").get("deeds");
      kept.onsuccess = () => resolve(kept.result !== undefined);
      database.close();
    };
  }));
  while (!(await isKept())) await first.waitForTimeout(50);
  await first.close();
  const second = await context.newPage();
  await second.goto(server.address);
  await second.evaluate(() => window.vek0.ready);
  await second.locator("#recover").click();
  await second.waitForFunction(async () => (await window.vek0.list()).length === 29);
  await context.close();
});

test("the tool serves the page, and writes it with a drawing inside", async () => {
  const out = path.join(scratch, "view.html");
  vek0("view", sample("flange.dxf"), "-o", out, "-f", "--page", folder);
  const alone = await browser.newPage();
  alone.on("pageerror", (error) => strange.push(error.message));
  await alone.goto(`file://${out}`);
  await alone.evaluate(() => window.vek0.ready);
  assert.equal((await alone.evaluate(() => window.vek0.list())).length, 28);
  assert.throws(() => vek0("view", sample("flange.dxf"), "-o", out, "--page", folder), { status: 3 });
  assert.throws(() => vek0("serve", sample("house.dxf"), sample("house.dxf"), "--page", folder), { status: 2 });
  const child = spawn(tool, ["serve", sample("house.dxf"), sample("room_ac1015.dxf"), "--page", folder]);
  try {
    const address = String((await once(child.stdout, "data"))[0]).split("\n")[0];
    assert.match(address, /^http:\/\/127\.0\.0\.1:\d+\/[0-9a-f]{32}\/\?file=house\.dxf$/);
    await alone.goto(address);
    await alone.evaluate(() => window.vek0.ready);
    assert.match(await alone.title(), /house\.dxf/);
    await alone.locator("#samples").selectOption("files/room_ac1015.dxf");
    await alone.waitForFunction(() => document.title.includes("room_ac1015.dxf"));
    const base = address.replace(/\?.*/, "");
    for (const wrong of [`${base}files/flange.dxf`, `${base}files/..%2Fflange.dxf`, new URL("/", base)])
      assert.equal((await fetch(wrong)).status, 404);
  } finally {
    child.kill();
    await alone.close();
  }
});

test("is accessible", async () => {
  await open(sample("flange.dxf"));
  const source = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
  await run(source);
  const found = await run(() => window.axe.run());
  assert.deepEqual(found.violations.map(({ id, nodes }) => `${id}: ${nodes[0].html}`), []);
});

test("nothing strange has happened", () => {
  assert.deepEqual(strange, []);
});
