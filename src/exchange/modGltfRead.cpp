#include "modGltfRead.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <utility>

#include "app/modMath.h"
#include "modDroppedWeights.h"
#include "modGltfAccessor.h"
#include "modGltfBytes.h"
#include "modGltfNodes.h"
#include "modGltfSkins.h"

namespace {

/// What is read so far.
struct Reading {
    const tinygltf::Model& File;
    ExchangeModel* Model;
    std::string* Error;
    NodeTree Tree{};
    std::vector<SkinInFile> Skins{};
    size_t OtherShapes = 0; ///< primitives of points and lines
    bool HasMorphs = false;

    bool Fail(std::string text) const
    {
        *Error = std::move(text);
        return false;
    }
};

/// The triangles of a primitive, from any of its three forms.
std::vector<std::array<uint32_t, 3>> TrianglesOf(const std::vector<uint32_t>& corners, int mode)
{
    std::vector<std::array<uint32_t, 3>> triangles;
    if (mode == TINYGLTF_MODE_TRIANGLES) {
        for (size_t i = 0; i + 2 < corners.size(); i += 3) {
            triangles.push_back({corners[i], corners[i + 1], corners[i + 2]});
        }
        return triangles;
    }
    for (size_t i = 0; i + 2 < corners.size(); ++i) {
        if (mode == TINYGLTF_MODE_TRIANGLE_FAN) {
            triangles.push_back({corners[i + 1], corners[i + 2], corners[0]});
        } else {
            triangles.push_back({corners[i], corners[i + 1 + i % 2], corners[i + 2 - i % 2]});
        }
    }
    return triangles;
}

bool ReadTriangles(Reading* reading, const tinygltf::Primitive& primitive, size_t vertices, uint32_t first,
                   ExchangePart* part)
{
    std::vector<uint32_t> corners;
    if (primitive.indices >= 0) {
        if (!ReadWholes(reading->File, primitive.indices, 1, &corners, reading->Error)) {
            return false;
        }
    } else {
        for (size_t i = 0; i < vertices; ++i) {
            corners.push_back(static_cast<uint32_t>(i));
        }
    }
    for (uint32_t& corner : corners) {
        if (corner >= vertices) {
            return reading->Fail("A triangle names vertex " + std::to_string(corner) + " of " +
                                 std::to_string(vertices) + ".");
        }
        corner += first;
    }
    const int mode = primitive.mode < 0 ? TINYGLTF_MODE_TRIANGLES : primitive.mode;
    part->Triangles = TrianglesOf(corners, mode);
    return true;
}

/// The attribute of a primitive, if it has it: `width` numbers for each vertex.
bool ReadAttribute(Reading* reading, const tinygltf::Primitive& primitive, const std::string& name, size_t width,
                   size_t vertices, std::vector<float>* numbers)
{
    const auto attribute = primitive.attributes.find(name);
    if (attribute == primitive.attributes.end()) {
        return true;
    }
    if (!ReadFloats(reading->File, attribute->second, width, numbers, reading->Error)) {
        return false;
    }
    return numbers->size() == width * vertices ||
           reading->Fail("A mesh has more or fewer entries of " + name + " than vertices.");
}

void GiveNormals(ExchangeMesh* mesh, const ExchangePart& part)
{
    for (const auto& triangle : part.Triangles) {
        const Vec3 normal = FaceNormal(mesh->Vertices[triangle[2]].Place, mesh->Vertices[triangle[1]].Place,
                                       mesh->Vertices[triangle[0]].Place);
        for (const uint32_t corner : triangle) {
            Vec3& sum = mesh->Vertices[corner].Normal;
            sum = {sum.X + normal.X, sum.Y + normal.Y, sum.Z + normal.Z};
        }
    }
    for (const auto& triangle : part.Triangles) {
        for (const uint32_t corner : triangle) {
            mesh->Vertices[corner].Normal = VecNormalize(mesh->Vertices[corner].Normal);
        }
    }
}

/// Adds a primitive's vertices and triangles to the mesh.
bool ReadPrimitive(Reading* reading, const tinygltf::Primitive& primitive, const SkinInFile* skin, ExchangeMesh* mesh)
{
    const auto places = primitive.attributes.find("POSITION");
    std::vector<float> numbers;
    if (places == primitive.attributes.end()) {
        return true; // nothing to be seen, as the format says
    }
    if (!ReadFloats(reading->File, places->second, 3, &numbers, reading->Error)) {
        return false;
    }
    const size_t count = numbers.size() / 3;
    const auto first = static_cast<uint32_t>(mesh->Vertices.size());
    if (mesh->Vertices.size() + count > INT32_MAX) {
        return reading->Fail("A mesh has too many vertices.");
    }
    std::vector<float> normals;
    std::array<std::vector<float>, 3> pairs;
    std::vector<VertexJoint> joints;
    if (!ReadAttribute(reading, primitive, "NORMAL", 3, count, &normals) ||
        !ReadAttribute(reading, primitive, "TEXCOORD_0", 2, count, &pairs[0]) ||
        !ReadAttribute(reading, primitive, "TEXCOORD_1", 2, count, &pairs[1]) ||
        !ReadAttribute(reading, primitive, "TEXCOORD_2", 2, count, &pairs[2]) ||
        (skin != nullptr &&
         !ReadJoints(reading->File, primitive, count, skin->Bones.size(), &joints, reading->Error))) {
        return false;
    }
    for (size_t i = 0; i < count; ++i) {
        ExchangeVertex& vertex = mesh->Vertices.emplace_back();
        vertex.Place = {numbers[3 * i], numbers[3 * i + 1], numbers[3 * i + 2]};
        if (!normals.empty()) {
            vertex.Normal = {normals[3 * i], normals[3 * i + 1], normals[3 * i + 2]};
        }
        const std::array<Vec2*, 3> targets = {&vertex.TexCoord, &vertex.Number, &vertex.Numbers};
        for (size_t set = 0; set < targets.size(); ++set) {
            if (!pairs[set].empty()) {
                *targets[set] = {pairs[set][2 * i], pairs[set][2 * i + 1]};
            }
        }
        if (skin != nullptr && joints[i].Joint >= 0) {
            const auto joint = static_cast<size_t>(joints[i].Joint);
            vertex.Dropped = joints[i].Dropped;
            vertex.Bone = skin->Bones[joint];
            if (skin->IsLoose) {
                vertex.Place = Transformed(skin->ToScene[joint], vertex.Place);
                const std::optional<Matrix> back = Inverse(skin->ToScene[joint]);
                vertex.Normal = back ? TransformedNormal(*back, vertex.Normal) : vertex.Normal;
            }
        }
    }
    ExchangePart part;
    part.Material = primitive.material >= 0 && static_cast<size_t>(primitive.material) < reading->File.materials.size()
                        ? primitive.material
                        : -1;
    if (!ReadTriangles(reading, primitive, count, first, &part)) {
        return false;
    }
    if (normals.empty()) {
        GiveNormals(mesh, part);
    }
    mesh->Parts.push_back(std::move(part));
    return true;
}

/// Carries the vertices by a matrix that a placement cannot hold.
void Bake(const Matrix& matrix, ExchangeMesh* mesh)
{
    const std::optional<Matrix> inverse = Inverse(matrix);
    for (ExchangeVertex& vertex : mesh->Vertices) {
        vertex.Place = Transformed(matrix, vertex.Place);
        vertex.Normal = inverse ? TransformedNormal(*inverse, vertex.Normal) : Vec3{};
    }
    if (IsMirrored(matrix)) {
        SwapSides(mesh);
    }
}

bool IsTurned(const Placing& placing)
{
    constexpr float upright = 1e-3F; // degrees
    return std::fabs(placing.Degrees.X) > upright || std::fabs(placing.Degrees.Y) > upright ||
           std::fabs(placing.Degrees.Z) > upright;
}

bool ReadMesh(Reading* reading, const tinygltf::Mesh& own, const SkinInFile* skin, ExchangeMesh* mesh)
{
    mesh->Name = own.name;
    mesh->IsSkinned = skin != nullptr;
    for (const tinygltf::Primitive& primitive : own.primitives) {
        reading->HasMorphs = reading->HasMorphs || !primitive.targets.empty();
        const bool isSurface = primitive.mode < 0 || primitive.mode == TINYGLTF_MODE_TRIANGLES ||
                               primitive.mode == TINYGLTF_MODE_TRIANGLE_STRIP ||
                               primitive.mode == TINYGLTF_MODE_TRIANGLE_FAN;
        if (!isSurface) {
            ++reading->OtherShapes;
        } else if (!ReadPrimitive(reading, primitive, skin, mesh)) {
            return false;
        }
    }
    return true;
}

/// Puts a skinned mesh where its bind pose has it; a turn or an uneven scale goes into its vertices, since the instance
/// of a skin holds neither.
void PlaceSkinned(const SkinInFile& skin, const std::string& name, ExchangeMesh* mesh)
{
    for (const int32_t bone : skin.Bones) {
        if (bone >= 0) {
            mesh->Joints.push_back(bone);
        }
    }
    const std::optional<Placing> placing = PlacingOf(skin.Placing);
    if (placing && !IsTurned(*placing)) {
        mesh->Placements.push_back({name, placing->Move, {}, placing->Scale});
    } else {
        Bake(skin.Placing, mesh);
        mesh->Placements.push_back({name});
    }
}

/// Instances that are mirrored come so; nodes of other programs that mirror on one axis do not.
bool HasNegativeScale(const tinygltf::Node& node)
{
    const std::vector<double>& scale = node.scale;
    return scale.size() == 3 && scale[0] < 0 && scale[1] < 0 && scale[2] < 0;
}

/// Reads the mesh of a node, or one more place of it. `known` has the meshes read so far that are not skinned.
bool ReadNode(Reading* reading, int node, std::map<int, size_t>* known)
{
    const tinygltf::Node& own = reading->File.nodes[static_cast<size_t>(node)];
    if (own.mesh < 0) {
        return true;
    }
    if (static_cast<size_t>(own.mesh) >= reading->File.meshes.size() ||
        (own.skin >= 0 && static_cast<size_t>(own.skin) >= reading->File.skins.size())) {
        return reading->Fail("Node " + std::to_string(node) + " names a mesh or a skin that is not there.");
    }
    const SkinInFile* const skin = own.skin < 0 ? nullptr : &reading->Skins[static_cast<size_t>(own.skin)];
    const Matrix& world = reading->Tree.Worlds[static_cast<size_t>(node)];
    std::optional<Placing> placing = PlacingOf(world);
    if (placing && placing->Scale < 0 && !HasNegativeScale(own)) {
        placing.reset();
    }
    const auto before = known->find(own.mesh);
    if (skin == nullptr && placing && before != known->end()) {
        reading->Model->Meshes[before->second].Placements.push_back(
            {own.name, placing->Move, placing->Degrees, placing->Scale});
        return true;
    }
    ExchangeMesh mesh;
    if (!ReadMesh(reading, reading->File.meshes[static_cast<size_t>(own.mesh)], skin, &mesh)) {
        return false;
    }
    if (mesh.Name.empty()) {
        mesh.Name = own.name;
    }
    const bool hasTriangles = std::any_of(mesh.Parts.begin(), mesh.Parts.end(),
                                          [](const ExchangePart& part) { return !part.Triangles.empty(); });
    if (!hasTriangles) {
        return true;
    }
    if (skin != nullptr) {
        PlaceSkinned(*skin, own.name, &mesh);
    } else if (placing) {
        mesh.Placements.push_back({own.name, placing->Move, placing->Degrees, placing->Scale});
        known->emplace(own.mesh, reading->Model->Meshes.size());
    } else {
        Bake(world, &mesh);
        mesh.Placements.push_back({own.name});
    }
    reading->Model->Meshes.push_back(std::move(mesh));
    return true;
}

/// Primitives, meshes and nodes can share what lies in the file once, but each takes memory of its own.
bool IsTooLarge(const Reading& reading)
{
    constexpr size_t most = size_t{1} << 23; // vertices and indices
    const tinygltf::Model& file = reading.File;
    size_t all = 0;
    const auto add = [&](int accessor) {
        if (accessor >= 0 && static_cast<size_t>(accessor) < file.accessors.size()) {
            all += std::min(file.accessors[static_cast<size_t>(accessor)].count, most + 1);
        }
    };
    for (const int node : reading.Tree.Order) {
        const int mesh = file.nodes[static_cast<size_t>(node)].mesh;
        if (mesh < 0 || static_cast<size_t>(mesh) >= file.meshes.size()) {
            continue;
        }
        for (const tinygltf::Primitive& primitive : file.meshes[static_cast<size_t>(mesh)].primitives) {
            const auto places = primitive.attributes.find("POSITION");
            add(places == primitive.attributes.end() ? -1 : places->second);
            add(primitive.indices);
            if (all > most) {
                return true;
            }
        }
    }
    return false;
}

void ReadImages(const tinygltf::Model& file, ExchangeModel* model)
{
    size_t left = 0; // images that share their bytes are left empty when they come to more than the file holds
    for (const tinygltf::Buffer& buffer : file.buffers) {
        left += buffer.data.size();
    }
    for (const tinygltf::Image& image : file.images) {
        ExchangeImage& picture = model->Images.emplace_back();
        picture.Name = image.name.empty() ? image.uri.substr(0, image.uri.find_last_of('.')) : image.name;
        if (image.bufferView >= 0 && static_cast<size_t>(image.bufferView) < file.bufferViews.size()) {
            const tinygltf::BufferView& view = file.bufferViews[static_cast<size_t>(image.bufferView)];
            if (view.byteLength > left) {
                continue;
            }
            left -= view.byteLength;
            const auto& bytes = file.buffers[static_cast<size_t>(view.buffer)].data;
            const auto start = bytes.begin() + static_cast<std::ptrdiff_t>(view.byteOffset);
            picture.Bytes.assign(start, start + static_cast<std::ptrdiff_t>(view.byteLength));
        } else {
            picture.Bytes.assign(image.image.begin(), image.image.end());
        }
    }
}

/// What light from 0 to 1 is as a shown value (IEC 61966-2-1, sRGB).
double ShownOf(double light)
{
    return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

void ReadMaterials(const tinygltf::Model& file, ExchangeModel* model)
{
    for (const tinygltf::Material& own : file.materials) {
        ExchangeMaterial& material = model->Materials.emplace_back();
        material.Name = own.name;
        material.HasOpacity = own.alphaMode != "OPAQUE";
        const auto& surface = own.pbrMetallicRoughness;
        for (size_t i = 0; i < 3 && surface.baseColorFactor.size() >= 3; ++i) {
            material.Color[i] = static_cast<float>(ShownOf(std::clamp(surface.baseColorFactor[i], 0.0, 1.0)));
        }
        const int texture = surface.baseColorTexture.index;
        if (texture >= 0 && static_cast<size_t>(texture) < file.textures.size()) {
            const int image = file.textures[static_cast<size_t>(texture)].source;
            material.Image = image >= 0 && static_cast<size_t>(image) < model->Images.size() ? image : -1;
        }
    }
}

void TakeRecord(const tinygltf::Model& file, ExchangeModel* model)
{
    if (file.extras.IsObject() && file.extras.Has("beastwright") && file.extras.Get("beastwright").IsString()) {
        model->Record = file.extras.Get("beastwright").Get<std::string>();
    }
}

void TellOfLosses(const Reading& reading)
{
    std::vector<std::string>& notes = reading.Model->Notes;
    if (const std::string told = ToldWeights(*reading.Model); !told.empty()) {
        notes.push_back(told);
    }
    const auto leave = [&](bool wanted, const char* what) {
        if (wanted) {
            notes.push_back(std::string(what) + " are left out.");
        }
    };
    leave(!reading.File.animations.empty(), "Animations");
    leave(reading.HasMorphs, "Morph targets");
    leave(!reading.File.lights.empty(), "Lights");
    leave(!reading.File.cameras.empty(), "Cameras");
    leave(reading.OtherShapes > 0, "Points and lines");
    const bool isPosed =
        std::any_of(reading.Skins.begin(), reading.Skins.end(), [](const SkinInFile& skin) { return skin.IsPosed; });
    if (isPosed) {
        notes.emplace_back("The skeleton stands in a pose; the mesh is taken as it was bound to it.");
    }
}

} // namespace

bool ReadGltf(const std::string& bytes, const std::string& folder, ExchangeModel* model, std::string* error)
{
    tinygltf::Model file;
    if (!LoadGltf(bytes, folder, &file, error)) {
        return false;
    }
    Reading reading{.File = file, .Model = model, .Error = error};
    if (!ReadNodes(file, &reading.Tree, error) || !ReadSkins(file, reading.Tree, model, &reading.Skins, error)) {
        return false;
    }
    if (IsTooLarge(reading)) {
        return reading.Fail("It holds more vertices than a model can.");
    }
    ReadImages(file, model);
    ReadMaterials(file, model);
    std::map<int, size_t> known;
    for (const int node : reading.Tree.Order) {
        if (!ReadNode(&reading, node, &known)) {
            return false;
        }
    }
    if (model->Meshes.empty()) {
        return reading.Fail("It holds no mesh with a triangle.");
    }
    TakeRecord(file, model);
    TellOfLosses(reading);
    return true;
}
