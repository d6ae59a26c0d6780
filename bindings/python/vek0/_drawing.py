"""Opening, saving and editing drawings."""

import contextlib
import json
import os
import tempfile
import warnings

from . import _bulk, _core, _query
from ._errors import Error, LossWarning

_tables = _core.tables


class _Table:
    """The items of a table, by name ignoring case: len, iteration, `in`, and `table[name]`."""

    def __init__(self, drawing, word, items, item, add):
        self._drawing, self._word = drawing, word
        self._items, self._item, self._add = items, item, add

    def __len__(self):
        return len(self._items(self._drawing))

    def __iter__(self):
        return iter(self._items(self._drawing))

    def __getitem__(self, name):
        if not isinstance(name, str):
            raise TypeError(f"a {self._word} is found by its name, a string")
        return self._item(self._drawing, name)

    def __contains__(self, name):
        if not isinstance(name, str):
            return any(name == item for item in self)
        try:
            self._item(self._drawing, name)
        except KeyError:
            return False
        return True

    def get(self, name, default=None):
        """The item of that name, or the default."""
        try:
            return self[name]
        except KeyError:
            return default

    def names(self):
        """The names in their order."""
        return [item.name for item in self]

    def __repr__(self):
        return f"<{self._word}s: {', '.join(repr(name) for name in self.names())}>"


class LayerTable(_Table):
    """The layers of a drawing."""

    def add(self, name, color=7):
        """Add a layer and return it."""
        return self._add(self._drawing, name, color)


class LinetypeTable(_Table):
    """The linetypes of a drawing."""

    def add(self, name, pattern=(), description=""):
        """Add a linetype of dashes (> 0), gaps (< 0) and dots (0), and return it."""
        return self._add(self._drawing, name, list(pattern), description)


class StyleTable(_Table):
    """The text styles of a drawing."""

    def add(self, name, font="txt"):
        """Add a text style and return it."""
        return self._add(self._drawing, name, font)


class BlockTable(_Table):
    """The blocks of a drawing."""

    def add(self, name, base_point=(0.0, 0.0)):
        """Add an empty block and return it."""
        return self._add(self._drawing, name, base_point)


class LayoutTable(_Table):
    """The layouts of a drawing, without model space, which `layouts["Model"]` finds."""


class Header:
    """Variables of a drawing by their names, such as `header["$LTSCALE"]`."""

    def __init__(self, drawing):
        self._drawing = drawing

    def __getitem__(self, name):
        return self._drawing._variables()[name]

    def __setitem__(self, name, value):
        self._drawing._set_variable(name, value)

    def __contains__(self, name):
        return name in self._drawing._variables()

    def __iter__(self):
        return iter(self._drawing._variables())

    def __len__(self):
        return len(self._drawing._variables())

    def get(self, name, default=None):
        """The value of a variable, or the default."""
        return self._drawing._variables().get(name, default)

    def keys(self):
        """The names."""
        return self._drawing._variables().keys()

    def items(self):
        """Names and values."""
        return self._drawing._variables().items()

    def __repr__(self):
        return f"<header: {self._drawing._variables()}>"


class Diff(dict):
    """The differences between two drawings, as `vek0 diff --json` has them; true if there are any.

    Keys: equal, added, removed, moved, changed, tables.
    """

    def __bool__(self):
        return not self["equal"]

    def __getattr__(self, name):
        try:
            return self[name]
        except KeyError:
            raise AttributeError(name) from None

    def __repr__(self):
        if self["equal"]:
            return "<diff: equal>"
        counts = (f"{len(self[key])} {key}" for key in ("added", "removed", "moved", "changed"))
        return f"<diff: {', '.join(counts)}, {len(self['tables'])} in tables>"


def _number_of(handle):
    if isinstance(handle, int):
        return handle
    if not isinstance(handle, str):
        raise TypeError("a handle is a hexadecimal string, such as '1F'")
    try:
        return int(handle, 16)
    except ValueError:
        raise KeyError(handle) from None


