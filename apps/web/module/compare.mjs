// Compares the module with the native tool: what they list of each drawing, what they save of it
// unedited, in other versions, and after a script.
//   node compare.mjs MODULE-DIRECTORY VEK0 FILE...
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import path from "node:path";
import { isDeepStrictEqual } from "node:util";
import { pathToFileURL } from "node:url";
import { Engine } from "./engine.mjs";

const [directory, tool, ...files] = process.argv.slice(2);
if (files.length === 0) {
  console.error("usage: node compare.mjs MODULE-DIRECTORY VEK0 FILE...");
  process.exit(2);
}
const load = (await import(pathToFileURL(path.resolve(directory, "vek0_web.mjs")))).default;
const wasm = readFileSync(path.join(directory, "vek0_web.wasm"));
const script = ["layer DRAFT", "line 0,0 10,5", "select layer=DRAFT", "move 3,4", "circle 5,5 2",
  "select kind=CIRCLE", "set-color 3", "rotate 30@0,0"];
const scratch = mkdtempSync(path.join(tmpdir(), "vek0-"));
const most = { maxBuffer: 1 << 30 };
let differences = 0;

function check(what, isEqual) {
  if (!isEqual) ++differences;
  if (!isEqual) console.log(`${what}: different`);
}

const out = path.join(scratch, "out.dxf");

// What the tool writes to `out`.
function toolSaves(...args) {
  rmSync(out, { force: true });
  execFileSync(tool, [...args, "--quiet"], most);
  return readFileSync(out);
}

for (const file of files) {
  const bytes = readFileSync(file);
  const engine = await Engine.create(load, wasm);
  await engine.open(path.basename(file), [bytes], bytes.length);
  const lines = execFileSync(tool, ["list", "--json", "--quiet", file], most).toString().trim();
  const listed = lines === "" ? [] : lines.split("\n").map((line) => JSON.parse(line));
  check(`${file}: list`, isDeepStrictEqual(engine.list(0, 1e9), listed));
  check(`${file}: kept`, Buffer.compare(engine.saveDxf("keep"), bytes) === 0);
  for (const version of ["r12", "2010"]) {
    check(`${file}: as ${version}`, Buffer.compare(engine.saveDxf(version),
      toolSaves("convert", file, out, "--to", version)) === 0);
  }
  engine.drawScene();
  for (const line of script) {
    const answer = engine.command(line);
    if (!answer.ok) console.log(`${file}: ${line}: ${answer.message}`);
  }
  const scriptFile = path.join(scratch, "script.txt");
  writeFileSync(scriptFile, script.join("\n") + "\n");
  check(`${file}: edited`, Buffer.compare(engine.saveDxf("keep"),
    toolSaves("edit", file, "-o", out, "--script", scriptFile, "--to", "keep")) === 0);
}
rmSync(scratch, { recursive: true });
console.log(`${files.length} drawings, ${differences} differences`);
process.exit(differences === 0 ? 0 : 1);
