#!/usr/bin/env python3
"""Check that the report of a conversion tells whatever is lost.

usage: losses.py VEK0 [--up-to BYTES] [--without CODE] FOLDER...

Every drawing of the folders (and of $VEK0_CORPUS/dxf) that vek0 loads is written in several
versions. What ezdxf finds in the drawing, but not in the output (inventory.py lists what it looks
for), must be in the report: with a code and a sample that tell of such a loss, and often enough.
Prints one line a kind of loss that was not told, and a summary; fails if there is one, exits with
77 if ezdxf is not installed.
"""
import argparse
import collections
import json
import multiprocessing
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import typing

SYSTEM_PYTHON = "/usr/bin/python3"
sys.dont_write_bytecode = True  # the folder is the source tree
try:
    from ezdxf.colors import DXF_DEFAULT_COLORS
    from inventory import BYLAYER, PAPER, inventory_of
except ImportError:
    # The packages of the system are not those of every python3.
    if not os.path.exists(SYSTEM_PYTHON) or sys.executable == SYSTEM_PYTHON:
        sys.exit(77)
    os.execv(SYSTEM_PYTHON, [SYSTEM_PYTHON, *sys.argv])

VERSIONS = ("r12", "2000", "2018")
# Drawings that ezdxf reads in another way, each for a reason that was looked into.
EXPLAINED = {
    "FraisageCNC--Mina.dxf": "decimal commas, which ezdxf does not read",
    "cad--house2.dxf": "ezdxf does not know the code page of its names",
    "cad_reprojection--sample01_EPSG5187.dxf": "a viewport that stood for the sheet before",
    "dxf-tools--points_updated.dxf": "ezdxf believes a code page that the names contradict",
    "ezdxf--Leica_Disto_S910.dxf": "records of blocks that are not in the file",
}
COUNTED = ("kind", "traits")

KIND_LOST = ("kind skipped", "kind replaced", "not in version", "entity dropped", "insert dropped",
             "dimension drawn", "hatch as insert", "text empty", "endless line cut",
             "entity invisible")
# Codes of single kinds, which have no sample.
OF_KIND = {"MESH": ("mesh as faces", "mesh incomplete"), "CIRCLE": ("curve as polyline",),
           "ARC": ("curve as polyline",), "HATCH": ("hatch dropped",)}
OTHER_COLOR = ("color approximated", "color replaced", "color out of range")
LEFT_OUT = ("code dropped", "not in version")


class Rule(typing.NamedTuple):
    """The entries that tell of a loss; a sample is an expression."""
    codes: tuple
    sample: str
    more: tuple = ()  # codes without a sample
    each: bool = True  # counts one by one; else one entry tells of all

    def matches(self, code, sample):
        if code in self.more and not sample:
            return True
        return code in self.codes and re.fullmatch(self.sample, sample, re.DOTALL) is not None


NOT_TOLD = Rule((), "")


def named(codes, name, more=()):
    return Rule(codes, re.escape(name), more, each=False)


def rule_of_kind(space, kind):
    if space == PAPER:  # the sample is the name of the sheet
        return Rule(KIND_LOST + ("on paper",), ".*")
    if kind == "ATTRIB":
        return Rule(KIND_LOST, "ATTRIB|INSERT", each=False)
    return Rule(KIND_LOST, re.escape(kind), OF_KIND.get(kind, ()))


LAYER_RULES = {
    "color": Rule(OTHER_COLOR, "LAYER|[^ ]*"),
    "true_color": Rule(OTHER_COLOR + LEFT_OUT, "LAYER( 420)?"),
    "lineweight": Rule(LEFT_OUT + ("lineweight rounded",), "LAYER 370"),
    "plot": Rule(LEFT_OUT, "LAYER 290"),
    "data": Rule(("code dropped",), "LAYER 1001"),
}
TRAIT_RULES = {
    "color": Rule(OTHER_COLOR, "[^ ]*"),
    "true_color": Rule(OTHER_COLOR + LEFT_OUT, "|(.* )?420"),
    "lineweight": Rule(LEFT_OUT + ("lineweight rounded",), "(.* )?370"),
    "linetype": Rule(("linetype unknown",), ".*"),
    "ltscale": Rule(LEFT_OUT, "(.* )?48"),
    "invisible": Rule(LEFT_OUT + ("entity invisible",), "(.* )?60|[A-Z]*"),
    "transparency": Rule(LEFT_OUT, "(.* )?440"),
    "data": Rule(LEFT_OUT, "(.* )?1001"),
}
STYLE_RULES = {
    "bigfont": Rule(("code dropped",), "STYLE 4"),
    "generation_flags": Rule(("code dropped",), "STYLE 71"),
    "data": Rule(("code dropped",), "STYLE 1001"),
}
LTYPE_DATA = Rule(("code dropped",), "LTYPE 1001")


