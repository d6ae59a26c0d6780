"""Drawings in Python: read and write DXF, query, edit with undo, draw.

>>> import vek0
>>> doc = vek0.new()
>>> _ = doc.layers.add("WALL", color=3)
>>> line = doc.add_line((0, 0), (10, 5), layer="WALL")
>>> line.move(0, 1)
>>> line.start
(0.0, 1.0, 0.0)
>>> [e.handle for e in doc.modelspace.query('LINE[layer=="WALL"]')] == [line.handle]
True
>>> doc.undo()
True
>>> line.start
(0.0, 0.0, 0.0)
"""

from ._bulk import Arcs, Circles, Inserts, Lines, Points, Polylines, Texts
from ._core import Entity, Space
from ._core.tables import Layer, Linetype, Style
from ._drawing import Diff, Drawing, new, open
from ._errors import Error, LossWarning, UnknownNameError

__version__ = "0.1.0"

__all__ = [
    "Arcs",
    "Circles",
    "Diff",
    "Drawing",
    "Entity",
    "Error",
    "Inserts",
    "Layer",
    "Lines",
    "Linetype",
    "LossWarning",
    "Points",
    "Polylines",
    "Space",
    "Style",
    "Texts",
    "UnknownNameError",
    "new",
    "open",
]
