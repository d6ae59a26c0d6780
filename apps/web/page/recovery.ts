// Keeps what was done to a drawing in the browser's database until it is saved, so that a crash
// loses nothing: the file as it was opened, and the calls since then.
import type { Deed } from "./session";

export interface Journal {
  name: string;
  file: Blob | null;
  deeds: Deed[];
}

const kStore = "journal";
const kDelay = 500; // milliseconds

function database(): Promise<IDBDatabase> {
  return new Promise((resolve, reject) => {
    const request = indexedDB.open("vek0", 1);
    request.onupgradeneeded = () => request.result.createObjectStore(kStore);
    request.onsuccess = () => resolve(request.result);
    request.onerror = () => reject(request.error ?? new Error("no database"));
  });
}

async function change(work: (store: IDBObjectStore) => void): Promise<void> {
  const db = await database();
  try {
    await new Promise<void>((resolve, reject) => {
      const transaction = db.transaction(kStore, "readwrite", { durability: "strict" });
      work(transaction.objectStore(kStore));
      transaction.oncomplete = () => resolve();
      transaction.onerror = () => reject(transaction.error);
    });
  } finally {
    db.close();
  }
}

let timer = 0;
let storedFile: Blob | null | undefined;

/** Stores the journal soon. Recovery is a convenience: where there is no database, it is missing. */
export function remember(journal: Journal): void {
  clearTimeout(timer);
  timer = setTimeout(() => {
    void change((store) => {
      // The file does not change, and may be large.
      if (storedFile !== journal.file) store.put(journal.file, "file");
      storedFile = journal.file;
      store.put({ name: journal.name, deeds: journal.deeds }, "deeds");
    }).catch(() => {});
  }, kDelay) as unknown as number;
}

export function forget(): void {
  clearTimeout(timer);
  storedFile = undefined;
  void change((store) => store.clear()).catch(() => {});
}

/** What was not saved the last time; null if everything was. */
export async function unsaved(): Promise<Journal | null> {
  try {
    const db = await database();
    const store = db.transaction(kStore).objectStore(kStore);
    const get = <T>(key: string) => new Promise<T | undefined>((resolve) => {
      const request = store.get(key);
      request.onsuccess = () => resolve(request.result as T);
      request.onerror = () => resolve(undefined);
    });
    const [file, kept] = await Promise.all([
      get<Blob | null>("file"), get<{ name: string; deeds: Deed[] }>("deeds")]);
    db.close();
    return kept ? { name: kept.name, file: file ?? null, deeds: kept.deeds } : null;
  } catch {
    return null;
  }
}
