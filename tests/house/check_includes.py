"""Fails when an include climbs, since a room may use only itself and the rooms before it,
and when vek0core.h lacks a public header.

usage: check_includes.py PROJECT
"""
import pathlib
import re
import sys

ROOMS = ["geometry", "files", "tables", "polyline", "hatch", "entities", "drawing", "dxfin", "xref",
         "dxfout", "ltypefile", "view"]
# Sources that reach up on purpose: a memento is restored with the drawing's own
# factories, which the fixed interface hands in as the whole drawing.
CLIMBERS = {"src/entities/createhatch.cpp", "src/entities/enthatch.cpp", "src/entities/entinsert.cpp", "src/entities/entpolyline.cpp"}
INCLUDE = re.compile(r'#include "vek0core/(\w+)/')


def climbs(root, path):
    name = path.relative_to(root).as_posix()
    room = path.parent.name
    if room not in ROOMS or name in CLIMBERS:
        return []
    return [f"{name}:{number}: {room} must not include {match[1]}"
            for number, line in enumerate(path.read_text().splitlines(), 1)
            if (match := INCLUDE.match(line)) and ROOMS.index(match[1]) > ROOMS.index(room)]


def main():
    root = pathlib.Path(sys.argv[1])
    files = [path for folder in ("include/vek0core", "src") for path in (root / folder).glob("*/*")
             if path.suffix in (".h", ".cpp")]
    faults = [fault for path in sorted(files) for fault in climbs(root, path)]
    whole = (root / "include/vek0core/vek0core.h").read_text()
    faults += [f"vek0core.h lacks {name}" for path in files if path.suffix == ".h"
               and (name := path.relative_to(root).as_posix().removeprefix("include/")) not in whole
               and name.startswith("vek0core/")]
    print("\n".join(faults) or f"{len(files)} files, no include climbs")
    sys.exit(1 if faults or len(files) < 50 else 0)


main()
