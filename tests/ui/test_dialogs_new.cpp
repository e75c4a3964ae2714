#include <fstream>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QTemporaryDir>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "dialogs/frmNew.h"
#include "main/frmMain.h"
#include "modFiles.h"
#include "modSession.h"
#include "ui/dialog_steps.h"

namespace {

constexpr const char* presetText = "bone \"leg01\"\r\n{\r\nposition=(1,0,0)\r\n}\r\n";
constexpr const char* modelText = "mesh \"torso\"\r\n{\r\nv=(0,0,0)\r\n}\r\n"
                                  "instance \"torso\"\r\n{\r\nmesh=\"torso\"\r\nscale=1\r\n}\r\n";

/// Puts a preset with its extension in capitals beside the program and takes it away again.
class NewModel : public testing::Test {
protected:
    NewModel()
        : Folder(ProgramFolder() + "/presets"),
          Preset("dialog test " + std::to_string(QCoreApplication::applicationPid())),
          PresetPath(Folder + "/" + Preset + ".PRESET"),
          ModelPath(Files.path().toStdString() + "/skin.mvm")
    {
        ResetSession();
        std::ofstream(PresetPath) << presetText;
        std::ofstream(ModelPath) << modelText;
        LastPath = Files.path().toStdString();
    }
    ~NewModel() override
    {
        QFile::remove(QString::fromStdString(PresetPath));
        ForgetNewDialog();
        ResetSession();
    }

    void Browse(QDialog* dialog) const { Press(dialog, "cmdBrowse"); }
    void SelectPreset(QDialog* dialog) const
    {
        auto* list = Part<QListWidget>(dialog, "lstPresets");
        const auto rows = list->findItems(QString::fromStdString(Preset), Qt::MatchExactly);
        ASSERT_EQ(rows.size(), 1);
        list->scrollToItem(rows[0]);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(rows[0]).center());
    }
    static DialogSteps::Step TypeModel(const char* name)
    {
        return [name](QDialog* chooser) {
            EXPECT_EQ(chooser->windowTitle(), QStringLiteral("Vorrel Skin Model File"));
            auto* field = Part<QLineEdit>(chooser, "fileNameEdit");
            field->setText(QLatin1String(name));
            QTest::keyClick(field, Qt::Key_Return);
        };
    }
    DialogSteps::Step LoadingBoth() const
    {
        return [this](QDialog* dialog) {
            SelectPreset(dialog);
            Browse(dialog);
            Press(dialog, "cmdOK");
        };
    }
    static bool CanGo(const QDialog* dialog) { return Part<QPushButton>(dialog, "cmdOK")->isEnabled(); }

    QTemporaryDir Files;
    std::string Folder, Preset, PresetPath, ModelPath;
};

TEST_F(NewModel, HasItsPlacesAndCaptionsThatFit)
{
    const DialogSteps steps({[](QDialog* dialog) {
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("New Vorrel"));
        EXPECT_EQ(dialog->size(), QSize(233, 212));
        const std::vector<std::pair<const char*, QRect>> places{
            {"Label2", {4, 3, 98, 13}},   {"cmdBrowse", {4, 20, 65, 25}},    {"txtModel", {76, 23, 153, 19}},
            {"Label1", {4, 50, 111, 13}}, {"lstPresets", {4, 68, 225, 108}}, {"cmdCancel", {92, 182, 65, 25}},
            {"cmdOK", {164, 182, 65, 25}}};
        for (const auto& [name, place] : places) {
            EXPECT_EQ(Part<QWidget>(dialog, name)->geometry(), place) << name;
        }
        for (const char* name : {"Label1", "Label2"}) {
            const auto* label = Part<QLabel>(dialog, name);
            const QFontMetrics metrics(label->font());
            EXPECT_LE(metrics.horizontalAdvance(label->text()), label->width()) << name;
            EXPECT_LE(metrics.height(), label->height()) << name;
        }
        EXPECT_FALSE(CanGo(dialog));
        EXPECT_TRUE(Part<QLineEdit>(dialog, "txtModel")->isReadOnly());
        Press(dialog, "cmdCancel");
    }});
    EXPECT_FALSE(ShowNewDialog());
}

TEST_F(NewModel, CanBeWalkedThroughByKeys)
{
    const DialogSteps steps({[](QDialog* dialog) {
                                 QTest::keyClick(Part<QPushButton>(dialog, "cmdBrowse"), Qt::Key_Return);
                                 QStringList order;
                                 for (int step = 0; step < 4; ++step) {
                                     order += dialog->focusWidget()->objectName();
                                     QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
                                 }
                                 EXPECT_EQ(order.join(u' '), QStringLiteral("cmdBrowse txtModel lstPresets cmdCancel"));
                                 auto* list = Part<QListWidget>(dialog, "lstPresets");
                                 list->setFocus();
                                 QTest::keyClick(list, Qt::Key_Down);
                                 EXPECT_FALSE(list->selectedItems().isEmpty());
                                 EXPECT_TRUE(CanGo(dialog));
                                 QTest::keyClick(list, Qt::Key_Escape);
                             },
                             TypeModel("skin.mvm")});
    EXPECT_FALSE(ShowNewDialog());
}

