"""Takes models to glTF, through Khronos' validator, Blender and Assimp, and back.

python3 check.py BWRT NODE_MODULES FOLDER

What must come back is worked out here from the models' text.
"""

import filecmp
import json
import os
import re
import shutil
import subprocess
import sys
from collections import Counter, defaultdict

import numpy

from edits import EDITS
from geometry import corners, glb_json, in_scene, nearest, size_of, turn_matrix
from models import Model, write_odd_models

HERE = os.path.dirname(os.path.abspath(__file__))
SAMPLES = os.path.join(HERE, "..", "..", "samples")
failures = []
largest = defaultdict(float)  # deviations seen
counts = Counter()


def expect(good, text):
    counts["checks"] += 1
    if not good:
        failures.append(text)
        print("FAILED:", text[:1500].strip(), flush=True)
    return good


def run(*arguments):
    done = subprocess.run(arguments, capture_output=True, text=True, errors="replace")
    return done.returncode, done.stdout + done.stderr


class Files:
    """The names of a model's files."""

    def __init__(self, folder, model):
        self.model = model
        self.name = os.path.basename(model)[:-4]
        self.at = lambda ending: os.path.join(folder, self.name + ending)
        self.glb, self.plain, self.way = self.at(".glb"), self.at("-plain.mvm"), self.at("-way.glb")


def same_bytes(first, second, text):
    there = os.path.exists(first) and os.path.exists(second)
    expect(there and filecmp.cmp(first, second, shallow=False), f"{text}: differs from a plain save")


# A mesh as other programs see it


def joints_of(model, mesh):
    """The bones of a mesh's kind and those of its vertices, with None where one has none."""
    if not model.is_skinned(mesh) or not mesh.faces():
        return set()
    own, kind = model.bone_of(mesh), mesh is model.shadow
    return {index for index, (bone, _) in enumerate(model.bones) if ("$j$" in bone.lower()) == kind} | {
        own[vertex - 1] for vertex in mesh.used()}


def matching_bones(model, bones):
    """The model's bone for each bone of another program: the one at its place, of several the one with its name."""
    result = {}
    size = max([1.0] + [abs(value) for _, place in model.bones for value in place])
    for name, place in bones:
        at = [index for index, (_, own) in enumerate(model.bones)
              if max(abs(a - b) for a, b in zip(own, place)) <= 1e-5 * size and index not in result.values()]
        named = [index for index in at if model.bones[index][0] == name]
        if at:
            result[name] = (named or at)[0]
    return result


def check_seen(files, model, seen):
    """What Blender holds of a file against what the model says."""
    name = files.name
    file = glb_json(files.glb)
    travelling = [mesh for mesh in model.meshes if mesh.faces()]
    expect(len(file["meshes"]) == len(travelling), f"{name}: meshes in the file")
    bones = matching_bones(model, seen["bones"])
    strange = [bone for bone, _ in seen["bones"] if bone not in bones and not bone.startswith("beastwright_")]
    expect(not strange, f"{name}: bones nowhere in the model: {strange}")
    joints = set()
    for mesh in travelling:
        joints |= joints_of(model, mesh)
    expect(set(bones.values()) == joints - {None}, f"{name}: {len(bones)} bones in Blender for {len(joints)}")
    expect(len(seen["bones"]) == len(joints), f"{name}: {len(seen['bones'])} bones and none for {len(joints)}")
    for mesh, inside in zip(travelling, file["meshes"]):
        objects = [one for one in seen["meshes"] if one["mesh"] == inside["name"]]
        placements = model.placements(mesh)
        text = f"{name}, {mesh.name[:20]}"
        if not expect(len(objects) == len(placements), f"{text}: {len(objects)} objects for {len(placements)}"):
            continue
        taken = []
        for placement in range(len(placements)):
            wanted = in_scene(model, mesh, placement)
            size = size_of(wanted)
            fit = [index for index, one in enumerate(objects) if index not in taken and
                   min(nearest(wanted, numpy.array(one["places"]), 1e-5 * size)[0]) >= 0]
            if expect(fit, f"{text}: stands elsewhere in Blender"):
                taken.append(fit[0])
                check_object(text, model, mesh, wanted, objects[fit[0]], bones)


