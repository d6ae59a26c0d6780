"""What ezdxf finds in a drawing, as a flat table of facts.

A fact is a tuple of words and its value: ("layer", "WALL", "color") is 3. Names and kinds are in
capital letters. What has its default value is no fact.
"""
import collections
import logging
import pathlib
import re

import ezdxf
from ezdxf import recover
from ezdxf.render.arrows import ARROWS

logging.disable(logging.CRITICAL)

BYLAYER, BY_DEFAULT = 256, -3
MODEL, PAPER = "model", "paper"
# Attribute of ezdxf and its default.
ENTITY = {"color": BYLAYER, "true_color": None, "lineweight": -1, "linetype": "BYLAYER",
          "ltscale": 1.0, "invisible": 0, "transparency": None, "layer": "0"}
LAYER = {"true_color": None, "lineweight": BY_DEFAULT, "linetype": "CONTINUOUS", "plot": 1}
# An empty font stands for the one that the extended data names.
STYLE = {"font": "", "bigfont": "", "width": 1.0, "oblique": 0.0, "height": 0.0,
         "generation_flags": 0}
HEADER = {"$INSUNITS": 0, "$MEASUREMENT": 0, "$LTSCALE": 1.0}
# Settings of dimension styles whose defaults differ from those of ezdxf, which are metric.
IMPERIAL = {"dimaltd": 2, "dimaltf": 25.4, "dimasz": 0.18, "dimcen": 0.09, "dimdec": 4,
            "dimdli": 0.38, "dimexe": 0.18, "dimexo": 0.0625, "dimgap": 0.09, "dimtad": 0, "dimtih": 1, "dimtoh": 1,
            "dimtofl": 0, "dimtxt": 0.18, "dimzin": 0, "dimtdec": 4, "dimtzin": 0, "dimalttd": 2,
            "dimtolj": 1, "dimfxl": 1.0}
# Parts of other entities, or ends of lists.
PARTS = {"SEQEND", "VERTEX"}
TABLES = {"layer": "layers", "ltype": "linetypes", "style": "styles", "dimstyle": "dimstyles",
          "view": "views", "ucs": "ucs"}
SHAPE_FILE, VERTICAL = 1, 4
WHOLE_SHEET = 1  # number of the viewport that stands for its sheet
# ezdxf turns R12 into R2000, and adds the blocks of all arrows.
ADDED = {"_" + name.upper() for name in ARROWS.__all_arrows__} | {"_CLOSEDFILLED"}


def read(path):
    try:
        return ezdxf.readfile(path)
    except Exception:
        return recover.readfile(path)[0]


def stated_handles(content):
    """The handles in the file: ezdxf gives entities without one the next that is free."""
    return {h.decode().upper() for h in re.findall(rb"\n *5\r?\n *([0-9A-Fa-f]+)\r?\n", content)}


def kind_of(entity):
    kind = entity.dxftype()
    if kind == "POLYLINE" and (entity.is_poly_face_mesh or entity.is_polygon_mesh):
        return "MESH"
    return "POLYLINE" if kind == "LWPOLYLINE" else kind


def canonical(value):
    if isinstance(value, str):
        return value.upper()
    return round(value, 6) if isinstance(value, float) else value


def set_apart(entry, defaults):
    """The attributes of a table entry or entity that are not at their defaults."""
    attributes = {}
    for name in defaults:
        value = entry.dxf.get(name) if entry.dxf.is_supported(name) else None
        if value is not None and canonical(value) != canonical(defaults[name]):
            attributes[name] = canonical(value)
    return attributes


def dimension_settings(style):
    """What a dimension style states, apart from the defaults of either system of units."""
    given = {}
    for name, value in style.dxfattribs().items():
        defaults = (canonical(style.dxf.get_default(name)), IMPERIAL.get(name))
        if name.startswith("dim") and canonical(value) not in defaults:
            given[name] = canonical(value)
    return given


