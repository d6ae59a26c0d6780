// The list of layers: on and off, alone, filter, color, lineweight.
import type { Layer } from "../protocol";
import type { Session } from "../session";
import { byId, make } from "./dom";

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
    const color = make("span", { className: "swatch", title: `Color ${layer.color}` });
    color.style.backgroundColor = layer.rgb;
    return make("li", {},
      make("label", { title: `${layer.name}, ${layer.linetype}, ${layer.lineweight} mm` }, box, color, make("span", { className: "name" }, layer.name)),
      make("span", { className: "note" }, String(layer.entities || "")), alone);
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
