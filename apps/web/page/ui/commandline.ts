// The command line with its history.
import type { Point } from "../protocol";
import type { Session } from "../session";
import { byId } from "./dom";
import type { Mode } from "./input";
import type { Overlay } from "./overlay";

export class CommandLine {
  private readonly field = byId<HTMLInputElement>("command");
  private readonly history: string[] = [];
  private place = 0;
  private runsAtClick = false;

  constructor(private readonly session: Session, private readonly overlay: Overlay,
    private readonly say: (text: string) => void) {
    byId<HTMLFormElement>("command-form").addEventListener("submit", (event) => {
      event.preventDefault();
      void this.run(this.field.value);
    });
    this.field.addEventListener("keydown", (event) => {
      if (event.key === "ArrowUp") this.recall(-1);
      else if (event.key === "ArrowDown") this.recall(1);
      else return;
      event.preventDefault();
    });
  }

  async run(line: string): Promise<void> {
    if (line.trim() === "") return;
    this.history.push(line);
    this.place = this.history.length;
    this.clear();
    try {
      const { ok, message } = await this.session.command(line);
      if (!ok) this.field.value = line;
      this.say(message || (ok ? "Done." : "That failed."));
    } catch (error) {
      this.say((error as Error).message);
    }
  }

  /** Begins a command; clicks add its points, Enter runs it. Where its first point is known, the
   * next one runs it. */
  begin(word: string, first?: Point): void {
    this.clear();
    this.field.value = first ? `${word} ${first.join(",")} ` : `${word} `;
    if (first) this.overlay.measured = [first];
    this.runsAtClick = first !== undefined;
    this.field.focus();
  }

  /** What clicks on the drawing mean while a command is being typed. */
  mode(): Mode | null {
    if (this.field.value.trim() === "") return null;
    return {
      point: (point) => {
        this.field.value = `${this.field.value.trimEnd()} ${point.join(",")} `;
        this.overlay.measured.push(point);
        this.overlay.draw();
        this.field.focus();
        if (this.runsAtClick) void this.run(this.field.value);
      },
    };
  }

  clear(): void {
    this.field.value = "";
    this.runsAtClick = false;
    this.overlay.measured = [];
    this.overlay.snap = null;
    this.overlay.draw();
  }

  private recall(step: number): void {
    this.place = Math.min(Math.max(this.place + step, 0), this.history.length);
    this.field.value = this.history[this.place] ?? "";
  }
}
