#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/modMvmDef.h"

/// The records of a model, kept aside.
struct KeptModel {
    Array1<MvmBone> Bones{};
    Array1<MvmMaterial> Materials{};
    Array1<MvmMesh> Meshes{};
    Array1<MvmInstance> Instances{};
};
/// Moves the records out of the scene and forgets the rest of it.
[[nodiscard]] KeptModel TakeModel();

enum class RecordKind { Bone, Material, Mesh, Instance };

/// A record that differs. Texts are UTF-8.
struct RecordDifference {
    RecordKind Kind = RecordKind::Bone;
    std::string Name{};
    std::vector<std::string> Changes{}; ///< "added", "removed", or one text for each field that differs
};

/// Vertices that had one bone and have another one. Bones are told by name, since their numbers may differ.
struct AssignmentDifference {
    std::string Mesh{};
    std::string From{};              ///< empty for none
    std::string To{};                ///< empty for none
    std::vector<int32_t> Vertices{}; ///< numbers in the new model
};

/// What became of the vertices of a mesh that both models have.
struct VertexDifference {
    std::string Mesh{};
    int32_t OldCount = 0;
    int32_t NewCount = 0;
    std::vector<int32_t> Moved{}; ///< of those with one number in both
    double Farthest = 0;          ///< the longest way that one moved, in the mesh's units
    bool ByPosition = false;      ///< the counts differ: bones were compared between vertices at one place
    int32_t NotCompared = 0;      ///< vertices of the new model without a counterpart then
};

struct ModelDifferences {
    std::vector<RecordDifference> Records{};
    std::vector<VertexDifference> Vertices{}; ///< of meshes where counts or places differ
    std::vector<AssignmentDifference> Assignments{};
    bool SameOrder = true; ///< the records that both have stand in the same order
};

/// What differs between an old model and the scene. Records are paired by name, those of one name in their order.
[[nodiscard]] ModelDifferences CompareModels(const KeptModel& old);
