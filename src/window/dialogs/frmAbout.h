#pragma once

/// Shows the program's title, version, makers and web page, modally.
void ShowAboutDialog();
