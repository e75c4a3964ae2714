#pragma once

#include <string>

/// Opens a file or an address with the handler that the desktop has for it, without waiting. Failures are ignored.
void OpenWithDesktop(const std::string& target);
