#include "checks/modDifferences.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <map>
#include <utility>

#include "modCodePage.h"
#include "model/modNumbers.h"

namespace {

/// A record's name and how many of this name stand before it.
using Key = std::pair<std::string, int32_t>;

template <typename Record>
std::map<Key, int32_t> NumbersByKey(const Array1<Record>& records)
{
    std::map<std::string, int32_t> seen;
    std::map<Key, int32_t> numbers;
    for (int32_t i = 1; i <= records.Count(); ++i) {
        const std::string& name = records[i].Name;
        numbers[{name, seen[name]++}] = i;
    }
    return numbers;
}

/// Equal bit for bit, but for the sign of zero: files do not tell it.
bool Same(float a, float b)
{
    return a == b || std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b);
}

bool Same(const Vec3& a, const Vec3& b)
{
    return Same(a.X, b.X) && Same(a.Y, b.Y) && Same(a.Z, b.Z);
}

bool Same(const Vec2& a, const Vec2& b)
{
    return Same(a.U, b.U) && Same(a.V, b.V);
}

bool Same(const MvmFace& a, const MvmFace& b)
{
    return a.Vertex == b.Vertex && a.Normal == b.Normal && a.TexCoord == b.TexCoord && a.Material == b.Material;
}

bool Same(const MvmMeshMaterial& a, const MvmMeshMaterial& b)
{
    return a.Name == b.Name;
}

/// As a file has it.
std::string TextOf(const Vec3& value)
{
    return "(" + FloatToText(value.X) + "," + FloatToText(-value.Z) + "," + FloatToText(value.Y) + ")";
}

std::string TextOf(float value)
{
    return FloatToText(value);
}

std::string TextOf(const std::string& value)
{
    return '"' + Utf8FromCodePage(value) + '"';
}

bool Same(const std::string& a, const std::string& b)
{
    return a == b;
}

template <typename Value>
void AddChange(const char* field, const Value& old, const Value& now, std::vector<std::string>* changes)
{
    if (!Same(old, now)) {
        changes->push_back(std::string(field) + " " + TextOf(old) + " -> " + TextOf(now));
    }
}

/// How many entries of two lists differ, and how their lengths do.
template <typename Entry>
void AddList(const char* what, const Array1<Entry>& old, const Array1<Entry>& now, std::vector<std::string>* changes)
{
    if (old.Count() != now.Count()) {
        changes->push_back(std::string(what) + " " + std::to_string(old.Count()) + " -> " +
                           std::to_string(now.Count()));
        return;
    }
    int32_t count = 0;
    for (int32_t i = 1; i <= old.Count(); ++i) {
        count += Same(old[i], now[i]) ? 0 : 1;
    }
    if (count > 0) {
        changes->push_back(std::to_string(count) + " " + what + " changed");
    }
}

std::vector<std::string> Changes(const MvmBone& old, const MvmBone& now)
{
    std::vector<std::string> changes;
    AddChange("position", old.Position, now.Position, &changes);
    AddChange("rotation", old.Rotation, now.Rotation, &changes);
    if (old.ExtraText != now.ExtraText) {
        changes.emplace_back("other lines changed");
    }
    return changes;
}

std::vector<std::string> Changes(const MvmMaterial& old, const MvmMaterial& now)
{
    std::vector<std::string> changes;
    AddChange("colormap", old.ColorMap, now.ColorMap, &changes);
    AddChange("opacitymap", old.OpacityMap, now.OpacityMap, &changes);
    AddChange("bumpmap", old.BumpMap, now.BumpMap, &changes);
    return changes;
}

std::vector<std::string> Changes(const MvmMesh& old, const MvmMesh& now)
{
    std::vector<std::string> changes;
    if (old.IsSkin != now.IsSkin) {
        changes.emplace_back(now.IsSkin ? "became a skin" : "is no skin any more");
    }
    AddList("materials", old.MeshMaterials, now.MeshMaterials, &changes);
    AddList("texture coordinates", old.TexCoords, now.TexCoords, &changes);
    AddList("normals", old.Normals, now.Normals, &changes);
    AddList("faces", old.Faces, now.Faces, &changes);
    return changes;
}

