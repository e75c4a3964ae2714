#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <QListWidget>
#include <QMainWindow>
#include <QPoint>
#include <QTimer>

#include "app/modFrontEnd.h"

class QButtonGroup;
class QFrame;
class QLabel;
class QLineEdit;
class QMenu;
class QProgressBar;
class QPushButton;
class QStatusBar;
class QTabWidget;
class QToolButton;

/// A list of bones. It tells the main window each choice, and each mouse move while a button is held in it.
class BoneList : public QListWidget {
public:
    explicit BoneList(QWidget* parent);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
};

// Codes of keys that picMain_KeyDown and EditKey share.
inline constexpr int32_t codePageUp = 33;
inline constexpr int32_t codePageDown = 34;

/// The main window: every widget of it and the handlers of all commands. Each group of handlers has a file of its own,
/// frmMain<Subject>.cpp.
class frmMain : public QMainWindow {
public:
    frmMain();
    ~frmMain() override;

    /// The program's start: defaults, first size, the window on the screen, then the model named on the command line.
    void Start(const std::string& commandLine);
    /// True once the window has closed for good.
    [[nodiscard]] bool Unloaded() const { return unloaded; }

    // Document (frmMainDocument.cpp). Paths are the file system's own.
    /// Loads a file into the scene and makes it the document. Does not close what is open.
    void OpenFile(const std::string& filename);
    /// Closes the open model after its question. False when the user kept it.
    bool CloseModel();
    [[nodiscard]] bool ConfirmDiscard();
    void SetCaption(const std::string& filename = {});
    /// Opens a dropped file if it is a model; anything else is ignored.
    void DropFile(const std::string& path);
    void mnuFileNew_Click();
    void mnuFileOpen_Click();
    void mnuFileSave_Click();
    void mnuFileSaveAs_Click();
    void mnuFileRevert_Click();
    void mnuFileClose_Click();

    // While a long operation serves events, what would change the scene is disabled (frmMainStatus.cpp).
    void BeginBusy();
    void EndBusy();
    /// Also when a load that failed has left its progress open.
    void EndAllBusy();
    /// After an exception: closes what was opened above `depth`, the progress bar too when nothing is left.
    void EndBusyDownTo(int depth);
    [[nodiscard]] int BusyDepth() const { return busyDepth; }
    [[nodiscard]] bool Busy() const { return busyDepth > 0; }

    // Menu (frmMainMenu.cpp).
    /// The entry or submenu with this name; stops the program when the table has no such row.
    [[nodiscard]] QAction* Entry(const char* name) const;

    // Tools, mouse, wheel and cameras (frmMainMouse.cpp). Positions are pixels of the view.
    void SetCamera(int16_t camera);
    void SetToolMode(int16_t tool);
    /// Zooms by whole notches, positive away from the user.
    void MouseWheel(int32_t notches);
    void picMain_MouseDown(Qt::MouseButton button, QPointF position, QPoint screen);
    void picMain_MouseMove(QPointF position);
    void picMain_MouseUp(QPointF position);
    /// Ends a drag whose release will not come, without picking. True when there was one.
    bool CancelDrag();
    /// Ends drags in the view and in the lists: what was begun on one scene must not end on another.
    void CancelGestures();

    // Keyboard and console (frmMainKeys.cpp). Codes are 'A' to 'Z', '0' to '9', 17 Ctrl, 122 F11, 0 other.
    void picMain_KeyDown(int32_t code);
    void OpenConsole();

    // Keys for work that goes over many vertices (frmMainEditKeys.cpp).
    /// E, G, N, U, Page Up and Page Down; nothing for other codes.
    void EditKey(int32_t code);
    /// Lets moves of the mouse turn the joint of the active bone until EndTryJoint.
    void BeginTryJoint();
    void TurnJoint(QPointF position);
    void EndTryJoint();

    // View options (frmMainView.cpp).
    void ToggleFlag(bool* flag, const char* entry);
    void SetWire(bool wire);
    void ReadFlagsFromTicks();
    void mnuToolsReloadTextures_Click();

    // Editing (frmMainEditing.cpp).
    void cmdSelectSkinMesh_Click();
    void cmdSelectShadowMesh_Click();
    void cmdUnAssign_Click();
    void cmdReAssign_Click();
    void cmdSwap_Click();
    void cmdMirror_Click();
    void cmdLoadWeights_Click();
    void cmdSaveWeights_Click();
    void optShadow_Click(int16_t index);
    void optMode_Click(int16_t index);
    /// Shows the list of a target, 0 skin or 1 shadow, with a bone as the active one.
    void ShowTarget(int16_t target, int16_t bone);
    void mnuToolsRenameMesh_Click();
    void mnuViewToolsRegenNormals_Click();
    void mnuViewToolsAutoAssign_Click();

