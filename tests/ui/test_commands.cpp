// Every entry, button, key and option by its widget: what it asks, and all that it changes.
#include "modCommand.h"
#include "support/scene_bytes.h"
#include "support/ui_state.h"
#include "weights/modBoneAlias.h"

namespace {

/// Starts a command while a file or a folder beside the program is away.
void DoWithout(const std::string& name, const UiWindow& window, const std::string& trigger, std::deque<Step> dialogs)
{
    const std::string path = ProgramFolder() + "/" + name;
    // A run that was killed in the middle has left it there.
    if (std::filesystem::exists(path)) {
        std::filesystem::remove_all(path + ".away");
        std::filesystem::rename(path, path + ".away");
    }
    window.Do(trigger, std::move(dialogs));
    std::filesystem::rename(path + ".away", path);
}

/// A command that has changed the scene has made a step, which leads back to every byte of it and forward again.
void TakeBack(const UiWindow& window, const std::string& before)
{
    const std::string count = window->panels[1]->text().toStdString();
    const std::string after = SceneBytes();
    const int16_t bone = ActiveBone;
    if (after != before) {
        Perform("Undo", UndoCommand);
        EXPECT_EQ(SceneBytes(), before) << "undone";
        Perform("Redo", RedoCommand);
        EXPECT_EQ(SceneBytes(), after) << "redone";
        EXPECT_EQ(ActiveBone, bone);
        SetPanelText("toolhelp", "Ready...");
        SetPanelText("progress", count); // not every command refreshes it
    }
}

/// Takes back every step by the key. Gives what is said of each, with a "|" where the other list comes up.
std::string UndoAll(const UiWindow& window)
{
    HideInfoLog();
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&*window));
    QString said;
    for (int16_t target = EditTarget; !said.endsWith(QStringLiteral("Nothing to undo.")); target = EditTarget) {
        window.Do("key Ctrl+Z");
        said += (EditTarget == target ? u';' : u'|') + window->panels[0]->text();
    }
    return said.remove(QStringLiteral("Undo: ")).toStdString();
}

/// Starts commands, "widget {dialog} {dialog} = changes", of which each stands behind a line end or " || "; a line that
/// begins with a blank goes on with the one before. A "*" before the changes stands for a view that is painted anew.
void Try(UiWindow* window, const char* commands)
{
    const QString lines = QString::fromUtf8(commands)
                              .replace(QStringLiteral("\n "), QStringLiteral(" "))
                              .replace(QStringLiteral(" || "), QStringLiteral("\n"));
    for (const QString& line : lines.split(u'\n', Qt::SkipEmptyParts)) {
        SCOPED_TRACE(line.toStdString());
        const qsizetype sign = line.indexOf(QStringLiteral(" ="), line.lastIndexOf(u'}') + 1);
        const QString trigger = line.left(std::min(sign, line.indexOf(u'{') < 0 ? sign : line.indexOf(u'{'))).trimmed();
        std::deque<Step> dialogs;
        for (const QString& step : line.left(sign).split(u'{').mid(1)) {
            dialogs.emplace_back(step.left(step.indexOf(u'}')).toStdString());
        }
        std::string changes = line.mid(sign + 2).trimmed().toStdString();
        HideInfoLog();
        const State before = Look(*window);
        const std::string scene = SceneBytes();
        const bool painted = window->Paints([&] { window->Do(trigger.toStdString(), dialogs); }, changes[0] == '*');
        EXPECT_TRUE(changes[0] != '*' || painted) << "not painted";
        EXPECT_EQ(Changes(before, Look(*window)), changes.substr(changes[0] == '*' ? 1 : 0));
        if (ModelOpen && !trigger.contains(QStringLiteral("File")) && !trigger.contains(QStringLiteral("Alias"))) {
            TakeBack(*window, scene);
        }
    }
}

} // namespace

TEST(Commands, AtTheStart)
{
    const UiWindow window;
    EXPECT_EQ(
        Changes({{"last", ProgramFolder()}}, Look(window)),
        "bone=0; camera=0; ctrl=no; cursor=select 15,15; eye=10 -200 0 0 -2; help=Ready...; menu=no; mode=2; mouse=0 "
        "0 0 0 0; nosleep=no; numbers=5 0.01 0.01; off +FileSave +FileSaveAs +FileRevert +FileClose; on +ViewSolid "
        "+ViewGrid "
        "+ViewTextures +ViewLighting +ViewCullVerts +OptionsAlias +OptionsLineAA +OptionFilterTextures; "
        "open=no; orbit=on; place=1 0; row=0 -1; rows=NONE|NONE; shadow=0:; shown=no; skin=0:; status=0:0; tab=0; "
        "target=0; title=BWRT 0.2.7; tool=0");
    EXPECT_GT(AliasFileCount(), 0);
}

