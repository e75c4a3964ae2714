#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "app/modMvmDef.h"
#include "checks/modCheckModel.h"
#include "modCodePage.h"

namespace {

bool HasInstance(const MvmMesh& mesh)
{
    return std::any_of(Instances.begin(), Instances.end(),
                       [&](const MvmInstance& instance) { return instance.Mesh == mesh.Name; });
}

void CheckRoles(std::vector<Finding>* findings)
{
    if (!IsValidMesh(SkinMesh) && MeshCount() > 0 && BoneCount() > 0) {
        findings->push_back({.Code = "no-skin",
                             .What = "No mesh is the skin, so no vertex of it can move with a bone.",
                             .Advice = "Select the skin in the window, or write its block as skin in place of mesh."});
    }
    for (const int16_t role : {SkinMesh, ShadowMesh}) {
        if (!IsValidMesh(role) || HasInstance(Meshes[role])) {
            continue;
        }
        findings->push_back({.Code = "no-instance",
                             .Grade = Severity::Error,
                             .Mesh = Utf8FromCodePage(Meshes[role].Name),
                             .What = std::string(role == SkinMesh ? "The skin " : "The shadow ") +
                                     QuotedName(Meshes[role].Name) +
                                     " has no instance, so nothing says where it stands among the bones.",
                             .Advice = "Add an instance of this mesh, or rename the mesh to what the instance names."});
    }
}

void CheckInstances(std::vector<Finding>* findings)
{
    std::set<std::string> names;
    for (const MvmMesh& mesh : Meshes) {
        names.insert(mesh.Name);
    }
    for (const MvmInstance& instance : Instances) {
        const std::string who = "The instance " + QuotedName(instance.Name);
        if (!names.contains(instance.Mesh)) {
            findings->push_back(
                {.Code = "instance-mesh",
                 .Mesh = Utf8FromCodePage(instance.Mesh),
                 .What = who + " places the mesh " + QuotedName(instance.Mesh) + ", which the file does not have.",
                 .Advice = "Take the instance out, or correct the name of its mesh."});
        }
        if (instance.Scale == 0) {
            findings->push_back({.Code = "scale-zero",
                                 .Grade = Severity::Error,
                                 .Mesh = Utf8FromCodePage(instance.Mesh),
                                 .What = who + " has scale 0, so its mesh shrinks to a point.",
                                 .Advice = "Give it the scale that was meant, 1 as a rule."});
        }
    }
}

void CheckMaterials(std::vector<Finding>* findings)
{
    for (const MvmMesh& mesh : Meshes) {
        for (const MvmMeshMaterial& entry : mesh.MeshMaterials) {
            if (entry.Index == 0) {
                findings->push_back({.Code = "mesh-material",
                                     .Mesh = Utf8FromCodePage(mesh.Name),
                                     .What = "The mesh " + QuotedName(mesh.Name) + " names the material " +
                                             QuotedName(entry.Name) +
                                             ", which the file does not have, so its faces are drawn without one.",
                                     .Advice = "Add the material, or correct the name in the mesh's list."});
            }
        }
    }
}

template <typename Record>
void CheckNames(const Array1<Record>& records, const char* kind, const char* effect, std::vector<Finding>* findings)
{
    std::map<std::string, int32_t> counts;
    for (const Record& record : records) {
        ++counts[record.Name];
    }
    for (const auto& [name, count] : counts) {
        if (count > 1) {
            findings->push_back(
                {.Code = "duplicate-name",
                 .Count = count,
                 .What = std::to_string(count) + " " + kind + " are called " + QuotedName(name) + ", " + effect + ".",
                 .Advice = "Give each a name of its own."});
        }
    }
}

void CheckLongNames(std::vector<Finding>* findings)
{
    constexpr size_t kept = 24; // bytes that a weights file has for a name
    for (const int16_t role : {SkinMesh, ShadowMesh}) {
        if (IsValidMesh(role) && Meshes[role].Name.size() > kept) {
            findings->push_back({.Code = "long-name",
                                 .Mesh = Utf8FromCodePage(Meshes[role].Name),
                                 .What = "A weights file keeps 24 characters of the mesh name " +
                                         QuotedName(Meshes[role].Name) + ", so each load of one asks whether it fits.",
                                 .Advice = "Give the mesh a shorter name."});
        }
    }
}

void CheckCount(int64_t count, const std::string& what, std::vector<Finding>* findings)
{
    if (count > INT16_MAX) {
        findings->push_back(
            {.Code = "too-many",
             .Grade = Severity::Error,
             .Count = count,
             .What = std::to_string(count) + " " + what + " are more than the 32767 that the format can number.",
             .Advice = "Divide what they belong to into smaller parts."});
    }
}

void CheckCounts(std::vector<Finding>* findings)
{
    CheckCount(BoneCount(), "bones", findings);
    CheckCount(MaterialCount(), "materials", findings);
    CheckCount(MeshCount(), "meshes", findings);
    CheckCount(InstanceCount(), "instances", findings);
    for (const MvmMesh& mesh : Meshes) {
        const std::string of = " of mesh " + QuotedName(mesh.Name);
        CheckCount(mesh.VertexCount(), "vertices" + of, findings);
        CheckCount(mesh.TexCoordCount(), "texture coordinates" + of, findings);
        CheckCount(mesh.NormalCount(), "normals" + of, findings);
        CheckCount(mesh.FaceCount(), "faces" + of, findings);
        CheckCount(mesh.MeshMaterialCount(), "materials" + of, findings);
    }
}

} // namespace

void CheckRecords(std::vector<Finding>* findings)
{
    CheckRoles(findings);
    CheckInstances(findings);
    CheckMaterials(findings);
    CheckNames(Materials, "materials", "and every mesh that names it gets the last one", findings);
    CheckNames(Bones, "bones", "so aliases cannot tell them apart", findings);
    CheckNames(Meshes, "meshes", "so an instance or an alias file cannot tell them apart", findings);
    CheckLongNames(findings);
    CheckCounts(findings);
}

std::string Counted(int64_t count, const char* one, const char* several)
{
    return std::to_string(count) + " " + (count == 1 ? one : several);
}

std::string QuotedName(const std::string& name)
{
    std::string shown = name;
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, '?');
    return '"' + Utf8FromCodePage(shown) + '"';
}
