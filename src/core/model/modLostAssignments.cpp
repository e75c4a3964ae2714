#include "model/modLostAssignments.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "modCodePage.h"
#include "model/modNumbers.h"
#include "model/modStrings.h"

namespace {

/// What a load reads of a name that was written into a header.
std::string KeptName(const std::string& name)
{
    const std::string quoted = '"' + name + '"';
    return StripQuotes(quoted.substr(0, quoted.find(' ')));
}

/// The joint number that a load reads for a vertex of a bone with this name.
int16_t ReadJoint(std::string_view boneName)
{
    int16_t joint = 0;
    RoundToInt16(JointNumber(boneName), &joint); // two characters make no number that could fail
    return joint;
}

/// The bones as a load of the saved file will see them.
struct LoadedBones {
    std::vector<std::string> Names;                         ///< by bone; entry 0 is not used
    std::vector<bool> AreShadows;                           ///< by bone; entry 0 is not used
    std::map<std::pair<bool, double>, int16_t> LastByJoint; ///< by kind (true for shadow) and joint number
};

LoadedBones LookAhead()
{
    LoadedBones bones;
    bones.Names.resize(1);
    bones.AreShadows.resize(1);
    for (int32_t bone = 1; bone <= std::min<int32_t>(BoneCount(), INT16_MAX); ++bone) {
        bones.Names.push_back(KeptName(Bones[bone].Name));
        bones.AreShadows.push_back(HoldsAnyCase(bones.Names.back(), "$j$"));
        bones.LastByJoint[{bones.AreShadows.back(), JointNumber(bones.Names.back())}] = static_cast<int16_t>(bone);
    }
    return bones;
}

/// The bone that a load gives to the vertices of a bone, 0 to those of none. `asShadow` is the role of their mesh.
int16_t WinnerOf(int16_t bone, bool asShadow, const LoadedBones& bones)
{
    const int16_t joint = IsValidBone(bone) ? ReadJoint(Bones[bone].Name) : int16_t{-1};
    const auto winner = bones.LastByJoint.find({asShadow, joint});
    return winner == bones.LastByJoint.end() ? int16_t{0} : winner->second;
}

LossReason ReasonOf(int16_t bone, bool asShadow, const LoadedBones& bones)
{
    if (IsValidBone(bone) && bones.AreShadows[static_cast<size_t>(bone)] != asShadow) {
        return LossReason::OtherKind;
    }
    return !IsValidBone(bone) || EndsInNumber(Bones[bone].Name) ? LossReason::SharedNumber : LossReason::NoNumber;
}

void FindInMesh(int32_t index, const LoadedBones& bones, std::vector<LostAssignment>* losses)
{
    const MvmMesh& mesh = Meshes[index];
    std::map<int16_t, int32_t> vertices;
    for (const int16_t bone : mesh.VertexBones) {
        ++vertices[IsValidBone(bone) ? bone : int16_t{0}];
    }
    const bool hasRole = mesh.IsSkin && (index == SkinMesh || index == ShadowMesh);
    if (!hasRole) {
        const int32_t assigned = mesh.VertexBones.Count() - vertices[0];
        if (assigned > 0) {
            losses->push_back({.Mesh = index, .Vertices = assigned});
        }
        return;
    }
    const bool asShadow = KeptName(mesh.Name).find('$') != std::string::npos;
    for (const auto& [bone, count] : vertices) {
        const int16_t winner = WinnerOf(bone, asShadow, bones);
        if (winner != bone) {
            losses->push_back({.Mesh = index,
                               .Bone = bone,
                               .Reason = ReasonOf(bone, asShadow, bones),
                               .Winner = winner,
                               .Vertices = count});
        }
    }
}

std::string Quoted(const std::string& name)
{
    return "\"" + Utf8FromCodePage(name) + "\"";
}

} // namespace

bool EndsInNumber(std::string_view boneName)
{
    std::string_view end = boneName.substr(boneName.size() - std::min<size_t>(boneName.size(), 2));
    while (!end.empty() && std::string_view(" \t\n+-.").find(end.front()) != std::string_view::npos) {
        end.remove_prefix(1);
    }
    return !end.empty() && end.front() >= '0' && end.front() <= '9';
}

std::vector<LostAssignment> FindLostAssignments()
{
    std::vector<LostAssignment> losses;
    const LoadedBones bones = LookAhead();
    for (int32_t mesh = 1; mesh <= MeshCount(); ++mesh) {
        if (Meshes[mesh].VertexBones.Count() > 0) {
            FindInMesh(mesh, bones, &losses);
        }
    }
    return losses;
}

std::string DescribeLoss(const LostAssignment& loss)
{
    const std::string count = std::to_string(loss.Vertices);
    const std::string ofMesh =
        (loss.Vertices == 1 ? " vertex of mesh " : " vertices of mesh ") + Quoted(Meshes[loss.Mesh].Name);
    if (loss.Reason == LossReason::NoRole) {
        return count + ofMesh +
               " will have no bone after the next load of the model: the mesh is neither skin nor shadow.";
    }
    const std::string from = loss.Bone == 0 ? loss.Vertices == 1 ? " that has no bone" : " that have no bone"
                                            : " of bone " + Quoted(Bones[loss.Bone].Name);
    const std::string to = loss.Winner == 0 ? "have none" : "belong to bone " + Quoted(Bones[loss.Winner].Name);
    std::string why;
    switch (loss.Reason) {
    case LossReason::OtherKind:
        why = Bones[loss.Bone].IsShadow ? "theirs is a shadow bone" : "theirs is no shadow bone";
        break;
    case LossReason::NoNumber:
        why = "the name of theirs ends in no number";
        break;
    default:
        why =
            "the joint number " +
            (loss.Bone == 0 ? std::string("-1") : FloatToText(static_cast<float>(JointNumber(Bones[loss.Bone].Name)))) +
            " is also that bone's";
        break;
    }
    return count + ofMesh + from + " will " + to + " after the next load of the model: " + why + ".";
}

void LogLostAssignments()
{
    constexpr size_t mostLines = 40;
    const std::vector<LostAssignment> losses = FindLostAssignments();
    int64_t rest = 0;
    for (size_t i = 0; i < losses.size(); ++i) {
        if (i < mostLines) {
            LogLine(DescribeLoss(losses[i]));
        } else {
            rest += losses[i].Vertices;
        }
    }
    if (rest > 0) {
        LogLine("The same holds for " + std::to_string(rest) + " more vertices.");
    }
}