class Inventory:
    def __init__(self, path):
        self.facts = {}
        content = pathlib.Path(path).read_bytes()
        self.stated = stated_handles(content)
        self.content = content.lower()
        self.traits = collections.Counter()
        self.doc = read(path)
        self.add_tables()
        self.add_header()
        self.add_spaces()
        self.add_groups()
        for key, count in self.traits.items():
            self.add("traits", *key, count)

    def add(self, *words):
        *key, value = words
        self.facts[tuple(key)] = value

    def add_all(self, key, attributes):
        for name, value in attributes.items():
            self.add(*key, name, value)

    def add_header(self):
        for name, default in HEADER.items():
            value = self.doc.header.get(name, default)
            if value != default and name.lower().encode() in self.content:
                self.add("header", name, value)

    def add_tables(self):
        for category, table in TABLES.items():
            for entry in getattr(self.doc, table):
                name = entry.dxf.get("name", "").upper()
                if not name:
                    continue  # a shape file
                self.add(category, name, "present", True)
                if entry.xdata:
                    self.add(category, name, "data", True)
        for layer in self.doc.layers:
            self.add_layer(layer)
        for ltype in self.doc.linetypes:
            self.add_linetype(ltype)
        for style in self.doc.styles:
            self.add_style(style)
        for style in self.doc.dimstyles:
            settings = dimension_settings(style)
            if settings:
                self.add("dimstyle", style.dxf.name.upper(), settings)

    def add_layer(self, layer):
        key = ("layer", layer.dxf.name.upper())
        self.add_all(key, set_apart(layer, LAYER))
        self.add_all(key, {"color": layer.color} if layer.color != 7 else {})
        for name, is_set in (("off", layer.is_off()), ("frozen", layer.is_frozen()),
                             ("locked", layer.is_locked())):
            if is_set:
                self.add(*key, name, True)

    def add_style(self, style):
        if style.dxf.flags & SHAPE_FILE:
            return
        key = ("style", style.dxf.name.upper())
        self.add_all(key, set_apart(style, STYLE))
        if style.dxf.flags & VERTICAL:
            self.add(*key, "vertical", True)

    def add_linetype(self, ltype):
        key = ("ltype", ltype.dxf.name.upper())
        tags = ltype.pattern_tags.tags
        dashes = [round(tag.value, 6) for tag in tags if tag.code == 49]
        texts = [tag.value for tag in tags if tag.code == 9]
        if dashes:
            self.add(*key, "dashes", dashes)
        if texts:
            self.add(*key, "texts", texts)

    def add_spaces(self):
        kinds = collections.Counter()
        for layout in self.doc.layouts:
            if not re.fullmatch(r"Model|(?i:Layout)\d*", layout.name):
                self.add("layout", layout.name.upper(), True)
            self.add_entities(MODEL if layout.name == "Model" else PAPER, layout, kinds)
        for block in self.doc.blocks:
            if block.name.lower()[1:].startswith(("model_space", "paper_space")):
                continue
            if block.name.upper() in ADDED and block.name.encode().lower() not in self.content:
                continue
            if not block.name.startswith("*"):
                self.add("block", block.name.upper(), "present", True)
            self.add_entities("block " + block.name.upper(), block, kinds)
        for key, count in kinds.items():
            self.add("kind", *key, count)

    def add_entities(self, space, entities, kinds):
        for entity in entities:
            self.add_entity(space, entity, kinds)
            for attrib in getattr(entity, "attribs", ()):
                self.add_entity(space, attrib, kinds)

    def add_entity(self, space, entity, kinds):
        kind = kind_of(entity)
        if kind in PARTS or (kind == "VIEWPORT" and entity.dxf.get("id", 0) == WHOLE_SHEET):
            return
        kinds[space, kind] += 1
        attributes = set_apart(entity, ENTITY)
        if kind == "3DFACE":
            attributes.pop("invisible", None)  # its hidden edges
        self.traits.update(attributes.items())
        handle = entity.dxf.handle
        if handle not in self.stated:
            return
        self.add("entity", handle, kind, "present", True)
        self.add_all(("entity", handle, kind), attributes)
        for application in entity.xdata.data if entity.xdata else ():
            self.add("entity", handle, kind, "data of " + application.upper(), True)

    def add_groups(self):
        for name, group in self.doc.groups:
            self.add("group", name.upper(), len(group))


def inventory_of(path):
    """The facts of the drawing."""
    return Inventory(path).facts
