#pragma once

#include <string>

/// The decimal mark of the user's locale, UTF-8: what the environment asks for, whatever locale the process runs under.
[[nodiscard]] std::string LocaleDecimalMark();
