// Mouse, wheel, keys, focus, drops and progress on the real window.
#include <csignal>
#include <filesystem>
#include <map>

#include "support/ui_window.h"
#include "weights/modEdit.h"

namespace {

std::string FocusName(const UiWindow& window)
{
    return window->focusWidget() == nullptr ? "" : window->focusWidget()->objectName().toStdString();
}

/// The controls that Tab stops at, from the view until it comes back there.
std::string Walk(const UiWindow& window)
{
    window->picMain->setFocus();
    std::string stops;
    do {
        stops += FocusName(window) + " ";
        QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
    } while (FocusName(window) != "picMain" && stops.size() < 1000);
    return stops;
}

/// Runs one test of this program once more, in a process that has the variables.
void RunAgain(const char* test, const std::map<std::string, std::string>& variables, int wanted)
{
    QProcess self;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : variables) {
        environment.insert(QString::fromStdString(name), QString::fromStdString(value));
    }
    self.setProcessEnvironment(environment);
    self.setProcessChannelMode(QProcess::MergedChannels);
    self.start(QApplication::applicationFilePath(),
               {QStringLiteral("--gtest_filter=WindowEvents.") + QLatin1String(test)});
    ASSERT_TRUE(self.waitForFinished(60000));
    EXPECT_EQ(self.exitCode(), wanted) << self.readAll().toStdString();
}

} // namespace

TEST(WindowMouse, ADragThroughTheListWalksTheBone)
{
    const UiWindow window(BoardModel(6));
    window.Edit(1);
    BoneList* list = window->lstSkinBones;
    const auto row = [list](int i) { return list->visualItemRect(list->item(i)).center(); };
    QTest::mousePress(list->viewport(), Qt::LeftButton, {}, row(1));
    for (const int bone : {2, 3, 4, 3, 3}) {
        ActiveBone = 5;
        QTest::mouseMove(list->viewport(), row(bone) + QPoint(bone, 0));
        EXPECT_EQ(ActiveBone, bone);
    }
    QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, row(3));
    ActiveBone = 5;
    QTest::mouseMove(list->viewport(), row(3));
    EXPECT_EQ(ActiveBone, 5);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, row(3));
    EXPECT_TRUE(list->item(3)->isSelected() && ActiveBone == 3);
}

TEST(WindowKeys, CtrlTurnsThemOffUntilAKeyGoesUpOnTheView)
{
    const UiWindow window;
    QTest::keyPress(window->picMain, Qt::Key_Control);
    QTest::keyPress(window->cmdSwap, Qt::Key_T);
    QTest::keyRelease(window->cmdSwap, Qt::Key_Control);
    QKeyEvent repeated(QEvent::KeyRelease, Qt::Key_Control, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(window->picMain, &repeated);
    QTest::keyPress(window->picMain, Qt::Key_T);
    EXPECT_EQ(CurrentCamera, 1);
    QTest::keyRelease(window->picMain, Qt::Key_T);
    QTest::keyPress(window->picMain, Qt::Key_T);
    EXPECT_EQ(CurrentCamera, 7);
}

TEST(WindowKeys, AreTakenByTheirPlaceOnOtherAlphabets)
{
    const UiWindow window;
    // Key, scan code of X, camera, tool: Cyrillic on the key of T, Greek on L and C, Arabic on D, which does nothing; signs
    // on 1, 3, 4 and 5; T of a Latin layout of another order, a Latin letter of its own, and no letter at all.
    const std::array<int, 4> keys[] = {{0x415, 28, 7, 0}, {0x39B, 46, 5, 0}, {0x3A8, 54, 2, 0},       {0x6CC, 40, 1, 0},
                                       {'&', 10, 1, 0},   {'"', 12, 1, 2},   {'\'', 13, 1, 3},        {'/', 14, 1, 3},
                                       {'T', 46, 7, 3},   {0xD6, 46, 1, 3},  {Qt::Key_Left, 28, 1, 3}};
    for (const auto& [key, scan, camera, tool] : keys) {
        window->SetCamera(1);
        const bool isX = QGuiApplication::platformName() == QStringLiteral("xcb");
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, static_cast<quint32>(isX ? scan : scan - 8), 0, 0);
        QApplication::sendEvent(window->picMain, &event);
        EXPECT_EQ(CurrentCamera, camera) << key;
        EXPECT_EQ(ToolMode, tool) << key;
    }
}

