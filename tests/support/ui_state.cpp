#include "support/ui_state.h"

#include "modConsole.h"
#include "weights/modMirror.h"

namespace {

std::string Rows(const QListWidget* list)
{
    QStringList rows;
    for (int row = 0; row < list->count(); row++) {
        rows += list->item(row)->text();
    }
    return rows.join(u',').toStdString();
}

/// The button of several that is down, which must be the one of the value.
template <typename Buttons>
std::string Down(int value, const Buttons& buttons)
{
    for (size_t i = 0; i < buttons.size(); i++) {
        if (buttons[i]->isChecked() != (static_cast<int>(i) == value)) {
            return "torn";
        }
    }
    return std::to_string(value);
}

std::string Numbers(std::initializer_list<double> numbers)
{
    QStringList texts;
    for (const double number : numbers) {
        texts += QString::number(std::round(number * 1000) / 1000);
    }
    return texts.join(u' ').toStdString();
}

std::string RoleText(int16_t mesh)
{
    std::string text = std::to_string(mesh) + ":";
    if (IsValidMesh(mesh)) {
        for (const int16_t bone : Meshes[mesh].VertexBones) {
            text += std::to_string(bone);
        }
    }
    return text;
}

/// The words of one list that the other does not have, each with a sign before it.
std::string Without(const std::string& words, const std::string& others, QChar sign)
{
    QString rest;
    const QStringList known = QString::fromStdString(others).split(u' ');
    for (const QString& word : QString::fromStdString(words).split(u' ', Qt::SkipEmptyParts)) {
        rest += known.contains(word) ? QString() : u' ' + sign + word;
    }
    return rest.toStdString();
}

} // namespace

std::string CursorOf(const QWidget* view)
{
    for (const char* name : {"select", "arcrot", "pan1", "pan2", "zoom"}) {
        const QPixmap picture(QStringLiteral(":/cursors/%1.png").arg(QLatin1String(name)));
        if (picture.toImage() == view->cursor().pixmap().toImage()) {
            const QPoint hot = view->cursor().hotSpot();
            return name + (" " + std::to_string(hot.x())) + "," + std::to_string(hot.y());
        }
    }
    return "none";
}

