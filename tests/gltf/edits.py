"""The edits made in Blender, and what must come back of each with --like."""

import re
from collections import Counter
from dataclasses import dataclass, field
from typing import Callable, Optional

import numpy

from geometry import corners, glb_floats, in_scene, nearest, size_of

HIGH = 2.2  # what stands above it is chosen by some edits


@dataclass
class Edit:
    name: str
    steps: list  # for travel.py
    check: Optional[Callable] = None  # gives faults; without one the result is a plain save, byte for byte
    model: str = "whole"
    export: dict = field(default_factory=dict)
    refused: str = ""  # what is told when it ends with 2; with --force it does what the check says
    ending: str = ".glb"


class Shape:
    """A mesh that is edited here as Blender edited it. Vertices are (place, joint); the first `old` are the model's."""

    def __init__(self, model, name="Beast"):
        self.model = model
        self.mesh = next(one for one in model.meshes if one.name == name)
        self.scale, _, position = model.placements(self.mesh)[0]
        self.at = numpy.array(position)
        self.v = [[numpy.array(place), joint] for place, joint in zip(self.mesh.v, self.mesh.joint)]
        material = lambda number: self.mesh.m[number - 1] if 1 <= number <= len(self.mesh.m) else None
        pair = lambda number: self.mesh.t[number - 1]
        self.f = [[list(face[:3]), [pair(t) for t in face[3:6]], material(face[9])] for face in self.mesh.faces()]
        self.old = len(self.v)
        self.told = dict(kept=len(self.v), moved=0, new=0, gone=0, rebound=0, faces_new=0, faces_gone=0)

    def world(self, vertex):
        return self.v[vertex - 1][0] * self.scale + self.at

    def own(self, place):
        return (numpy.array(place) - self.at) / self.scale

    def above(self, z):
        return [index for index, face in enumerate(self.f) if all(self.world(v)[2] > z for v in face[0])]

    def of_joint(self, joint):
        return [index + 1 for index, (_, own) in enumerate(self.v) if own == joint]

    def add(self, place, joint):
        self.v.append([numpy.array(place), joint])
        self.told["new"] += 1
        return len(self.v)

    def move(self, vertices, to):
        for vertex in vertices:
            self.v[vertex - 1][0] = self.own(to(self.world(vertex)))
        self.told["moved"] += len(vertices)
        self.told["kept"] -= len(vertices)

    def drop(self, faces):
        """Takes faces away, and the vertices that only they had."""
        gone = set(faces)
        before = {v for face in self.f for v in face[0]}
        self.f = [face for index, face in enumerate(self.f) if index not in gone]
        left = {v for face in self.f for v in face[0]}
        stay = [v for v in range(1, len(self.v) + 1) if v in left or v not in before]
        numbers = {v: index + 1 for index, v in enumerate(stay)}
        self.v = [self.v[v - 1] for v in stay]
        self.f = [[[numbers[v] for v in face[0]], *face[1:]] for face in self.f]
        self.told.update(faces_gone=len(gone), gone=self.old - len(stay), kept=self.told["kept"] - self.old + len(stay))
        self.old = len(stay)

    def faults(self, now, told, digits=4):
        """How the mesh that came back differs. Texture coordinates are compared to so many digits."""
        mesh = next(one for one in now.meshes if one.name == self.mesh.name)
        wanted = numpy.array([place for place, _ in self.v])
        size = size_of(wanted) + float(abs(self.at / self.scale).max())
        points = numpy.unique(wanted.round(9), axis=0)
        ids = nearest(points, wanted, 3e-6 * size)[0]
        found = nearest(points, numpy.array(mesh.v), 3e-6 * size)[0]
        expected = [(at, joint) for at, (_, joint) in zip(ids, self.v)]
        got = list(zip(found, mesh.joint))
        if len(got) != len(expected):
            yield f"{len(got)} vertices for {len(expected)}"
        if got[: self.old] != expected[: self.old]:
            yield f"{sum(a != b for a, b in zip(got[:self.old], expected))} old vertices are others"
        if Counter(got) != Counter(expected):
            yield "places or bones of new vertices"
        pairs = lambda all_pairs: [(round(u, digits) + 0.0, round(v, digits) + 0.0) for u, v in all_pairs]
        material = lambda number: mesh.m[number - 1] if 1 <= number <= len(mesh.m) else None

        def key(vertices, coordinates, name, corner):
            whole = list(zip([corner[v - 1] for v in vertices], coordinates))
            return min(tuple(whole[k:] + whole[:k]) for k in range(3)), name

        faces = Counter(key(face[0], pairs(face[1]), face[2], expected) for face in self.f)
        others = Counter(key(face[:3], pairs([mesh.t[t - 1] for t in face[3:6]]), material(face[9]), got)
                         for face in mesh.faces())
        if faces != others:
            yield f"{sum((faces - others).values())} faces missing, {sum((others - faces).values())} faces too many"
        yield from tell(self.mesh.name, told, **self.told)
        yield from rest(self.model, now, [self.mesh.name])


