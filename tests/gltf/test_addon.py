# Runs inside Blender, with the add-on and bwrt in the PATH: tests/gltf/test_addon.py -- MODEL FOLDER

import pathlib
import shutil
import sys

import bpy

sample, folder = (pathlib.Path(word) for word in sys.argv[sys.argv.index("--") + 1:])
own = folder / "o wn-ö.mvm"
for file in sample.parent.iterdir():
    shutil.copy(file, own if file == sample else folder / file.name)
plain = sample.read_bytes()
bpy.ops.preferences.addon_enable(module="beastwright_blender")


def clear():
    for kind in (bpy.data.objects, bpy.data.meshes, bpy.data.armatures, bpy.data.materials, bpy.data.images):
        bpy.data.batch_remove(list(kind))


def bring(model):
    clear()
    assert bpy.ops.import_scene.beastwright(filepath=str(model)) == {"FINISHED"}
    assert all(item["beastwright_model"] == str(model) for item in bpy.data.objects)


def take(name, **settings):
    path = folder / name
    assert bpy.ops.export_scene.beastwright(filepath=str(path), **settings) == {"FINISHED"}
    return path.with_suffix(".mvm").read_bytes()


def refused(operation, text, **settings):
    try:
        operation(**settings)
    except RuntimeError as error:
        assert text in str(error), error
        return
    raise AssertionError(f"{text}: not refused")


def skeleton():
    return next(item for item in bpy.data.objects if item.type == "ARMATURE")


def skin():
    return next(item for item in bpy.data.objects if item.type == "MESH" and item.parent == skeleton() and
                "$" not in item.name)


def lines_of(model, start=b""):
    return [line for line in model.splitlines() if line.strip().startswith(start)]


# Untouched, to another file and over the model itself, also beside what the program starts with.
assert bpy.ops.import_scene.beastwright(filepath=str(own)) == {"FINISHED"}
assert "beastwright_model" not in bpy.data.objects["Cube"]
assert take("other.mvm") == plain
bring(own)
assert take("other") == plain  # the ending is added
for _ in range(2):
    assert take(own.name) == plain
own.write_bytes(plain + b"\r\n")  # as after a save with assignments
refused(take, "changed after the import", name=own.name)
assert own.read_bytes() != plain
assert take(own.name, replace=True) == plain

# Posed, with a bone renamed and one place of the skin moved: the vertices there move, and normals around them turn.
bring(own)
skeleton().pose.bones[3].rotation_quaternion = (0.7, 0.7, 0, 0)
skeleton().data.bones[5].name = "Another"
place = skin().data.vertices[0].co.copy()
for vertex in skin().data.vertices:
    if (vertex.co - place).length < 1e-6:
        vertex.co.x += 0.01
changed = [(old, new) for old, new in zip(lines_of(plain), lines_of(take("moved.mvm")), strict=True) if old != new]
moved = [(old, new) for old, new in changed if b" v = " in old]
assert moved and len({old.split(b")")[0] for old, _ in moved}) == 1, changed
assert all(old.split(b")")[1] == new.split(b")")[1] for old, new in moved), moved  # their joints
assert all(b" n = " in old for old, new in changed if (old, new) not in moved), changed

# A skeleton that stands elsewhere, a model that is gone, or no program: nothing is written.
skeleton().rotation_mode = "XYZ"
skeleton().rotation_euler.x += 1
other = folder / "other.mvm"
refused(take, "bones stand elsewhere", name=other.name)
refused(take, "gone.mvm", name=other.name, like=str(folder / "gone.mvm"))
assert other.read_bytes() == plain
assert take("turned.mvm", force=True) != plain
preferences = bpy.context.preferences.addons["beastwright_blender"].preferences
preferences.program = str(folder / "nothing")
refused(take, "does not start", name=other.name)
preferences.program = ""
broken = folder / "broken.mvm"
broken.write_bytes(plain[:2000])
count = len(bpy.data.objects)
refused(bpy.ops.import_scene.beastwright, "broken.mvm", filepath=str(broken))
assert len(bpy.data.objects) == count and other.read_bytes() == plain

# A new model of the same shape.
bring(own)
new = take("new.mvm", like="")
for start in (b"v =", b"f =", b"bone "):
    assert len(lines_of(new, start)) == len(lines_of(plain, start)), start
assert not list(folder.glob("*.glb")), "left behind"
print("The add-on works.")
