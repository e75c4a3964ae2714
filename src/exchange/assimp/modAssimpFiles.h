#pragma once

#include <string>

#include <assimp/IOSystem.hpp>

/// The files of one folder, read only, by their names in it: all that a model may see. Names that lead elsewhere do not
/// exist.
class FolderFiles : public Assimp::IOSystem {
public:
    /// `folder` ends with a separator, or is empty for the current one.
    explicit FolderFiles(std::string folder) : Folder(std::move(folder)) {}
    bool Exists(const char* file) const override;
    char getOsSeparator() const override { return '/'; }
    Assimp::IOStream* Open(const char* file, const char* mode) override;
    void Close(Assimp::IOStream* stream) override;

private:
    [[nodiscard]] std::string PathOf(const char* file) const;
    std::string Folder;
};