TEST(Commands, OfTheView)
{
    UiWindow window;
    Try(&window, R"(
mnuViewCameraOrthographic = *camera=1 || arcrot = cursor=arcrot 16,16; tool=1
mnuViewCameraFront = *camera=2; cursor=pan1 15,15; orbit=off; tool=2
mnuViewCameraBack = *camera=3 || mnuViewCameraLeft = *camera=4 || mnuViewCameraRight = *camera=5
mnuViewCameraTop = *camera=6 || mnuViewCameraBottom = *camera=7 || mnuViewCameraPerspective = *camera=0; orbit=on
mnuViewWire = *off +ViewIsolines +ViewCullVerts; on +ViewWire -ViewSolid || mnuViewWire = *
mnuViewSolid = *off -ViewIsolines -ViewCullVerts; on +ViewSolid -ViewWire || mnuViewGrid = *on -ViewGrid
mnuViewTextures = *on -ViewTextures || mnuViewLighting = *on -ViewLighting || mnuViewBackfaces = *on +ViewBackfaces
mnuViewIsolines = *on +ViewIsolines || mnuViewNormals = *on +ViewNormals || mnuViewCullVerts = *on -ViewCullVerts
mnuOptionsLineAA = *on -OptionsLineAA || mnuOptionFilterTextures = *on -OptionFilterTextures
mnuViewNormals = *on -ViewNormals || mnuViewTextures = *on +ViewTextures
zoom = cursor=zoom 12,13; tool=3 || select = cursor=select 15,15; tool=0 || pan = cursor=pan1 15,15; tool=2
tab 1 = *tab=1 || optMode0 = *mode=0 || optMode1 = *mode=1 || optMode2 = *mode=2 || tab 0 = *tab=0
mnuWindowErrorLog = shown=yes)");
    window.Paints([] {}, false);
    EXPECT_FALSE(QTest::qWaitFor([&] { return window.Frames > 3; }, 150)) << "nothing but a command paints the view";
}

TEST(Commands, OfTheKeys)
{
    UiWindow window;
    Try(&window, R"(
key C = *camera=1 || key B = *camera=3; orbit=off || key B = *camera=7 || key B = *camera=3 || key L = *camera=4
key R = *camera=5 || key T = *camera=6 || key Shift+C = *camera=7 || key C = *camera=0; orbit=on
key 2 = *cursor=arcrot 16,16; tool=1 || key F = *camera=2; cursor=pan1 15,15; orbit=off; tool=2 || key 2 = *
key O = *camera=1; orbit=on || key 4 = *cursor=zoom 12,13; tool=3 || key Num+1 = * || key X = *
key 1 = *cursor=select 15,15; tool=0 || key 3 = *cursor=pan1 15,15; tool=2 || key P = *camera=0
key W = *off +ViewIsolines +ViewCullVerts; on +ViewWire -ViewSolid
key W = *off -ViewIsolines -ViewCullVerts; on +ViewSolid -ViewWire || key V = *on -ViewCullVerts
key T cmdMirror = *camera=6; orbit=off || key P cmdPlay = *camera=0; orbit=on || key O tabMainHeadings = *camera=1
focus lstSkinBones = || key T lstSkinBones = || focus select = || key T select = || focus picMain = *
key P optMode0 = *camera=0 || key Space optMode0 = *mode=0
key D = *help=There is no mesh to edit.
key Ctrl+Z = help=Nothing to undo. || key Ctrl+Y = help=Nothing to redo. || key Ctrl+Shift+Z =
key F11 {Command|Command:| > NoSleep now} = *log=Dedicated mode.; nosleep=yes; shown=yes
key F11 {Command|Command:|NoSleep now > Esc} = *
key F11 {Command|Command:|NoSleep now > x} = *log=Bad or unknown command...; shown=yes
key F11 {Command|Command:|x > nosleep} = *log=Efficiency mode.; nosleep=no; shown=yes)");
}

