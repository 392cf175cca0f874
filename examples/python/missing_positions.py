"""Lists all contexts below directories whose position file is missing: missing_positions.py DIR..."""
import sys
from pathlib import Path

import trvfiles

for file in sorted(file for project in sys.argv[1:] for file in Path(project).rglob("*.mctx")):
    position = trvfiles.read_machine_context(file).machine_position
    if not (file.parent / position).is_file():
        print(f"{file}: {position!r} is missing")
