// A server for the built page, and a browser that opens it.
import { createReadStream, existsSync, statSync } from "node:fs";
import http from "node:http";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { chromium } from "playwright-core";

export const root = path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../../..");
export const folder = process.env.VEK0_PAGE ?? path.join(root, "build/web/page");
export const tool = process.env.VEK0_TOOL ?? path.join(root, "build/dev/apps/vek0/vek0");

const types = { ".html": "text/html", ".js": "text/javascript", ".css": "text/css", ".wasm": "application/wasm" };

/** Serves the page; `requests` collects every address that the browser asks for. */
export async function serve() {
  const server = http.createServer((request, response) => {
    const name = new URL(request.url, "http://x").pathname.replace(/\/$/, "/index.html");
    const file = path.join(folder, path.normalize(decodeURIComponent(name)));
    if (!file.startsWith(folder) || !existsSync(file) || !statSync(file).isFile())
      return response.writeHead(404).end();
    response.writeHead(200, { "content-type": types[path.extname(file)] ?? "application/octet-stream" });
    createReadStream(file).pipe(response);
  });
  await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
  return { address: `http://127.0.0.1:${server.address().port}/`, close: () => server.close() };
}

export function launch(options = {}) {
  return chromium.launch({
    executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
    args: ["--no-sandbox", "--disable-dev-shm-usage", "--use-angle=swiftshader", "--enable-unsafe-swiftshader", "--ignore-gpu-blocklist"],
    ...options,
  });
}