TEST(Commands, OfTheMouse)
{
    UiWindow window(SmallModel());
    Try(&window, R"(
arcrot = cursor=arcrot 16,16; tool=1 || press left 10,10 = *mouse=1 10 10 10 10
move 30,60 = *eye=20 -196 0 0 -2; mouse=1 30 60 10 10 || release left 30,60 = *mouse=0 30 60 10 10
press middle 10,10 = *cursor=pan2 15,15; mouse=4 10 10 10 10
move 30,60 = *eye=20 -196 0.02 -0.05 -2; mouse=4 30 60 10 10
release middle 30,60 = *cursor=arcrot 16,16; mouse=0 30 60 10 10
pan = cursor=pan1 15,15; tool=2 || press left 1,1 = *cursor=pan2 15,15; mouse=1 1 1 1 1
move -19,51 = *eye=20 -196 0 -0.1 -2; mouse=1 -19 51 1 1
release left -19,51 = *cursor=pan1 15,15; mouse=0 -19 51 1 1
zoom = cursor=zoom 12,13; tool=3 || press left 9,1 = *mouse=1 9 1 9 1
move 9,51 = *eye=20 -196 0 -0.1 -2.5; mouse=1 9 51 9 1 || release left 9,50 = *mouse=0 9 50 9 1
press right 5,5 = cursor=select 15,15; tool=0 || release right 9,50 = * || press left 9,50 = *mouse=1 9 50 9 50
press right 9,50 = menu=yes || press back 7,7 = || move 8,8 = *mouse=1 8 8 9 50 || release left 8,8 = *mouse=0 8 8 9 50
wheel 120 lstAnimation = || tab 1 = *tab=1 || press left 1,1 = *mouse=1 1 1 1 1 || release left 2,2 = *mouse=0 2 2 1 1
wheel 120 = *eye=20 -196 0 -0.1 -2.4 || wheel -240 = *eye=20 -196 0 -0.1 -2.6 || wheel 30 = || wheel 60 =
wheel 30 = *eye=20 -196 0 -0.1 -2.5 || wheel 90 = || wheel -30 = || wheel -90 = *eye=20 -196 0 -0.1 -2.6
wheel 120 tabMainHeadings = *eye=20 -196 0 -0.1 -2.5 || wheel 120 lstSkinBones =
optShadow1 = *row=0 0; status=1:0; target=1 || wheel 120 lstShadowBones =)");
    // A release that went elsewhere, and another window that takes the keyboard, end a drag.
    for (const bool moved : {true, false}) {
        window.Do("press middle 20,20");
        EXPECT_EQ(window->focusWidget(), window->picMain);
        QMouseEvent move(QEvent::MouseMove, QPointF(70, 80), QPointF(70, 80), Qt::NoButton, Qt::NoButton, {});
        EXPECT_TRUE(
            window.Paints([&] { moved ? (void)QApplication::sendEvent(window->picMain, &move) : ShowInfoLog(); }));
        EXPECT_TRUE(QTest::qWaitFor([] { return MouseButton == 0; }));
        EXPECT_EQ(CursorOf(window->picMain), "select 15,15");
        EXPECT_EQ(window->panels[0]->text().startsWith(QStringLiteral("The drag was given up")), !moved);
    }
}

