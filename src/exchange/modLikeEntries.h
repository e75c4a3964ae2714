#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "app/modMvmDef.h"

// What becomes of the arrays of a mesh that takes its shape from a file. Faces hold references until all is known:
// above 0 a number of the model's own array, below 0 a new entry, from -1 on.

/// What becomes of the entries of one array of the model's mesh: kept entries stay in order, new ones come behind.
template <typename T>
struct Entries {
    const Array1<T>& Old;
    std::vector<char> Keep{}; ///< by number
    std::vector<T> Values{};  ///< by number: what a kept one holds now
    std::vector<T> Added{};
    std::vector<int32_t> NewNumbers{}; ///< by number, 0 for one that goes; made by Settle

    explicit Entries(const Array1<T>& old) : Old(old), Keep(old.Items.size() + 1), Values(old.Items.size() + 1)
    {
        std::copy(old.begin(), old.end(), Values.begin() + 1);
    }
    void Settle()
    {
        NewNumbers.assign(Keep.size(), 0);
        int32_t next = 0;
        for (size_t i = 1; i < Keep.size(); ++i) {
            NewNumbers[i] = Keep[i] != 0 ? ++next : 0;
        }
    }
    [[nodiscard]] size_t KeptCount() const
    {
        return static_cast<size_t>(std::count_if(Keep.begin(), Keep.end(), [](char keep) { return keep != 0; }));
    }
    [[nodiscard]] size_t Count() const { return KeptCount() + Added.size(); }
    /// A reference as faces hold it: above 0 an old number, below 0 a new entry, from -1 on.
    [[nodiscard]] int32_t Final(int32_t reference) const
    {
        return reference < 0 ? static_cast<int32_t>(KeptCount()) - reference
                             : NewNumbers[static_cast<size_t>(reference)];
    }
    [[nodiscard]] std::vector<T> All() const
    {
        std::vector<T> all;
        for (size_t i = 1; i < Keep.size(); ++i) {
            if (Keep[i] != 0) {
                all.push_back(Values[i]);
            }
        }
        all.insert(all.end(), Added.begin(), Added.end());
        return all;
    }
};

/// What makes values equal; both zeros are.
using Bits = std::array<uint32_t, 3>;

inline Bits BitsOf(const Vec3& value)
{
    return {std::bit_cast<uint32_t>(value.X + 0.0F), std::bit_cast<uint32_t>(value.Y + 0.0F),
            std::bit_cast<uint32_t>(value.Z + 0.0F)};
}

inline Bits BitsOf(const Vec2& value)
{
    return {std::bit_cast<uint32_t>(value.U + 0.0F), std::bit_cast<uint32_t>(value.V + 0.0F), 0};
}

/// Claims of corners on texture coordinates or normals: a number of the model's mesh and the value in the file.
template <typename T>
struct Claims {
    Entries<T> Own;
    std::map<std::pair<int32_t, Bits>, int32_t> Changed{}; ///< reference by number and value
    std::map<Bits, int32_t> New{};                         ///< reference by value

    explicit Claims(const Array1<T>& old) : Own(old) {}

    int32_t Add(const T& value)
    {
        const auto [found, isNew] = New.emplace(BitsOf(value), 0);
        if (isNew) {
            Own.Added.push_back(value);
            found->second = -static_cast<int32_t>(Own.Added.size());
        }
        return found->second;
    }
};

/// A corner's claim on the entry `number`. One that still has its value keeps it; the first other value takes its place
/// when no corner has the old one, which the second round settles.
template <typename T, typename Same>
int32_t Claim(Claims<T>* claims, int32_t number, const T& value, bool isSecondRound, const Same& same)
{
    Entries<T>& own = claims->Own;
    if (!own.Old.Has(number)) {
        const bool isNameless = number != 0 && same(T{}, value);
        return isNameless ? number : isSecondRound ? claims->Add(value) : 0;
    }
    const auto index = static_cast<size_t>(number);
    if (same(own.Old[number], value)) {
        own.Keep[index] = 1;
        return number;
    }
    if (!isSecondRound) {
        return 0;
    }
    const auto [found, isNew] = claims->Changed.emplace(std::pair(number, BitsOf(value)), 0);
    if (isNew && own.Keep[index] == 0) {
        own.Keep[index] = 1;
        own.Values[index] = value;
        found->second = number;
    } else if (isNew) {
        found->second = claims->Add(value);
    }
    return found->second;
}

// A number of the model that names no entry travels as it is.
inline constexpr int32_t nameless = 1 << 20;

[[nodiscard]] inline int32_t ReferenceTo(int32_t number, int32_t count)
{
    return number >= 1 && number <= count ? number : nameless + number;
}

/// A reference as the number that it becomes. One that named no entry stays, unless it would name one now.
template <typename T>
[[nodiscard]] int16_t NumberOf(const Entries<T>& entries, int32_t reference)
{
    constexpr int32_t namelessFrom = nameless / 2;
    if (reference < namelessFrom) {
        return static_cast<int16_t>(entries.Final(reference));
    }
    const int32_t number = reference - nameless;
    return number > 0 && static_cast<size_t>(number) <= entries.Count() ? int16_t{0} : static_cast<int16_t>(number);
}
