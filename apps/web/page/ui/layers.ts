// The list of layers: on and off, alone, filter, color, lineweight.
import type { Layer } from "../protocol";
import type { Session } from "../session";
import { byId, make } from "./dom";

const kColorNames = ["", "red", "yellow", "green", "cyan", "blue", "magenta", "white", "gray", "light gray"];
const kWeights = [0, 0.05, 0.09, 0.13, 0.15, 0.18, 0.2, 0.25, 0.3, 0.35, 0.4, 0.5, 0.6, 0.7, 0.8, 1, 1.2, 1.4, 2];

export class LayerPanel {
  private readonly list = byId<HTMLUListElement>("layers");
  private readonly filter = byId<HTMLInputElement>("layer-filter");
  private shown: Layer[] = [];

  constructor(private readonly session: Session, private readonly fail: (error: Error) => void) {
    this.filter.addEventListener("input", () => this.render());
    byId("layers-all").addEventListener("click", () => this.setAll(() => true));
    byId("layers-none").addEventListener("click", () => this.setAll(() => false));
  }

  update(): void {
    if (this.shown === this.session.layers) return;
    this.shown = this.session.layers;
    this.render();
  }

  private render(): void {
    const wanted = this.filter.value.toLowerCase();
    const layers = this.shown.filter((layer) => layer.name.toLowerCase().includes(wanted));
    this.list.replaceChildren(...layers.map((layer) => this.row(layer)));
  }

  private row(layer: Layer): HTMLElement {
    const isShown = layer.on && !layer.frozen;
    const box = make("input", {
      type: "checkbox", checked: isShown, aria: { label: `Show layer ${layer.name}` },
    });
    box.addEventListener("change", () => this.change(layer.name, {
      on: box.checked, ...(box.checked && layer.frozen ? { frozen: false } : {}),
    }));
    const alone = make("button", {
      type: "button", className: "small", title: "Show this layer alone",
      aria: { label: `Only layer ${layer.name}` },
    }, "Only");
    alone.addEventListener("click", () => this.setAll((each) => each.name === layer.name));
    return make("li", {},
      make("label", { title: `${layer.name}, ${layer.linetype}, ${layer.lineweight} mm` }, box, make("span", { className: "name" }, layer.name)),
      make("span", { className: "note" }, String(layer.entities || "")),
      this.colorOf(layer), this.weightOf(layer), alone);
  }

  private colorOf(layer: Layer): HTMLElement {
    const numbers = [...new Set([1, 2, 3, 4, 5, 6, 7, 8, 9, layer.color])];
    const options = numbers.map((number) => make("option",
      { value: String(number), selected: number === layer.color }, kColorNames[number] ?? String(number)));
    const field = make("select", {
      className: "swatch", title: `Color ${layer.color}`, aria: { label: `Color of layer ${layer.name}` },
    }, ...options, make("option", { value: "" }, "Other…"));
    field.style.backgroundColor = layer.rgb;
    field.addEventListener("change", () => {
      const color = Number(field.value || prompt("Color, a number from 1 to 255", String(layer.color)));
      if (color) this.session.layer(layer.name, { color }).catch(this.fail);
      field.value = String(layer.color);
    });
    return field;
  }

  private weightOf(layer: Layer): HTMLElement {
    const given = layer.lineweight;
    const weights = [...new Set([...kWeights, given])].sort((a, b) => a - b);
    const field = make("select", {
      className: "small weight", title: "Lineweight in mm", aria: { label: `Lineweight of layer ${layer.name}` },
    }, ...weights.map((weight) => make("option",
      { value: String(weight), selected: weight === given }, String(weight))));
    field.addEventListener("change", () => {
      const name = layer.name.replaceAll('"', '""');
      this.session.command(`layer lineweight "${name}" ${field.value}`)
        .then(({ ok, message }) => { if (!ok) this.fail(new Error(message)); }, this.fail);
    });
    return field;
  }

  private change(name: string, given: { on?: boolean; frozen?: boolean }): void {
    this.session.layer(name, given).catch(this.fail);
  }

  private async setAll(isOn: (layer: Layer) => boolean): Promise<void> {
    try {
      for (const layer of this.shown) {
        const on = isOn(layer);
        if (on !== layer.on || (on && layer.frozen))
          await this.session.layer(layer.name, { on, ...(on ? { frozen: false } : {}) });
      }
    } catch (error) {
      this.fail(error as Error);
    }
  }
}
