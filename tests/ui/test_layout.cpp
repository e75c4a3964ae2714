// What stands where in the window and its dialogs, and what it says.

#include "dialogs/modBoxes.h"
#include "dialogs/modFit.h"
#include "modOpenGL.h"
#include "support/ui_window.h"

namespace {

/// The entries with their shortcuts: "x" for a tick, "!" for one that is disabled, "-" for a line.
std::string Tell(const QList<QAction*>& actions)
{
    QStringList entries;
    for (const QAction* action : actions) {
        const QString shortcut = action->shortcut().toString();
        entries += (action->isSeparator() ? QStringLiteral("-") : action->text()) +
                   (shortcut.isEmpty() ? QString() : u' ' + shortcut) +
                   (action->isChecked() ? QStringLiteral(" x") : QString()) +
                   (action->isEnabled() ? QString() : QStringLiteral(" !"));
        if (action->menu() != nullptr) {
            entries.back() += u'[' + QString::fromStdString(Tell(action->menu()->actions())) + u']';
        }
    }
    return entries.join(QStringLiteral(", ")).toStdString();
}

/// The named parts from the top left to the bottom right: name, text, for a reader of the screen (in
/// brackets), tip (in parentheses), what holds of it, and its place in its parent.
std::string Parts(const QWidget* parent, bool places)
{
    QList<QWidget*> parts = parent->findChildren<QWidget*>(QRegularExpression(QStringLiteral("^(?!qt_).")));
    const auto from = [parent](const QWidget* part) { return part->mapTo(parent, QPoint(0, 0)); };
    std::stable_sort(parts.begin(), parts.end(), [&from](const QWidget* a, const QWidget* b) {
        return std::pair(from(a).y() / 4, from(a).x()) < std::pair(from(b).y() / 4, from(b).x());
    });
    std::string lines;
    for (const QWidget* part : parts) {
        const std::string text = part->property("text").toString().toStdString();
        const std::string reader = part->accessibleName().toStdString();
        const std::string tip = part->toolTip().toStdString();
        lines += (lines.empty() ? "" : " ") + part->objectName().toStdString() +
                 (text.empty() ? "" : " '" + text + "'") + (reader.empty() ? "" : " [" + reader + "]") +
                 (tip.empty() ? "" : " (" + tip + ")");
        for (const char* flag : {"checked", "default", "readOnly"}) {
            lines += part->property(flag).toBool() ? std::string(" ") + flag : "";
        }
        lines += std::string(part->isEnabled() ? "" : " disabled") + (parent->focusWidget() == part ? " focus" : "");
        if (places) {
            const QRect r = part->geometry();
            lines += QStringLiteral(" %1,%2 %3x%4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height()).toStdString();
        }
        lines += ";";
    }
    return lines;
}

} // namespace

TEST(WindowBuild, TheMenuTreeIsWhole)
{
    const UiWindow window;
    EXPECT_EQ(Tell(window->menuBar()->actions()),
              "File[New... Ctrl+N, Open... Ctrl+O, -, Save Ctrl+S !, Save &As... !, -, Revert Ctrl+R !, Close !, -, "
              "Exit Ctrl+X], View[Camera[Perspective x, Orthographic, -, Front, Back, Left, Right, Top, Bottom], -, "
              "Wireframe, Solid x, -, Grids x, -, Textures x, Lighting x, Backfaces, Isolines, Normals, -, Cull "
              "Vertices x], Tools[Rename Mesh..., Re-generate Normals..., Auto-Assign Weights..., -, Reload Textures, "
              "-, Statistics[List Meshes, List Materials, List Instances, List Bones, -, Mesh Names, Material Names, "
              "Instance Names, Bone Names, Texture Filenames]], Options[Bone Alias Names x, -, Mirroring Vertex "
              "Threshold..., Mirroring Bone Threshold..., Point Size..., -, Anti-Aliased Points/Lines x, Filter/Mipmap "
              "Textures x], Window[Info Log], Help[Readme..., -, OpenGL Info..., -, About...]");
    // Alt and the first letter open a menu, F10 the first one.
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&*window));
    QTest::keyClick(window->picMain, Qt::Key_V, Qt::AltModifier);
    EXPECT_EQ(window->menuBar()->activeAction(), window->Entry("mnuView"));
    window->Entry("mnuView")->menu()->close();
    QTest::keyClick(window->picMain, Qt::Key_F10);
    EXPECT_EQ(window->menuBar()->activeAction(), window->Entry("mnuFile"));
    window->Entry("mnuFile")->menu()->close();
}

