#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// An array that counts from 1, as all arrays of the scene do. Index 0 means "none" and is never stored.
/// The count is the number of entries and at the same time the highest valid index.
template <typename T>
struct Array1 {
    std::vector<T> Items;

    [[nodiscard]] int32_t Count() const { return static_cast<int32_t>(Items.size()); }
    [[nodiscard]] bool Has(int64_t index) const { return index >= 1 && index <= static_cast<int64_t>(Items.size()); }

    /// The entry at `index`, 1 to Count(). Debug builds stop at any other index.
    T& operator[](int32_t index)
    {
        assert(Has(index) && "index outside a 1-based array");
        return Items[static_cast<size_t>(index) - 1];
    }
    const T& operator[](int32_t index) const
    {
        assert(Has(index) && "index outside a 1-based array");
        return Items[static_cast<size_t>(index) - 1];
    }

    /// Appends one entry, keeps the old ones, and returns the new one.
    T& Add(T item = T{}) { return Items.emplace_back(std::move(item)); }

    /// Drops all entries and gives their memory back.
    void Clear() { std::vector<T>().swap(Items); }

    [[nodiscard]] auto begin() { return Items.begin(); }
    [[nodiscard]] auto end() { return Items.end(); }
    [[nodiscard]] auto begin() const { return Items.begin(); }
    [[nodiscard]] auto end() const { return Items.end(); }
};
