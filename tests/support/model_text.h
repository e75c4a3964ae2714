#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/modMvmDef.h"
#include "model/modMvmWrite.h"

// Models for tests: as records, and as the text of a model file. In texts for people a '|' stands for CR LF.

/// The scene as the text of a model file.
inline std::string ModelText()
{
    std::string text;
    WriteModelText([&text](std::string_view part) { text.append(part); });
    return text;
}

/// The text with CR LF in the place of each '|'.
inline std::string CrLf(std::string text)
{
    for (size_t at = 0; (at = text.find('|', at)) != std::string::npos; at += 2) {
        text.replace(at, 1, "\r\n");
    }
    return text;
}

inline const std::string FileInfoText = "fileinfo|{| formatversion = 1.0.2|}||";

inline void AddBones(const std::vector<std::string>& names)
{
    for (const std::string& name : names) {
        Bones.Add().Name = name;
    }
}

/// Adds a skin with these vertices and their bones.
inline MvmMesh& AddSkin(const std::string& name, const std::vector<Vec3>& places, const std::vector<int16_t>& bones)
{
    return Meshes.Add({.Name = name, .Vertices = {places}, .IsSkin = true, .VertexBones = {bones}});
}
