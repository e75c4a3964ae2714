#include "support/ui_window.h"

#include <array>
#include <cmath>
#include <numbers>
#include <sstream>

#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QTabBar>
#include <QTabWidget>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "modDrag.h"
#include "modSession.h"
#include "modViewFlags.h"

UiWindow::UiWindow(const std::string& commandLine)
{
    ResetSession();
    ResetDrag();
    ResetViewFlags();
    LogDirty = false;
    StopRequested = false;
    window = std::make_unique<frmMain>();
    window->Start(commandLine);
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

void UiWindow::Edit(int row) const
{
    QTabBar* tabs = window->tabMain->tabBar();
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
    QListWidget* list = window->ListOf(EditTarget);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(row)).center());
}

void UiWindow::Drag(QPoint from, QPoint to, Qt::MouseButton button) const
{
    QTest::mousePress(window->picMain, button, {}, from);
    QTest::mouseMove(window->picMain, (from + to) / 2);
    QTest::mouseMove(window->picMain, to);
    QTest::mouseRelease(window->picMain, button, {}, to);
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

DialogSteps::Step Box(const std::string& text, int button)
{
    return [text, button](QDialog* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        ASSERT_NE(box, nullptr) << "another dialog in place of: " << text;
        EXPECT_EQ(box->text().toStdString(), text);
        box->button(static_cast<QMessageBox::StandardButton>(button))->click();
    };
}

DialogSteps::Step Choose(const std::string& path)
{
    return [path](QDialog* dialog) {
        auto* chooser = qobject_cast<QFileDialog*>(dialog);
        ASSERT_NE(chooser, nullptr);
        chooser->findChild<QLineEdit*>()->setText(QString::fromStdString(path));
        static_cast<QDialog*>(chooser)->findChild<QLineEdit*>()->setFocus();
        QTest::keyClick(chooser->findChild<QLineEdit*>(), Qt::Key_Return);
    };
}

DialogSteps::Step Row(const char* list, int row)
{
    return [list, row](QDialog* dialog) {
        Part<QListWidget>(dialog, list)->setCurrentRow(row);
        Press(dialog, "cmdOK");
    };
}
