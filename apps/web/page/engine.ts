// The page's side of a worker: calls return promises. Each drawing has a worker of its own, so that
// ending it cancels whatever it does and returns all its memory.
import type { Answer } from "./protocol";
import type { Parts } from "./parts";

interface Waiting {
  resolve(result: unknown): void;
  reject(error: Error): void;
}

export class Engine {
  onProgress: (share: number) => void = () => {};
  private readonly worker: Worker;
  private readonly waiting = new Map<number, Waiting>();
  private next = 1;

  private constructor(parts: Parts) {
    this.worker = new Worker(parts.workerUrl);
    this.worker.onmessage = (event: MessageEvent<Answer>) => this.receive(event.data);
    this.worker.onerror = (event) => this.end(event.message || "the engine has stopped");
  }

  static async start(parts: Parts): Promise<Engine> {
    const engine = new Engine(parts);
    await engine.call("start", parts.wasm, parts.glyphs);
    return engine;
  }

  call<T>(name: string, ...args: unknown[]): Promise<T> {
    const id = this.next++;
    return new Promise<T>((resolve, reject) => {
      this.waiting.set(id, { resolve: resolve as Waiting["resolve"], reject });
      this.worker.postMessage({ id, name, args });
    });
  }

  /** Stops it; calls that wait fail. */
  end(why = "cancelled"): void {
    this.worker.terminate();
    for (const { reject } of this.waiting.values()) reject(new Error(why));
    this.waiting.clear();
  }

  private receive(answer: Answer): void {
    if ("progress" in answer) {
      this.onProgress(answer.progress);
      return;
    }
    const waiting = this.waiting.get(answer.id);
    if (!waiting) return;
    this.waiting.delete(answer.id);
    if ("failure" in answer) waiting.reject(new Error(answer.failure));
    else waiting.resolve(answer.result);
  }
}
