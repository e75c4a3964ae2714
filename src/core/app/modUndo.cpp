#include "app/modUndo.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <deque>
#include <utility>
#include <variant>
#include <vector>

#include "app/modMvmDef.h"

namespace {

struct BoneChange {
    int32_t Vertex = 0;
    int16_t Bone = 0;
};

// One side of each kind of part.

struct AssignmentSide {
    bool IsSkin = false;
    bool Whole = true; ///< Bones holds all vertices; else Changes those that differ
    std::vector<int16_t> Bones{};
    std::vector<BoneChange> Changes{};
};

struct NormalSide {
    std::vector<Vec3> Normals{};
    std::vector<std::array<int16_t, 3>> FaceNormals{};
};

using NameSide = std::vector<std::string>; ///< of the mesh, then name and mesh of each instance

struct RoleSide {
    int16_t Skin = 0, Shadow = 0;
    float Scale = 1;
    Vec3 Offset{};
};

struct KeptPart {
    int32_t Mesh = 0;
    bool Differs = true;
    std::variant<AssignmentSide, NormalSide, NameSide, RoleSide> Side{}; ///< in the order of ScenePart
};

struct Step {
    const char* Label = nullptr;
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

RoleSide RolesNow()
{
    return {SkinMesh, ShadowMesh, SkinScale, SkinOffset};
}

NormalSide NormalsNow(const MvmMesh& mesh)
{
    NormalSide side{.Normals = mesh.Normals.Items};
    side.FaceNormals.reserve(mesh.Faces.Items.size());
    for (const MvmFace& face : mesh.Faces) {
        side.FaceNormals.push_back(face.Normal);
    }
    return side;
}

NameSide NamesNow(const MvmMesh& mesh)
{
    NameSide names = {mesh.Name};
    for (const MvmInstance& instance : Instances) {
        names.push_back(instance.Name);
        names.push_back(instance.Mesh);
    }
    return names;
}

KeptPart Keep(ScenePart part, int32_t mesh)
{
    switch (part) {
    case ScenePart::Assignments:
        return {.Mesh = mesh,
                .Side = AssignmentSide{.IsSkin = Meshes[mesh].IsSkin, .Bones = Meshes[mesh].VertexBones.Items}};
    case ScenePart::Normals:
        return {.Mesh = mesh, .Side = NormalsNow(Meshes[mesh])};
    case ScenePart::Names:
        return {.Mesh = mesh, .Side = NamesNow(Meshes[mesh])};
    case ScenePart::Roles:
        break;
    }
    return {.Side = RolesNow()};
}

// Each exchanges a part of the scene with the side that is held. They allocate nothing.

void Swap(int32_t index, AssignmentSide* side)
{
    MvmMesh& mesh = Meshes[index];
    std::swap(mesh.IsSkin, side->IsSkin);
    if (side->Whole) {
        mesh.VertexBones.Items.swap(side->Bones);
    }
    for (BoneChange& change : side->Changes) {
        std::swap(mesh.VertexBones[change.Vertex], change.Bone);
    }
}

void Swap(int32_t index, NormalSide* side)
{
    MvmMesh& mesh = Meshes[index];
    mesh.Normals.Items.swap(side->Normals);
    for (size_t i = 0; i < side->FaceNormals.size(); ++i) {
        mesh.Faces.Items[i].Normal.swap(side->FaceNormals[i]);
    }
}

void Swap(int32_t index, NameSide* side)
{
    auto name = side->begin();
    Meshes[index].Name.swap(*name++);
    for (MvmInstance& instance : Instances) {
        instance.Name.swap(*name++);
        instance.Mesh.swap(*name++);
    }
}

void Swap(int32_t /*index*/, RoleSide* side)
{
    const RoleSide now = RolesNow();
    SkinMesh = side->Skin;
    ShadowMesh = side->Shadow;
    SkinScale = side->Scale;
    SkinOffset = side->Offset;
    *side = now;
}

void SwapPart(KeptPart* part)
{
    std::visit([part](auto& side) { Swap(part->Mesh, &side); }, part->Side);
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

// Each takes a side down to what differs from the scene. False when nothing does.

bool Pack(const MvmMesh& mesh, AssignmentSide* side, int32_t* vertices)
{
    const std::vector<int16_t>& now = mesh.VertexBones.Items;
    const int32_t changed = CountChanged(side->Bones, now);
    *vertices += changed;
    if (now.size() != side->Bones.size() || mesh.IsSkin != side->IsSkin) {
        return true;
    }
    // Whole vectors take less where most vertices differ.
    if (static_cast<size_t>(changed) * sizeof(BoneChange) < now.size() * sizeof(int16_t)) {
        side->Changes.reserve(static_cast<size_t>(changed));
        for (size_t i = 0; i < now.size(); ++i) {
            if (now[i] != side->Bones[i]) {
                side->Changes.push_back({static_cast<int32_t>(i) + 1, side->Bones[i]});
            }
        }
        std::vector<int16_t>().swap(side->Bones);
        side->Whole = false;
    }
    return changed > 0;
}

bool PackPart(KeptPart* part, int32_t* vertices)
{
    if (auto* side = std::get_if<AssignmentSide>(&part->Side)) {
        return Pack(Meshes[part->Mesh], side, vertices);
    }
    if (const auto* side = std::get_if<NormalSide>(&part->Side)) {
        const NormalSide now = NormalsNow(Meshes[part->Mesh]);
        return !SameBytes(side->Normals, now.Normals) || !SameBytes(side->FaceNormals, now.FaceNormals);
    }
    if (const auto* side = std::get_if<NameSide>(&part->Side)) {
        return *side != NamesNow(Meshes[part->Mesh]);
    }
    using Bits = std::array<uint32_t, sizeof(RoleSide) / sizeof(uint32_t)>;
    return std::bit_cast<Bits>(std::get<RoleSide>(part->Side)) != std::bit_cast<Bits>(RolesNow());
}

size_t BytesOf(const AssignmentSide& side)
{
    return side.Bones.capacity() * sizeof(int16_t) + side.Changes.capacity() * sizeof(BoneChange);
}

size_t BytesOf(const NormalSide& side)
{
    return side.Normals.capacity() * sizeof(Vec3) + side.FaceNormals.capacity() * sizeof(std::array<int16_t, 3>);
}

size_t BytesOf(const NameSide& side)
{
    size_t bytes = side.capacity() * sizeof(std::string);
    for (const std::string& name : side) {
        bytes += name.capacity();
    }
    return bytes;
}

size_t BytesOf(const RoleSide& /*side*/)
{
    return 0;
}

size_t BytesOf(const Step& step)
{
    size_t bytes = sizeof(Step) + step.Parts.capacity() * sizeof(KeptPart);
    for (const KeptPart& part : step.Parts) {
        bytes += std::visit([](const auto& side) { return BytesOf(side); }, part.Side);
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

/// Swaps a step with the scene and tells the state that is reached: `side` 0 the one before the step, 1 the one after
/// it.
TakenStep Take(Step* step, size_t side)
{
    TakenStep reached{.Label = step->Label,
                      .Vertices = step->Vertices,
                      .ActiveBone = step->ActiveBone[side],
                      .EditTarget = step->EditTarget[side]};
    for (KeptPart& part : step->Parts) {
        SwapPart(&part);
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
    const bool known = std::any_of(kept.begin(), kept.end(), [&](const KeptPart& held) {
        return held.Side.index() == static_cast<size_t>(part) && held.Mesh == of;
    });
    if (making && !known && (part == ScenePart::Roles || IsValidMesh(mesh))) {
        kept.push_back(Keep(part, of));
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
        part.Differs = PackPart(&part, &step.Vertices);
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

void RollBackStep()
{
    for (KeptPart& part : kept) {
        SwapPart(&part);
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
