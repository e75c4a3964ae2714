#include "modAssimpMaterials.h"

#include <algorithm>
#include <string_view>

#include <assimp/material.h>

#include "modAssimpTexts.h"
#include "modFiles.h"

namespace {

bool IsPicture(std::string_view bytes)
{
    return bytes.starts_with("\x89PNG\r\n\x1A\n") || bytes.starts_with("\xFF\xD8\xFF");
}

/// True for a PNG with an alpha channel.
bool HasAlpha(std::string_view bytes)
{
    constexpr size_t colorType = 25;
    return bytes.starts_with("\x89PNG") && bytes.size() > colorType && (bytes[colorType] == 4 || bytes[colorType] == 6);
}

std::string_view NameOf(std::string_view path)
{
    const size_t separator = path.find_last_of("/\\");
    return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

/// The bytes of a picture that lies in the scene, or in the model's folder. Empty when there is none.
std::string BytesOf(const std::string& called, MaterialTaker* taker)
{
    const aiTexture* const inside = taker->Scene->GetEmbeddedTexture(called.c_str());
    if (inside != nullptr && inside->pcData != nullptr) {
        const size_t size = inside->mHeight == 0 ? inside->mWidth : 4 * size_t{inside->mWidth} * inside->mHeight;
        return {reinterpret_cast<const char*>(inside->pcData), size};
    }
    const std::string folder = taker->Folder.empty() ? "./" : taker->Folder;
    std::string path;
    std::string bytes;
    std::string ignored;
    const std::string name(NameOf(called));
    if (name.empty() || !FindFileAnyCase(folder, name, &taker->Names, &path) || !ReadWhole(path, &bytes, &ignored)) {
        return {};
    }
    return bytes;
}

/// The index of a picture in the model; -1, with a note, for none that can be taken.
int32_t TakePicture(const std::string& called, const std::string& material, MaterialTaker* taker, ExchangeModel* model)
{
    const auto [at, isNew] = taker->Pictures.emplace(called, -1);
    if (!isNew) {
        return at->second;
    }
    const aiTexture* const inside = taker->Scene->GetEmbeddedTexture(called.c_str());
    std::string name = TextOf(NameOf(inside != nullptr ? inside->mFilename.C_Str() : called));
    name = name.empty() || name[0] == '*' ? material : name;
    std::string bytes = BytesOf(called, taker);
    if (!IsPicture(bytes)) {
        model->Notes.push_back("The picture \"" + name + "\" of the material \"" + material + "\" was left out: " +
                               (bytes.empty() ? "it is not beside the file." : "it is neither PNG nor JPEG."));
        return -1;
    }
    at->second = static_cast<int32_t>(model->Images.size());
    model->Images.push_back({name.substr(0, std::max<size_t>(name.rfind('.'), 1)), std::move(bytes)});
    return at->second;
}

} // namespace

int32_t TakeMaterial(uint32_t number, MaterialTaker* taker, ExchangeModel* model)
{
    if (number >= taker->Scene->mNumMaterials) {
        return -1;
    }
    const auto [at, isNew] = taker->Taken.emplace(number, static_cast<int32_t>(model->Materials.size()));
    if (!isNew) {
        return at->second;
    }
    const aiMaterial& from = *taker->Scene->mMaterials[number];
    ExchangeMaterial material;
    aiString text;
    if (from.Get(AI_MATKEY_NAME, text) == AI_SUCCESS) {
        material.Name = TextOf(text);
    }
    for (const aiTextureType type : {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE}) {
        if (material.Image < 0 && from.GetTexture(type, 0, &text) == AI_SUCCESS && text.length > 0) {
            material.Image = TakePicture(text.C_Str(), material.Name, taker, model);
        }
    }
    // In these formats a picture stands in place of the colour, which often is a grey that was never seen.
    aiColor3D color;
    if (material.Image >= 0) {
        material.HasOpacity = HasAlpha(model->Images[static_cast<size_t>(material.Image)].Bytes);
    } else if (from.Get(AI_MATKEY_COLOR_DIFFUSE, color) == AI_SUCCESS) {
        const auto part = [](float value) { return value >= 0 ? std::min(value, 1.0F) : 0.0F; };
        material.Color = {part(color.r), part(color.g), part(color.b)};
    }
    model->Materials.push_back(std::move(material));
    return at->second;
}
