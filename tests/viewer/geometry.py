"""One box, 10 x 20 x 30 with a corner at the origin, in every format that the page reads."""
import struct

SIZE = (10, 20, 30)
FACES = [(0, 2, 3, 1), (4, 5, 7, 6), (0, 1, 5, 4), (2, 6, 7, 3), (0, 4, 6, 2), (1, 3, 7, 5)]
POINTS = [tuple(SIZE[k] * (i >> k & 1) for k in range(3)) for i in range(8)]
TRIANGLES = [(face[0], face[i], face[i + 1]) for face in FACES for i in (1, 2)]


def stl_binary():
    data = b"solid is also a name in binary files".ljust(80) + struct.pack("<I", len(TRIANGLES))
    for triangle in TRIANGLES:
        corners = [x for point in triangle for x in POINTS[point]]
        data += struct.pack("<12fH", 0, 0, 0, *corners, 0)
    return data


def stl_text():
    lines = ["solid box"]
    for triangle in TRIANGLES:
        lines += ["facet normal 0 0 0", "outer loop"]
        lines += ["vertex %g %g %g" % POINTS[point] for point in triangle]
        lines += ["endloop", "endfacet"]
    return "\n".join(lines + ["endsolid box", ""])


def obj():
    """Faces with four corners, one of them with numbers that count from the end."""
    lines = ["# a box", "mtllib box.mtl", "o box", "vn 0 0 1"]
    lines += ["v %g %g %g" % point for point in POINTS]
    lines += ["f " + " ".join(f"{i + 1}//1" for i in face) for face in FACES[:-1]]
    lines += ["f " + " ".join(str(i - 8) for i in FACES[-1])]
    return "\r\n".join(lines + [""])


def _ply_header(form):
    return ("ply\nformat %s 1.0\ncomment a box\nelement vertex 8\nproperty double x\n"
            "property float y\nproperty float z\nproperty uchar red\nelement face 6\n"
            "property list uchar int vertex_indices\nend_header\n" % form)


def ply_text():
    lines = ["%g %g %g 255" % point for point in POINTS]
    lines += ["4 %d %d %d %d" % face for face in FACES]
    return _ply_header("ascii") + "\n".join(lines) + "\n"


def ply_binary(order):
    """order is "<" for little endian and ">" for big endian."""
    form = {"<": "binary_little_endian", ">": "binary_big_endian"}[order]
    data = _ply_header(form).encode()
    for point in POINTS:
        data += struct.pack(order + "dffB", *point, 255)
    for face in FACES:
        data += struct.pack(order + "B4i", 4, *face)
    return data
