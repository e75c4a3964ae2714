"""Reads models, and makes the odd ones that travel: python3 models.py FOLDER"""

import math
import os
import random
import re
import struct
import sys

CODE_PAGE = "cp1252"


def f32(value):
    return struct.unpack("<f", struct.pack("<f", value))[0]


class Mesh:
    def __init__(self, name, skin=False):
        self.name, self.skin = name, skin
        self.m, self.v, self.joint, self.t, self.n, self.f = [], [], [], [], [], []

    def travels(self, face):
        """Whether another program can hold the face: three vertices that are there and differ."""
        corners = face[:3]
        return len(set(corners)) == 3 and all(1 <= c <= len(self.v) for c in corners)

    def faces(self):
        return [face for face in self.f if self.travels(face)]

    def used(self):
        return sorted({corner for face in self.faces() for corner in face[:3]})


class Model:
    """What a model's text says, by the program's rules as far as these files need them."""

    def __init__(self, path):
        self.materials, self.bones, self.meshes, self.instances = [], [], [], []
        kind = None
        numbers = lambda text: [f32(float(piece)) for piece in re.sub("[()]", "", text).split(",")]
        with open(path, "rb") as file:
            text = file.read().decode(CODE_PAGE)
        for line in text.split("\r\n"):
            key, _, value = (part.strip() for part in line.partition("="))
            word, _, name = line.partition(" ")
            name = name.replace('"', "")
            if word in ("material", "bone", "mesh", "skin", "instance"):
                kind = word
                if word == "material":
                    self.materials.append(name)
                elif word == "bone":
                    self.bones.append([name, None])
                elif word == "instance":
                    self.instances.append({"name": name})
                else:
                    self.meshes.append(Mesh(name, word == "skin"))
            elif kind == "bone" and key == "position":
                self.bones[-1][1] = numbers(value)
            elif kind == "instance" and value:
                self.instances[-1][key] = value.strip('"') if key == "mesh" else numbers(value)
            elif kind in ("mesh", "skin") and value:
                mesh = self.meshes[-1]
                if key == "m":
                    mesh.m.append(value.strip('"'))
                elif key == "v":
                    mesh.v.append(numbers(value)[:3])
                    mesh.joint.append(int(numbers(value)[3]) if mesh.skin else None)
                elif key in "tn":
                    getattr(mesh, key).append(numbers(value))
                elif key == "f":
                    mesh.f.append(tuple(int(number) for number in numbers(value)))
        skins = [mesh for mesh in self.meshes if mesh.skin]
        self.skin = next((mesh for mesh in reversed(skins) if "$" not in mesh.name), None)
        self.shadow = next((mesh for mesh in reversed(skins) if "$" in mesh.name), None)
        if self.skin is None and len(self.meshes) == 1:
            self.skin = self.meshes[0]

    def bone_of(self, mesh):
        """The index of each vertex's bone, None for none."""
        by_joint = {}
        for index, (name, _) in enumerate(self.bones):
            if mesh in (self.skin, self.shadow) and ("$j$" in name.lower()) == (mesh is self.shadow):
                number = re.match(r"-?\d+", name[-2:].strip())
                by_joint[int(number.group()) if number else 0] = index
        return [by_joint.get(joint) for joint in mesh.joint]

    def is_skinned(self, mesh):
        return mesh is self.skin or mesh is self.shadow

    def placements(self, mesh):
        """Scale, rotation (degrees, file axes) and position of each place where the mesh stands."""
        by = self.skin if mesh is self.shadow else mesh
        found = [one for one in self.instances if by is not None and one.get("mesh") == by.name]
        if self.is_skinned(mesh):
            found = found[:1]
        usable = lambda one: one.get("scale", [0])[0] or 1.0
        turn = lambda one: [0, 0, 0] if self.is_skinned(mesh) else one.get("rotation", [0, 0, 0])
        return [(usable(one), turn(one), one.get("position", [0, 0, 0])) for one in found] or [(1.0, [0] * 3, [0] * 3)]


