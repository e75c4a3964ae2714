#pragma once

#include <cstdint>

inline constexpr const char* ProgramTitle = "Beastwright";
inline constexpr const char* ProgramShortName = "BWRT";
inline constexpr int16_t VersionMajor = 0;
inline constexpr int16_t VersionMinor = 2;
inline constexpr int16_t VersionRevision = 7;
