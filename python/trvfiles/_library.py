"""Finds and loads the shared library.

The library is, in this order: the file that the environment variable TRVFILES_LIBRARY names, the
file in the directory of this package, or the one that the loader of the system finds.
"""

import ctypes
import os
import sys
from typing import List, Mapping

_FILE_NAMES = {
    "win32": ("trvfiles.dll",),
    "darwin": ("libtrvfiles.0.dylib", "libtrvfiles.dylib"),
}
_OTHER_FILE_NAMES = ("libtrvfiles.so.0", "libtrvfiles.so")


def candidates(environment: Mapping[str, str], directory: str, platform: str) -> List[str]:
    """The names to load, the first of which that loads is the library.

    A full path also makes Windows look for the Qt DLLs in the directory of the library.
    """
    named = environment.get("TRVFILES_LIBRARY")
    if named:
        return [os.path.abspath(named)]
    names = _FILE_NAMES.get(platform, _OTHER_FILE_NAMES)
    beside = [os.path.join(directory, name) for name in names]
    return [path for path in beside if os.path.exists(path)] or list(names)


def load(names: List[str]) -> ctypes.CDLL:
    """Loads the first library that loads. CDLL releases the GIL during each call.

    Raises ImportError with the reason for each name.
    """
    reasons = []
    for name in names:
        try:
            return ctypes.CDLL(name)
        except OSError as problem:
            reasons.append(f"{name}: {problem}")
    raise ImportError(
        "the library of trvfiles cannot be loaded; TRVFILES_LIBRARY may name it: "
        + "; ".join(reasons))


library = load(candidates(os.environ, os.path.dirname(os.path.abspath(__file__)), sys.platform))
