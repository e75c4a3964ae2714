"""Runs inside Blender: takes the files of a list through it, and writes down what Blender holds of each.

blender -b --python travel.py -- JOBS.json
"""

import json
import os
import sys
import traceback

import bmesh
import bpy
import numpy
from mathutils import Matrix, Vector

numpy.bool = bool  # Debian's importer still asks for it


def meshes():
    return [one for one in bpy.data.objects if one.type == "MESH" and one.data.polygons and one.users_collection]


def armature():
    return next((one for one in bpy.data.objects if one.type == "ARMATURE"), None)


def the(name):
    return bpy.data.objects[name]


def places(one):
    """Where the vertices of an object stand in the world, moved by its bones."""
    depsgraph = bpy.context.evaluated_depsgraph_get()
    evaluated = one.evaluated_get(depsgraph)
    mesh = evaluated.to_mesh()
    result = numpy.empty(3 * len(mesh.vertices), dtype=numpy.float32)
    mesh.vertices.foreach_get("co", result)
    matrix = numpy.array(evaluated.matrix_world)
    evaluated.to_mesh_clear()
    return result.reshape(-1, 3).astype(float) @ matrix[:3, :3].T + matrix[:3, 3]


def groups_of(one):
    names = [group.name for group in one.vertex_groups]
    return [[(names[entry.group], entry.weight) for entry in vertex.groups] for vertex in one.data.vertices]