    // Bone lists (frmMainBones.cpp).
    void BoneList_Click(const BoneList* list);
    [[nodiscard]] BoneList* ListOf(int16_t list) const { return list == 0 ? lstSkinBones : lstShadowBones; }

    // Options and help (frmMainOptions.cpp).
    void mnuOptionsAlias_Click();
    void mnuOptionsMirrorVertThreshold_Click();
    void mnuOptionsMirrorBoneThreshold_Click();
    void mnuOptionsPointsize_Click();
    void mnuHelpReadme_Click();

    // Layout (frmMainLayout.cpp).
    void LayOut();
    /// Takes the frame that the window manager draws into account: the outer size is at least 660 by 508.
    void FitFrame();
    void tabMain_Click(int index);

    // The widgets, named as in the menus and messages of the program.
    QWidget* picMain = nullptr;
    QWidget* viewEdge = nullptr; ///< below the view; its rim shows that the view has the focus
    QTabWidget* tabMain = nullptr;
    QWidget* tlbMain = nullptr;
    std::array<QToolButton*, 4> toolButtons{};
    QFrame* fraViewing = nullptr;
    QLabel* Label2 = nullptr;
    QListWidget* lstAnimation = nullptr;
    QPushButton* cmdPlay = nullptr;
    QPushButton* cmdStop = nullptr;
    QFrame* fraEditing = nullptr;
    std::array<QPushButton*, 2> optShadow{};
    QLabel* labMisc = nullptr;
    BoneList* lstSkinBones = nullptr;
    BoneList* lstShadowBones = nullptr;
    QPushButton* cmdSelectSkinMesh = nullptr;
    QPushButton* cmdSelectShadowMesh = nullptr;
    QPushButton* cmdUnAssign = nullptr;
    QPushButton* cmdReAssign = nullptr;
    QPushButton* cmdSwap = nullptr;
    QPushButton* cmdMirror = nullptr;
    QPushButton* cmdLoadWeights = nullptr;
    QPushButton* cmdSaveWeights = nullptr;
    QFrame* Frame1 = nullptr;
    std::array<QPushButton*, 3> optMode{};
    QStatusBar* stsMain = nullptr;
    std::array<QLabel*, 2> panels{};
    QProgressBar* pgbProgress = nullptr;
    QLineEdit* txtProgress = nullptr;
    QMenu* mnuViewCamera = nullptr;

    bool CtrlHeld = false;     ///< Ctrl went down and no key has gone up on the view since
    bool ListDragging = false; ///< a mouse button is held in a bone list
    std::string LastCommand;   ///< last console input
    int16_t SavedSkinBone = 0; ///< active bone of the list that is not shown
    int16_t SavedShadowBone = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void BuildMenu();
    void BuildView();
    void BuildStatus();
    void BuildViewing();
    void BuildEditing();
    void BuildPanel();
    void ConnectCommands();
    void SetAccess();
    /// Keeps unsaved changes when the system ends the program or the session.
    void WatchForEnd();
    /// Takes what hangs on the desktop's colours anew.
    void FollowTheme();
    void EnableDocument(bool open, bool revert);
    void TakeBoneOfVertex();
    void ShowUnassigned();
    void ShowSlip();
    void ShowVertex(int32_t vertex);
    void StepBoneRow(int by);
    void OpenCommandLine(const std::string& commandLine);
    /// Serves what waits in the middle of a command, without letting another command in. False when the program ended.
    [[nodiscard]] bool ServeEvents();
    /// Ends the program, unless the user or what is under way objects.
    void Unload(QCloseEvent* event);
    /// Ends the program when the window was closed during the long operation that has just ended.
    [[nodiscard]] bool EndAfterStop();

    int busyDepth = 0;
    int32_t shownVertex = 0; ///< the one that U or N has brought to the middle
    QTimer jointRelease;
    float jointStartX = 0;             ///< where the mouse was when the try of a joint began
    std::vector<QAction*> heldEntries; ///< entries disabled by BeginBusy
    QWidget* heldFocus = nullptr;      ///< control that lost the focus to BeginBusy
    int32_t wheelRest = 0;             ///< wheel distance short of a whole notch
    QMargins frameMargins;             ///< the frame that FitFrame has last seen
    bool closeWhenDone = false;        ///< the window was closed while busy
    bool unloaded = false;
    bool resized = false; ///< no frame has been shown in the new size
};

/// The main window, or null before it stands and after it has gone.
[[nodiscard]] frmMain* MainForm();
