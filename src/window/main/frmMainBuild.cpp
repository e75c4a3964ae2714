#include <utility>

#include <QAbstractItemView>
#include <QApplication>
#include <QButtonGroup>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>

#include "app/modFrontEnd.h"
#include "dialogs/modFit.h"
#include "main/frmMain.h"
#include "main/frmView.h"
#include "modCommand.h"
#include "modOwner.h"
#include "modSetup.h"

namespace {

constexpr int groupWidth = 163;

QPushButton* AddButton(QWidget* parent, const char* name, const char* caption, QRect place)
{
    auto* button = new QPushButton(QString::fromUtf8(caption), parent);
    button->setObjectName(QString::fromUtf8(name));
    button->setAutoDefault(false);
    button->setGeometry(place);
    FitCaption(button);
    return button;
}

QLabel* AddLabel(QWidget* parent, const char* name, const char* caption, QRect place)
{
    auto* label = new QLabel(QString::fromUtf8(caption), parent);
    label->setObjectName(QString::fromUtf8(name));
    label->setGeometry(place);
    FitCaption(label);
    return label;
}

/// By the window: when the desktop's colours change, it has the new ones before its parts do.
bool IsDark(const QWidget* widget)
{
    return widget->window()->palette().color(QPalette::Button).lightness() < 128;
}

/// The picture of a tool, on a light ground where the desktop is dark: its lines are dark.
QIcon ToolIcon(const QString& name, bool onDark)
{
    QIcon picture(QStringLiteral(":/toolbar/%1.png").arg(name));
    if (!onDark) {
        return picture;
    }
    QIcon icon;
    for (const int size : {16, 32}) {
        QPixmap ground(size, size);
        ground.fill(QColor(224, 224, 224));
        QPainter(&ground).drawPixmap(0, 0, picture.pixmap(QSize(size, size), 1));
        icon.addPixmap(ground);
    }
    return icon;
}

/// On a dark desktop the style's own shade for a button that is down can hardly be told from the others.
void ShadeDown(QAbstractButton* button)
{
    QPalette colors;
    if (button->isChecked() && IsDark(button)) {
        colors.setColor(QPalette::Button, colors.color(QPalette::Highlight).darker());
    }
    button->setPalette(colors);
}

/// Makes the button that is down the one of its group that Tab stops at; the arrow keys go to the others.
void StopAtChecked(QButtonGroup* group, Qt::FocusPolicy others)
{
    const auto set = [others](QAbstractButton* button, bool down) {
        button->setFocusPolicy(down ? static_cast<Qt::FocusPolicy>(others | Qt::TabFocus) : others);
        ShadeDown(button);
    };
    for (QAbstractButton* button : group->buttons()) {
        set(button, button->isChecked());
    }
    QObject::connect(group, &QButtonGroup::buttonToggled, group, set);
}

/// Push buttons of which one is down; the group tells the index of each press, also of the one that is down already.
template <size_t N>
QButtonGroup* AddOptions(QWidget* parent, const char* name, const std::array<const char*, N>& captions,
                         const std::array<QRect, N>& places, std::array<QPushButton*, N>* buttons, int down)
{
    auto* group = new QButtonGroup(parent);
    for (size_t i = 0; i < N; i++) {
        QPushButton* button = AddButton(parent, name, captions[i], places[i]);
        button->setObjectName(QString::fromUtf8(name) + QString::number(i));
        button->setCheckable(true);
        button->setChecked(static_cast<int>(i) == down);
        group->addButton(button, static_cast<int>(i));
        (*buttons)[i] = button;
    }
    StopAtChecked(group, Qt::ClickFocus);
    return group;
}

QFrame* AddGroup(QWidget* parent, const char* name, QSize size)
{
    auto* frame = new QFrame(parent);
    frame->setObjectName(QString::fromUtf8(name));
    frame->resize(size);
    frame->setBackgroundRole(QPalette::Button);
    frame->setForegroundRole(QPalette::ButtonText);
    frame->setAutoFillBackground(true);
    return frame;
}

} // namespace

frmMain* MainForm()
{
    return static_cast<frmMain*>(MainWindow);
}

