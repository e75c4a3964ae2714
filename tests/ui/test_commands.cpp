// Every entry, button, key and option by its widget: what it asks, and all that it changes.
#include <map>

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QToolButton>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "dialogs/frmLog.h"
#include "main/frmMainMenu.h"
#include "modCamera.h"
#include "modConsole.h"
#include "modDrag.h"
#include "modFiles.h"
#include "modViewFlags.h"
#include "support/ui_window.h"
#include "weights/modBoneAlias.h"
#include "weights/modMirror.h"

namespace {

using State = std::map<std::string, std::string>;

std::string Rows(const QListWidget* list)
{
    QStringList rows;
    for (int row = 0; row < list->count(); row++) {
        rows += list->item(row)->text();
    }
    return rows.join(u',').toStdString();
}

/// The picture of the mouse over the view, by its name.
std::string CursorOf(const QWidget* view)
{
    for (const char* name : {"select", "arcrot", "pan1", "pan2", "zoom"}) {
        const QPixmap picture(QStringLiteral(":/cursors/%1.png").arg(QLatin1String(name)));
        if (picture.toImage() == view->cursor().pixmap().toImage()) {
            const QPoint hot = view->cursor().hotSpot();
            return name + (" " + std::to_string(hot.x())) + "," + std::to_string(hot.y());
        }
    }
    return "none";
}

/// The button of several that is down, which must be the one of the value.
template <typename Buttons>
std::string Down(int value, const Buttons& buttons)
{
    for (size_t i = 0; i < buttons.size(); i++) {
        if (buttons[i]->isChecked() != (static_cast<int>(i) == value)) {
            return "torn";
        }
    }
    return std::to_string(value);
}

std::string LogText()
{
    for (const QWidget* top : QApplication::topLevelWidgets()) {
        if (top->objectName() == QStringLiteral("frmLog")) {
            return Part<QPlainTextEdit>(top, "txtLog")->toPlainText().toStdString();
        }
    }
    return {};
}

std::string Float(float value)
{
    return QString::number(static_cast<double>(value)).toStdString();
}

std::string RoleText(int16_t mesh)
{
    std::string text = std::to_string(mesh) + ":";
    if (IsValidMesh(mesh)) {
        for (const int16_t bone : Meshes[mesh].VertexBones) {
            text += std::to_string(bone);
        }
    }
    return text;
}

/// All that a command can change, by name.
State Look(const UiWindow& window)
{
    QCoreApplication::processEvents(); // lines on their way to the log
    State state;
    const struct {
        const char* Entry;
        bool Flag;
    } flags[] = {{"mnuViewWire", ViewWire},           {"mnuViewSolid", !ViewWire},
                 {"mnuViewGrid", ViewGrid},           {"mnuViewTextures", ViewTextures},
                 {"mnuViewLighting", ViewLighting},   {"mnuViewBackfaces", ViewBackfaces},
                 {"mnuViewIsolines", ViewIsolines},   {"mnuViewNormals", ViewNormals},
                 {"mnuViewCullVerts", ViewCullVerts}, {"mnuOptionsAlias", AliasesOn},
                 {"mnuOptionsLineAA", LineAA},        {"mnuOptionFilterTextures", FilterTextures}};
    for (const auto& flag : flags) {
        state["on"] += flag.Flag ? std::string(" ") + (flag.Entry + 3) : "";
        state["torn"] += window->Entry(flag.Entry)->isChecked() == flag.Flag ? "" : flag.Entry;
    }
    std::vector<QAction*> cameras;
    for (const MenuEntry& entry : MenuTable()) {
        const std::string name = entry.Name;
        if (name.starts_with("mnuViewCamera") && entry.Handler != nullptr) {
            cameras.push_back(window->Entry(entry.Name));
        }
        state["off"] += window->Entry(entry.Name)->isEnabled() ? "" : " " + name.substr(3);
    }
    state["camera"] = Down(CurrentCamera - 1, cameras);
    state["tool"] = Down(ToolMode, window->toolButtons);
    state["cursor"] = CursorOf(window->picMain);
    state["orbit"] = window->toolButtons[1]->isEnabled() ? "on" : "off";
    const bool editing = window->fraEditing->isVisible();
    state["tab"] = window->fraViewing->isVisible() == editing || window->tabMain->currentIndex() != ActiveTab ||
                           editing != (ActiveTab == 1)
                       ? "torn"
                       : std::to_string(ActiveTab);
    const bool shadow = window->lstShadowBones->isVisibleTo(window->fraEditing);
    state["target"] = shadow == window->lstSkinBones->isVisibleTo(window->fraEditing) || shadow != (EditTarget == 1)
                          ? "torn"
                          : Down(EditTarget, window->optShadow);
    state["mode"] = Down(DisplayMode, window->optMode);
    state["bone"] = std::to_string(ActiveBone);
    state["rows"] = Rows(window->lstSkinBones) + "|" + Rows(window->lstShadowBones);
    state["row"] =
        std::to_string(window->lstSkinBones->currentRow()) + "/" + std::to_string(window->lstShadowBones->currentRow());
    state["help"] = window->panels[0]->text().toStdString();
    state["status"] = window->panels[1]
                          ->text()
                          .replace(QStringLiteral(" verts assigned to bone "), QStringLiteral(":"))
                          .toStdString();
    state["title"] = window->windowTitle().toStdString();
    state["skin"] = RoleText(SkinMesh);
    state["shadow"] = RoleText(ShadowMesh);
    state["place"] = Float(SkinScale) + "," + Float(SkinOffset.X);
    for (const MvmMesh& mesh : Meshes) {
        state["meshes"] += mesh.Name + "/" + std::to_string(mesh.NormalCount()) + (mesh.IsSkin ? "s " : " ");
    }
    for (const MvmInstance& instance : Instances) {
        state["instances"] += instance.Name + "/" + instance.Mesh + " ";
    }
    state["numbers"] =
        std::to_string(PointSize) + " " + Float(MirrorVertexThreshold) + " " + Float(MirrorBoneThreshold);
    state["file"] = CurrentFile;
    state["last"] = LastPath;
    state["open"] = ModelOpen ? "yes" : "no";
    state["nosleep"] = NoSleep ? "yes" : "no";
    state["menu"] = window->mnuViewCamera->isVisible() ? "yes" : "no";
    state["ctrl"] = window->CtrlHeld ? "yes" : "no";
    for (const std::string& name : window.Folder.Names()) {
        state["files"] += name + " ";
    }
    state["log"] = LogText();
    state["shown"] = IsInfoLogVisible() ? "yes" : LogDirty ? "dirty" : "no";
    return state;
}

/// The words of one list that the other does not have, each with a sign before it.
std::string Without(const std::string& words, const std::string& others, const char* sign)
{
    std::string rest;
    for (const QString& word : QString::fromStdString(words).split(u' ', Qt::SkipEmptyParts)) {
        rest +=
            (others + " ").find(" " + word.toStdString() + " ") == std::string::npos ? sign + word.toStdString() : "";
    }
    return rest;
}

/// What has changed, "name=new value" for each; of the log the first two lines that came to it.
std::string Changes(const State& before, const State& after)
{
    std::string changes;
    for (const auto& [name, value] : after) {
        const auto old = before.find(name);
        const std::string was = old == before.end() ? std::string() : old->second;
        if (value == was) {
            continue;
        }
        changes += (changes.empty() ? "" : "; ") + name;
        if (name == "on" || name == "off") {
            changes += Without(value, was, " +") + Without(was, value, " -");
        } else if (name == "log" && value.starts_with(was)) {
            const QString news = QString::fromStdString(value.substr(was.size()));
            changes += "=" + Tilde(news.split(u'\n', Qt::SkipEmptyParts).mid(0, 2).join(u'/').toStdString());
        } else {
            changes += "=" + Tilde(value);
        }
    }
    return changes;
}

struct Command {
    std::string Trigger;
    std::deque<Step> Dialogs{};
    std::string Changes{}; ///< with a "*" before it: and the view is painted anew
};

void Try(UiWindow* window, const std::vector<Command>& commands)
{
    for (const Command& command : commands) {
        SCOPED_TRACE(command.Trigger);
        HideInfoLog();
        const State before = Look(*window);
        window->Settle();
        window->Do(command.Trigger, command.Dialogs);
        const bool painted = command.Changes.starts_with('*');
        if (painted) {
            EXPECT_TRUE(QTest::qWaitFor([&] { return window->Frames > 0; }, 500)) << "not painted";
        }
        EXPECT_EQ(Changes(before, Look(*window)), command.Changes.substr(painted ? 1 : 0));
    }
}

/// Takes a file or a folder out of its place for as long as it stands.
struct Away {
    std::string Path;
    explicit Away(std::string path) : Path(std::move(path)) { std::filesystem::rename(Path, Path + ".away"); }
    ~Away() { std::filesystem::rename(Path + ".away", Path); }
    Away(const Away&) = delete;
    Away& operator=(const Away&) = delete;
};

const std::string noInstance = "! No instance with the name \"Plain\" found.\nPlease rename the skin to match the "
                               "instance name. > OK";

TEST(Commands, AtTheStart)
{
    const UiWindow window;
    EXPECT_EQ(
        Changes({}, Look(window)),
        "bone=0; camera=0; ctrl=no; cursor=select 15,15; help=Ready...; last=" + ProgramFolder() +
            "; menu=no; mode=2; nosleep=no; numbers=5 0.01 0.01; off +FileSave +FileSaveAs +FileRevert +FileClose; "
            "on +ViewSolid +ViewGrid +ViewTextures +ViewLighting +ViewCullVerts +OptionsAlias +OptionsLineAA "
            "+OptionFilterTextures; open=no; orbit=on; place=1,0; row=0/-1; rows=NONE|NONE; shadow=0:; shown=no; "
            "skin=0:; status=0:0; tab=0; target=0; title=BWRT 0.2.7; tool=0");
    EXPECT_GT(AliasFileCount(), 0);
}

TEST(Commands, OfTheView)
{
    UiWindow window;
    Try(&window, {{"mnuViewCameraOrthographic", {}, "*camera=1"},
                  {"arcrot", {}, "cursor=arcrot 16,16; tool=1"},
                  {"mnuViewCameraFront", {}, "*camera=2; cursor=pan1 15,15; orbit=off; tool=2"},
                  {"mnuViewCameraBack", {}, "*camera=3"},
                  {"mnuViewCameraLeft", {}, "*camera=4"},
                  {"mnuViewCameraRight", {}, "*camera=5"},
                  {"mnuViewCameraTop", {}, "*camera=6"},
                  {"mnuViewCameraBottom", {}, "*camera=7"},
                  {"mnuViewCameraPerspective", {}, "*camera=0; orbit=on"},
                  {"mnuViewWire", {}, "*off +ViewIsolines +ViewCullVerts; on +ViewWire -ViewSolid"},
                  {"mnuViewWire", {}, "*"},
                  {"mnuViewSolid", {}, "*off -ViewIsolines -ViewCullVerts; on +ViewSolid -ViewWire"},
                  {"mnuViewGrid", {}, "*on -ViewGrid"},
                  {"mnuViewTextures", {}, "*on -ViewTextures"},
                  {"mnuViewLighting", {}, "*on -ViewLighting"},
                  {"mnuViewBackfaces", {}, "*on +ViewBackfaces"},
                  {"mnuViewIsolines", {}, "*on +ViewIsolines"},
                  {"mnuViewNormals", {}, "*on +ViewNormals"},
                  {"mnuViewCullVerts", {}, "*on -ViewCullVerts"},
                  {"mnuOptionsLineAA", {}, "*on -OptionsLineAA"},
                  {"mnuOptionFilterTextures", {}, "*on -OptionFilterTextures"},
                  {"mnuViewNormals", {}, "*on -ViewNormals"},
                  {"zoom", {}, "cursor=zoom 12,13; tool=3"},
                  {"select", {}, "cursor=select 15,15; tool=0"},
                  {"pan", {}, "cursor=pan1 15,15; tool=2"},
                  {"tab 1", {}, "*tab=1"},
                  {"optMode0", {}, "*mode=0"},
                  {"optMode1", {}, "*mode=1"},
                  {"optMode2", {}, "*mode=2"},
                  {"tab 0", {}, "*tab=0"},
                  {"mnuWindowErrorLog", {}, "shown=yes"}});
    // Nothing but a command paints the view.
    window.Settle();
    EXPECT_FALSE(QTest::qWaitFor([&] { return window.Frames > 3; }, 150));
}

TEST(Commands, OfTheKeys)
{
    UiWindow window;
    Try(&window, {{"key C", {}, "*camera=1"},
                  {"key B", {}, "*camera=3; orbit=off"},
                  {"key B", {}, "*camera=7"},
                  {"key B", {}, "*camera=3"},
                  {"key L", {}, "*camera=4"},
                  {"key R", {}, "*camera=5"},
                  {"key T", {}, "*camera=6"},
                  {"key Shift+C", {}, "*camera=7"},
                  {"key C", {}, "*camera=0; orbit=on"},
                  {"key 2", {}, "*cursor=arcrot 16,16; tool=1"},
                  {"key F", {}, "*camera=2; cursor=pan1 15,15; orbit=off; tool=2"},
                  {"key 2", {}, "*"},
                  {"key O", {}, "*camera=1; orbit=on"},
                  {"key 4", {}, "*cursor=zoom 12,13; tool=3"},
                  {"key Num+1", {}, "*"},
                  {"key 1", {}, "*cursor=select 15,15; tool=0"},
                  {"key 3", {}, "*cursor=pan1 15,15; tool=2"},
                  {"key P", {}, "*camera=0"},
                  {"key X", {}, "*"},
                  {"key W", {}, "*off +ViewIsolines +ViewCullVerts; on +ViewWire -ViewSolid"},
                  {"key W", {}, "*off -ViewIsolines -ViewCullVerts; on +ViewSolid -ViewWire"},
                  {"key V", {}, "*on -ViewCullVerts"},
                  {"key F11", {"Command|Command:| > NoSleep now"}, "*log=Dedicated mode.; nosleep=yes; shown=yes"},
                  {"key F11", {"Command|Command:|NoSleep now > Esc"}, "*"},
                  {"key F11", {"Command|Command:|NoSleep now > x"}, "*log=Bad or unknown command...; shown=yes"},
                  {"key F11", {"Command|Command:|x > nosleep"}, "*log=Efficiency mode.; nosleep=no; shown=yes"}});
}

TEST(Commands, OfEditing)
{
    UiWindow window(SmallModel());
    const std::string all = "? No bone selected, would you like to unassign all bones? > ";
    const std::string filter = "Weights Information File (*.wif)";
    Try(&window,
        {{"tab 1", {}, "*tab=1"},
         {"cmdUnAssign", {all + "No"}, "*"},
         {"cmdSwap", {}, ""},
         {"row 2", {}, "*bone=2; row=2/-1; status=0:2"},
         {"cmdReAssign", {"Bones 2 > 1 cmdCancel"}, ""},
         {"cmdReAssign", {"Bones 2 > 0 cmdOK"}, ""},
         {"row 0", {}, "*bone=0; row=0/-1; status=3:0"},
         {"cmdReAssign", {"Bones 0 > 2 cmdOK"}, "*bone=2; row=2/-1; skin=1:1222; status=3:2"},
         {"cmdSwap", {"Bones 2 > 1 cmdOK"}, "*bone=1; row=1/-1; skin=1:2111; status=3:1"},
         {"row 3", {}, "*bone=3; row=3/-1; status=0:3"},
         {"cmdSwap", {"Bones 3 > 2 cmdCancel"}, ""},
         {"cmdSwap", {"Bones 3 > 2 cmdOK"}, "*bone=2; row=2/-1; skin=1:3111; status=0:2"},
         {"row 1", {}, "*bone=1; row=1/-1; status=3:1"},
         {"cmdSaveWeights", {"Save Weights|save ~/||" + filter + " > Esc"}, ""},
         {"cmdSaveWeights",
          {"Save Weights|save ~/||" + filter + " > ~/w.wif", "i File saved. > OK"},
          "files=a.mvm w.wif ; last=~/w.wif"},
         {"cmdUnAssign", {}, "*skin=1:3000"},
         {"row 0", {}, "*bone=0; row=0/-1; status=3:0"},
         {"cmdUnAssign", {all + "Yes"}, "*skin=1:0000"},
         {"cmdLoadWeights",
          {"Load Weights|open ~/||" + filter + " > ~/none", "! File does not exist. > OK",
           "Load Weights|open ~/||... > ~/w.wif", "Load Weights > cmdOK"},
          "*skin=1:3111"},
         {"cmdMirror", {"Mirror Weights > Esc"}, ""},
         {"cmdMirror", {"Mirror Weights > cmdOK"}, "*log=1 : 2; shown=dirty; skin=1:2111"},
         {"row 1", {}, "*bone=1; row=1/-1; status=3:1"},
         {"optShadow1", {}, "*bone=0; row=1/0; status=1:0; target=1"},
         {"row 1", {}, "*bone=4; row=1/1; status=0:4"},
         {"optShadow1", {}, ""}, // must not take the shadow's bone for the skin's
         {"optShadow0", {}, "*bone=1; status=3:1; target=0"},
         {"optShadow1", {}, "*bone=4; status=0:4; target=1"},
         {"row 2", {}, "*bone=5; row=1/2; status=1:5"},
         {"cmdReAssign", {"Bones 5 > 2 cmdOK"}, "*bone=2; shadow=2:02; status=1:2"}, // no row of this list
         {"cmdUnAssign", {}, "*shadow=2:00"},
         {"cmdSaveWeights",
          {"Save Weights|save ~/||... > ~/w.wif", "! w.wif already exists.\nDo you want to replace it? > Yes",
           "i File saved. > OK"},
          "shown=yes"},
         {"cmdSelectSkinMesh", {"Meshes 1 > 2 cmdCancel"}, ""},
         {"cmdSelectSkinMesh", {"Meshes 1 > 3 cmdOK", noInstance}, "*meshes=Body/0s $Shadow/0s Plain/0s ; skin=3:0"},
         {"cmdSelectShadowMesh", {"Meshes 2 > 0 cmdCancel"}, ""},
         {"cmdSelectShadowMesh", {"Meshes 2 > 0 cmdOK"}, "*shadow=0:"},
         {"cmdUnAssign", {}, ""},
         {"cmdMirror", {}, ""},
         {"cmdSelectShadowMesh", {"Meshes 0 > 1 cmdOK"}, "*shadow=1:2111"},
         {"cmdSelectSkinMesh", {"Meshes 3 > 0 cmdOK"}, "*place=1,0; skin=0:"},
         {"cmdSelectSkinMesh", {"Meshes 0 > 1 cmdOK"}, "*place=2,0; skin=1:2111"}});
}

TEST(Commands, OfTheTools)
{
    UiWindow window(SmallModel());
    Try(&window, {{"mnuToolsStatsMeshes", {}, "log=Meshes (3):/Body:; shown=yes"},
                  {"mnuToolsStatsMaterials", {}, "log=Materials (1):/M:; shown=yes"},
                  {"mnuToolsStatsInstances", {}, "log=Instances (2):/Trunk:; shown=yes"},
                  {"mnuToolsStatsBones", {}, "log=Bones (5):/Right01:; shown=yes"},
                  {"mnuToolsStatsMeshNames", {}, "log=Meshes (3):/Body; shown=yes"},
                  {"mnuToolsStatsMaterialNames", {}, "log=Materials (1):/M; shown=yes"},
                  {"mnuToolsStatsInstanceNames", {}, "log=Instances (2):/Trunk; shown=yes"},
                  {"mnuToolsStatsBoneNames", {}, "log=Bones (5):/Right01; shown=yes"},
                  {"mnuToolsStatsTextureFilenames", {}, "log=Texture Filenames:/absent.bmp; shown=yes"},
                  {"mnuViewToolsAutoAssign", {"Meshes 0 > 1 cmdCancel"}, ""},
                  {"mnuViewToolsAutoAssign", {"Meshes 0 > 3 cmdOK", "! Mesh is not a skin. > OK"}, ""},
                  {"mnuViewToolsAutoAssign", {"Meshes 0 > 1 cmdOK"}, "*skin=1:1231"},
                  {"mnuViewToolsRegenNormals", {"Meshes 0 > 0 cmdOK"}, ""},
                  {"mnuViewToolsRegenNormals", {"Meshes 0 > 1 cmdOK"}, "*meshes=Body/4s $Shadow/0s Plain/0 "},
                  {"mnuToolsRenameMesh", {"Meshes 0 > 1 cmdCancel"}, ""},
                  {"mnuToolsRenameMesh", {"Meshes 0 > 1 cmdOK", "Rename Mesh|New mesh name:|Body > Esc"}, ""},
                  {"mnuToolsRenameMesh",
                   {"Meshes 0 > 1 cmdOK", "Rename Mesh|New mesh name:|Body > Bulk"},
                   "instances=Bulk/Bulk $Shadow/$Shadow ; meshes=Bulk/4s $Shadow/0s Plain/0 "},
                  {"mnuToolsReloadTextures", {}, "*log=Texture \"absent.bmp\" not found.; shown=yes"}});
}

TEST(Commands, OfOptionsAndHelp)
{
    UiWindow window(SmallModel());
    AliasFiles.Add({.Name = "Body"}).Entries.Add({.Bone = "Right01", .Alias = "Arm"});
    const std::string vertex = "Mirror Vertex Threshold|New value:|";
    const std::string bone = "Mirror Bone Threshold|New value:|";
    const std::string point = "Point Size|Point size (in pixels):|";
    const std::string marked = "|NONE,$j$Low01,$j$High02";
    Try(&window, {{"mnuOptionsAlias", {}, "*on -OptionsAlias"},
                  {"mnuOptionsAlias", {}, "*on +OptionsAlias; rows=NONE,Arm,Left02,Top03" + marked},
                  {"mnuOptionsAlias", {}, "*on -OptionsAlias; rows=NONE,Right01,Left02,Top03" + marked},
                  {"mnuOptionsMirrorVertThreshold", {vertex + "0.01 > 0.5x"}, "numbers=5 0.5 0.01"},
                  {"mnuOptionsMirrorBoneThreshold", {bone + "0.01 > 1,5"}, "numbers=5 0.5 1"},
                  {"mnuOptionsMirrorVertThreshold", {vertex + "0.5 > -1"}, "numbers=5 0.01 1"},
                  {"mnuOptionsMirrorBoneThreshold", {bone + "1 > Esc"}, "numbers=5 0.01 0.01"},
                  {"mnuOptionsPointsize", {point + "5 > 99"}, "*numbers=10 0.01 0.01"},
                  {"mnuOptionsPointsize", {point + "10 > Esc"}, "*"},
                  {"mnuHelpOpenglInfo", {"OpenGL Info -1 > cmdClose"}, ""},
                  {"mnuHelpAbout", {"About > cmdOk"}, ""}});
    {
        const Away readme(ProgramFolder() + "/readme.html");
        Try(&window, {{"mnuHelpReadme", {"! Cannot find readme file. > OK"}, ""}});
    }
    // The desktop's handler is not waited for.
    const std::string note = window.Folder / "note";
    const std::string opener = window.Folder / "xdg-open";
    PutFile(opener, "#!/bin/sh\necho \"$1\" > " + note + ".part\nmv " + note + ".part " + note + "\nsleep 2\n");
    std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QByteArray::fromStdString(window.Folder.Path) + ':' + path);
    for (const std::string& target : {ProgramFolder() + "/readme.html", std::string("https://beastwright.example/")}) {
        target.starts_with("http") ? window.Do("mnuHelpAbout", {"labLink cmdOk"}) : window.Do("mnuHelpReadme");
        EXPECT_TRUE(QTest::qWaitFor([&] { return Content(note) == target + "\n"; })) << Content(note);
    }
    qputenv("PATH", path);
}

