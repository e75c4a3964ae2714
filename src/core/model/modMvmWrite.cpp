#include "model/modMvmWrite.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "app/modGuard.h"
#include "app/modMvmDef.h"
#include "model/modNumbers.h"
#include "model/modStrings.h"
#include "modFiles.h"

namespace {

constexpr size_t partSize = size_t{1} << 18;
constexpr size_t longestLine = 160; ///< of numbers: a face of ten, below 90 characters

/// Takes the text of a model and hands it on in parts: memory that is used again costs less than the whole text's.
struct TextSink {
    const PartWriter& Write;
    std::vector<char> Part = std::vector<char>(partSize + longestLine);
    size_t Size = 0;

    void Flush()
    {
        Write({Part.data(), Size});
        Size = 0;
    }
    /// Where the next line goes: room for the longest one.
    char* LineStart()
    {
        if (Size > partSize) {
            Flush();
        }
        return Part.data() + Size;
    }
    /// Ends the line that was written from LineStart to `end`.
    void EndLine(char* end)
    {
        *end++ = '\r';
        *end++ = '\n';
        Size = static_cast<size_t>(end - Part.data());
    }
    void Put(std::string_view text)
    {
        if (text.size() > longestLine) {
            Flush();
            Write(text);
        } else {
            std::memcpy(LineStart(), text.data(), text.size());
            Size += text.size();
        }
    }
};

// Each writes to `to` and gives the end.

char* Add(std::string_view text, char* to)
{
    std::memcpy(to, text.data(), text.size());
    return to + text.size();
}

char* Add(char c, char* to)
{
    *to = c;
    return to + 1;
}

/// "(x,y,z)" in file axes.
char* Add(const Vec3& value, char* to)
{
    to = FloatToChars(value.X, Add('(', to));
    to = FloatToChars(-value.Z, Add(',', to));
    to = FloatToChars(value.Y, Add(',', to));
    return Add(')', to);
}

char* Add(int16_t number, char* to)
{
    return std::to_chars(to, to + 6, number).ptr;
}

char* Add(const std::array<int16_t, 3>& numbers, char* to)
{
    to = Add(numbers[0], Add('(', to));
    to = Add(numbers[1], Add(',', to));
    to = Add(numbers[2], Add(',', to));
    return Add(')', to);
}

void PutLine(std::string_view content, TextSink* sink)
{
    sink->Put(content);
    sink->Put("\r\n");
}

void PutQuoted(std::string_view before, std::string_view value, TextSink* sink)
{
    sink->Put(before);
    sink->Put("\"");
    sink->Put(value);
    sink->Put("\"\r\n");
}

void PutTriple(std::string_view before, const Vec3& value, TextSink* sink)
{
    sink->EndLine(Add(value, Add(before, sink->LineStart())));
}

void PutMaterial(const MvmMaterial& material, TextSink* sink)
{
    PutQuoted("material ", material.Name, sink);
    PutLine("{", sink);
    if (!material.ColorMap.empty()) {
        PutQuoted(" colormap = ", material.ColorMap, sink);
    }
    if (!material.OpacityMap.empty()) {
        PutQuoted(" opacitymap = ", material.OpacityMap, sink);
    }
    if (!material.BumpMap.empty()) {
        PutQuoted(" bumpmap = ", material.BumpMap, sink);
    }
    PutLine("}\r\n", sink);
}

void PutBone(const MvmBone& bone, TextSink* sink)
{
    PutQuoted("bone ", bone.Name, sink);
    PutLine("{", sink);
    PutTriple(" position = ", bone.Position, sink);
    PutTriple(" rotation = ", bone.Rotation, sink);
    if (!bone.ExtraText.empty()) {
        PutLine(bone.ExtraText, sink);
    }
    PutLine("}\r\n", sink);
}

void PutVertices(const MvmMesh& mesh, bool asSkin, TextSink* sink)
{
    std::vector<float> joints{-1}; // by bone
    for (const MvmBone& bone : Bones) {
        joints.push_back(static_cast<float>(JointNumber(bone.Name)));
    }
    for (int32_t vertex = 1; vertex <= mesh.VertexCount(); ++vertex) {
        char* to = Add(mesh.Vertices[vertex], Add(" v = ", sink->LineStart()));
        if (asSkin) {
            const int16_t bone = mesh.VertexBones.Has(vertex) ? mesh.VertexBones[vertex] : int16_t{0};
            to = FloatToChars(joints[IsValidBone(bone) ? static_cast<size_t>(bone) : 0], Add(',', to));
        }
        sink->EndLine(to);
    }
}

void PutMesh(const MvmMesh& mesh, bool asSkin, TextSink* sink)
{
    PutQuoted(asSkin ? "skin " : "mesh ", mesh.Name, sink);
    PutLine("{", sink);
    for (const MvmMeshMaterial& material : mesh.MeshMaterials) {
        PutQuoted(" m = ", material.Name, sink);
    }
    PutVertices(mesh, asSkin, sink);
    for (const Vec2& pair : mesh.TexCoords) {
        char* to = FloatToChars(pair.U, Add(" t = (", sink->LineStart()));
        to = FloatToChars(pair.V, Add(',', to));
        sink->EndLine(Add(')', to));
    }
    for (const Vec3& normal : mesh.Normals) {
        PutTriple(" n = ", normal, sink);
    }
    for (const MvmFace& face : mesh.Faces) {
        char* to = Add(face.Vertex, Add(" f = ", sink->LineStart()));
        to = Add(face.TexCoord, Add(',', to));
        to = Add(face.Normal, Add(',', to));
        sink->EndLine(Add(face.Material, Add(',', to)));
    }
    PutLine("}\r\n", sink);
}

void PutInstance(const MvmInstance& instance, TextSink* sink)
{
    PutQuoted("instance ", instance.Name, sink);
    PutLine("{", sink);
    PutQuoted(" mesh = ", instance.Mesh, sink);
    PutTriple(" position = ", instance.Position, sink);
    PutTriple(" rotation = ", instance.Rotation, sink);
    sink->EndLine(FloatToChars(instance.Scale, Add(" scale = ", sink->LineStart())));
    PutLine("}\r\n", sink);
}

} // namespace

void WriteModelText(const PartWriter& write)
{
    TextSink model{write};
    TextSink* const sink = &model;
    PutLine("fileinfo\r\n{\r\n formatversion = 1.0.2\r\n}\r\n", sink);
    for (const MvmMaterial& material : Materials) {
        PutMaterial(material, sink);
    }
    for (const MvmBone& bone : Bones) {
        PutBone(bone, sink);
    }
    for (int32_t index = 1; index <= MeshCount(); ++index) {
        const MvmMesh& mesh = Meshes[index];
        PutMesh(mesh, mesh.IsSkin && (index == SkinMesh || index == ShadowMesh), sink);
    }
    for (const MvmInstance& instance : Instances) {
        PutInstance(instance, sink);
    }
    model.Flush();
}

bool WriteMVM(const std::string& path, const std::string& guard)
{
    return SaveGuarded("WriteMVM", path, guard, WriteModelText);
}