TEST_F(NewModel, NeedsAPresetAndAModelInEitherOrder)
{
    for (const bool presetFirst : {true, false}) {
        const DialogSteps steps({[&](QDialog* dialog) {
                                     if (presetFirst) {
                                         SelectPreset(dialog);
                                         EXPECT_FALSE(CanGo(dialog));
                                         Browse(dialog);
                                     } else {
                                         Browse(dialog);
                                         EXPECT_FALSE(CanGo(dialog));
                                         SelectPreset(dialog);
                                     }
                                     EXPECT_TRUE(CanGo(dialog));
                                     EXPECT_EQ(LastPath, ModelPath);
                                     EXPECT_EQ(Part<QLineEdit>(dialog, "txtModel")->text().toStdString(), ModelPath);
                                     Press(dialog, "cmdCancel");
                                 },
                                 TypeModel("skin.mvm")});
        EXPECT_FALSE(ShowNewDialog());
    }
}

TEST_F(NewModel, AFailedLoadLeavesNothingAndTheDialogComesBackAsItWas)
{
    bool complained = false;
    DialogSteps::Step dismiss = [&](QDialog* dialog) {
        const auto* box = qobject_cast<QMessageBox*>(dialog);
        ASSERT_NE(box, nullptr);
        complained =
            box->text() == QStringLiteral("Cannot load skin model file. Please verify the content of this file.");
        QTest::keyClick(dialog, Qt::Key_Return);
    };
    {
        const DialogSteps steps({LoadingBoth(), TypeModel("absent.mvm"), dismiss, dismiss});
        EXPECT_FALSE(ShowNewDialog());
    }
    EXPECT_TRUE(complained);
    EXPECT_EQ(BoneCount(), 0);
    EXPECT_FALSE(ModelOpen);
    const DialogSteps steps({[&](QDialog* dialog) {
        EXPECT_TRUE(dialog->isEnabled());
        EXPECT_TRUE(CanGo(dialog));
        EXPECT_TRUE(Part<QLineEdit>(dialog, "txtModel")->text().endsWith(QStringLiteral("absent.mvm")));
        Press(dialog, "cmdCancel");
    }});
    EXPECT_FALSE(ShowNewDialog());
}

TEST_F(NewModel, LoadsPresetAndModelIntoOneScene)
{
    {
        const DialogSteps steps({LoadingBoth(), TypeModel("skin.mvm")});
        EXPECT_TRUE(ShowNewDialog());
    }
    EXPECT_EQ(BoneCount(), 1);
    EXPECT_EQ(MeshCount(), 1);
    // The next one is fresh.
    const DialogSteps steps({[&](QDialog* dialog) {
        EXPECT_FALSE(CanGo(dialog));
        EXPECT_TRUE(Part<QLineEdit>(dialog, "txtModel")->text().isEmpty());
        dialog->close();
    }});
    EXPECT_FALSE(ShowNewDialog());
}

TEST_F(NewModel, ClosingItDuringALoadStopsTheLoadWithoutAWord)
{
    const frmMain window; // it serves the events of a load
    std::ofstream preset(PresetPath, std::ios::app);
    preset << "mesh \"long\"\r\n{\r\n";
    for (int line = 0; line < 400'000; ++line) {
        preset << "v=(" << line << ",0.25,0.125)\r\n";
    }
    preset << "}\r\n";
    preset.close();
    bool closedWhileLoading = false;
    QTimer closer;
    const DialogSteps steps({[&](QDialog* dialog) {
                                 QObject::connect(&closer, &QTimer::timeout, dialog, [&closedWhileLoading, dialog] {
                                     if (!dialog->isEnabled()) {
                                         closedWhileLoading = true;
                                         dialog->close();
                                     }
                                 });
                                 SelectPreset(dialog);
                                 Browse(dialog);
                                 closer.start(0);
                                 Press(dialog, "cmdOK");
                             },
                             TypeModel("skin.mvm")});
    EXPECT_FALSE(ShowNewDialog());
    EXPECT_TRUE(closedWhileLoading);
    EXPECT_FALSE(StopRequested);
    EXPECT_EQ(MeshCount(), 0);
    EXPECT_EQ(BoneCount(), 0);
}

} // namespace
