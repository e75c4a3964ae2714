#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// A path of UTF-8 text, whatever the system takes text for.
inline std::filesystem::path PathOf(const std::string& text)
{
    return {std::u8string(text.begin(), text.end())};
}

/// The names of all entries of a folder, hidden ones too, sorted.
inline std::vector<std::string> NamesIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(PathOf(folder))) {
        const std::u8string name = entry.path().filename().u8string();
        names.emplace_back(name.begin(), name.end());
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// A new, empty folder that goes away with all that lies in it.
struct TempFolder {
    static constexpr auto Separator = static_cast<char>(std::filesystem::path::preferred_separator);
    std::string Path; ///< with a separator at its end

    TempFolder()
    {
        std::random_device random;
        do {
            const std::string name = "beastwright-test-" + std::to_string(random());
            Path = (std::filesystem::temp_directory_path() / name).string() + Separator;
        } while (!std::filesystem::create_directory(Path));
    }
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(Path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    [[nodiscard]] std::string operator/(std::string name) const
    {
        std::replace(name.begin(), name.end(), '/', Separator);
        return Path + name;
    }
    [[nodiscard]] std::vector<std::string> Names() const { return NamesIn(Path); }
};

/// The content of a file by other means than those under test; "(none)" without a file.
inline std::string Content(const std::string& path)
{
    std::ifstream file(PathOf(path), std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : std::string("(none)");
}

inline void PutFile(const std::string& path, std::string_view bytes)
{
    std::ofstream(PathOf(path), std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}
