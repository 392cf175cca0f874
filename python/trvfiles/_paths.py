"""The parts of paths of components."""

import difflib
import re
from typing import List, Optional, Tuple

_ESCAPED = re.compile(r"[\\/\[\x00-\x1f\x7f]")
_ESCAPE = re.compile(r"\\(\\|x[0-9a-fA-F]{2}|u[0-9a-fA-F]{4}|U00(?:0[0-9a-fA-F]|10)[0-9a-fA-F]{4})")
_INDEX = re.compile(r"(.*)\[(\d+)\]", re.DOTALL)


class PathError(KeyError):
    """A path names no component, or several ones."""

    def __str__(self) -> str:
        return str(self.args[0])


def escaped(name: str) -> str:
    """A name as it is in a path."""
    return _ESCAPED.sub(lambda match: "\\\\" if match[0] == "\\" else f"\\x{ord(match[0]):02x}",
                        name)


def unescaped(part: str) -> str:
    """The name of a part of a path."""
    return _ESCAPE.sub(lambda match: "\\" if match[1] == "\\" else chr(int(match[1][1:], 16)), part)


def name_and_index(part: str) -> Optional[Tuple[str, int]]:
    """A name and the index in brackets after it; None without an index."""
    indexed = _INDEX.fullmatch(part)
    return (unescaped(indexed[1]), int(indexed[2])) if indexed else None


def nearest(part: str, parts: List[str]) -> str:
    """The end of a message: what is there instead of a part that is not."""
    if not parts:
        return ", which has no children"
    near = difflib.get_close_matches(part, parts, 1, 0.5)
    return f"; the nearest is {near[0]!r}" if near else f"; the first is {parts[0]!r}"
