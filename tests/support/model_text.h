#pragma once

#include <string>
#include <string_view>

#include "model/modMvmWrite.h"

/// The scene as the text of a model file.
inline std::string ModelText()
{
    std::string text;
    WriteModelText([&text](std::string_view part) { text.append(part); });
    return text;
}