def tell(name, told, **wanted):
    """Compares the counts that the program tells of a mesh."""
    form = (r'"%s": (\d+) \w+ kept, (\d+) moved, (\d+) new, (\d+) gone, (\d+) with another bone; '
            r"(\d+) \w+ new, (\d+) gone" % re.escape(name))
    found = re.search(form, told)
    if not found:
        yield "nothing told of " + name
    elif [int(number) for number in found.groups()] != list(wanted.values()):
        yield f"not told: {wanted}"


def rest(base, now, but, materials=()):
    """What an edit of some meshes must leave alone."""
    if now.bones != base.bones or now.instances != base.instances:
        yield "bones or instances changed"
    if now.materials != base.materials + list(materials):
        yield f"materials are {now.materials}"
    if [mesh.name for mesh in now.meshes] != [mesh.name for mesh in base.meshes]:
        yield "meshes changed"
    for mesh, other in zip(base.meshes, now.meshes):
        if mesh.name not in but and vars(mesh) != vars(other):
            yield f"the mesh {mesh.name} changed"


def check(change, **options):
    def run(base, now, told, path):
        shape = Shape(base)
        change(shape)
        yield from shape.faults(now, told, **options)

    return run


# What each edit makes of the shape


def moved(by):
    return lambda shape: shape.move(shape.of_joint(2), lambda place: place + by)


def deleted_vertices(shape):
    """All faces at the selected vertices, as glTF has them: a seam parts faces that share a vertex of the model."""
    keys = corners(shape.mesh)
    chosen = {key for index in shape.above(HIGH) for key in keys[index]}
    shape.drop([index for index, face in enumerate(keys) if chosen & set(face)])


def halved(shape):
    middle = {}

    def between(a, b):
        (first, one), (second, other) = shape.v[a - 1], shape.v[b - 1]
        joint = one if one is None else min(one, other)  # half of each: the first in the skin
        key = (tuple((first + second).tolist()), joint)
        if key not in middle:
            middle[key] = shape.add((first + second) / 2, joint)
        return middle[key]

    faces = []
    for v, t, m in shape.f:
        n = [between(v[k], v[(k + 1) % 3]) for k in range(3)]
        u = [[(t[k][i] + t[(k + 1) % 3][i]) / 2 for i in range(2)] for k in range(3)]
        faces += [[[v[k], n[k], n[k - 1]], [t[k], u[k], u[k - 1]], m] for k in range(3)] + [[n, u, m]]
    shape.told.update(faces_new=len(faces), faces_gone=len(shape.f))
    shape.f = faces


