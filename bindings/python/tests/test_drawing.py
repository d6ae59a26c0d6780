"""Drawings, entities, tables and arrays as users of the package see them."""

import io
import pickle
import threading

import numpy
import pytest

import vek0


@pytest.fixture
def doc():
    with vek0.new() as drawing:
        drawing.layers.add("WALL", color=3)
        yield drawing


def test_fields_are_read_and_set_with_undo(doc):
    block = doc.blocks.add("DOOR", base_point=(1, 1))
    block.add_line((0, 0), (2, 2))
    doc.styles.add("NOTES", "Arial")
    doc.linetypes.add("DASHES", [2, -1, 0, -1], "dashes and dots")
    entities = {
        "point": doc.add_point((1, 2, 3)),
        "line": doc.add_line((0, 0), (10, 5)),
        "circle": doc.add_circle((5, 5), 2),
        "arc": doc.add_arc((0, 0), 5, 30, 60),
        "polyline": doc.add_polyline([(0, 0), (4, 0), (4, 4)], bulges=[0, 1, 0], closed=True),
        "text": doc.add_text("hello", (1, 1), 2.5),
        "insert": doc.add_insert("DOOR", (3, 3), (2, 2), 90),
        "hatch": doc.add_hatch([(0, 0), (9, 0), (9, 9)], "ANSI31", 1, 15),
    }
    shapes = {
        "circle": "about (5.0, 5.0, 0.0), radius 2",
        "arc": "radius 5, 30 to 60 degrees",
        "polyline": "closed, 3 points",
        "hatch": "ANSI31",
    }
    for name, shape in shapes.items():
        assert shape in repr(entities[name])
    changes = [
        ("point", "point", (4.0, 5.0, 6.0)),
        ("line", "start", (1.0, 1.0, 0.0)),
        ("line", "end", (2.0, 3.0, 1.0)),
        ("circle", "center", (7.0, 8.0, 0.0)),
        ("circle", "radius", 4.5),
        ("arc", "start_angle", 45.0),
        ("arc", "end_angle", 200.0),
        ("polyline", "points", [(0.0, 0.0, 0.0), (5.0, 0.0, 0.0), (5.0, 5.0, 0.0)]),
        ("polyline", "bulges", [0.5, 0.0, 0.25]),
        ("polyline", "widths", [(1.0, 2.0), (0.0, 0.0), (3.0, 3.0)]),
        ("polyline", "closed", False),
        ("text", "text", "world"),
        ("text", "point", (2.0, 2.0, 0.0)),
        ("text", "height", 5.0),
        ("text", "rotation", 30.0),
        ("text", "style", "NOTES"),
        ("text", "halign", "center"),
        ("text", "valign", "middle"),
        ("insert", "point", (0.0, 0.0, 0.0)),
        ("insert", "scale", (3.0, 3.0, 1.0)),
        ("insert", "rotation", 45.0),
        ("insert", "columns", 3),
        ("insert", "rows", 2),
        ("hatch", "pattern", "ANSI32"),
        ("hatch", "scale", 2.0),
        ("hatch", "angle", 30.0),
        ("line", "layer", "WALL"),
        ("line", "color", 5),
        ("line", "true_color", (1, 2, 3)),
        ("line", "lineweight", 0.35),
        ("line", "linetype", "DASHES"),
        ("line", "linetype_scale", 2.5),
        ("line", "visible", False),
    ]
    for which, field, value in changes:
        entity = entities[which]
        before = getattr(entity, field)
        assert before != value, field
        setattr(entity, field, value)
        assert _near(getattr(entity, field), value), field
        assert doc.undo()
        assert _near(getattr(entity, field), before), field
        assert doc.redo()
    entities["line"].color = 5  # as it is: no step
    assert doc.undo() and entities["line"].visible
    assert entities["insert"].block == "DOOR"
    assert len(entities["hatch"].boundary) == 3
    assert entities["arc"].start == pytest.approx((5 * 2**-0.5, 5 * 2**-0.5, 0))
    assert len({entity.kind for entity in entities.values()}) == 8
    with pytest.raises(ValueError, match="no parallels"):
        entities["text"].offset(1)
    with pytest.raises(AttributeError, match="a LINE has no radius"):
        entities["line"].radius


