"""Statuses, notes and exceptions."""

import enum
import errno
from typing import Any, Dict, NamedTuple, Optional, Tuple, Type


class Status(enum.IntEnum):
    """Why a call failed: the statuses of the C interface."""

    OPEN_ERROR = 2
    """A file could not be opened, or a machine context could not be parsed at all or saved."""
    SHORT_WRITE = 3
    """A file was opened, but not all of its text could be written."""
    CONTENT_ERROR = 4
    """Something that a file needs is missing or malformed, or an object cannot be written."""
    STRUCTURE_ERROR = 5
    """A file holds something else: a wrong root element, or a root component that is broken."""
    BAD_HANDLE = 100
    """A handle of the C interface is not valid."""
    BAD_ARGUMENT = 101
    """An argument is outside of its range."""
    BAD_TEXT = 102
    """A text is not UTF-8, too long, or not in the code page of a Windows program."""
    OUT_OF_MEMORY = 103
    """Memory ran out."""
    FATAL_REPORT = 104
    """The runtime has sent a message to its fatal channel."""
    FAILED = 105
    """The operation failed, and the library knows no more than the reason says."""
    INTERNAL_ERROR = 106
    """An exception that the library does not expect."""
    NOT_FOUND = -21
    """The file, section or entry does not exist."""
    SYNTAX_ERROR = -31
    """A name in brackets has no closing bracket."""
    BUFFER_TOO_SMALL = -32
    """A path does not fit the buffers of a search."""
    NAME_TOO_LONG = -42
    """An expansion has no end, or a search got a text that is too long."""
    UNDEFINED = -43
    """A variable is not defined."""
    NO_FILE_NAME = -44
    """A search reference has no name of a file."""


class Note(NamedTuple):
    """Something that was read otherwise than the file says."""

    kind: str
    """The kind of the note, as in "not-a-number": the same in all versions."""
    line: int
    """The line of the file, from 1; 0 if the note is about no line."""
    column: int
    """The column in the line, from 1 in UTF-16 units; 0 if it is not known."""
    subject: str
    """The component, element or key; may be empty."""
    text: str
    """What was altered, and what the object holds instead."""
    attribute: str
    """The attribute of the element; empty if the note is about the whole element."""
    value: str
    """What the file has, if the note is about a value."""
    parent: str
    """The element or the section that has the subject; may be empty."""
    expected: str
    """The name that the format defines, if the subject differs from it in case only."""
    occurrences: int
    """How often; 0 for a kind that counts nothing."""


class Error(Exception):
    """A call of the library failed.

    str() of it is ``FILE:LINE:COLUMN: REASON``, without what is not known. FILE is "<bytes>" if the
    reason refers to a line of bytes.
    """

    status: Status
    """Why, as a number."""
    reason: str
    """Why, as one line of English."""
    file: Optional[str]
    """The file as the caller named it; None if the call has none."""
    line: int
    """The line of the file to which the reason refers, from 1; 0 if it is not known."""
    column: int
    """The column in the line, from 1 in UTF-16 units; 0 if it is not known."""
    system_error: int
    """The system's number of the failure, an errno value; 0 if the system has not failed."""
    notes: Tuple[Note, ...]
    """What was read otherwise than the file says, until the failure."""
    cause: str
    """Why, as in "not-well-formed": the same in all versions. Empty if the status says it."""
    subject: str
    """What the cause is about, as in the name of an element; may be empty."""

    def __init__(self, status: Status, reason: str, file: Optional[str] = None, line: int = 0,
                 column: int = 0, system_error: int = 0, notes: Tuple[Note, ...] = (),
                 cause: str = "", subject: str = "") -> None:
        super().__init__(reason)
        self.status = status
        self.reason = reason
        self.file = file
        self.line = line
        self.column = column
        self.system_error = system_error
        self.notes = notes
        self.cause = cause
        self.subject = subject

    def __str__(self) -> str:
        file = "<bytes>" if self.file is None and self.line else self.file
        place = [file, *(str(number) for number in (self.line, self.column) if number)]
        return self.reason if file is None else f"{':'.join(map(str, place))}: {self.reason}"

    def __repr__(self) -> str:
        return f"{type(self).__name__}(Status.{self.status.name}, {str(self)!r})"

    def __reduce__(self) -> Tuple[Any, ...]:
        return type(self), (self.status, self.reason, self.file, self.line, self.column,
                            self.system_error, self.notes, self.cause, self.subject)


class FileError(Error, OSError):
    """A file could not be opened or written. It has the attributes of OSError, too."""

    def __init__(self, status: Status, reason: str, file: Optional[str] = None, line: int = 0,
                 column: int = 0, system_error: int = 0, notes: Tuple[Note, ...] = (),
                 cause: str = "", subject: str = "") -> None:
        super().__init__(status, reason, file, line, column, system_error, notes, cause, subject)
        self.errno = system_error
        """The same as ``system_error``."""
        self.filename = file
        """The same as ``file``."""
        self.strerror = reason
        """The same as ``reason``."""


class MissingFileError(FileError, FileNotFoundError):
    """A file does not exist."""


class ContentError(Error, ValueError):
    """Something that a file needs is missing or malformed, or an object cannot be written."""


class StructureError(Error, ValueError):
    """A file holds something else than it should."""


class TextError(Error, ValueError):
    """A text is not UTF-8, too long, or not in the code page of a Windows program."""


class ConfigurationError(Error):
    """The configuration of the installation is missing or has a fault."""


class UndefinedError(Error, KeyError):
    """A variable is not defined."""


class NotFoundError(Error, LookupError):
    """The file or entry does not exist."""


class ExpansionError(Error, ValueError):
    """A reference in a text is malformed, too long or endless."""


class MemoryExhaustedError(Error, MemoryError):
    """Memory ran out."""


_CLASSES: Dict[Status, Type[Error]] = {
    Status.OPEN_ERROR: FileError,
    Status.SHORT_WRITE: FileError,
    Status.CONTENT_ERROR: ContentError,
    Status.STRUCTURE_ERROR: StructureError,
    Status.BAD_TEXT: TextError,
    Status.OUT_OF_MEMORY: MemoryExhaustedError,
    Status.FATAL_REPORT: ConfigurationError,
    Status.NOT_FOUND: NotFoundError,
    Status.SYNTAX_ERROR: ExpansionError,
    Status.BUFFER_TOO_SMALL: ExpansionError,
    Status.NAME_TOO_LONG: ExpansionError,
    Status.UNDEFINED: UndefinedError,
    Status.NO_FILE_NAME: ExpansionError,
}


def error_class(status: Status, system_error: int) -> Type[Error]:
    """The exception of a failure."""
    if status == Status.OPEN_ERROR and system_error == errno.ENOENT:
        return MissingFileError
    return _CLASSES.get(status, Error)