TEST(Commands, OfEditing)
{
    UiWindow window(SmallModel());
    const std::string start = SceneBytes();
    Try(&window, R"(
tab 1 = *tab=1 || cmdSwap =
cmdUnAssign {? No bone selected, would you like to unassign all bones? > No} = *
row 2 = *bone=2; row=2 -1; status=0:2 || cmdReAssign {Bones 2 > 1 cmdCancel} = || cmdReAssign {Bones 2 > 0 cmdOK} =
row 0 = *bone=0; row=0 -1; status=3:0
cmdReAssign {Bones 0 > 2 cmdOK} = *bone=2; row=2 -1; skin=1:1222; status=3:2
cmdSwap {Bones 2 > 1 cmdOK} = *bone=1; row=1 -1; skin=1:2111; status=3:1
row 3 = *bone=3; row=3 -1; status=0:3 || cmdSwap {Bones 3 > 2 cmdCancel} = || cmdSwap {Bones 3 > 0 cmdOK} =
cmdSwap {Bones 3 > 2 cmdOK} = *bone=2; row=2 -1; skin=1:3111; status=0:2 || row 1 = *bone=1; row=1 -1; status=3:1
cmdSaveWeights {Save Weights|save ~/||Weights Information File (*.wif) > Esc} =
cmdSaveWeights {Save Weights... > ~/w.wif} {i File saved. > OK} = files= a.mvm w.wif; last=~/w.wif
cmdUnAssign = *skin=1:3000 || row 0 = *bone=0; row=0 -1; status=3:0
cmdUnAssign {? No bone... > Yes} = *skin=1:0000
cmdLoadWeights {Load Weights|open ~/||Weights Information File (*.wif) > w.wif} {Load Weights > cmdCancel} = *
cmdLoadWeights {Load Weights|open ~/||... > w.wif} {Load Weights > optAssignMode1 cmdOK} = *skin=1:3111
cmdUnAssign {? No bone... > Yes} = *skin=1:0000
cmdLoadWeights {L... > ~/none} {! File does not exist. > OK} {L... > ~/w.wif} {Load Weights > cmdOK} = *skin=1:3111
cmdMirror {Mirror Weights > Esc} = || cmdMirror {Mirror Weights > cmdOK} = *log=1 : 2; shown=dirty; skin=1:2111
cmdMirror {Mirror Weights > chkReassign optMirror1 cmdOK} = *log=2 : 1 || cmdMirror {M... > cmdCancel} =
row 1 = *bone=1; row=1 -1; status=3:1
key N = *eye=10 -200 0.94 -0.059 -2; help=Vertex 1 of Body: Left02 among Right01; 1 such vertex.
cmdUnAssign = *skin=1:2000
cmdMirror {Mirror Weights > optMirror1 cmdOK} = *log=2 : 1; skin=1:2100
row 2 = *bone=2; row=2 -1; status=1:2 || cmdUnAssign = *skin=1:0100
cmdMirror {M... > optMirror1 chkReassign chkUnassign chkReassign cmdOK} = *log=2 : 1; skin=1:0000
key PgUp = *bone=1; help=Active bone: Right01; row=1 -1; status=0:1 || key PgDown = *bone=2; help=Active bone: Left02; row=2 -1; status=0:2
key N = *help=No vertex of Body stands alone among other bones. || key E = *help=There is no vertex under the pointer.
key U = *eye=10 -200 -0.94 0.059 -2; help=Vertex 2 of Body; 4 unassigned. || key U = *eye=10 -200 0 -0.985 -2; help=Vertex 3 of Body; 4 unassigned.
optShadow1 = *bone=0; row=2 0; status=1:0; target=1 || row 1 = *bone=4; row=2 1; status=0:4 || optShadow1 =
optShadow0 = *bone=2; status=0:2; target=0 || optShadow1 = *bone=4; status=0:4; target=1
row 2 = *bone=5; row=2 2; status=1:5 || cmdSwap {Bones 5 > 4 cmdOK} = *bone=4; row=2 1; shadow=2:04; status=1:4
cmdSwap {Bones 4 > 5 cmdOK} = *bone=5; row=2 2; shadow=2:05; status=1:5
cmdReAssign {Bones 5 > 2 cmdOK} = *bone=2; shadow=2:02; status=1:2
cmdSaveWeights {S... > ~/w.wif} {! w.wif already exists.|Do you want to replace it? > Yes} {i File saved. > OK} =
 log=1 vertex of mesh "$Shadow" of bone "Left02" will belong to bone "$j$High02" after the next load of the model:
 theirs is no shadow bone.; shown=yes
cmdUnAssign = *shadow=2:00
cmdLoadWeights {L... > ~/w.wif} {Load Weights > cmdOK} = *shadow=2:02 || row 0 = *bone=0; row=2 0; status=1:0
cmdUnAssign {? No bone... > Yes} = *shadow=2:00 || cmdSelectSkinMesh {Meshes 1 > 2 cmdCancel} =
cmdSelectSkinMesh {Meshes 1 > 3 cmdOK} {! No instance with the name "Plain" found.... > OK} = *meshes= Body/0s
 $Shadow/0s Plain/0s; skin=3:0
cmdSelectShadowMesh {Meshes 2 > 0 cmdCancel} = || cmdSelectShadowMesh {Meshes 2 > 0 cmdOK} = *shadow=0:
cmdUnAssign = || cmdMirror = || cmdSelectShadowMesh {Meshes 0 > 1 cmdOK} = *shadow=1:0000
cmdSelectSkinMesh {Meshes 3 > 0 cmdOK} = *place=1 0; skin=0: || cmdSelectSkinMesh {Meshes 0 > 1 cmdOK} =
 *place=2 0; skin=1:0000)");
    Perform("cmdSwap", [] { Perform("Undo", UndoCommand); }); // nothing in the middle of a command
    EXPECT_EQ(UndoAll(window),
              ";Select Skin Mesh;Select Skin Mesh;Select Shadow Mesh;Select Shadow Mesh;Select Skin Mesh;Unassign (1 "
              "vertex);Load Weights (1 vertex);Unassign (1 vertex);Re-assign (1 vertex);Swap (1 vertex);Swap (1 "
              "vertex)|Mirror (1 vertex);Unassign (1 vertex);Mirror (1 vertex);Unassign (3 "
              "vertices);Mirror (1 vertex);Load Weights (4 vertices);Unassign (4 vertices);Load Weights (4 "
              "vertices);Unassign (1 vertex);Unassign (3 vertices);Swap (1 vertex);Swap (4 vertices);Re-assign (3 "
              "vertices);Nothing to undo.");
    EXPECT_EQ(SceneBytes(), start);
}

