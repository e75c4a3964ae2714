#include "checks/modTextUsual.h"

#include <cstddef>
#include <cstdint>

// A line ends at a CR, which is part of nothing that is looked for here: no step goes beyond it. Each function gives
// the end of what it took at `at`, nullptr when something else stands there.

namespace {

const char* SkipBlanks(const char* at)
{
    while (*at == ' ' || *at == '\t') {
        ++at;
    }
    return at;
}

/// A number in decimals; adds to *changed when it has more digits than a save writes.
const char* TakeFloat(const char* at, int* changed)
{
    at += *at == '-' ? 1 : 0;
    const char* const first = at;
    uint64_t digits = 0;
    unsigned digit = 0;
    for (; (digit = static_cast<unsigned>(*at - '0')) <= 9; ++at) {
        digits = digits * 10 + digit;
    }
    ptrdiff_t count = at - first;
    ptrdiff_t decimals = 0;
    if (*at == '.') {
        const char* const point = ++at;
        for (; (digit = static_cast<unsigned>(*at - '0')) <= 9; ++at) {
            digits = digits * 10 + digit;
        }
        decimals = at - point;
        count += decimals;
    }
    if (count == 0 || count > 15) {
        return nullptr;
    }
    if (digits < 1'000'000) {
        return at;
    }
    for (; decimals > 0 && digits % 10 == 0; --decimals) {
        digits /= 10;
    }
    if (digits < 10'000'000) {
        // Below 0.001 two numbers of seven digits can be one float.
        return decimals <= 9 ? at : nullptr;
    }
    *changed += 1;
    return digits % 10 != 0 ? at : nullptr;
}

/// A whole number of 16 bits.
const char* TakeWhole(const char* at, int32_t* number)
{
    const bool negative = *at == '-';
    at += negative ? 1 : 0;
    const char* const first = at;
    int32_t value = 0;
    for (unsigned digit = 0; (digit = static_cast<unsigned>(*at - '0')) <= 9; ++at) {
        if (at - first == 5) {
            return nullptr;
        }
        value = value * 10 + static_cast<int32_t>(digit);
    }
    *number = negative ? -value : value;
    return at != first && value <= INT16_MAX ? at : nullptr;
}

/// "(a,b,...)"
template <int Count>
const char* TakeFloats(const char* at, int* changed)
{
    for (int index = 0; index < Count; ++index) {
        if (*at != (index == 0 ? '(' : ',')) {
            return nullptr;
        }
        at = TakeFloat(at + 1, changed);
        if (at == nullptr) {
            return nullptr;
        }
    }
    return *at == ')' ? at + 1 : nullptr;
}

/// "(a,b,c),"
const char* TakeCorner(const char* at)
{
    int32_t number = 0;
    for (int index = 0; index < 3; ++index) {
        if (*at != (index == 0 ? '(' : ',')) {
            return nullptr;
        }
        at = TakeWhole(at + 1, &number);
        if (at == nullptr) {
            return nullptr;
        }
    }
    return at[0] == ')' && at[1] == ',' ? at + 2 : nullptr;
}

const char* TakeFace(const char* at, int32_t materials)
{
    for (int corner = 0; corner < 3; ++corner) {
        at = TakeCorner(at);
        if (at == nullptr) {
            return nullptr;
        }
    }
    int32_t material = 0;
    at = TakeWhole(at, &material);
    return at != nullptr && material <= materials ? at : nullptr;
}

const char* TakeVertex(const char* at, bool isSkin, int* changed)
{
    at = TakeFloats<3>(at, changed);
    if (at == nullptr || !isSkin) {
        return at;
    }
    int32_t joint = 0;
    return *at == ',' ? TakeWhole(at + 1, &joint) : nullptr;
}

} // namespace

const char* SkipUsualLine(const char* at, const TextBlock& block, int* changed)
{
    *changed = 0;
    at = SkipBlanks(at);
    const char key = *at;
    if (key == '\r') {
        return nullptr;
    }
    at = SkipBlanks(at + 1);
    if (*at != '=') {
        return nullptr;
    }
    at = SkipBlanks(at + 1);
    switch (key) {
    case 'v':
        at = TakeVertex(at, block.IsSkin, changed);
        break;
    case 't':
        at = TakeFloats<2>(at, changed);
        break;
    case 'n':
        at = TakeFloats<3>(at, changed);
        break;
    case 'f':
        at = TakeFace(at, block.MeshMaterials);
        break;
    default:
        return nullptr;
    }
    return at != nullptr && *at == '\r' ? at : nullptr;
}
