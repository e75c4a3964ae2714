#include "modAssimpRead.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string_view>

#include <assimp/config.h>
#include <assimp/DefaultLogger.hpp>
#include <assimp/Importer.hpp>
#include <assimp/LogStream.hpp>
#include <assimp/postprocess.h>

#include "app/modMath.h"
#include "modAssimpBones.h"
#include "modAssimpFiles.h"
#include "modAssimpMaterials.h"
#include "modAssimpTexts.h"
#include "modDroppedWeights.h"
#include "modFiles.h"

namespace {

using Matrix3 = aiMatrix3x3t<double>;

/// Counts the polygons of which Assimp says that it could not cut them up well.
class PolygonWatch : public Assimp::LogStream {
public:
    explicit PolygonWatch(size_t* count) : Count(count) {}
    void write(const char* message) override
    {
        if (std::strstr(message, "Failed to triangulate") != nullptr) {
            ++*Count;
        }
    }

private:
    size_t* Count;
};

struct Logging {
    explicit Logging(size_t* badPolygons)
    {
        Assimp::DefaultLogger::create(nullptr, Assimp::Logger::NORMAL, 0)
            ->attachStream(new PolygonWatch(badPolygons), Assimp::Logger::Warn | Assimp::Logger::Err);
    }
    ~Logging() { Assimp::DefaultLogger::kill(); }
    Logging(const Logging&) = delete;
    Logging& operator=(const Logging&) = delete;
};

struct Reading {
    const aiScene* Scene = nullptr;
    ExchangeModel* Model = nullptr;
    Skeleton Bones{};
    MaterialTaker Materials{};
    size_t NoTriangles = 0; ///< points, lines, and what is damaged
    size_t Morphed = 0;
};

std::string EndingOf(std::string_view name)
{
    const size_t dot = name.rfind('.');
    std::string ending(dot == std::string_view::npos ? "" : name.substr(dot));
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return ending;
}

/// What an FBX file says of its axes and its unit, a hundredth of a metre: from its space to the scene's. Other formats
/// come with that in their nodes.
Matrix SpaceOf(const aiScene& scene)
{
    Matrix space;
    float unit = 0;
    if (scene.mMetaData == nullptr || !scene.mMetaData->Get("UnitScaleFactor", unit)) {
        return space;
    }
    std::array<int32_t, 3> axes{0, 1, 2};
    std::array<int32_t, 3> signs{1, 1, 1};
    const char* const names[] = {"CoordAxis", "UpAxis", "FrontAxis"};
    bool told = Matrix3(Matrix(scene.mRootNode->mTransformation)) == Matrix3();
    for (size_t i = 0; i < 3; ++i) {
        told = told && scene.mMetaData->Get(names[i], axes[i]) &&
               scene.mMetaData->Get(names[i] + std::string("Sign"), signs[i]) && axes[i] >= 0 && axes[i] < 3 &&
               std::abs(signs[i]) == 1;
    }
    if (told && axes[0] != axes[1] && axes[1] != axes[2] && axes[2] != axes[0]) {
        for (unsigned row = 0; row < 3; ++row) {
            for (unsigned column = 0; column < 3; ++column) {
                space[row][column] = static_cast<int32_t>(column) == axes[row] ? signs[row] : 0;
            }
        }
    }
    constexpr double metre = 100;
    const double scale = (std::isfinite(unit) && unit > 0 ? unit : 1) / metre;
    Matrix scaling;
    return Matrix::Scaling({scale, scale, scale}, scaling) * space;
}

void FindMeshNodes(const aiNode& node, const Matrix& parent, std::vector<MeshNode>* nodes)
{
    const Matrix toScene = parent * Matrix(node.mTransformation);
    if (node.mNumMeshes > 0) {
        nodes->push_back({&node, toScene, TextOf(node.mName)});
    }
    for (unsigned i = 0; i < node.mNumChildren; ++i) {
        FindMeshNodes(*node.mChildren[i], toScene, nodes);
    }
}

Vec3 Narrow(const Vector& vector)
{
    return {static_cast<float>(vector.x), static_cast<float>(vector.y), static_cast<float>(vector.z)};
}

bool IsFinite(const Vec3& place)
{
    return std::isfinite(place.X) && std::isfinite(place.Y) && std::isfinite(place.Z);
}

/// Normals that are none become those of a triangle that they stand at.
void MendNormals(const ExchangePart& part, ExchangeMesh* mesh)
{
    constexpr double least = 0.5; // they were made one unit long
    for (const auto& triangle : part.Triangles) {
        ExchangeVertex* const corners[] = {&mesh->Vertices[triangle[0]], &mesh->Vertices[triangle[1]],
                                           &mesh->Vertices[triangle[2]]};
        for (ExchangeVertex* corner : corners) {
            if (!(VecLength(corner->Normal) > least)) {
                const Vec3 normal = FaceNormal(corners[2]->Place, corners[1]->Place, corners[0]->Place);
                corner->Normal = VecLength(normal) > least ? normal : Vec3{0, 1, 0};
            }
        }
    }
}

/// Adds the triangles and vertices of one of Assimp's meshes, which has one material.
void AddPart(const aiMesh& from, const Matrix& toScene, Reading* reading, ExchangeMesh* mesh)
{
    const auto start = static_cast<uint32_t>(mesh->Vertices.size());
    const Matrix3 linear{toScene};
    const double determinant = linear.Determinant();
    const Matrix3 forNormals = determinant != 0 ? Matrix3(linear).Inverse().Transpose() : Matrix3();
    for (unsigned i = 0; i < from.mNumVertices; ++i) {
        ExchangeVertex vertex;
        const auto wide = [](const aiVector3D& at) { return Vector(at.x, at.y, at.z); };
        vertex.Place = Narrow(toScene * wide(from.mVertices[i]));
        if (from.HasNormals()) {
            // Normalised before it is narrowed: scales of a millionth and less are met.
            Vector normal = forNormals * wide(from.mNormals[i]);
            vertex.Normal = Narrow(normal.NormalizeSafe());
        }
        Vec2* const sets[] = {&vertex.TexCoord, &vertex.Number, &vertex.Numbers};
        for (unsigned set = 0; set < std::size(sets); ++set) {
            if (from.HasTextureCoords(set)) {
                const aiVector3D& at = from.mTextureCoords[set][i];
                *sets[set] = {std::isfinite(at.x) ? at.x : 0, std::isfinite(at.y) ? 1 - at.y : 0};
            }
        }
        mesh->Vertices.push_back(vertex);
    }
    const int32_t material = TakeMaterial(from.mMaterialIndex, &reading->Materials, reading->Model);
    const auto same = std::find_if(mesh->Parts.begin(), mesh->Parts.end(),
                                   [material](const ExchangePart& other) { return other.Material == material; });
    ExchangePart& part = same == mesh->Parts.end() ? mesh->Parts.emplace_back() : *same;
    part.Material = material;
    for (unsigned i = 0; i < from.mNumFaces; ++i) {
        const aiFace& face = from.mFaces[i];
        if (face.mNumIndices != 3 || *std::max_element(face.mIndices, face.mIndices + 3) >= from.mNumVertices) {
            ++reading->NoTriangles;
            continue;
        }
        part.Triangles.push_back({start + face.mIndices[0], start + face.mIndices[1], start + face.mIndices[2]});
        if (determinant < 0) {
            std::swap(part.Triangles.back()[1], part.Triangles.back()[2]);
        }
    }
    MendNormals(part, mesh);
    reading->Morphed += from.mNumAnimMeshes > 0 ? 1 : 0;
}

/// Adds one mesh of all that Assimp made of it, which differ by their material.
void AddMesh(const MeshNode& at, const std::vector<const aiMesh*>& parts, const std::string& name, Reading* reading)
{
    ExchangeMesh mesh;
    mesh.Name = name;
    mesh.Placements.push_back({.Name = name});
    mesh.IsSkinned = std::any_of(parts.begin(), parts.end(), [](const aiMesh* part) { return part->HasBones(); });
    for (const aiMesh* part : parts) {
        const auto bound = reading->Bones.MeshesToScene.find(part);
        AddPart(*part, bound == reading->Bones.MeshesToScene.end() ? at.ToScene : bound->second, reading, &mesh);
    }
    if (mesh.IsSkinned) {
        TakeWeights(parts, reading->Bones, &mesh);
        for (size_t bone = 0; bone < reading->Model->Bones.size(); ++bone) {
            mesh.Joints.push_back(static_cast<int32_t>(bone));
        }
    }
    std::erase_if(mesh.Parts, [](const ExchangePart& part) { return part.Triangles.empty(); });
    if (!mesh.Parts.empty()) {
        reading->Model->Meshes.push_back(std::move(mesh));
    }
}

void AddMeshes(const MeshNode& at, Reading* reading)
{
    std::vector<std::pair<std::string, std::vector<const aiMesh*>>> groups;
    for (unsigned i = 0; i < at.Node->mNumMeshes; ++i) {
        const aiMesh* const mesh = reading->Scene->mMeshes[at.Node->mMeshes[i]];
        const std::string name = TextOf(mesh->mName);
        // A further part of one mesh bears the same name, or that of its material.
        aiString material;
        const bool further =
            !groups.empty() && mesh->mMaterialIndex < reading->Scene->mNumMaterials &&
            reading->Scene->mMaterials[mesh->mMaterialIndex]->Get(AI_MATKEY_NAME, material) == AI_SUCCESS &&
            material == mesh->mName;
        const auto same = further ? groups.begin()
                                  : std::find_if(groups.begin(), groups.end(),
                                                 [&name](const auto& group) { return group.first == name; });
        (same == groups.end() ? groups.emplace_back(name, 0) : *same).second.push_back(mesh);
    }
    // A user knows the node's name, but a root's is the importer's own.
    const bool own = groups.size() > 1 || at.Node->mParent == nullptr || at.Name.empty();
    for (const auto& [name, parts] : groups) {
        AddMesh(at, parts, own && !name.empty() ? name : at.Name, reading);
    }
}

void AddNotes(const Reading& reading, size_t badPolygons, std::vector<std::string>* notes)
{
    const auto leave = [notes](size_t count, const char* one, const char* many) {
        if (count > 0) {
            notes->push_back(LeftOut(count, one, many));
        }
    };
    leave(reading.Scene->mNumAnimations, "animation", "animations");
    leave(reading.Scene->mNumLights, "light", "lights");
    leave(reading.Scene->mNumCameras, "camera", "cameras");
    leave(reading.NoTriangles, "point, line or damaged face", "points, lines or damaged faces");
    if (reading.Morphed > 0) {
        notes->push_back("The morph targets of " + std::to_string(reading.Morphed) + " meshes were left out.");
    }
    if (badPolygons > 0) {
        notes->push_back(std::to_string(badPolygons) +
                         " faces with more than three corners cross themselves and may have been cut up badly.");
    }
    if (const std::string told = ToldWeights(*reading.Model); !told.empty()) {
        notes->push_back(told);
    }
}

bool AllIsFinite(const ExchangeModel& model)
{
    for (const ExchangeBone& bone : model.Bones) {
        if (!IsFinite(bone.Head)) {
            return false;
        }
    }
    return std::all_of(model.Meshes.begin(), model.Meshes.end(), [](const ExchangeMesh& mesh) {
        return std::all_of(mesh.Vertices.begin(), mesh.Vertices.end(),
                           [](const ExchangeVertex& vertex) { return IsFinite(vertex.Place); });
    });
}

bool ReadScene(const std::string& path, ExchangeModel* model, std::string* error)
{
    const std::string folder = path.substr(0, NameStart(path));
    const std::string name = path.substr(NameStart(path));
    constexpr std::string_view endings[] = {".fbx", ".dae", ".obj", ".x"};
    if (std::find(std::begin(endings), std::end(endings), EndingOf(name)) == std::end(endings)) {
        *error = "Its name does not end with .fbx, .dae, .obj or .x.";
        return false;
    }
    size_t badPolygons = 0;
    const Logging logging(&badPolygons);
    Assimp::Importer importer;
    importer.SetIOHandler(new FolderFiles(folder));
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    Reading reading{.Scene = importer.ReadFile(name, aiProcess_Triangulate | aiProcess_GenNormals), .Model = model};
    if (reading.Scene == nullptr || reading.Scene->mRootNode == nullptr) {
        *error = TextOf(std::string_view(importer.GetErrorString()));
        return false;
    }
    reading.Materials = {.Scene = reading.Scene, .Folder = folder};
    const Matrix space = SpaceOf(*reading.Scene);
    std::vector<MeshNode> nodes;
    FindMeshNodes(*reading.Scene->mRootNode, space, &nodes);
    reading.Bones = TakeBones(*reading.Scene, space, nodes, model);
    for (const MeshNode& node : nodes) {
        AddMeshes(node, &reading);
    }
    if (model->Meshes.empty()) {
        *error = "There is no mesh in it.";
        return false;
    }
    if (!AllIsFinite(*model)) {
        *error = "It has places that are no numbers.";
        return false;
    }
    AddNotes(reading, badPolygons, &model->Notes);
    return true;
}

} // namespace

bool ReadByAssimp(const std::string& path, ExchangeModel* model, std::string* error)
{
    try {
        return ReadScene(path, model, error);
    } catch (const std::bad_alloc&) {
        *error = "Not enough memory.";
    } catch (const std::exception& failure) {
        *error = TextOf(std::string_view(failure.what()));
    }
    return false;
}
