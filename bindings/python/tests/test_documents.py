"""The examples of the documentation, and the types that the package states."""

import doctest
import pathlib
import shutil
import subprocess

import pytest

import vek0

ROOT = pathlib.Path(__file__).resolve().parents[3]


def test_examples(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    shutil.copy(ROOT / "samples" / "flange.dxf", tmp_path)
    for name, found in (
        ("module", doctest.testmod(vek0)),
        ("document", doctest.testfile(str(ROOT / "docs" / "python.md"), module_relative=False)),
    ):
        assert found.attempted > 5 and not found.failed, name


@pytest.mark.skipif(not shutil.which("mypy"), reason="needs mypy")
def test_types():
    package = pathlib.Path(vek0.__file__).parent
    use = pathlib.Path(__file__).parent / "typed" / "use.py"
    result = subprocess.run(
        ["mypy", "--strict", "--no-incremental", str(use)],
        env={"MYPYPATH": str(package.parent), "PATH": "/usr/bin:/bin"},
        capture_output=True, text=True, check=False,
    )
    assert result.returncode == 0, result.stdout + result.stderr
    stated = {name for name in vek0.__all__}
    stub = (package / "__init__.pyi").read_text()
    assert all(f" as {name}" in stub for name in stated)
