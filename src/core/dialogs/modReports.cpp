#include "dialogs/modReports.h"

#include <cstdint>
#include <string>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "modCodePage.h"
#include "model/modNumbers.h"

namespace {

void Head(const std::string& line)
{
    LogLine({});
    LogLine(line);
}

void HeadWithCount(const std::string& title, int32_t count)
{
    Head(title + " (" + std::to_string(count) + "):");
}

void Name(const std::string& name)
{
    LogLine(Utf8FromCodePage(name) + ":");
}

void Count(const std::string& label, int32_t count)
{
    LogLine(label + std::to_string(count));
}

void Number(const std::string& label, float value)
{
    LogLine(label + FloatToLocaleText(value));
}

void Vector(const std::string& label, const Vec3& value)
{
    LogLine(label + FloatToLocaleText(value.X) + "," + FloatToLocaleText(value.Y) + "," + FloatToLocaleText(value.Z));
}

/// A texture's file name; nothing for a material without one.
void MapFile(const std::string& label, const std::string& file)
{
    if (!file.empty()) {
        LogLine(label + Utf8FromCodePage(file));
    }
}

template <typename Record>
void Names(const std::string& title, const Array1<Record>& records)
{
    HeadWithCount(title, records.Count());
    for (const Record& record : records) {
        LogLine(Utf8FromCodePage(record.Name));
    }
    ShowInfoLog();
}

} // namespace

void ReportMeshes()
{
    HeadWithCount("Meshes", MeshCount());
    for (const MvmMesh& mesh : Meshes) {
        Name(mesh.Name);
        Count(" Vertices:            ", mesh.VertexCount());
        Count(" Texture coordinates: ", mesh.TexCoordCount());
        Count(" Vertex normals:      ", mesh.NormalCount());
        Count(" Faces/polygons:      ", mesh.FaceCount());
        Count(" Materials:           ", mesh.MeshMaterialCount());
        LogLine({});
    }
    ShowInfoLog();
}

void ReportMaterials()
{
    HeadWithCount("Materials", MaterialCount());
    for (const MvmMaterial& material : Materials) {
        Name(material.Name);
        MapFile("  Color map: ", material.ColorMap);
        MapFile("  Alpha map: ", material.OpacityMap);
        MapFile("  bumpmap:  ", material.BumpMap);
        LogLine({});
    }
    ShowInfoLog();
}

void ReportInstances()
{
    HeadWithCount("Instances", InstanceCount());
    for (const MvmInstance& instance : Instances) {
        Name(instance.Name);
        Vector(" Position: ", instance.Position);
        Vector(" Rotation: ", instance.Rotation);
        Number(" Scale:    ", instance.Scale);
        LogLine({});
    }
    ShowInfoLog();
}

void ReportBones()
{
    HeadWithCount("Bones", BoneCount());
    for (const MvmBone& bone : Bones) {
        Name(bone.Name);
        Vector(" Position: ", bone.Position);
        Vector(" Rotation: ", bone.Rotation);
        Number(" Ratio:    ", bone.Ratio);
        LogLine({});
    }
    ShowInfoLog();
}

void ReportMeshNames()
{
    Names("Meshes", Meshes);
}

void ReportMaterialNames()
{
    Names("Materials", Materials);
}

void ReportInstanceNames()
{
    Names("Instances", Instances);
}

void ReportBoneNames()
{
    Names("Bones", Bones);
}

void ReportTextureFilenames()
{
    Head("Texture Filenames:");
    for (const MvmMaterial& material : Materials) {
        MapFile({}, material.ColorMap);
        MapFile({}, material.OpacityMap);
        MapFile({}, material.BumpMap);
    }
    ShowInfoLog();
}