TEST(WindowBuild, TheWidgetsHaveTheirPlaces)
{
    UiWindow window;
    window->picMain->setFocus();
    EXPECT_EQ(Parts(window->tlbMain, true),
              "select [Select tool] (Select tool (1)) checked 0,2 23x22; arcrot [Orbit tool] (Orbit tool (2)) 23,2 "
              "23x22; pan [Pan tool] (Pan tool (3)) 46,2 23x22; zoom [Zoom tool] (Zoom tool (4)) 69,2 23x22;");
    EXPECT_EQ(Parts(window->fraViewing, true),
              "Label2 'Animation:' 0,0 51x13; lstAnimation [Animations] 0,16 163x186; cmdPlay 'Play' disabled 0,208 "
              "79x25; cmdStop 'Stop' disabled 84,208 79x25;");
    EXPECT_EQ(Parts(window->fraEditing, true),
              "optShadow0 'Skin Mesh' checked 0,0 82x25; optShadow1 'Shadow Mesh' 82,0 81x25; labMisc1 'Active Bone:' "
              "0,32 61x13; lstSkinBones [Active bone of the skin] 0,48 163x134; lstShadowBones [Active bone of the "
              "shadow] 0,48 163x134; cmdSelectSkinMesh 'Select Skin Mesh...' 0,188 163x25; cmdSelectShadowMesh 'Select "
              "Shadow Mesh...' 0,220 163x25; cmdUnAssign 'Unassign' 0,252 79x25; cmdReAssign 'Re-assign...' 84,252 "
              "79x25; cmdSwap 'Swap...' 0,284 79x25; cmdMirror 'Mirror...' 84,284 79x25; cmdLoadWeights 'Load...' "
              "0,316 79x25; cmdSaveWeights 'Save...' 84,316 79x25; Frame1 0,348 163x25; optMode0 'Normal' 0,0 54x25; "
              "optMode1 'Shaded' 54,0 55x25; optMode2 'Both' checked 109,0 54x25;");
    EXPECT_EQ(Parts(window->stsMain, false), "toolhelp 'Ready...' (Ready...); progress '0 verts assigned to bone 0';");
    EXPECT_EQ(window->lstAnimation->item(0)->text(), QStringLiteral("NONE"));
    for (QWidget* part : {static_cast<QWidget*>(window->tabMain->tabBar()), window->picMain,
                          static_cast<QWidget*>(window->pgbProgress), static_cast<QWidget*>(window->txtProgress)}) {
        EXPECT_FALSE(part->accessibleName().isEmpty());
    }
    EXPECT_EQ(window->tabMain->tabText(0) + window->tabMain->tabText(1), QStringLiteral("ViewingEditing"));
    for (const QWidget* part : window->centralWidget()->findChildren<QWidget*>()) {
        const QString text = part->property("text").toString();
        EXPECT_LE(QFontMetrics(part->font()).horizontalAdvance(text), part->contentsRect().width())
            << text.toStdString();
        EXPECT_GE(QFontInfo(part->font()).pixelSize(), text.isEmpty() ? 0 : 9) << text.toStdString();
    }
    EXPECT_EQ(QFontInfo(window->txtProgress->font()).pixelSize(), 10) << "taller figures are cut";
    QLabel narrow(QStringLiteral("A caption that has a little less room"));
    narrow.setFont(WindowFont());
    narrow.resize(narrow.sizeHint() * 19 / 20 + QSize(0, 9));
    FitCaption(&narrow);
    EXPECT_EQ(narrow.font().pixelSize(), 11) << "narrower letters come before smaller ones";
}

TEST(WindowBuild, TheToolsFollowTheColoursOfTheDesktop)
{
    const UiWindow window;
    const auto ground = [&] { return window->toolButtons[1]->icon().pixmap(16, 16).toImage().pixelColor(0, 0); };
    const auto shade = [&](size_t tool) { return window->toolButtons[tool]->palette().color(QPalette::Button); };
    const QColor before = ground();
    QPalette dark = QApplication::palette();
    dark.setColor(QPalette::Button, QColor(40, 40, 40));
    dark.setColor(QPalette::Active, QPalette::Highlight, QColor(1, 2, 3));
    dark.setColor(QPalette::Inactive, QPalette::Highlight, QColor(240, 240, 240));
    QApplication::setPalette(dark);
    QCoreApplication::processEvents();
    EXPECT_EQ(ground(), QColor(224, 224, 224)) << "the lines are dark";
    EXPECT_NE(shade(0), shade(1)) << "the one that is down stands out";
    for (const QListWidget* list : {window->lstSkinBones, window->lstShadowBones}) {
        EXPECT_EQ(list->palette().color(QPalette::Inactive, QPalette::Highlight), QColor(1, 2, 3))
            << "the active bone shows while the view has the keyboard";
    }
    window.Do("arcrot");
    EXPECT_EQ(shade(0), shade(2));
    QApplication::setPalette({});
    QCoreApplication::processEvents();
    EXPECT_EQ(ground(), before);
}