std::vector<std::string> Changes(const MvmInstance& old, const MvmInstance& now)
{
    std::vector<std::string> changes;
    AddChange("mesh", old.Mesh, now.Mesh, &changes);
    AddChange("position", old.Position, now.Position, &changes);
    AddChange("rotation", old.Rotation, now.Rotation, &changes);
    AddChange("scale", old.Scale, now.Scale, &changes);
    return changes;
}

/// Compares the records of one kind and gives the pairs of numbers of those that both have, in the new order.
template <typename Record>
std::vector<std::pair<int32_t, int32_t>> CompareRecords(RecordKind kind, const Array1<Record>& old,
                                                        const Array1<Record>& now, ModelDifferences* differences)
{
    const std::map<Key, int32_t> oldNumbers = NumbersByKey(old);
    std::map<int32_t, Key> newKeys;
    for (const auto& [key, number] : NumbersByKey(now)) {
        newKeys[number] = key;
    }
    std::vector<bool> found(static_cast<size_t>(old.Count()) + 1);
    std::vector<std::pair<int32_t, int32_t>> pairs;
    for (const auto& [number, key] : newKeys) {
        const auto before = oldNumbers.find(key);
        const std::string name = Utf8FromCodePage(key.first);
        if (before == oldNumbers.end()) {
            differences->Records.push_back({kind, name, {"added"}});
            continue;
        }
        found[static_cast<size_t>(before->second)] = true;
        differences->SameOrder = differences->SameOrder && (pairs.empty() || pairs.back().first < before->second);
        pairs.emplace_back(before->second, number);
        if (std::vector<std::string> changes = Changes(old[before->second], now[number]); !changes.empty()) {
            differences->Records.push_back({kind, name, std::move(changes)});
        }
    }
    for (int32_t i = 1; i <= old.Count(); ++i) {
        if (!found[static_cast<size_t>(i)]) {
            differences->Records.push_back({kind, Utf8FromCodePage(old[i].Name), {"removed"}});
        }
    }
    return pairs;
}

/// For each vertex of the new mesh its counterpart in the old one, 0 for none; entry 0 is not used. By number where the
/// counts are equal, else the k-th vertex at a place is the k-th there.
std::vector<int32_t> Counterparts(const MvmMesh& old, const MvmMesh& now)
{
    std::vector<int32_t> result(static_cast<size_t>(now.VertexCount()) + 1);
    if (old.VertexCount() == now.VertexCount()) {
        for (size_t i = 1; i < result.size(); ++i) {
            result[i] = static_cast<int32_t>(i);
        }
        return result;
    }
    std::map<std::array<uint32_t, 3>, std::vector<int32_t>> waiting; // the last one first
    const auto bits = [](float coordinate) { return std::bit_cast<uint32_t>(coordinate + 0.0F); };
    const auto place = [bits](const Vec3& at) { return std::array{bits(at.X), bits(at.Y), bits(at.Z)}; };
    for (int32_t v = old.VertexCount(); v >= 1; --v) {
        waiting[place(old.Vertices[v])].push_back(v);
    }
    for (int32_t v = 1; v <= now.VertexCount(); ++v) {
        const auto at = waiting.find(place(now.Vertices[v]));
        if (at != waiting.end() && !at->second.empty()) {
            result[static_cast<size_t>(v)] = at->second.back();
            at->second.pop_back();
        }
    }
    return result;
}