TEST(WindowKeys, TabReachesEveryControl)
{
    const UiWindow window(BoardModel(4));
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&*window));
    EXPECT_EQ(Walk(window), "picMain tabMainHeadings lstAnimation select ");
    window->tabMain->tabBar()->setFocus();
    QTest::keyClick(window->tabMain->tabBar(), Qt::Key_Right);
    EXPECT_EQ(Walk(window), "picMain tabMainHeadings optShadow0 lstSkinBones cmdSelectSkinMesh cmdSelectShadowMesh "
                            "cmdUnAssign cmdReAssign cmdSwap cmdMirror cmdLoadWeights cmdSaveWeights optMode2 select ");
    const bool shows = window->viewEdge->autoFillBackground();
    window->cmdSwap->setFocus();
    EXPECT_TRUE(shows && !window->viewEdge->autoFillBackground()) << "the rim of the view tells the focus";
}

TEST(WindowEvents, ADropOpensTheFirstModelOfIt)
{
    const UiWindow window;
    const std::string path = window.Folder / "a%20\xC3\xB6.MVM";
    PutFile(path, SmallModel());
    PutFile(window.Folder / "b.txt", SmallModel());
    const std::string folder = QUrl::fromLocalFile(QString::fromStdString(window.Folder.Path)).toString().toStdString();
    const std::string url = folder + "a%2520%C3%B6.MVM";
    const std::pair<std::string, bool> drops[] = {
        {folder + "b.txt\n" + url, false},         {folder, false},
        {"http://x/a.mvm\n" + url, false},         {folder + "none.mvm", false},
        {"# a note\r\n\r\n" + url + "\r\n", true}, {"FILE:" + url.substr(7) + "%00.txt", true}};
    for (const auto& [dropped, opens] : drops) {
        ModelOpen = false;
        QMimeData data;
        data.setData(QStringLiteral("text/uri-list"), QByteArray::fromStdString(dropped));
        QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
        QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
        for (QEvent* each : {static_cast<QEvent*>(&enter), static_cast<QEvent*>(&event)}) {
            each->ignore();
            static_cast<QObject&>(*window).event(each);
            EXPECT_TRUE(each->isAccepted());
        }
        EXPECT_FALSE(ModelOpen) << "the load must wait until the drop has been answered";
        QCoreApplication::processEvents();
        EXPECT_EQ(ModelOpen, opens) << dropped;
    }
    EXPECT_EQ(CurrentFile, path);
    EXPECT_TRUE(window->acceptDrops());
    const Script script({Question + "No"});
    window->DropFile(path);
}

TEST(WindowEvents, TheProgressStandsOnTheStatusBar)
{
    const UiWindow window;
    const std::tuple<int32_t, int32_t, const char*, int> steps[] = {
        {0, 5, "100%", 1},    {1000, 0, "0%", 1},      {1000, 5, "0%", 5},
        {1000, 15, "2%", 15}, {200, 199, "100%", 199}, {1000, 5000, "100%", 1000}};
    const int64_t usual = std::exchange(PumpInterval, 0);
    for (const auto& [maximum, value, percent, bar] : steps) {
        ProgressBegin(maximum);
        EXPECT_TRUE(window->pgbProgress->isVisible() && window->txtProgress->isVisible());
        EXPECT_EQ(window->pgbProgress->value(), 0);
        EXPECT_FALSE(window->pgbProgress->isTextVisible());
        ProgressStep(value);
        EXPECT_EQ(window->txtProgress->text().toStdString(), percent) << value;
        EXPECT_EQ(window->pgbProgress->value(), bar);
        ProgressEnd();
        EXPECT_FALSE(window->pgbProgress->isVisible() || window->txtProgress->isVisible());
    }
    // A load that fails leaves them where it ended, also when no event was served on the way, and no document.
    std::string half(512, '\r');
    half += "mesh \"a\"\r{\rv=(1E99,0,0)\r";
    half.resize(1024, '\r');
    PutFile(window.Folder / "half.mvm", half);
    PumpInterval = 1'000'000'000;
    const auto seen = [&](QDialog* /*dialog*/) {
        EXPECT_EQ(window->txtProgress->text(), QStringLiteral("50%"));
        EXPECT_EQ(window->pgbProgress->value(), 512);
    };
    const Script script(
        {Step("x Runtime error in LoadMVM|... > OK", seen),
         Step("x A program error occurred. Please check the file you tried to open for errors.|However, "
              "you can try to save the currently loaded data. Please restart Beastwright before you open "
              "any other files. > OK",
              seen),
         "! Cannot find file \"~/\". > OK"});
    window->OpenFile(window.Folder / "half.mvm");
    EXPECT_TRUE(window->pgbProgress->isVisible() && window->txtProgress->isVisible());
    PumpInterval = usual;
    EXPECT_FALSE(ModelOpen || window->Busy() || window->Entry("mnuFileSave")->isEnabled());
    window->OpenFile(window.Folder.Path);
}

