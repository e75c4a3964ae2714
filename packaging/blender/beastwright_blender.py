# Creature models (.mvm) in Blender's File > Import and File > Export: bwrt turns them into glTF and back.

import os
import shutil
import subprocess
import tempfile
import textwrap

import addon_utils
import bpy
from bpy.props import BoolProperty, StringProperty
from bpy_extras.io_utils import ExportHelper, ImportHelper

bl_info = {
    "name": "Beastwright models", "author": "The Beastwright developers",
    "version": (1, 0, 0), "blender": (3, 4, 0),
    "location": "File > Import, File > Export", "category": "Import-Export",
    "description": "Import and export creature models (.mvm); needs Beastwright's program bwrt"}

# Custom properties of imported objects: the model that they came from, and its state then.
MODEL, STATE = "beastwright_model", "beastwright_state"

# What was not touched comes back as it was.
IMPORT_SETTINGS = {"merge_vertices": False, "import_shading": "NORMALS", "bone_heuristic": "TEMPERANCE",
                   "guess_original_bind_pose": True, "import_pack_images": True}
# Of several versions of Blender; what one does not know is left out. Modifiers and poses stay out of the shape.
EXPORT_SETTINGS = {
    "export_format": "GLB", "export_materials": "EXPORT", "export_image_format": "AUTO", "export_vertex_color": "NONE",
    **dict.fromkeys("""use_active_scene export_yup export_texcoords export_normals export_skins
        export_all_influences""".split(), True),
    **dict.fromkeys("""export_apply export_colors export_all_vertex_colors export_active_vertex_color_when_no_material
        export_attributes export_extras export_current_frame export_animations export_morph""".split(), False)}


class Preferences(bpy.types.AddonPreferences):
    bl_idname = __name__
    program: StringProperty(name="Program bwrt", subtype="FILE_PATH", description="Where it lies, if it is not found")

    def draw(self, _context):
        self.layout.prop(self, "program")
        self.layout.label(text="Found: " + (find_program() or "nothing"))


def find_program():
    addon = bpy.context.preferences.addons.get(__name__)
    chosen = bpy.path.abspath(addon.preferences.program) if addon and addon.preferences else ""
    if chosen:
        return os.path.join(chosen, "bwrt") if os.path.isdir(chosen) else chosen
    folders = [os.path.join(os.path.dirname(os.path.realpath(__file__)), os.pardir)]  # of the zip, linked
    if os.name == "nt":
        for variable in ("ProgramW6432", "ProgramFiles", "LOCALAPPDATA"):
            folder = os.environ.get(variable, "")
            folders += [os.path.join(folder, "Beastwright"), os.path.join(folder, "Programs", "Beastwright")]
    else:
        folders += ["/usr/lib/beastwright", "/usr/local/lib/beastwright", "/usr/bin", "/usr/local/bin"]
    return shutil.which("bwrt") or shutil.which("bwrt", path=os.pathsep.join(folders))


def convert(source, target, *options):
    """Runs bwrt convert, gives the lines that it told."""
    program = find_program()
    if not program:
        raise ValueError("The program bwrt of Beastwright is not found. Install Beastwright, or tell where bwrt lies: "
                      "Edit > Preferences > Add-ons > Beastwright models.")
    try:
        done = subprocess.run([program, "convert", source, target, *options], stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False,
                              creationflags=getattr(subprocess, "CREATE_NO_WINDOW", 0))
    except OSError as error:
        raise ValueError(f"{program} does not start: {error}") from error
    told = done.stderr.decode("utf-8", "replace").replace("--force", "Moved Skeleton")
    for path in (source, target):
        if path.endswith(".glb"):  # ours, and gone when this is read
            told = told.replace(f"{path}: ", "").replace(path, "Blender's file")
    lines = [line.removeprefix("bwrt: ").strip() for line in told.splitlines() if line.strip()]
    if done.returncode != 0:
        raise ValueError("\n".join(lines) or f"{program} ended with {done.returncode}.")
    return lines


def run_gltf(operator, path, settings):
    if "io_scene_gltf2" not in bpy.context.preferences.addons:
        addon_utils.enable("io_scene_gltf2")
    known = operator.get_rna_type().properties.keys()
    try:
        result = operator(filepath=path, **{name: value for name, value in settings.items() if name in known})
    except RuntimeError as error:
        raise ValueError(str(error)) from error
    if "FINISHED" not in result or not os.path.exists(path):
        raise ValueError("Blender's glTF add-on did not finish; its messages stand in the system console.")


def tell(operator, title, lines):
    def draw(popup, _context):
        for line in lines:
            for part in textwrap.wrap(line, 110):
                popup.layout.label(text=part)
    for line in lines or [title]:
        operator.report({"INFO"}, line)
    if lines and not bpy.app.background:
        bpy.context.window_manager.popup_menu(draw, title=title, icon="INFO")


