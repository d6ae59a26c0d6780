"""Typical use, which mypy accepts in strict mode."""

import pathlib

import numpy

import vek0


def longest(path: pathlib.Path) -> float:
    with vek0.open(path) as doc:
        lines = doc.modelspace.lines().points
        lengths: numpy.ndarray[tuple[int], numpy.dtype[numpy.float64]] = numpy.linalg.norm(
            lines[:, 1] - lines[:, 0], axis=1
        )
        return float(lengths.max(initial=0.0))


def recolor(path: str, layer: str, color: int) -> list[str]:
    doc = vek0.open(path)
    handles: list[str] = []
    try:
        with doc.step("recolor"):
            for entity in doc.modelspace.query(f'*[layer=="{layer}"]'):
                entity.color = color
                entity.move((0, 1))
                handles.append(entity.handle)
        doc.layers[layer].lineweight = 0.35
        doc.save(path)
    except vek0.Error as error:
        print(error.kind, error.line or 0)
    return handles
