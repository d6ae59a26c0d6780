// Puts the page together: node pack.mjs MODULE-DIRECTORY GLYPHS OUT-DIRECTORY
// OUT gets index.html with its files, and single.html, which has everything inside but a drawing.
import { createHash } from "node:crypto";
import { cpSync, mkdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { gzipSync } from "node:zlib";
import { build } from "esbuild";

const [module, glyphs, out] = process.argv.slice(2);
if (!out) {
  console.error("usage: node pack.mjs MODULE-DIRECTORY GLYPHS OUT-DIRECTORY");
  process.exit(2);
}
const here = path.dirname(fileURLToPath(import.meta.url));
const page = path.join(here, "page");

const engine = {
  name: "engine",
  setup: ({ onResolve }) =>
    onResolve({ filter: /^vek0-engine$/ }, () => ({ path: path.resolve(module, "vek0_web.mjs") })),
};

async function bundle(name) {
  const result = await build({
    entryPoints: [path.join(page, name)], bundle: true, minify: true, write: false,
    format: "iife", target: "es2022", plugins: [engine], legalComments: "none",
    // The module asks for its own address, which it does not need: it gets its code.
    define: { "import.meta.url": "''" },
    external: ["module", "fs", "path"], logLevel: "error",
  });
  return Buffer.from(result.outputFiles[0].contents);
}

const policy = (script, style) => [
  "default-src 'none'", `script-src ${script} 'wasm-unsafe-eval'`, "worker-src 'self' blob:",
  `style-src ${style}`, "img-src 'self' blob: data:", "connect-src 'self'", "base-uri 'none'",
  "form-action 'none'",
].join("; ");
const hash = (text) => `'sha256-${createHash("sha256").update(text).digest("base64")}'`;

function fill(template, parts) {
  return template.replace(/@(POLICY|STYLE|PARTS|SCRIPT)@/g, (_, name) => parts[name]);
}

const script = await bundle("main.ts");
const worker = await bundle("worker.ts");
const style = readFileSync(path.join(page, "style.css"));
const wasm = readFileSync(path.join(module, "vek0_web.wasm"));
const table = readFileSync(glyphs);
const template = readFileSync(path.join(page, "index.html"), "utf8");

rmSync(out, { recursive: true, force: true });
mkdirSync(path.join(out, "samples"), { recursive: true });
writeFileSync(path.join(out, "index.html"), fill(template, {
  POLICY: policy("'self'", "'self'"),
  STYLE: '<link rel="stylesheet" href="style.css">',
  PARTS: "",
  SCRIPT: '<script src="page.js" defer></script>',
}));
writeFileSync(path.join(out, "page.js"), script);
writeFileSync(path.join(out, "worker.js"), worker);
writeFileSync(path.join(out, "style.css"), style);
writeFileSync(path.join(out, "engine.wasm"), wasm);
writeFileSync(path.join(out, "glyphs.bin"), table);
for (const name of ["flange", "house", "every_kind_r12"])
  cpSync(path.join(here, "../../samples", `${name}.dxf`), path.join(out, "samples", `${name}.dxf`));

const part = (id, bytes) =>
  `<script type="application/octet-stream" id="part-${id}" data-encoding="gzip">` +
  `${gzipSync(bytes, { level: 9 }).toString("base64")}</script>`;
const inline = script.toString().replaceAll("</script", "<\\/script");
writeFileSync(path.join(out, "single.html"), fill(template, {
  POLICY: policy(hash(inline), hash(style.toString())),
  STYLE: `<style>${style}</style>`,
  PARTS: `<!--DRAWING-->${part("worker", worker)}${part("wasm", wasm)}${part("glyphs", table)}`,
  SCRIPT: `<script>${inline}</script>`,
}));
for (const [name, bytes] of [["page.js", script], ["worker.js", worker], ["engine.wasm", wasm]])
  console.log(`${name}: ${bytes.length} bytes, ${gzipSync(bytes).length} compressed`);
