#pragma once

#include <deque>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include <QTest>
#include <QtWidgets>

/// The folder of the running test; "~/" stands for it in all texts of a script.
inline std::string TestFolder;
[[nodiscard]] std::string Tilde(std::string text);

/// What a dialog must show and how it is answered: "shown > answer", or an answer alone.
///   box       "! text > Yes", the first sign being the icon: i, !, x or ?; "|" ends a line
///   prompt    "title|prompt|text > new text"
///   chooser   "title|open ~/|name|first filter > ~/file"
///   others    "title row > 2 cmdOK", the row of its list, if it has one; then rows, by number or text, and buttons
/// "Esc" and "Close" answer each of them. A text that ends in "..." is only the begin of what must be shown.
struct Step {
    Step(const char* line) : Line(line) {}
    Step(std::string line, std::function<void(QDialog*)> look = {}) : Line(std::move(line)), Look(std::move(look)) {}
    std::string Line;
    std::function<void(QDialog*)> Look{}; ///< runs before the answer, which is left out when the line is empty
};

/// Answers the modal dialogs that come up while it stands, one step for each; at its end every step must have run.
class Script {
public:
    explicit Script(std::deque<Step> planned = {});
    ~Script();
    Script(const Script&) = delete;
    Script& operator=(const Script&) = delete;

private:
    void Wait();
    void Poll();

    QObject owner;
    std::deque<Step> steps;
    QDialog* lastDialog = nullptr;
};

template <typename Widget = QWidget>
Widget* Part(const QWidget* parent, const std::string& name)
{
    auto* widget = parent->findChild<Widget*>(QString::fromStdString(name));
    if (widget == nullptr) {
        qFatal("no widget %s", name.c_str());
    }
    return widget;
}

/// Answers as a step does, with the part behind its ">".
void Answer(QDialog* dialog, const std::string& answer);
/// Clicks a button of any kind where it has its box.
void Press(const QWidget* parent, const std::string& name);
