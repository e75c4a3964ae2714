#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "modTerminal.h"

// Models as the commands take them: opened one after another into the scene, saved, their bones and meshes found by
// what a user calls them.

/// Opens a model as the window does, with its aliases where AliasesWanted; without pictures unless TexturesWanted. Says
/// what is wrong and gives false when it could not be read whole, or when it holds no model.
[[nodiscard]] bool OpenModel(const std::string& path);
inline bool AliasesWanted = true;

/// Where a command writes the model that it changed.
struct SaveTarget {
    std::string Out{}; ///< a file; empty for none
    bool InPlace = false;
};
/// Says what is wrong with the target for these models, and gives false. `others` are files that the command reads too.
[[nodiscard]] bool IsUsable(const SaveTarget& target, const std::vector<std::string>& models,
                            const std::vector<std::string>& others = {});
/// Saves the scene as the window does; assignments that the file cannot keep are told.
[[nodiscard]] bool SaveModel(const std::string& model, const SaveTarget& target);

enum class WrittenKind { Model, Weights, Picture, Alias, Gltf };
/// Says why a file should not be written, and gives false: it is one of those that the command reads, it is read-only,
/// or something of another kind has its name.
[[nodiscard]] bool MayWrite(const std::string& out, WrittenKind kind, const std::vector<std::string>& read);

/// Does `work` for each model, whatever becomes of the others, and gives the worst exit code. Failures and exceptions
/// are told with the model's name.
[[nodiscard]] ExitCode ForEachModel(const std::vector<std::string>& models,
                                    const std::function<ExitCode(const std::string&)>& work);

/// The bone of this name, alias or number, of several of one name the one of the kind asked for; `none` allows the word
/// "none" for 0. Says what is wrong and gives -1.
[[nodiscard]] int16_t FindBone(const std::string& text, bool shadow, bool none = false);
/// The mesh of this name or number, or that of the role "skin" or "shadow". Says what is wrong and gives -1.
[[nodiscard]] int16_t FindMesh(const std::string& text);
