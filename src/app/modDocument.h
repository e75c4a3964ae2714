#pragma once

#include <string>

/// Writes the scene to `path` with the old content guarded: while the new file is written, the old one stands beside it
/// as `path` + ".old". Whatever fails, the name holds the whole old or the whole new content afterwards, and no ".old"
/// file stays. A read-only file is refused with a message and left alone. Gives true when the new content is complete.
bool SaveModelFile(const std::string& path);

/// The window's caption: short name and version, and the path in brackets unless it is empty.
[[nodiscard]] std::string CaptionFor(const std::string& path);
