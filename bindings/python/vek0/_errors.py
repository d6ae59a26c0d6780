"""Errors and warnings."""

from . import _core


class Error(Exception):
    """What a drawing could not do.

    Attributes:
        kind: A stable name for the sort of error, such as "broken group" or "deleted".
        line: The line of the file, counted from 1; None if the error has none.
        file: The file; None if the error has none.
    """

    def __init__(self, message, kind="error", line=None, file=None):
        super().__init__(message)
        self.kind = kind
        self.line = line
        self.file = file

    def __reduce__(self):
        return type(self), (self.args[0], self.kind, self.line, self.file)


class UnknownNameError(Error, KeyError):
    """A layer, linetype, style, block or pattern that does not exist."""

    def __str__(self):
        return str(self.args[0])


class LossWarning(UserWarning):
    """Something of a file that could not be read, or cannot be written in a version."""


_core.set_errors(Error, UnknownNameError)
