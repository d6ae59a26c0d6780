"""Checks the order of the libraries and of the rooms of the core: a file may include the private
headers of its own library and the public ones of the libraries before it; in the core, only of its
own room and the rooms before it. Also checks that vek0core.h has every public header and that
CONTRIBUTING.md lists the rooms in order.

usage: check_includes.py PROJECT
"""
import pathlib
import re
import sys

QUOTED = re.compile(r'#include "([^"]+)"')
FOREIGN = re.compile(r"#include <(CLI|nlohmann|cairo|fontconfig|ft2build|hb|zlib)\b")
ROOM = re.compile(r"^vek0_room\(([\w/]+)", re.MULTILINE)
# In dependency order: public headers, sources, the foreign libraries that they may use.
LIBRARIES = [
    ("zim0lang/include", "zim0lang/src", []),
    ("include", "src", []),
    ("draw/include", "draw/src", []),
    ("host/include", "host/src", ["nlohmann"]),
    ("paint/include", "paint/src", ["nlohmann", "cairo", "fontconfig", "ft2build", "hb", "zlib"]),
    (None, "apps/vek0", ["nlohmann", "CLI"]),
    (None, "apps/web", ["nlohmann"]),
]
BELOW = ["vek0core", "zim0lang"]  # assert.h and export.h, and the library underneath


def includes(path, pattern):
    for number, line in enumerate(path.read_text().splitlines(), 1):
        if match := pattern.match(line):
            yield f"{path}:{number}", match[1]


def sources(folder):
    return [path for path in sorted(folder.rglob("*.[ch]*")) if path.is_file()]


def climbs_libraries(root, level):
    public, private, foreign = LIBRARIES[level]
    tops = [root / library[0] for library in LIBRARIES[:level + 1] if library[0]]
    for folder in [root / private] + ([root / public] if public else []):
        seen = [root / private] if folder == root / private else []
        for path in sources(folder):
            places = [path.parent] + seen + tops
            for where, name in includes(path, QUOTED):
                if not any((place / name).is_file() for place in places):
                    yield f"{where}: {private} must not include {name}"
            for where, name in includes(path, FOREIGN):
                if name not in foreign:
                    yield f"{where}: {private} must not use {name}"


def climbs_rooms(top, path, rooms):
    room = path.parent.relative_to(top).as_posix()
    if room == ".":
        return
    if room not in rooms:
        yield f"{path}: src/CMakeLists.txt has no room {room}"
        return
    for where, name in includes(path, QUOTED):
        other = name.removeprefix("vek0core/").rpartition("/")[0]
        if other and other not in BELOW + rooms[:rooms.index(room) + 1]:
            yield f"{where}: {room} must not include {other}"


def main():
    root = pathlib.Path(sys.argv[1])
    rooms = ROOM.findall((root / "src/CMakeLists.txt").read_text())
    tops = [root / "include/vek0core", root / "src"]
    files = [(top, path) for top in tops for path in sources(top)]
    faults = [fault for top, path in files for fault in climbs_rooms(top, path, rooms)]
    faults += [fault for level in range(len(LIBRARIES)) for fault in climbs_libraries(root, level)]
    whole = (tops[0] / "vek0core.h").read_text()
    faults += [f"vek0core.h lacks {name}" for top, path in files if top == tops[0]
               and (name := f"vek0core/{path.relative_to(top).as_posix()}") not in whole
               and path.name != "vek0core.h"]
    if ", ".join(rooms) not in " ".join((root / "CONTRIBUTING.md").read_text().split()):
        faults.append("CONTRIBUTING.md lists other rooms: " + ", ".join(rooms))
    if any(not sources(root / library[1]) for library in LIBRARIES):
        faults.append("a library has no sources")
    print("\n".join(faults) or f"{len(files)} files, no include climbs")
    sys.exit(1 if faults or len(files) < 50 else 0)


main()
