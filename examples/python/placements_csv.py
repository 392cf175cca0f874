"""Prints a CSV of all placements of assemblies: placements_csv.py FILE..."""
import csv
import sys

import trvfiles

table = csv.writer(sys.stdout)
table.writerow(["assembly", "component", "geometry file", "x", "y", "z"])
for file in sys.argv[1:]:
    for placement in trvfiles.read_assembly(file).placements():
        table.writerow([file, placement.component.path, placement.geometry_file,
                        *placement.translation])
