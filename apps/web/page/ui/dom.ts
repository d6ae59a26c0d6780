// Elements by one call. Texts are always text nodes: names in drawings never become markup.

type Child = Node | string | null;

export function make<K extends keyof HTMLElementTagNameMap>(
  tag: K,
  properties: Partial<HTMLElementTagNameMap[K]> & { aria?: Record<string, string> } = {},
  ...children: Child[]
): HTMLElementTagNameMap[K] {
  const { aria, ...own } = properties;
  const element = Object.assign(document.createElement(tag), own);
  for (const [name, value] of Object.entries(aria ?? {})) element.setAttribute(`aria-${name}`, value);
  element.append(...children.filter((child): child is Node | string => child !== null));
  return element;
}

export function byId<T extends HTMLElement>(id: string): T {
  const element = document.getElementById(id);
  if (!element) throw new Error(`#${id} is missing`);
  return element as T;
}

/** Offers bytes as a file to save. */
export function download(name: string, bytes: Uint8Array, type: string): void {
  const url = URL.createObjectURL(new Blob([new Uint8Array(bytes)], { type }));
  const link = make("a", { href: url, download: name });
  link.click();
  setTimeout(() => URL.revokeObjectURL(url), 10_000);
}
