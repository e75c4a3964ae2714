"""Where the vertices of a model stand, and what other programs make of its faces."""

import json
import struct
from collections import Counter, defaultdict

import numpy


def corners(mesh):
    """What makes vertices of glTF, of each face that can travel; the same face again has vertices of its own."""
    seen, result = Counter(), []
    for face in mesh.faces():
        copy = seen[tuple(sorted(face[:3]))]
        seen[tuple(sorted(face[:3]))] += 1
        result.append([(face[k], face[3 + k], face[6 + k], face[9], copy) for k in range(3)])
    return result


def turn_matrix(degrees):
    """Degrees of a file's triple, about X, then Y, then Z of the scene, as a matrix for the file's places."""
    a, b, c = numpy.radians([degrees[0], degrees[2], -degrees[1]])
    x = numpy.array([[1, 0, 0], [0, numpy.cos(a), -numpy.sin(a)], [0, numpy.sin(a), numpy.cos(a)]])
    y = numpy.array([[numpy.cos(b), 0, numpy.sin(b)], [0, 1, 0], [-numpy.sin(b), 0, numpy.cos(b)]])
    z = numpy.array([[numpy.cos(c), -numpy.sin(c), 0], [numpy.sin(c), numpy.cos(c), 0], [0, 0, 1]])
    axes = numpy.array([[1, 0, 0], [0, 0, 1], [0, -1, 0]])
    return axes.T @ z @ y @ x @ axes


def in_scene(model, mesh, placement=0):
    scale, turn, position = model.placements(mesh)[placement]
    return numpy.array(mesh.v, dtype=float).reshape(-1, 3) * scale @ turn_matrix(turn).T + position


def nearest(points, queries, reach):
    """For each query the index of the nearest point within reach, -1 for none, and how far it is."""
    cells = defaultdict(list)
    for index, cell in enumerate(numpy.floor(points / (2 * reach)).astype(int).tolist()):
        cells[tuple(cell)].append(index)
    found, apart = [], []
    for query in queries:
        low = numpy.floor((query - reach) / (2 * reach)).astype(int)
        near = [index for x in (0, 1) for y in (0, 1) for z in (0, 1)
                for index in cells.get((low[0] + x, low[1] + y, low[2] + z), ())]
        away = [float(numpy.linalg.norm(points[index] - query)) for index in near]
        best = min(range(len(near)), key=away.__getitem__, default=None)
        found.append(-1 if best is None or away[best] > reach else near[best])
        apart.append(0 if best is None else away[best])
    return found, max(apart, default=0.0)


def size_of(places):
    return max(float(abs(places).max()), 1e-9) if len(places) else 1.0


def glb_json(path):
    with open(path, "rb") as file:
        head = struct.unpack("<5I", file.read(20))
        return json.loads(file.read(head[3]))


def glb_floats(path, mesh, attribute):
    """The entries of an attribute of all parts of a mesh."""
    file = glb_json(path)
    with open(path, "rb") as opened:
        whole = opened.read()
    start = 20 + struct.unpack_from("<I", whole, 12)[0] + 8
    result = []
    for part in next(one for one in file["meshes"] if one["name"] == mesh)["primitives"]:
        accessor = file["accessors"][part["attributes"][attribute]]
        width = {"VEC2": 2, "VEC3": 3}[accessor["type"]]
        view = file["bufferViews"][accessor["bufferView"]]
        at = start + view.get("byteOffset", 0) + accessor.get("byteOffset", 0)
        numbers = numpy.frombuffer(whole, "<f4", width * accessor["count"], at)
        result += numbers.reshape(-1, width).tolist()
    return result
