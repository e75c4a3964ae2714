#include "modGltfWrite.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string_view>
#include <utility>

#include "app/modVersion.h"
#include "modExchangeNames.h"
#include "modMatrix.h"
#include "modTinyGltf.h"

namespace {

using Json = nlohmann::json;

constexpr size_t largestFile = size_t{1} << 31U;

/// The file that is made, and its one buffer.
struct Writer {
    tinygltf::Model File{};
    std::vector<unsigned char> Bytes{};

    /// Starts a view at a whole number of words; gives its index.
    int StartView(int target)
    {
        Bytes.resize((Bytes.size() + 3) / 4 * 4);
        tinygltf::BufferView view;
        view.buffer = 0;
        view.byteOffset = Bytes.size();
        view.target = target;
        File.bufferViews.push_back(view);
        return static_cast<int>(File.bufferViews.size()) - 1;
    }
    void EndView() { File.bufferViews.back().byteLength = Bytes.size() - File.bufferViews.back().byteOffset; }

    template <typename T>
    void Put(T value)
    {
        std::array<unsigned char, sizeof(T)> bytes{};
        std::memcpy(bytes.data(), &value, sizeof(T));
        Bytes.insert(Bytes.end(), bytes.begin(), bytes.end());
    }
    int AddAccessor(int view, int componentType, int type, size_t count)
    {
        tinygltf::Accessor accessor;
        accessor.bufferView = view;
        accessor.componentType = componentType;
        accessor.type = type;
        accessor.count = count;
        File.accessors.push_back(accessor);
        return static_cast<int>(File.accessors.size()) - 1;
    }
};

using Slice = std::pair<size_t, size_t>; ///< first vertex, and the one behind the last

template <typename Values>
int AddFloats(Writer* writer, int type, const ExchangeMesh& mesh, const Slice& slice, const Values& values)
{
    const int view = writer->StartView(TINYGLTF_TARGET_ARRAY_BUFFER);
    for (size_t i = slice.first; i < slice.second; ++i) {
        for (const float value : values(mesh.Vertices[i])) {
            writer->Put(value);
        }
    }
    writer->EndView();
    return writer->AddAccessor(view, TINYGLTF_COMPONENT_TYPE_FLOAT, type, slice.second - slice.first);
}

int AddPlaces(Writer* writer, const ExchangeMesh& mesh, const Slice& slice)
{
    const auto parts = [](const ExchangeVertex& v) { return std::array{v.Place.X, v.Place.Y, v.Place.Z}; };
    const int accessor = AddFloats(writer, TINYGLTF_TYPE_VEC3, mesh, slice, parts);
    std::vector<double> least(3, std::numeric_limits<double>::max());
    std::vector<double> most(3, std::numeric_limits<double>::lowest());
    for (size_t i = slice.first; i < slice.second; ++i) {
        const std::array<float, 3> place = parts(mesh.Vertices[i]);
        for (size_t axis = 0; axis < 3; ++axis) {
            least[axis] = std::min(least[axis], static_cast<double>(place[axis]));
            most[axis] = std::max(most[axis], static_cast<double>(place[axis]));
        }
    }
    writer->File.accessors[static_cast<size_t>(accessor)].minValues = std::move(least);
    writer->File.accessors[static_cast<size_t>(accessor)].maxValues = std::move(most);
    return accessor;
}

int AddTriangles(Writer* writer, const ExchangePart& part, const Slice& slice)
{
    constexpr size_t most = 65535; // the highest number of 16 bits is no index
    const bool isShort = slice.second - slice.first <= most;
    const int view = writer->StartView(TINYGLTF_TARGET_ELEMENT_ARRAY_BUFFER);
    for (const auto& triangle : part.Triangles) {
        for (const uint32_t corner : triangle) {
            const auto index = static_cast<uint32_t>(corner - slice.first);
            if (isShort) {
                writer->Put(static_cast<uint16_t>(index));
            } else {
                writer->Put(index);
            }
        }
    }
    writer->EndView();
    return writer->AddAccessor(view,
                               isShort ? TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT : TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT,
                               TINYGLTF_TYPE_SCALAR, part.Triangles.size() * 3);
}

/// One joint of weight 1 for each vertex. `joints` gives the place of each bone in the skin; the last one is for none.
int AddJoints(Writer* writer, const ExchangeMesh& mesh, const Slice& slice, const std::vector<uint16_t>& joints)
{
    const int view = writer->StartView(TINYGLTF_TARGET_ARRAY_BUFFER);
    for (size_t i = slice.first; i < slice.second; ++i) {
        const int32_t bone = mesh.Vertices[i].Bone;
        writer->Put(bone < 0 ? joints.back() : joints[static_cast<size_t>(bone)]);
        for (int rest = 0; rest < 3; ++rest) {
            writer->Put(uint16_t{0});
        }
    }
    writer->EndView();
    return writer->AddAccessor(view, TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT, TINYGLTF_TYPE_VEC4,
                               slice.second - slice.first);
}

tinygltf::Primitive PrimitiveOf(Writer* writer, const ExchangeMesh& mesh, const ExchangePart& part,
                                const std::vector<uint16_t>& joints)
{
    uint32_t first = std::numeric_limits<uint32_t>::max();
    uint32_t last = 0;
    for (const auto& triangle : part.Triangles) {
        first = std::min({first, triangle[0], triangle[1], triangle[2]});
        last = std::max({last, triangle[0], triangle[1], triangle[2]});
    }
    const Slice slice{first, size_t{last} + 1};
    tinygltf::Primitive primitive;
    primitive.mode = TINYGLTF_MODE_TRIANGLES;
    primitive.material = part.Material;
    primitive.attributes["POSITION"] = AddPlaces(writer, mesh, slice);
    primitive.attributes["NORMAL"] = AddFloats(writer, TINYGLTF_TYPE_VEC3, mesh, slice, [](const ExchangeVertex& v) {
        return std::array{v.Normal.X, v.Normal.Y, v.Normal.Z};
    });
    const auto addPairs = [&](const char* name, Vec2 ExchangeVertex::*pair) {
        primitive.attributes[name] = AddFloats(writer, TINYGLTF_TYPE_VEC2, mesh, slice, [&](const ExchangeVertex& v) {
            return std::array{(v.*pair).U, (v.*pair).V};
        });
    };
    addPairs("TEXCOORD_0", &ExchangeVertex::TexCoord);
    const auto hasNumber = [](const ExchangeVertex& v) { return v.Number.U != 0; };
    if (std::any_of(mesh.Vertices.begin(), mesh.Vertices.end(), hasNumber)) {
        addPairs("TEXCOORD_1", &ExchangeVertex::Number);
        addPairs("TEXCOORD_2", &ExchangeVertex::Numbers);
    }
    if (mesh.IsSkinned) {
        primitive.attributes["JOINTS_0"] = AddJoints(writer, mesh, slice, joints);
        primitive.attributes["WEIGHTS_0"] = AddFloats(writer, TINYGLTF_TYPE_VEC4, mesh, slice, [](const auto&) {
            return std::array{1.0F, 0.0F, 0.0F, 0.0F};
        });
    }
    primitive.indices = AddTriangles(writer, part, slice);
    return primitive;
}

bool IsPng(const ExchangeImage& image)
{
    return image.Bytes.starts_with("\x89PNG");
}

/// `inside` puts the pictures into the buffer.
void AddImages(const ExchangeModel& model, bool inside, Writer* writer)
{
    for (const ExchangeImage& picture : model.Images) {
        tinygltf::Image image;
        image.name = picture.Name;
        if (inside) {
            image.mimeType = IsPng(picture) ? "image/png" : "image/jpeg";
            image.bufferView = writer->StartView(0);
            writer->Bytes.insert(writer->Bytes.end(), picture.Bytes.begin(), picture.Bytes.end());
            writer->EndView();
        } else {
            image.uri = picture.Name.empty() ? "picture" : picture.Name; // until the files have names
        }
        writer->File.images.push_back(std::move(image));
        tinygltf::Texture texture;
        texture.source = static_cast<int>(writer->File.textures.size());
        texture.sampler = 0;
        writer->File.textures.push_back(texture);
    }
    if (!model.Images.empty()) {
        tinygltf::Sampler sampler;
        sampler.minFilter = TINYGLTF_TEXTURE_FILTER_LINEAR_MIPMAP_NEAREST;
        sampler.magFilter = TINYGLTF_TEXTURE_FILTER_LINEAR;
        writer->File.samplers.push_back(sampler);
    }
}

/// What a shown value from 0 to 1 is as light (IEC 61966-2-1, sRGB), which factors are in.
double LinearOf(double shown)
{
    return shown <= 0.04045 ? shown / 12.92 : std::pow((shown + 0.055) / 1.055, 2.4);
}

void AddMaterials(const ExchangeModel& model, Writer* writer)
{
    for (const ExchangeMaterial& own : model.Materials) {
        tinygltf::Material material;
        material.name = own.Name;
        material.pbrMetallicRoughness.metallicFactor = 0;
        material.pbrMetallicRoughness.baseColorFactor = {LinearOf(own.Color[0]), LinearOf(own.Color[1]),
                                                         LinearOf(own.Color[2]), 1};
        material.pbrMetallicRoughness.baseColorTexture.index = own.Image;
        material.alphaMode = own.HasOpacity ? "MASK" : "OPAQUE";
        writer->File.materials.push_back(std::move(material));
    }
}

int AddNode(Writer* writer, const std::string& name)
{
    tinygltf::Node node;
    node.name = name;
    writer->File.nodes.push_back(std::move(node));
    return static_cast<int>(writer->File.nodes.size()) - 1;
}

/// The nodes of all bones stand first, in their order, then the joint for none if one is wanted, then the root.
void AddBones(const ExchangeModel& model, bool wantsNone, Writer* writer)
{
    for (const ExchangeBone& bone : model.Bones) {
        const int index = AddNode(writer, bone.Name);
        Vec3 above;
        if (bone.Parent >= 0) {
            above = model.Bones[static_cast<size_t>(bone.Parent)].Head;
        }
        writer->File.nodes[static_cast<size_t>(index)].translation = {static_cast<double>(bone.Head.X) - above.X,
                                                                      static_cast<double>(bone.Head.Y) - above.Y,
                                                                      static_cast<double>(bone.Head.Z) - above.Z};
    }
    if (wantsNone) {
        AddNode(writer, unassignedJoint);
    }
    if (writer->File.nodes.empty()) {
        return;
    }
    const int root = AddNode(writer, "Skeleton");
    for (size_t bone = 0; bone < static_cast<size_t>(root); ++bone) {
        const int32_t parent = bone < model.Bones.size() ? model.Bones[bone].Parent : -1;
        writer->File.nodes[static_cast<size_t>(parent < 0 ? root : parent)].children.push_back(static_cast<int>(bone));
    }
    writer->File.scenes[0].nodes.push_back(root);
}

/// A skin whose matrices carry the mesh's own space to that of each bone. Fills `joints` for AddJoints.
int AddSkin(const ExchangeModel& model, const ExchangeMesh& mesh, Writer* writer, std::vector<uint16_t>* joints)
{
    const ExchangePlacement& placement = mesh.Placements[0];
    tinygltf::Skin skin;
    const int view = writer->StartView(0);
    const auto add = [&](int node, const Vec3& head) {
        skin.joints.push_back(node);
        Matrix matrix = MatrixOf({}, placement.Rotation, placement.Scale);
        matrix[12] = static_cast<double>(placement.Position.X) - head.X;
        matrix[13] = static_cast<double>(placement.Position.Y) - head.Y;
        matrix[14] = static_cast<double>(placement.Position.Z) - head.Z;
        for (const double number : matrix) {
            writer->Put(static_cast<float>(number));
        }
    };
    joints->assign(model.Bones.size() + 1, 0);
    for (const int32_t bone : mesh.Joints) {
        (*joints)[static_cast<size_t>(bone)] = static_cast<uint16_t>(skin.joints.size());
        add(bone, model.Bones[static_cast<size_t>(bone)].Head);
    }
    const auto hasNone = [](const ExchangeVertex& vertex) { return vertex.Bone < 0; };
    if (std::any_of(mesh.Vertices.begin(), mesh.Vertices.end(), hasNone)) {
        joints->back() = static_cast<uint16_t>(skin.joints.size());
        add(static_cast<int>(model.Bones.size()), {});
    }
    writer->EndView();
    skin.inverseBindMatrices =
        writer->AddAccessor(view, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_MAT4, skin.joints.size());
    writer->File.skins.push_back(std::move(skin));
    return static_cast<int>(writer->File.skins.size()) - 1;
}

/// The turn about X, then Y, then Z as a unit quaternion.
std::vector<double> QuaternionOf(const Vec3& degrees)
{
    constexpr double half = 0.008726646259971648; // of a degree, in radians
    const double cx = std::cos(degrees.X * half);
    const double sx = std::sin(degrees.X * half);
    const double cy = std::cos(degrees.Y * half);
    const double sy = std::sin(degrees.Y * half);
    const double cz = std::cos(degrees.Z * half);
    const double sz = std::sin(degrees.Z * half);
    return {sx * cy * cz - cx * sy * sz, cx * sy * cz + sx * cy * sz, cx * cy * sz - sx * sy * cz,
            cx * cy * cz + sx * sy * sz};
}

void AddMesh(const ExchangeModel& model, const ExchangeMesh& own, Writer* writer)
{
    std::vector<uint16_t> joints;
    const int skin = own.IsSkinned ? AddSkin(model, own, writer, &joints) : -1;
    tinygltf::Mesh mesh;
    mesh.name = own.Name;
    for (const ExchangePart& part : own.Parts) {
        if (!part.Triangles.empty()) {
            mesh.primitives.push_back(PrimitiveOf(writer, own, part, joints));
        }
    }
    if (mesh.primitives.empty()) {
        return;
    }
    const auto index = static_cast<int>(writer->File.meshes.size());
    writer->File.meshes.push_back(std::move(mesh));
    for (const ExchangePlacement& placement : own.Placements) {
        const int at = AddNode(writer, placement.Name);
        writer->File.scenes[0].nodes.push_back(at);
        tinygltf::Node& node = writer->File.nodes[static_cast<size_t>(at)];
        node.mesh = index;
        node.skin = skin;
        if (own.IsSkinned) {
            continue;
        }
        const Vec3& move = placement.Position;
        const Vec3& turn = placement.Rotation;
        if (move.X != 0 || move.Y != 0 || move.Z != 0) {
            node.translation = {move.X, move.Y, move.Z};
        }
        if (turn.X != 0 || turn.Y != 0 || turn.Z != 0) {
            node.rotation = QuaternionOf(turn);
        }
        if (placement.Scale != 1) {
            node.scale.assign(3, placement.Scale);
        }
    }
}

void AddRecord(const std::string& record, Writer* writer)
{
    if (!record.empty()) {
        writer->File.extras =
            tinygltf::Value(tinygltf::Value::Object{{"beastwright", tinygltf::Value(std::string(record))}});
    }
}

/// About what the buffer will hold, so that it need not grow.
size_t BytesWanted(const ExchangeModel& model)
{
    constexpr size_t ofVertex = 72;
    constexpr size_t ofTriangle = 12;
    size_t bytes = 1 << 16;
    for (const ExchangeImage& image : model.Images) {
        bytes += image.Bytes.size();
    }
    for (const ExchangeMesh& mesh : model.Meshes) {
        bytes += mesh.Vertices.size() * ofVertex;
        for (const ExchangePart& part : mesh.Parts) {
            bytes += part.Triangles.size() * ofTriangle;
        }
    }
    return bytes;
}

Writer WriterOf(const ExchangeModel& model, bool inside)
{
    Writer writer;
    writer.Bytes.reserve(BytesWanted(model));
    writer.File.asset.version = "2.0";
    writer.File.asset.generator = std::string(ProgramTitle) + " " + VersionText;
    writer.File.scenes.emplace_back();
    writer.File.defaultScene = 0;
    const bool wantsNone = std::any_of(model.Meshes.begin(), model.Meshes.end(), [](const ExchangeMesh& mesh) {
        return mesh.IsSkinned && std::any_of(mesh.Vertices.begin(), mesh.Vertices.end(),
                                             [](const ExchangeVertex& vertex) { return vertex.Bone < 0; });
    });
    AddBones(model, wantsNone, &writer);
    AddImages(model, inside, &writer);
    AddMaterials(model, &writer);
    for (const ExchangeMesh& mesh : model.Meshes) {
        AddMesh(model, mesh, &writer);
    }
    AddRecord(model.Record, &writer);
    return writer;
}

/// The name of a file as RFC 3986 writes it.
std::string AsUri(const std::string& name)
{
    constexpr std::string_view plain = "-._~";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string uri;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                             plain.find(c) != std::string_view::npos;
        uri += isPlain ? std::string(1, c) : std::string{'%', digits[byte >> 4U], digits[byte & 15U]};
    }
    return uri;
}