def models_of(objects):
    return sorted({item[MODEL] for item in objects if item.get(MODEL)})


class ImportModel(bpy.types.Operator, ImportHelper):
    """Import a creature model of Beastwright"""
    bl_idname = "import_scene.beastwright"
    bl_label = "Import Model"
    bl_options = {"UNDO"}
    filename_ext = ".mvm"
    filter_glob: StringProperty(default="*.mvm", options={"HIDDEN"})

    def execute(self, context):
        model = os.path.abspath(bpy.path.abspath(self.filepath))
        import numpy
        if "bool" not in vars(numpy):  # which the importer of Blender 3.4 asks for, and newer numpy has not
            numpy.bool = bool
        there = set(bpy.data.objects)
        try:
            with tempfile.TemporaryDirectory(prefix="beastwright-") as folder:
                path = os.path.join(folder, "model.glb")
                lines = convert(model, path)
                run_gltf(bpy.ops.import_scene.gltf, path, IMPORT_SETTINGS)
        except ValueError as failure:
            self.report({"ERROR"}, str(failure))
            return {"CANCELLED"}
        for item in set(bpy.data.objects) - there:
            item[MODEL], item[STATE] = model, str(os.stat(model).st_mtime_ns)
        tell(self, f"Imported {os.path.basename(model)}", lines)
        return {"FINISHED"}


class ExportModel(bpy.types.Operator, ExportHelper):
    """Export a creature model for Beastwright"""
    bl_idname = "export_scene.beastwright"
    bl_label = "Export Model"
    filename_ext = ".mvm"
    filter_glob: StringProperty(default="*.mvm", options={"HIDDEN"})
    like: StringProperty(name="Made from", description="The model whose bones, materials, textures, instances, names "
                         "and order stay. Empty: make a new model")
    use_selection: BoolProperty(name="Selected Objects", description="Export these alone; select the skeleton as well")
    force: BoolProperty(name="Moved Skeleton", description="Take the shape also where the bones stand elsewhere than "
                        "in the model", options={"SKIP_SAVE"})
    replace: BoolProperty(name="Replace Assignments", description="Write to the model also where it was changed after "
                          "the import. What was assigned there since is lost", options={"SKIP_SAVE"})

    def invoke(self, context, event):
        models = models_of(context.selected_objects) or models_of(context.scene.objects)
        self.like = self.filepath = "".join(models[:1])
        return ExportHelper.invoke(self, context, event)

    def execute(self, context):
        target = os.path.abspath(bpy.path.ensure_ext(bpy.path.abspath(self.filepath), ".mvm"))
        objects = context.selected_objects if self.use_selection else context.scene.objects
        origins = [item for item in objects if item.get(MODEL)]
        models = models_of(origins)
        like = self.like if self.properties.is_property_set("like") else "".join(models[:1])
        in_place = like and os.path.exists(target) and os.path.exists(like) and os.path.samefile(target, like)
        options = ["--like", like, *(["--force"] if self.force else []), *(["--in-place"] if in_place else [])]
        try:
            if len(models) > 1:
                raise ValueError("Several models are here. Select all that belongs to one, and tick Selected Objects.")
            known = {item.get(STATE) for item in origins}
            if in_place and not self.replace and known != {str(os.stat(like).st_mtime_ns)}:
                raise ValueError(f"{like} was changed after the import. What was assigned in it since would be lost: "
                                 "import it anew, take another name, or tick Replace Assignments.")
            with tempfile.TemporaryDirectory(prefix="beastwright-") as folder:
                path = os.path.join(folder, "model.glb")
                run_gltf(bpy.ops.export_scene.gltf, path, {**EXPORT_SETTINGS, "use_selection": self.use_selection})
                lines = convert(path, target, *(options if like else []))
        except ValueError as failure:
            self.report({"ERROR"}, str(failure))
            return {"CANCELLED"}
        for item in origins if in_place else ():
            item[STATE] = str(os.stat(like).st_mtime_ns)
        tell(self, f"Exported {os.path.basename(target)}", lines)
        return {"FINISHED"}


def entry_of(operator):
    return lambda menu, _context: menu.layout.operator(operator.bl_idname, text="Beastwright model (.mvm)")


IMPORT_ENTRY, EXPORT_ENTRY = entry_of(ImportModel), entry_of(ExportModel)
register_classes, unregister_classes = bpy.utils.register_classes_factory((Preferences, ImportModel, ExportModel))


def register():
    register_classes()
    bpy.types.TOPBAR_MT_file_import.append(IMPORT_ENTRY)
    bpy.types.TOPBAR_MT_file_export.append(EXPORT_ENTRY)


def unregister():
    bpy.types.TOPBAR_MT_file_import.remove(IMPORT_ENTRY)
    bpy.types.TOPBAR_MT_file_export.remove(EXPORT_ENTRY)
    unregister_classes()