def _near(a, b):
    if isinstance(b, (list, tuple)):
        return len(a) == len(b) and all(_near(x, y) for x, y in zip(a, b))
    return a == pytest.approx(b) if isinstance(b, float) else a == b


def test_tables(doc):
    wall = doc.layers["wall"]
    assert (wall.name, wall.color, "WALL" in doc.layers, "NOPE" in doc.layers) == ("WALL", 3, True, False)
    for field, value in {
        "color": 5, "true_color": (9, 8, 7), "lineweight": 0.5, "on": False, "frozen": True,
        "locked": True, "plot": False, "linetype": "Continuous",
    }.items():
        setattr(wall, field, value)
        assert getattr(wall, field) == value
    wall.name = "WALLS"
    assert doc.layers.names() == ["0", "WALLS"]
    line = doc.add_line((0, 0), (1, 1), layer="WALLS")
    with pytest.raises(vek0.Error) as caught:
        wall.delete()
    assert caught.value.kind == "in use"
    line.delete()
    doc.layers["WALLS"].delete()
    with pytest.raises(vek0.Error) as caught:
        wall.color
    assert caught.value.kind == "deleted"
    doc.undo()
    assert wall.color == 5
    with pytest.raises(KeyError):
        doc.layers["nope"]
    with pytest.raises(KeyError):
        doc.layouts["nope"]
    assert doc.layouts["Model"] == doc.modelspace
    doc.header["$LTSCALE"] = 2.5
    doc.units = "mm"
    assert (doc.header["$LTSCALE"], doc.header["$INSUNITS"], doc.units) == (2.5, 4, "mm")


@pytest.mark.parametrize(
    "query, expected",
    [
        ("*", "ABCD"),
        ("LINE", "AB"),
        ("line circle", "ABC"),
        ("* !LINE", "CD"),
        ('LINE[layer=="wall"]', "B"),
        ('*[layer!="WALL"]', "ACD"),
        ("*[radius>=2]", "C"),
        ('*[text?"he.*"]', "D"),
        ("*[radius>1 | color==5]", "BC"),
        ("LINE[color<=5 & layer==WALL]", "B"),
    ],
)
def test_query(doc, query, expected):
    names = {
        doc.add_line((0, 0), (1, 1)): "A",
        doc.add_line((0, 0), (2, 2), layer="WALL", color=5): "B",
        doc.add_circle((0, 0), 2): "C",
        doc.add_text("hello"): "D",
    }
    assert "".join(names[entity] for entity in doc.modelspace.query(query)) == expected


def test_spaces_are_sequences(doc):
    made = [doc.add_point((i, 0)) for i in range(5)]
    space = doc.modelspace
    assert len(space) == 5 and list(space) == made
    assert space[0] is made[0] and space[-1] is made[4] and space[1:3] == made[1:3]
    assert space.bounds == ((0, 0, 0), (4, 0, 0))
    with pytest.raises(IndexError):
        space[5]
    assert doc[made[2].handle] is made[2]
    with pytest.raises(KeyError):
        doc["FFFF"]
    with pytest.raises(KeyError):
        doc["not hexadecimal"]
    assert [e.handle for e in doc.select("kind=point window=0.5,-1,2.5,1")] == [
        made[1].handle, made[2].handle]


def test_attributes_of_inserts(doc):
    block = doc.blocks.add("TAG")
    block.add_circle((0, 0), 1)
    with pytest.raises(vek0.UnknownNameError):
        doc.add_insert("TAG", attributes={"NO": "7"})
    assert len(doc.modelspace) == 0
    with pytest.raises(ValueError):
        block.add_insert("TAG", (0, 0))


