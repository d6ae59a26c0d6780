#!/usr/bin/env python3
"""Let other programs read what vek0 writes, and compare.

usage: peers.py VEK0 FOLDER...

Every drawing of the folders (and of $VEK0_CORPUS/dxf) that vek0 loads is converted
and then
  - audited by ezdxf, and its entity counts compared with vek0's;
  - written in later versions too, which ezdxf audits as well;
  - read by GDAL, original and copy, whose flattened geometry must lie within 1e-5 of
    each other layer by layer (Hausdorff distance).
Geometry is compared where nothing has to be replaced: files that also hold other kinds,
mirrored entities or invisible ones are only counted.
Prints one line a fault and a summary; fails when there is a fault without a known reason,
exits with 77 when no judge is installed.
"""
import collections
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

WITHIN = 1e-5  # drawing units
LATER = ["2000", "2007", "2018"]  # versions besides R12
KINDS = {"POINT", "LINE", "CIRCLE", "ARC", "POLYLINE", "TEXT", "INSERT", "3DFACE", "SOLID", "TRACE",
         "ATTDEF"}
PYTHON = "/usr/bin/python3" if os.path.exists("/usr/bin/python3") else sys.executable
# What a judge says of sound files: it wants an owner for the SEQEND of an R12 polyline in
# a block, which R12 has no way to state, and sees text points where only 11 counts.
HARMLESS = ("Deleted SEQEND",)
# Files that a judge and vek0 read differently, each for a reason that was looked into.
EXPLAINED = {
    "FraisageCNC--Mina.dxf": "decimal commas, which GDAL does not read",
    "cad_reprojection--sample01_EPSG5187.dxf": "GDAL believes a code page that the texts contradict",
    "dxf2gcode--fr_E4sen_test_02_2004.dxf": "GDAL flattens a curve by other chords",
    "dxf2papercraftUV--cube10_unfold.dxf": "empty layer names become 0",
    "dxf2papercraftUV--irregular_unfold.dxf": "empty layer names become 0",
}

EZDXF = """
import collections, json, sys, ezdxf
from ezdxf import recover
READ = set('POINT LINE CIRCLE ARC POLYLINE LWPOLYLINE TEXT INSERT 3DFACE SOLID TRACE ATTDEF ATTRIB VIEWPORT'.split())
def read(path):
    try: return ezdxf.readfile(path)
    except Exception: return recover.readfile(path)[0]
doc = read(sys.argv[1])
kinds = collections.Counter(); attribs = 0
for e in doc.modelspace():
    # Of faces that attribute is their hidden edges.
    if e.dxftype() != '3DFACE' and e.dxf.hasattr('invisible') and e.dxf.invisible: continue
    kind = e.dxftype()
    if kind == 'POLYLINE' and (e.is_poly_face_mesh or e.is_polygon_mesh): kind = 'MESH'
    kinds['POLYLINE' if kind == 'LWPOLYLINE' else kind] += 1
    if kind == 'INSERT': attribs += len(e.attribs)
def odd(e):
    if e.dxftype() not in READ: return e.dxftype()
    if e.dxftype() == 'POLYLINE' and (e.is_poly_face_mesh or e.is_polygon_mesh): return 'mesh'
    if e.dxf.hasattr('extrusion') and e.dxf.extrusion[2] != 1: return 'extrusion'
    if e.dxf.hasattr('invisible') and e.dxf.invisible: return 'invisible'
    if e.dxftype() == 'LWPOLYLINE' and doc.dxfversion < 'AC1014': return 'light polyline in R12'
every = list(doc.modelspace()) + [e for b in doc.blocks if not b.name.lower()[1:].startswith(('model_space', 'paper_space')) for e in b]
audit = doc.audit()
print(json.dumps({'kinds': kinds, 'attribs': attribs, 'odd': sorted({odd(e) for e in every} - {None}),
                  'errors': [e.message for e in audit.errors + audit.fixes]}))
"""

GDAL = """
import json, subprocess, sys
from shapely import wkt
from shapely.ops import unary_union
import csv, io, collections
csv.field_size_limit(1 << 30)
def layers(path):
    done = subprocess.run(['ogr2ogr', '-f', 'CSV', '/vsistdout/', path, '-lco', 'GEOMETRY=AS_WKT'],
                          capture_output=True, text=True, errors='replace', timeout=120)
    groups = collections.defaultdict(list)
    for row in csv.DictReader(io.StringIO(done.stdout)):
        if row.get('WKT') and not row.get('Text'): groups[row['Layer']].append(wkt.loads(row['WKT']))
    return groups
a, b = layers(sys.argv[1]), layers(sys.argv[2])
if not a: b = {}  # GDAL does not read the original, so there is nothing to compare
far, lone = 0.0, []
key = lambda name: ''.join(c if c.isascii() and (c.isalnum() or c in '_-$*') else '_' for c in name).upper()[:30]
b = {key(k): v for k, v in b.items()}
for name, shapes in a.items():
    other = b.pop(key(name), None)
    if other is None: lone.append(name); continue
    try: far = max(far, unary_union(shapes).hausdorff_distance(unary_union(other)))
    except Exception as problem: lone.append(f'{name}: {problem}')
print(json.dumps({'far': far, 'lone': lone + ['only in copy: ' + k for k in b]}))
"""


