"""Checks that a test reads every section of the tests' data files: a renamed test would leave its
rows unread.

usage: check_data.py PROJECT
"""
import pathlib
import re
import sys


def unread(data):
    test = data.parent.parent / f"{data.stem}_test.cpp"
    if not test.exists():
        return [f"{data}: {test.name} is missing"]
    source = test.read_text()
    names = {".".join(match) for match in re.findall(r"^TEST(?:_F)?\((\w+),\s*(\w+)\)", source, re.M)}
    names |= set(re.findall(r'rows(?:Of)?\("([^"]+)"\)', source))
    return [f"{data}: no test reads [{section}]"
            for section in re.findall(r"^\[(.+)\]$", data.read_text(), re.M) if section not in names]


def main():
    files = sorted((pathlib.Path(sys.argv[1]) / "tests").rglob("data/*.txt"))
    faults = [fault for data in files for fault in unread(data)]
    print("\n".join(faults) or f"{len(files)} files, every section is read")
    sys.exit(1 if faults or not files else 0)


main()