def extruded(base, now, told, path):
    """A triangle whose neighbours stay: three new vertices, it stands on them, and three sides of two triangles."""
    shape = Shape(base)
    mesh, now_mesh = shape.mesh, next(one for one in now.meshes if one.name == "Beast")
    new = [[a + b for a, b in zip(mesh.v[v - 1], (0.25, 0, 0))] for v in mesh.f[36][:3]]
    added = sorted(now_mesh.v[len(mesh.v):])
    if now_mesh.v[: len(mesh.v)] != mesh.v or not numpy.allclose(added, sorted(new), atol=1e-5):
        yield "vertices"
    if sorted(now_mesh.joint[len(mesh.v):]) != sorted(mesh.joint[v - 1] for v in mesh.f[36][:3]):
        yield "bones of new vertices"
    if len(now_mesh.f) != len(mesh.f) + 6:
        yield f"{len(now_mesh.f)} faces"
    yield from tell("Beast", told, **{**shape.told, "new": 3, "faces_new": 7, "faces_gone": 1})
    yield from rest(base, now, ["Beast"])


def joined(shape):
    """The head becomes new vertices of the skin, each with the bone of the nearest old one."""
    head = Shape(shape.model, "$headBeast")
    places = in_scene(shape.model, head.mesh)
    old = numpy.array([place for place, _ in shape.v])
    numbers = []
    for place in places:
        own = shape.own(place)
        numbers.append(shape.add(own, shape.v[int(numpy.argmin(((old - own) ** 2).sum(axis=1)))][1]))
    for v, t, m in head.f:
        shape.f.append([[numbers[one - 1] for one in v], t, m])
    shape.told["faces_new"] = len(head.f)


def duplicated(shape):
    new = {}
    for index in shape.above(HIGH):
        v, t, m = shape.f[index]
        for one in v:
            if one not in new:
                new[one] = shape.add(shape.own(shape.world(one) + (3, 0, 0)), shape.v[one - 1][1])
        shape.f.append([[new[one] for one in v], t, m])
        shape.told["faces_new"] += 1


def painted(to):
    def change(shape):
        chosen = shape.of_joint(2)
        for vertex in chosen:
            shape.v[vertex - 1][1] = to
        shape.told["rebound"] = len(chosen)

    return change


def turned(base, now, told, path):
    """The whole skeleton with its meshes, by 30 degrees."""
    angle = numpy.radians(30)
    matrix = numpy.array([[numpy.cos(angle), -numpy.sin(angle), 0], [numpy.sin(angle), numpy.cos(angle), 0], [0, 0, 1]])
    for name in ("Beast", "$Shadow"):
        shape = Shape(base, name)
        shape.move(range(1, shape.old + 1), lambda place: matrix @ place)
        yield from (fault for fault in shape.faults(now, told) if "mesh" not in fault)
    if f"{len(base.bones) - 2} of {len(base.bones)} bones" not in told and "bones stand elsewhere" not in told:
        yield "no word of the bones"


def separated(shape):
    shape.drop(shape.above(HIGH))


def unwrapped(shape):
    for face in shape.f:
        face[1] = [[u + 0.25, v - 0.5] for u, v in face[1]]


def given(material):
    def change(base, now, told, path):
        shape = Shape(base)
        for index in shape.above(HIGH):
            shape.f[index][2] = material
        faults = shape.faults(now, told)
        new = [material] if material not in base.materials else []
        yield from (fault for fault in faults if "materials are" not in fault)
        yield from rest(base, now, ["Beast"], new)

    return change


def flipped(shape):
    for face in shape.f:
        face[0].reverse()
        face[1].reverse()


def scaled(shape):
    shape.move(range(1, shape.old + 1), lambda place: 2 * place)


def mirrored(base, now, told, path):
    shape = Shape(base, "$headBeast")
    shape.move(range(1, shape.old + 1), lambda place: place * (-1, 1, 1))
    flipped(shape)
    yield from shape.faults(now, told)


def placed(shape):
    shape.move(range(1, shape.old + 1), lambda place: place + (1, 2, 3))


