#include <filesystem>
#include <set>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "support/model_text.h"
#include "support/run_command.h"

using nlohmann::json;
using testing::HasSubstr;

namespace {

const std::string sample = SOURCE_FOLDER "/samples/vorrel/";
const std::string half = SOURCE_FOLDER "/samples/tutorial/vorrel-half.mvm";

/// A skin with a vertex without a bone, a material whose texture is missing, a line that a save drops, and a name that
/// needs quotes in JSON.
const std::string faulty =
    CrLf("// by hand|material \"M\"|{| colormap = \"x.bmp\"|}|bone \"A01\"|{|}|skin \"S\"|{| m = \"M\"| v = (0,0,0),1|"
         " v = (1,0,0),1| v = (0,0,1),-1| n = (0,1,0)| f = (1,2,3),(0,0,0),(1,1,1),1|}|"
         "instance \"S\"|{| mesh = \"S\"| scale = 1|}|");

struct CheckCommands : testing::Test {
    TempFolder Folder;
    [[nodiscard]] Outcome Run(const std::string& words) const { return RunCommand(Folder, words); }
    [[nodiscard]] json Findings(const std::string& words, int code) const
    {
        const Outcome outcome = Run("check --json " + words);
        EXPECT_EQ(outcome.Code, code) << outcome.Errors;
        return json::parse(outcome.Output).at("files").at(0).at("findings");
    }
};

} // namespace

TEST_F(CheckCommands, CheckTellsCodePlaceAndAdvice)
{
    PutFile(Folder / "a.mvm", faulty);
    const Outcome outcome = Run("check a.mvm");
    EXPECT_EQ(outcome.Code, 1);
    EXPECT_EQ(outcome.Errors, "");
    EXPECT_THAT(outcome.Output, HasSubstr("a.mvm:1: warning text-between: "));
    EXPECT_THAT(outcome.Output, HasSubstr("a.mvm: warning unassigned: 1 vertex of mesh \"S\" has no bone"));
    EXPECT_THAT(outcome.Output, HasSubstr("\n    Vertices 3\n    Give them bones"));
    EXPECT_THAT(outcome.Output, HasSubstr("warning texture: Material \"M\": Texture \"x.bmp\" not found.\n"));
    EXPECT_EQ(Findings("a.mvm", 1).size(), 3U);
    EXPECT_EQ(Findings("a.mvm --only texture", 1).size(), 1U);
    EXPECT_EQ(Findings("a.mvm --only texture,unassigned --ignore texture", 1).size(), 1U);
    EXPECT_EQ(Findings("a.mvm --ignore texture,text-between --ignore unassigned", 0), json::array());
    // A file that does not load is told as far as it goes, and the next one is checked all the same.
    PutFile(Folder / "b c.mvm", CrLf("junk|mesh \"A\"|{| v = x|}|"));
    const Outcome both = Run("check 'b c.mvm' a.mvm --json");
    EXPECT_EQ(both.Code, 2);
    EXPECT_THAT(both.Errors, HasSubstr("bwrt: b c.mvm: Line 4: "));
    const json files = json::parse(both.Output).at("files");
    EXPECT_EQ(files.at(0).at("complete"), false);
    EXPECT_THAT(files.at(0).at("findings").dump(), HasSubstr("\"lines\":[4]"));
    EXPECT_EQ(files.at(1).at("complete"), true);
}

TEST_F(CheckCommands, HintsCountOnlyWhenAsked)
{
    std::string model = Content(sample + "vorrel.mvm");
    for (const char* texture : {"Hide", "Eye", "Horn", "Mane", "ManeOpacity"}) {
        std::filesystem::copy(sample + texture + ".bmp", Folder / (std::string(texture) + ".bmp"));
    }
    PutFile(Folder / "clean.mvm", model);
    const Outcome clean = Run("check clean.mvm --strict");
    EXPECT_EQ(clean.Code, 0);
    EXPECT_EQ(clean.Output + clean.Errors, "");
    // One vertex of the pelvis goes to the jaw.
    const size_t at = model.find(",1\r\n", model.find("skin \"Vorrel\""));
    PutFile(Folder / "slip.mvm", model.replace(at, 2, ",8"));
    const json findings = Findings("slip.mvm", 0);
    std::set<std::string> codes;
    for (const json& finding : findings) {
        EXPECT_EQ(finding.at("severity"), "hint");
        codes.insert(finding.at("code"));
    }
    EXPECT_TRUE(codes.contains("stray") && codes.contains("torn-face")) << findings;
    EXPECT_EQ(Run("check slip.mvm --strict").Code, 1);
    EXPECT_EQ(Findings("slip.mvm --no-hints --strict", 0), json::array());
}

