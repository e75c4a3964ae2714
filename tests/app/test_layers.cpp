#include <map>
#include <sstream>

#include "app/source_tree.h"

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

std::map<std::string, Source> ReadSources()
{
    std::map<std::string, Source> sources;
    for (const std::filesystem::path& path : FilesBelow({"src"})) {
        if (path.extension() != ".cpp" && path.extension() != ".h") {
            continue;
        }
        const std::string name = path.lexically_relative(root / "src").generic_string();
        Source& source = sources[name];
        source.Level = LayerOf(name);
        source.Text = TextOf(path);
        std::istringstream lines(source.Text);
        const size_t start = std::string("#include ?").size();
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("#include \"")) {
                source.Quoted.push_back(line.substr(start, line.find('"', start) - start));
            } else if (line.starts_with("#include <")) {
                source.Angled.push_back(line.substr(start, line.find('>') - start));
            }
        }
    }
    return sources;
}

bool IsQt(const std::string& header)
{
    const bool ofClass = header.size() > 1 && header[0] == 'Q' && header[1] >= 'A' && header[1] <= 'Z';
    return ofClass || header.starts_with("Qt") || header.starts_with("qt") || header.starts_with("qpa/");
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
                EXPECT_TRUE(source.Level >= Layer::Render || !header.starts_with("GL/"))
                    << name << " reaches " << header;
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
