from collections.abc import Sequence
from typing import Any, Literal

class _Item:
    name: str
    def delete(self) -> None: ...

class Layer(_Item):
    color: int
    linetype: str
    on: bool
    frozen: bool
    locked: bool
    plot: bool
    @property
    def true_color(self) -> tuple[int, int, int] | None: ...
    @true_color.setter
    def true_color(self, value: Sequence[int] | None) -> None: ...
    @property
    def lineweight(self) -> Any: ...
    @lineweight.setter
    def lineweight(self, value: float | Literal["default"]) -> None: ...

class Linetype(_Item):
    description: str
    @property
    def pattern(self) -> list[float | str]: ...

class Style(_Item):
    font: str
    height: float
    width: float