TEST(Commands, OfTheDocument)
{
    UiWindow window;
    AliasFiles.Add({.Name = "Body"}).Entries.Add({.Bone = "Right01", .Alias = "Arm"});
    AliasFiles.Add({.Name = "Plain"}).Entries.Add({.Bone = "Top03", .Alias = "Head"});
    const std::string preset = ProgramFolder() + "/presets/test.preset";
    const auto takePreset = [](QDialog* dialog) {
        auto* list = Part<QListWidget>(dialog, "lstPresets");
        list->setCurrentItem(list->findItems(QStringLiteral("test"), Qt::MatchExactly).value(0));
    };
    PutFile(preset, "bone \"Preset09\"\r\n{\r\n}\r\n");
    PutFile(window.Folder / "b.mvm", SmallModel());
    LastPath = window.Folder.Path;
    SetPanelText("toolhelp", "x");
    const std::string filter = "Morvane Models (*.mvm)";
    const std::string opened = "instances=Trunk/Body $Shadow/$Shadow ; ";
    const std::string log = "log=Texture \"absent.bmp\" not found.; ";
    const std::string meshes = "meshes=Body/0s $Shadow/0s Plain/0 ; ";
    Try(&window,
        {{"mnuFileOpen", {"Open File|open ~/||" + filter + " > Esc"}, "help=Ready..."},
         {"mnuFileOpen",
          {"Open File|open ~/||" + filter + " > ~/none", "! File does not exist. > OK", "Open File|... > ~/b.mvm"},
          "*file=~/b.mvm; " + opened + "last=~/b.mvm; " + log + meshes +
              "off -FileSave -FileSaveAs -FileRevert -FileClose; open=yes; place=2,0; "
              "rows=NONE,Arm,Left02,Top03|NONE,$j$Low01,$j$High02; shadow=2:05; shown=yes; skin=1:1000; status=3:0; "
              "title=BWRT 0.2.7 - [~/b.mvm]"},
         {"tab 1", {}, "*tab=1"},
         {"row 1", {}, "*bone=1; row=1/-1; status=1:1"},
         {"cmdUnAssign", {}, "*skin=1:0000"},
         {"mnuFileRevert", {Question + "No"}, ""},
         {"mnuFileRevert", {Question + "Yes"}, "*bone=0; row=0/-1; shown=yes; skin=1:1000; status=3:0"},
         {"mnuFileSaveAs", {"Save File|save ~/|b.mvm|" + filter + " > Esc"}, ""},
         {"mnuFileSaveAs",
          {"Save File|save ~/|b.mvm|" + filter + " > ~/c.mvm"},
          "file=~/c.mvm; files=b.mvm c.mvm ; last=~/c.mvm; title=BWRT 0.2.7 - [~/c.mvm]"},
         {"cmdUnAssign", {"? No bone selected, would you like to unassign all bones? > Yes"}, "*skin=1:0000"},
         {"mnuFileSave", {}, ""},
         {"mnuFileRevert", {Question + "Yes"}, "*shown=yes; status=4:0"},
         {"mnuFileOpen", {"Open File|open ~/||... > ~/b.mvm", Question + "Cancel"}, "last=~/b.mvm"},
         {"mnuFileNew", {Question + "No"}, ""},
         {"mnuFileClose", {Question + "Cancel"}, ""},
         {"mnuFileClose",
          {Question + "Yes"},
          "*file=; log=; off +FileSave +FileSaveAs +FileRevert +FileClose; open=no; rows=NONE|NONE; shadow=0:; "
          "skin=0:; "
          "status=0:0; title=BWRT 0.2.7"},
         {"mnuFileNew", {"New Vorrel -1 > cmdCancel"}, ""},
         {"mnuFileNew",
          {Step("New Vorrel -1 > cmdBrowse cmdOK", takePreset),
           "Vorrel Skin Model File|open ~/||" + filter + " > ~/c.mvm",
           "i Please select the model you want to use as skin. > OK", "Meshes 0 > 3 cmdOK", noInstance},
          "*" + opened + "last=~/c.mvm; " + log +
              "meshes=Body/0s $Shadow/0s Plain/0s ; off -FileSave -FileSaveAs -FileClose; open=yes; "
              "rows=NONE,Preset09,Right01,Left02,Head|NONE,$j$Low01,$j$High02; shadow=2:06; shown=dirty; skin=3:0; "
              "status=1:0"},
         {"mnuFileSave",
          {"Save File|save ~/||" + filter + " > ~/d.mvm"},
          "file=~/d.mvm; files=b.mvm c.mvm d.mvm ; last=~/d.mvm; shown=yes; title=BWRT 0.2.7 - [~/d.mvm]"},
         {"mnuFileExit", {Question + "No"}, ""}});
    std::filesystem::remove(preset);
    window.Do("mnuFileExit", {Question + "Yes"});
    EXPECT_TRUE(window->Unloaded());
    EXPECT_FALSE(ModelOpen || window->isVisible());
}

} // namespace
