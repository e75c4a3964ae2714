#include "model/modMvmLines.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "model/modNumbers.h"
#include "model/modStrings.h"

namespace {

constexpr const char* numberTooLarge = "A number is too large.";
constexpr const char* numberOutOfRange = "A whole number is out of range.";

bool Fail(const char* description, const char** failure)
{
    *failure = description;
    return false;
}

/// Takes the text up to the next separator off the front of *rest.
std::string_view TakePiece(std::string_view* rest, char separator)
{
    const size_t end = rest->find(separator);
    const std::string_view piece = rest->substr(0, end);
    rest->remove_prefix(end == std::string_view::npos ? rest->size() : end + 1);
    return piece;
}

const char* WhyNoCoordinates(std::string_view value)
{
    return value.size() < 2 ? "A value is too short for coordinates." : numberTooLarge;
}

bool ReadVec3(std::string_view value, Vec3* result, const char** failure)
{
    return ParseVec3(value, result) || Fail(WhyNoCoordinates(value), failure);
}

bool ReadInt16(std::string_view piece, int16_t* result, const char** failure)
{
    double number = 0;
    if (!LeadingNumber(piece, &number)) {
        return Fail(numberTooLarge, failure);
    }
    return RoundToInt16(number, result) || Fail(numberOutOfRange, failure);
}

bool ReadFaceMaterial(std::string_view piece, int32_t materialCount, int16_t* result, const char** failure)
{
    double number = 0;
    int32_t material = 0;
    if (!LeadingNumber(piece, &number)) {
        return Fail(numberTooLarge, failure);
    }
    if (!RoundToInt32(number, &material)) {
        return Fail(numberOutOfRange, failure);
    }
    return material > materialCount || RoundToInt16(material, result) || Fail(numberOutOfRange, failure);
}

bool ReadVertex(std::string_view value, MvmMesh* mesh, const char** failure)
{
    Vec3 position;
    if (!ReadVec3(value, &position, failure)) {
        return false;
    }
    AddVertex(position, 0, mesh);
    if (!mesh->IsSkin || std::count(value.begin(), value.end(), ',') != 3) {
        return true;
    }
    return ReadInt16(value.substr(value.rfind(',') + 1), &mesh->VertexJoints.Items.back(), failure);
}

bool ReadFace(std::string_view value, MvmMesh* mesh, const char** failure)
{
    MvmFace& face = mesh->Faces.Add();
    std::string numbers(value);
    std::erase_if(numbers, [](char c) { return c == '(' || c == ')'; });
    std::string_view rest = numbers;
    for (std::array<int16_t, 3>* corner : {&face.Vertex, &face.TexCoord, &face.Normal}) {
        for (int16_t& number : *corner) {
            if (!ReadInt16(TakePiece(&rest, ','), &number, failure)) {
                return false;
            }
        }
    }
    return ReadFaceMaterial(TakePiece(&rest, ','), mesh->MeshMaterialCount(), &face.Material, failure);
}

bool ReadBoneLine(std::string_view line, std::string_view key, std::string_view value, MvmBone* bone,
                  const char** failure)
{
    if (EqualsAnyCase(key, "position")) {
        return ReadVec3(value, &bone->Position, failure);
    }
    if (EqualsAnyCase(key, "rotation")) {
        return ReadVec3(value, &bone->Rotation, failure);
    }
    if (line.find('}') == std::string_view::npos) {
        bone->ExtraText.append(line).append("\r\n");
    }
    return true;
}

void ReadMaterialLine(std::string_view key, std::string_view value, MvmMaterial* material)
{
    if (EqualsAnyCase(key, "colormap")) {
        material->ColorMap = StripQuotes(value);
    } else if (EqualsAnyCase(key, "opacitymap")) {
        material->OpacityMap = StripQuotes(value);
    } else if (EqualsAnyCase(key, "bumpmap")) {
        material->BumpMap = StripQuotes(value);
    }
}

bool ReadInstanceLine(std::string_view key, std::string_view value, MvmInstance* instance, const char** failure)
{
    if (EqualsAnyCase(key, "mesh")) {
        instance->Mesh = StripQuotes(value);
    } else if (EqualsAnyCase(key, "position")) {
        return ReadVec3(value, &instance->Position, failure);
    } else if (EqualsAnyCase(key, "rotation")) {
        return ReadVec3(value, &instance->Rotation, failure);
    } else if (EqualsAnyCase(key, "scale")) {
        double number = 0;
        return (LeadingNumber(value, &number) && ToFloat(number, &instance->Scale)) || Fail(numberTooLarge, failure);
    }
    return true;
}

bool ReadMeshLine(std::string_view key, std::string_view value, MvmMesh* mesh, const char** failure)
{
    if (EqualsAnyCase(key, "v")) {
        return ReadVertex(value, mesh, failure);
    }
    if (EqualsAnyCase(key, "f")) {
        return ReadFace(value, mesh, failure);
    }
    if (EqualsAnyCase(key, "n")) {
        Vec3 normal;
        if (!ReadVec3(value, &normal, failure)) {
            return false;
        }
        mesh->Normals.Add(normal);
    } else if (EqualsAnyCase(key, "t")) {
        Vec2 pair;
        if (!ParseUV(value, &pair)) {
            return Fail(WhyNoCoordinates(value), failure);
        }
        mesh->TexCoords.Add(pair);
    } else if (EqualsAnyCase(key, "m")) {
        mesh->MeshMaterials.Add().Name = StripQuotes(value);
    }
    return true;
}

} // namespace

