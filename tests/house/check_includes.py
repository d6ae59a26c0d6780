"""Checks the order of the rooms: a room may include only itself and the rooms before it. Also
checks that vek0core.h has every public header and that CONTRIBUTING.md lists the rooms in order.

usage: check_includes.py PROJECT
"""
import pathlib
import re
import sys

INCLUDE = re.compile(r'#include "(?:vek0core/)?([\w/]+)/\w+\.h"')
ROOM = re.compile(r"^vek0_room\(([\w/]+)", re.MULTILINE)
TOPS = ("include/vek0core", "src")
BELOW = ["vek0core", "zim0lang"]  # assert.h and export.h, and the library underneath


def climbs(top, path, rooms):
    room = path.parent.relative_to(top).as_posix()
    if room == ".":
        return []
    if room not in rooms:
        return [f"{path}: src/CMakeLists.txt has no room {room}"]
    return [f"{path}:{number}: {room} must not include {match[1]}"
            for number, line in enumerate(path.read_text().splitlines(), 1)
            if (match := INCLUDE.match(line)) and match[1] not in BELOW + rooms[:rooms.index(room) + 1]]


def main():
    root = pathlib.Path(sys.argv[1])
    rooms = ROOM.findall((root / "src/CMakeLists.txt").read_text())
    tops = [root / name for name in TOPS]
    files = [(top, path) for top in tops for path in sorted(top.rglob("*.[ch]*")) if path.is_file()]
    faults = [fault for top, path in files for fault in climbs(top, path, rooms)]
    whole = (tops[0] / "vek0core.h").read_text()
    faults += [f"vek0core.h lacks {name}" for top, path in files if top == tops[0]
               and (name := f"vek0core/{path.relative_to(top).as_posix()}") not in whole
               and path.name != "vek0core.h"]
    if ", ".join(rooms) not in " ".join((root / "CONTRIBUTING.md").read_text().split()):
        faults.append("CONTRIBUTING.md lists other rooms: " + ", ".join(rooms))
    print("\n".join(faults) or f"{len(files)} files, no include climbs")
    sys.exit(1 if faults or len(files) < 50 else 0)


main()
