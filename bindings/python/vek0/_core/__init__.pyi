from collections.abc import Iterable, Iterator, Mapping, Sequence
from typing import Any, Literal, overload

import numpy
from numpy.typing import ArrayLike, NDArray

from .._bulk import Arcs, Circles, Inserts, Lines, Points, Polylines, Texts

Point = tuple[float, float, float]
PointLike = Sequence[float] | NDArray[Any]
PointsLike = Sequence[PointLike] | NDArray[Any]
Handles = NDArray[numpy.uint64]
Corners = Literal["round", "mitre", "bevel"]

class Entity:
    layer: str
    color: int
    linetype: str
    linetype_scale: float
    visible: bool
    # Of some kinds; others raise AttributeError.
    radius: float
    start_angle: float
    end_angle: float
    bulges: list[float]
    widths: list[tuple[float, float]]
    closed: bool
    text: str
    height: float
    rotation: float
    style: str
    halign: str
    valign: str
    columns: int
    rows: int
    pattern: str
    angle: float
    @property
    def kind(self) -> str: ...
    @property
    def handle(self) -> str: ...
    @property
    def space(self) -> str: ...
    @property
    def bounds(self) -> tuple[Point, Point] | None: ...
    @property
    def is_alive(self) -> bool: ...
    @property
    def true_color(self) -> tuple[int, int, int] | None: ...
    @true_color.setter
    def true_color(self, value: Sequence[int] | None) -> None: ...
    @property
    def lineweight(self) -> Any: ...
    @lineweight.setter
    def lineweight(self, value: float | Literal["bylayer", "byblock", "default"]) -> None: ...
    @property
    def start(self) -> Point: ...
    @start.setter
    def start(self, value: PointLike) -> None: ...
    @property
    def end(self) -> Point: ...
    @end.setter
    def end(self, value: PointLike) -> None: ...
    @property
    def center(self) -> Point: ...
    @center.setter
    def center(self, value: PointLike) -> None: ...
    @property
    def point(self) -> Point: ...
    @point.setter
    def point(self, value: PointLike) -> None: ...
    @property
    def points(self) -> list[Point]: ...
    @points.setter
    def points(self, value: PointsLike) -> None: ...
    @property
    def scale(self) -> Any: ...
    @scale.setter
    def scale(self, value: float | PointLike) -> None: ...
    @property
    def block(self) -> str | None: ...
    @property
    def attributes(self) -> dict[str, str]: ...
    @attributes.setter
    def attributes(self, value: Mapping[str, str]) -> None: ...
    @property
    def boundary(self) -> list[Point]: ...
    @overload
    def move(self, delta: PointLike, /) -> None: ...
    @overload
    def move(self, dx: float, dy: float, dz: float = ..., /) -> None: ...
    def rotate(self, angle: float, center: PointLike = ...) -> None: ...
    def scale_by(self, factor: float, center: PointLike = ...) -> None: ...
    def mirror(self, start: PointLike, end: PointLike) -> None: ...
    def copy(self, delta: PointLike = ...) -> Entity: ...
    def delete(self) -> None: ...
    def explode(self) -> list[Entity]: ...
    def offset(self, distance: float, corners: Corners = ...) -> list[Entity]: ...

class _Adding:
    def add_point(
        self, point: PointLike, *, layer: str | None = ..., color: int | None = ...
    ) -> Entity: ...
    def add_line(
        self, start: PointLike, end: PointLike, *, layer: str | None = ..., color: int | None = ...
    ) -> Entity: ...
    def add_circle(
        self, center: PointLike, radius: float, *, layer: str | None = ..., color: int | None = ...
    ) -> Entity: ...
    def add_arc(
        self,
        center: PointLike,
        radius: float,
        start_angle: float,
        end_angle: float,
        *,
        layer: str | None = ...,
        color: int | None = ...,
    ) -> Entity: ...
    def add_polyline(
        self,
        points: PointsLike,
        bulges: Sequence[float] | NDArray[Any] | None = ...,
        widths: float | Sequence[tuple[float, float]] | None = ...,
        closed: bool = ...,
        *,
        layer: str | None = ...,
        color: int | None = ...,
    ) -> Entity: ...
    def add_text(
        self,
        text: str,
        point: PointLike = ...,
        height: float = ...,
        rotation: float = ...,
        style: str | None = ...,
        *,
        layer: str | None = ...,
        color: int | None = ...,
    ) -> Entity: ...
    def add_insert(
        self,
        block: str | Space,
        point: PointLike = ...,
        scale: float | PointLike = ...,
        rotation: float = ...,
        attributes: Mapping[str, str] = ...,
        *,
        layer: str | None = ...,
        color: int | None = ...,
    ) -> Entity: ...
    def add_hatch(
        self,
        boundary: PointsLike | Sequence[PointsLike],
        pattern: str = ...,
        scale: float = ...,
        angle: float = ...,
        *,
        layer: str | None = ...,
        color: int | None = ...,
    ) -> Entity: ...
    def add_lines(
        self, points: ArrayLike, *, layer: str | None = ..., color: int | None = ...
    ) -> Handles: ...
    def add_points(
        self, points: ArrayLike, *, layer: str | None = ..., color: int | None = ...
    ) -> Handles: ...
    def add_circles(
        self,
        centers: ArrayLike,
        radii: ArrayLike,
        *,
        layer: str | None = ...,
        color: int | None = ...,
    ) -> Handles: ...
    def add_arcs(
        self,
        centers: ArrayLike,
        radii: ArrayLike,
        start_angles: ArrayLike,
        end_angles: ArrayLike,
        *,
        layer: str | None = ...,
        color: int | None = ...,
    ) -> Handles: ...
    def add_polylines(
        self,
        points: ArrayLike,
        offsets: ArrayLike,
        bulges: ArrayLike = ...,
        closed: ArrayLike = ...,
        *,
        layer: str | None = ...,
        color: int | None = ...,
    ) -> Handles: ...

    def add_texts(
        self,
        texts: Sequence[str],
        points: ArrayLike,
        heights: ArrayLike = ...,
        rotations: ArrayLike = ...,
        *,
        layer: str | None = ...,
        color: int | None = ...,
    ) -> Handles: ...
    def add_inserts(
        self,
        block: str,
        points: ArrayLike,
        scales: ArrayLike = ...,
        rotations: ArrayLike = ...,
        *,
        layer: str | None = ...,
        color: int | None = ...,
    ) -> Handles: ...

class Space(_Adding):
    @property
    def name(self) -> str: ...
    @property
    def is_model(self) -> bool: ...
    @property
    def bounds(self) -> tuple[Point, Point] | None: ...
    @property
    def base_point(self) -> Point: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[Entity]: ...
    @overload
    def __getitem__(self, index: int) -> Entity: ...
    @overload
    def __getitem__(self, index: slice) -> list[Entity]: ...
    def query(self, text: str = ...) -> list[Entity]: ...
    def delete(self) -> None: ...
    def transform(self, matrix: ArrayLike) -> None: ...
    def lines(self) -> Lines: ...
    def points(self) -> Points: ...
    def circles(self) -> Circles: ...
    def arcs(self) -> Arcs: ...
    def polylines(self) -> Polylines: ...
    def texts(self) -> Texts: ...
    def inserts(self) -> Inserts: ...
