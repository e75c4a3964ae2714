#include "modRecord.h"

#include <algorithm>
#include <array>
#include <limits>

#include <nlohmann/json.hpp>

#include "modBase64.h"
#include "modCodePage.h"

namespace {

using Json = nlohmann::json;

constexpr int recordVersion = 1;

Json JsonOf(const Vec3& triple)
{
    return {triple.X, triple.Y, triple.Z};
}

Vec3 TripleFrom(const Json& json)
{
    return {json.at(0).get<float>(), json.at(1).get<float>(), json.at(2).get<float>()};
}

std::string TextFrom(const Json& json, const char* key)
{
    return CodePageFromUtf8(json.at(key).get_ref<const std::string&>());
}

/// A whole number; 0 for any other.
int64_t WholeFrom(const Json& json, const char* key)
{
    const Json& number = json.at(key);
    return number.is_number_integer() ? number.get<int64_t>() : 0;
}

int16_t MeshNumberFrom(const Json& json, const char* key)
{
    const int64_t number = WholeFrom(json, key);
    return number >= 1 && number <= std::min<int64_t>(MeshCount(), INT16_MAX) ? static_cast<int16_t>(number)
                                                                              : int16_t{0};
}

void TakeBones(const Json& json)
{
    for (const Json& one : json) {
        MvmBone& bone = Bones.Add();
        bone.Name = TextFrom(one, "name");
        bone.Position = TripleFrom(one.at("position"));
        bone.Rotation = TripleFrom(one.at("rotation"));
        bone.ExtraText = TextFrom(one, "text");
    }
}

void TakeMaterials(const Json& json)
{
    for (const Json& one : json) {
        MvmMaterial& material = Materials.Add();
        material.Name = TextFrom(one, "name");
        material.ColorMap = TextFrom(one, "colormap");
        material.OpacityMap = TextFrom(one, "opacitymap");
        material.BumpMap = TextFrom(one, "bumpmap");
    }
}

void TakeMeshes(const Json& json, std::vector<MeshRecord>* meshes)
{
    for (const Json& one : json) {
        MvmMesh& mesh = Meshes.Add();
        mesh.Name = TextFrom(one, "name");
        mesh.IsSkin = one.at("skin").get<bool>();
        for (const Json& name : one.at("materials")) {
            mesh.MeshMaterials.Add().Name = CodePageFromUtf8(name.get_ref<const std::string&>());
        }
        MeshRecord& record = meshes->emplace_back();
        record.Sum = one.at("sum").get<std::string>();
        record.Rest = FromBase64(one.at("rest").get_ref<const std::string&>());
    }
}

void TakeInstances(const Json& json)
{
    for (const Json& one : json) {
        MvmInstance& instance = Instances.Add();
        instance.Name = TextFrom(one, "name");
        instance.Mesh = TextFrom(one, "mesh");
        instance.Position = TripleFrom(one.at("position"));
        instance.Rotation = TripleFrom(one.at("rotation"));
        instance.Scale = one.at("scale").get<float>();
    }
}

} // namespace

std::string RecordOfScene(const std::vector<MeshRecord>& meshes)
{
    Json record = {{"version", recordVersion},  {"skin", SkinMesh},           {"shadow", ShadowMesh},
                   {"bones", Json::array()},    {"materials", Json::array()}, {"meshes", Json::array()},
                   {"instances", Json::array()}};
    for (const MvmBone& bone : Bones) {
        record["bones"].push_back({{"name", Utf8FromCodePage(bone.Name)},
                                   {"position", JsonOf(bone.Position)},
                                   {"rotation", JsonOf(bone.Rotation)},
                                   {"text", Utf8FromCodePage(bone.ExtraText)}});
    }
    for (const MvmMaterial& material : Materials) {
        record["materials"].push_back({{"name", Utf8FromCodePage(material.Name)},
                                       {"colormap", Utf8FromCodePage(material.ColorMap)},
                                       {"opacitymap", Utf8FromCodePage(material.OpacityMap)},
                                       {"bumpmap", Utf8FromCodePage(material.BumpMap)}});
    }
    for (int32_t index = 1; index <= MeshCount(); ++index) {
        const MvmMesh& mesh = Meshes[index];
        Json names = Json::array();
        for (const MvmMeshMaterial& material : mesh.MeshMaterials) {
            names.push_back(Utf8FromCodePage(material.Name));
        }
        const MeshRecord& own = meshes[static_cast<size_t>(index) - 1];
        record["meshes"].push_back({{"name", Utf8FromCodePage(mesh.Name)},
                                    {"skin", mesh.IsSkin && (index == SkinMesh || index == ShadowMesh)},
                                    {"materials", std::move(names)},
                                    {"sum", own.Sum},
                                    {"rest", ToBase64(own.Rest)}});
    }
    for (const MvmInstance& instance : Instances) {
        record["instances"].push_back({{"name", Utf8FromCodePage(instance.Name)},
                                       {"mesh", Utf8FromCodePage(instance.Mesh)},
                                       {"position", JsonOf(instance.Position)},
                                       {"rotation", JsonOf(instance.Rotation)},
                                       {"scale", instance.Scale}});
    }
    return record.dump();
}

bool SceneFromRecord(const std::string& record, std::vector<MeshRecord>* meshes)
{
    try {
        const Json json = Json::parse(record);
        if (WholeFrom(json, "version") != recordVersion) {
            return false;
        }
        TakeBones(json.at("bones"));
        TakeMaterials(json.at("materials"));
        TakeMeshes(json.at("meshes"), meshes);
        TakeInstances(json.at("instances"));
        SkinMesh = MeshNumberFrom(json, "skin");
        ShadowMesh = MeshNumberFrom(json, "shadow");
        return true;
    } catch (const Json::exception&) {
        ForgetModel();
        meshes->clear();
        return false;
    }
}
