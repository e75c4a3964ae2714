// Memory that ends inside commands: every allocation of the program's own code fails in turn.
#include "app/modUndo.h"
#include "support/failing_new.h"
#include "support/scene_bytes.h"
#include "support/ui_window.h"

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
    allocation::CountProgramOnly();
    for (const char* name : {"mnuOptionsAlias", "mnuToolsStatsBones", "mnuToolsReloadTextures", "mnuFileSave",
                             "cmdUnAssign", "mnuViewCameraTop", "optShadow1", "optMode0"}) {
        auto* button = window->findChild<QPushButton*>(QLatin1String(name));
        QAction* entry = button == nullptr ? window->Entry(name) : nullptr;
        for (int number = 1, last = 1; number <= last && number < 400; ++number) {
            ActiveBone = 1;
            const std::string before = SceneBytes();
            const int boxesBefore = boxes;
            allocation::FailNext(number);
            button == nullptr ? entry->trigger() : button->click();
            last = allocation::Seen;
            allocation::FailAt = 0;
            if (boxes > boxesBefore && std::string_view(name) != "mnuOptionsAlias") {
                EXPECT_EQ(SceneBytes(), before) << name << " " << number;
                EXPECT_TRUE(ActiveBone == 1 || std::string_view(name) == "optShadow1") << name << " " << number;
            }
            while (UndoStep()) {
            }
            EXPECT_EQ(window->lstSkinBones->count() + window->lstShadowBones->count(), BoneCount() + 2) << name;
            EXPECT_FALSE(window->Busy() || window->pgbProgress->isVisible());
        }
    }
    EXPECT_GT(boxes, 20);
    allocation::From = nullptr;
}