def check_object(text, model, mesh, wanted, one, bones):
    size = size_of(wanted)
    keys = {key for face in corners(mesh) for key in face}
    expect(one["faces"] == len(mesh.faces()), f"{text}: {one['faces']} faces for {len(mesh.faces())}")
    expect(len(one["places"]) == len(keys), f"{text}: {len(one['places'])} vertices for {len(keys)}")
    found, apart = nearest(wanted, numpy.array(one["places"]), 1e-5 * size)
    largest["places in Blender / size"] = max(largest["places in Blender / size"], apart / size)
    back, _ = nearest(numpy.array(one["places"]), wanted[[v - 1 for v in mesh.used()]], 1e-5 * size)
    expect(min(back) >= 0, f"{text}: vertices that Blender lacks")
    if not model.is_skinned(mesh):
        expect(not any(one["groups"]), f"{text}: groups in a mesh without a skin")
        return
    own = model.bone_of(mesh)
    expect(all(len(entry) == 1 and entry[0][1] == 1 for entry in one["groups"]), f"{text}: weights other than one 1")
    groups = [bones.get(entry[0][0]) if entry else None for entry in one["groups"]]
    place = lambda index: tuple(wanted[index].tolist())
    expect(Counter((place(at), bone) for at, bone in zip(found, groups)) ==
           Counter((place(key[0] - 1), own[key[0] - 1]) for key in keys), f"{text}: vertices and their bones")
    if "posed" in one:
        counts["posed"] += 1
        wrong = [by for by, entry in zip(one["moved_by"], one["groups"])
                 if abs(by - (entry[0][0] in one["posed"])) > 1e-4]
        expect(not wrong and one["moved_apart"] < 1e-4, f"{text}: {len(wrong)} vertices moved wrongly by a bone")


# What comes back without --like


def surface(model, mesh, points, bones):
    """The used vertices as (place among points, bone), and each face with its coordinates and normals."""
    places = in_scene(model, mesh)
    size = size_of(points)
    ids, apart = nearest(points, places, 2e-6 * size)
    own = [bones.get(bone) for bone in model.bone_of(mesh)] if model.is_skinned(mesh) else [None] * len(ids)
    corner = [(at, bone) for at, bone in zip(ids, own)]
    scale, turn, _ = model.placements(mesh)[0]
    turned = turn_matrix(turn) * numpy.sign(scale)
    directions = [(turned @ normal).tolist() for normal in mesh.n]
    at = lambda items, number: items[number - 1] if 1 <= number <= len(items) else None
    faces = defaultdict(list)
    for face in mesh.faces():
        key = [corner[v - 1] for v in face[:3]]
        first = min(range(3), key=lambda k: [(-1 if b is None else b, a) for a, b in key[k:] + key[:k]])
        order = [(first + k) % 3 for k in range(3)]
        pairs = [at(mesh.t, face[3 + k]) or [0, 0] for k in order]
        normals = [at(directions, face[6 + k]) for k in order]
        faces[tuple(key[k] for k in order)].append((pairs, normals, at(mesh.m, face[9])))
    return Counter(corner[v - 1] for v in mesh.used()), faces, apart / size


def unit(normal):
    length = numpy.linalg.norm(numpy.array(normal or [0, 0, 0], dtype=float))
    return numpy.array(normal) / length if length > 1e-15 else None


def check_loose(text, model, back):
    """The same up to order, to small differences, and to what no other program holds."""
    bones = matching_bones(model, [(index, place) for index, (_, place) in enumerate(back.bones)])
    own = {index: index for index in range(len(model.bones))}
    left = [mesh for mesh in back.meshes if mesh.faces()]
    for mesh in model.meshes:
        if not mesh.faces():
            continue
        points = numpy.unique(in_scene(model, mesh), axis=0)
        role = [one for one in left if one is (back.skin if mesh is model.skin else back.shadow)]
        fits = role if model.is_skinned(mesh) and role else [
            one for one in left if len(one.faces()) == len(mesh.faces()) and
            len(back.placements(one)) == len(model.placements(mesh)) and
            min(nearest(points, in_scene(back, one), 1e-5 * size_of(points))[0]) >= 0]
        label = f"{text}, {mesh.name[:20]}"
        if not expect(fits, f"{label}: is not there"):
            continue
        one = fits[0]
        left.remove(one)
        wanted, faces, _ = surface(model, mesh, points, own)
        got, others, apart = surface(back, one, points, bones)
        largest["places / size"] = max(largest["places / size"], apart)
        expect(apart <= 1e-6, f"{label}: places off by {apart} of the size")
        expect(wanted == got, f"{label}: vertices or assignments differ: {len(wanted - got)}, {len(got - wanted)}")
        same = Counter({key: len(value) for key, value in faces.items()}) == Counter(
            {key: len(value) for key, value in others.items()})
        if expect(same, f"{label}: faces differ"):
            check_corners(label, faces, others)
    expect(not left, f"{text}: has more meshes: {[mesh.name for mesh in left]}")


