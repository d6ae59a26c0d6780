#!/usr/bin/python3
"""Prints the notes of a version from a changelog. usage: notes.py VERSION CHANGELOG

Before the changelog names the version, the notes are those of its unreleased changes."""
import re
import sys

version, path = sys.argv[1:]
with open(path, encoding="utf-8") as file:
    _, *sections = re.split(r"^## ", file.read(), flags=re.MULTILINE)
by_name = {}
for section in sections:
    name, _, body = section.partition("\n")
    by_name[name.strip("[] ").split("]")[0].split(" ")[0]] = body.strip()
notes = by_name.get(version) or by_name.get("Unreleased")
if not notes:
    sys.exit(f"{path} has no notes for {version}")
print(f"# vek0 {version}\n\n{notes}")