def quads(base, now, told, path):
    """Diagonals may turn: the vertices stay, and as many faces."""
    for mesh, other in zip(base.meshes, now.meshes):
        if (mesh.v, mesh.joint, len(mesh.f)) != (other.v, other.joint, len(other.f)):
            yield mesh.name
    yield from rest(base, now, ["Beast"])


def flat(base, now, told, path):
    """Only the normals are others."""
    for mesh, other in zip(base.meshes, now.meshes):
        strip = lambda one: (one.v, one.joint, one.t, [face[:6] + face[9:] for face in one.f])
        if strip(mesh) != strip(other):
            yield mesh.name
    yield from rest(base, now, ["Beast"])


def merged_two_sided(base, now, told, path):
    """Blender takes faces over the same vertices for one."""
    shape = Shape(base)
    kinds = {tuple(sorted(face[0])) for face in shape.f}
    mesh = now.meshes[0]
    if len(mesh.f) != len(kinds) or mesh.v != shape.mesh.v or mesh.joint != shape.mesh.joint:
        yield f"{len(mesh.f)} faces for {len(kinds)}, {len(mesh.v)} vertices"
    yield from tell("Beast", told, **{**shape.told, "faces_gone": len(shape.f) - len(kinds)})


def merged_doubled(base, now, told, path):
    """One face of two over the same places is left, and of those vertices the numbers that its corners still bear."""
    mesh, wanted = now.meshes[0], {tuple(place) for place in base.meshes[0].v}
    bones = {(tuple(place), joint) for place, joint in zip(mesh.v, mesh.joint)}
    if {place for place, _ in bones} != wanted or len(bones) != len(wanted):
        yield f"{len(bones)} places with a bone for {len(wanted)}"
    if len(mesh.f) != len(base.meshes[0].f) // 2:
        yield f"{len(mesh.f)} faces"


def fattened(base, now, told, path):
    """Seams tear: of the corners with one number the nearest is the old vertex, the others are new ones."""
    mesh = next(one for one in now.meshes if one.name == "Vorrel")
    old = base.skin
    numbers = [int(pair[0]) for pair in glb_floats(path, "Vorrel", "TEXCOORD_1")]
    places = [tuple(place) for place in glb_floats(path, "Vorrel", "POSITION")]
    new = len(set(zip(numbers, places))) - len(set(numbers))
    if new == 0 or len(mesh.v) != len(old.v) + new or len(mesh.f) != len(old.f):
        yield f"{len(mesh.v)} vertices for {len(old.v)} + {new}, {len(mesh.f)} faces for {len(old.f)}"
    if mesh.joint[: len(old.v)] != old.joint or Counter(mesh.joint).keys() != Counter(old.joint).keys():
        yield "bones changed"
    yield from rest(base, now, ["Vorrel"])


def sample_halved(base, now, told, path):
    names = ["$shadowVorrel", "$bodyVorrel"]
    for name in names:
        shape = Shape(base, name)
        halved(shape)
        mesh = next(one for one in now.meshes if one.name == name)
        if Counter(mesh.joint) != Counter(joint for _, joint in shape.v) or len(mesh.f) != len(shape.f):
            yield f"{len(mesh.v)} vertices for {len(shape.v)}, {len(mesh.f)} faces for {len(shape.f)}, or other bones"
        if mesh.v[: shape.old] != shape.mesh.v:
            yield "old vertices"
        yield from tell(name, told, **shape.told)
    yield from rest(base, now, names)