frmMain::frmMain()
{
    setObjectName(QStringLiteral("frmMain"));
    QGuiApplication::setWindowIcon(ProgramIcon()); // of the Info Log too, which nobody owns
    setAcceptDrops(true);
    setCentralWidget(new QWidget(this));
    BuildMenu();
    BuildView();
    BuildPanel();
    BuildViewing();
    BuildStatus();
    BuildEditing();
    pgbProgress->raise();
    txtProgress->raise();
    ConnectCommands();
    SetAccess();
    FollowTheme();
    MainWindow = this;
    SetCaption();
}

frmMain::~frmMain()
{
    MainWindow = nullptr;
}

void frmMain::BuildView()
{
    viewEdge = new QWidget(centralWidget());
    viewEdge->setObjectName(QStringLiteral("viewEdge"));
    viewEdge->setBackgroundRole(QPalette::Highlight);
    if (CanHaveView()) {
        auto* view = new GLView(centralWidget());
        picMain = view;
        // A driver may learn the new size of a window with the swap of its buffers alone, so the first picture of a
        // size can stand too low; the second one is right.
        connect(view, &QOpenGLWidget::frameSwapped, this, [this] {
            if (std::exchange(resized, false)) {
                Redraw(true);
            }
        });
    } else {
        picMain = new QWidget(centralWidget());
        QPalette grey = picMain->palette();
        grey.setColor(QPalette::Window, QColor(128, 128, 128));
        picMain->setPalette(grey);
        picMain->setAutoFillBackground(true);
    }
    picMain->setObjectName(QStringLiteral("picMain"));
    picMain->setMouseTracking(true);
    picMain->setFocusPolicy(Qt::StrongFocus);
}

void frmMain::BuildPanel()
{
    tabMain = new QTabWidget(centralWidget());
    tabMain->setObjectName(QStringLiteral("tabMain"));
    tabMain->addTab(new QWidget, QStringLiteral("Viewing"));
    tabMain->addTab(new QWidget, QStringLiteral("Editing"));
    for (int i = 0; i < tabMain->count(); i++) {
        tabMain->widget(i)->setBackgroundRole(QPalette::Button);
        tabMain->widget(i)->setAutoFillBackground(true);
    }
    tabMain->tabBar()->setObjectName(QStringLiteral("tabMainHeadings"));
    tabMain->tabBar()->setFixedHeight(23);
    // The groups below the headings are what the tabs show; the strip itself holds nothing to stop at.
    tabMain->setFocusPolicy(Qt::NoFocus);
    tabMain->tabBar()->setFocusPolicy(Qt::StrongFocus);

    tlbMain = new QWidget(centralWidget());
    tlbMain->setObjectName(QStringLiteral("tlbMain"));
    auto* group = new QButtonGroup(tlbMain);
    constexpr std::array<const char*, 4> keys = {"select", "arcrot", "pan", "zoom"};
    for (size_t i = 0; i < keys.size(); i++) {
        auto* button = new QToolButton(tlbMain);
        button->setObjectName(QString::fromUtf8(keys[i]));
        button->setIconSize(QSize(16, 16));
        button->setCheckable(true);
        button->setAutoRaise(true);
        button->setGeometry(static_cast<int>(i) * 23, 2, 23, 22);
        group->addButton(button, static_cast<int>(i));
        toolButtons[i] = button;
    }
    StopAtChecked(group, Qt::NoFocus);
    connect(group, &QButtonGroup::idClicked, this,
            [this](int tool) { Perform("tlbMain", [&] { SetToolMode(static_cast<int16_t>(tool)); }); });
}

void frmMain::FollowTheme()
{
    for (QToolButton* button : toolButtons) {
        button->setIcon(ToolIcon(button->objectName(), IsDark(tlbMain)));
        ShadeDown(button);
    }
    for (QPushButton* button : fraEditing->findChildren<QPushButton*>()) {
        ShadeDown(button);
    }
    // Some desktops pale the chosen row of a list without the keyboard; here it is the bone that a box assigns to.
    QPalette plain;
    for (const QPalette::ColorRole role : {QPalette::Highlight, QPalette::HighlightedText}) {
        plain.setColor(QPalette::Inactive, role, palette().color(QPalette::Active, role));
    }
    lstSkinBones->setPalette(plain);
    lstShadowBones->setPalette(plain);
}

