// Any bytes as a glTF file: into a new model, and over the shape of one that is there.

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "app/modMvmDef.h"
#include "memory_file.h"
#include "model/modMvmRead.h"
#include "modGltfRead.h"
#include "modLike.h"
#include "modNewScene.h"
#include "modPictures.h"
#include "support/beast_text.h"
#include "support/scripted.h"

namespace {

const std::string folder = "/dev/shm/no-such-folder/";

bool IsFinite(const Vec3& v)
{
    return std::isfinite(v.X) && std::isfinite(v.Y) && std::isfinite(v.Z);
}

void Require(bool good, const char* what)
{
    if (!good) {
        std::fprintf(stderr, "%s\n", what);
        __builtin_trap();
    }
}

/// What a model file can hold, whatever came in.
void CheckScene()
{
    for (const MvmBone& bone : Bones) {
        Require(IsFinite(bone.Position), "a bone is nowhere");
    }
    for (const MvmInstance& instance : Instances) {
        Require(IsFinite(instance.Position) && IsFinite(instance.Rotation) && std::isfinite(instance.Scale),
                "an instance is nowhere");
    }
    for (const MvmMesh& mesh : Meshes) {
        Require(std::max({mesh.VertexCount(), mesh.NormalCount(), mesh.TexCoordCount(), mesh.FaceCount()}) <= INT16_MAX,
                "a mesh is over the limits");
        Require(std::all_of(mesh.Vertices.begin(), mesh.Vertices.end(), IsFinite), "a vertex is nowhere");
        Require(std::all_of(mesh.Normals.begin(), mesh.Normals.end(), IsFinite), "a normal is not finite");
        Require(!mesh.IsSkin || mesh.VertexBones.Count() == mesh.VertexCount(), "a vertex has no entry for its bone");
    }
    (void)ModelText();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    scripted::Reset();
    ExchangeModel model;
    std::string error;
    if (!ReadGltf(std::string(reinterpret_cast<const char*>(data), size), folder, &model, &error)) {
        Require(!error.empty(), "a failure without a word");
        return 0;
    }
    std::vector<MapFile> files;
    std::vector<std::string> notes;
    if (SceneFromExchange(model, {.Skin = {}, .Folder = folder}, &files, &notes, &error)) {
        CheckScene();
    } else {
        Require(!error.empty(), "a failure without a word");
    }
    scripted::Reset();
    Require(LoadMVM(MemoryFile(0, reinterpret_cast<const uint8_t*>(BeastText.data()), BeastText.size())), "no model");
    const std::string before = ModelText();
    bool isDoubtful = false;
    if (MergeIntoScene(model, &isDoubtful, &notes, &error)) {
        CheckScene();
    } else {
        Require(ModelText() == before, "a failure that changes the model");
    }
    return 0;
}
