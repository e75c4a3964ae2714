#include "support/ui_window.h"

#include <array>
#include <cmath>
#include <numbers>
#include <sstream>

#include <QAction>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTabWidget>
#include <QWheelEvent>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "modDrag.h"
#include "modSession.h"
#include "modViewFlags.h"

UiWindow::UiWindow(const std::string& model)
{
    ResetSession();
    ResetDrag();
    ResetViewFlags();
    TestFolder = Folder.Path;
    std::string commandLine = model;
    if (model.find('\n') != std::string::npos) {
        commandLine = Folder / "a.mvm";
        PutFile(commandLine, model);
    }
    window = std::make_unique<frmMain>();
    window->Start(commandLine);
    window->picMain->installEventFilter(this);
}

UiWindow::~UiWindow()
{
    if (!window->Unloaded()) {
        ModelOpen = false;
        window->close();
    }
    window.reset();
    ResetSession();
}

bool UiWindow::eventFilter(QObject* watched, QEvent* event)
{
    Frames += event->type() == QEvent::Paint ? 1 : 0;
    return QObject::eventFilter(watched, event);
}

bool UiWindow::Paints(const std::function<void()>& act, bool expected)
{
    QCoreApplication::processEvents();
    window->repaint();
    Frames = 0;
    act();
    return expected && QTest::qWaitFor([this] { return Frames > 0; }, 500);
}

void UiWindow::Do(const std::string& trigger, std::deque<Step> dialogs) const
{
    const Script script(std::move(dialogs));
    const std::string last = trigger.substr(trigger.rfind(' ') + 1);
    if (trigger.starts_with("mnu")) {
        window->Entry(trigger.c_str())->trigger();
    } else if (trigger.starts_with("key ")) {
        const QKeyCombination keys = QKeySequence(QString::fromStdString(last))[0];
        QTest::keyClick(window->picMain, keys.key(), keys.keyboardModifiers());
    } else if (trigger.starts_with("tab ")) {
        QTabBar* tabs = window->tabMain->tabBar();
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(std::stoi(last)).center());
    } else if (trigger.starts_with("row ")) {
        const QListWidget* list = window->ListOf(window->lstShadowBones->isVisible() ? 1 : 0);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(std::stoi(last))).center());
    } else {
        Press(&*window, trigger);
    }
}

void UiWindow::Edit(int row) const
{
    Do("tab 1");
    Do("row " + std::to_string(row));
}

void UiWindow::Drag(QPoint from, QPoint to, Qt::MouseButton button) const
{
    QTest::mousePress(window->picMain, button, {}, from);
    QTest::mouseMove(window->picMain, (from + to) / 2);
    QTest::mouseMove(window->picMain, to);
    QTest::mouseRelease(window->picMain, button, {}, to);
}

void UiWindow::Wheel(QWidget* widget, int distance)
{
    const QPointF at(10, 10);
    QWheelEvent event(at, widget->mapToGlobal(at), QPoint(), QPoint(0, distance), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(widget, &event);
}

namespace {

std::string CrLf(const std::string& lines)
{
    return QString::fromStdString(lines).replace(u'\n', QStringLiteral("\r\n")).toStdString();
}

} // namespace

QPlainTextEdit* LogField()
{
    for (const QWidget* top : QApplication::topLevelWidgets()) {
        if (top->objectName() == QStringLiteral("frmLog")) {
            return Part<QPlainTextEdit>(top, "txtLog");
        }
    }
    return nullptr;
}

std::string SmallModel()
{
    return CrLf("fileinfo\n{\nformatversion=1.0.2\n}\nmaterial \"M\"\n{\ncolormap=\"absent.bmp\"\n}\n"
                "bone \"Right01\"\n{\nposition=(1,0,0)\n}\nbone \"Left02\"\n{\nposition=(-1,0,0)\n}\n"
                "bone \"Top03\"\n{\nposition=(0,0,1)\n}\nbone \"$j$Low01\"\n{\n}\nbone \"$j$High02\"\n{\n}\n"
                "skin \"Body\"\n{\nm=\"M\"\nv=(1,0,0),1\nv=(-1,0,0),-1\nv=(0,0,1),-1\nv=(0,0,-1),-1\n"
                "f=(1,2,3),(0,0,0),(0,0,0),1\n}\nskin \"$Shadow\"\n{\nv=(0,0,1),-1\nv=(0,0,2),2\n}\n"
                "mesh \"Plain\"\n{\nv=(0,0,0)\n}\ninstance \"Trunk\"\n{\nmesh=\"Body\"\nscale=0.5\n}\n"
                "instance \"$Shadow\"\n{\nmesh=\"$Shadow\"\nscale=1\n}\n");
}

namespace {

void PutBall(std::ostream& out, const std::string& name, double radius, int rings)
{
    out << "skin \"" << name << "\"\r\n{\r\nm=\"M\"\r\n";
    for (int i = 0; i <= rings; i++) {
        for (int j = 0; j < rings; j++) {
            const double a = std::numbers::pi * i / rings;
            const double b = 2 * std::numbers::pi * j / rings;
            const std::array<double, 3> n = {std::sin(a) * std::cos(b), std::sin(a) * std::sin(b), std::cos(a)};
            out << "v=(" << radius * n[0] << "," << radius * n[1] << "," << radius * n[2] << "),-1\r\n";
            out << "n=(" << n[0] << "," << n[1] << "," << n[2] << ")\r\n";
        }
    }
    const auto face = [&out](int p, int q, int r) {
        out << "f=(" << p << "," << q << "," << r << "),(0,0,0),(" << p << "," << q << "," << r << "),1\r\n";
    };
    for (int i = 0; i < rings; i++) {
        for (int j = 0; j < rings; j++) {
            const int p = i * rings + j + 1;
            const int q = i * rings + (j + 1) % rings + 1;
            face(p, p + rings, q);
            face(q, p + rings, q + rings);
        }
    }
    out << "}\r\ninstance \"" << name << "\"\r\n{\r\nmesh=\"" << name << "\"\r\nscale=1\r\n}\r\n";
}

} // namespace

std::string BallModel(int rings)
{
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out << "fileinfo\r\n{\r\nformatversion=1.0.2\r\n}\r\nmaterial \"M\"\r\n{\r\n}\r\n";
    for (int i = 1; i <= 5; i++) {
        out << "bone \"Bone0" << i << "\"\r\n{\r\nposition=(0,0," << 0.1 * i << ")\r\n}\r\n";
    }
    for (int i = 1; i <= 3; i++) {
        out << "bone \"$j$Bone0" << i << "\"\r\n{\r\nposition=(0,0," << 0.1 * i << ")\r\n}\r\n";
    }
    PutBall(out, "Body", 0.5, rings);
    PutBall(out, "$Shadow", 0.4, rings);
    return out.str();
}
