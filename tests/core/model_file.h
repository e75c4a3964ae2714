#pragma once

#include <string>
#include <string_view>

#include "app/modMvmDef.h"
#include "model/modMvmRead.h"
#include "support/fresh.h"

/// A test with an empty scene and a file to put models into.
class ModelFile : public FreshFolder {
protected:
    /// Adds these bytes, as a model file, to the scene.
    bool Load(std::string_view bytes)
    {
        PutFile(Path, bytes);
        return LoadMVM(Path);
    }
    /// The same into an empty scene.
    bool LoadAnew(std::string_view bytes)
    {
        scripted::Reset();
        return Load(bytes);
    }
    /// The text with CR LF in the place of each '|'.
    static std::string Lines(std::string text)
    {
        for (size_t at = 0; (at = text.find('|', at)) != std::string::npos; at += 2) {
            text.replace(at, 1, "\r\n");
        }
        return text;
    }
    [[nodiscard]] static std::string LastMessage()
    {
        return scripted::Messages.empty() ? std::string() : scripted::Messages.back().Text;
    }

    const std::string Path = Folder / "a.mvm";
};