def check_corners(label, faces, others):
    pair_size = max([1.0] + [abs(u) for entry in faces.values() for pairs, _, _ in entry for uv in pairs for u in uv])
    materials = defaultdict(set)
    pair_apart = normal_apart = 0.0
    for key, entry in faces.items():
        rest = list(others[key])
        for pairs, normals, material in entry:

            def away(other):
                turned = []
                for shift in range(3):
                    if key[shift:] + key[:shift] == key:
                        apart = 0.0
                        for k in range(3):
                            mine, its = unit(normals[k]), unit(other[1][(k + shift) % 3])
                            if mine is not None and its is not None:
                                apart = max(apart, numpy.linalg.norm(mine - its))
                        pair = numpy.abs(numpy.array(pairs) - (other[0][shift:] + other[0][:shift])).max()
                        turned.append((pair / pair_size > 1e-6, other[2] != material, apart, pair / pair_size))
                return min(turned)

            best = min(rest, key=away)
            rest.remove(best)
            _, _, apart, pair = away(best)
            pair_apart, normal_apart = max(pair_apart, pair), max(normal_apart, apart)
            materials[material].add(best[2])
    largest["texture coordinates / size"] = max(largest["texture coordinates / size"], pair_apart)
    largest["normals"] = max(largest["normals"], normal_apart)
    expect(pair_apart <= 1e-6, f"{label}: texture coordinates off by {pair_apart}")
    expect(normal_apart <= 1.42e-2, f"{label}: normals off by {normal_apart}")
    expect(all(len(names) == 1 for names in materials.values()), f"{label}: materials differ: {dict(materials)}")


# The stages


def prepare(folder):
    models = write_odd_models(os.path.join(folder, "models"))
    for sample in ("vorrel/vorrel.mvm", "tutorial/vorrel-half.mvm", "tutorial/vorrel-skin.mvm"):
        path = os.path.join(folder, os.path.basename(sample)[:-4])
        shutil.copytree(os.path.join(SAMPLES, os.path.dirname(sample)), path)
        models.append(os.path.join(path, os.path.basename(sample)))
    return [Files(folder, model) for model in models]


def save_plain(bwrt, files):
    """A plain save: an edit that changes nothing, or where there is no bone, the maker's text, which is one."""
    code, told = run(bwrt, "reassign", files.model, "--from", "1", "--to", "1", "-o", files.plain)
    if Model(files.model).skin is None or not Model(files.model).bones:
        shutil.copy(files.model, files.plain)
        code = 0
    expect(code == 0, f"{files.name}: no plain save: {told}")


def convert(bwrt, text, *arguments, wants=0):
    code, told = run(bwrt, "convert", *arguments)
    expect(code == wants, f"{text}: ended with {code}: {told}")
    return told


def validate(modules, paths):
    code, told = run("node", os.path.join(HERE, "validate.js"), modules, *paths)
    expect(code == 0, f"the validator: {told}")


def start_blender(folder, name, jobs):
    path = os.path.join(folder, name + ".json")
    with open(path, "w", encoding="utf-8") as file:
        json.dump(jobs, file)
    environment = dict(os.environ, PATH="/usr/bin:" + os.environ["PATH"])
    with open(path + ".log", "w", encoding="utf-8") as log:
        command = ["blender", "-b", "--factory-startup", "--python", os.path.join(HERE, "travel.py"), "--", path]
        return path, subprocess.Popen(command, stdout=log, stderr=subprocess.STDOUT, env=environment)