EDITS = [
    Edit("move", [("move", "Beast", "Bone02", (0.1, 0.2, 0.3))], check(moved((0.1, 0.2, 0.3)))),
    Edit("delete faces", [("delete", "Beast", HIGH, "FACE")], check(lambda shape: shape.drop(shape.above(HIGH)))),
    Edit("delete vertices", [("delete", "Beast", HIGH, "VERT")], check(deleted_vertices)),
    Edit("halve", [("halve", "Beast")], check(halved)),
    Edit("extrude", [("extrude", "Beast", 36, (0.5, 0, 0))], extruded),
    Edit("join", [("join", "Beast", "$headBeast")], check(joined)),
    Edit("duplicate", [("duplicate", "Beast", HIGH, (3, 0, 0))], check(duplicated)),
    Edit("rename bones", [("rename_bones", {"Bone01": "Fred", "Bone03": "Äöü", "$j$Bone02": "Hans"})]),
    Edit("rename a mesh", [("rename_mesh", "Beast", "Something"), ("rename_mesh", "$Shadow", "Else")]),
    Edit("paint", [("paint", "Beast", "Bone02", {"Bone03": 1})], check(painted(3))),
    Edit("paint more", [("paint", "Beast", "Bone02", {"Bone02": 0.4, "Bone04": 0.6})], check(painted(4))),
    Edit("paint less", [("paint", "Beast", "Bone02", {"Bone02": 0.6, "Bone04": 0.4})]),
    Edit("paint half", [("paint", "Beast", "Bone02", {"Bone04": 0.5, "Bone01": 0.5})], check(painted(1))),
    Edit("paint five", [("paint", "Beast", "Bone02", {"Bone01": 0.2, "Bone02": 0.2, "Bone03": 0.25, "Bone04": 0.35})],
         check(painted(4))),
    Edit("paint nothing", [("paint", "Beast", "Bone02", {})], check(painted(-1))),
    Edit("pose", [("pose", "Bone02", (1, 2, 3))]),
    Edit("turn", [("turn", 30)], turned, refused="--force"),
    Edit("not y up", [], lambda *_: [], export={"export_yup": False}, refused="--force"),
    Edit("separate", [("separate", "Beast", HIGH)], check(separated)),
    Edit("unwrap", [("unwrap", "Beast", (0.25, -0.5))], check(unwrapped)),
    Edit("other material", [("set_material", "Beast", HIGH, "Hide")], given("Hide")),
    Edit("new material", [("set_material", "Beast", HIGH, "Fur")], given("Fur")),
    Edit("flip", [("flip", "Beast")], check(flipped)),
    Edit("flat", [("flat", "Beast")], flat),
    Edit("scale", [("scale", "Beast", 2)], check(scaled)),
    Edit("mirror", [("mirror", "$headBeast")], mirrored),
    Edit("place", [("place", "Beast", (1, 2, 3))], check(placed)),
    Edit("merge", [("merge", "Beast", 1e-4)], flat),
    Edit("merge two-sided", [("merge", "Beast", 1e-4)], merged_two_sided, model="twosided"),
    Edit("merge doubled", [("merge", "Beast", 1e-6)], merged_doubled, model="doubled"),
    Edit("quads", [("quads", "Beast")], quads),
    Edit("one layer", [("drop_layers", "Beast")]),
    Edit("remove a mesh", [("remove", "$Shadow")]),
    Edit("no skin", [("unskin", "Beast"), ("unskin", "$Shadow")]),
    Edit("text and files", [], export={"export_format": "GLTF_SEPARATE"}, ending=".gltf"),
    Edit("custom properties", [], export={"export_extras": True}, model="names"),
    Edit("all influences", [], export={"export_all_influences": True, "export_apply": True}, model="random"),
    Edit("sample fattened", [("fatten", "Vorrel", 0.01)], fattened, model="vorrel"),
    Edit("sample halved", [("halve", "$shadowVorrel"), ("halve", "$bodyVorrel")], sample_halved, model="vorrel"),
    Edit("too large", [("halve", "Vorrel")], model="vorrel", refused="63808 faces (31041 too many)"),
    Edit("sample one layer", [("drop_layers", "Vorrel")], lambda *_: [], model="vorrel"),
]
