#include "support/ui_window.h"

#include "modSession.h"

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
    const QStringList words = QString::fromStdString(trigger).split(u' ');
    const QString last = words.back();
    QWidget* view = window->picMain;
    QWidget* widget = words.size() > 2 ? window->findChild<QWidget*>(words[2]) : view;
    const QStringList place = last.split(u',');
    const QPoint at(place[0].toInt(), place.back().toInt());
    const auto button = [&words] {
        const std::map<QString, Qt::MouseButton> buttons = {{QStringLiteral("left"), Qt::LeftButton},
                                                            {QStringLiteral("right"), Qt::RightButton},
                                                            {QStringLiteral("middle"), Qt::MiddleButton},
                                                            {QStringLiteral("back"), Qt::BackButton}};
        return buttons.at(words[1]);
    };
    if (trigger.starts_with("mnu")) {
        window->Entry(trigger.c_str())->trigger();
    } else if (words[0] == QStringLiteral("key")) {
        const QKeyCombination keys = QKeySequence(words[1])[0];
        QTest::keyClick(widget, keys.key(), keys.keyboardModifiers());
    } else if (words[0] == QStringLiteral("wheel")) {
        Wheel(widget, words[1].toInt());
    } else if (words[0] == QStringLiteral("press")) {
        QTest::mousePress(view, button(), {}, at);
    } else if (words[0] == QStringLiteral("move")) {
        QTest::mouseMove(view, at);
    } else if (words[0] == QStringLiteral("release")) {
        QTest::mouseRelease(view, button(), {}, at);
    } else if (words[0] == QStringLiteral("focus")) {
        window->findChild<QWidget*>(last)->setFocus();
    } else if (words[0] == QStringLiteral("tab")) {
        QTabBar* tabs = window->tabMain->tabBar();
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(last.toInt()).center());
    } else if (words[0] == QStringLiteral("row")) {
        const QListWidget* list = window->ListOf(window->lstShadowBones->isVisible() ? 1 : 0);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(last.toInt())).center());
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

std::string BoardModel(int side)
{
    std::string text;
    for (int i = 1; i <= 5; i++) {
        text += "bone \"Bone0" + std::to_string(i) + "\"\n{\nposition=(9,9,9)\n}\n";
    }
    text += "skin \"Body\"\n{\n";
    for (int i = 0; i < side * side; i++) {
        text +=
            "v=(" + std::to_string(i % side * 15 - 60) + "E-2," + std::to_string(i / side * 15 - 60) + "E-2,0),-1\n";
    }
    return CrLf(text + "n=(0,0,1)\n}\ninstance \"Body\"\n{\nmesh=\"Body\"\nscale=1\n}\n");
}