void frmMain::BuildStatus()
{
    stsMain = new QStatusBar(centralWidget());
    stsMain->setObjectName(QStringLiteral("stsMain"));
    stsMain->setSizeGripEnabled(false);
    for (size_t i = 0; i < panels.size(); i++) {
        panels[i] = new QLabel(stsMain);
        panels[i]->setObjectName(i == 0 ? QStringLiteral("toolhelp") : QStringLiteral("progress"));
        panels[i]->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        panels[i]->setIndent(3);
        panels[i]->setTextFormat(Qt::PlainText);
        panels[i]->setFont(WindowFont());
    }
    panels[0]->setText(QStringLiteral("Ready..."));
    panels[0]->setToolTip(QStringLiteral("Ready..."));

    pgbProgress = new QProgressBar(centralWidget());
    pgbProgress->setObjectName(QStringLiteral("pgbProgress"));
    pgbProgress->resize(groupWidth, 13);
    pgbProgress->setTextVisible(false);
    pgbProgress->hide();

    txtProgress = new QLineEdit(QStringLiteral("100%"), centralWidget());
    txtProgress->setObjectName(QStringLiteral("txtProgress"));
    txtProgress->resize(33, 13);
    txtProgress->setFrame(false);
    txtProgress->setReadOnly(true);
    txtProgress->setAcceptDrops(false);
    txtProgress->setContextMenuPolicy(Qt::NoContextMenu);
    txtProgress->setFocusPolicy(Qt::NoFocus);
    txtProgress->setAlignment(Qt::AlignCenter);
    txtProgress->setTextMargins(-2, -1, -2, -1);
    QFont small = WindowFont();
    small.setPixelSize(10);
    txtProgress->setFont(small);
    txtProgress->hide();
}

void frmMain::BuildViewing()
{
    fraViewing = AddGroup(centralWidget(), "fraViewing", QSize(groupWidth, 345));
    Label2 = AddLabel(fraViewing, "Label2", "Animation:", QRect(0, 0, 51, 13));
    lstAnimation = new QListWidget(fraViewing);
    lstAnimation->setObjectName(QStringLiteral("lstAnimation"));
    lstAnimation->setGeometry(0, 16, groupWidth, 186);
    cmdPlay = AddButton(fraViewing, "cmdPlay", "Play", QRect(0, 208, 79, 25));
    cmdStop = AddButton(fraViewing, "cmdStop", "Stop", QRect(84, 208, 79, 25));
    cmdPlay->setEnabled(false);
    cmdStop->setEnabled(false);
}

void frmMain::BuildEditing()
{
    fraEditing = AddGroup(centralWidget(), "fraEditing", QSize(groupWidth, 377));
    fraEditing->hide();
    QButtonGroup* targets = AddOptions<2>(fraEditing, "optShadow", {"Skin Mesh", "Shadow Mesh"},
                                          {QRect(0, 0, 82, 25), QRect(82, 0, 81, 25)}, &optShadow, 0);
    connect(targets, &QButtonGroup::idClicked, this,
            [this](int i) { Perform("optShadow", [&] { optShadow_Click(static_cast<int16_t>(i)); }); });
    labMisc = AddLabel(fraEditing, "labMisc1", "Active Bone:", QRect(0, 32, 61, 13));
    lstSkinBones = new BoneList(fraEditing);
    lstSkinBones->setObjectName(QStringLiteral("lstSkinBones"));
    lstShadowBones = new BoneList(fraEditing);
    lstShadowBones->setObjectName(QStringLiteral("lstShadowBones"));
    lstShadowBones->hide();
    lstSkinBones->setGeometry(0, 48, groupWidth, 134);
    lstShadowBones->setGeometry(0, 48, groupWidth, 134);
    cmdSelectSkinMesh =
        AddButton(fraEditing, "cmdSelectSkinMesh", "Select Skin Mesh...", QRect(0, 188, groupWidth, 25));
    cmdSelectShadowMesh =
        AddButton(fraEditing, "cmdSelectShadowMesh", "Select Shadow Mesh...", QRect(0, 220, groupWidth, 25));
    cmdUnAssign = AddButton(fraEditing, "cmdUnAssign", "Unassign", QRect(0, 252, 79, 25));
    cmdReAssign = AddButton(fraEditing, "cmdReAssign", "Re-assign...", QRect(84, 252, 79, 25));
    cmdSwap = AddButton(fraEditing, "cmdSwap", "Swap...", QRect(0, 284, 79, 25));
    cmdMirror = AddButton(fraEditing, "cmdMirror", "Mirror...", QRect(84, 284, 79, 25));
    cmdLoadWeights = AddButton(fraEditing, "cmdLoadWeights", "Load...", QRect(0, 316, 79, 25));
    cmdSaveWeights = AddButton(fraEditing, "cmdSaveWeights", "Save...", QRect(84, 316, 79, 25));
    Frame1 = AddGroup(fraEditing, "Frame1", QSize(groupWidth, 25));
    Frame1->move(0, 348);
    QButtonGroup* modes =
        AddOptions<3>(Frame1, "optMode", {"Normal", "Shaded", "Both"},
                      {QRect(0, 0, 54, 25), QRect(54, 0, 55, 25), QRect(109, 0, 54, 25)}, &optMode, 2);
    connect(modes, &QButtonGroup::idClicked, this,
            [this](int i) { Perform("optMode", [&] { optMode_Click(static_cast<int16_t>(i)); }); });
}

