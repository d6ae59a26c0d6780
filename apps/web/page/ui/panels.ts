// What is beside the drawing: properties of the selection, the report, and found texts.
import type { FoundText, Listed } from "../protocol";
import type { Session } from "../session";
import type { View } from "../view";
import { byId, make } from "./dom";

const kMostShown = 200;

export class Panels {
  private readonly properties = byId("properties");
  private readonly report = byId("report");
  private readonly found = byId("found");
  private shownSelection: string[] | null = null;
  private shownReport: unknown = null;

  constructor(private readonly session: Session, private readonly view: View,
    private readonly fail: (error: Error) => void) {
    byId<HTMLFormElement>("search").addEventListener("submit", (event) => {
      event.preventDefault();
      void this.search(byId<HTMLInputElement>("search-text").value);
    });
  }

  update(): void {
    if (this.shownReport !== this.session.report) this.showReport();
    if (this.shownSelection !== this.session.selection) void this.showProperties();
  }

  private async showProperties(): Promise<void> {
    const { selection } = this.session;
    this.shownSelection = selection;
    if (selection.length === 0) {
      this.properties.replaceChildren(make("p", { className: "note" }, "Nothing is selected."));
      return;
    }
    try {
      const listed = await this.session.call<Listed[]>("properties", selection.slice(0, kMostShown));
      if (this.shownSelection === selection) this.properties.replaceChildren(
        make("p", {}, selection.length === 1 ? "1 entity" : `${selection.length} entities`),
        ...(listed.length === 1 ? [tableOf(listed[0])] : [summaryOf(listed)]));
    } catch (error) {
      this.fail(error as Error);
    }
  }

  private showReport(): void {
    const { report, fonts } = this.session;
    this.shownReport = report;
    const rows = report.map((entry) => make("li", { className: entry.severity },
      `${entry.severity}: ${entry.message}${entry.line ? ` (line ${entry.line})` : ""}`));
    for (const font of fonts)
      if (font.substitute)
        rows.push(make("li", { className: "note" },
          `style ${font.name}: font ${font.font} is shown as ${font.substitute}`));
    this.report.replaceChildren(
      rows.length ? make("ul", {}, ...rows) : make("p", { className: "note" }, "Nothing to report."));
  }

  private async search(text: string): Promise<void> {
    if (text === "") return this.found.replaceChildren();
    try {
      const texts = await this.session.call<FoundText[]>("findText", text, kMostShown);
      const rows = texts.map((each) => {
        const button = make("button", { type: "button", className: "link" }, each.text);
        button.addEventListener("click", () => this.jump(each));
        return make("li", {}, button, make("span", { className: "note" }, ` ${each.layer}`));
      });
      this.found.replaceChildren(rows.length ? make("ul", {}, ...rows) : make("p", {}, "Not found."));
    } catch (error) {
      this.fail(error as Error);
    }
  }

  private jump(text: FoundText): void {
    this.view.remember();
    this.view.camera.center = text.point;
    const bounds = this.view.bounds;
    if (bounds) this.view.camera.setHeight(Math.min(this.view.camera.height, (bounds[3] - bounds[1]) / 5));
    this.view.ask();
    this.session.select([text.handle]).catch(() => {});
  }
}

function shown(value: unknown): string {
  if (value === null || value === undefined) return "";
  if (typeof value === "number") return String(Math.round(value * 1e6) / 1e6);
  if (Array.isArray(value)) return value.map(shown).join(", ");
  if (typeof value === "object")
    return Object.entries(value).map(([name, each]) => `${name} ${shown(each)}`).join("; ");
  return String(value);
}

function tableOf(entity: Listed): HTMLElement {
  const rows = Object.entries(entity).filter(([, value]) => value !== null).map(([name, value]) =>
    make("tr", {}, make("th", { scope: "row" }, name.replaceAll("_", " ")), make("td", {}, shown(value))));
  return make("table", {}, make("tbody", {}, ...rows));
}

function summaryOf(entities: Listed[]): HTMLElement {
  const counts = new Map<string, number>();
  for (const { kind, layer } of entities) {
    const key = `${kind} on ${layer}`;
    counts.set(key, (counts.get(key) ?? 0) + 1);
  }
  return make("ul", {}, ...[...counts].map(([key, count]) => make("li", {}, `${count} ${key}`)));
}
