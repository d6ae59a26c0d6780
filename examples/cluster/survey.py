#!/usr/bin/env python3
"""Surveys many drawings on many workers with Dask, and answers questions about all of them.

survey.py --input FOLDER|LIST --output FOLDER [--workers N | --scheduler ADDRESS]
          [--question block=NAME|text=REGEX|layers=STANDARD.txt]

The output folder gets a file of JSON Lines for each chunk of drawings, and failed.jsonl with those
that could not be read and why. Running it again reads only what is missing. A question is answered
from these files, one JSON object per line; STANDARD.txt lists layers, one per line.
"""

import argparse
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

from distributed import Client, as_completed


def run_tool(tool, verb, files, options):
    """Objects that the tool prints for the files, and what it says about each that fails."""
    command = [tool, verb, "--json", "--files-from", "-", "-j", str(options["jobs"]),
               "--timeout", str(options["timeout"])]
    if verb == "grep":
        command.insert(2, "")
    done = subprocess.run(command, input="\n".join(files) + "\n", capture_output=True, text=True,
                          errors="replace", check=False)
    rows = [json.loads(line) for line in done.stdout.splitlines() if line.startswith("{")]
    return rows, done.stderr


def survey(files, options):
    """A row for each drawing of a chunk. Runs on a worker."""
    tool = options["tool"]
    rows, said = run_tool(tool, "info", files, options)
    found = {row["file"]: row for row in rows}
    for file in files:
        if file in found:
            continue
        reasons = [line.partition(f"{file}: ")[2] for line in said.splitlines() if f"{file}: " in line]
        found[file] = {"file": file, "ok": False, "error": {"message": (reasons or ["no result"])[0]}}
    good = [file for file in files if found[file]["ok"]]
    for row in found.values():
        row["texts"] = []
    if good:
        for text in run_tool(tool, "grep", good, options)[0]:
            if text["handle"] is not None:
                found[text["file"]]["texts"].append(
                    {key: text[key] for key in ("handle", "kind", "layer", "block", "tag", "text")})
    return [found[file] for file in files]


def read_rows(output):
    """Rows of all finished chunks."""
    for path in sorted(output.glob("chunk-*.jsonl")):
        with path.open(encoding="utf-8") as lines:
            yield from map(json.loads, lines)


def write(path, rows):
    """Writes the file completely or not at all, so that it says what is finished."""
    unfinished = path.with_suffix(".tmp")
    with unfinished.open("w", encoding="utf-8") as file:
        file.writelines(json.dumps(row, ensure_ascii=False) + "\n" for row in rows)
    unfinished.replace(path)


def list_files(source):
    """Drawings of a folder, or those that a list names."""
    path = pathlib.Path(source)
    if path.is_dir():
        return sorted(str(file.absolute()) for file in path.rglob("*") if file.suffix.lower() == ".dxf")
    lines = path.read_text(encoding="utf-8").splitlines()
    return sorted({str((path.parent / line).absolute()) for line in map(str.strip, lines) if line})


def matches(row, kind, value):
    """What a drawing answers to a question: nothing, or an object to print."""
    if kind == "block":
        found = [block for block in row["blocks"] if block["name"].casefold() == value.casefold()]
        return [{"file": row["file"], "block": block["name"]} for block in found]
    if kind == "text":
        return [{"file": row["file"], **text} for text in row["texts"] if value.search(text["text"])]
    strange = [layer["name"] for layer in row["layers"] if layer["name"].casefold() not in value]
    return [{"file": row["file"], "layers": strange}] if strange else []


def parse_question(text):
    """The kind of a question and what it asks for."""
    kind, equals, value = text.partition("=")
    if not equals or kind not in ("block", "text", "layers"):
        raise argparse.ArgumentTypeError("a question is block=NAME, text=REGEX or layers=STANDARD.txt")
    try:
        if kind == "text":
            return kind, re.compile(value)
        if kind == "layers":
            lines = pathlib.Path(value).read_text(encoding="utf-8").splitlines()
            return kind, {line.strip().casefold() for line in lines} | {"0", "defpoints"}
    except (OSError, re.error) as error:
        raise argparse.ArgumentTypeError(f"{value}: {error}") from None
    return kind, value


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--input", required=True)
    parser.add_argument("--output", required=True, type=pathlib.Path)
    where = parser.add_mutually_exclusive_group()
    where.add_argument("--workers", type=int, default=2, metavar="N", help="on this machine")
    where.add_argument("--scheduler", metavar="ADDRESS")
    parser.add_argument("--question", type=parse_question)
    parser.add_argument("--chunk", type=int, default=100, metavar="N", help="drawings at a time")
    parser.add_argument("-j", "--jobs", type=int, default=1, help="processes of each worker")
    parser.add_argument("--timeout", type=float, default=60, help="seconds for a drawing")
    parser.add_argument("--tool", default=os.environ.get("VEK0_TOOL", "vek0"))
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    output = arguments.output
    output.mkdir(parents=True, exist_ok=True)
    done = {row["file"] for row in read_rows(output)}
    missing = [file for file in list_files(arguments.input) if file not in done]
    chunks = [missing[i:i + arguments.chunk] for i in range(0, len(missing), arguments.chunk)]
    options = {"tool": arguments.tool, "jobs": arguments.jobs, "timeout": arguments.timeout}
    if chunks:
        place = ({"address": arguments.scheduler} if arguments.scheduler else
                 {"n_workers": arguments.workers, "threads_per_worker": 1, "dashboard_address": None})
        with Client(**place) as client:
            # A worker that dies leaves its chunks to the others.
            tasks = {client.submit(survey, chunk, options, retries=3, pure=False): chunk
                     for chunk in chunks}
            for task in as_completed(tasks):
                chunk = tasks[task]
                name = hashlib.sha256("\n".join(chunk).encode()).hexdigest()[:16]
                if task.status == "finished":
                    write(output / f"chunk-{name}.jsonl", task.result())
                else:
                    print(f"chunk {name} failed: {task.exception()}", file=sys.stderr)
    rows = list(read_rows(output))
    failed = [{"file": row["file"], "reason": row["error"]["message"]} for row in rows if not row["ok"]]
    write(output / "failed.jsonl", failed)
    print(f"{len(rows)} drawings, {len(failed)} failed", file=sys.stderr)
    if arguments.question:
        for row in rows:
            for answer in matches(row, *arguments.question) if row["ok"] else []:
                print(json.dumps(answer, ensure_ascii=False))


if __name__ == "__main__":
    main()
