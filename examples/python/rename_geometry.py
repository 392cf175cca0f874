"""Renames a geometry file in all assemblies: rename_geometry.py OLD NEW FILE..."""
import sys

import trvfiles

old, new, *files = sys.argv[1:]
for file in files:
    assembly = trvfiles.read_assembly(file)
    renamed = [component for component in assembly if component.geometry_file == old]
    for component in renamed:
        component.geometry_file = new
    if renamed:
        assembly.write(file)
        print(f"{file}: {len(renamed)} renamed")