def rule_of(key):
    """What has to tell of the loss of a fact."""
    category, name, last = key[0], key[1], key[-1]
    if category == "kind":
        return rule_of_kind(name, last)
    if category == "layer":
        return LAYER_RULES.get(last, NOT_TOLD)
    if category == "entity":
        return TRAIT_RULES.get(last.split()[0], NOT_TOLD)
    if category == "traits":
        return TRAIT_RULES.get(name, NOT_TOLD)
    if category == "style":
        return STYLE_RULES.get(last, NOT_TOLD)
    if category == "ltype":
        dashes = named(("linetype text dropped",), name, ("shape dropped",))
        return LTYPE_DATA if last == "data" else dashes
    if category in ("view", "ucs"):
        return named(("named view dropped",), f"{category.upper()} {name}")
    if category == "group":
        return Rule(("group dropped",), "")
    return {
        "header": named(("unit dropped", "setting dropped"), name),
        "layout": named(("layout dropped", "plot settings dropped"), name),
        "dimstyle": named(("dimension style dropped",), name),
        "block": named(("block dropped",), name),
    }.get(category, NOT_TOLD)


class Report:
    def __init__(self, entries):
        self.counts = collections.Counter()
        self.names = collections.defaultdict(set)
        for entry in entries:
            self.counts[entry["code"], (entry["sample"] or "").upper()] += entry["count"]
            if entry["old"] and entry["new"]:
                self.names[entry["old"].upper()].add(entry["new"].upper())

    def names_of(self, name):
        """The name and those that it got; items of several tables can share one."""
        return [name, *self.names.get(name, ())]

    def count(self, rule):
        return sum(n for (code, sample), n in self.counts.items() if rule.matches(code, sample))


def keys_of(key, report):
    """The fact under the names that the report tells."""
    category, name = key[:2]
    if category == "traits" and name in ("layer", "linetype"):
        return [(*key[:2], new) for new in report.names_of(key[2])]
    if category == "kind" and name.startswith("block "):
        block = name[len("block "):]
        return [(category, "block " + new, *key[2:]) for new in report.names_of(block)]
    if category in ("layer", "ltype", "style", "dimstyle", "block"):
        return [(category, new, *key[2:]) for new in report.names_of(name)]
    return [key]


def is_same(key, was, after, report):
    now = after.get(key)
    if now is None:  # a color number says the same if it stands for exactly that color
        number = after.get((*key[:-1], "color"), 0) if key[-1] == "true_color" else 0
        return 0 < number < BYLAYER and DXF_DEFAULT_COLORS[number] == was
    if key[-1] in ("layer", "linetype"):
        return now in report.names_of(was)
    return now >= was if key[0] in COUNTED else now == was


def losses(before, after, report):
    """The facts that are lost, each with how many are."""
    has_handles = any(key[0] == "entity" for key in before)
    for key, was in before.items():
        if key[0] == "traits" and has_handles:
            continue  # those with a handle are compared one by one
        if key[0] == "entity" and (key[-1] == "present" or (*key[:3], "present") not in after):
            continue  # the kinds are counted
        keys = keys_of(key, report)
        if not any(is_same(each, was, after, report) for each in keys):
            yield key, was - max(after.get(each, 0) for each in keys) if key[0] in COUNTED else 1


def untold(before, after, entries):
    """The losses of which the report does not tell often enough."""
    report = Report(entries)
    lost = list(losses(before, after, report))
    needed = collections.Counter()
    for key, count in lost:
        needed[rule_of(key)] += count
    for key, _ in lost:
        rule = rule_of(key)
        if report.count(rule) < (needed[rule] if rule.each else 1):
            yield key


def told(key):
    """A loss in words; those of many entities are one."""
    return " ".join(str(word) for word in (("entity", *key[2:]) if key[0] == "entity" else key))


def check(job):
    """The faults of a drawing; None if vek0 or ezdxf does not read it."""
    vek0, path, ignored = job
    try:
        before = inventory_of(path)
    except Exception:  # whatever ezdxf says of a file that it does not read
        return path, None
    faults = []
    with tempfile.TemporaryDirectory() as scratch:
        for version in VERSIONS:
            copy = pathlib.Path(scratch) / f"{version}.dxf"
            command = [vek0, "convert", "-q", "--to", version, "--report", "-", path, copy]
            done = subprocess.run(command, capture_output=True)
            if not copy.exists():
                return path, None
            entries = [e for e in json.loads(done.stdout)["entries"] if e["code"] != ignored]
            found = collections.Counter(map(told, untold(before, inventory_of(copy), entries)))
            faults += [f"{version}: {what}, {n} times" for what, n in found.items()]
    return path, faults


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("vek0")
    parser.add_argument("folders", nargs="*", type=pathlib.Path)
    parser.add_argument("--up-to", type=int, default=sys.maxsize, help="size of drawings in bytes")
    parser.add_argument("--without", help="a code to ignore, which must make the check fail")
    arguments = parser.parse_intermixed_args()
    folders = arguments.folders
    if "VEK0_CORPUS" in os.environ:
        folders.append(pathlib.Path(os.environ["VEK0_CORPUS"]) / "dxf")
    drawings = sorted(p for folder in folders for p in folder.glob("*.dxf")
                      if p.stat().st_size <= arguments.up_to)
    tally = collections.Counter()
    with multiprocessing.Pool() as pool:
        jobs = [(arguments.vek0, path, arguments.without) for path in drawings]
        for path, faults in pool.imap(check, jobs):
            why = EXPLAINED.get(path.name)
            tally["not read" if faults is None else "all told" if not faults else
                  "explained" if why else "with losses untold"] += 1
            for fault in faults or ():
                print(f"{path.name}: {fault}" + (f" ({why})" if why else ""))
    print(dict(tally))
    sys.exit(1 if tally["with losses untold"] else 0)


if __name__ == "__main__":
    main()