class Maker:
    """The text of a model in the making."""

    def __init__(self):
        self.blocks = []

    def block(self, head, *lines):
        self.blocks.append("\r\n".join([head, "{", *(" " + line for line in lines), "}", ""]) + "\r\n")

    def material(self, name, *maps):
        self.block(f'material "{name}"', *maps)

    def bone(self, name, at, *extra):
        self.block(f'bone "{name}"', "position = (%g,%g,%g)" % tuple(at), "rotation = (0,0,0)", *extra)

    def mesh(self, mesh):
        lines = [f'm = "{name}"' for name in mesh.m]
        for place, joint in zip(mesh.v, mesh.joint):
            lines.append("v = (%.7g,%.7g,%.7g)" % tuple(place) + (f",{joint}" if mesh.skin else ""))
        lines += ["t = (%.7g,%.7g)" % tuple(pair) for pair in mesh.t]
        lines += ["n = (%.7g,%.7g,%.7g)" % tuple(normal) for normal in mesh.n]
        lines += ["f = (%d,%d,%d),(%d,%d,%d),(%d,%d,%d),%d" % face for face in mesh.f]
        self.block(f'{"skin" if mesh.skin else "mesh"} "{mesh.name}"', *lines)

    def instance(self, name, mesh, at=(0, 0, 0), turn=(0, 0, 0), scale=1.0):
        lines = [f'mesh = "{mesh}"', "position = (%g,%g,%g)" % at, "rotation = (%g,%g,%g)" % turn]
        self.block(f'instance "{name}"', *lines, *([] if scale is None else ["scale = %g" % scale]))

    def write(self, path):
        with open(path, "wb") as file:
            head = "fileinfo\r\n{\r\n formatversion = 1.0.2\r\n}\r\n\r\n"
            file.write((head + "".join(self.blocks)).encode(CODE_PAGE))