def test_files_of_all_sorts(doc, tmp_path):
    doc.add_line((0, 0), (1, 1), layer="WALL")
    path = tmp_path / "x.dxf"
    doc.save(path, version="2000")
    data = path.read_bytes()
    for source in (path, str(path), data, io.BytesIO(data)):
        with vek0.open(source) as other:
            assert len(other.modelspace) == 1 and other.to_bytes() == data
            assert not doc.diff(other).moved
    buffer = io.BytesIO()
    doc.save(buffer, version="r12")
    assert b"AC1009" in buffer.getvalue()
    with pytest.raises(vek0.Error) as caught:
        vek0.open(b"0\nSECTION\n2\nENTITIES\n0\nLINE\n10\nbad\n0\n", strict=True)
    assert caught.value.line and caught.value.kind and caught.value.file == "<bytes>"
    copy = pickle.loads(pickle.dumps(caught.value))
    assert (copy.kind, copy.line) == (caught.value.kind, caught.value.line)
    with pytest.raises(vek0.Error):
        vek0.open(tmp_path / "none.dxf")
    with pytest.raises(ValueError, match="no version"):
        doc.to_bytes("1987")


def test_an_edited_file_stays_what_it_was(doc, tmp_path):
    doc.add_line((0, 0), (1, 1))
    doc.add_circle((0, 0), 1)
    path = tmp_path / "x.dxf"
    doc.save(path, version="2018")
    with vek0.open(path) as other:
        other.modelspace[0].move(0, 1)
        lines = other.to_bytes().split(b"\n")
    before = path.read_bytes().split(b"\n")
    assert len(lines) == len(before)
    assert 2 <= sum(a != b for a, b in zip(lines, before)) <= 4


def test_pictures(doc, tmp_path):
    doc.add_line((0, 0), (1, 1))
    doc.add_text("hello")
    bounds = doc.modelspace.bounds
    assert doc._repr_svg_().startswith("<?xml") or "<svg" in doc._repr_svg_()
    doc.render(tmp_path / "x.png", size="200x100", background="black")
    assert (tmp_path / "x.png").read_bytes()[:4] == b"\x89PNG"
    assert doc.modelspace.bounds == bounds
    with pytest.raises(TypeError, match="no option"):
        doc.render(tmp_path / "x.svg", colour="mono")
    with pytest.raises(ValueError):
        doc.render(tmp_path / "x.svg", color="pink")


def test_steps(doc):
    with doc.step("two"):
        line = doc.add_line((0, 0), (1, 0))
        with doc.step("inner"):
            line.move(0, 5)
    doc.undo()
    assert len(doc.modelspace) == 0
    doc.redo()
    assert line.start == (0, 5, 0)
    with pytest.raises(RuntimeError):
        with doc.step("fails"):
            line.delete()
            doc.layers.add("NEW")
            raise RuntimeError
    assert line.start == (0, 5, 0) and "NEW" not in doc.layers
    with doc.step("outer"):
        with pytest.raises(ValueError):
            line.linetype_scale = -1
        assert doc.undo.__self__ is doc
        with pytest.raises(vek0.Error):
            doc.undo()
    assert doc.run("line 0,0 10,0") and len(doc.modelspace) == 2
    with pytest.raises(vek0.Error) as caught:
        doc.run("lime 0,0")
    assert caught.value.kind == "command"


def test_bulk(doc):
    rng = numpy.random.default_rng(1)
    ends = rng.uniform(-100, 100, (1000, 2, 3))
    handles = doc.modelspace.add_lines(ends, layer="WALL")
    lines = doc.modelspace.lines()
    assert (lines.points == ends).all() and (lines.handles == handles).all()
    assert [lines.layer_names[i] for i in set(lines.layers)] == ["WALL"]
    centers = ends[:, 0]
    doc.add_circles(centers, 2.0)
    doc.add_arcs(centers, numpy.full(1000, 3.0), 0, 90)
    doc.add_points(centers[:, :2])
    doc.add_polylines(ends.reshape(-1, 3), numpy.arange(0, 2001, 4), 0.5, closed=True)
    assert (doc.modelspace.circles().centers == centers).all()
    assert doc.modelspace.arcs().end_angles == pytest.approx(90)
    assert (doc.modelspace.points().points[:, :2] == centers[:, :2]).all()
    found = doc.modelspace.polylines()
    assert found.points == pytest.approx(ends.reshape(-1, 3))
    assert (found.offsets == numpy.arange(0, 2001, 4)).all() and found.closed.all()
    doc.blocks.add("DOT").add_point((0, 0))
    doc.add_texts([str(i) for i in range(1000)], centers, 2.5, 90)
    doc.add_inserts("DOT", centers, numpy.linspace(1, 2, 1000))
    texts, inserts = doc.modelspace.texts(), doc.modelspace.inserts()
    assert texts.texts[7] == "7" and (texts.points == centers).all()
    assert inserts.scales[:, 1] == pytest.approx(numpy.linspace(1, 2, 1000))
    while doc.undo():
        pass
    assert len(doc.modelspace) == 0 == len(doc.blocks)


