#include "generate.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <numbers>
#include <set>

#include "modSession.h"

namespace {

constexpr int32_t ringSize = 128;
std::set<std::string> writtenFiles;

/// A deterministic spread of the numbers 0 to 1.
double Spread(int32_t seed)
{
    const uint32_t mixed = (static_cast<uint32_t>(seed) + 1U) * 2654435761U;
    return static_cast<double>(mixed >> 8) / (1 << 24);
}

Vec3 PlaceOf(Shape shape, int32_t vertex)
{
    const int32_t ring = vertex / ringSize;
    const int32_t step = vertex % ringSize;
    const int32_t half = ringSize / 2;
    // Steps of the second half mirror those of the first, so that the tube is symmetric to the last bit.
    const int32_t mirrored = step < half ? step : ringSize - 1 - step;
    const double angle = std::numbers::pi * (mirrored + 0.5) / half;
    const double radius = 0.25 + 0.1 * std::sin(ring * 0.11) + 0.004 * Spread(mirrored + ring * half);
    const auto x = static_cast<float>((step < half ? -1 : 1) * radius * std::sin(angle));
    const Vec3 place{x, static_cast<float>(radius * std::cos(angle)), static_cast<float>(ring * 0.006 - 0.75)};
    switch (shape) {
    case Shape::Creature:
        return place;
    case Shape::OnePlace:
        return {0.001F, 0.5F, 0.5F};
    case Shape::OneLine:
        return {vertex % 2 == 0 ? 0.001F : -0.001F, static_cast<float>(vertex) * 0.00001F, 0};
    case Shape::OnePlane:
        return {0.001F, place.X, place.Z};
    case Shape::Strange: {
        constexpr float infinite = std::numeric_limits<float>::infinity();
        constexpr float values[] = {infinite, -infinite, std::numeric_limits<float>::quiet_NaN()};
        const float value = values[vertex / 3 % 3];
        return vertex % 3 == 0 ? Vec3{place.X, value, vertex % 2 == 0 ? value : place.Z} : place;
    }
    }
    return place;
}

void AppendNumber(std::string* text, double value)
{
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, static_cast<float>(value)).ptr;
    text->append(digits, end);
}

} // namespace

MvmMesh LargestMesh(Shape shape, int32_t bones, int32_t materials, bool sorted)
{
    MvmMesh mesh;
    mesh.IsSkin = true;
    for (int32_t i = 0; i < LargestCount; ++i) {
        const Vec3 place = PlaceOf(shape, i);
        mesh.Vertices.Add(place);
        const double length = std::hypot(place.X, place.Y);
        mesh.Normals.Add(length > 0
                             ? Vec3{static_cast<float>(place.X / length), static_cast<float>(place.Y / length), 0}
                             : Vec3{0, 1, 0});
        mesh.TexCoords.Add({static_cast<float>(i % ringSize) / ringSize, static_cast<float>(i / ringSize) / 256});
        mesh.VertexBones.Add(static_cast<int16_t>(place.X <= 0 && bones > 0 ? 1 + i % bones : 0));
    }
    for (int32_t i = 1; i <= materials; ++i) {
        mesh.MeshMaterials.Add({"Material" + std::to_string(i), i});
    }
    for (int32_t i = 0; i < LargestCount; ++i) {
        const int32_t corner = (i / 2) % (LargestCount - ringSize - 1) + 1;
        MvmFace face;
        const auto a = static_cast<int16_t>(corner);
        const auto b = static_cast<int16_t>(corner + 1);
        const auto c = static_cast<int16_t>(corner + ringSize);
        const auto d = static_cast<int16_t>(corner + ringSize + 1);
        face.Vertex = i % 2 == 0 ? std::array<int16_t, 3>{a, b, c} : std::array<int16_t, 3>{b, d, c};
        face.Normal = face.TexCoord = face.Vertex;
        face.Material = static_cast<int16_t>(materials == 0 ? 0
                                             : sorted       ? 1 + i * materials / LargestCount
                                                            : 1 + i % materials);
        mesh.Faces.Add(face);
    }
    return mesh;
}

void FillScene(int32_t meshes, int32_t bones, int32_t materials, bool sorted, Shape shape)
{
    ResetSession();
    for (int32_t i = 1; i <= materials; ++i) {
        Materials.Add().Name = "Material" + std::to_string(i);
    }
    for (int32_t i = 0; i < bones; ++i) {
        MvmBone& bone = Bones.Add();
        bone.Name = "Bone" + std::to_string(100 + i % 100).substr(1);
        bone.Position = {static_cast<float>((i % 3 - 1) * 0.2), static_cast<float>(Spread(i) * 0.5 - 0.25),
                         static_cast<float>(i / 3 * 3.0 / bones * 1.5 - 0.75)};
        bone.LinkBone = static_cast<int16_t>(i > 3 ? i - 2 : 0);
    }
    for (int32_t i = 1; i <= meshes; ++i) {
        MvmMesh& mesh = Meshes.Add(LargestMesh(shape, bones, materials, sorted));
        mesh.Name = "Beast" + std::to_string(i);
        MvmInstance& instance = Instances.Add();
        instance.Name = instance.Mesh = mesh.Name;
        instance.Scale = 1;
    }
    SkinMesh = 1;
    ModelOpen = true;
}

std::string SceneAsObj()
{
    std::string text;
    int32_t base = 0;
    const auto line = [&text](const char* key, std::initializer_list<double> values) {
        text += key;
        for (const double value : values) {
            text += ' ';
            AppendNumber(&text, value);
        }
        text += '\n';
    };
    for (const MvmMesh& mesh : Meshes) {
        text += "o " + mesh.Name + '\n';
        for (const Vec3& v : mesh.Vertices) {
            line("v", {v.X, v.Y, v.Z});
        }
        for (const Vec2& t : mesh.TexCoords) {
            line("vt", {t.U, t.V});
        }
        for (const Vec3& n : mesh.Normals) {
            line("vn", {n.X, n.Y, n.Z});
        }
        for (const MvmFace& face : mesh.Faces) {
            text += 'f';
            for (const int16_t corner : face.Vertex) {
                const std::string number = std::to_string(base + corner);
                text += ' ' + number + '/' + number + '/' + number;
            }
            text += '\n';
        }
        base += mesh.VertexCount();
    }
    return text;
}

std::string TemporaryFile(const std::string& name, const std::string& text)
{
    const std::string path = (std::filesystem::temp_directory_path() / ("beastwright-bench-" + name)).string();
    std::ofstream file(path, std::ios::binary);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file.flush()) {
        std::abort();
    }
    writtenFiles.insert(path);
    return path;
}

void RemoveFiles()
{
    for (const std::string& path : writtenFiles) {
        std::filesystem::remove(path);
    }
    writtenFiles.clear();
}