TEST(Commands, OfTheTools)
{
    UiWindow window(SmallModel());
    Try(&window, R"(
mnuToolsStatsMeshes = log=Meshes (3):/Body:; shown=yes || mnuToolsStatsMaterials = log=Materials (1):/M:; shown=yes
mnuToolsStatsInstances = log=Instances (2):/Trunk:; shown=yes || mnuToolsStatsBones = log=Bones (5):/Right01:;
 shown=yes
mnuToolsStatsMeshNames = log=Meshes (3):/Body; shown=yes || mnuToolsStatsMaterialNames = log=Materials (1):/M;
 shown=yes
mnuToolsStatsInstanceNames = log=Instances (2):/Trunk; shown=yes
mnuToolsStatsBoneNames = log=Bones (5):/Right01; shown=yes
mnuToolsStatsTextureFilenames = log=Texture Filenames:/absent.bmp; shown=yes
mnuViewToolsAutoAssign {Meshes 0 > 1 cmdCancel} =
mnuViewToolsAutoAssign {Meshes 0 > 3 cmdOK} {! Mesh is not a skin. > OK} =
mnuViewToolsAutoAssign {Meshes 0 > 1 cmdOK} = *skin=1:1231
key N = *eye=10 -200 0.94 -0.059 -2; help=Vertex 1 of Body: Right01 among Left02; 3 such vertices.
key N = *eye=10 -200 -0.94 0.059 -2; help=Vertex 2 of Body: Left02 among Right01; 3 such vertices.
key N = *eye=10 -200 0 -0.985 -2; help=Vertex 3 of Body: Top03 among Right01; 3 such vertices.
key N = *eye=10 -200 0.94 -0.059 -2; help=Vertex 1 of Body: Right01 among Left02; 3 such vertices.
mnuViewToolsRegenNormals {Meshes 0 > 0 cmdOK} =
mnuViewToolsRegenNormals {Meshes 0 > 1 cmdOK} = *meshes= Body/4s $Shadow/0s Plain/0
mnuToolsRenameMesh {Meshes 0 > 1 cmdCancel} =
mnuToolsRenameMesh {Meshes 0 > 1 cmdOK} {Rename Mesh|New mesh name:|Body > Esc} =
mnuToolsRenameMesh {Meshes 0 > 1 cmdOK} {Rename Mesh|... > Bulk} = instances= Bulk/Bulk $Shadow/$Shadow; meshes=
 Bulk/4s $Shadow/0s Plain/0
mnuToolsReloadTextures = *log=Texture "absent.bmp" not found.; shown=yes)");
    EXPECT_EQ(UndoAll(window), ";Rename Mesh;Re-generate Normals;Auto-Assign (3 vertices);Nothing to undo.");
    window.Do("key Ctrl+Shift+Z");
    EXPECT_EQ(window->panels[0]->text(), QStringLiteral("Redo: Auto-Assign (3 vertices)"));
}

