#include "app/modUndo.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <utility>
#include <vector>

#include "app/modMvmDef.h"

namespace {

struct BoneChange {
    int32_t Vertex = 0;
    int16_t Bone = 0;
};

struct RoleState {
    int16_t Skin = 0, Shadow = 0;
    float Scale = 1;
    Vec3 Offset{};
};

/// One side of a part of the scene.
struct KeptPart {
    ScenePart Part{};
    int32_t Mesh = 0;
    bool IsSkin = false;
    bool Differs = true;
    bool Whole = true; ///< Bones holds all vertices; else Changes those that differ
    std::vector<int16_t> Bones{};
    std::vector<BoneChange> Changes{};
    std::vector<Vec3> Normals{};
    std::vector<std::array<int16_t, 3>> FaceNormals{};
    std::vector<std::string> Names{}; ///< of the mesh, then name and mesh of each instance
    RoleState Roles{};
};

struct Step {
    std::string Label{};
    uint64_t StateAfter = 0;
    int32_t Vertices = 0;
    std::array<int16_t, 2> ActiveBone{}; ///< before and after
    std::array<int16_t, 2> EditTarget{};
    size_t Bytes = 0;
    std::vector<KeptPart> Parts{};
};

constexpr uint64_t neverSaved = 0;

std::deque<Step> steps;
size_t taken = 0; ///< steps that lie behind the scene; the others lie ahead
size_t stepBytes = 0;
uint64_t lastState = 1; ///< states are numbered, so that one that was left can be told from all others
uint64_t firstState = 1;
uint64_t savedState = neverSaved;

bool making = false;
std::vector<KeptPart> kept;
int16_t boneBefore = 0;
int16_t targetBefore = 0;

uint64_t CurrentState()
{
    return taken == 0 ? firstState : steps[taken - 1].StateAfter;
}

RoleState CurrentRoles()
{
    return {SkinMesh, ShadowMesh, SkinScale, SkinOffset};
}

KeptPart Copy(ScenePart part, int32_t mesh)
{
    KeptPart copy{.Part = part, .Mesh = mesh};
    switch (part) {
    case ScenePart::Assignments:
        copy.IsSkin = Meshes[mesh].IsSkin;
        copy.Bones = Meshes[mesh].VertexBones.Items;
        break;
    case ScenePart::Normals:
        copy.Normals = Meshes[mesh].Normals.Items;
        copy.FaceNormals.reserve(Meshes[mesh].Faces.Items.size());
        for (const MvmFace& face : Meshes[mesh].Faces) {
            copy.FaceNormals.push_back(face.Normal);
        }
        break;
    case ScenePart::Names:
        copy.Names.push_back(Meshes[mesh].Name);
        for (const MvmInstance& instance : Instances) {
            copy.Names.push_back(instance.Name);
            copy.Names.push_back(instance.Mesh);
        }
        break;
    case ScenePart::Roles:
        copy.Roles = CurrentRoles();
        break;
    }
    return copy;
}

void SwapBones(KeptPart* part)
{
    MvmMesh& mesh = Meshes[part->Mesh];
    std::swap(mesh.IsSkin, part->IsSkin);
    if (part->Whole) {
        mesh.VertexBones.Items.swap(part->Bones);
    }
    for (BoneChange& change : part->Changes) {
        std::swap(mesh.VertexBones[change.Vertex], change.Bone);
    }
}

void SwapNormals(KeptPart* part)
{
    MvmMesh& mesh = Meshes[part->Mesh];
    mesh.Normals.Items.swap(part->Normals);
    for (size_t i = 0; i < part->FaceNormals.size(); ++i) {
        mesh.Faces.Items[i].Normal.swap(part->FaceNormals[i]);
    }
}

void SwapNames(KeptPart* part)
{
    auto name = part->Names.begin();
    Meshes[part->Mesh].Name.swap(*name++);
    for (MvmInstance& instance : Instances) {
        instance.Name.swap(*name++);
        instance.Mesh.swap(*name++);
    }
}

/// Exchanges a part of the scene with the side that is held.
void Swap(KeptPart* part)
{
    switch (part->Part) {
    case ScenePart::Assignments:
        SwapBones(part);
        break;
    case ScenePart::Normals:
        SwapNormals(part);
        break;
    case ScenePart::Names:
        SwapNames(part);
        break;
    case ScenePart::Roles: {
        const RoleState now = CurrentRoles();
        SkinMesh = part->Roles.Skin;
        ShadowMesh = part->Roles.Shadow;
        SkinScale = part->Roles.Scale;
        SkinOffset = part->Roles.Offset;
        part->Roles = now;
        break;
    }
    }
}

/// Vertices whose bone differs; those that one side alone has count when they have a bone there.
int32_t CountChanged(const std::vector<int16_t>& a, const std::vector<int16_t>& b)
{
    const auto at = [](const std::vector<int16_t>& bones, size_t i) {
        return i < bones.size() ? bones[i] : int16_t{0};
    };
    int32_t changed = 0;
    for (size_t i = 0; i < std::max(a.size(), b.size()); ++i) {
        changed += at(a, i) != at(b, i) ? 1 : 0;
    }
    return changed;
}

template <typename T>
bool SameBytes(const std::vector<T>& a, const std::vector<T>& b)
{
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

bool SameRoles(const RoleState& a, const RoleState& b)
{
    return a.Skin == b.Skin && a.Shadow == b.Shadow && std::memcmp(&a.Scale, &b.Scale, sizeof(float)) == 0 &&
           std::memcmp(&a.Offset, &b.Offset, sizeof(Vec3)) == 0;
}

/// Takes bones down to those that differ. False when none does.
bool PackBones(KeptPart* part, int32_t* vertices)
{
    const MvmMesh& mesh = Meshes[part->Mesh];
    const std::vector<int16_t>& now = mesh.VertexBones.Items;
    const int32_t changed = CountChanged(part->Bones, now);
    *vertices += changed;
    if (now.size() != part->Bones.size() || mesh.IsSkin != part->IsSkin) {
        return true;
    }
    // Whole vectors take less where most vertices differ.
    if (static_cast<size_t>(changed) * sizeof(BoneChange) < now.size() * sizeof(int16_t)) {
        part->Changes.reserve(static_cast<size_t>(changed));
        for (size_t i = 0; i < now.size(); ++i) {
            if (now[i] != part->Bones[i]) {
                part->Changes.push_back({static_cast<int32_t>(i) + 1, part->Bones[i]});
            }
        }
        std::vector<int16_t>().swap(part->Bones);
        part->Whole = false;
    }
    return changed > 0;
}

/// Takes a part down to what differs from the scene. False when nothing does.
bool Pack(KeptPart* part, int32_t* vertices)
{
    switch (part->Part) {
    case ScenePart::Assignments:
        return PackBones(part, vertices);
    case ScenePart::Roles:
        return !SameRoles(part->Roles, CurrentRoles());
    default: {
        const KeptPart now = Copy(part->Part, part->Mesh);
        return !SameBytes(part->Normals, now.Normals) || !SameBytes(part->FaceNormals, now.FaceNormals) ||
               part->Names != now.Names;
    }
    }
}

size_t BytesOf(const Step& step)
{
    size_t bytes = sizeof(Step) + step.Label.capacity();
    for (const KeptPart& part : step.Parts) {
        bytes += sizeof(KeptPart) + part.Bones.capacity() * sizeof(int16_t) +
                 part.Changes.capacity() * sizeof(BoneChange) + part.Normals.capacity() * sizeof(Vec3) +
                 part.FaceNormals.capacity() * sizeof(std::array<int16_t, 3>);
        for (const std::string& name : part.Names) {
            bytes += sizeof(name) + name.capacity();
        }
    }
    return bytes;
}

void DropAhead()
{
    while (steps.size() > taken) {
        stepBytes -= steps.back().Bytes;
        steps.pop_back();
    }
}

void DropOldest()
{
    while (stepBytes > StepMemoryLimit && steps.size() > 1) {
        stepBytes -= steps.front().Bytes;
        firstState = steps.front().StateAfter;
        steps.pop_front();
        --taken;
    }
}

/// Swaps a step with the scene and tells the state that is reached: `side` 0 the one before the step, 1 the one after it.
TakenStep Take(Step* step, size_t side)
{
    TakenStep reached{.Label = step->Label,
                      .Vertices = step->Vertices,
                      .ActiveBone = step->ActiveBone[side],
                      .EditTarget = step->EditTarget[side]};
    for (KeptPart& part : step->Parts) {
        Swap(&part);
    }
    return reached;
}

} // namespace

void BeginStep()
{
    kept.clear();
    making = true;
    boneBefore = ActiveBone;
    targetBefore = EditTarget;
}

void Touch(ScenePart part, int32_t mesh)
{
    const int32_t of = part == ScenePart::Roles ? 0 : mesh;
    const bool known = std::any_of(kept.begin(), kept.end(),
                                   [&](const KeptPart& held) { return held.Part == part && held.Mesh == of; });
    if (making && !known && (part == ScenePart::Roles || IsValidMesh(mesh))) {
        kept.push_back(Copy(part, of));
    }
}

void EndStep(const char* label)
{
    if (kept.empty()) {
        making = false;
        return;
    }
    Step step{.Label = label,
              .StateAfter = lastState + 1,
              .ActiveBone = {boneBefore, ActiveBone},
              .EditTarget = {targetBefore, EditTarget}};
    // Until the step stands, `kept` holds what a failure needs to go back; packing leaves each part fit for that.
    for (KeptPart& part : kept) {
        part.Differs = Pack(&part, &step.Vertices);
    }
    std::erase_if(kept, [](const KeptPart& part) { return !part.Differs; });
    making = false;
    if (kept.empty()) {
        return;
    }
    steps.emplace(steps.begin() + static_cast<std::ptrdiff_t>(taken));
    step.Parts.swap(kept);
    step.Bytes = BytesOf(step);
    stepBytes += step.Bytes;
    ++lastState;
    steps[taken++] = std::move(step);
    DropAhead();
    DropOldest();
}

void RollBackStep() noexcept
{
    for (KeptPart& part : kept) {
        Swap(&part);
    }
    kept.clear();
}

void ForgetSteps()
{
    steps.clear();
    kept.clear();
    making = false;
    taken = stepBytes = 0;
    firstState = ++lastState;
    savedState = neverSaved;
}

std::optional<TakenStep> UndoStep()
{
    if (taken == 0) {
        return std::nullopt;
    }
    const TakenStep reached = Take(&steps[taken - 1], 0);
    --taken;
    return reached;
}

std::optional<TakenStep> RedoStep()
{
    if (taken == steps.size()) {
        return std::nullopt;
    }
    const TakenStep reached = Take(&steps[taken], 1);
    ++taken;
    return reached;
}

void MarkSceneSaved()
{
    savedState = CurrentState();
}

bool IsSceneChanged()
{
    return savedState != CurrentState();
}

size_t StepMemory()
{
    return stepBytes;
}
