#pragma once

#include <string>
#include <vector>

#include "modExchangeModel.h"

/// glTF 2.0 (Khronos Group), as one binary file. False, with *error set, when it would be larger than the format takes.
bool GlbOf(const ExchangeModel& model, std::string* glb, std::string* error);

struct NamedFile {
    std::string Name{}; ///< without a folder
    std::string Bytes{};
};
/// The same as text with files beside it, the text first. All are named after `stem`.
bool GltfFilesOf(const ExchangeModel& model, const std::string& stem, std::vector<NamedFile>* files,
                 std::string* error);