def test_transform_by_matrix(doc):
    line = doc.add_line((1, 0), (2, 0, 1))
    angle, factor = 0.3, 2.0
    cosine, sine = factor * numpy.cos(angle), factor * numpy.sin(angle)
    for mirror in (1, -1):
        matrix = numpy.array([[cosine, -mirror * sine, 0, 5], [sine, mirror * cosine, 0, 6],
                              [0, 0, factor, 7], [0, 0, 0, 1.0]])
        expected = [matrix @ (*point, 1) for point in (line.start, line.end)]
        doc.modelspace.transform(matrix)
        for point, wanted in zip((line.start, line.end), expected):
            assert point == pytest.approx(wanted[:3])
    with pytest.raises(ValueError, match="scale all axes alike"):
        doc.modelspace.transform(numpy.diag([1, 2, 1, 1]))


@pytest.mark.parametrize(
    "work, error",
    [
        (lambda d: d.add_line((0, 0), (float("nan"), 0)), ValueError),
        (lambda d: d.add_line((0,), (1, 1)), ValueError),
        (lambda d: d.add_line("ab", (1, 1)), TypeError),
        (lambda d: d.add_circle((0, 0), -1), ValueError),
        (lambda d: d.add_circle((0, 0), "big"), TypeError),
        (lambda d: d.add_line((0, 0), (1, 1), layer="NOPE"), KeyError),
        (lambda d: d.add_line((0, 0), (1, 1), color=300), ValueError),
        (lambda d: d.add_polyline([(0, 0)]), ValueError),
        (lambda d: d.add_polyline([(0, 0), (1, 1)], bulges=[1]), ValueError),
        (lambda d: d.add_hatch([(0, 0), (1, 1), (1, 0)], "NOPE"), KeyError),
        (lambda d: d.add_hatch([(0, 0), (1, 1)]), ValueError),
        (lambda d: d.add_insert("NOPE"), KeyError),
        (lambda d: d.add_lines(numpy.zeros((3, 4))), ValueError),
        (lambda d: d.add_lines(numpy.full((1, 2, 2), numpy.inf)), ValueError),
        (lambda d: d.add_circles(numpy.zeros((3, 2)), [1, 2]), ValueError),
        (lambda d: d.add_circles(numpy.zeros((3, 2)), [1, 2, -3]), ValueError),
        (lambda d: d.add_polylines(numpy.zeros((3, 2)), [0, 1, 3]), ValueError),
        (lambda d: d.layers.add("0"), ValueError),
        (lambda d: d.layers.add(""), ValueError),
        (lambda d: d.modelspace.query("LINE[layer"), ValueError),
        (lambda d: d.modelspace.query(""), ValueError),
        (lambda d: d.select("kind=nope"), vek0.Error),
        (lambda d: d.join([vek0.new().add_point((0, 0))]), ValueError),
        (lambda d: d.header.__setitem__("$NOPE", 1), KeyError),
        (lambda d: d[None], TypeError),
        (lambda d: d.add_texts(["a"], numpy.zeros((2, 2))), ValueError),
        (lambda d: d.add_inserts("NOPE", numpy.zeros((2, 2))), KeyError),
        (lambda d: d.diff(3), TypeError),
    ],
)
def test_wrong_input_changes_nothing(doc, work, error):
    before = doc.to_bytes("2018")
    with pytest.raises(error):
        work(doc)
    assert doc.to_bytes("2018") == before


def test_a_busy_drawing_raises(doc):
    doc.modelspace.add_lines(numpy.zeros((200_000, 2, 2)))
    thread = threading.Thread(target=doc.to_bytes)
    thread.start()
    raised = 0
    while thread.is_alive():
        try:
            doc.layers.names()
        except vek0.Error as error:
            assert error.kind == "busy"
            raised += 1
    thread.join()
    assert raised > 0 and doc.layers.names()
