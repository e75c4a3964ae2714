#pragma once

#include <QIcon>

/// The look and the rules that hold for every window: style, font, surface format, numbers with a decimal point. Call
/// it once, right after the application object was made.
void PrepareApplication();

[[nodiscard]] QIcon ProgramIcon();
