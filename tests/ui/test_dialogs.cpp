#include <gtest/gtest.h>

#include <QCheckBox>
#include <QCursor>
#include <QFontMetrics>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QRadioButton>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmBones.h"
#include "dialogs/frmGLInfo.h"
#include "dialogs/frmMeshes.h"
#include "dialogs/frmMirror.h"
#include "dialogs/modFit.h"
#include "modSession.h"
#include "ui/dialog_steps.h"
#include "weights/modBoneAlias.h"
#include "weights/modMirror.h"
#include "weights/modWeights.h"

namespace {

class Dialogs : public testing::Test {
protected:
    Dialogs() { ResetSession(); }
    ~Dialogs() override { ResetSession(); }

    static void AddMesh(const char* name) { Meshes.Add().Name = name; }
    static void AddBone(const char* name, const char* alias, float x)
    {
        MvmBone& bone = Bones.Add();
        bone.Name = name;
        bone.Alias = alias;
        bone.Position.X = x;
    }
};

DialogSteps::Step Choosing(const char* list, int row, const char* button)
{
    return [=](QDialog* dialog) {
        Part<QListWidget>(dialog, list)->setCurrentRow(row);
        Press(dialog, button);
    };
}

TEST_F(Dialogs, TheMeshChooserGivesTheRowOrMinusOne)
{
    AddMesh("skin_<b>\xE9");
    AddMesh("shadow");
    struct Case {
        int16_t Current;
        DialogSteps::Step Step;
        int16_t Result;
    };
    const auto escape = [](QDialog* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); };
    const auto close = [](QDialog* dialog) { dialog->close(); };
    const std::vector<Case> cases{{0, Pressing("cmdOK"), 0},
                                  {2, Pressing("cmdOK"), 2},
                                  {3, Pressing("cmdOK"), 0},
                                  {-1, Pressing("cmdOK"), 0},
                                  {2, Choosing("lstMeshes", 1, "cmdOK"), 1},
                                  {2, Choosing("lstMeshes", 0, "cmdOK"), 0},
                                  {2, Choosing("lstMeshes", 1, "cmdCancel"), -1},
                                  {2, escape, -1},
                                  {2, close, -1}};
    for (const Case& each : cases) {
        const DialogSteps steps({[&](QDialog* dialog) {
            const auto* list = Part<QListWidget>(dialog, "lstMeshes");
            EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Meshes"));
            ASSERT_EQ(list->count(), 3);
            EXPECT_EQ(list->item(0)->text(), QStringLiteral("NONE"));
            EXPECT_EQ(list->item(1)->text(), QStringLiteral("skin_<b>\u00e9"));
            EXPECT_EQ(list->currentItem()->isSelected(), true);
            each.Step(dialog);
        }});
        EXPECT_EQ(ChooseMesh(each.Current), each.Result) << each.Current;
    }
}

TEST_F(Dialogs, NoClickInAChooserClosesItOrTakesTheMarkOff)
{
    AddMesh("one");
    const DialogSteps steps({[](QDialog* dialog) {
        auto* list = Part<QListWidget>(dialog, "lstMeshes");
        const QPoint row = list->visualItemRect(list->item(1)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, row);
        EXPECT_TRUE(dialog->isVisible());
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, row);
        EXPECT_TRUE(list->item(1)->isSelected());
        QTest::keyClick(list, Qt::Key_Return);
    }});
    EXPECT_EQ(ChooseMesh(0), 1);
}

