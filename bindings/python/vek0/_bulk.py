"""Coordinates of many entities as arrays, without an object for each."""

import dataclasses

import numpy

_array = numpy.ndarray


@dataclasses.dataclass(frozen=True, eq=False)
class _Columns:
    handles: _array
    layers: _array
    layer_names: list

    def __len__(self):
        return len(self.handles)

    def __repr__(self):
        shapes = ", ".join(
            f"{field.name} {getattr(self, field.name).shape}"
            for field in dataclasses.fields(self)
            if isinstance(getattr(self, field.name), numpy.ndarray)
        )
        return f"<{type(self).__name__.lower()}: {shapes}>"


@dataclasses.dataclass(frozen=True, eq=False, repr=False)
class Lines(_Columns):
    """Lines: `points` has the shape (n, 2, 3)."""

    points: _array


@dataclasses.dataclass(frozen=True, eq=False, repr=False)
class Points(_Columns):
    """Points: `points` has the shape (n, 3)."""

    points: _array


@dataclasses.dataclass(frozen=True, eq=False, repr=False)
class Circles(_Columns):
    """Circles: `centers` has the shape (n, 3), `radii` (n,)."""

    centers: _array
    radii: _array


@dataclasses.dataclass(frozen=True, eq=False, repr=False)
class Arcs(_Columns):
    """Arcs, counterclockwise, with angles in degrees."""

    centers: _array
    radii: _array
    start_angles: _array
    end_angles: _array


@dataclasses.dataclass(frozen=True, eq=False, repr=False)
class Polylines(_Columns):
    """Polylines: number i has the points from `offsets[i]` up to `offsets[i + 1]`."""

    points: _array
    bulges: _array
    offsets: _array
    closed: _array


@dataclasses.dataclass(frozen=True, eq=False, repr=False)
class Texts(_Columns):
    """Texts, with `rotations` in degrees."""

    texts: list
    points: _array
    heights: _array
    rotations: _array


@dataclasses.dataclass(frozen=True, eq=False, repr=False)
class Inserts(_Columns):
    """Inserts: `blocks` holds names, `scales` has the shape (n, 3), `rotations` are degrees."""

    blocks: list
    points: _array
    scales: _array
    rotations: _array
