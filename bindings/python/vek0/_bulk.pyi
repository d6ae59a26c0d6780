from typing import Any

import numpy
from numpy.typing import NDArray

Floats = NDArray[numpy.float64]

class _Columns:
    handles: NDArray[numpy.uint64]
    layers: NDArray[numpy.int32]
    layer_names: list[str]
    def __len__(self) -> int: ...

class Lines(_Columns):
    points: Floats

class Points(_Columns):
    points: Floats

class Circles(_Columns):
    centers: Floats
    radii: Floats

class Arcs(_Columns):
    centers: Floats
    radii: Floats
    start_angles: Floats
    end_angles: Floats

class Polylines(_Columns):
    points: Floats
    bulges: Floats
    offsets: NDArray[numpy.int64]
    closed: NDArray[numpy.bool_]

class Texts(_Columns):
    texts: list[str]
    points: Floats
    heights: Floats
    rotations: Floats

class Inserts(_Columns):
    blocks: list[str | None]
    points: Floats
    scales: Floats
    rotations: Floats
