#include "modLocale.h"

#include <clocale>

#include <langinfo.h>

#include "modUtf8.h"

namespace {

std::string MarkOfEnvironment()
{
    locale_t const locale = newlocale(LC_NUMERIC_MASK, "", nullptr);
    if (locale == nullptr) {
        return ".";
    }
    std::string mark = nl_langinfo_l(RADIXCHAR, locale);
    freelocale(locale);
    // One character; a locale in another character set than UTF-8 can have one that cannot be shown.
    char32_t character = 0;
    return !mark.empty() && DecodeUtf8(mark, &character) == mark.size() ? mark : ".";
}

} // namespace

std::string LocaleDecimalMark()
{
    static const std::string mark = MarkOfEnvironment();
    return mark;
}
