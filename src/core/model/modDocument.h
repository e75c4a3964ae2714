#pragma once

#include <string>

enum class SaveOutcome { Saved, Refused, Failed };
/// Writes the scene to `path` with the old content guarded: while the new file is written, the old one stands beside it
/// as `path` + ".old". Whatever fails, the name holds the whole old or the whole new content afterwards. A read-only
/// file is refused with a message and left alone. Assignments that the file cannot keep go to the Info Log.
SaveOutcome SaveModelFile(const std::string& path);

/// The window's caption: short name and version, and the path in brackets unless it is empty.
[[nodiscard]] std::string CaptionFor(const std::string& path);
