#include "dialogs/frmNew.h"
#include "modFileListing.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QScopeGuard>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "dialogs/modDialogParts.h"
#include "dialogs/modFileChooser.h"
#include "dialogs/modFit.h"
#include "modCodePage.h"
#include "modCommand.h"
#include "model/modMvmRead.h"
#include "modFiles.h"
#include "modOwner.h"
#include "modPaths.h"

namespace {

constexpr qsizetype extensionLength = 7; // ".preset"

class NewDialog : public QDialog {
public:
    explicit NewDialog(QWidget* owner);
    void ListPresets();
    void reject() override;
    void CentreOnOwner();

    bool Loaded = false; ///< preset and model stand in the scene
    bool Keep = false;   ///< hidden after a failed load; comes back as it was

private:
    void Browse();
    void SelectionChanged();
    void Load();
    bool LoadStep(const std::string& path, const char* complaint);

    QLineEdit* txtModel;
    QListWidget* lstPresets;
    QPushButton* cmdOK;
    std::string model; ///< path of the model in the file system's encoding
    bool loading = false;
    bool cancelled = false; ///< closed while it was loading
};

QPointer<NewDialog> newDialog;

template <typename Widget>
Widget* Place(QWidget* parent, const char* name, const char* caption, const QRect& place)
{
    auto* widget = new Widget(QString::fromLatin1(caption), parent);
    widget->setObjectName(QLatin1String(name));
    widget->setGeometry(place);
    FitCaption(widget);
    return widget;
}

NewDialog::NewDialog(QWidget* owner)
    : QDialog(owner, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                         Qt::WindowCloseButtonHint)
{
    setObjectName(QStringLiteral("frmNew"));
    setWindowTitle(QStringLiteral("New Vorrel"));
    setFont(WindowFont());
    setFixedSize(233, 212);

    // Made in the order of the tab key.
    auto* label2 = Place<QLabel>(this, "Label2", "Vorrel skin model:", {4, 3, 98, 13});
    auto* cmdBrowse = Place<QPushButton>(this, "cmdBrowse", "Browse...", {4, 20, 65, 25});
    txtModel = Place<QLineEdit>(this, "txtModel", "", {76, 23, 153, 19});
    auto* label1 = Place<QLabel>(this, "Label1", "Select vorrel preset:", {4, 50, 111, 13});
    lstPresets = new QListWidget(this);
    lstPresets->setObjectName(QStringLiteral("lstPresets"));
    lstPresets->setGeometry(4, 68, 225, 108);
    KeepRowSelected(lstPresets);
    cmdOK = Place<QPushButton>(this, "cmdOK", "OK", {164, 182, 65, 25});
    auto* cmdCancel = Place<QPushButton>(this, "cmdCancel", "Cancel", {92, 182, 65, 25});

    txtModel->setReadOnly(true);
    txtModel->setAccessibleName(label2->text());
    lstPresets->setAccessibleName(label1->text());
    cmdOK->setEnabled(false);
    cmdOK->setDefault(true);
    cmdBrowse->setFocus();

    connect(cmdBrowse, &QPushButton::clicked, this, [this] { Perform("cmdBrowse", [this] { Browse(); }); });
    connect(lstPresets, &QListWidget::itemSelectionChanged, this, [this] { SelectionChanged(); });
    connect(cmdOK, &QPushButton::clicked, this, [this] { Perform("cmdOK", [this] { Load(); }); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { reject(); });
}

// The toolkit guesses the frame of a dialog that is not yet on the screen, and guesses anew when it comes back. Both
// windows have the frame of one window manager, so centre lies on centre when the areas inside the frames do.
void NewDialog::CentreOnOwner()
{
    const QPoint corner = parentWidget()->geometry().center() - rect().center();
    const QPoint frame = parentWidget()->geometry().topLeft() - parentWidget()->frameGeometry().topLeft();
    move(corner - frame);
}

void NewDialog::ListPresets()
{
    const std::string folder = ProgramFolder() + "/presets";
    if (!IsFolder(folder)) {
        ShowMessage(BoxIcon::Warning, "Folder \"" + LowerText(ProgramFolder()) +
                                          "\\presets\" does not exist.\nCannot generate list of presets.");
        return;
    }
    for (const std::string& file : ListFiles(folder)) {
        const QByteArray bytes = QByteArray::fromStdString(file);
        if (bytes.toLower().endsWith(".preset")) {
            auto* row = new QListWidgetItem(TextOfPath(bytes.chopped(extensionLength).toStdString()), lstPresets);
            row->setData(Qt::UserRole, bytes); // the extension may be in capitals
        }
    }
}

void NewDialog::Browse()
{
    const FileChooser chooser{.Title = "Vorrel Skin Model File",
                              .Filter = "Morvane Models (*.mvm)|*.mvm|All Files (*.*)|*.*",
                              .StartIn = LastPath};
    std::string path;
    if (!ChooseFile(chooser, &path)) {
        return;
    }
    LastPath = path;
    model = path;
    txtModel->setText(TextOfPath(path));
    if (!lstPresets->selectedItems().isEmpty()) {
        cmdOK->setEnabled(true);
    }
}

void NewDialog::SelectionChanged()
{
    if (!lstPresets->selectedItems().isEmpty() && !model.empty()) {
        cmdOK->setEnabled(true);
    }
}

// False when the dialog or the program is to go away, or when the file could not be loaded.
bool NewDialog::LoadStep(const std::string& path, const char* complaint)
{
    if (LoadMVM(path) && !StopRequested) {
        return true;
    }
    if (!StopRequested) {
        ShowMessage(BoxIcon::Warning, complaint);
        Keep = true;
    }
    return false;
}

void NewDialog::Load()
{
    const QList<QListWidgetItem*> rows = lstPresets->selectedItems();
    if (rows.isEmpty() || loading) {
        return;
    }
    const std::string preset =
        ProgramFolder() + "/presets/" + rows.constFirst()->data(Qt::UserRole).toByteArray().toStdString();

    // A load serves events; nothing may start a second one meanwhile.
    loading = true;
    cancelled = false;
    Keep = false;
    setEnabled(false);
    const auto ended = qScopeGuard([this] {
        loading = false;
        setEnabled(true);
        if (!Loaded) {
            ClearModel();
            Redraw(true);
        }
        if (cancelled) {
            StopRequested = false;
        }
        hide();
    });
    Loaded = LoadStep(preset, "Cannot load selected preset. Please verify the content of this file.") &&
             LoadStep(model, "Cannot load skin model file. Please verify the content of this file.");
}

// Closing the dialog during a load stops the load, and the dialog goes when it has ended.
void NewDialog::reject()
{
    if (!loading) {
        QDialog::reject();
    } else if (!StopRequested) {
        cancelled = true;
        StopRequested = true;
    }
}

} // namespace

bool ShowNewDialog()
{
    if (newDialog.isNull()) {
        newDialog = new NewDialog(MainWindow);
        newDialog->ListPresets();
    }
    newDialog->Keep = false;
    newDialog->CentreOnOwner();
    newDialog->exec();
    if (newDialog.isNull()) {
        return false; // the program went down under the open dialog
    }
    const bool loaded = newDialog->Loaded;
    if (!newDialog->Keep) {
        delete newDialog;
    }
    return loaded;
}

void ForgetNewDialog()
{
    delete newDialog;
}