class Drawing(_core.Drawing):
    """A drawing: `vek0.open` and `vek0.new` make one. Close it, or use it in a `with` statement."""

    @property
    def layers(self):
        """The layers by name."""
        return LayerTable(self, "layer", _tables.layers, _tables.layer, _tables.add_layer)

    @property
    def linetypes(self):
        """The linetypes by name."""
        return LinetypeTable(
            self, "linetype", _tables.linetypes, _tables.linetype, _tables.add_linetype
        )

    @property
    def styles(self):
        """The text styles by name."""
        return StyleTable(self, "style", _tables.styles, _tables.style, _tables.add_style)

    @property
    def blocks(self):
        """The blocks by name."""
        return BlockTable(self, "block", _tables.blocks, _tables.block, _tables.add_block)

    @property
    def layouts(self):
        """The layouts by name."""
        return LayoutTable(self, "layout", _tables.layouts, _tables.layout, None)

    @property
    def modelspace(self):
        """Model space."""
        return _tables.layout(self, "Model")

    @property
    def header(self):
        """Variables by name, such as $LTSCALE."""
        return Header(self)

    @property
    def report(self):
        """What was repaired, changed or lost in reading: a list of dictionaries."""
        return json.loads(self._report())

    # --- Entities

    def __getitem__(self, handle):
        entity = self._find(_number_of(handle))
        if entity is None:
            raise KeyError(handle)
        return entity

    def __contains__(self, handle):
        try:
            return self._find(_number_of(handle)) is not None
        except KeyError:
            return False

    def select(self, text):
        """Entities of model space by the selection language of `vek0 edit`, such as
        'kind=LINE,ARC layer=WALL*'."""
        return self._select(text)

    def join(self, entities, tolerance=None, across_layers=False):
        """Join lines, arcs and polylines whose ends meet into polylines; return these and what
        could not be joined."""
        return self._join(list(entities), tolerance, across_layers)

    def set_current(self, layer=None, color=None, linetype=None):
        """Set the layer, color or linetype of what is added next."""
        self._set_current(layer, color, linetype)

    # --- Steps

    @contextlib.contextmanager
    def step(self, name=""):
        """What is done inside is undone at once; an exception takes all of it back."""
        self._begin(name)
        try:
            yield self
        except BaseException:
            self._rollback()
            raise
        self._commit()

    def run(self, command):
        """Run a command of the language of `vek0 edit --script`; return its message."""
        return self._run(command)

    # --- Output

    def to_bytes(self, version="keep"):
        """The drawing as a file: "keep" for the version it came in, or "r12" to "2018"."""
        data, losses = self._save(version)
        for loss in losses:
            warnings.warn(loss, LossWarning, stacklevel=2)
        return data

    def save(self, path, version="keep"):
        """Write the drawing completely, or not at all. `path` may be an open binary file."""
        data, losses = self._save(version)
        if hasattr(path, "write"):
            path.write(data)
        else:
            _write(os.fspath(path), data)
        for loss in losses:
            warnings.warn(loss, LossWarning, stacklevel=2)

    def render(self, path, **options):
        """Draw a picture, .svg, .png or .pdf, with the options of `vek0 render`: size, paper,
        landscape, scale, unit, margin, dpi, window, layout, view, layers, hide_layers, background,
        color, text, lineweight and format."""
        for message in self._render(os.fsdecode(path), options):
            warnings.warn(message, LossWarning, stacklevel=2)

    def _repr_svg_(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "drawing.svg")
            self._render(path, {"size": "800x600"})
            with open_file(path, encoding="utf-8") as file:
                return file.read()

    def diff(self, other, tolerance=None):
        """The differences from this drawing to another one."""
        if not isinstance(other, Drawing):
            raise TypeError("a drawing is compared with another drawing")
        return Diff(json.loads(self._diff(other, tolerance)))

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        self.close()

    def __repr__(self):
        if self.closed:
            return "<closed drawing>"
        name = repr(self.path) if self.path else "new"
        return f"<drawing {name}: {len(self.modelspace)} entities, {len(self.layers)} layers>"


