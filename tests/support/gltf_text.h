#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include <nlohmann/json.hpp>

#include "modBase64.h"

/// A file of glTF 2.0 as text, with its numbers inside: four vertices of a square, which an index gives two triangles,
/// in one mesh of one node.
struct GltfText {
    nlohmann::json Root = nlohmann::json::parse(
        R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}], "nodes": [{"mesh": 0}],
            "meshes": [{"name": "Square", "primitives": [{"attributes": {"POSITION": 0}, "indices": 1}]}],
            "accessors": [], "bufferViews": []})");
    std::string Bytes{};

    GltfText()
    {
        Add<float>({0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0}, "VEC3");
        Add<uint8_t>({0, 1, 2, 0, 2, 3}, "SCALAR");
    }
    /// Adds an accessor with a view of its own, and gives its index.
    template <typename T>
    int Add(const std::vector<T>& numbers, const std::string& type, bool isNormalized = false)
    {
        constexpr int kind = std::is_floating_point_v<T> ? 5126
                             : sizeof(T) == 4            ? 5125
                                              : (sizeof(T) == 2 ? 5122 : 5120) + (std::is_signed_v<T> ? 0 : 1);
        const size_t width = type == "SCALAR" ? 1 : type == "MAT4" ? 16 : static_cast<size_t>(type.back() - '0');
        Root["bufferViews"].push_back(
            {{"buffer", 0}, {"byteOffset", Bytes.size()}, {"byteLength", numbers.size() * sizeof(T)}});
        Bytes.append(reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(T));
        Bytes.resize((Bytes.size() + 3) / 4 * 4);
        Root["accessors"].push_back({{"bufferView", Root["bufferViews"].size() - 1},
                                     {"componentType", kind},
                                     {"type", type},
                                     {"count", numbers.size() / width},
                                     {"normalized", isNormalized}});
        return static_cast<int>(Root["accessors"].size()) - 1;
    }
    [[nodiscard]] nlohmann::json& Primitive() { return Root["meshes"][0]["primitives"][0]; }
    /// What stands at a path like "/nodes/0/mesh".
    [[nodiscard]] nlohmann::json& At(const std::string& path) { return Root[nlohmann::json::json_pointer(path)]; }
    [[nodiscard]] std::string Text() const
    {
        nlohmann::json root = Root;
        if (!root.contains("buffers")) {
            root["buffers"] = {
                {{"byteLength", Bytes.size()}, {"uri", "data:application/octet-stream;base64," + ToBase64(Bytes)}}};
        }
        return root.dump();
    }
};
