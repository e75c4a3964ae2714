#include "main/frmMainMenu.h"

#include <cstdlib>

#include <QMenu>
#include <QMenuBar>
#include <QShortcut>

#include "app/modFrontEnd.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmGLInfo.h"
#include "dialogs/modReports.h"
#include "main/frmMain.h"
#include "modCommand.h"
#include "modViewFlags.h"

namespace {

constexpr auto plain = EntryStart::Plain;
constexpr auto unticked = EntryStart::Unticked;
constexpr auto ticked = EntryStart::Ticked;
constexpr auto disabled = EntryStart::Disabled;

// clang-format off
constexpr MenuEntry table[] = {
    {0, "mnuFile", "File", "", plain, true, nullptr},
    {1, "mnuFileNew", "New...", "Ctrl+N", plain, false, [](frmMain& w) { w.mnuFileNew_Click(); }},
    {1, "mnuFileOpen", "Open...", "Ctrl+O", plain, false, [](frmMain& w) { w.mnuFileOpen_Click(); }},
    {1, "mnuFileLine2", "", "", plain, true, nullptr},
    {1, "mnuFileSave", "Save", "Ctrl+S", disabled, false, [](frmMain& w) { w.mnuFileSave_Click(); }},
    {1, "mnuFileSaveAs", "Save &As...", "", disabled, false, [](frmMain& w) { w.mnuFileSaveAs_Click(); }},
    {1, "mnuFileLine3", "", "", plain, true, nullptr},
    {1, "mnuFileRevert", "Revert", "Ctrl+R", disabled, false, [](frmMain& w) { w.mnuFileRevert_Click(); }},
    {1, "mnuFileClose", "Close", "", disabled, false, [](frmMain& w) { w.mnuFileClose_Click(); }},
    {1, "mnuFileLine1", "", "", plain, true, nullptr},
    {1, "mnuFileExit", "Exit", "Ctrl+X", plain, true, [](frmMain& w) { w.close(); }},

    {0, "mnuView", "View", "", plain, true, nullptr},
    {1, "mnuViewCamera", "Camera", "", plain, true, nullptr},
    {2, "mnuViewCameraPerspective", "Perspective", "", ticked, true, [](frmMain& w) { w.SetCamera(1); }},
    {2, "mnuViewCameraOrthographic", "Orthographic", "", unticked, true, [](frmMain& w) { w.SetCamera(2); }},
    {2, "mnuViewCameraLine1", "", "", plain, true, nullptr},
    {2, "mnuViewCameraFront", "Front", "", unticked, true, [](frmMain& w) { w.SetCamera(3); }},
    {2, "mnuViewCameraBack", "Back", "", unticked, true, [](frmMain& w) { w.SetCamera(4); }},
    {2, "mnuViewCameraLeft", "Left", "", unticked, true, [](frmMain& w) { w.SetCamera(5); }},
    {2, "mnuViewCameraRight", "Right", "", unticked, true, [](frmMain& w) { w.SetCamera(6); }},
    {2, "mnuViewCameraTop", "Top", "", unticked, true, [](frmMain& w) { w.SetCamera(7); }},
    {2, "mnuViewCameraBottom", "Bottom", "", unticked, true, [](frmMain& w) { w.SetCamera(8); }},
    {1, "mnuViewLine4", "", "", plain, true, nullptr},
    {1, "mnuViewWire", "Wireframe", "", unticked, true, [](frmMain& w) { w.SetWire(true); }},
    {1, "mnuViewSolid", "Solid", "", ticked, true, [](frmMain& w) { w.SetWire(false); }},
    {1, "mnuViewLine1", "", "", plain, true, nullptr},
    {1, "mnuViewGrid", "Grids", "", ticked, true, [](frmMain& w) { w.ToggleFlag(&ViewGrid, "mnuViewGrid"); }},
    {1, "mnuViewLine5", "", "", plain, true, nullptr},
    {1, "mnuViewTextures", "Textures", "", ticked, true, [](frmMain& w) { w.ToggleFlag(&ViewTextures, "mnuViewTextures"); }},
    {1, "mnuViewLighting", "Lighting", "", ticked, true, [](frmMain& w) { w.ToggleFlag(&ViewLighting, "mnuViewLighting"); }},
    {1, "mnuViewBackfaces", "Backfaces", "", unticked, true, [](frmMain& w) { w.ToggleFlag(&ViewBackfaces, "mnuViewBackfaces"); }},
    {1, "mnuViewIsolines", "Isolines", "", unticked, true, [](frmMain& w) { w.ToggleFlag(&ViewIsolines, "mnuViewIsolines"); }},
    {1, "mnuViewNormals", "Normals", "", unticked, true, [](frmMain& w) { w.ToggleFlag(&ViewNormals, "mnuViewNormals"); }},
    {1, "mnuViewLine6", "", "", plain, true, nullptr},
    {1, "mnuViewCullVerts", "Cull Vertices", "", ticked, true, [](frmMain& w) { w.ToggleFlag(&ViewCullVerts, "mnuViewCullVerts"); }},

    {0, "mnuTools", "Tools", "", plain, true, nullptr},
    {1, "mnuToolsRenameMesh", "Rename Mesh...", "", plain, false, [](frmMain& w) { w.mnuToolsRenameMesh_Click(); }},
    {1, "mnuViewToolsRegenNormals", "Re-generate Normals...", "", plain, false, [](frmMain& w) { w.mnuViewToolsRegenNormals_Click(); }},
    {1, "mnuViewToolsAutoAssign", "Auto-Assign Weights...", "", plain, false, [](frmMain& w) { w.mnuViewToolsAutoAssign_Click(); }},
    {1, "mnuToolsLine2", "", "", plain, true, nullptr},
    {1, "mnuToolsReloadTextures", "Reload Textures", "", plain, false, [](frmMain& w) { w.mnuToolsReloadTextures_Click(); }},
    {1, "mnuToolsLine1", "", "", plain, true, nullptr},
    {1, "mnuToolsStats", "Statistics", "", plain, true, nullptr},
    {2, "mnuToolsStatsMeshes", "List Meshes", "", plain, false, [](frmMain&) { ReportMeshes(); }},
    {2, "mnuToolsStatsMaterials", "List Materials", "", plain, false, [](frmMain&) { ReportMaterials(); }},
    {2, "mnuToolsStatsInstances", "List Instances", "", plain, false, [](frmMain&) { ReportInstances(); }},
    {2, "mnuToolsStatsBones", "List Bones", "", plain, false, [](frmMain&) { ReportBones(); }},
    {2, "mnuToolsStatsLine1", "", "", plain, true, nullptr},
    {2, "mnuToolsStatsMeshNames", "Mesh Names", "", plain, false, [](frmMain&) { ReportMeshNames(); }},
    {2, "mnuToolsStatsMaterialNames", "Material Names", "", plain, false, [](frmMain&) { ReportMaterialNames(); }},
    {2, "mnuToolsStatsInstanceNames", "Instance Names", "", plain, false, [](frmMain&) { ReportInstanceNames(); }},
    {2, "mnuToolsStatsBoneNames", "Bone Names", "", plain, false, [](frmMain&) { ReportBoneNames(); }},
    {2, "mnuToolsStatsTextureFilenames", "Texture Filenames", "", plain, false, [](frmMain&) { ReportTextureFilenames(); }},

    {0, "mnuOptions", "Options", "", plain, true, nullptr},
    {1, "mnuOptionsAlias", "Bone Alias Names", "", ticked, false, [](frmMain& w) { w.mnuOptionsAlias_Click(); }},
    {1, "mnuOptionsLine1", "", "", plain, true, nullptr},
    {1, "mnuOptionsMirrorVertThreshold", "Mirroring Vertex Threshold...", "", plain, false, [](frmMain& w) { w.mnuOptionsMirrorVertThreshold_Click(); }},
    {1, "mnuOptionsMirrorBoneThreshold", "Mirroring Bone Threshold...", "", plain, false, [](frmMain& w) { w.mnuOptionsMirrorBoneThreshold_Click(); }},
    {1, "mnuOptionsPointsize", "Point Size...", "", plain, false, [](frmMain& w) { w.mnuOptionsPointsize_Click(); }},
    {1, "mnuOptionsLine2", "", "", plain, true, nullptr},
    {1, "mnuOptionsLineAA", "Anti-Aliased Points/Lines", "", ticked, true, [](frmMain& w) { w.ToggleFlag(&LineAA, "mnuOptionsLineAA"); }},
    {1, "mnuOptionFilterTextures", "Filter/Mipmap Textures", "", ticked, true, [](frmMain& w) { w.ToggleFlag(&FilterTextures, "mnuOptionFilterTextures"); }},

    {0, "mnuWindow", "Window", "", plain, true, nullptr},
    {1, "mnuWindowErrorLog", "Info Log", "", plain, true, [](frmMain&) { ShowInfoLog(); }},

    {0, "mnuHelp", "Help", "", plain, true, nullptr},
    {1, "mnuHelpReadme", "Readme...", "", plain, true, [](frmMain& w) { w.mnuHelpReadme_Click(); }},
    {1, "mnuHelpLine2", "", "", plain, true, nullptr},
    {1, "mnuHelpOpenglInfo", "OpenGL Info...", "", plain, false, [](frmMain&) { ShowGLInfoDialog(); }},
    {1, "mnuHelpLine1", "", "", plain, true, nullptr},
    {1, "mnuHelpAbout", "About...", "", plain, false, [](frmMain&) { ShowAboutDialog(); }},
};
// clang-format on

bool IsSubmenu(size_t row)
{
    return row + 1 < std::size(table) && table[row + 1].Depth > table[row].Depth;
}

} // namespace

