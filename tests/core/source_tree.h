#pragma once

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/temp_folder.h"

// The source as text, for the tests that read it.

inline const std::filesystem::path root = SOURCE_FOLDER;

inline std::string TextOf(const std::filesystem::path& file)
{
    EXPECT_TRUE(std::filesystem::is_regular_file(file)) << file;
    return Content(file.string());
}

inline std::vector<std::filesystem::path> FilesBelow(std::initializer_list<const char*> folders)
{
    std::vector<std::filesystem::path> files;
    for (const char* folder : folders) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root / folder)) {
            if (entry.is_regular_file()) {
                files.push_back(entry.path());
            }
        }
    }
    return files;
}

/// Whatever looks like a name, in texts and comments too.
inline std::set<std::string> WordsOf(const std::string& text)
{
    const char* const letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
    std::set<std::string> words;
    for (size_t end = 0, start = 0; (start = text.find_first_of(letters, end)) != std::string::npos;) {
        end = std::min(text.find_first_not_of(letters, start), text.size());
        words.insert(text.substr(start, end - start));
    }
    return words;
}
