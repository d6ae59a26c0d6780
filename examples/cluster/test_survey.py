"""Surveys with two workers, one of which is killed midway: VEK0_TOOL=... pytest examples/cluster"""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time

import pytest

distributed = pytest.importorskip("distributed")
HERE = pathlib.Path(__file__).resolve().parent
SAMPLES = HERE.parents[1] / "samples"
TOOL = os.environ.get("VEK0_TOOL") or shutil.which("vek0")
pytestmark = pytest.mark.skipif(not TOOL, reason="needs the tool")


def run(source, output, *more, tool=TOOL):
    command = [sys.executable, str(HERE / "survey.py"), "--input", str(source), "--output",
               str(output), "--chunk", "2", "--tool", str(tool), *more]
    return subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


@pytest.fixture
def drawings(tmp_path):
    folder = tmp_path / "in"
    folder.mkdir()
    for i in range(8):
        shutil.copy(SAMPLES / "flange.dxf", folder / f"flange{i}.dxf")
    shutil.copy(SAMPLES / "house.dxf", folder / "house.dxf")
    (folder / "broken.dxf").write_text("broken")
    os.mkfifo(folder / "hangs.dxf")
    return folder


def test_a_killed_worker_loses_nothing(drawings, tmp_path):
    slow = tmp_path / "slow"
    slow.write_text(f'#!/bin/sh\nsleep 0.5\nexec {TOOL} "$@"\n')
    slow.chmod(0o755)
    output = tmp_path / "out"
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster:
        survey = run(drawings, output, "--scheduler", cluster.scheduler_address, "--timeout", "1",
                     tool=slow)
        while not list(output.glob("chunk-*")):
            time.sleep(0.05)
        os.kill(next(iter(cluster.workers.values())).pid, signal.SIGKILL)
        said = survey.communicate(timeout=120)[1]
    assert survey.returncode == 0, said
    failed = {pathlib.Path(json.loads(line)["file"]).name: json.loads(line)["reason"]
              for line in (output / "failed.jsonl").open()}
    assert set(failed) == {"broken.dxf", "hangs.dxf"} and "time limit" in failed["hangs.dxf"]
    assert "11 drawings, 2 failed" in said

    # What is finished is not read again, only what is new.
    before = {path: path.stat().st_mtime_ns for path in output.glob("chunk-*")}
    shutil.copy(SAMPLES / "trees.dxf", drawings)
    standard = tmp_path / "standard.txt"
    standard.write_text("OUTLINE\nHOLES\nCENTER\nHIDDEN\nNOTES\nOFF\n")
    answers = {}
    for question in ("block=bolt", "text=^M14$", f"layers={standard}"):
        found, said = run(drawings, output, "--workers", "1", "--question", question).communicate(timeout=60)
        answers[question[:5]] = [json.loads(line) for line in found.splitlines()]
    assert all(path.stat().st_mtime_ns == at for path, at in before.items())
    assert len(list(output.glob("chunk-*"))) == len(before) + 1
    assert len(answers["block"]) == 8 and {row["text"] for row in answers["text="]} == {"M14"}
    assert {pathlib.Path(row["file"]).name for row in answers["layer"]} == {"house.dxf", "trees.dxf"}