/// Takes what is written to a stream into a text that has its room beforehand: a large model would be held twice.
struct StringBuffer : std::streambuf {
    std::string Text{};

    std::streamsize xsputn(const char* from, std::streamsize count) override
    {
        Text.append(from, static_cast<size_t>(count));
        return count;
    }
    int_type overflow(int_type character) override
    {
        if (!traits_type::eq_int_type(character, traits_type::eof())) {
            Text += traits_type::to_char_type(character);
        }
        return traits_type::not_eof(character);
    }
};

bool IsSmallEnough(const Writer& writer, std::string* error)
{
    if (writer.Bytes.size() >= largestFile) {
        *error = "The model is too large for this format.";
        return false;
    }
    return true;
}

} // namespace

bool GlbOf(const ExchangeModel& model, std::string* glb, std::string* error)
{
    Writer writer = WriterOf(model, true);
    if (!IsSmallEnough(writer, error)) {
        return false;
    }
    StringBuffer buffer;
    buffer.Text.reserve(writer.Bytes.size() + model.Record.size() + (size_t{1} << 18U));
    writer.File.buffers.emplace_back();
    writer.File.buffers[0].data = std::move(writer.Bytes);
    std::ostream stream(&buffer);
    tinygltf::TinyGLTF().WriteGltfSceneToStream(&writer.File, stream, false, true);
    *glb = std::move(buffer.Text);
    return true;
}

bool GltfFilesOf(const ExchangeModel& model, const std::string& stem, std::vector<NamedFile>* files, std::string* error)
{
    const Writer writer = WriterOf(model, false);
    if (!IsSmallEnough(writer, error)) {
        return false;
    }
    std::ostringstream stream;
    tinygltf::TinyGLTF().WriteGltfSceneToStream(&writer.File, stream, false, false);
    Json text = Json::parse(std::move(stream).str());
    files->assign(1, {}); // the text, when all names are known
    files->push_back({stem + ".bin", std::string(writer.Bytes.begin(), writer.Bytes.end())});
    text["buffers"] = {{{"byteLength", writer.Bytes.size()}, {"uri", AsUri(files->back().Name)}}};
    for (size_t i = 0; i < model.Images.size(); ++i) {
        const ExchangeImage& image = model.Images[i];
        files->push_back({stem + "-" + std::to_string(i + 1) + (IsPng(image) ? ".png" : ".jpg"), image.Bytes});
        text["images"][i]["uri"] = AsUri(files->back().Name);
    }
    files->front() = {stem + ".gltf", text.dump(1, '\t') + "\n"};
    return true;
}
