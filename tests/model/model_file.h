#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unistd.h>

#include "app/modMvmDef.h"
#include "model/modMvmRead.h"
#include "support/scripted.h"

/// A test with an empty scene and a file to put models into.
class ModelFile : public testing::Test {
protected:
    void SetUp() override { scripted::Reset(); }
    void TearDown() override
    {
        std::filesystem::remove(Path);
        scripted::Reset();
    }

    /// Adds these bytes, as a model file, to the scene.
    bool Load(std::string_view bytes)
    {
        std::ofstream(Path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return LoadMVM(Path);
    }
    /// The same into an empty scene.
    bool LoadAnew(std::string_view bytes)
    {
        scripted::Reset();
        return Load(bytes);
    }
    /// Lines, each ended by CR LF.
    static std::string Lines(std::initializer_list<std::string_view> lines)
    {
        std::string text;
        for (const std::string_view line : lines) {
            text.append(line).append("\r\n");
        }
        return text;
    }
    [[nodiscard]] static std::string LastMessage()
    {
        return scripted::Messages.empty() ? std::string() : scripted::Messages.back().Text;
    }

    const std::string Path = (std::filesystem::temp_directory_path() /
                              ("model_" + std::to_string(getpid()) + "_" +
                               testing::UnitTest::GetInstance()->current_test_info()->name() + ".mvm"))
                                 .string();
};
