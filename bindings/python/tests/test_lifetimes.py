"""Objects that outlive what they stand for: they raise, undo revives them, nothing crashes."""

import gc
import random
import weakref

import pytest

import vek0


def _use(entity):
    try:
        repr(entity)
        entity.kind, entity.layer, entity.bounds, entity.space
        return True
    except vek0.Error as error:
        assert error.kind in ("deleted", "closed")
        return False


def test_deleted_entities_come_back_as_the_same_object():
    doc = vek0.new()
    block = doc.blocks.add("B")
    inner = block.add_line((0, 0), (1, 0))
    insert = doc.add_insert("B", (5, 5))
    polyline = doc.add_polyline([(0, 0), (1, 0), (1, 1)])
    for entity in (insert, polyline):
        parts = entity.explode()
        assert parts and not _use(entity)
        doc.undo()
        assert _use(entity) and not any(_use(part) for part in parts)
        doc.redo()
        assert all(_use(part) for part in parts)
        doc.undo()
    insert.delete()
    block.delete()
    assert not _use(inner)
    with pytest.raises(vek0.Error):
        len(block)
    doc.undo()
    assert _use(inner) and len(block) == 1
    doc.undo()
    assert _use(insert) and doc[insert.handle] is insert
    doc.close()
    assert not any(map(_use, (inner, insert, polyline)))
    for work in (lambda: len(block), lambda: doc.layers.names(), lambda: doc.undo(),
                 lambda: doc.to_bytes(), lambda: doc.add_point((0, 0))):
        with pytest.raises(vek0.Error) as caught:
            work()
        assert caught.value.kind == "closed"
    assert repr(doc) == "<closed drawing>"


def test_objects_keep_their_drawing_alive():
    entity = vek0.new().add_line((0, 0), (1, 1))
    layer = vek0.new().layers["0"]
    space = vek0.new().modelspace
    gc.collect()
    assert entity.end == (1, 1, 0) and layer.color == 7 and len(space) == 0


@pytest.mark.parametrize("seed", range(30))
def test_random_edits(seed):
    """Every object is usable exactly while the drawing has its entity, whatever happens."""
    choose = random.Random(seed)
    doc = vek0.new()
    blocks = [doc.blocks.add(f"B{i}") for i in range(3)]
    entities, done = [], 0

    def add():
        space = choose.choice([doc.modelspace, *blocks])
        entities.append(space.add_line((choose.random(), 0), (1, choose.random())))

    def add_polyline():
        entities.append(doc.add_polyline([(0, 0), (1, 0), (choose.random(), 1)]))

    def add_insert():
        entities.append(doc.add_insert(choose.choice(blocks), (choose.random(), 0)))

    def with_one(work):
        alive = [entity for entity in entities if entity.is_alive]
        if alive:
            work(choose.choice(alive))

    def explode(entity):
        if entity.space == "Model" and entity.kind in ("INSERT", "LWPOLYLINE", "POLYLINE"):
            entities.extend(entity.explode())

    def fail():
        with doc.step("fails"):
            add()
            with_one(lambda entity: entity.delete())
            raise RuntimeError

    works = [
        add, add_polyline, add_insert, fail,
        lambda: with_one(lambda entity: entity.delete()),
        lambda: with_one(lambda entity: entity.move(1, 1)),
        lambda: with_one(lambda entity: entities.append(entity.copy((1, 0)))),
        lambda: with_one(explode),
        lambda: choose.choice(blocks).delete(),
        doc.undo, doc.undo, doc.redo,
        lambda: entities and entities.pop(choose.randrange(len(entities))),
        gc.collect,
    ]
    for _ in range(200):
        try:
            choose.choice(works)()
            done += 1
        except (RuntimeError, vek0.Error, ValueError):
            pass
        held = {e.handle for space in (doc.modelspace, *doc.blocks) for e in space}
        for entity in entities:
            assert entity.is_alive == (entity.handle in held) == _use(entity)
            if entity.is_alive:
                assert doc[entity.handle] is entity
    assert done > 100
    while doc.undo():
        pass
    assert not any(entity.is_alive for entity in entities)
    doc.close()
    assert not any(map(_use, entities))


def test_iteration_shares_no_object_that_is_held():
    """Loops reuse objects that nobody holds; whatever is held stays the entity that it was."""
    doc = vek0.new()
    with doc.step():
        for i in range(60):
            doc.add_line((i, 0), (i, 1))
    handles = [e.handle for e in list(doc.modelspace)]
    choose = random.Random(3)
    held, weak = {}, {}
    for turn in range(40):
        inner = iter(doc.modelspace)
        for e, handle in zip(doc.modelspace, handles, strict=True):
            assert (e.handle, e.start[0]) == (handle, handles.index(handle))
            assert doc[handle] is e
            kept = held.get(handle)
            assert kept is None or kept is e
            if choose.random() < 0.1:
                held[handle] = e
            if choose.random() < 0.1:
                weak[handle] = weakref.ref(e)
            if choose.random() < 0.5:
                next(inner, None)
        for e in doc.modelspace:
            if choose.random() < 0.1:
                break
        assert doc[e.handle] is e
        for handle in choose.sample(sorted(held), len(held) // 2):
            del held[handle]
        for handle, ref in weak.items():
            assert ref() is None or ref().handle == handle
        if turn % 4 == 0:  # what is deleted meanwhile is still visited, and says so
            seen = []
            for i, e in enumerate(doc.modelspace):
                if i == 3:
                    doc[handles[10]].delete()
                    doc.add_line((99, 0), (99, 1))
                seen.append(e.is_alive)
            assert seen == [i != 10 for i in range(60)]
            doc.undo(), doc.undo()
    rest = iter(doc.modelspace)
    last = next(rest)
    doc.close()
    with pytest.raises(vek0.Error, match="closed"):
        next(rest)
    assert not last.is_alive
