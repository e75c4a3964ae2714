#include "weights/modBoneNames.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

#include "app/modMvmDef.h"
#include "model/modStrings.h"

namespace {

constexpr std::string_view shadowMark = "$j$";

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsUpper(char c)
{
    return c >= 'A' && c <= 'Z';
}

/// Bytes above 127 are letters of the code page.
bool IsLetter(char c)
{
    return IsUpper(c) || (c >= 'a' && c <= 'z') || static_cast<unsigned char>(c) > 127;
}

/// The name without the mark of the shadow and the joint number.
std::string_view Core(std::string_view name)
{
    if (const size_t mark = LowerCase(name).find(shadowMark); mark != std::string::npos) {
        name.remove_prefix(mark + shadowMark.size());
    }
    if (name.size() > 2 && IsDigit(name.back()) && IsDigit(name[name.size() - 2])) {
        name.remove_suffix(2);
    }
    return name;
}

/// Words begin with a capital behind a small letter, or before one; numbers and everything else part them too.
std::vector<std::string> Tokens(std::string_view name)
{
    std::vector<std::string> tokens;
    for (size_t i = 0; i < name.size();) {
        size_t end = i + 1;
        if (IsDigit(name[i])) {
            while (end < name.size() && IsDigit(name[end])) {
                ++end;
            }
        } else if (IsLetter(name[i])) {
            while (end < name.size() && IsLetter(name[end])) {
                const bool next = end + 1 < name.size() && IsLetter(name[end + 1]) && !IsUpper(name[end + 1]);
                if (IsUpper(name[end]) && (!IsUpper(name[end - 1]) || next)) {
                    break;
                }
                ++end;
            }
        } else {
            ++i;
            continue;
        }
        tokens.emplace_back(name.substr(i, end - i));
        i = end;
    }
    return tokens;
}

struct SideWord {
    std::string_view Text;
    BodySide Side;
    std::string_view Rest; ///< the word that stays, empty for none
};

constexpr std::array<SideWord, 16> sideWords = {{
    {"l", BodySide::Left, ""},
    {"r", BodySide::Right, ""},
    {"lft", BodySide::Left, ""},
    {"rgt", BodySide::Right, ""},
    {"fl", BodySide::Left, "Front"},
    {"fr", BodySide::Right, "Front"},
    {"lf", BodySide::Left, "Front"},
    {"rf", BodySide::Right, "Front"},
    {"hl", BodySide::Left, "Hind"},
    {"hr", BodySide::Right, "Hind"},
    {"lh", BodySide::Left, "Hind"},
    {"rh", BodySide::Right, "Hind"},
    {"bl", BodySide::Left, "Hind"},
    {"br", BodySide::Right, "Hind"},
    {"left", BodySide::Left, ""},
    {"right", BodySide::Right, ""},
}};

/// Takes a word for a side; the long words also where they are one with another: "leftarm".
bool TakeSide(const std::string& token, BoneWords* words)
{
    const std::string lower = LowerCase(token);
    for (const SideWord& word : sideWords) {
        const bool isLong = word.Text.size() > 3;
        if (lower != word.Text && !(isLong && (lower.starts_with(word.Text) || lower.ends_with(word.Text)))) {
            continue;
        }
        words->Side = word.Side;
        if (!word.Rest.empty()) {
            words->Words.insert(words->Words.begin(), std::string(word.Rest));
        } else if (lower.size() > word.Text.size()) {
            const bool leads = lower.starts_with(word.Text);
            words->Words.push_back(leads ? token.substr(word.Text.size())
                                         : token.substr(0, token.size() - word.Text.size()));
        }
        return true;
    }
    return false;
}

constexpr std::array<std::string_view, 9> usualPrefixes = {"bip", "mixamorig", "bone", "bn",   "jnt",
                                                           "def", "org",       "rig",  "joint"};

bool IsUsualPrefix(const std::string& word)
{
    return word.size() == 1 || std::find(usualPrefixes.begin(), usualPrefixes.end(), word) != usualPrefixes.end();
}

BoneWords WordsOf(const std::vector<std::string>& tokens)
{
    BoneWords words;
    for (const std::string& token : tokens) {
        if (IsDigit(token.front())) {
            int32_t value = 0;
            for (const char digit : std::string_view(token).substr(0, 9)) {
                value = value * 10 + (digit - '0');
            }
            words.Number = value;
        } else if (words.Side != BodySide::Middle || !TakeSide(token, &words)) {
            words.Words.push_back(token);
        }
    }
    return words;
}

/// Without the first word and the numbers right behind it, when another word stays.
void DropPrefix(std::vector<std::string>* tokens)
{
    auto rest = tokens->begin() + 1;
    while (rest != tokens->end() && IsDigit(rest->front())) {
        ++rest;
    }
    const std::vector<std::string> kept(rest, tokens->end());
    if (!WordsOf(kept).Words.empty()) {
        *tokens = kept;
    }
}

} // namespace

std::vector<BoneWords> ReadBoneNames(bool shadow)
{
    const int32_t count = std::min<int32_t>(BoneCount(), INT16_MAX);
    std::vector<std::vector<std::string>> tokens(static_cast<size_t>(count) + 1);
    std::map<std::string, size_t> starts;
    size_t named = 0;
    for (int32_t b = 1; b <= count; ++b) {
        auto& own = tokens[static_cast<size_t>(b)];
        if (Bones[b].IsShadow == shadow) {
            own = Tokens(Core(Bones[b].Name));
        }
        if (!own.empty()) {
            ++starts[LowerCase(own.front())];
            ++named;
        }
    }
    std::vector<BoneWords> words(tokens.size());
    for (size_t b = 1; b < tokens.size(); ++b) {
        if (tokens[b].empty()) {
            continue;
        }
        BoneWords plain;
        const std::string first = LowerCase(tokens[b].front());
        const bool isCommon = named > 2 && starts[first] * 2 > named;
        if (!TakeSide(tokens[b].front(), &plain) && (isCommon || IsUsualPrefix(first))) {
            DropPrefix(&tokens[b]);
        }
        words[b] = WordsOf(tokens[b]);
    }
    return words;
}
