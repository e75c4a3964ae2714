#include "modExchangeNames.h"

#include <cstddef>
#include <unordered_map>
#include <unordered_set>

#include "modCodePage.h"

namespace {

constexpr size_t longest = 63;

void CutTo(size_t size, std::string* text)
{
    if (text->size() <= size) {
        return;
    }
    while (size > 0 && (static_cast<unsigned char>((*text)[size]) & 0xC0U) == 0x80U) {
        --size;
    }
    text->resize(size);
}

} // namespace

std::vector<std::string> ExchangeNames(const std::vector<std::string>& names, const std::string& nameless)
{
    std::vector<std::string> result;
    std::unordered_set<std::string> taken;
    std::unordered_map<std::string, int> tries;
    for (const std::string& name : names) {
        std::string text = Utf8FromCodePage(name);
        for (char& c : text) {
            const auto byte = static_cast<unsigned char>(c);
            c = byte < 0x20 || byte == 0x7F ? '_' : c;
        }
        CutTo(longest, &text);
        if (text.empty() || IsUnassignedJoint(text)) {
            text = nameless;
        }
        std::string unique = text;
        for (int& number = tries[text]; !taken.insert(unique).second;) {
            const std::string suffix = "." + std::to_string(++number + 1);
            unique = text;
            CutTo(longest - suffix.size(), &unique);
            unique += suffix;
        }
        result.push_back(unique);
    }
    return result;
}

std::string NameForModel(const std::string& name)
{
    std::string result = CodePageFromUtf8(name);
    for (char& c : result) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= 0x20 || c == '"' || c == '=' || c == '{' || c == '}') {
            c = '_';
        }
    }
    return result.empty() ? "_" : result;
}

bool IsUnassignedJoint(const std::string& name)
{
    return name == unassignedJoint || name == "neutral_bone";
}

std::string PlainName(const std::string& name)
{
    std::string result;
    for (const char c : name) {
        const bool plain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        result += plain ? c : '_';
    }
    return result;
}