void CompareVertices(const MvmMesh& old, const MvmMesh& now, const std::vector<int32_t>& counterparts,
                     ModelDifferences* differences)
{
    VertexDifference difference{.Mesh = Utf8FromCodePage(now.Name),
                                .OldCount = old.VertexCount(),
                                .NewCount = now.VertexCount(),
                                .ByPosition = old.VertexCount() != now.VertexCount()};
    for (int32_t v = 1; v <= std::min(old.VertexCount(), now.VertexCount()) && !difference.ByPosition; ++v) {
        const Vec3& a = old.Vertices[v];
        const Vec3& b = now.Vertices[v];
        if (!Same(a, b)) {
            difference.Moved.push_back(v);
            difference.Farthest =
                std::max(difference.Farthest, std::hypot(static_cast<double>(a.X) - static_cast<double>(b.X),
                                                         static_cast<double>(a.Y) - static_cast<double>(b.Y),
                                                         static_cast<double>(a.Z) - static_cast<double>(b.Z)));
        }
    }
    difference.NotCompared = static_cast<int32_t>(std::count(counterparts.begin() + 1, counterparts.end(), 0));
    if (difference.ByPosition || !difference.Moved.empty()) {
        differences->Vertices.push_back(std::move(difference));
    }
}

/// Keys of bones: entry 0 stands for none.
std::vector<Key> BoneKeys(const Array1<MvmBone>& bones)
{
    std::vector<Key> keys(static_cast<size_t>(bones.Count()) + 1);
    for (const auto& [key, number] : NumbersByKey(bones)) {
        keys[static_cast<size_t>(number)] = key;
    }
    return keys;
}

const Key& KeyAt(const std::vector<Key>& keys, const Array1<int16_t>& bones, int32_t vertex)
{
    const int16_t bone = bones.Has(vertex) ? bones[vertex] : int16_t{0};
    return keys[bone > 0 && static_cast<size_t>(bone) < keys.size() ? static_cast<size_t>(bone) : 0];
}

void CompareAssignments(const MvmMesh& old, const MvmMesh& now, const std::vector<int32_t>& counterparts,
                        const std::vector<Key>& oldKeys, const std::vector<Key>& newKeys, ModelDifferences* differences)
{
    std::map<std::pair<Key, Key>, std::vector<int32_t>> moves;
    for (int32_t v = 1; v <= now.VertexCount(); ++v) {
        if (const int32_t before = counterparts[static_cast<size_t>(v)]) {
            const Key& from = KeyAt(oldKeys, old.VertexBones, before);
            const Key& to = KeyAt(newKeys, now.VertexBones, v);
            if (from != to) {
                moves[{from, to}].push_back(v);
            }
        }
    }
    for (auto& [move, vertices] : moves) {
        differences->Assignments.push_back({Utf8FromCodePage(now.Name), Utf8FromCodePage(move.first.first),
                                            Utf8FromCodePage(move.second.first), std::move(vertices)});
    }
}

} // namespace

KeptModel TakeModel()
{
    KeptModel kept;
    std::swap(kept.Bones, Bones);
    std::swap(kept.Materials, Materials);
    std::swap(kept.Meshes, Meshes);
    std::swap(kept.Instances, Instances);
    ForgetModel();
    return kept;
}

ModelDifferences CompareModels(const KeptModel& old)
{
    ModelDifferences differences;
    CompareRecords(RecordKind::Bone, old.Bones, Bones, &differences);
    CompareRecords(RecordKind::Material, old.Materials, Materials, &differences);
    const auto meshes = CompareRecords(RecordKind::Mesh, old.Meshes, Meshes, &differences);
    CompareRecords(RecordKind::Instance, old.Instances, Instances, &differences);
    const std::vector<Key> oldKeys = BoneKeys(old.Bones);
    const std::vector<Key> newKeys = BoneKeys(Bones);
    for (const auto& [before, mesh] : meshes) {
        const std::vector<int32_t> counterparts = Counterparts(old.Meshes[before], Meshes[mesh]);
        CompareVertices(old.Meshes[before], Meshes[mesh], counterparts, &differences);
        CompareAssignments(old.Meshes[before], Meshes[mesh], counterparts, oldKeys, newKeys, &differences);
    }
    return differences;
}
