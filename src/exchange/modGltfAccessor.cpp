#include "modGltfAccessor.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

/// Entries one behind the other in a buffer.
struct Run {
    const unsigned char* Start = nullptr;
    size_t Stride = 0;
    size_t Count = 0;
};

bool FindRun(const tinygltf::Model& file, int view, size_t offset, size_t count, size_t entry, bool mayStride, Run* run)
{
    if (view < 0 || static_cast<size_t>(view) >= file.bufferViews.size()) {
        return false;
    }
    const tinygltf::BufferView& bytes = file.bufferViews[static_cast<size_t>(view)];
    const size_t stride = mayStride && bytes.byteStride != 0 ? bytes.byteStride : entry;
    if (stride < entry || offset > bytes.byteLength || count == 0 ||
        (bytes.byteLength - offset < entry || (bytes.byteLength - offset - entry) / stride < count - 1)) {
        return false;
    }
    run->Start = file.buffers[static_cast<size_t>(bytes.buffer)].data.data() + bytes.byteOffset + offset;
    run->Stride = stride;
    run->Count = count;
    return true;
}

template <typename Stored, typename Value>
Value Converted(const unsigned char* at, bool isNormalized)
{
    Stored stored{};
    std::memcpy(&stored, at, sizeof stored);
    if constexpr (std::is_integral_v<Stored> && std::is_floating_point_v<Value>) {
        if (isNormalized) {
            return std::max(static_cast<Value>(stored) / static_cast<Value>(std::numeric_limits<Stored>::max()),
                            Value{-1});
        }
    }
    return static_cast<Value>(stored);
}

template <typename Value>
using Convert = Value (*)(const unsigned char*, bool);

/// How a number of this kind is read, and its size; none for a kind that is not allowed here.
template <typename Value>
Convert<Value> ConversionOf(int kind, size_t* size)
{
    const auto as = [&](auto sample) {
        *size = sizeof(sample);
        return static_cast<Convert<Value>>(&Converted<decltype(sample), Value>);
    };
    switch (kind) {
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
        return as(uint8_t{});
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
        return as(uint16_t{});
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT:
        return as(uint32_t{});
    case TINYGLTF_COMPONENT_TYPE_BYTE:
        return std::is_floating_point_v<Value> ? as(int8_t{}) : nullptr;
    case TINYGLTF_COMPONENT_TYPE_SHORT:
        return std::is_floating_point_v<Value> ? as(int16_t{}) : nullptr;
    case TINYGLTF_COMPONENT_TYPE_FLOAT:
        return std::is_floating_point_v<Value> ? as(float{}) : nullptr;
    default:
        return nullptr;
    }
}

size_t BytesInFile(const tinygltf::Model& file)
{
    size_t bytes = 0;
    for (const tinygltf::Buffer& buffer : file.buffers) {
        bytes += buffer.data.size();
    }
    return bytes;
}

/// Puts the entries of an accessor's sparse part in the place of those that it replaces.
template <typename Value>
bool TakeSparse(const tinygltf::Model& file, const tinygltf::Accessor& accessor, size_t width,
                std::vector<Value>* result)
{
    const auto& sparse = accessor.sparse;
    size_t indexSize = 0;
    size_t size = 0;
    const Convert<uint32_t> toIndex = ConversionOf<uint32_t>(sparse.indices.componentType, &indexSize);
    const Convert<Value> convert = ConversionOf<Value>(accessor.componentType, &size);
    Run indices;
    Run values;
    if (sparse.count < 1 || toIndex == nullptr || sparse.indices.byteOffset < 0 || sparse.values.byteOffset < 0 ||
        !FindRun(file, sparse.indices.bufferView, static_cast<size_t>(sparse.indices.byteOffset),
                 static_cast<size_t>(sparse.count), indexSize, false, &indices) ||
        !FindRun(file, sparse.values.bufferView, static_cast<size_t>(sparse.values.byteOffset),
                 static_cast<size_t>(sparse.count), size * width, false, &values)) {
        return false;
    }
    for (size_t i = 0; i < indices.Count; ++i) {
        const size_t index = toIndex(indices.Start + i * indices.Stride, false);
        if (index >= accessor.count) {
            return false;
        }
        for (size_t k = 0; k < width; ++k) {
            (*result)[index * width + k] = convert(values.Start + i * values.Stride + k * size, accessor.normalized);
        }
    }
    return true;
}

template <typename Value>
bool ReadEntries(const tinygltf::Model& file, int index, size_t width, std::vector<Value>* result)
{
    if (index < 0 || static_cast<size_t>(index) >= file.accessors.size()) {
        return false;
    }
    const tinygltf::Accessor& accessor = file.accessors[static_cast<size_t>(index)];
    size_t size = 0;
    const Convert<Value> convert = ConversionOf<Value>(accessor.componentType, &size);
    const int kind = accessor.type;
    const bool fits = kind == TINYGLTF_TYPE_SCALAR ? width == 1
                      : kind == TINYGLTF_TYPE_MAT4 ? width == 16
                                                   : static_cast<size_t>(kind) == width;
    if (convert == nullptr || !fits || accessor.count == 0) {
        return false;
    }
    // Entries that are all 0 stand for no bytes, so the file's own size bounds them.
    const bool isEmpty = accessor.bufferView < 0;
    Run run;
    if (isEmpty ? accessor.count > BytesInFile(file)
                : !FindRun(file, accessor.bufferView, accessor.byteOffset, accessor.count, size * width, true, &run)) {
        return false;
    }
    result->assign(accessor.count * width, Value{});
    for (size_t i = 0; i < run.Count; ++i) {
        for (size_t k = 0; k < width; ++k) {
            (*result)[i * width + k] = convert(run.Start + i * run.Stride + k * size, accessor.normalized);
        }
    }
    return !accessor.sparse.isSparse || TakeSparse(file, accessor, width, result);
}

std::string Complaint(int accessor)
{
    return "Its accessor " + std::to_string(accessor) + " is damaged.";
}

} // namespace

bool ReadFloats(const tinygltf::Model& file, int accessor, size_t width, std::vector<float>* result, std::string* error)
{
    if (!ReadEntries(file, accessor, width, result)) {
        *error = Complaint(accessor);
        return false;
    }
    if (!std::all_of(result->begin(), result->end(), [](float number) { return std::isfinite(number); })) {
        *error = "Its accessor " + std::to_string(accessor) + " holds a number that is not finite.";
        return false;
    }
    return true;
}

bool ReadWholes(const tinygltf::Model& file, int accessor, size_t width, std::vector<uint32_t>* result,
                std::string* error)
{
    const bool read = ReadEntries(file, accessor, width, result);
    if (!read) {
        *error = Complaint(accessor);
    }
    return read;
}