TEST(Commands, OfOptionsAndHelp)
{
    UiWindow window(SmallModel());
    AliasFiles.Add({.Name = "Body"}).Entries.Add({.Bone = "Right01", .Alias = "Arm"});
    Try(&window, R"(
mnuOptionsAlias = *on -OptionsAlias
mnuOptionsAlias = *on +OptionsAlias; rows=NONE,Arm,Left02,Top03|NONE,$j$Low01,$j$High02
mnuOptionsAlias = *on -OptionsAlias; rows=NONE,Right01,Left02,Top03|NONE,$j$Low01,$j$High02
mnuOptionsMirrorVertThreshold {Mirror Vertex Threshold|New value:|0.01 > 0.5x} = numbers=5 0.5 0.01
mnuOptionsMirrorBoneThreshold {Mirror Bone Threshold|New value:|0.01 > 1,5} = numbers=5 0.5 1
mnuOptionsMirrorVertThreshold {Mirror Vertex Threshold|New value:|0.5 > -1} = numbers=5 0.01 1
mnuOptionsMirrorBoneThreshold {Mirror Bone Threshold|New value:|1 > Esc} = numbers=5 0.01 0.01
mnuOptionsPointsize {Point Size|Point size (in pixels):|5 > 99} = *numbers=10 0.01 0.01
mnuOptionsPointsize {Point Size|Point size (in pixels):|10 > Esc} = *
mnuHelpOpenglInfo {OpenGL Info -1 > cmdClose} = || mnuHelpAbout {About > cmdOk} =)");
    DoWithout("readme.html", window, "mnuHelpReadme", {"! Cannot find readme file. > OK"});
}

TEST(Commands, OfPagesThatTheDesktopOpens)
{
    const UiWindow window;
    // The desktop's handler is not waited for.
    const std::string note = window.Folder / "note";
    // Where there is none, the toolkit asks whoever has put himself down for a kind of address.
    class Reader : public QTextBrowser {
    public:
        explicit Reader(std::string path) : note(std::move(path))
        {
            QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "setSource");
            QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "setSource");
        }
        ~Reader() override
        {
            QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
            QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
        }
        Reader(const Reader&) = delete;
        Reader& operator=(const Reader&) = delete;

    protected:
        void doSetSource(const QUrl& url, QTextDocument::ResourceType /*type*/) override
        {
            PutFile(note, url.toString(QUrl::PreferLocalFile).toStdString() + "\n");
        }

    private:
        std::string note;
    };
    const Reader reader(note);
    const std::string opener = window.Folder / "xdg-open";
    PutFile(opener, "#!/bin/sh\necho \"$1\" > " + note + ".part\nmv " + note + ".part " + note + "\nsleep 2\n");
    std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QByteArray::fromStdString(window.Folder.Path) + ':' + path);
    for (const std::string& target : {ProgramFolder() + "/readme.html", std::string("https://beastwright.example/")}) {
        target.starts_with("http") ? window.Do("mnuHelpAbout", {"labLink cmdOk"}) : window.Do("mnuHelpReadme");
        const std::string wanted = QDir::fromNativeSeparators(QString::fromStdString(target)).toStdString() + "\n";
        EXPECT_TRUE(QTest::qWaitFor([&] { return Content(note) == wanted; })) << Content(note);
    }
    qputenv("PATH", path);
}

