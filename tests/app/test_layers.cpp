#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

// The order of the layers, read from the source itself.

namespace {

enum class Layer { Core, Platform, Render, Window };

struct Source {
    Layer Level = Layer::Core;
    std::vector<std::string> Quoted; ///< our own headers, relative to src
    std::vector<std::string> Angled; ///< headers of the system
    std::string Text;
};

Layer LayerOf(const std::string& name)
{
    const std::string folder = name.substr(0, name.find('/'));
    const std::string file = name.substr(name.rfind('/') + 1);
    const std::string stem = file.substr(0, file.find('.'));
    if (file.starts_with("frm") || file == "main.cpp" || name.starts_with("platform/qt/")) {
        return Layer::Window;
    }
    if (folder == "platform") {
        return Layer::Platform;
    }
    const bool coreParts = stem == "modMath" || stem == "modBitmap" || stem == "modConsole";
    return (folder == "render" || folder == "interaction") && !coreParts ? Layer::Render : Layer::Core;
}

/// What a line includes between two marks; empty when it includes nothing so.
std::string Included(const std::string& line, char from, char to)
{
    if (!line.starts_with("#include ")) {
        return {};
    }
    const size_t start = line.find(from);
    const size_t end = line.rfind(to);
    return start < end && end != std::string::npos ? line.substr(start + 1, end - start - 1) : std::string();
}

/// Whatever looks like an identifier, in texts and comments too.
std::set<std::string> WordsOf(const std::string& text)
{
    std::set<std::string> words;
    std::string word;
    for (const char letter : text + " ") {
        const bool part = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
                          (letter >= '0' && letter <= '9') || letter == '_';
        if (part) {
            word += letter;
        } else if (!word.empty()) {
            words.insert(word);
            word.clear();
        }
    }
    return words;
}

std::map<std::string, Source> ReadSources()
{
    namespace fs = std::filesystem;
    const fs::path root = fs::path(SOURCE_FOLDER) / "src";
    std::map<std::string, Source> sources;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".cpp" && extension != ".h") {
            continue;
        }
        const std::string name = fs::relative(entry.path(), root).generic_string();
        Source& source = sources[name];
        source.Level = LayerOf(name);
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);) {
            if (std::string header = Included(line, '"', '"'); !header.empty()) {
                source.Quoted.push_back(header);
            } else if (header = Included(line, '<', '>'); !header.empty()) {
                source.Angled.push_back(header);
            }
            source.Text += line + "\n";
        }
    }
    return sources;
}

bool IsQt(const std::string& header)
{
    const bool ofClass = header.size() > 1 && header[0] == 'Q' && header[1] >= 'A' && header[1] <= 'Z';
    return ofClass || header.starts_with("Qt") || header.starts_with("qt") || header.starts_with("qpa/");
}

bool IsGL(const std::string& header)
{
    return header.starts_with("GL/");
}

bool IsPosix(const std::string& header)
{
    return header.starts_with("sys/") ||
           std::set<std::string>{"unistd.h", "fcntl.h", "dirent.h", "langinfo.h", "spawn.h", "pwd.h"}.contains(header);
}

/// A file and all of our headers that it includes, directly or through others.
std::set<std::string> Reached(const std::string& name, const std::map<std::string, Source>& sources)
{
    std::set<std::string> reached;
    std::vector<std::string> open = {name};
    while (!open.empty()) {
        const std::string next = open.back();
        open.pop_back();
        const auto source = sources.find(next);
        if (source != sources.end() && reached.insert(next).second) {
            open.insert(open.end(), source->second.Quoted.begin(), source->second.Quoted.end());
        }
    }
    return reached;
}

} // namespace

TEST(Layers, IncludesPointDownwards)
{
    const std::map<std::string, Source> sources = ReadSources();
    ASSERT_GT(sources.size(), 20U);
    for (const auto& [name, source] : sources) {
        for (const std::string& reachedName : Reached(name, sources)) {
            const Source& reached = sources.at(reachedName);
            if (source.Level == Layer::Platform) {
                EXPECT_EQ(reached.Level, Layer::Platform) << name << " reaches " << reachedName;
            }
            if (source.Level != Layer::Window) {
                EXPECT_NE(reached.Level, Layer::Window) << name << " reaches " << reachedName;
            }
            for (const std::string& header : reached.Angled) {
                EXPECT_TRUE(source.Level == Layer::Window || !IsQt(header)) << name << " reaches " << header;
                EXPECT_TRUE(source.Level >= Layer::Render || !IsGL(header)) << name << " reaches " << header;
                EXPECT_TRUE(reachedName.starts_with("platform/") || !IsPosix(header)) << name << " reaches " << header;
                EXPECT_TRUE(source.Level != Layer::Core || !IsPosix(header)) << name << " reaches " << header;
            }
        }
    }
}

TEST(Layers, NoNumberPassesThroughTheLocale)
{
    const std::set<std::string> banned = {"strtod", "strtof", "strtold", "atof", "stod", "stof", "stold", "setlocale"};
    for (const auto& [name, source] : ReadSources()) {
        for (const std::string& word : WordsOf(source.Text)) {
            const bool formats = word.ends_with("printf") || word.ends_with("scanf");
            const bool setup = name == "app/frmSetup.cpp" && word == "setlocale"; // takes the toolkit's choice back
            EXPECT_FALSE((formats || banned.contains(word)) && !setup) << name << " holds " << word;
        }
    }
}
