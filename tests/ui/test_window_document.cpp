// The document commands on the real window, and what the menu shows in each state of the document.
#include <QAction>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "dialogs/frmLog.h"
#include "modFiles.h"
#include "support/ui_window.h"
#include "ui/dialog_steps.h"
#include "weights/modEdit.h"

namespace {

constexpr const char* question = "Any changes to open files will be lost.\nContinue?";
constexpr const char* pleaseSelect = "Please select the model you want to use as skin.";

/// Which of Save, Save As, Close and Revert can be chosen, one letter for each.
std::string Enabled(const UiWindow& window)
{
    std::string letters;
    for (const char* entry : {"mnuFileSave", "mnuFileSaveAs", "mnuFileClose", "mnuFileRevert"}) {
        letters += window->Entry(entry)->isEnabled() ? entry[7] : '-';
    }
    for (const char* entry : {"mnuFileNew", "mnuFileOpen", "mnuFileExit"}) {
        EXPECT_TRUE(window->Entry(entry)->isEnabled()) << entry;
    }
    return letters;
}

std::string Caption(const UiWindow& window)
{
    return window->windowTitle().toStdString();
}

/// A preset beside the program, for as long as it stands.
struct Preset {
    std::string Name = "document test " + std::to_string(QCoreApplication::applicationPid());
    std::string Path = ProgramFolder() + "/presets/" + Name + ".preset";

    explicit Preset(const std::string& text) { PutFile(Path, text); }
    ~Preset() { std::filesystem::remove(Path); }
    Preset(const Preset&) = delete;
    Preset& operator=(const Preset&) = delete;

    /// A step that chooses the model by Browse, then this preset, and presses OK.
    [[nodiscard]] DialogSteps::Step Take() const
    {
        return [this](QDialog* dialog) {
            Press(dialog, "cmdBrowse");
            auto* list = Part<QListWidget>(dialog, "lstPresets");
            list->findItems(QString::fromStdString(Name), Qt::MatchExactly).constFirst()->setSelected(true);
            Press(dialog, "cmdOK");
        };
    }
};

/// A step that checks what a file chooser offers before it types a path.
DialogSteps::Step ChooseFrom(const std::string& folder, const std::string& name, const std::string& path)
{
    return [=](QDialog* dialog) {
        const auto* chooser = qobject_cast<QFileDialog*>(dialog);
        ASSERT_NE(chooser, nullptr);
        EXPECT_EQ(chooser->directory().absolutePath().toStdString() + "/", folder);
        EXPECT_EQ(chooser->findChild<QLineEdit*>()->text().toStdString(), name);
        Choose(path)(dialog);
    };
}

} // namespace

TEST(WindowDocument, TheMenuFollowsTheDocument)
{
    const TempFolder folder;
    const Preset preset("bone \"Leg01\"\r\n{\r\n}\r\n");
    PutFile(folder / "skin.mvm", "mesh \"one\"\r\n{\r\nv=(0,0,0)\r\n}\r\nskin \"two\"\r\n{\r\nv=(0,0,0),1\r\n}\r\n"
                                 "instance \"two\"\r\n{\r\nmesh=\"two\"\r\nscale=1\r\n}\r\n");
    const UiWindow window;
    EXPECT_EQ(Enabled(window), "----");
    LastPath = folder.Path;
    {
        // Cancel in the mesh chooser keeps the skin that the load has chosen.
        const DialogSteps steps({preset.Take(), ChooseFrom(folder.Path, "", folder / "skin.mvm"),
                                 Box(pleaseSelect, QMessageBox::Ok), Pressing("cmdCancel")});
        window->mnuFileNew_Click();
    }
    EXPECT_EQ(Enabled(window), "SSC-");
    EXPECT_EQ(Caption(window), "BWRT 0.2.7");
    EXPECT_EQ(CurrentFile, "");
    EXPECT_EQ(SkinMesh, 2);
    EXPECT_EQ(window->lstSkinBones->count(), 2);
    {
        const DialogSteps steps({ChooseFrom(folder.Path, "", folder / "new.mvm")});
        window->mnuFileSave_Click();
    }
    EXPECT_EQ(Enabled(window), "SSC-");
    EXPECT_EQ(Caption(window), "BWRT 0.2.7 - [" + (folder / "new.mvm") + "]");
    EXPECT_EQ(LastPath, folder / "new.mvm");
    {
        const DialogSteps steps({Box(question, QMessageBox::Yes)});
        window->mnuFileClose_Click();
    }
    EXPECT_EQ(Enabled(window), "----");
    EXPECT_EQ(Caption(window), "BWRT 0.2.7");
    window->OpenFile(folder / "new.mvm");
    EXPECT_EQ(Enabled(window), "SSCR");
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"new.mvm", "skin.mvm"}));
}

TEST(WindowDocument, TheQuestionComesBehindTheChooser)
{
    const TempFolder folder;
    PutFile(folder / "a.mvm", BallModel(4));
    PutFile(folder / "b.mvm", BallModel(5));
    const UiWindow window;
    window->OpenFile(folder / "a.mvm");
    ReplaceBone(SkinMesh, 0, 1);
    SetPanelText("toolhelp", "untouched");
    {
        const DialogSteps steps({Choose(folder / "absent.mvm"), Box("File does not exist.", QMessageBox::Ok),
                                 Choose(folder / "b.mvm"), Box(question, QMessageBox::No)});
        window->mnuFileOpen_Click();
    }
    EXPECT_EQ(CurrentFile, folder / "a.mvm");
    EXPECT_EQ(LastPath, folder / "b.mvm");
    EXPECT_EQ(CountBoneVerts(SkinMesh, 0), 0);
    EXPECT_EQ(window->panels[0]->text().toStdString(), "untouched");
    {
        const DialogSteps steps({Box(question, QMessageBox::Cancel), Box(question, QMessageBox::Yes)});
        window->mnuFileRevert_Click();
        EXPECT_EQ(CountBoneVerts(SkinMesh, 0), 0);
        window->mnuFileRevert_Click();
    }
    EXPECT_EQ(CountBoneVerts(SkinMesh, 0), 20) << "the assignments of the file";
    LogLine("of the old model");
    std::filesystem::remove(folder / "a.mvm");
    {
        const DialogSteps steps({Box(question, QMessageBox::Yes),
                                 Box("Cannot find file \"" + (folder / "a.mvm") + "\".", QMessageBox::Ok)});
        window->mnuFileRevert_Click();
    }
    EXPECT_FALSE(ModelOpen || LogDirty || IsInfoLogVisible());
    EXPECT_EQ(Enabled(window), "----");
    EXPECT_EQ(MeshCount(), 0);
}

TEST(WindowDocument, TheModelOfTheCommandLineOpensInAWindowOnTheScreen)
{
    const TempFolder folder;
    PutFile(folder / "two words.mvm", "material \"a\"\r\n{\r\ncolormap=\"absent.bmp\"\r\n}\r\n");
    const UiWindow window("\"" + (folder / "two words.mvm") + "\"");
    EXPECT_EQ(CurrentFile, folder / "two words.mvm");
    EXPECT_TRUE(IsInfoLogVisible());
    EXPECT_TRUE(QTest::qWaitFor([] {
        const QWidget* active = QApplication::activeWindow();
        return active != nullptr && active->objectName() == QStringLiteral("frmLog");
    })) << "the log has the keyboard";
}
