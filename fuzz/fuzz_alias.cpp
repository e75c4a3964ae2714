// Any bytes as an alias file, applied to bones whose names it may hold.

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

#include "app/modMvmDef.h"
#include "support/scripted.h"
#include "weights/modBoneAlias.h"

namespace {

std::string MakeFolder()
{
    std::string folder = "/dev/shm/beastwright-fuzz-" + std::to_string(getpid());
    std::filesystem::create_directories(folder + "/alias");
    std::atexit([] { std::filesystem::remove_all("/dev/shm/beastwright-fuzz-" + std::to_string(getpid())); });
    return folder;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::string folder = MakeFolder();
    std::ofstream(folder + "/alias/Beast.ALIAS", std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    scripted::Reset();
    scripted::Folder = folder;
    for (const char* name : {"Hip01", "Leg02", "Leg02", "", "Tail\xE4", "a"}) {
        Bones.Add().Name = name;
    }
    Meshes.Add().Name = "Beast";
    SkinMesh = ShadowMesh = 1;
    LoadAlias();
    if (AliasFileCount() != 1 || AliasFiles[1].Name != "Beast") {
        __builtin_trap();
    }
    ApplyAliases();
    for (const MvmBone& bone : Bones) {
        if (bone.LinkBone < 0 || bone.LinkBone > BoneCount() || bone.MirrorBone < 0 || bone.MirrorBone > BoneCount()) {
            __builtin_trap();
        }
    }
    ClearBoneAliases();
    return 0;
}