void frmMain::ConnectCommands()
{
    const auto command = [this](QPushButton* button, void (frmMain::*handler)()) {
        connect(button, &QPushButton::clicked, this,
                [this, button, handler] { Perform(qPrintable(button->objectName()), [&] { (this->*handler)(); }); });
    };
    command(cmdSelectSkinMesh, &frmMain::cmdSelectSkinMesh_Click);
    command(cmdSelectShadowMesh, &frmMain::cmdSelectShadowMesh_Click);
    command(cmdUnAssign, &frmMain::cmdUnAssign_Click);
    command(cmdReAssign, &frmMain::cmdReAssign_Click);
    command(cmdSwap, &frmMain::cmdSwap_Click);
    command(cmdMirror, &frmMain::cmdMirror_Click);
    command(cmdLoadWeights, &frmMain::cmdLoadWeights_Click);
    command(cmdSaveWeights, &frmMain::cmdSaveWeights_Click);
    connect(tabMain, &QTabWidget::currentChanged, this,
            [this](int index) { Perform("tabMain", [&] { tabMain_Click(index); }); });
    for (BoneList* list : {lstSkinBones, lstShadowBones}) {
        connect(list, &QListWidget::currentRowChanged, this, [this, list] { BoneList_Click(list); });
    }
    // The controls that hand their keys on to the view; the lists and the toolbar keep theirs.
    for (auto* button : fraEditing->findChildren<QPushButton*>() + fraViewing->findChildren<QPushButton*>()) {
        button->installEventFilter(this);
    }
    jointRelease.setSingleShot(true);
    connect(&jointRelease, &QTimer::timeout, this, [this] { EndTryJoint(); });
    tabMain->tabBar()->installEventFilter(this);
    picMain->installEventFilter(this);
    mnuViewCamera->installEventFilter(this);
}

void frmMain::SetAccess()
{
    picMain->setAccessibleName(QStringLiteral("3D view"));
    lstAnimation->setAccessibleName(QStringLiteral("Animations"));
    lstSkinBones->setAccessibleName(QStringLiteral("Active bone of the skin"));
    lstShadowBones->setAccessibleName(QStringLiteral("Active bone of the shadow"));
    tabMain->tabBar()->setAccessibleName(QStringLiteral("Side panel"));
    pgbProgress->setAccessibleName(QStringLiteral("Progress"));
    txtProgress->setAccessibleName(QStringLiteral("Progress in percent"));
    constexpr std::array<const char*, 4> tools = {"Select tool", "Orbit tool", "Pan tool", "Zoom tool"};
    for (size_t i = 0; i < tools.size(); i++) {
        toolButtons[i]->setAccessibleName(QString::fromUtf8(tools[i]));
        toolButtons[i]->setToolTip(QStringLiteral("%1 (%2)").arg(QString::fromUtf8(tools[i])).arg(i + 1));
    }
    const QList<QWidget*> order = {picMain,        tabMain->tabBar(), lstAnimation,        cmdPlay,
                                   cmdStop,        optShadow[0],      optShadow[1],        lstSkinBones,
                                   lstShadowBones, cmdSelectSkinMesh, cmdSelectShadowMesh, cmdUnAssign,
                                   cmdReAssign,    cmdSwap,           cmdMirror,           cmdLoadWeights,
                                   cmdSaveWeights, optMode[0],        optMode[1],          optMode[2],
                                   toolButtons[0], toolButtons[1],    toolButtons[2],      toolButtons[3]};
    for (qsizetype i = 1; i < order.size(); i++) {
        setTabOrder(order[i - 1], order[i]);
    }
    picMain->setFocus();
}