def ask(program, *arguments):
    try:
        done = subprocess.run([PYTHON, "-c", program, *map(str, arguments)], capture_output=True, timeout=180)
        return json.loads(done.stdout) if done.returncode == 0 else None
    except (subprocess.TimeoutExpired, ValueError):
        return None


def has(module):
    return subprocess.run([PYTHON, "-c", f"import {module}"], capture_output=True).returncode == 0


def ezdxf_faults(info, before, copy):
    after = ask(EZDXF, copy)
    if after is None:
        return ["ezdxf cannot read the copy"]
    faults = [f"ezdxf audit: {text}" for text in after["errors"] if not text.startswith(HARMLESS)][:3]
    ours = collections.Counter(info["entities"])
    attribs = ours.pop("ATTRIB", 0)
    ours["INSERT"] += ours.pop("HATCH", 0)  # the form that R12 has for a hatch
    ours = dict(+ours)
    theirs = {kind: n for kind, n in after["kinds"].items() if kind in KINDS}
    if ours != theirs or attribs != after["attribs"]:
        faults.append(f"copy holds {theirs} and {after['attribs']} attributes, vek0 read {ours}, {attribs}")
    if before:
        kinds = {k: n for k, n in before["kinds"].items() if k in KINDS}
        differs = {k: (n, ours.get(k, 0)) for k, n in kinds.items() if ours.get(k, 0) != n}
        # Odd kinds arrive as others, so only their sum can be short.
        if sum(ours.values()) < sum(kinds.values()) if before["odd"] else differs:
            faults.append(f"ezdxf sees in the original, vek0 reads: {differs}")
    return faults


def gdal_faults(original, copy):
    got = ask(GDAL, original, copy)
    if got is None:
        return ["GDAL gives no answer"]
    faults = [f"layer without partner: {name}" for name in got["lone"][:3]]
    if got["far"] > WITHIN:
        faults.append(f"geometry is {got['far']:.3g} apart")
    return faults


def later_faults(vek0, path, copy, judges):
    """Faults that the audit finds in later versions; `copy` is overwritten."""
    faults = []
    for version in LATER if judges["ezdxf"] else []:
        subprocess.run([vek0, "convert", "-q", "-f", "--to", version, path, copy], check=True)
        read = ask(EZDXF, copy)
        errors = ["cannot be read"] if read is None else read["errors"]
        faults += [f"ezdxf audit of {version}: {text}" for text in errors][:3]
    return faults


def judge(path, info, copy, judges):
    before = ask(EZDXF, path) if judges["ezdxf"] else None
    faults = ezdxf_faults(info, before, copy) if judges["ezdxf"] else []
    if not judges["gdal"] or not before or before["odd"]:
        return faults, "counted"
    return faults + gdal_faults(path, copy), "counted and measured"


def main():
    vek0, folders = sys.argv[1], [pathlib.Path(p) for p in sys.argv[2:]]
    if "VEK0_CORPUS" in os.environ:
        folders.append(pathlib.Path(os.environ["VEK0_CORPUS"]) / "dxf")
    judges = {"ezdxf": has("ezdxf"), "gdal": has("shapely") and shutil.which("ogr2ogr")}
    if not any(judges.values()):
        sys.exit(77)
    tally = collections.Counter()
    with tempfile.TemporaryDirectory() as scratch:
        for path in sorted(p for folder in folders for p in folder.glob("*.dxf")):
            info = json.loads(subprocess.run([vek0, "info", "--json", path], capture_output=True).stdout)
            if not info["ok"]:
                tally[f"not loaded, error {info['error']['kind']}"] += 1
                continue
            copy = pathlib.Path(scratch) / path.name
            subprocess.run([vek0, "convert", "-q", "-f", "--names", "keep", path, copy], check=True)
            faults, depth = judge(path, info, copy, judges)
            faults += later_faults(vek0, path, copy, judges)
            explained = faults and path.name in EXPLAINED
            tally["explained" if explained else "with faults" if faults else depth] += 1
            for fault in faults:
                print(f"{path.name}: {fault}" + (f" ({EXPLAINED[path.name]})" if explained else ""))
    print(dict(tally))
    sys.exit(1 if tally["with faults"] else 0)


main()
