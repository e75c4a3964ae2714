#include "app/modMisc.h"

#include <cstddef>

#include "model/modStrings.h"
#include "platform/modFiles.h"
#include "platform/modLocale.h"

bool FileExists(const std::string& path)
{
    if (path.empty() || path.find('\0') != std::string::npos) {
        return false;
    }
    const size_t separator = path.rfind('/');
    const size_t nameStart = separator == std::string::npos ? 0 : separator + 1;
    const bool hidden = nameStart < path.size() && path[nameStart] == '.';
    return !hidden && IsPlainFile(path);
}

std::string FloatToLocaleText(float value)
{
    std::string text = FloatToText(value);
    const size_t point = text.find('.');
    if (point != std::string::npos) {
        text.replace(point, 1, LocaleDecimalMark());
    }
    return text;
}