TEST(WindowBuild, TheWidgetsFollowTheSize)
{
    const UiWindow window;
    for (const QSize wish : {QSize(0, 0), QSize(900, 600), QSize(1200, 900), QSize(100, 700), QSize(700, 100)}) {
        if (!wish.isEmpty()) {
            window->resize(wish);
        }
        // A scale that leaves parts of pixels may make it a little larger, never smaller.
        const int more = window->devicePixelRatioF() == 1 ? 0 : 2;
        const auto fits = [more](int outer, int inner, int wished, int least) {
            return outer >= least && (wished > least ? inner == wished : outer <= least + more);
        };
        EXPECT_TRUE(QTest::qWaitFor([&] {
            const QSize outer = window->frameGeometry().size();
            return fits(outer.width(), window->width(), wish.width(), 660) &&
                   fits(outer.height(), window->height(), wish.height(), 508);
        })) << window->frameGeometry().width()
            << " " << window->frameGeometry().height();
        const int w = window->centralWidget()->width() - 183;
        const int h = window->centralWidget()->height() - 49;
        const std::pair<const QWidget*, QRect> places[] = {{window->picMain, {2, 2, w, h + 26}},
                                                           {window->viewEdge, {1, 1, w + 2, h + 28}},
                                                           {window->tabMain, {w + 6, 2, 175, h}},
                                                           {window->tlbMain, {w + 6, h + 4, 175, 26}},
                                                           {window->fraViewing, {w + 12, 27, 163, 345}},
                                                           {window->fraEditing, {w + 12, 27, 163, 377}},
                                                           {window->pgbProgress, {w - 93, h + 34, 163, 13}},
                                                           {window->txtProgress, {w + 69, h + 34, 33, 13}},
                                                           {window->stsMain, {0, h + 30, w + 183, 19}},
                                                           {window->panels[0], {0, 1, w - 19, 18}},
                                                           {window->panels[1], {w - 17, 1, 200, 18}}};
        for (const auto& [widget, place] : places) {
            EXPECT_EQ(widget->geometry(), place) << widget->objectName().toStdString() << place.x() << " " << place.y();
        }
        EXPECT_NEAR(ViewAspect, static_cast<double>(w) / (h + 26), 0.005);
    }
}

TEST(WindowBuild, TheDialogsSayWhatTheyAsk)
{
    UiWindow window(SmallModel());
    window.Do("tab 1");
    const std::tuple<std::string, const char*, bool, std::string> dialogs[] = {
        {"cmdMirror", "Mirror Weights", false,
         "optMirror0 'Left To Right' checked focus; cmdOK 'OK' default; optMirror1 'Right To Left'; cmdCancel "
         "'Cancel'; chkReassign 'Keep Existing Weights' checked; chkUnassign 'Un-assign if no match found' disabled; "
         "labMisc 'Note: Mirroring assumes the creature is viewed from the rear.';"},
        {"cmdSelectSkinMesh", "Meshes", false, "lstMeshes [Meshes] focus; cmdOK 'OK' default; cmdCancel 'Cancel';"},
        {"cmdReAssign", "Bones", false, "lstBones [Bones] focus; cmdOK 'OK' default; cmdCancel 'Cancel';"},
        {"mnuHelpAbout", "About", false,
         "Image1; labTitle 'Beastwright\r\nVersion 0.2.7\r\n\r\nThe Beastwright developers\r\nCopyright (c) 2026 The "
         "Beastwright developers'; labLink 'https://beastwright.example/' [Web page]; cmdOk 'OK' default focus;"},
        {"mnuHelpOpenglInfo", "OpenGL Info", false,
         "labVendor 'Vendor: ?'; labRenderer 'Renderer: ?'; labVersion 'Version: ?'; Label1 'Supported extensions:'; "
         "lstExtensions [Supported extensions]; cmdClose 'Close' default focus;"},
        {"mnuFileNew", "New Vorrel", true,
         "Label2 'Vorrel skin model:' 4,3 98x13; cmdBrowse 'Browse...' default focus 4,20 65x25; txtModel [Vorrel skin "
         "model:] readOnly 76,23 153x19; Label1 'Select vorrel preset:' 4,50 111x13; lstPresets [Select vorrel "
         "preset:] 4,68 225x108; cmdCancel 'Cancel' 92,182 65x25; cmdOK 'OK' disabled 164,182 65x25;"},
        {"weights", "Load Weights", false,
         "optAssignMode0 'Assign By Index' checked focus; cmdOK 'OK' default; optAssignMode1 'Assign By Position'; "
         "cmdCancel 'Cancel';"}};
    const QRegularExpression driver(QStringLiteral("(Vendor: |Renderer: |Version: )[^']+'"));
    for (const auto& [trigger, title, places, parts] : dialogs) {
        const Step look("Esc", [&, wantedTitle = title, withPlaces = places, wanted = parts](QDialog* dialog) {
            EXPECT_EQ(dialog->windowTitle().toStdString(), wantedTitle);
            QString shown = QString::fromStdString(Parts(dialog, withPlaces));
            EXPECT_EQ(shown.replace(driver, QStringLiteral("\\1?'")).toStdString(), wanted);
            if (const auto* list = dialog->findChild<QListWidget*>(QStringLiteral("lstExtensions"))) {
                const std::string extensions = QueryOpenGLInfo().Extensions;
                EXPECT_EQ(list->count(), std::count(extensions.begin(), extensions.end(), ' '));
            }
        });
        ModelOpen = false;
        if (trigger == "weights") {
            const Script script({look});
            AskWeightsAssignMode();
        } else {
            window.Do(trigger, {look});
        }
    }
}