State Look(const UiWindow& window)
{
    QCoreApplication::processEvents(); // lines on their way to the log
    State state;
    const struct {
        const char* Entry;
        bool Flag;
    } flags[] = {{"mnuViewWire", ViewWire},           {"mnuViewSolid", !ViewWire},
                 {"mnuViewGrid", ViewGrid},           {"mnuViewTextures", ViewTextures},
                 {"mnuViewLighting", ViewLighting},   {"mnuViewBackfaces", ViewBackfaces},
                 {"mnuViewIsolines", ViewIsolines},   {"mnuViewNormals", ViewNormals},
                 {"mnuViewCullVerts", ViewCullVerts}, {"mnuOptionsAlias", AliasesOn},
                 {"mnuOptionsLineAA", LineAA},        {"mnuOptionFilterTextures", FilterTextures}};
    for (const auto& flag : flags) {
        state["on"] += flag.Flag ? std::string(" ") + (flag.Entry + 3) : "";
        state["torn"] += window->Entry(flag.Entry)->isChecked() == flag.Flag ? "" : flag.Entry;
    }
    std::vector<QAction*> cameras;
    for (const MenuEntry& entry : MenuTable()) {
        const std::string name = entry.Name;
        if (name.starts_with("mnuViewCamera") && entry.Handler != nullptr) {
            cameras.push_back(window->Entry(entry.Name));
        }
        state["off"] += window->Entry(entry.Name)->isEnabled() ? "" : " " + name.substr(3);
    }
    state["camera"] = Down(CurrentCamera - 1, cameras);
    state["tool"] = Down(ToolMode, window->toolButtons);
    state["cursor"] = CursorOf(window->picMain);
    const ViewCamera& eye = Cameras[static_cast<size_t>(CurrentCamera)];
    state["eye"] = Numbers({eye.Rotation.X, eye.Rotation.Y, eye.Position.X, eye.Position.Y, eye.Position.Z});
    state["mouse"] = Numbers({double(MouseButton), MouseLastX, MouseLastY, MouseStartX, MouseStartY});
    state["orbit"] = window->toolButtons[1]->isEnabled() ? "on" : "off";
    const bool editing = window->fraEditing->isVisible();
    const bool tabs = window->fraViewing->isVisible() != editing && window->tabMain->currentIndex() == ActiveTab;
    state["tab"] = tabs && editing == (ActiveTab == 1) ? std::to_string(ActiveTab) : "torn";
    const bool shadow = window->lstShadowBones->isVisibleTo(window->fraEditing);
    const bool lists = shadow != window->lstSkinBones->isVisibleTo(window->fraEditing) && shadow == (EditTarget == 1);
    state["target"] = lists ? Down(EditTarget, window->optShadow) : "torn";
    state["mode"] = Down(DisplayMode, window->optMode);
    state["bone"] = Numbers({double(ActiveBone)});
    state["rows"] = Rows(window->lstSkinBones) + "|" + Rows(window->lstShadowBones);
    state["row"] = Numbers({double(window->lstSkinBones->currentRow()), double(window->lstShadowBones->currentRow())});
    state["help"] = window->panels[0]->text().toStdString();
    QString status = window->panels[1]->text();
    state["status"] = status.replace(QStringLiteral(" verts assigned to bone "), QStringLiteral(":")).toStdString();
    state["title"] = window->windowTitle().toStdString();
    state["skin"] = RoleText(SkinMesh);
    state["shadow"] = RoleText(ShadowMesh);
    state["place"] = Numbers({SkinScale, SkinOffset.X});
    for (const MvmMesh& mesh : Meshes) {
        state["meshes"] += " " + mesh.Name + "/" + std::to_string(mesh.NormalCount()) + (mesh.IsSkin ? "s" : "");
    }
    for (const MvmInstance& instance : Instances) {
        state["instances"] += " " + instance.Name + "/" + instance.Mesh;
    }
    state["numbers"] = Numbers({double(PointSize), MirrorVertexThreshold, MirrorBoneThreshold});
    state["file"] = CurrentFile;
    state["last"] = LastPath;
    state["open"] = ModelOpen ? "yes" : "no";
    state["nosleep"] = NoSleep ? "yes" : "no";
    state["menu"] = window->mnuViewCamera->isVisible() ? "yes" : "no";
    window->mnuViewCamera->close();
    state["ctrl"] = window->CtrlHeld ? "yes" : "no";
    for (const std::string& name : window.Folder.Names()) {
        state["files"] += " " + name;
    }
    state["log"] = LogField() == nullptr ? "" : LogField()->toPlainText().toStdString();
    state["shown"] = IsInfoLogVisible() ? "yes" : LogDirty ? "dirty" : "no";
    return state;
}

std::string Changes(const State& before, const State& after)
{
    std::string changes;
    for (const auto& [name, value] : after) {
        const auto old = before.find(name);
        const std::string was = old == before.end() ? std::string() : old->second;
        if (value == was || (name == "eye" && old != before.end() && before.at("camera") != after.at("camera"))) {
            continue;
        }
        changes += (changes.empty() ? "" : "; ") + name;
        if (name == "on" || name == "off") {
            changes += Without(value, was, u'+') + Without(was, value, u'-');
        } else if (name == "log" && value.starts_with(was)) {
            const QString news = QString::fromStdString(value.substr(was.size()));
            changes += "=" + Tilde(news.split(u'\n', Qt::SkipEmptyParts).mid(0, 2).join(u'/').toStdString());
        } else {
            changes += "=" + Tilde(value);
        }
    }
    return changes;
}
