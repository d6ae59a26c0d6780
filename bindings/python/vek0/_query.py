"""The language of `Space.query`."""

import operator
import re

_KIND = re.compile(r"\s*(\*|!?[A-Za-z0-9_]+)")
_CONDITION = re.compile(
    r"""\s*(?P<not>!)?\s*(?P<name>[A-Za-z_]+)\s*(?P<op>==|!=|<=|>=|<|>|\?)\s*
        (?:"(?P<double>[^"]*)"|'(?P<single>[^']*)'|(?P<bare>[^\s&|,\[\]()"']+))\s*""",
    re.VERBOSE,
)
_OPERATORS = {
    "==": operator.eq,
    "!=": operator.ne,
    "<": operator.lt,
    "<=": operator.le,
    ">": operator.gt,
    ">=": operator.ge,
}
_NAMES = {"layer", "linetype", "block", "style", "kind", "handle", "pattern", "space"}


def _value_of(match):
    if match["bare"] is None:
        return match["double"] if match["double"] is not None else match["single"]
    text = match["bare"]
    if text in ("True", "False"):
        return text == "True"
    try:
        return float(text)
    except ValueError:
        return text


class _Condition:
    def __init__(self, match):
        self.name = match["name"]
        self.negated = match["not"] is not None
        self.value = _value_of(match)
        self.op = match["op"]
        if self.op == "?":
            try:
                self.regex = re.compile(str(self.value), re.IGNORECASE)
            except re.error as error:
                raise ValueError(f"{self.value!r} is not a regular expression: {error}") from None

    def __call__(self, entity):
        value = getattr(entity, self.name, None)
        if value is None or callable(value) and not isinstance(value, (float, tuple)):
            return self.negated  # an entity without the attribute does not match
        return self._matches(value) != self.negated

    def _matches(self, value):
        if self.op == "?":
            return self.regex.fullmatch(str(value)) is not None
        wanted = self.value
        if isinstance(value, str):
            wanted = str(wanted) if not isinstance(wanted, float) else f"{wanted:g}"
            if self.name in _NAMES:  # names ignore case, as in drawings
                value, wanted = value.casefold(), wanted.casefold()
        try:
            return _OPERATORS[self.op](value, wanted)
        except TypeError:
            return self.op == "!="


def parse(text):
    """The kinds (empty: all) and a predicate, or None for all entities."""
    head, bracket, tail = text.partition("[")
    kinds, excluded = set(), set()
    position = 0
    while head[position:].strip():
        match = _KIND.match(head, position)
        if not match:
            raise ValueError(f"{head[position:].strip()!r} is not a kind of entity, in {text!r}")
        word = match[1].upper()
        position = match.end()
        if word == "*":
            kinds.add("*")
        elif word.startswith("!"):
            excluded.add(word[1:])
        else:
            kinds.add(word)
    if not kinds and not excluded:
        raise ValueError("a query begins with kinds of entities, or * for all")
    chosen = [] if "*" in kinds or not kinds else sorted(kinds - excluded)
    tests = _conditions(tail, text) if bracket else []
    if excluded:
        tests.insert(0, [lambda entity: entity.kind not in excluded])
    if not tests:
        return chosen, None
    return chosen, lambda entity: all(any(test(entity) for test in group) for group in tests)


def _conditions(text, whole):
    """Groups that all have to hold, of conditions one of which has to hold."""
    body, bracket, rest = text.rpartition("]")
    if not bracket or rest.strip():
        raise ValueError(f"a ']' at the end is missing, in {whole!r}")
    groups = [[]]
    position = 0
    while True:
        match = _CONDITION.match(body, position)
        if not match:
            raise ValueError(
                f"{body[position:].strip()!r} is not a condition like layer==\"WALL\", in {whole!r}"
            )
        groups[-1].append(_Condition(match))
        position = match.end()
        if position == len(body):
            return groups
        if body[position] in "&,":
            groups.append([])
        elif body[position] != "|":
            raise ValueError(f"'&' or '|' is missing before {body[position:]!r}, in {whole!r}")
        position += 1
