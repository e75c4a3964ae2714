#include "modMeshRest.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>

#include "modNumbering.h"

namespace {

bool TakeNumber(float number, int16_t* result)
{
    if (!(number >= INT16_MIN && number <= INT16_MAX) || number != std::floor(number)) {
        return false;
    }
    *result = static_cast<int16_t>(number);
    return true;
}

/// Puts `value` at `index`, if that is above 0.
template <typename T>
void PutAt(int16_t index, const T& value, Array1<T>* array)
{
    if (index < 1) {
        return;
    }
    if (index > array->Count()) {
        array->Items.resize(static_cast<size_t>(index));
    }
    (*array)[index] = value;
}

/// The arrays as the numbers of the corners tell them. Faces have the number of their part as material, from 1.
bool FromNumbers(const ExchangeMesh& exchanged, uint32_t salt, const std::vector<int16_t>& bones, MvmMesh* mesh)
{
    for (size_t part = 0; part < exchanged.Parts.size(); ++part) {
        for (const auto& triangle : exchanged.Parts[part].Triangles) {
            MvmFace face;
            for (size_t corner = 0; corner < 3; ++corner) {
                const ExchangeVertex& vertex = exchanged.Vertices[triangle[corner]];
                const int32_t number = NumberFrom(vertex.Number, salt);
                if (number < 1 || number > INT16_MAX || !TakeNumber(vertex.Numbers.U, &face.TexCoord[corner]) ||
                    !TakeNumber(vertex.Numbers.V, &face.Normal[corner])) {
                    return false;
                }
                face.Vertex[corner] = static_cast<int16_t>(number);
                PutAt(face.Vertex[corner], vertex.Place, &mesh->Vertices);
                PutAt(face.TexCoord[corner], Vec2{vertex.TexCoord.U, 1 - vertex.TexCoord.V}, &mesh->TexCoords);
                PutAt(face.Normal[corner], vertex.Normal, &mesh->Normals);
                const int16_t bone = vertex.Bone < 0 ? int16_t{0} : bones[static_cast<size_t>(vertex.Bone)];
                PutAt(face.Vertex[corner], bone, &mesh->VertexBones);
            }
            face.Material = static_cast<int16_t>(part + 1);
            mesh->Faces.Add(face);
        }
    }
    return true;
}

// The rest: numbers of 32 bits, least byte first. Counts stand in front of what they count.

struct RestWriter {
    std::string Bytes{};

    void Put(int32_t number)
    {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            Bytes += static_cast<char>(static_cast<uint32_t>(number) >> shift & 0xFFU);
        }
    }
    void Put(float number) { Put(static_cast<int32_t>(std::bit_cast<uint32_t>(number))); }
    void Put(const Vec2& pair)
    {
        Put(pair.U);
        Put(pair.V);
    }
    void Put(const Vec3& triple)
    {
        Put(triple.X);
        Put(triple.Y);
        Put(triple.Z);
    }
};

struct RestReader {
    const std::string& Bytes;
    size_t At = 0;
    bool Good = true;

    int32_t Number()
    {
        if (Bytes.size() - At < 4) {
            Good = false;
            return 0;
        }
        uint32_t word = 0;
        for (unsigned shift = 0; shift < 32; shift += 8) {
            word |= static_cast<uint32_t>(static_cast<unsigned char>(Bytes[At++])) << shift;
        }
        return static_cast<int32_t>(word);
    }
    /// A count of things of at least `bytes` bytes, which must all still come.
    int32_t Count(size_t bytes)
    {
        const int32_t count = Number();
        Good = Good && count >= 0 && static_cast<size_t>(count) <= (Bytes.size() - At) / bytes;
        return Good ? count : 0;
    }
    int16_t Short()
    {
        const int32_t number = Number();
        Good = Good && number >= INT16_MIN && number <= INT16_MAX;
        return static_cast<int16_t>(number);
    }
    float Float() { return std::bit_cast<float>(static_cast<uint32_t>(Number())); }
    void Take(Vec2* pair)
    {
        pair->U = Float();
        pair->V = Float();
    }
    void Take(Vec3* triple)
    {
        triple->X = Float();
        triple->Y = Float();
        triple->Z = Float();
    }
};

template <typename T>
bool SameBits(const T& a, const T& b)
{
    using Words = std::array<uint32_t, sizeof(T) / sizeof(uint32_t)>;
    return std::bit_cast<Words>(a) == std::bit_cast<Words>(b);
}