TEST(Commands, OfTheDocument)
{
    UiWindow window;
    AliasFiles.Add({.Name = "Body"}).Entries.Add({.Bone = "Right01", .Alias = "Arm"});
    AliasFiles.Add({.Name = "Plain"}).Entries.Add({.Bone = "Top03", .Alias = "Head"});
    const std::string preset = ProgramFolder() + "/presets/test.PRESET";
    PutFile(preset, "bone \"Preset09\"\r\n{\r\n}\r\n");
    PutFile(window.Folder / "b.mvm", SmallModel());
    LastPath = window.Folder.Path;
    SetPanelText("toolhelp", "x");
    Try(&window, R"(
mnuFileOpen {Open File|open ~/||Morvane Models (*.mvm) > Esc} = help=Ready...
mnuFileOpen {O... > ~/none} {! File does not exist. > OK} {Open File|open ~/||... > ~/b.mvm} = *file=~/b.mvm;
 instances= Trunk/Body $Shadow/$Shadow; last=~/b.mvm; log=Texture "absent.bmp" not found.; meshes= Body/0s
 $Shadow/0s Plain/0; off -FileSave -FileSaveAs -FileRevert -FileClose; open=yes; place=2 0;
 rows=NONE,Arm,Left02,Top03|NONE,$j$Low01,$j$High02; shadow=2:05; shown=yes; skin=1:1000; status=3:0; title=BWRT
 0.2.7 - [~/b.mvm]
tab 1 = *tab=1 || row 1 = *bone=1; row=1 -1; status=1:1 || cmdUnAssign = *skin=1:0000
key U = *eye=10 -200 0.94 -0.059 -2; help=Vertex 1 of Body; 4 unassigned.
optShadow1 = *bone=0; row=1 0; status=1:0; target=1 || row 2 = *bone=5; row=1 2; status=1:5
optShadow0 = *bone=1; status=0:1; target=0
mnuFileRevert {! Any changes to open files will be lost.|Continue? > No} =
mnuFileRevert {! Any... > Yes} = *bone=0; help=Ready...; row=0 -1; shown=yes; skin=1:1000; status=3:0
optShadow1 = *row=0 0; status=1:0; target=1 || optShadow0 = *status=3:0; target=0
mnuFileSaveAs {Save File|save ~/|b.mvm|Morvane Models (*.mvm) > Esc} =
mnuFileSaveAs {S... > ~/c.mvm} = file=~/c.mvm; files= b.mvm c.mvm; last=~/c.mvm; title=BWRT 0.2.7 - [~/c.mvm]
cmdUnAssign {? No bone... > Yes} = *skin=1:0000 || mnuFileSave = || mnuFileRevert {! Any... > Yes} = *row=0 -1; shown=yes;
 status=4:0
key U = *help=Vertex 1 of Body; 4 unassigned.
mnuFileOpen {O... > ~/b.mvm} {! Any changes to open files will be lost.|Continue? > Cancel} = last=~/b.mvm
mnuFileNew {! Any changes to open files will be lost.|Continue? > No} = || mnuFileClose {! Any... > Cancel} =
mnuFileClose {! Any... > Yes} = *file=; log=; off +FileSave +FileSaveAs +FileRevert +FileClose; open=no;
 rows=NONE|NONE; shadow=0:; skin=0:; status=0:0; title=BWRT 0.2.7
mnuFileNew {New Vorrel -1 > test cmdBrowse cmdOK} {V... > ~/none} {x Runtime error in LoadMVM|... > OK} {! Cannot
 load skin model file. Please verify the content of this file. > OK} = *help=Ready...; last=~/none; place=1 0
mnuFileNew {New Vorrel... > cmdCancel} =
mnuFileNew {New Vorrel -1 > cmdBrowse test cmdOK} {Vorrel Skin Model File|open ~/||Morvane Models (*.mvm) >
 ~/c.mvm} {i Please select the model you want to use as skin. > OK} {Meshes 0 > 3 cmdOK} {! No instance... > OK} =
 *instances= Trunk/Body $Shadow/$Shadow; last=~/c.mvm; log=Texture "absent.bmp" not found.; meshes= Body/0s
 $Shadow/0s Plain/0s; off -FileSave -FileSaveAs -FileClose; open=yes; place=2 0;
 rows=NONE,Preset09,Right01,Left02,Head|NONE,$j$Low01,$j$High02; shadow=2:06; shown=dirty; skin=3:0; status=1:0
mnuFileSave {Save File|save ~/||Morvane Models (*.mvm) > ~/d.mvm} = file=~/d.mvm; files= b.mvm c.mvm d.mvm;
 last=~/d.mvm; shown=yes; title=BWRT 0.2.7 - [~/d.mvm]
mnuFileNew {! Any... > Yes} {New Vorrel -1 > cmdBrowse test cmdOK} {V... > ~/c.mvm} {i Please... > OK}
 {Meshes 0 > cmdCancel} = *file=; last=~/c.mvm; meshes= Body/0s $Shadow/0s Plain/0;
 rows=NONE,Preset09,Right01,Left02,Top03|NONE,$j$Low01,$j$High02; shown=dirty; skin=1:0000; status=4:0; title=BWRT 0.2.7
mnuFileExit {! Any changes to open files will be lost.|Continue? > No} =)");
    std::filesystem::remove(preset);
    DoWithout("presets", window, "mnuFileNew",
              {Question + "Yes",
               "! Folder \"" + QString::fromStdString(ProgramFolder()).toLower().toStdString() +
                   "\\presets\" does not exist.|Cannot generate list of presets. > OK",
               "New Vorrel -1 > Close"});
    window.Do("mnuFileExit");
    EXPECT_TRUE(window->Unloaded());
    EXPECT_FALSE(ModelOpen || window->isVisible());
}
