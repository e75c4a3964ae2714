#pragma once

#include <string>

// What the window itself asks of the user, beside the boxes of the core. All texts are UTF-8.

/// A text prompt; empty when cancelled.
std::string AskText(const std::string& title, const std::string& prompt, const std::string& initial);
/// Asks whether the existing file with this name may be replaced; No is the default.
bool AskToReplace(const std::string& name);
