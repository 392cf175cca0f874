"""Reads and writes the project files of a machining workstation, and uses its installation::

    assembly = trvfiles.read_assembly("bracket.xml")
    for component in assembly:
        print(component.path, component.geometry_file)

Lengths are in the project's length unit. Placements are for row vectors: the rows of a matrix are
the images of the x, y and z axes and the translation. Paths may be str, bytes or os.PathLike. A
failure raises a subclass of Error. Every object holds plain values, so it can be copied, pickled
and passed to other threads; one object must not be changed by several threads at the same time.
"""

from trvfiles._interface import version as library_version
from trvfiles._paths import PathError
from trvfiles.assembly import Assembly, Placement, differences, read_assembly
from trvfiles.axis import Axis, read_axis
from trvfiles.catalogue import (CreatedContext, DefaultContext, context_directory, create_context,
                                create_default_context, default_context, favorite_contexts)
from trvfiles.component import Children, Component
from trvfiles.environment import (Definition, Environment, Explanation, set_message_handler,
                                  set_message_output)
from trvfiles.errors import (ConfigurationError, ContentError, Error, ExpansionError, FileError,
                             MemoryExhaustedError, MissingFileError, NotFoundError, Note, Status,
                             StructureError, TextError, UndefinedError)
from trvfiles.geometry import Matrix, Orientation, Vector
from trvfiles.machine_context import MachineContext, read_machine_context

__version__ = library_version()
"""The version of the loaded library."""

__all__ = [
    "Assembly", "Axis", "Children", "Component", "ConfigurationError", "ContentError",
    "CreatedContext", "DefaultContext", "Definition", "Environment", "Error", "ExpansionError",
    "Explanation", "FileError", "MachineContext", "Matrix", "MemoryExhaustedError",
    "MissingFileError", "Note", "NotFoundError", "Orientation", "PathError", "Placement", "Status",
    "StructureError", "TextError", "UndefinedError", "Vector", "context_directory",
    "create_context", "create_default_context", "default_context", "differences",
    "favorite_contexts", "library_version", "read_assembly", "read_axis", "read_machine_context",
    "set_message_handler", "set_message_output",
]