/// The entries that differ from what is told, and the count of all.
template <typename T>
void PutDifferences(const Array1<T>& truth, const Array1<T>& told, RestWriter* rest)
{
    std::vector<int32_t> differing;
    for (int32_t i = 1; i <= truth.Count(); ++i) {
        if (!told.Has(i) || !SameBits(truth[i], told[i])) {
            differing.push_back(i);
        }
    }
    rest->Put(truth.Count());
    rest->Put(static_cast<int32_t>(differing.size()));
    for (const int32_t i : differing) {
        rest->Put(i);
        rest->Put(truth[i]);
    }
}

/// Sets the count of `array`, which the told entries and those that follow must account for, and those that follow.
template <typename T>
void TakeDifferences(RestReader* rest, Array1<T>* array)
{
    const int32_t count = rest->Number();
    const int32_t differing = rest->Count(4 + sizeof(T));
    // It can be below the told count: a face may name an entry that is not there.
    if (!rest->Good || count < 0 || count - array->Count() > differing) {
        rest->Good = false;
        return;
    }
    array->Items.resize(static_cast<size_t>(count));
    for (int32_t i = 0; i < differing && rest->Good; ++i) {
        const int32_t index = rest->Number();
        T value{};
        rest->Take(&value);
        if (array->Has(index)) {
            (*array)[index] = value;
        } else {
            rest->Good = false;
        }
    }
}

void PutFace(const MvmFace& face, RestWriter* rest)
{
    for (const auto* numbers : {&face.Vertex, &face.TexCoord, &face.Normal}) {
        for (const int16_t number : *numbers) {
            rest->Put(static_cast<int32_t>(number));
        }
    }
    rest->Put(static_cast<int32_t>(face.Material));
}

MvmFace TakeFace(RestReader* rest)
{
    MvmFace face;
    for (auto* numbers : {&face.Vertex, &face.TexCoord, &face.Normal}) {
        for (int16_t& number : *numbers) {
            number = rest->Short();
        }
    }
    face.Material = rest->Short();
    return face;
}

/// Runs of faces of one part, in the order of the faces that travelled.
void PutOrder(const MvmMesh& mesh, const std::vector<int16_t>& materials, const std::vector<int32_t>& left,
              RestWriter* rest)
{
    std::vector<std::array<int32_t, 2>> runs;
    auto skipped = left.begin();
    for (int32_t i = 1; i <= mesh.FaceCount(); ++i) {
        if (skipped != left.end() && *skipped == i) {
            ++skipped;
            continue;
        }
        const auto part = static_cast<int32_t>(std::find(materials.begin(), materials.end(), mesh.Faces[i].Material) -
                                               materials.begin());
        if (runs.empty() || runs.back()[0] != part) {
            runs.push_back({part, 0});
        }
        ++runs.back()[1];
    }
    rest->Put(static_cast<int32_t>(materials.size()));
    for (const int16_t material : materials) {
        rest->Put(static_cast<int32_t>(material));
    }
    rest->Put(static_cast<int32_t>(runs.size()));
    for (const auto& [part, count] : runs) {
        rest->Put(part);
        rest->Put(count);
    }
}

/// The faces that travelled, in their order and with their materials.
bool TakeOrder(RestReader* rest, const ExchangeMesh& exchanged, const std::vector<MvmFace>& travelled,
               std::vector<MvmFace>* ordered)
{
    std::vector<int16_t> materials(static_cast<size_t>(rest->Count(4)));
    for (int16_t& material : materials) {
        material = rest->Short();
    }
    if (!rest->Good || materials.size() != exchanged.Parts.size()) {
        return false;
    }
    std::vector<size_t> next;
    size_t all = 0;
    for (const ExchangePart& part : exchanged.Parts) {
        next.push_back(all);
        all += part.Triangles.size();
    }
    std::vector<size_t> ends(next.begin() + (next.empty() ? 0 : 1), next.end());
    ends.push_back(all);
    const int32_t runs = rest->Count(8);
    for (int32_t run = 0; run < runs && rest->Good; ++run) {
        const int32_t part = rest->Number();
        const int32_t count = rest->Number();
        if (part < 0 || static_cast<size_t>(part) >= next.size() || count < 0 ||
            static_cast<size_t>(count) > ends[static_cast<size_t>(part)] - next[static_cast<size_t>(part)]) {
            return false;
        }
        for (int32_t i = 0; i < count; ++i) {
            MvmFace face = travelled[next[static_cast<size_t>(part)]++];
            face.Material = materials[static_cast<size_t>(part)];
            ordered->push_back(face);
        }
    }
    return rest->Good && ordered->size() == all;
}

