#include <algorithm>
#include <string>

#include <QLocale>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "main/frmMain.h"
#include "modCamera.h"
#include "modCodePage.h"
#include "modDrag.h"
#include "modPick.h"
#include "modTryJoint.h"
#include "weights/modEdit.h"
#include "weights/modSlips.h"

namespace {

constexpr double degreesPerPixel = 0.125;

void Say(const std::string& text)
{
    SetPanelText("toolhelp", text);
}

std::string Named(int32_t vertex)
{
    return "Vertex " + std::to_string(vertex) + " of " + Utf8FromCodePage(Meshes[TargetMesh()].Name);
}

/// Says so when there is no mesh to work on.
bool HasTarget()
{
    const int16_t mesh = TargetMesh();
    const bool has = IsValidMesh(mesh) && Meshes[mesh].VertexBones.Count() == Meshes[mesh].VertexCount();
    if (!has) {
        Say("There is no mesh to edit.");
    }
    return has;
}

} // namespace

void frmMain::EditKey(int32_t code)
{
    switch (code) {
    case 'E':
        TakeBoneOfVertex();
        break;
    case 'G':
        PickOnlyFree = !PickOnlyFree;
        Say(PickOnlyFree ? "Picks take only vertices without a bone." : "Picks take all vertices.");
        break;
    case 'N':
        ShowSlip();
        break;
    case 'U':
        ShowUnassigned();
        break;
    case codePageUp:
        StepBoneRow(-1);
        break;
    case codePageDown:
        StepBoneRow(1);
        break;
    default:
        break;
    }
}

void frmMain::TakeBoneOfVertex()
{
    if (Busy() || !HasTarget()) {
        return;
    }
    const PickBox at = BoxOfDrag(MouseLastX, MouseLastY, MouseLastX, MouseLastY, picMain->height());
    const int32_t vertex = VertexAt(TargetMesh(), at.X, at.Y);
    if (vertex == 0) {
        Say("There is no vertex under the pointer.");
        return;
    }
    const int16_t bone = Meshes[TargetMesh()].VertexBones[vertex];
    SetActiveBone(bone);
    Say(Named(vertex) + (IsValidBone(bone) ? ": " + BoneLabel(bone) + "." : " has no bone."));
}

void frmMain::ShowVertex(int32_t vertex)
{
    shownVertex = vertex;
    CentreOn(Meshes[TargetMesh()].Vertices[vertex]);
}

void frmMain::ShowUnassigned()
{
    if (Busy() || !HasTarget()) {
        return;
    }
    const int32_t vertex = NextUnassigned(TargetMesh(), shownVertex);
    if (vertex == 0) {
        Say("No vertex of " + Utf8FromCodePage(Meshes[TargetMesh()].Name) + " is unassigned.");
        return;
    }
    ShowVertex(vertex);
    Say(Named(vertex) + "; " + std::to_string(CountBoneVerts(TargetMesh(), 0)) + " unassigned.");
}

void frmMain::ShowSlip()
{
    if (Busy() || !HasTarget()) {
        return;
    }
    const std::vector<Slip> slips = FindSlips(TargetMesh());
    if (slips.empty()) {
        Say("No vertex of " + Utf8FromCodePage(Meshes[TargetMesh()].Name) + " stands alone among other bones.");
        return;
    }
    const auto next =
        std::find_if(slips.begin(), slips.end(), [this](const Slip& slip) { return slip.Vertex > shownVertex; });
    const Slip& slip = next == slips.end() ? slips.front() : *next;
    ShowVertex(slip.Vertex);
    const std::string count = std::to_string(slips.size()) + (slips.size() == 1 ? " such vertex." : " such vertices.");
    const auto label = [](int16_t bone) { return IsValidBone(bone) ? BoneLabel(bone) : std::to_string(bone); };
    Say(Named(slip.Vertex) + ": " + label(slip.Bone) + " among " + label(slip.Among) + "; " + count);
}

void frmMain::StepBoneRow(int by)
{
    if (Busy()) {
        return;
    }
    BoneList* list = ListOf(EditTarget);
    list->setCurrentRow(std::clamp(list->currentRow() + by, 0, list->count() - 1));
    if (const QListWidgetItem* row = list->currentItem()) {
        Say("Active bone: " + row->text().toStdString());
    }
}

void frmMain::BeginTryJoint()
{
    if (Busy() || !HasTarget()) {
        return;
    }
    if (!IsValidBone(ActiveBone)) {
        Say("Choose a bone to try its joint.");
        return;
    }
    TryingJoint = true;
    JointAngle = 0;
    jointStartX = MouseLastX;
    Say("Move the mouse to turn " + BoneLabel(ActiveBone) + ".");
}

void frmMain::TurnJoint(QPointF position)
{
    JointAngle = (position.x() - static_cast<double>(jointStartX)) * degreesPerPixel;
    Say(BoneLabel(ActiveBone) + " turned by " + QLocale::c().toString(JointAngle, 'f', 1).toStdString() + " degrees.");
    Redraw(true);
}

void frmMain::EndTryJoint()
{
    if (TryingJoint) {
        TryingJoint = false;
        JointAngle = 0;
        Redraw(true);
    }
}
