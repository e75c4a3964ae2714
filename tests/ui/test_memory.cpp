// Memory that ends inside commands: every allocation of the program's own code fails in turn.
#include "app/modUndo.h"
#include "support/failing_new.h"
#include "support/scene_bytes.h"
#include "support/ui_window.h"

extern char __executable_start;
extern char etext;

TEST(Memory, ThatEndsInACommandEndsItInABox)
{
    const UiWindow window(SmallModel());
    window.Edit(1);
    int boxes = 0;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&boxes] {
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            boxes += qobject_cast<QMessageBox*>(dialog) != nullptr ? 1 : 0;
            dialog->accept();
        }
    });
    closer.start(1);
    allocation::From = &__executable_start;
    allocation::To = &etext;
    const auto entry = [&](const char* name) { return [&window, name] { window->Entry(name)->trigger(); }; };
    const auto press = [&](Qt::Key key) {
        return [&window, key] {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
            QApplication::sendEvent(window->picMain, &event);
        };
    };
    const std::vector<std::function<void()>> commands = {
        entry("mnuOptionsAlias"),
        entry("mnuToolsStatsBones"),
        entry("mnuToolsReloadTextures"),
        entry("mnuFileSave"),
        [&] { window->cmdUnAssign->click(); },
        [&] { window->cmdMirror->click(); },
        [&] { window->lstSkinBones->setCurrentRow(2); },
        press(Qt::Key_N),
        press(Qt::Key_U),
        press(Qt::Key_C),
    };
    for (size_t i = 0; i < commands.size(); i++) {
        for (int number = 1, last = 1; number <= last && number < 400; ++number) {
            ActiveBone = 1;
            const std::string before = SceneBytes();
            const int boxesBefore = boxes;
            allocation::FailNext(number);
            commands[i]();
            last = allocation::Seen;
            allocation::FailAt = 0;
            if (boxes > boxesBefore && i > 0) {
                EXPECT_EQ(SceneBytes(), before) << i << " " << number;
            }
            while (UndoStep()) {
            }
            EXPECT_EQ(window->lstSkinBones->count() + window->lstShadowBones->count(), BoneCount() + 2) << i;
            EXPECT_FALSE(window->Busy());
        }
    }
    EXPECT_GT(boxes, 20);
    allocation::From = nullptr;
}