def look(job):
    """What is there, and what a moved bone moves."""
    bones = armature()
    seen = {"meshes": [], "bones": []}
    if bones is not None:
        seen["bones"] = [[bone.name, list(bones.matrix_world @ bone.head_local)] for bone in bones.data.bones]
    for one in meshes():
        groups = groups_of(one)
        own = {"name": one.name, "mesh": one.data.name, "faces": len(one.data.polygons), "groups": groups,
               "group_count": len(one.vertex_groups), "places": places(one).tolist(),
               "materials": [slot.material.name if slot.material else None for slot in one.material_slots],
               "face_materials": [polygon.material_index for polygon in one.data.polygons]}
        seen["meshes"].append(own)
        used = sorted({name for entry in groups for name, _ in entry})
        if used and bones is not None:
            name = used[len(used) // 2]
            own["posed"] = [name] + [child.name for child in bones.data.bones[name].children_recursive]
            before = places(one)
            pose = bones.pose.bones[name]
            reach = max(1.0, float(abs(before).max()))
            shift = bones.matrix_world.inverted().to_3x3() @ Vector((0, 0, reach))
            pose.matrix = Matrix.Translation(shift) @ pose.matrix
            bpy.context.view_layer.update()
            moved = places(one) - before
            own["moved_by"] = [float(value) / reach for value in numpy.linalg.norm(moved, axis=1)]
            own["moved_apart"] = float(abs(moved[:, :2]).max()) / reach
            pose.matrix_basis = Matrix.Identity(4)
            bpy.context.view_layer.update()
    job["seen"] = seen


def edit_mode(one, select=None):
    """One object alone in edit mode, with the vertices or faces for which select is true."""
    bpy.ops.object.select_all(action="DESELECT")
    one.select_set(True)
    bpy.context.view_layer.objects.active = one
    bpy.ops.object.mode_set(mode="EDIT")
    bpy.ops.mesh.select_mode(type="VERT")
    bpy.ops.mesh.select_all(action="SELECT" if select is None else "DESELECT")
    if select is not None:
        mesh = bmesh.from_edit_mesh(one.data)
        faces = [face for face in mesh.faces if select(face)]
        for face in faces:
            face.select_set(True)
        mesh.select_flush(True)
        bmesh.update_edit_mesh(one.data)


def object_mode():
    bpy.ops.object.mode_set(mode="OBJECT")


def above(one, z):
    """Selects faces whose corners all stand above z in the world."""
    matrix = one.matrix_world
    return lambda face: all((matrix @ corner.co).z > z for corner in face.verts)


def group_vertices(one, name):
    index = one.vertex_groups[name].index
    return [vertex.index for vertex in one.data.vertices if any(entry.group == index for entry in vertex.groups)]


# The edits. Each takes what the table of check.py gives it.


def move(name, bone, by):
    one = the(name)
    shift = one.matrix_world.inverted().to_3x3() @ Vector(by)
    for index in group_vertices(one, bone):
        one.data.vertices[index].co += shift


def fatten(name, by):
    one = the(name)
    normals = [vertex.normal.copy() for vertex in one.data.vertices]
    for vertex, normal in zip(one.data.vertices, normals):
        vertex.co += by * normal


def delete(name, z, kind):
    edit_mode(the(name), above(the(name), z))
    bpy.ops.mesh.delete(type=kind)
    object_mode()


def halve(name):
    edit_mode(the(name))
    bpy.ops.mesh.subdivide(number_cuts=1)
    object_mode()


def extrude(name, face, by):
    edit_mode(the(name), lambda own: own.index == face)
    bpy.ops.mesh.extrude_region_move(TRANSFORM_OT_translate={"value": by})
    object_mode()


def join(name, other):
    bpy.ops.object.select_all(action="DESELECT")
    the(name).select_set(True)
    the(other).select_set(True)
    bpy.context.view_layer.objects.active = the(name)
    bpy.ops.object.join()


def duplicate(name, z, by):
    edit_mode(the(name), above(the(name), z))
    bpy.ops.mesh.duplicate_move(TRANSFORM_OT_translate={"value": by})
    object_mode()


def rename_bones(names):
    for old, new in names.items():
        armature().data.bones[old].name = new


def rename_mesh(name, new):
    the(name).data.name = new
    the(name).name = new


def paint(name, bone, weights):
    """Gives the vertices of a bone other weights; none at all takes them out of every group."""
    one = the(name)
    vertices = group_vertices(one, bone)
    for group in one.vertex_groups:
        group.remove(vertices)
    for group, weight in weights.items():
        one.vertex_groups[group].add(vertices, weight, "REPLACE")


def pose(bone, by):
    armature().pose.bones[bone].location = by


def turn(degrees):
    armature().rotation_mode = "XYZ"
    armature().rotation_euler[2] += numpy.radians(degrees)


def separate(name, z):
    edit_mode(the(name), above(the(name), z))
    bpy.ops.mesh.separate(type="SELECTED")
    object_mode()


def unwrap(name, by):
    for entry in the(name).data.uv_layers[0].data:
        entry.uv = (entry.uv[0] + by[0], entry.uv[1] + by[1])


def set_material(name, z, material):
    one = the(name)
    if material not in one.data.materials:
        one.data.materials.append(bpy.data.materials.get(material) or bpy.data.materials.new(material))
    index = one.data.materials.find(material)
    matrix = one.matrix_world
    for polygon in one.data.polygons:
        if all((matrix @ one.data.vertices[corner].co).z > z for corner in polygon.vertices):
            polygon.material_index = index


def flip(name):
    edit_mode(the(name))
    bpy.ops.mesh.flip_normals()
    object_mode()


def flat(name):
    mesh = the(name).data
    mesh.free_normals_split()
    mesh.use_auto_smooth = False
    for polygon in mesh.polygons:
        polygon.use_smooth = False


def scale(name, by):
    one = the(name)
    bpy.ops.object.select_all(action="DESELECT")
    one.select_set(True)
    bpy.context.view_layer.objects.active = one
    one.scale = [by * value for value in one.scale]
    bpy.ops.object.transform_apply(location=False, rotation=False, scale=True)


def place(name, at):
    the(name).location = at


def mirror(name):
    the(name).scale[0] *= -1


def merge(name, distance):
    edit_mode(the(name))
    bpy.ops.mesh.remove_doubles(threshold=distance)
    object_mode()


def quads(name):
    edit_mode(the(name))
    bpy.ops.mesh.tris_convert_to_quads()
    object_mode()


def drop_layers(name):
    """As a program does that keeps no more than one set of texture coordinates."""
    layers = the(name).data.uv_layers
    while len(layers) > 1:
        layers.remove(layers[-1])


def remove(name):
    bpy.data.objects.remove(the(name))


def unskin(name):
    one = the(name)
    one.modifiers.clear()
    one.vertex_groups.clear()
    matrix = one.matrix_world.copy()
    one.parent = None
    one.matrix_world = matrix


EDITS = (move, fatten, delete, halve, extrude, join, duplicate, rename_bones, rename_mesh, paint, pose, turn, separate,
         unwrap, set_material, flip, flat, scale, place, mirror, merge, quads, drop_layers, remove, unskin)


def travel(job):
    bpy.ops.wm.read_factory_settings(use_empty=True)
    if job["in"].lower().endswith(".fbx"):
        bpy.ops.import_scene.fbx(filepath=job["in"])
    else:
        bpy.ops.import_scene.gltf(filepath=job["in"])
    if job.get("look"):
        look(job)
    for name, *arguments in job.get("edits", []):
        next(edit for edit in EDITS if edit.__name__ == name)(*arguments)
    bpy.ops.export_scene.gltf(filepath=job["out"], **job.get("export", {}))


def main():
    path = sys.argv[sys.argv.index("--") + 1]
    with open(path, encoding="utf-8") as file:
        jobs = json.load(file)
    for job in jobs:
        try:
            travel(job)
            job["done"] = os.path.exists(job["out"])
        except Exception:
            job["error"] = traceback.format_exc()
    with open(path + ".done", "w", encoding="utf-8") as file:
        json.dump(jobs, file)


main()
