#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

// What a check says about a model file. All texts are UTF-8.

enum class Severity {
    Error,   ///< the game or the next save loses something
    Warning, ///< something is not as its author can have meant it
    Hint     ///< probably a slip of the hand
};

/// One thing found. Of lines, vertices and faces the first ones are listed, at most MostPlaces; Count says how many
/// there are.
struct Finding {
    const char* Code = ""; ///< one word or several with "-" between them, the same in every version
    Severity Grade = Severity::Warning;
    int64_t Count = 1;
    std::vector<int64_t> Lines{}; ///< of the file, from 1
    std::string Mesh{};           ///< name; empty for none
    std::string Bone{};           ///< name; empty for none
    std::vector<int32_t> Vertices{};
    std::vector<int32_t> Faces{};
    std::string What{};   ///< one sentence that says what happens
    std::string Advice{}; ///< one sentence that says what to do
};

inline constexpr size_t MostPlaces = 10000;

/// The first few of some numbers: "4, 9, 27, ..." when there are more.
[[nodiscard]] std::string FirstPlaces(const std::vector<int32_t>& numbers);
[[nodiscard]] std::string FirstPlaces(const std::vector<int64_t>& numbers);

/// A code with what stands behind it.
struct FindingKind {
    const char* Code = "";
    const char* Meaning = "";
};
/// All codes, those of one subject together.
[[nodiscard]] std::span<const FindingKind> FindingKinds();
