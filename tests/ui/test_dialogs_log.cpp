#include <gtest/gtest.h>

#include <QApplication>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

#include "app/modFrontEnd.h"
#include "dialogs/frmLog.h"
#include "main/modApp.h"

namespace {

class InfoLog : public testing::Test {
protected:
    InfoLog()
    {
        AppClosing = false;
        CloseInfoLog();
        LogDirty = false;
    }
    ~InfoLog() override
    {
        CloseInfoLog();
        AppClosing = false;
    }

    static QWidget* Window()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == QStringLiteral("frmLog")) {
                return widget;
            }
        }
        return nullptr;
    }
    static QPlainTextEdit* Field() { return Window()->findChild<QPlainTextEdit*>(QStringLiteral("txtLog")); }
};

TEST_F(InfoLog, KeepsItsTextWhileItIsHidden)
{
    LogLine("first <b> \xC3\xA9");
    LogLine("");
    LogLine("  third\t&");
    EXPECT_TRUE(LogDirty);
    EXPECT_FALSE(IsInfoLogVisible());
    ShowInfoLog();
    EXPECT_FALSE(LogDirty);
    EXPECT_TRUE(IsInfoLogVisible());
    const QString text = QStringLiteral("first <b> \u00e9\n\n  third\t&\n");
    EXPECT_EQ(Field()->toPlainText(), text);

    Window()->close();
    EXPECT_FALSE(IsInfoLogVisible());
    LogLine("later");
    EXPECT_TRUE(LogDirty);
    QApplication::processEvents();
    EXPECT_EQ(Field()->toPlainText(), text + QStringLiteral("later\n"));
    ShowInfoLog();
    HideInfoLog();
    EXPECT_FALSE(IsInfoLogVisible());

    LogLine("waiting");
    ClearInfoLog();
    QApplication::processEvents();
    EXPECT_EQ(Field()->toPlainText(), QString());
}

TEST_F(InfoLog, HasItsSizeAndFollowsTheWindow)
{
    ShowInfoLog();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(Window()));
    EXPECT_EQ(Window()->windowTitle(), QStringLiteral("Info Log"));
    EXPECT_EQ(Window()->size(), QSize(395, 269));
    EXPECT_EQ(Field()->geometry(), QRect(2, 2, 392, 266));
    EXPECT_TRUE(Field()->isReadOnly());
    EXPECT_TRUE(Field()->horizontalScrollBar()->isVisible());
    EXPECT_TRUE(Field()->verticalScrollBar()->isVisible());
    Window()->resize(500, 300);
    EXPECT_TRUE(QTest::qWaitFor([] { return Field()->geometry() == QRect(2, 2, 497, 297); }));
}

TEST_F(InfoLog, TakesALongReportWholeAndScrollsToItsEnd)
{
    constexpr int lines = 100'000;
    for (int line = 0; line < lines; ++line) {
        LogLine("Bone " + std::to_string(line) + " of a long report");
    }
    ShowInfoLog();
    EXPECT_TRUE(QTest::qWaitFor([] { return Field()->blockCount() == lines + 1; }, 20'000));
    EXPECT_EQ(Field()->document()->findBlockByNumber(lines - 1).text(), QStringLiteral("Bone 99999 of a long report"));
    EXPECT_EQ(Field()->verticalScrollBar()->value(), Field()->verticalScrollBar()->maximum());
}

TEST_F(InfoLog, CutsALineThatNobodyCanRead)
{
    LogLine(std::string(5'000'000, 'x'));
    ShowInfoLog();
    const QStringList lines = Field()->toPlainText().split(u'\n');
    EXPECT_EQ(lines[0].size(), 20'004);
    EXPECT_TRUE(lines[0].endsWith(QStringLiteral("x ...")));
}

TEST_F(InfoLog, ClosesForGoodOnlyWhenTheProgramGoesDown)
{
    LogLine("x");
    ShowInfoLog();
    EXPECT_FALSE(Window()->testAttribute(Qt::WA_QuitOnClose));
    AppClosing = true;
    EXPECT_TRUE(Window()->close());
    CloseInfoLog();
    EXPECT_EQ(Window(), nullptr);
    EXPECT_FALSE(IsInfoLogVisible());
}

} // namespace
