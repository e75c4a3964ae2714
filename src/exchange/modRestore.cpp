#include "modRestore.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "app/modMath.h"
#include "model/modMvmBind.h"
#include "modFromScene.h"
#include "modMatrix.h"
#include "modMeshRest.h"
#include "modNumbering.h"
#include "modRecord.h"

namespace {

/// The number into Bones of each bone of the file; empty when one is not of the record, or stands elsewhere.
std::vector<int16_t> BonesOfFile(const ExchangeModel& model)
{
    const std::vector<std::string> names = BoneNamesInFiles();
    std::unordered_map<std::string, int16_t> byName;
    std::vector<Vec3> heads;
    for (size_t bone = 0; bone < names.size() && bone < INT16_MAX; ++bone) {
        byName[names[bone]] = static_cast<int16_t>(bone + 1);
        heads.push_back(Bones.Items[bone].Position);
    }
    const double near = BoneTolerance(heads);
    std::vector<int16_t> numbers;
    for (const ExchangeBone& bone : model.Bones) {
        const auto found = byName.find(bone.Name);
        if (found == byName.end() || !(VecDistance(Bones[found->second].Position, bone.Head) <= near)) {
            return {};
        }
        numbers.push_back(found->second);
    }
    return numbers;
}

bool StandsAsRecorded(const ExchangeMesh& mesh, const MvmMesh& own)
{
    std::vector<ExchangePlacement> recorded;
    if (mesh.IsSkinned) {
        recorded.push_back(SkinPlacement());
    } else {
        recorded = PlacementsOfMesh(own);
    }
    if (recorded.size() != mesh.Placements.size()) {
        return false;
    }
    constexpr double size = 1;
    for (size_t i = 0; i < recorded.size(); ++i) {
        const ExchangePlacement& placement = mesh.Placements[i];
        if (!AreAlike(MatrixOf(recorded[i].Position, recorded[i].Rotation, recorded[i].Scale),
                      MatrixOf(placement.Position, placement.Rotation, placement.Scale), size)) {
            return false;
        }
    }
    return true;
}

bool RestoreMeshes(const ExchangeModel& model, const std::vector<MeshRecord>& records,
                   const std::vector<int16_t>& bones)
{
    const std::vector<std::string> names = MeshNamesInFiles();
    size_t used = 0;
    for (int32_t index = 1; index <= MeshCount(); ++index) {
        const MeshRecord& record = records[static_cast<size_t>(index) - 1];
        MvmMesh& mesh = Meshes[index];
        const uint32_t salt = NumberSalt(mesh.Name, index);
        if (record.Sum.empty()) {
            if (!MeshFromRest(record.Rest, {}, salt, {}, &mesh)) {
                return false;
            }
            continue;
        }
        const auto found = std::find_if(model.Meshes.begin(), model.Meshes.end(), [&](const ExchangeMesh& one) {
            return one.Name == names[static_cast<size_t>(index) - 1];
        });
        if (found == model.Meshes.end() || ShapeSum(model, *found) != record.Sum || !StandsAsRecorded(*found, mesh) ||
            !MeshFromRest(record.Rest, *found, salt, bones, &mesh)) {
            return false;
        }
        ++used;
    }
    return used == model.Meshes.size();
}

} // namespace

double BoneTolerance(const std::vector<Vec3>& heads)
{
    constexpr double part = 1e-4;
    double largest = 0;
    for (const Vec3& head : heads) {
        largest = std::max({largest, std::fabs(static_cast<double>(head.X)), std::fabs(static_cast<double>(head.Y)),
                            std::fabs(static_cast<double>(head.Z))});
    }
    return largest * part;
}

bool RestoreScene(const ExchangeModel& model)
{
    std::vector<MeshRecord> records;
    if (model.Record.empty() || !SceneFromRecord(model.Record, &records)) {
        return false;
    }
    const std::vector<int16_t> bones = BonesOfFile(model);
    std::string ignored;
    if (bones.size() != model.Bones.size() || !RestoreMeshes(model, records, bones) || !AllFinite(&ignored)) {
        ForgetModel();
        return false;
    }
    MarkShadowBones();
    return true;
}
