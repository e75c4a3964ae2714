#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

// The steps that lead back from the scene as it is, and forward again. A command runs between BeginStep and EndStep
// (RunStep does both); what changes the scene calls Touch before its first write, which keeps the part as it was. A
// step holds what differs afterwards, one side of it: going back and forth swaps it with the scene.

enum class ScenePart {
    Assignments, ///< VertexBones and IsSkin of a mesh
    Normals,     ///< Normals of a mesh and the normal numbers of its faces
    Names,       ///< the name of a mesh and the names in all instances
    Roles        ///< SkinMesh, ShadowMesh, SkinScale, SkinOffset; the mesh does not matter
};

/// The state on the other side of a step that was taken.
struct TakenStep {
    std::string Label{};
    int32_t Vertices = 0;   ///< vertices whose bone the step changed
    int16_t ActiveBone = 0; ///< as it was at that state
    int16_t EditTarget = 0;
};

/// Bytes that all steps may take together; the oldest go when there are more. At least one step stays.
inline size_t StepMemoryLimit = size_t{256} << 20;

void BeginStep();
/// Keeps a part of a valid mesh as it is, once in a step. Does nothing outside a step.
void Touch(ScenePart part, int32_t mesh);
/// Makes a step of what differs from the parts kept, when anything does, and drops the steps ahead.
/// The label must live as long as the program.
void EndStep(const char* label);
/// Puts the parts kept back in place, for an operation that failed; the step may go on. Allocates nothing.
void RollBackStep();
/// Forgets all steps, also the one that is being made: another scene is there or on its way.
void ForgetSteps();

/// Runs a command as one step; an exception takes back what the command changed and goes on to the caller.
template <typename Command>
void RunStep(const char* label, Command&& command)
{
    BeginStep();
    try {
        command();
        EndStep(label);
    } catch (...) {
        RollBackStep();
        throw;
    }
}

/// Goes one step back or forward in the scene; nothing when there is none. The caller sets ActiveBone and EditTarget.
std::optional<TakenStep> UndoStep();
std::optional<TakenStep> RedoStep();

/// The scene is what its file holds: it was loaded or saved.
void MarkSceneSaved();
/// True when the scene differs from what MarkSceneSaved saw, or when it never stood in a file.
[[nodiscard]] bool IsSceneChanged();
/// Bytes that the steps take.
[[nodiscard]] size_t StepMemory();
