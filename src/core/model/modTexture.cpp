#include "modTexture.h"
#include "modFileListing.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string_view>
#include <vector>

#include "app/modFrontEnd.h"
#include "app/modMisc.h"
#include "app/modMvmDef.h"
#include "modCodePage.h"
#include "model/modBitmap.h"
#include "model/modStrings.h"
#include "modFiles.h"

namespace {

int16_t FailTexture(const std::string& colorFile, const std::string& description)
{
    ProgressShow();
    ShowMessage(BoxIcon::Stop, "Runtime error in LoadTexture\n" + description + "\n\"" + colorFile +
                                   "\"\r\nMake sure your textures have power-of-two dimensions!");
    return 0;
}

} // namespace

std::string FindMap(const std::string& map, const std::string& folder, FolderNames* names)
{
    if (map.empty()) {
        return {};
    }
    std::string asGiven = Utf8FromCodePage(map);
    if (FileExists(asGiven)) {
        return asGiven;
    }
    std::string turned = asGiven;
    std::replace(turned.begin(), turned.end(), '\\', '/');
    if (FileExists(turned)) {
        return turned;
    }
    const std::string name(FileNameOf(turned));
    std::string beside = folder + name;
    if (FileExists(beside)) {
        return beside;
    }
    std::string anyCase;
    if (!name.empty() && FindFileAnyCase(folder, name, names, &anyCase) && FileExists(anyCase)) {
        return anyCase;
    }
    LogLine("Texture \"" + asGiven + "\" not found.");
    return {};
}

bool LoadMaterialTexture(const MvmMaterial& material, const std::string& folder, FolderNames* names, int16_t* texture)
{
    const std::string colorFile = FindMap(material.ColorMap, folder, names);
    const std::string opacityFile = FindMap(material.OpacityMap, folder, names);
    if (colorFile.empty()) {
        return false;
    }
    *texture = LoadTexture(colorFile, opacityFile);
    return true;
}

void LoadTextures(const std::string& path)
{
    if (!TexturesWanted) {
        return;
    }
    SetPanelText("toolhelp", "Loading textures...");
    ProgressBegin(MaterialCount());
    const std::string folder(DirectoryOf(path));
    FolderNames names;
    // Each step can let the window paint or end the load, so nothing of the scene is held across it.
    for (int32_t index = 1; index <= MaterialCount() && !StopRequested; ++index) {
        const MvmMaterial material = Materials[index];
        int16_t texture = 0;
        if (LoadMaterialTexture(material, folder, &names, &texture) && index <= MaterialCount()) {
            Materials[index].Texture = texture;
        }
        ProgressStep(index);
    }
    ProgressEnd();
    SetPanelText("toolhelp", "Ready...");
}

int16_t LoadTexture(const std::string& colorFile, const std::string& opacityFile)
{
    if (TextureCount() >= std::numeric_limits<int16_t>::max()) {
        LogLine("Texture \"" + colorFile + "\" is one too many: a model can have 32767 textures.");
        return 0;
    }
    Bitmap bitmap;
    std::string error;
    switch (LoadBitmap(colorFile, opacityFile, &bitmap, &error)) {
    case BitmapResult::Done:
        break;
    case BitmapResult::Refused:
    case BitmapResult::Stopped:
        return 0;
    case BitmapResult::Failed:
        return FailTexture(colorFile, error);
    }
    // Without a context the entry still counts: numbers and reports stay the same, there is just no picture.
    MvmTexture texture;
    texture.HasOpacity = !opacityFile.empty();
    if (!MakeGLTexture(bitmap, &texture.GLTexture, &error)) {
        return FailTexture(colorFile, error);
    }
    Textures.Add(texture);
    return static_cast<int16_t>(TextureCount());
}
