#include "modGltfBytes.h"

#include <algorithm>
#include <array>
#include <exception>
#include <string_view>

#include "app/modGuard.h"
#include "modFiles.h"

namespace {

constexpr int deepest = 64;

/// Where the library's questions for files go.
struct Surroundings {
    std::string Folder{};
    std::string Complaint{};
};

/// Brackets of JSON, outside its texts: the library follows them by recursion.
bool IsTooDeep(std::string_view json)
{
    int depth = 0;
    bool inText = false;
    for (size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (inText) {
            i += c == '\\' ? 1 : 0;
            inText = c != '"';
        } else if (c == '"') {
            inText = true;
        } else if (c == '{' || c == '[') {
            if (++depth > deepest) {
                return true;
            }
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return false;
}

uint32_t WordAt(std::string_view bytes, size_t at)
{
    uint32_t word = 0;
    for (size_t i = 0; i < 4; ++i) {
        word |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    }
    return word;
}

/// The text of a file; none when the frame of a binary one is damaged.
bool JsonOf(std::string_view bytes, std::string_view* json)
{
    constexpr uint32_t jsonChunk = 0x4E4F534A;
    constexpr size_t head = 20;
    if (!bytes.starts_with("glTF")) {
        *json = bytes;
        return true;
    }
    if (bytes.size() < head || WordAt(bytes, 4) != 2 || WordAt(bytes, 8) > bytes.size() ||
        WordAt(bytes, 16) != jsonChunk || WordAt(bytes, 12) > bytes.size() - head) {
        return false;
    }
    *json = bytes.substr(head, WordAt(bytes, 12));
    return true;
}

/// A name as the library gives it, as a path below the folder; empty for one that leads elsewhere.
std::string PathOf(std::string_view name, const std::string& folder)
{
    if (name.starts_with("./")) {
        name.remove_prefix(2);
    }
    const bool stays = !name.empty() && name.front() != '/' &&
                       name.find_first_of(std::string_view("\\:\0", 3)) == std::string_view::npos;
    for (size_t start = 0; stays && start <= name.size();) {
        const size_t end = std::min(name.find('/', start), name.size());
        if (name.substr(start, end - start) == "..") {
            return {};
        }
        start = end + 1;
    }
    return stays ? folder + std::string(name) : std::string();
}

bool Exists(const std::string& name, void* data)
{
    auto* around = static_cast<Surroundings*>(data);
    const std::string path = PathOf(name, around->Folder);
    if (path.empty() && around->Complaint.empty()) { // the library asks again, with "./" in front
        around->Complaint = "It names \"" + name + "\", which is outside of its folder.";
    }
    return !path.empty() && IsPlainFile(path);
}

std::string SameName(const std::string& name, void* /*data*/)
{
    return name;
}

bool Read(std::vector<unsigned char>* bytes, std::string* error, const std::string& name, void* data)
{
    std::string whole;
    const std::string path = PathOf(name, static_cast<Surroundings*>(data)->Folder);
    if (path.empty() || !ReadWhole(path, &whole, error)) {
        return false;
    }
    bytes->assign(whole.begin(), whole.end());
    return true;
}

bool KeepPicture(tinygltf::Image* image, int /*index*/, std::string* /*error*/, std::string* /*warning*/, int /*width*/,
                 int /*height*/, const unsigned char* bytes, int size, void* /*data*/)
{
    // One inside of a buffer is taken from there when its view is known to lie inside.
    if (image->bufferView < 0) {
        image->image.assign(bytes, bytes + std::max(size, 0));
    }
    return true;
}

/// Extensions without which a file still reads as it should here.
bool IsHarmless(const std::string& extension)
{
    return extension == "KHR_mesh_quantization" || extension == "KHR_texture_transform" ||
           extension.starts_with("KHR_materials_") || extension.starts_with("KHR_lights_");
}

bool AreViewsInside(const tinygltf::Model& file, std::string* error)
{
    for (size_t i = 0; i < file.bufferViews.size(); ++i) {
        const tinygltf::BufferView& view = file.bufferViews[i];
        const bool known = view.buffer >= 0 && static_cast<size_t>(view.buffer) < file.buffers.size();
        const size_t size = known ? file.buffers[static_cast<size_t>(view.buffer)].data.size() : 0;
        if (view.byteOffset > size || view.byteLength > size - view.byteOffset) {
            *error = "Its buffer view " + std::to_string(i) + " lies outside of its buffer.";
            return false;
        }
    }
    return true;
}

bool IsUsable(const tinygltf::Model& file, std::string* error)
{
    if (!file.asset.version.starts_with("2.") || (!file.asset.minVersion.empty() && file.asset.minVersion != "2.0")) {
        *error = "It is of version \"" + file.asset.version + "\" of glTF; version 2.0 can be read.";
        return false;
    }
    for (const std::string& extension : file.extensionsRequired) {
        if (!IsHarmless(extension)) {
            *error = "It cannot be read without the extension \"" + extension + "\".";
            return false;
        }
    }
    return AreViewsInside(file, error);
}

} // namespace

bool LoadGltf(const std::string& bytes, const std::string& folder, tinygltf::Model* file, std::string* error)
{
    std::string_view json;
    if (!JsonOf(bytes, &json)) {
        *error = "It is cut off or damaged.";
        return false;
    }
    if (IsTooDeep(json)) {
        *error = "Its text is nested more than " + std::to_string(deepest) + " deep.";
        return false;
    }
    Surroundings around{folder, {}};
    tinygltf::TinyGLTF loader;
    loader.SetFsCallbacks({Exists, SameName, Read, nullptr, &around});
    loader.SetImageLoader(KeepPicture, nullptr);
    std::string warnings;
    bool loaded = false;
    try {
        const auto size = static_cast<unsigned int>(bytes.size());
        loaded = bytes.starts_with("glTF")
                     ? loader.LoadBinaryFromMemory(file, error, &warnings,
                                                   reinterpret_cast<const unsigned char*>(bytes.data()), size)
                     : loader.LoadASCIIFromString(file, error, &warnings, bytes.data(), size, "");
    } catch (const std::exception& exception) {
        *error = WordsOf(exception);
    }
    if (!around.Complaint.empty()) {
        *error = around.Complaint;
        return false;
    }
    if (!loaded) {
        error->erase(error->find_last_not_of(" \n") + 1);
        std::replace(error->begin(), error->end(), '\n', ' ');
        *error = "It is no glTF file, or a damaged one: " + *error;
        return false;
    }
    return IsUsable(*file, error);
}
