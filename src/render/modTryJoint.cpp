#include "modTryJoint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "modCamera.h"

namespace {

using Vector = std::array<double, 3>;

constexpr double radians = std::numbers::pi / 180;

/// The direction to the eye in the space of the scene: Z of the view, turned back by the camera's rotations.
Vector AxisOfSight()
{
    const Vec3& rotation = Cameras.at(static_cast<size_t>(CurrentCamera)).Rotation;
    const double x = static_cast<double>(rotation.X) * radians;
    const double y = static_cast<double>(rotation.Y) * radians;
    return {-std::sin(y) * std::cos(x), std::sin(x), std::cos(y) * std::cos(x)};
}

/// Which bones turn with a bone: those whose links lead to it. A circle of links ends where it closes.
std::vector<bool> HangingOn(int16_t bone)
{
    enum class State : uint8_t { Unknown, OnTheWay, Hangs, Free };
    std::vector<State> states(static_cast<size_t>(BoneCount()) + 1, State::Unknown);
    states[static_cast<size_t>(bone)] = State::Hangs;
    std::vector<int32_t> way;
    for (int32_t start = 1; start <= BoneCount(); ++start) {
        int32_t at = start;
        way.clear();
        while (IsValidBone(at) && states[static_cast<size_t>(at)] == State::Unknown) {
            states[static_cast<size_t>(at)] = State::OnTheWay;
            way.push_back(at);
            at = Bones[at].LinkBone;
        }
        const bool hangs = IsValidBone(at) && states[static_cast<size_t>(at)] == State::Hangs;
        for (const int32_t passed : way) {
            states[static_cast<size_t>(passed)] = hangs ? State::Hangs : State::Free;
        }
    }
    std::vector<bool> hanging;
    std::transform(states.begin(), states.end(), std::back_inserter(hanging),
                   [](State state) { return state == State::Hangs; });
    return hanging;
}

} // namespace

std::vector<Vec3> TurnedVertices(const MvmMesh& mesh, int16_t bone, double degrees)
{
    std::vector<Vec3> places = mesh.Vertices.Items;
    const std::vector<bool> hanging = HangingOn(bone);
    const Vec3& joint = Bones[bone].Position;
    const auto toSkin = [](float position, float offset) {
        return (static_cast<double>(position) + static_cast<double>(offset)) * static_cast<double>(SkinScale);
    };
    const Vector pivot = {toSkin(joint.X, SkinOffset.X), toSkin(joint.Y, SkinOffset.Y), toSkin(joint.Z, SkinOffset.Z)};
    const Vector axis = AxisOfSight();
    const double sine = std::sin(degrees * radians);
    const double cosine = std::cos(degrees * radians);
    // Rodrigues' formula: v cos + (axis x v) sin + axis (axis . v) (1 - cos).
    const auto turn = [&](Vec3* place) {
        const Vector v = {static_cast<double>(place->X) - pivot[0], static_cast<double>(place->Y) - pivot[1],
                          static_cast<double>(place->Z) - pivot[2]};
        const double along = (axis[0] * v[0] + axis[1] * v[1] + axis[2] * v[2]) * (1 - cosine);
        const auto turned = [&](size_t i, size_t j, size_t k) {
            const double cross = axis[j] * v[k] - axis[k] * v[j];
            return static_cast<float>(pivot[i] + v[i] * cosine + cross * sine + axis[i] * along);
        };
        *place = {turned(0, 1, 2), turned(1, 2, 0), turned(2, 0, 1)};
    };
    const size_t count = std::min(places.size(), mesh.VertexBones.Items.size());
    for (size_t i = 0; i < count; ++i) {
        const int16_t of = mesh.VertexBones.Items[i];
        if (IsValidBone(of) && hanging[static_cast<size_t>(of)]) {
            turn(&places[i]);
        }
    }
    return places;
}

LentPose::LentPose()
{
    const int16_t target = TargetMesh();
    if (TryingJoint && JointAngle != 0 && IsValidMesh(target) && IsValidBone(ActiveBone)) {
        places = TurnedVertices(Meshes[target], ActiveBone, JointAngle);
        mesh = target;
        Meshes[mesh].Vertices.Items.swap(places);
    }
}

LentPose::~LentPose()
{
    if (mesh != 0) {
        Meshes[mesh].Vertices.Items.swap(places);
    }
}