std::span<const MenuEntry> MenuTable()
{
    return table;
}

void frmMain::BuildMenu()
{
    std::array<QMenu*, 3> menus{};
    for (size_t row = 0; row < std::size(table); row++) {
        const MenuEntry& entry = table[row];
        const auto depth = static_cast<size_t>(entry.Depth);
        const QString caption = QString::fromUtf8(entry.Caption);
        QAction* action = nullptr;
        if (IsSubmenu(row)) {
            menus[depth] = depth == 0 ? menuBar()->addMenu(caption) : menus[depth - 1]->addMenu(caption);
            action = menus[depth]->menuAction();
        } else if (caption.isEmpty()) {
            action = menus[depth - 1]->addSeparator();
        } else {
            action = menus[depth - 1]->addAction(caption);
            action->setShortcut(QKeySequence(QString::fromUtf8(entry.Shortcut)));
            action->setCheckable(entry.Start == unticked || entry.Start == ticked);
            action->setChecked(entry.Start == ticked);
            action->setEnabled(entry.Start != disabled);
            connect(action, &QAction::triggered, this,
                    [this, &entry] { Perform(entry.Name, [&] { entry.Handler(*this); }); });
        }
        action->setObjectName(QString::fromUtf8(entry.Name));
        if (depth == 0) {
            // The captions have no access keys of their own; Alt with the first letter opens the menu all the same.
            auto* open = new QShortcut(QKeySequence(QStringLiteral("Alt+") + caption.at(0)), this);
            connect(open, &QShortcut::activated, this, [this, action] { menuBar()->setActiveAction(action); });
        }
    }
    mnuViewCamera = Entry("mnuViewCamera")->menu();
    // No entry of the menu tells these; the toolkit gives them to a text field first.
    const auto shortcut = [this](const char* keys, void (*handler)()) {
        auto* key = new QShortcut(QKeySequence(QString::fromUtf8(keys)), this);
        connect(key, &QShortcut::activated, this, [handler] { Perform("Undo", handler); });
    };
    shortcut("Ctrl+Z", UndoCommand);
    shortcut("Ctrl+Shift+Z", RedoCommand);
    shortcut("Ctrl+Y", RedoCommand);
    auto* enterBar = new QShortcut(QKeySequence(Qt::Key_F10), this);
    connect(enterBar, &QShortcut::activated, this, [this] { menuBar()->setActiveAction(Entry("mnuFile")); });
}

QAction* frmMain::Entry(const char* name) const
{
    auto* action = findChild<QAction*>(QString::fromUtf8(name));
    if (action == nullptr) {
        qFatal("no menu entry %s", name);
    }
    return action;
}
