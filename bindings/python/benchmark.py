"""Compares this package with ezdxf on a drawing of lines: python benchmark.py [COUNT [RUNS]]

Each time is the best of several runs, in this process; memory is measured in a process each.
"""

import pathlib
import random
import subprocess
import sys
import tempfile
import time

import numpy

import vek0

MEMORY = """
import resource, sys
def used():
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * resource.getpagesize()
import {0}
before = used()
doc = {1}
print((used() - before) / {2})
"""


def best(work, runs):
    times = []
    for _ in range(runs):
        start = time.perf_counter()
        work()
        times.append(time.perf_counter() - start)
    return min(times)


def memory(module, call, count):
    script = MEMORY.format(module, call, count)
    return float(subprocess.run([sys.executable, "-c", script], capture_output=True, text=True,
                                check=True).stdout)


def main():
    import ezdxf

    count = int(sys.argv[1]) if len(sys.argv) > 1 else 100_000
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    choose = random.Random(1)
    ends = numpy.array([[choose.uniform(0, 1000) for _ in range(4)] for _ in range(count)])
    ends = ends.reshape(count, 2, 2)
    with tempfile.TemporaryDirectory() as folder:
        path = str(pathlib.Path(folder) / "lines.dxf")
        doc = vek0.new()
        doc.modelspace.add_lines(ends)
        doc.save(path, version="2018")
        ours, theirs = vek0.open(path), ezdxf.readfile(path)
        out = str(pathlib.Path(folder) / "out.dxf")

        def add_ours():
            drawing = vek0.new()
            with drawing.step():
                for (x1, y1), (x2, y2) in ends:
                    drawing.add_line((x1, y1), (x2, y2))

        def add_theirs():
            space = ezdxf.new().modelspace()
            for (x1, y1), (x2, y2) in ends:
                space.add_line((x1, y1), (x2, y2))

        rows = [
            ("open", lambda: vek0.open(path), lambda: ezdxf.readfile(path)),
            ("attributes by object", lambda: [e.layer for e in ours.modelspace],
             lambda: [e.dxf.layer for e in theirs.modelspace()]),
            ("end points by object", lambda: [(e.start, e.end) for e in ours.modelspace],
             lambda: [(e.dxf.start, e.dxf.end) for e in theirs.modelspace()]),
            ("coordinates as array", lambda: ours.modelspace.lines().points,
             lambda: numpy.array([[tuple(e.dxf.start), tuple(e.dxf.end)]
                                  for e in theirs.modelspace()])),
            ("add one by one", add_ours, add_theirs),
            ("add an array", lambda: vek0.new().modelspace.add_lines(ends), add_theirs),
            ("save", lambda: ours.save(out), lambda: theirs.saveas(out)),
        ]
        print(f"{count} lines{'vek0 ms':>22}{'ezdxf ms':>12}{'factor':>9}")
        for name, mine, other in rows:
            fast, slow = best(mine, runs), best(other, max(1, runs // 2))
            print(f"{name:24}{fast * 1e3:>10.1f}{slow * 1e3:>12.1f}{slow / fast:>9.1f}")
        sizes = [memory("vek0", f"vek0.open({path!r})", count),
                 memory("ezdxf", f"ezdxf.readfile({path!r})", count)]
        print(f"{'memory, bytes per line':24}{sizes[0]:>10.0f}{sizes[1]:>12.0f}{sizes[1] / sizes[0]:>9.1f}")


if __name__ == "__main__":
    main()
