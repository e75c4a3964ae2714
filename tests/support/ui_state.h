#pragma once

#include <map>
#include <string>

#include "support/ui_window.h"

using State = std::map<std::string, std::string>;

/// All that a command can change, by name.
[[nodiscard]] State Look(const UiWindow& window);
/// What has changed, "name=new value" for each; of the log the first two lines that came to it.
[[nodiscard]] std::string Changes(const State& before, const State& after);
/// The picture of the mouse over the view, by its name.
[[nodiscard]] std::string CursorOf(const QWidget* view);
