"""An assembly with many placements of many small files."""
import math
import random
import struct

from page_test import assembly, component


def _prism(sides, radius, height):
    """The STL file of a prism."""
    ring = [(radius * math.cos(2 * math.pi * i / sides), radius * math.sin(2 * math.pi * i / sides))
            for i in range(sides)]
    facets = []
    for a, b in zip(ring, ring[1:] + ring[:1]):
        facets += [(*a, 0, *b, 0, *b, height), (*a, 0, *b, height, *a, height),
                   (0, 0, 0, *b, 0, *a, 0), (0, 0, height, *a, height, *b, height)]
    data = bytes(80) + struct.pack("<I", len(facets))
    for facet in facets:
        data += struct.pack("<12fH", 0, 0, 0, *facet, 0)
    return data


def write_large(directory, placements, files):
    """Writes the assembly and its files to a directory; 100 groups, a grid of 40 mm.

    Returns the name of the assembly."""
    chance = random.Random(1)
    for i in range(files):
        prism = _prism(8 + i % 5, chance.uniform(5, 15), chance.uniform(5, 40))
        (directory / f"part-{i}.stl").write_bytes(prism)
    side = math.ceil((placements / 10) ** 0.5)
    groups = []
    for first in range(0, placements, max(1, placements // 100)):
        parts = []
        for i in range(first, min(placements, first + max(1, placements // 100))):
            place = (40 * (i % side), 40 * (i // side % side), 60 * (i // side // side))
            angle = chance.uniform(0, 2 * math.pi)
            c, s = math.cos(angle), math.sin(angle)
            parts.append(component(f"Part {i}", f"part-{chance.randrange(files)}.stl", place,
                                   ((c, s, 0), (-s, c, 0), (0, 0, 1))))
        groups.append(component(f"Group {len(groups)}", parts))
    (directory / "large.xml").write_text(assembly(component("Large", groups)))
    return "large.xml"
