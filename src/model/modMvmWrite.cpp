#include "model/modMvmWrite.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <exception>
#include <new>
#include <string_view>

#include "app/modMvmDef.h"
#include "model/modNumbers.h"
#include "model/modStrings.h"
#include "platform/modDialogs.h"
#include "platform/modFiles.h"

namespace {

// One line of numbers. The longest is a face of ten numbers, below 90 characters.
struct Line {
    std::array<char, 160> Text;
    char* End = Text.data();

    void Add(std::string_view text)
    {
        std::memcpy(End, text.data(), text.size());
        End += text.size();
    }
    void Add(char c) { *End++ = c; }
    void Add(float value) { End = FloatToChars(value, End); }
    void Add(int16_t value) { End = Int16ToChars(value, End); }

    /// "(x,y,z)" in file axes.
    void Add(const Vec3& value)
    {
        Add('(');
        Add(value.X);
        Add(',');
        Add(-value.Z);
        Add(',');
        Add(value.Y);
        Add(')');
    }
    void Add(const std::array<int16_t, 3>& numbers)
    {
        Add('(');
        Add(numbers[0]);
        Add(',');
        Add(numbers[1]);
        Add(',');
        Add(numbers[2]);
        Add(')');
    }
    /// Ends the line, moves it to `text` and starts anew.
    void PutInto(std::string* text)
    {
        Add("\r\n");
        text->append(Text.data(), static_cast<size_t>(End - Text.data()));
        End = Text.data();
    }
};

void PutLine(std::string_view content, std::string* text)
{
    text->append(content).append("\r\n");
}

void PutQuoted(std::string_view before, std::string_view value, std::string* text)
{
    text->append(before).append("\"").append(value).append("\"\r\n");
}

void PutTriple(std::string_view before, const Vec3& value, std::string* text)
{
    Line line;
    line.Add(before);
    line.Add(value);
    line.PutInto(text);
}

void PutMaterial(const MvmMaterial& material, std::string* text)
{
    PutQuoted("material ", material.Name, text);
    PutLine("{", text);
    if (!material.ColorMap.empty()) {
        PutQuoted(" colormap = ", material.ColorMap, text);
    }
    if (!material.OpacityMap.empty()) {
        PutQuoted(" opacitymap = ", material.OpacityMap, text);
    }
    if (!material.BumpMap.empty()) {
        PutQuoted(" bumpmap = ", material.BumpMap, text);
    }
    PutLine("}\r\n", text);
}

void PutBone(const MvmBone& bone, std::string* text)
{
    PutQuoted("bone ", bone.Name, text);
    PutLine("{", text);
    PutTriple(" position = ", bone.Position, text);
    PutTriple(" rotation = ", bone.Rotation, text);
    if (!bone.ExtraText.empty()) {
        PutLine(bone.ExtraText, text);
    }
    PutLine("}\r\n", text);
}

void PutVertices(const MvmMesh& mesh, bool asSkin, std::string* text)
{
    Line line;
    for (int32_t vertex = 1; vertex <= mesh.VertexCount(); ++vertex) {
        line.Add(" v = ");
        line.Add(mesh.Vertices[vertex]);
        if (asSkin) {
            const int16_t bone = mesh.VertexBones.Has(vertex) ? mesh.VertexBones[vertex] : int16_t{0};
            line.Add(',');
            line.Add(IsValidBone(bone) ? static_cast<float>(JointNumber(Bones[bone].Name)) : -1.0F);
        }
        line.PutInto(text);
    }
}

void PutMesh(const MvmMesh& mesh, bool asSkin, std::string* text)
{
    PutQuoted(asSkin ? "skin " : "mesh ", mesh.Name, text);
    PutLine("{", text);
    for (const MvmMeshMaterial& material : mesh.MeshMaterials) {
        PutQuoted(" m = ", material.Name, text);
    }
    PutVertices(mesh, asSkin, text);
    Line line;
    for (const Vec2& pair : mesh.TexCoords) {
        line.Add(" t = (");
        line.Add(pair.U);
        line.Add(',');
        line.Add(pair.V);
        line.Add(')');
        line.PutInto(text);
    }
    for (const Vec3& normal : mesh.Normals) {
        line.Add(" n = ");
        line.Add(normal);
        line.PutInto(text);
    }
    for (const MvmFace& face : mesh.Faces) {
        line.Add(" f = ");
        line.Add(face.Vertex);
        line.Add(',');
        line.Add(face.TexCoord);
        line.Add(',');
        line.Add(face.Normal);
        line.Add(',');
        line.Add(face.Material);
        line.PutInto(text);
    }
    PutLine("}\r\n", text);
}

void PutInstance(const MvmInstance& instance, std::string* text)
{
    PutQuoted("instance ", instance.Name, text);
    PutLine("{", text);
    PutQuoted(" mesh = ", instance.Mesh, text);
    PutTriple(" position = ", instance.Position, text);
    PutTriple(" rotation = ", instance.Rotation, text);
    Line line;
    line.Add(" scale = ");
    line.Add(instance.Scale);
    line.PutInto(text);
    PutLine("}\r\n", text);
}

/// Room that a scene of usual numbers takes. More is found as it is needed.
size_t UsualSize()
{
    size_t size = 256 + Materials.Items.size() * 128 + Instances.Items.size() * 160;
    for (const MvmBone& bone : Bones) {
        size += 128 + bone.Name.size() + bone.ExtraText.size();
    }
    for (const MvmMesh& mesh : Meshes) {
        size += 64 + mesh.Name.size() + mesh.MeshMaterials.Items.size() * 32 + mesh.Vertices.Items.size() * 44 +
                mesh.Normals.Items.size() * 42 + mesh.TexCoords.Items.size() * 30 + mesh.Faces.Items.size() * 72;
    }
    return size;
}

} // namespace

std::string ModelText()
{
    std::string text;
    text.reserve(UsualSize());
    PutLine("fileinfo\r\n{\r\n formatversion = 1.0.2\r\n}\r\n", &text);
    for (const MvmMaterial& material : Materials) {
        PutMaterial(material, &text);
    }
    for (const MvmBone& bone : Bones) {
        PutBone(bone, &text);
    }
    for (int32_t index = 1; index <= MeshCount(); ++index) {
        const MvmMesh& mesh = Meshes[index];
        PutMesh(mesh, mesh.IsSkin && (index == SkinMesh || index == ShadowMesh), &text);
    }
    for (const MvmInstance& instance : Instances) {
        PutInstance(instance, &text);
    }
    return text;
}

bool WriteMVM(const std::string& path)
{
    std::string error;
    try {
        if (ReplaceFile(path, ModelText(), &error)) {
            return true;
        }
    } catch (const std::bad_alloc&) {
        error = "There is not enough memory.";
    } catch (const std::exception& exception) {
        error = exception.what();
    }
    ShowMessage(BoxIcon::Stop, "Runtime error in WriteMVM\n" + error);
    return false;
}