TEST(WindowEvents, TheModelOfTheCommandLineOpensInAWindowOnTheScreen)
{
    const TempFolder folder;
    PutFile(folder / "two words.mvm", SmallModel());
    const UiWindow window("\"" + (folder / "two words.mvm") + "\"");
    EXPECT_EQ(CurrentFile, folder / "two words.mvm");
    EXPECT_TRUE(IsInfoLogVisible());
    EXPECT_TRUE(QTest::qWaitFor([] {
        const QWidget* active = QApplication::activeWindow();
        return active != nullptr && active->objectName() == QStringLiteral("frmLog");
    })) << "the log has the keyboard";
    EXPECT_FALSE(QApplication::windowIcon().isNull()) << "windows without an owner have no icon";
    window->showMinimized();
    EXPECT_TRUE(QTest::qWaitFor([] { return !IsInfoLogVisible(); }));
}

#ifndef Q_OS_WIN // it ends programs by messages to their windows
TEST(WindowEvents, ASignalToEndKeepsWhatWasChanged)
{
    const char* variable = "BEASTWRIGHT_MODEL_TO_END";
    const std::string model = qgetenv(variable).toStdString();
    if (!model.empty()) {
        const UiWindow window(model);
        window.Edit(1);
        model.ends_with("changed.mvm") ? window.Do("cmdUnAssign") : window.Do("optMode0");
        std::filesystem::remove(window.Folder.Path);
        std::raise(SIGTERM);
        QTest::qWait(5000);
        return;
    }
    const TempFolder folder;
    for (const char* name : {"same.mvm", "changed.mvm"}) {
        PutFile(folder / name, SmallModel());
        RunAgain("ASignalToEndKeepsWhatWasChanged", {{variable, folder / name}}, 128 + SIGTERM);
    }
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"changed.mvm", "changed.mvm.rescued", "same.mvm"}));
    const UiWindow window(folder / "changed.mvm");
    EXPECT_EQ(Meshes[SkinMesh].VertexBones[1], 1);
    const QString note = QStringLiteral("Changes that were not saved when the program was ended lie in");
    EXPECT_TRUE(LogField()->toPlainText().contains(note));
    window->OpenFile(folder / "changed.mvm.rescued");
    EXPECT_EQ(Meshes[SkinMesh].VertexBones[1], 0);
    ClearInfoLog();
    window->OpenFile(folder / "same.mvm");
    QCoreApplication::processEvents();
    EXPECT_FALSE(LogField()->toPlainText().contains(note));
}
#endif

// Runs itself again on a desktop that gives no OpenGL at all, and on one whose OpenGL is older than the toolkit needs.
TEST(WindowEvents, WorkWithoutOpenGL)
{
    if (qgetenv("QT_XCB_GL_INTEGRATION") != "none" && qgetenv("MESA_GL_VERSION_OVERRIDE") != "1.1") {
        RunAgain("WorkWithoutOpenGL", {{"QT_XCB_GL_INTEGRATION", "none"}}, 0);
        RunAgain("WorkWithoutOpenGL",
                 {{"MESA_GL_VERSION_OVERRIDE", "1.1"},
                  {"MESA_EXTENSION_OVERRIDE", "-GL_ARB_framebuffer_object -GL_EXT_framebuffer_object"}},
                 0);
        return;
    }
    const Script script({"x Initalizing OpenGL failed. > OK", "x Error initializing OpenGL. > OK"});
    const UiWindow window(BoardModel(6));
    EXPECT_FALSE(GLReady);
    ASSERT_TRUE(ModelOpen);
    window.Edit(2);
    window.Drag(QPoint(2, 2), QPoint(300, 300));
    window.Do("key C");
    EXPECT_EQ(CurrentCamera, 2);
    EXPECT_EQ(ActiveBone, 2);
    EXPECT_EQ(window->picMain->palette().color(QPalette::Window), QColor(128, 128, 128));
    window.Do("mnuToolsReloadTextures");
}