TEST_F(Dialogs, AChooserOffersNoRowThatItsAnswerCannotHold)
{
    Meshes.Items.resize(40'000);
    const DialogSteps steps({[](QDialog* dialog) {
        auto* list = Part<QListWidget>(dialog, "lstMeshes");
        EXPECT_EQ(list->count(), 32'768);
        list->setCurrentRow(32'767);
        Press(dialog, "cmdOK");
    }});
    EXPECT_EQ(ChooseMesh(0), 32'767);
}

TEST_F(Dialogs, TheBoneChooserShowsLabelsWhileAliasesAreOn)
{
    AddBone("leg01", "Left leg", 1);
    AddBone("leg02", "", -1);
    for (const bool on : {true, false}) {
        AliasesOn = on;
        const DialogSteps steps({[&](QDialog* dialog) {
            const auto* list = Part<QListWidget>(dialog, "lstBones");
            EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Bones"));
            EXPECT_EQ(list->item(1)->text(), on ? QStringLiteral("Left leg") : QStringLiteral("leg01"));
            EXPECT_EQ(list->item(2)->text(), QStringLiteral("leg02"));
            Press(dialog, "cmdOK");
        }});
        EXPECT_EQ(ChooseBone(2), 2);
    }
    AliasesOn = true;
}

class MirrorDialog : public Dialogs {
protected:
    MirrorDialog()
    {
        AddBone("right01", "", 1);
        AddBone("left02", "", -1);
        MvmMesh& mesh = Meshes.Add();
        for (const float x : {1.0F, -1.0F}) {
            mesh.Vertices.Add({x, 0, 0});
        }
        MakeSkin(1);
        SkinMesh = 1;
        EditTarget = 0;
    }
    static std::vector<int16_t>& Assigned() { return Meshes[1].VertexBones.Items; }
};

TEST_F(MirrorDialog, StartsAnewAndMirrorsInTheChosenDirection)
{
    Assigned() = {0, 2};
    {
        const DialogSteps steps({Pressing("cmdCancel")});
        ShowMirrorDialog();
        EXPECT_EQ(Assigned(), (std::vector<int16_t>{0, 2}));
    }
    {
        const DialogSteps steps({Pressing("cmdOK")});
        ShowMirrorDialog();
        EXPECT_EQ(Assigned(), (std::vector<int16_t>{1, 2}));
    }
    Assigned() = {1, 0};
    {
        const DialogSteps steps({[](QDialog* dialog) {
            QTest::mouseClick(Part<QRadioButton>(dialog, "optMirror1"), Qt::LeftButton, {}, QPoint(8, 8));
            Press(dialog, "cmdOK");
        }});
        ShowMirrorDialog();
        EXPECT_EQ(Assigned(), (std::vector<int16_t>{1, 2}));
    }
    const DialogSteps steps({[](QDialog* dialog) {
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Mirror Weights"));
        EXPECT_TRUE(Part<QRadioButton>(dialog, "optMirror0")->isChecked());
        EXPECT_TRUE(Part<QCheckBox>(dialog, "chkReassign")->isChecked());
        EXPECT_FALSE(Part<QCheckBox>(dialog, "chkUnassign")->isChecked());
        EXPECT_FALSE(Part<QCheckBox>(dialog, "chkUnassign")->isEnabled());
        dialog->close();
    }});
    ShowMirrorDialog();
}

TEST_F(MirrorDialog, ATickThatIsDisabledStillCounts)
{
    Assigned() = {1, 0}; // the source has no bone, so only the tick can clear the target
    const DialogSteps steps({[](QDialog* dialog) {
        auto* reassign = Part<QCheckBox>(dialog, "chkReassign");
        auto* unassign = Part<QCheckBox>(dialog, "chkUnassign");
        QTest::mouseClick(reassign, Qt::LeftButton, {}, QPoint(8, 8));
        EXPECT_TRUE(unassign->isEnabled());
        QTest::mouseClick(unassign, Qt::LeftButton, {}, QPoint(8, 8));
        QTest::mouseClick(reassign, Qt::LeftButton, {}, QPoint(8, 8));
        EXPECT_FALSE(unassign->isEnabled());
        EXPECT_TRUE(unassign->isChecked());
        Press(dialog, "cmdOK");
    }});
    ShowMirrorDialog();
    EXPECT_EQ(Assigned(), (std::vector<int16_t>{0, 0}));
}

TEST_F(Dialogs, TheWeightsDialogAnswersAnew)
{
    struct Case {
        DialogSteps::Step Step;
        int16_t Mode;
    };
    const auto byPosition = [](QDialog* dialog) {
        QTest::mouseClick(Part<QRadioButton>(dialog, "optAssignMode1"), Qt::LeftButton, {}, QPoint(8, 8));
        Press(dialog, "cmdOK");
    };
    const std::vector<Case> cases{{byPosition, 2},
                                  {Pressing("cmdOK"), 1},
                                  {Pressing("cmdCancel"), 0},
                                  {[](QDialog* dialog) { dialog->close(); }, 0}};
    for (const Case& each : cases) {
        WeightsAssignMode = 2;
        const DialogSteps steps({each.Step});
        AskWeightsAssignMode();
        EXPECT_EQ(WeightsAssignMode, each.Mode);
    }
}

TEST_F(Dialogs, OpenGLInfoOpensWithoutAContext)
{
    const DialogSteps steps({[](QDialog* dialog) {
        EXPECT_TRUE(Part<QLabel>(dialog, "labVendor")->text().startsWith(QStringLiteral("Vendor: ")));
        EXPECT_TRUE(Part<QLabel>(dialog, "labRenderer")->text().startsWith(QStringLiteral("Renderer: ")));
        EXPECT_TRUE(Part<QLabel>(dialog, "labVersion")->text().startsWith(QStringLiteral("Version: ")));
        Press(dialog, "cmdClose");
    }});
    ShowGLInfoDialog();
}

int CountOf(const QImage& image, const QColor& color)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += image.pixelColor(x, y) == color ? 1 : 0;
        }
    }
    return count;
}

TEST_F(Dialogs, AboutNamesTheProgramAndItsLinkTurnsRedUnderThePointer)
{
    const DialogSteps steps({[](QDialog* dialog) {
        EXPECT_EQ(Part<QLabel>(dialog, "labTitle")->text(),
                  QStringLiteral("Beastwright\r\nVersion 0.2.7\r\n\r\nThe Beastwright developers\r\n"
                                 "Copyright (c) 2026 The Beastwright developers"));
        auto* link = Part<QPushButton>(dialog, "labLink");
        EXPECT_EQ(link->text(), QStringLiteral("https://beastwright.example/"));
        EXPECT_NE(link->focusPolicy() & Qt::TabFocus, 0);
        const QColor blue(0, 0, 255);
        const QColor red(255, 0, 0);
        // The real pointer: the window system tells where it is, whatever a test pretends.
        const auto pointAt = [](const QWidget* widget) {
            QCursor::setPos(widget->mapToGlobal(widget->rect().center()));
        };
        ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));
        QTest::qWait(100); // a window manager places a window after it has come up
        pointAt(Part<QLabel>(dialog, "labTitle"));
        EXPECT_TRUE(QTest::qWaitFor([&] { return CountOf(link->grab().toImage(), blue) > 20; }));
        pointAt(link);
        EXPECT_TRUE(QTest::qWaitFor([&] { return CountOf(link->grab().toImage(), red) > 20; }));
        EXPECT_EQ(CountOf(link->grab().toImage(), blue), 0);
        pointAt(Part<QLabel>(dialog, "labTitle"));
        EXPECT_TRUE(QTest::qWaitFor([&] { return CountOf(link->grab().toImage(), red) == 0; }));
        Press(dialog, "cmdOk");
    }});
    ShowAboutDialog();
}

TEST(Captions, AreNarrowedOnlyAsFarAsTheyMustBe)
{
    struct Case {
        QSize Room;
        bool Changed;
    };
    for (const char* family : {"Liberation Sans", "DejaVu Sans"}) {
        for (const Case& each : {Case{{60, 13}, true}, Case{{90, 13}, true}, Case{{400, 30}, false}}) {
            QLabel label(QStringLiteral("Vorrel skin model:"));
            QFont font{QString::fromLatin1(family)};
            font.setPixelSize(each.Changed ? 13 : 11);
            label.setFont(font);
            label.resize(each.Room);
            FitCaption(&label);
            const QFontMetrics metrics(label.font());
            EXPECT_LE(metrics.horizontalAdvance(label.text()), each.Room.width()) << family;
            EXPECT_LE(metrics.height(), each.Room.height()) << family;
            EXPECT_EQ(label.font() != font, each.Changed) << family << each.Room.width();
        }
    }
}

} // namespace