def _forward(name):
    method = getattr(_core.Space, name)

    def add(self, *arguments, **keywords):
        return method(self.modelspace, *arguments, **keywords)

    add.__name__ = name
    add.__doc__ = f"`modelspace.{name}`."
    return add


for _name in dir(_core.Space):
    if _name.startswith("add_"):
        setattr(Drawing, _name, _forward(_name))

open_file = open


def _write(path, data):
    """Replace the file at once, so that a failure leaves the old one."""
    target = os.path.realpath(path)
    folder, name = os.path.split(target)
    handle, temporary = tempfile.mkstemp(prefix=os.fsdecode(name) + ".", dir=folder or None)
    try:
        with os.fdopen(handle, "wb") as file:
            file.write(data)
        try:
            mode = os.stat(target).st_mode & 0o7777
        except OSError:
            mask = os.umask(0)
            os.umask(mask)
            mode = 0o666 & ~mask
        os.chmod(temporary, mode)
        os.replace(temporary, target)
    except BaseException:
        os.unlink(temporary)
        raise


def open(path, *, strict=False, encoding=None):  # noqa: A001 - named like the built-in function
    """Read a drawing from a path, an open binary file, or bytes.

    With `strict`, the first error stops reading; otherwise what can be repaired is, and listed in
    `report`. What is lost is a `LossWarning`, too. `encoding` overrides the one that the file
    states, such as "cp1252" or "gbk".
    """
    name, data = "", None
    if isinstance(path, (bytes, bytearray, memoryview)):
        name, data = "<bytes>", bytes(path)
    elif hasattr(path, "read"):
        name, data = str(getattr(path, "name", "<file>")), path.read()
        if not isinstance(data, bytes):
            raise TypeError("open the file in binary mode")
    else:
        name = os.fsdecode(path)
    drawing = Drawing(name, data, strict, encoding or "")
    for entry in drawing.report:
        if entry["severity"] == "loss":
            warnings.warn(f"{name}: {entry['message']}", LossWarning, stacklevel=2)
    return drawing


def new():
    """A new, empty drawing."""
    return Drawing()


# --- What spaces and entities have in Python


def _query_space(self, text="*"):
    """Entities of some kinds that meet conditions: 'LINE ARC[layer=="WALL" & radius>5]'.

    Kinds are those of `kind`, or * for all; `!KIND` excludes one. Operators are ==, !=, <, <=, >,
    >= and ?, which matches a regular expression; & and | connect conditions.
    """
    kinds, test = _query.parse(text)
    found = self._entities(kinds)
    return found if test is None else [entity for entity in found if test(entity)]


def _item_of_space(self, index):
    return self._entities([])[index]


def _bulk_reader(result, method):
    def read(self):
        return result(**method(self))

    read.__doc__ = result.__doc__
    return read


def _equip_space(space):
    space.query = _query_space
    space.__getitem__ = _item_of_space
    space.delete = lambda self: _tables.delete_block(self)
    for name in ("Lines", "Points", "Circles", "Arcs", "Polylines", "Texts", "Inserts"):
        method = getattr(space, "_" + name.lower())
        reader = _bulk_reader(getattr(_bulk, name), method)
        reader.__name__ = name.lower()
        setattr(space, name.lower(), reader)


class _Factors(tuple):
    """The scale factors of an insert, which also scale it when called."""

    def __call__(self, factor, center=(0.0, 0.0)):
        self.entity.scale_by(factor, center)


class _Factor(float):
    """The scale of a hatch's pattern, which also scales the hatch when called."""

    def __call__(self, factor, center=(0.0, 0.0)):
        self.entity.scale_by(factor, center)


def _scale_of(self):
    """Scale by a factor about a point: scale(factor, center). Of inserts and hatches, also the
    scale factors and the scale of the pattern."""
    value = self._get_scale()
    if value is None:
        return self.scale_by
    scale = _Factors(value) if isinstance(value, tuple) else _Factor(value)
    scale.entity = self
    return scale


def _equip_entity(entity):
    entity.scale = property(_scale_of, lambda self, value: self._set_scale(value))


_equip_space(_core.Space)
_equip_entity(_core.Entity)
