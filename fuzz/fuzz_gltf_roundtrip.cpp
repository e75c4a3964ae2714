// Any model that loads, to glTF and back: byte for byte the plain save of it, both as a new model and over the old one.

#include <cstdio>

#include "app/modMvmDef.h"
#include "memory_file.h"
#include "model/modMvmRead.h"
#include "modFromScene.h"
#include "modGltfRead.h"
#include "modGltfWrite.h"
#include "modLike.h"
#include "modNewScene.h"
#include "modPictures.h"
#include "support/model_text.h"
#include "support/scripted.h"

namespace {

const std::string folder = "/dev/shm/no-such-folder/";

void Require(bool good, const std::string& what)
{
    if (!good) {
        std::fprintf(stderr, "%s\n", what.c_str());
        __builtin_trap();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    scripted::Reset();
    const std::string file = MemoryFile(0, data, size);
    ExchangeModel out;
    std::string error;
    std::string glb;
    if (!LoadMVM(file) || !ExchangeFromScene(folder, &out, &error)) {
        return 0;
    }
    const std::string plain = ModelText();
    Require(GlbOf(out, &glb, &error), "not written: " + error);
    ExchangeModel in;
    Require(ReadGltf(glb, folder, &in, &error), "not read: " + error);
    scripted::Reset();
    std::vector<MapFile> files;
    std::vector<std::string> notes;
    Require(SceneFromExchange(in, {.Skin = {}, .Folder = folder}, &files, &notes, &error), "no new model: " + error);
    Require(ModelText() == plain, "--- plain\n" + plain + "--- back\n" + ModelText());
    scripted::Reset();
    bool isDoubtful = false;
    Require(LoadMVM(file) && MergeIntoScene(in, &isDoubtful, &notes, &error), "not merged: " + error);
    Require(!isDoubtful, "bones stand elsewhere");
    Require(ModelText() == plain, "--- plain\n" + plain + "--- merged\n" + ModelText());
    return 0;
}
