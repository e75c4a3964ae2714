#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "app/modFrontEnd.h"
#include "model/modMvmRead.h"
#include "support/model_text.h"
#include "support/scripted.h"
#include "support/temp_folder.h"

/// A test that starts with an empty scene and with no answers left.
class Fresh : public testing::Test {
protected:
    Fresh() { scripted::Reset(); }
    ~Fresh() override { scripted::Reset(); }
};

/// The same with a folder of its own.
class FreshFolder : public Fresh {
protected:
    TempFolder Folder;
    std::string Error;
};

/// The same with a file to put models into.
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
    const std::string Path = Folder / "a.mvm";
};

/// All that was told since the last call: the messages, the questions and the log, each with a line feed behind it.
inline std::string Told()
{
    constexpr const char* leads[] = {"Information: ", "Warning: ", "Stop: ", "Question: "};
    std::string text;
    for (const auto* boxes : {&scripted::Messages, &scripted::Questions}) {
        for (const scripted::Box& box : *boxes) {
            text += leads[static_cast<int>(box.Icon)] + box.Text + "\n";
        }
    }
    for (const std::string& line : scripted::Log) {
        text += "Log: " + line + "\n";
    }
    scripted::Messages.clear();
    scripted::Questions.clear();
    scripted::Log.clear();
    return text;
}

/// Matches a message box by its icon and its text.
inline testing::Matcher<scripted::Box> IsBox(BoxIcon icon, const testing::Matcher<const std::string&>& text)
{
    return testing::AllOf(testing::Field(&scripted::Box::Icon, icon), testing::Field(&scripted::Box::Text, text));
}

/// The lines that `act` puts into the log, which it must show once.
inline std::vector<std::string> LogOf(const std::function<void()>& act)
{
    scripted::Log.clear();
    scripted::LogShown = 0;
    act();
    EXPECT_EQ(scripted::LogShown, 1);
    EXPECT_FALSE(LogDirty);
    return scripted::Log;
}
