"""Prints what examples/c-host prints, with the Python package: print_project.py PROJECT"""
import sys
from pathlib import Path

import trvfiles

project = Path(sys.argv[1])
for placement in trvfiles.read_assembly(project / "bracket.xml").placements():
    print(f"{placement.geometry_file} ", *(f"{length:g}" for length in placement.translation))
axis = trvfiles.read_axis(project / "table-a30.dat")
print("table ", *(f"{length:g}" for length in axis.matrix.translation), f" G{axis.tags[2]}")
