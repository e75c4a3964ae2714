#include "modLocale.h"

#include <array>

#include "windows/modWindows.h"

std::string LocaleDecimalMark()
{
    std::array<wchar_t, 8> mark{};
    const int length = GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_SDECIMAL, mark.data(), mark.size());
    return length > 1 ? Utf8Text(mark.data()) : ".";
}