bool TakeLeftFaces(RestReader* rest, const std::vector<MvmFace>& travelled, MvmMesh* mesh)
{
    const int32_t left = rest->Count(44);
    auto next = travelled.begin();
    for (int32_t i = 0; i < left && rest->Good; ++i) {
        const int32_t index = rest->Number();
        while (mesh->FaceCount() + 1 < index && next != travelled.end()) {
            mesh->Faces.Add(*next++);
        }
        if (mesh->FaceCount() + 1 != index) {
            return false;
        }
        mesh->Faces.Add(TakeFace(rest));
    }
    mesh->Faces.Items.insert(mesh->Faces.Items.end(), next, travelled.end());
    return rest->Good;
}

} // namespace

std::string RestOfMesh(const MvmMesh& mesh, const ExchangeMesh& exchanged, uint32_t salt,
                       const std::vector<int16_t>& materials, const std::vector<int32_t>& left)
{
    std::vector<int16_t> bones(static_cast<size_t>(BoneCount()));
    for (size_t bone = 0; bone < bones.size(); ++bone) {
        bones[bone] = static_cast<int16_t>(bone + 1);
    }
    MvmMesh told;
    FromNumbers(exchanged, salt, bones, &told);
    RestWriter rest;
    PutDifferences(mesh.Vertices, told.Vertices, &rest);
    PutDifferences(mesh.TexCoords, told.TexCoords, &rest);
    PutDifferences(mesh.Normals, told.Normals, &rest);
    // Bones of vertices that no face names. Numbers into Bones, since the model's own bones come with the same record.
    std::vector<std::array<int32_t, 2>> differing;
    for (int32_t i = 1; i <= (exchanged.IsSkinned ? mesh.VertexBones.Count() : 0); ++i) {
        if ((told.VertexBones.Has(i) ? told.VertexBones[i] : 0) != mesh.VertexBones[i]) {
            differing.push_back({i, mesh.VertexBones[i]});
        }
    }
    rest.Put(static_cast<int32_t>(differing.size()));
    for (const auto& [vertex, bone] : differing) {
        rest.Put(vertex);
        rest.Put(bone);
    }
    PutOrder(mesh, materials, left, &rest);
    rest.Put(static_cast<int32_t>(left.size()));
    for (const int32_t index : left) {
        rest.Put(index);
        PutFace(mesh.Faces[index], &rest);
    }
    return rest.Bytes;
}

bool MeshFromRest(const std::string& rest, const ExchangeMesh& exchanged, uint32_t salt,
                  const std::vector<int16_t>& bones, MvmMesh* mesh)
{
    MvmMesh told;
    if (!FromNumbers(exchanged, salt, bones, &told)) {
        return false;
    }
    RestReader reader{rest};
    TakeDifferences(&reader, &told.Vertices);
    TakeDifferences(&reader, &told.TexCoords);
    TakeDifferences(&reader, &told.Normals);
    told.VertexBones.Items.resize(told.Vertices.Items.size());
    const int32_t differing = reader.Count(8);
    for (int32_t i = 0; i < differing && reader.Good; ++i) {
        const int32_t vertex = reader.Number();
        const int16_t bone = reader.Short();
        if (!told.VertexBones.Has(vertex)) {
            return false;
        }
        told.VertexBones[vertex] = bone;
    }
    const std::vector<MvmFace> travelled = std::move(told.Faces.Items);
    told.Faces.Items.clear();
    std::vector<MvmFace> ordered;
    if (!reader.Good || !TakeOrder(&reader, exchanged, travelled, &ordered) ||
        !TakeLeftFaces(&reader, ordered, &told) || reader.At != rest.size()) {
        return false;
    }
    mesh->Vertices = std::move(told.Vertices);
    mesh->TexCoords = std::move(told.TexCoords);
    mesh->Normals = std::move(told.Normals);
    mesh->Faces = std::move(told.Faces);
    if (mesh->IsSkin) {
        mesh->VertexBones = std::move(told.VertexBones);
    }
    return true;
}
