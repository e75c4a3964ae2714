#include "render/modFaceOrder.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "render/modFacing.h"

namespace {

constexpr size_t windowSize = 64; // each new face is held against all of other looks in it

struct CornerPlace {
    const Vec3* Vertex = nullptr;
    const WindowPlace* Place = nullptr;
};

/// A face in the window: its corners, and the box around wherever they may be.
struct Entry {
    LookedFace Looked;
    size_t FirstOfLook = 0; ///< place in the window of the first face of its look
    std::array<CornerPlace, 3> Corners{};
    double Left = 0, Right = 0, Bottom = 0, Top = 0;
};

std::vector<Entry> window;
std::vector<LookedFace> ordered;

Entry EntryOf(const LookedFace& looked, const MvmMesh& mesh, const FacesOnWindow& view)
{
    Entry entry;
    entry.Looked = looked;
    for (size_t k = 0; k < 3; ++k) {
        const auto vertex = static_cast<size_t>(looked.Face->Vertex[k]) - 1;
        const WindowPlace& place = view.Places[vertex];
        entry.Corners[k] = {&mesh.Vertices.Items[vertex], &place};
        entry.Left = k == 0 ? place.X - place.Slack : std::min(entry.Left, place.X - place.Slack);
        entry.Right = k == 0 ? place.X + place.Slack : std::max(entry.Right, place.X + place.Slack);
        entry.Bottom = k == 0 ? place.Y - place.Slack : std::min(entry.Bottom, place.Y - place.Slack);
        entry.Top = k == 0 ? place.Y + place.Slack : std::max(entry.Top, place.Y + place.Slack);
    }
    return entry;
}

bool AtOnePlace(const CornerPlace& a, const CornerPlace& b)
{
    return a.Vertex->X == b.Vertex->X && a.Vertex->Y == b.Vertex->Y && a.Vertex->Z == b.Vertex->Z;
}

/// True when an edge of `a` has all of `b` on its outer side. Corners at one place stay at one place however GL rounds,
/// and of two faces on both sides of an edge none gets a pixel of the other.
bool EdgeParts(const Entry& a, const Entry& b)
{
    for (size_t k = 0; k < 3; ++k) {
        const CornerPlace& from = a.Corners[k];
        const CornerPlace& to = a.Corners[(k + 1) % 3];
        const auto isOutside = [&from, &to](const CornerPlace& corner) {
            return AtOnePlace(corner, from) || AtOnePlace(corner, to) ||
                   SurelyClockwise(*from.Place, *to.Place, *corner.Place);
        };
        if (std::all_of(b.Corners.begin(), b.Corners.end(), isOutside)) {
            return true;
        }
    }
    return false;
}

bool ShareNoPixel(const Entry& a, const Entry& b)
{
    return a.Left > b.Right || b.Left > a.Right || a.Bottom > b.Top || b.Bottom > a.Top || EdgeParts(a, b) ||
           EdgeParts(b, a);
}

void Flush()
{
    std::stable_sort(window.begin(), window.end(),
                     [](const Entry& a, const Entry& b) { return a.FirstOfLook < b.FirstOfLook; });
    for (const Entry& entry : window) {
        ordered.push_back(entry.Looked);
    }
    window.clear();
}

void AddToWindow(Entry entry)
{
    const auto isInTheWay = [&entry](const Entry& other) {
        return other.Looked.Shared != entry.Looked.Shared && !ShareNoPixel(other, entry);
    };
    if (window.size() == windowSize || std::any_of(window.begin(), window.end(), isInTheWay)) {
        Flush();
    }
    const auto first = std::find_if(window.begin(), window.end(), [&entry](const Entry& other) {
        return other.Looked.Shared == entry.Looked.Shared;
    });
    entry.FirstOfLook = static_cast<size_t>(first - window.begin());
    window.push_back(entry);
}

} // namespace

void OrderFaces(const MvmMesh& mesh, bool filled, std::vector<LookedFace>* faces)
{
    const FacesOnWindow& view = LookAtFaces(mesh);
    ordered.clear();
    for (const LookedFace& looked : *faces) {
        const Facing facing = view.Facings[static_cast<size_t>(looked.Face - mesh.Faces.Items.data())];
        if (facing == Facing::Front && filled) {
            AddToWindow(EntryOf(looked, mesh, view));
        } else if (facing != Facing::Away) {
            Flush();
            ordered.push_back(looked);
        }
    }
    Flush();
    faces->swap(ordered);
    ordered.clear(); // nothing of the scene is held until the next frame
}
