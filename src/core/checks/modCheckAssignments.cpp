#include <cmath>
#include <cstddef>
#include <map>
#include <string>
#include <utility>

#include "app/modMvmDef.h"
#include "checks/modCheckModel.h"
#include "modCodePage.h"
#include "model/modLostAssignments.h"
#include "model/modNumbers.h"
#include "model/modStrings.h"

namespace {

/// The joint number that the file gives to a vertex; -1 for a mesh that was read without such.
int16_t JointOf(const MvmMesh& mesh, int32_t vertex)
{
    return mesh.VertexJoints.Has(vertex) ? mesh.VertexJoints[vertex] : int16_t{-1};
}

/// The last bone of a kind with this joint number, 0 for none.
int32_t BoneOfJoint(int16_t joint, bool shadow)
{
    for (int32_t bone = BoneCount(); bone >= 1; --bone) {
        if (Bones[bone].IsShadow == shadow && JointNumber(Bones[bone].Name) == joint) {
            return bone;
        }
    }
    return 0;
}

void TellOfUnassigned(const MvmMesh& mesh, Finding* finding, std::vector<Finding>* findings)
{
    finding->What = Counted(finding->Count, "vertex", "vertices") + " of mesh " + QuotedName(mesh.Name) +
                    (finding->Count == 1 ? " has" : " have") + " no bone and will stay behind when the creature moves.";
    finding->Advice =
        "Give them bones: the key U goes from one to the next in the window, \"bwrt auto-assign\" takes the "
        "nearest.";
    findings->push_back(std::move(*finding));
}

void TellOfJoint(const MvmMesh& mesh, int16_t joint, bool asShadow, Finding* finding, std::vector<Finding>* findings)
{
    const std::string number = std::to_string(joint);
    const std::string who = Counted(finding->Count, "vertex", "vertices") + " of mesh " + QuotedName(mesh.Name) +
                            (finding->Count == 1 ? " names" : " name") + " the joint number " + number;
    const int32_t other = BoneOfJoint(joint, !asShadow);
    finding->Grade = Severity::Error;
    if (other != 0) {
        finding->Code = "other-kind";
        finding->Bone = Utf8FromCodePage(Bones[other].Name);
        finding->What = who + " of " + QuotedName(Bones[other].Name) + ", which is " +
                        (asShadow ? "no shadow bone" : "a shadow bone") + ": a load leaves " +
                        Verb(finding->Count, "it", "them") + " without a bone, and the next save loses the number.";
    } else {
        finding->Code = "unknown-joint";
        finding->What = who + ", which no bone has: a load leaves " + Verb(finding->Count, "it", "them") +
                        " without a bone, and the next save loses the number.";
    }
    finding->Advice = "Give " + Verb(finding->Count, "it", "them") +
                      " to a bone of the same kind, or give the bone that was meant this number.";
    findings->push_back(std::move(*finding));
}

void CheckVertices(int32_t index, std::vector<Finding>* findings)
{
    const MvmMesh& mesh = Meshes[index];
    const bool asShadow = index == ShadowMesh;
    Finding unassigned{.Code = "unassigned", .Count = 0, .Mesh = Utf8FromCodePage(mesh.Name)};
    std::map<int16_t, Finding> byJoint;
    for (int32_t vertex = 1; vertex <= mesh.VertexBones.Count(); ++vertex) {
        if (mesh.VertexBones[vertex] != 0) {
            continue;
        }
        const int16_t joint = JointOf(mesh, vertex);
        if (joint == -1) {
            AddPlace(vertex, &unassigned.Vertices, &unassigned);
        } else {
            Finding& finding = byJoint.try_emplace(joint, Finding{.Count = 0, .Mesh = unassigned.Mesh}).first->second;
            AddPlace(vertex, &finding.Vertices, &finding);
        }
    }
    if (unassigned.Count > 0) {
        TellOfUnassigned(mesh, &unassigned, findings);
    }
    for (auto& [joint, finding] : byJoint) {
        TellOfJoint(mesh, joint, asShadow, &finding, findings);
    }
}

/// A skin that another one took the role from.
void CheckUnusedSkin(const MvmMesh& mesh, std::vector<Finding>* findings)
{
    const bool marked = mesh.Name.find('$') != std::string::npos;
    const int16_t winner = marked ? ShadowMesh : SkinMesh;
    Finding finding{.Code = "skin-unused", .Grade = Severity::Error, .Mesh = Utf8FromCodePage(mesh.Name)};
    finding.Count = mesh.VertexCount();
    finding.What = "The " + std::string(marked ? "shadow " : "skin ") + QuotedName(mesh.Name) + " is not used, since " +
                   (IsValidMesh(winner) ? QuotedName(Meshes[winner].Name) + " comes later in the file"
                                        : std::string("it lies behind what can have a role")) +
                   ": the next save writes it as a plain mesh without the joint numbers of its vertices.";
    finding.Advice = "Keep one skin and one shadow in a file; join the meshes, or make this one a plain mesh.";
    findings->push_back(std::move(finding));
}

std::string JointText(double joint)
{
    return FloatToText(static_cast<float>(joint));
}

/// Vertices of the role of a kind of bones that name this joint number.
int32_t CountNaming(double joint, bool shadow)
{
    const int16_t role = shadow ? ShadowMesh : SkinMesh;
    int32_t count = 0;
    if (IsValidMesh(role)) {
        for (const int16_t named : Meshes[role].VertexJoints) {
            count += named == joint ? 1 : 0;
        }
    }
    return count;
}

void CheckJoints(std::vector<Finding>* findings)
{
    std::map<std::pair<bool, double>, std::vector<int32_t>> bones;
    for (int32_t bone = 1; bone <= BoneCount(); ++bone) {
        const double joint = JointNumber(Bones[bone].Name);
        bones[{Bones[bone].IsShadow, joint}].push_back(bone);
        const bool isNumber = EndsInNumber(Bones[bone].Name);
        if (isNumber && joint != -1 && joint == std::floor(joint)) {
            continue;
        }
        const bool takesUnassigned = isNumber && joint == -1;
        const std::string name = QuotedName(Bones[bone].Name);
        Finding finding{.Code = "joint-missing", .Bone = Utf8FromCodePage(Bones[bone].Name)};
        if (takesUnassigned) {
            finding.Grade = Severity::Error;
            finding.Count = CountNaming(joint, Bones[bone].IsShadow);
            finding.What = "The bone " + name +
                           " has the number -1, by which a file tells that a vertex has no bone: a " +
                           "load gives it all of these, now " + Counted(finding.Count, "vertex.", "vertices.");
        } else if (isNumber) {
            finding.What = "The bone " + name + " has joint number " + JointText(joint) +
                           ", and a vertex can only name a whole number.";
        } else {
            finding.What =
                "The last two characters of the bone's name " + name + " are no number, so it has joint number 0.";
        }
        finding.Advice = "Let its name end in two digits that no other bone of its kind has.";
        findings->push_back(std::move(finding));
    }
    for (const auto& [key, group] : bones) {
        if (group.size() < 2) {
            continue;
        }
        const auto& [shadow, joint] = key;
        std::string names;
        for (const int32_t bone : group) {
            names += (names.empty() ? "" : bone == group.back() ? " and " : ", ") + QuotedName(Bones[bone].Name);
        }
        const int32_t count = CountNaming(joint, shadow);
        findings->push_back({.Code = "joint-shared",
                             .Grade = count > 0 ? Severity::Error : Severity::Warning,
                             .Count = count,
                             .Bone = Utf8FromCodePage(Bones[group.back()].Name),
                             .What = std::string(shadow ? "The shadow bones " : "The bones ") + names +
                                     " share the joint number " + JointText(joint) +
                                     ": whatever is given to one of them belongs to " +
                                     QuotedName(Bones[group.back()].Name) + " after a save and a load, as now " +
                                     Counted(count, "vertex does.", "vertices do."),
                             .Advice = "Let each name end in two digits of its own."});
    }
}

void CheckLosses(std::vector<Finding>* findings)
{
    for (const LostAssignment& loss : FindLostAssignments()) {
        if (loss.Reason == LossReason::NoRole) {
            continue; // told as a skin that is not used
        }
        Finding finding{.Code = "lost-at-save", .Grade = Severity::Error, .Count = loss.Vertices};
        finding.Mesh = Utf8FromCodePage(Meshes[loss.Mesh].Name);
        finding.Bone = IsValidBone(loss.Bone) ? Utf8FromCodePage(Bones[loss.Bone].Name) : std::string();
        finding.What = DescribeLoss(loss);
        finding.Advice = "Change the bone's or the mesh's name so that a model file can tell what is meant.";
        findings->push_back(std::move(finding));
    }
}

} // namespace

void CheckAssignments(std::vector<Finding>* findings)
{
    for (int32_t index = 1; index <= MeshCount(); ++index) {
        const MvmMesh& mesh = Meshes[index];
        if (index == SkinMesh || index == ShadowMesh) {
            CheckVertices(index, findings);
        } else if (mesh.IsSkin) {
            CheckUnusedSkin(mesh, findings);
        }
    }
    CheckJoints(findings);
    CheckLosses(findings);
}
