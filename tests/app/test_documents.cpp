#include <regex>

#include "app/source_tree.h"

// What the documents name has to be there: files, folders, names of the code, targets, presets, menu entries.

namespace {

namespace fs = std::filesystem;

const std::vector<std::string> documents = {"README.md", "CONTRIBUTING.md", "docs/architecture.md", "docs/formats.md"};

/// The first group of every match.
std::vector<std::string> Matches(const std::string& text, const char* pattern)
{
    const std::regex expression(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
        found.push_back((*match)[1].str());
    }
    return found;
}

std::string Manual()
{
    return std::regex_replace(TextOf(root / "assets/readme/readme.html"), std::regex("\\s+"), " ");
}

/// The files of the code, and whatever looks like a name in it, in the build files and the scripts.
std::set<std::string> NamesOfTheCode()
{
    std::set<std::string> names;
    std::vector<fs::path> files = FilesBelow({"src", "tests", "bench", "fuzz", "scripts"});
    files.insert(files.end(), {root / "CMakeLists.txt", root / "CMakePresets.json"});
    for (const fs::path& path : files) {
        names.insert({path.filename().string(), path.stem().string()});
        if (path.filename() != "test_documents.cpp") {
            names.merge(WordsOf(TextOf(path)));
        }
    }
    return names;
}

/// What a Markdown document sets as code: spans between back quotes and fenced blocks.
std::string CodeOf(const std::string& document)
{
    std::string code;
    for (const std::string& block : Matches(document, "```([^`]*)```")) {
        code += std::regex_replace(block, std::regex("#[^\n]*"), "") + "\n";
    }
    const std::string rest = std::regex_replace(document, std::regex("```[^`]*```"), "");
    for (const std::string& span : Matches(rest, "`([^`\n]+)`")) {
        code += span + "\n";
    }
    return code;
}

} // namespace

TEST(Documents, WhatTheyNameIsThere)
{
    const std::set<std::string> names = NamesOfTheCode();
    const std::string presets = TextOf(root / "CMakePresets.json");
    int links = 0;
    int paths = 0;
    int words = 0;
    for (const std::string& document : documents) {
        SCOPED_TRACE(document);
        const std::string text = TextOf(root / document);
        const std::string code = CodeOf(text);
        for (const std::string& target : Matches(text, "\\]\\(([^)#:]+)\\)")) {
            ++links;
            EXPECT_TRUE(fs::exists((root / document).parent_path() / target)) << target;
        }
        for (const char* pattern : {"(?:^|\\s)([\\w.][\\w.-]*/[\\w./-]*)(?=\\s)", "(?:^|\\s)([\\w./]+)/\\*"}) {
            for (const std::string& path : Matches(code, pattern)) {
                ++paths;
                EXPECT_TRUE(fs::exists(root / path) || fs::exists(root / "src" / path)) << path;
            }
        }
        for (const std::string& file : Matches(code, "(?:^|\\s)(\\w+\\.(?:h|cpp|cmake))(?=\\s)")) {
            EXPECT_TRUE(names.contains(file)) << file;
        }
        // Names with a capital or an underscore inside: operations, globals, widgets, targets.
        for (const std::string& name : Matches(code, "\\b(\\w*[a-z0-9](?:[A-Z]|_[a-z])\\w*)\\b")) {
            ++words;
            EXPECT_TRUE(names.contains(name)) << name;
        }
        for (const std::string& preset : Matches(code, "--preset[ =](\\w+)")) {
            EXPECT_NE(presets.find("\"name\": \"" + preset + "\""), std::string::npos) << preset;
        }
    }
    EXPECT_TRUE(links > 5 && paths > 20 && words > 20) << "The patterns find nothing.";
}

TEST(Documents, ManualLeadsSomewhere)
{
    const std::string manual = Manual();
    const fs::path folder = root / "assets/readme";
    std::set<std::string> pictures;
    for (const std::string& picture : Matches(manual, "src=\"([^\"]*)\"")) {
        EXPECT_TRUE(fs::exists(folder / picture)) << picture;
        pictures.insert(picture);
    }
    EXPECT_GT(pictures.size(), 5U);
    for (const std::string& anchor : Matches(manual, "href=\"#([^\"]*)\"")) {
        EXPECT_NE(manual.find("id=\"" + anchor + "\""), std::string::npos) << anchor;
    }
    EXPECT_TRUE(Matches(manual, "href=\"([^#\"][^\"]*)\"").empty()) << "The manual stands alone.";

    for (std::string path : Matches(manual, "<code>([\\w./-]+/[\\w./-]+)</code>")) {
        // The installed folders are those of the source.
        const std::string installed = "/usr/lib/beastwright/";
        if (path.starts_with(installed)) {
            path.erase(0, installed.size());
        }
        EXPECT_TRUE(fs::exists(root / path)) << path;
    }
    for (const auto& entry : fs::directory_iterator(folder / "pictures")) {
        const std::string name = "pictures/" + entry.path().filename().string();
        const bool shown = pictures.contains(name) || TextOf(root / "README.md").find(name) != std::string::npos;
        EXPECT_TRUE(shown) << name << " is shown nowhere";
    }
}

TEST(Documents, ManualDescribesEveryMenuEntry)
{
    const std::string manual = Manual();
    std::string headings;
    for (const std::string& heading : Matches(manual, "<h2[^>]*>([^<]*)</h2>")) {
        headings += " " + heading + " ";
    }
    const std::string table = TextOf(root / "src/interaction/frmMainMenu.cpp");
    size_t entries = 0;
    for (const std::string& row : Matches(table, "\\{(\\d, \"mnu\\w+\", \"[^\"]+\")")) {
        const std::string quoted = row.substr(row.find(", \"", row.find('"')) + 3);
        const std::string caption = std::regex_replace(quoted.substr(0, quoted.size() - 1), std::regex("&"), "");
        entries++;
        if (row.front() == '0') {
            EXPECT_NE(headings.find(" " + caption + " "), std::string::npos) << caption;
            continue;
        }
        const bool described = manual.find("<dt>" + caption + "</dt>") != std::string::npos ||
                               manual.find("<b>" + caption + "</b>") != std::string::npos;
        EXPECT_TRUE(described) << caption;
    }
    EXPECT_GT(entries, 40U);
}