def tube(name, rings=9, sides=8, skin=True, joints=range(1, 5), at=(0, 0, 0), size=1.0, materials=("Hide", "Mane")):
    """A bent tube with a seam in its texture coordinates, the joints one behind the other along it."""
    mesh = Mesh(name, skin)
    mesh.m = list(materials)
    joints = list(joints)
    for ring in range(rings):
        along = ring / (rings - 1)
        for side in range(sides):
            angle = 2 * math.pi * side / sides + 0.1
            radius = 0.3 + 0.1 * math.sin(3 * along)
            normal = (math.cos(angle), 0.0, math.sin(angle))
            mesh.v.append([at[0] + size * radius * normal[0], at[1] + size * (2 * along - 1),
                           at[2] + size * (radius * normal[2] + along * along)])
            mesh.joint.append(joints[min(int(along * len(joints)), len(joints) - 1)] if joints else -1)
            mesh.n.append(normal)
    for ring in range(rings):
        mesh.t += [[side / sides, ring / (rings - 1)] for side in range(sides + 1)]
    for ring in range(rings - 1):
        for side in range(sides):
            a, b = ring * sides + side, ring * sides + (side + 1) % sides
            p = ring * (sides + 1) + side
            material = (1 + ring * len(mesh.m) // rings) if mesh.m else 0
            for v, t in (((a, b, b + sides), (p, p + 1, p + sides + 2)),
                         ((a, b + sides, a + sides), (p, p + sides + 2, p + sides + 1))):
                one = lambda numbers: tuple(number + 1 for number in numbers)
                mesh.f.append(one(v) + one(t) + one(v) + (material,))
    return mesh


def skeleton(maker, count=4, shadow=3):
    for number in range(1, count + 1):
        maker.bone("Bone%02d" % number, (0, -1 + 2 * number / count, 0.1 * number))
    for number in range(1, shadow + 1):
        maker.bone("$j$Bone%02d" % number, (0.05, -1 + 2 * number / shadow, 0))


def shadow(name="$Shadow"):
    return tube(name, 4, 4, joints=range(1, 4), size=0.8)


def write_bmp(path, bits, size=64):
    """A small picture: 24 bits of colour, or 8 bits with a palette of greys."""
    palette = b"".join(struct.pack("<BBBB", i, i, i, 0) for i in range(256)) if bits == 8 else b""
    width = (size * bits // 8 + 3) // 4 * 4
    rows = bytes((37 * i + 11) % 256 for i in range(width * size))
    offset = 54 + len(palette)
    with open(path, "wb") as file:
        file.write(struct.pack("<2sIHHI", b"BM", offset + len(rows), 0, 0, offset))
        file.write(struct.pack("<IiiHHIIiiII", 40, size, size, 1, bits, 0, len(rows), 2835, 2835, len(palette) // 4, 0))
        file.write(palette + rows)


def odd_models():
    """The name of each model and its maker, whole but for what is odd."""
    models = {}

    def start(name, count=4, shadow_bones=3, materials=True):
        maker = models[name] = Maker()
        if materials:
            maker.material("Hide", 'colormap = "TEX\\Hide.BMP"')
            maker.material("Mane", 'colormap = "Hide.bmp"', 'opacitymap = "holes.bmp"', 'bumpmap = "Bump.bmp"')
        skeleton(maker, count, shadow_bones)
        return maker

    maker = start("whole")  # the one that is edited too
    maker.mesh(tube("Beast"))
    maker.mesh(shadow())
    maker.mesh(tube("$headBeast", 3, 5, skin=False, at=(0, 2, 0)))
    for name in ("Beast", "$Shadow"):
        maker.instance(name, name, (0.25, -0.5, 1), scale=2)
    maker.instance("$headBeast", "$headBeast", (0, 3, 1), scale=1.5)

    maker = start("twosided")
    mesh = tube("Beast")
    mesh.f += [face[:3][::-1] + face[3:6][::-1] + face[6:9][::-1] + face[9:] for face in mesh.f]
    mesh.f += mesh.f[5:9]  # and some thrice
    mesh.f += [(f[1], f[2], f[0]) + f[3:] for f in mesh.f[:2]]
    maker.mesh(mesh)

    maker = start("damaged")  # faces that name a vertex twice, or what is not there; entries that nothing names
    mesh = tube("Beast")
    mesh.v += [[5, 5, 5], [0, 0, -0.0], [1e-7, 2, 3]]
    mesh.joint += [2, -1, 77]
    mesh.t += [[9, -9], [0.5, 0.5]]
    mesh.n += [[0, 0, 1], [0, 0, 0]]
    mesh.f[3:3] = [(4, 4, 9, 1, 2, 3, 1, 2, 3, 1), (7, 8, 7, 0, 0, 0, 0, 0, 0, 0), (1, 2, 900, 1, 2, 3, 1, 2, 3, 1),
                   (0, 1, 2, 1, 2, 3, 1, 2, 3, 2), (-3, 1, 2, 1, 2, 3, 1, 2, 3, 2)]
    mesh.f[10] = mesh.f[10][:3] + (0, -5, 999) + mesh.f[10][6:]
    mesh.f[11] = mesh.f[11][:6] + (0, -7, 30000) + mesh.f[11][9:]
    mesh.f[12] = mesh.f[12][:3] + (0, 0, 0, 0, 0, 0, 0)
    mesh.f[13] = mesh.f[13][:9] + (-2,)
    maker.mesh(mesh)
    maker.mesh(Mesh("Empty"))
    points = Mesh("Points")
    points.v, points.joint = [[1, 2, 3], [4, 5, 6]], [None] * 2
    maker.mesh(points)
    maker.instance("Beast", "Beast", (1, 2, 3), scale=0.5)

    maker = start("normals")
    mesh = tube("Beast")
    odd = ([0, 0, 0], [0, 0, 7], [1e-30, 0, 0], [3e20, 4e20, 0], [0, 1.0004, 0], [0, 0, -0.999])
    for index in range(0, len(mesh.n), 3):
        mesh.n[index] = odd[index // 3 % len(odd)]
    maker.mesh(mesh)

    maker = start("doubled")  # vertices at one place, of one bone and of two
    mesh = tube("Beast")
    count = len(mesh.v)
    mesh.v += mesh.v
    mesh.joint += [joint if index % 3 else 1 + joint % 4 for index, joint in enumerate(mesh.joint)]
    mesh.f += [tuple(c + count for c in f[:3]) + f[3:] for f in mesh.f]
    maker.mesh(mesh)
    maker.instance("Beast", "Beast", (10, 20, 30), scale=0)

    maker = start("unassigned")
    mesh = tube("Beast")
    mesh.joint = [-1 if index % 5 == 0 else joint for index, joint in enumerate(mesh.joint)]
    maker.mesh(mesh)
    mesh = shadow()
    mesh.joint = [-1] * len(mesh.joint)
    maker.mesh(mesh)
    maker.instance("Beast", "Beast", (0, 0, 0.125), scale=None)

    maker = start("placed", 0, 0)  # no skin at all; placed twice and turned
    for name in ("Rock", "Tree"):
        maker.mesh(tube(name, 4, 5, skin=False))
    maker.instance("Rock1", "Rock", (1, 2, 3), (30, -45, 60), 0.5)
    maker.instance("Rock2", "Rock", (-4, 2, 3), (90, 0, 0), 3)
    maker.instance("Rock2", "Rock", (-4, 2, 13), (0, 90, 10), 1.25)
    maker.instance("Tree", "Tree", (1, 2, 3), (10, 20, 30), -1.5)

    maker = start("mirrored")
    maker.mesh(tube("Beast"))
    maker.mesh(shadow())
    maker.instance("Beast", "Beast", (1, 2, 3), scale=-0.75)

    maker = start("dollar", 2, 2)  # its one skin is a shadow by its name, and the skin as the only mesh
    maker.mesh(tube("$", joints=range(1, 3)))

    maker = start("single")  # a plain mesh that becomes the skin, with nothing assigned
    maker.mesh(tube("Beast", skin=False))

    maker = models["names"] = Maker()
    long = "Äußerst_langer_Name_eines_Knochens_der_länger_als_63_Byte_ist_ö"
    for material in ("Fell_grün", "", "Fell_grün", "a.b/c\\d'e", long):
        maker.material(material)
    bones = [long + "01", long + "02", "", "Knöchel_ÄÖÜß_€04", "Bone05", "Bone05", "Node", "$J$Bone01", "neutral_bone",
             "Skeleton", "Bone.001", "Beast"]
    for number, bone in enumerate(bones):
        maker.bone(bone, (number % 3, number, 1), "# Größe {%d" % number, "\tmass = 0.5")
    mesh = tube("Größe", joints=(1, 2, 4, 5), materials=("Fell_grün", "", long, "unknown", "a.b/c\\d'e"))
    maker.mesh(mesh)
    maker.mesh(tube("Beast", 3, 4, skin=False, at=(3, 0, 0), materials=("unknown", "Fell_grün")))
    maker.mesh(tube("Beast", 3, 4, skin=False, at=(6, 0, 0), materials=("Fell_grün", "Fell_grün")))
    maker.mesh(tube("", 3, 4, skin=False, at=(9, 0, 0), materials=()))
    maker.mesh(tube(long * 2, 3, 4, skin=False, at=(12, 0, 0), materials=()))
    maker.instance("Größe", "Größe", (0, 0, 1), scale=0.5)

    maker = start("hundred", 0, 0)
    for number in range(100):
        maker.bone("Joint%02d" % number, (math.sin(number), number / 50 - 1, math.cos(number)))
        maker.bone("$j$Joint%02d" % number, (math.cos(number), number / 50 - 1, 2))
    maker.mesh(tube("Beast", 101, 4, joints=range(100)))
    maker.mesh(tube("$Shadow", 101, 3, joints=range(100)))

    maker = start("coordinates")  # far outside of 0 to 1, and places far from 0
    mesh = tube("Beast", at=(1000, -5000, 12345.67), size=123.456)
    mesh.t = [[500 * u - 100, 30 * v - 7000] for u, v in mesh.t]
    maker.mesh(mesh)
    maker.instance("Beast", "Beast", (-700, 0.1, 3), scale=0.37)

    maker = start("plainlist", materials=False)  # no materials at all
    maker.mesh(tube("Beast", materials=()))

    maker = start("twoskins")  # the first one of two skins is written as a plain mesh
    maker.mesh(tube("Beast", at=(3, 0, 0)))
    maker.mesh(tube("Other", 5, 6))
    maker.mesh(tube("Third", 4, 6, skin=False, at=(-3, 0, 0)))

    random.seed(7)
    maker = start("random", 12, 6)
    mesh = tube("Beast", 20, 12, joints=range(1, 13))
    for index, face in enumerate(mesh.f):
        pick = lambda items: tuple(random.randint(1, len(items)) for _ in range(3))
        if index % 2:
            mesh.f[index] = face[:3] + pick(mesh.t) + pick(mesh.n) + (random.randint(0, 2),)
    random.shuffle(mesh.f)
    mesh.joint = [random.choice(range(-1, 13)) for _ in mesh.joint]
    maker.mesh(mesh)
    maker.mesh(shadow())
    return models


def write_odd_models(folder):
    os.makedirs(folder, exist_ok=True)
    write_bmp(os.path.join(folder, "Hide.bmp"), 24)
    write_bmp(os.path.join(folder, "holes.bmp"), 8)
    models = odd_models()
    for name, maker in models.items():
        maker.write(os.path.join(folder, name + ".mvm"))
    return [os.path.join(folder, name + ".mvm") for name in models]


if __name__ == "__main__":
    write_odd_models(sys.argv[1])