def end_blender(started):
    path, process = started
    process.wait()
    if not os.path.exists(path + ".done"):
        with open(path + ".log", encoding="utf-8", errors="replace") as log:
            sys.exit("Blender failed:\n" + log.read()[-4000:])
    with open(path + ".done", encoding="utf-8") as file:
        jobs = json.load(file)
    for job in jobs:
        expect(job.get("done"), f"{job['name']} in Blender: {job.get('error', 'no file')}")
    return {job["name"]: job for job in jobs}


def check_assimp(files, model):
    """Assimp's counts of vertices, bones and faces. It makes a mesh of each material, with all bones of the skin."""
    code, told = run("assimp", "info", files.glb, "--raw")
    expect(code == 0, f"{files.name}: Assimp cannot read it")
    wanted = Counter()
    for mesh in model.meshes:
        joints = joints_of(model, mesh)
        for material in {face[9] for face in mesh.faces()}:
            keys = {key for face in corners(mesh) for key in face if key[3] == material}
            faces = [face for face in mesh.faces() if face[9] == material]
            wanted[(len(keys), len(joints), len(faces))] += 1
    rows = re.findall(r"\[(\d+) / (\d+) / (\d+)", told)
    seen = Counter(tuple(int(number) for number in row) for row in rows)
    expect(seen == wanted, f"{files.name}: Assimp sees {sorted(seen)}, the model says {sorted(wanted)}")


def check_way(bwrt, files, job):
    model = Model(files.plain)
    check_seen(files, model, job["seen"])
    back, loose = files.at("-like.mvm"), files.at("-loose.mvm")
    convert(bwrt, files.name, files.way, back, "--like", files.model)
    same_bytes(back, files.plain, f"{files.name} through Blender, --like")
    convert(bwrt, files.name, files.way, loose)
    check_loose(f"{files.name} through Blender", model, Model(loose))


def check_edit(bwrt, files, edit, job):
    at = lambda ending: os.path.join(os.path.dirname(job["out"]), edit.name.replace(" ", "-") + ending)
    out = at(".mvm")
    if edit.refused:
        told = convert(bwrt, edit.name, job["out"], out, "--like", files.model, wants=2)
        expect(not os.path.exists(out) and edit.refused in told, f"{edit.name}: written, or not refused: {told}")
        if edit.refused != "--force":
            return
    force = ["--force"] if edit.refused else []
    told = convert(bwrt, edit.name, job["out"], out, "--like", files.model, *force)
    if edit.check is None:
        same_bytes(out, files.plain, f"edit '{edit.name}'")
    elif os.path.exists(out):
        for fault in edit.check(Model(files.plain), Model(out), told, job["out"]):
            expect(False, f"edit '{edit.name}': {fault}; told: {told.strip()}")
        counts["checks"] += 1


def main(bwrt, modules, folder):
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    everything = prepare(folder)
    for files in everything:
        save_plain(bwrt, files)
        convert(bwrt, files.name, files.model, files.glb)
        convert(bwrt, files.name, files.model, files.at(".gltf"))
    by_name = {files.name: files for files in everything}
    ways = start_blender(folder, "ways", [
        {"name": files.name, "in": files.glb, "out": files.way, "look": True} for files in everything])
    edits = start_blender(folder, "edits", [
        {"name": edit.name, "in": by_name[edit.model].glb, "edits": edit.steps, "export": edit.export,
         "out": os.path.join(folder, "edit-" + edit.name.replace(" ", "-") + edit.ending)} for edit in EDITS])
    validate(modules, [path for files in everything for path in (files.glb, files.at(".gltf"))])
    for files in everything:
        for ending in (".glb", ".gltf"):
            back = files.at(ending[1:] + "-back.mvm")
            convert(bwrt, files.name, files.at(ending), back)
            same_bytes(back, files.plain, f"{files.name}{ending} and back")
        check_assimp(files, Model(files.plain))
    jobs = end_blender(ways)
    for files in everything:
        if jobs[files.name].get("done"):
            check_way(bwrt, files, jobs[files.name])
    jobs = end_blender(edits)
    for edit in EDITS:
        if jobs[edit.name].get("done"):
            check_edit(bwrt, by_name[edit.model], edit, jobs[edit.name])
    print(f"{len(everything)} models, {len(EDITS)} edits, {counts['posed']} posed bones, {counts['checks']} checks, "
          f"{len(failures)} failures")
    for what, value in sorted(largest.items()):
        print(f"Largest deviation of {what}: {value:.2g}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