TEST_F(CheckCommands, DiffPrintsATableOfAssignments)
{
    std::filesystem::copy(half, Folder / "old.mvm");
    ASSERT_EQ(Run("swap old.mvm --bone 'Left Thigh' --with Head07 -o new.mvm").Code, 0);
    const Outcome same = Run("diff old.mvm old.mvm");
    EXPECT_EQ(same.Code, 0);
    EXPECT_EQ(same.Output, "");
    const Outcome outcome = Run("diff old.mvm new.mvm");
    EXPECT_EQ(outcome.Code, 1);
    EXPECT_THAT(outcome.Output, HasSubstr("mesh \"Vorrel\": assignments\nFrom bone  To bone   Vertices\n"));
    EXPECT_THAT(outcome.Output, HasSubstr("\nHead07     ThighL30       329\nThighL30   Head07         292\n"));
    const json document = json::parse(Run("diff old.mvm new.mvm --json").Output);
    ASSERT_EQ(document.at("assignments").size(), 2U);
    EXPECT_EQ(document.at("version"), 1);
    EXPECT_EQ(document.at("assignments").at(0).at("from"), "Head07");
    EXPECT_EQ(document.at("assignments").at(0).at("count"), document.at("assignments").at(0).at("vertices").size());
}

TEST_F(CheckCommands, AliasFilesAreMadeButNeverReplacedUnasked)
{
    std::filesystem::copy(half, Folder / "old.mvm");
    std::filesystem::create_directory(Folder / "made");
    EXPECT_EQ(Run("alias make old.mvm -o made").Code, 0);
    EXPECT_EQ(NamesIn(Folder / "made"), (std::vector<std::string>{"$shadowVorrel.alias", "Vorrel.alias"}));
    // With the program's own aliases in force, these come back.
    EXPECT_EQ(Content(Folder / "made/Vorrel.alias"), Content(SOURCE_FOLDER "/assets/alias/Vorrel.alias"));
    EXPECT_THAT(Run("alias make old.mvm").Output, HasSubstr("ThighL30;Left Thigh;Pelvis01;ThighR34;30\r\n"));
    PutFile(Folder / "made/Vorrel.alias", "by hand");
    const Outcome again = Run("alias make old.mvm -o made");
    EXPECT_EQ(again.Code, 2);
    EXPECT_THAT(again.Errors, HasSubstr("--replace replaces it"));
    EXPECT_EQ(Content(Folder / "made/Vorrel.alias"), "by hand");
    EXPECT_EQ(Run("alias make old.mvm -o made --replace").Code, 0);
    EXPECT_NE(Content(Folder / "made/Vorrel.alias"), "by hand");
}

TEST_F(CheckCommands, ReportsAreThoseOfTheWindowInTheOrderOfItsMenu)
{
    PutFile(Folder / "a.mvm", faulty);
    const Outcome outcome = Run("report a.mvm");
    EXPECT_EQ(outcome.Code, 0);
    EXPECT_THAT(outcome.Output, testing::StartsWith("\nMeshes (1):\nS:\n Vertices:            3\n"));
    size_t at = 0;
    for (const char* head :
         {"\nMeshes (1):", "\nMaterials (1):", "\nInstances (1):", "\nBones (1):", "\nMeshes (1):\nS\n",
          "\nMaterials (1):\nM\n", "\nInstances (1):\nS\n", "\nBones (1):\nA01\n", "\nTexture Filenames:\nx.bmp\n"}) {
        const size_t next = outcome.Output.find(head, at);
        ASSERT_NE(next, std::string::npos) << head;
        at = next + 1;
    }
    EXPECT_EQ(Run("report a.mvm --only bone-names").Output, "\nBones (1):\nA01\n");
    const json reports = json::parse(Run("report a.mvm --json").Output).at("files").at(0).at("reports");
    EXPECT_EQ(reports.size(), 9U);
    EXPECT_EQ(reports.at("meshes").at(0).at("vertices"), 3);
    EXPECT_EQ(reports.at("texture-filenames"), json({"x.bmp"}));
}
