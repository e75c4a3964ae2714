#include "modConsole.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "app/modFrontEnd.h"
#include "modCamera.h"
#include "modCodePage.h"
#include "model/modNumbers.h"
#include "model/modStrings.h"
#include "weights/modBoneAlias.h"

namespace {

void PrintCamera(const std::string& input)
{
    LogLine(input);
    const ViewCamera& camera = Cameras[static_cast<size_t>(CurrentCamera)];
    for (const Vec3& triple : {camera.Rotation, camera.Position}) {
        for (const float value : {triple.X, triple.Y, triple.Z}) {
            LogLine("   " + FloatToLocaleText(value));
        }
    }
}

void ToggleSleep(const std::string& /*input*/)
{
    NoSleep = !NoSleep;
    LogLine(NoSleep ? "Dedicated mode." : "Efficiency mode.");
}

void ListAliases(const std::string& /*input*/)
{
    LogLine("alias_num " + std::to_string(AliasFileCount()));
    for (const BoneAliasFile& file : AliasFiles) {
        LogLine(std::string(32, '-'));
        LogLine(file.Path);
        LogLine(Utf8FromCodePage(file.Name));
        for (const BoneAliasEntry& entry : file.Entries) {
            LogLine(" " + Utf8FromCodePage(entry.Bone));
        }
    }
}

struct Command {
    std::string_view Word;
    void (*Run)(const std::string& input);
};

constexpr std::array<Command, 3> commands = {{
    {"cam", PrintCamera},
    {"nosleep", ToggleSleep},
    {"alias", ListAliases},
}};

} // namespace

void RunCommand(const std::string& input)
{
    const std::string word = LowerCase(std::string_view(input).substr(0, input.find(' ')));
    bool known = false;
    for (const Command& command : commands) {
        if (command.Word == word) {
            command.Run(input);
            known = true;
        }
    }
    if (!known) {
        LogLine("Bad or unknown command...");
    }
    ShowInfoLog();
}
