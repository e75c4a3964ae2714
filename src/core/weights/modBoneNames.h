#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What the name of a bone says in words: "$j$UpperArmL21" is an upper arm on the left.

enum class BodySide : int8_t { Middle, Left, Right };

struct BoneWords {
    std::vector<std::string> Words{}; ///< as they stand in the name; without prefix, side, numbers and joint number
    BodySide Side = BodySide::Middle; ///< Middle also where the name says nothing
    int32_t Number = -1;              ///< the last number of the name, which is not the joint number; -1 for none
};

/// The words of all bones of one kind, index = bone number; entry 0 and bones of the other kind are empty. What more
/// than half of them begin with is a prefix, and so are some usual ones, where the name goes on with another word.
[[nodiscard]] std::vector<BoneWords> ReadBoneNames(bool shadow);
