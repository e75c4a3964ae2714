#pragma once

#include <deque>
#include <functional>
#include <utility>

#include <gtest/gtest.h>

#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>


#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

// Answers the modal dialogs that a call under test opens: one step for each dialog, in the order in which they come up.
// Make it before the call; when it goes out of scope, every step must have run.
class DialogSteps {
public:
    using Step = std::function<void(QDialog*)>;

    explicit DialogSteps(std::deque<Step> planned) : steps(std::move(planned)) { Wait(); }
    ~DialogSteps() { EXPECT_TRUE(steps.empty()) << steps.size() << " dialogs did not come up"; }
    DialogSteps(const DialogSteps&) = delete;
    DialogSteps& operator=(const DialogSteps&) = delete;

private:
    // Each turn is a timer of its own: a step may open the next dialog before it returns.
    void Wait()
    {
        QTimer::singleShot(10, &owner, [this] { Look(); });
    }

    void Look()
    {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        // A dialog whose step still runs only stands below the one that the step opened; one that has closed may come again.
        const bool fresh = dialog != nullptr && !dialog->property("stepRuns").toBool() &&
                           (dialog != lastDialog || !dialog->property("stepDone").toBool());
        if (!fresh || !dialog->isVisible()) {
            Wait();
            return;
        }
        if (steps.empty()) {
            const auto* box = qobject_cast<QMessageBox*>(dialog);
            ADD_FAILURE() << "an unexpected dialog: " << dialog->windowTitle().toStdString() << ": "
                          << (box != nullptr ? box->text().toStdString() : std::string());
            dialog->reject();
            Wait();
            return;
        }
        lastDialog = dialog;
        dialog->setProperty("stepRuns", true);
        const Step step = steps.front();
        steps.pop_front();
        Wait();
        const QPointer<QDialog> standing = dialog;
        step(dialog);
        if (standing) {
            standing->setProperty("stepRuns", false);
            standing->setProperty("stepDone", true);
        }
    }

    QObject owner;
    std::deque<Step> steps;
    QDialog* lastDialog = nullptr;
};

template <typename Widget>
Widget* Part(const QWidget* dialog, const char* name)
{
    auto* widget = dialog->findChild<Widget*>(QLatin1String(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

inline void Press(const QWidget* dialog, const char* name)
{
    if (auto* button = Part<QPushButton>(dialog, name); button != nullptr) {
        QTest::mouseClick(button, Qt::LeftButton);
    }
}

inline DialogSteps::Step Pressing(const char* name)
{
    return [name](QDialog* dialog) { Press(dialog, name); };
}

inline DialogSteps::Step Box(const std::string& text, int button)
{
    return [text, button](QDialog* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        ASSERT_NE(box, nullptr) << "another dialog in place of: " << text;
        EXPECT_EQ(box->text().toStdString(), text);
        box->button(static_cast<QMessageBox::StandardButton>(button))->click();
    };
}

inline DialogSteps::Step Choose(const std::string& path)
{
    return [path](QDialog* dialog) {
        auto* chooser = qobject_cast<QFileDialog*>(dialog);
        ASSERT_NE(chooser, nullptr);
        chooser->findChild<QLineEdit*>()->setText(QString::fromStdString(path));
        static_cast<QDialog*>(chooser)->findChild<QLineEdit*>()->setFocus();
        QTest::keyClick(chooser->findChild<QLineEdit*>(), Qt::Key_Return);
    };
}

inline DialogSteps::Step Row(const char* list, int row)
{
    return [list, row](QDialog* dialog) {
        Part<QListWidget>(dialog, list)->setCurrentRow(row);
        Press(dialog, "cmdOK");
    };
}