void AddVertex(const Vec3& position, int16_t joint, MvmMesh* mesh)
{
    if (mesh->IsSkin) {
        // Grown first, so that they cover the vertices also when memory ends between the three.
        const size_t count = mesh->Vertices.Items.size() + 1;
        mesh->VertexBones.Items.resize(count);
        mesh->VertexJoints.Items.resize(count, joint);
    }
    mesh->Vertices.Add(position);
}

void ReadHeaderLine(std::string_view line, BlockKind* kind)
{
    const size_t first = line.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return;
    }
    std::string_view rest = line.substr(first, line.find_last_not_of(' ') + 1 - first);
    const std::string_view keyword = TakePiece(&rest, ' ');
    const bool isSkin = EqualsAnyCase(keyword, "skin");
    if (EqualsAnyCase(keyword, "fileinfo")) {
        *kind = BlockKind::FileInfo;
    } else if (EqualsAnyCase(keyword, "bone")) {
        *kind = BlockKind::Bone;
        Bones.Add().Name = StripQuotes(TakePiece(&rest, ' '));
    } else if (EqualsAnyCase(keyword, "material")) {
        *kind = BlockKind::Material;
        Materials.Add().Name = StripQuotes(TakePiece(&rest, ' '));
    } else if (isSkin || EqualsAnyCase(keyword, "mesh")) {
        *kind = BlockKind::Mesh;
        MvmMesh& mesh = Meshes.Add();
        mesh.IsSkin = isSkin;
        mesh.Name = StripQuotes(TakePiece(&rest, ' '));
    } else if (EqualsAnyCase(keyword, "instance")) {
        *kind = BlockKind::Instance;
        Instances.Add().Name = StripQuotes(TakePiece(&rest, ' '));
    }
}

bool ReadBodyLine(std::string_view line, BlockKind kind, const char** failure)
{
    if (kind == BlockKind::None) {
        return true;
    }
    const std::string stripped = StripWhitespace(line);
    std::string_view rest = stripped;
    const std::string_view key = TakePiece(&rest, '=');
    const std::string_view value = TakePiece(&rest, '=');
    switch (kind) {
    case BlockKind::FileInfo:
        if (EqualsAnyCase(key, "formatversion")) {
            FormatVersion = value;
        }
        return true;
    case BlockKind::Bone:
        return ReadBoneLine(line, key, value, &Bones.Items.back(), failure);
    case BlockKind::Material:
        ReadMaterialLine(key, value, &Materials.Items.back());
        return true;
    case BlockKind::Mesh:
        return ReadMeshLine(key, value, &Meshes.Items.back(), failure);
    case BlockKind::Instance:
        return ReadInstanceLine(key, value, &Instances.Items.back(), failure);
    case BlockKind::None:
        break;
    }
    return true;
}
