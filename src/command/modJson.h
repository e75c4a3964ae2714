#pragma once

#include <nlohmann/json.hpp>

#include "modTerminal.h"

// The keys stay in the order in which they are written.
using Json = nlohmann::ordered_json;

inline constexpr int JsonVersion = 1; ///< of what the commands print; grows when the meaning of a key changes

/// Prints a document with its version. Bytes that are no UTF-8, as a file's name can have, become the sign for such.
inline void PutJson(const Json& content)
{
    Json document{{"version", JsonVersion}};
    document.update(content);
    Put(document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}
