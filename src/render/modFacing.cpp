#include "render/modFacing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <GL/gl.h>

namespace {

// What rounding could turn must be left to GL: it works with 32-bit floats and at least four bits of subpixels.
constexpr double subpixel = 1.0 / 16;
constexpr double rounding = 1e-6;

/// A row of the product of projection and modelview.
struct Row {
    std::array<double, 4> Factors{};

    double Of(const Vec3& v) const { return Factors[0] * v.X + Factors[1] * v.Y + Factors[2] * v.Z + Factors[3]; }
    /// The sum of the sizes of what Of adds up.
    double SizeOf(const Vec3& v) const
    {
        return std::fabs(Factors[0] * v.X) + std::fabs(Factors[1] * v.Y) + std::fabs(Factors[2] * v.Z) +
               std::fabs(Factors[3]);
    }
};

/// The parts of the camera that decide where a vertex lands on the window.
struct WindowMap {
    Row X, Y, Z, W;
    double HalfWidth = 0;
    double HalfHeight = 0;
};

FacesOnWindow view;
std::vector<uint8_t> inside; ///< one a vertex: 1 for one that no edge of what is seen cuts off

WindowMap FetchMap()
{
    std::array<GLdouble, 16> modelview{};
    std::array<GLdouble, 16> projection{};
    std::array<GLint, 4> viewport{};
    glGetDoublev(GL_MODELVIEW_MATRIX, modelview.data());
    glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    const auto row = [&](size_t number) {
        Row result;
        for (size_t column = 0; column < 4; ++column) {
            for (size_t k = 0; k < 4; ++k) {
                result.Factors[column] += projection[4 * k + number] * modelview[4 * column + k];
            }
        }
        return result;
    };
    return {row(0), row(1), row(2), row(3), viewport[2] / 2.0, viewport[3] / 2.0};
}

WindowPlace PlaceOf(const Vec3& vertex, const WindowMap& map)
{
    constexpr double leastShare = 1e-3; // of the terms that W is made of, so that its rounding stays small beside it
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    const double w = map.W.Of(vertex);
    const double sizeOfW = map.W.SizeOf(vertex);
    if (!(w > leastShare * sizeOfW)) {
        return {none, none, none};
    }
    const double x = map.X.Of(vertex) / w;
    const double y = map.Y.Of(vertex) / w;
    const double slackX = (map.X.SizeOf(vertex) + std::fabs(x) * sizeOfW) / w * map.HalfWidth;
    const double slackY = (map.Y.SizeOf(vertex) + std::fabs(y) * sizeOfW) / w * map.HalfHeight;
    return {x * map.HalfWidth, y * map.HalfHeight, subpixel + rounding * (slackX + slackY)};
}

/// True when a vertex with this place is surely between all six planes.
bool IsInside(const Vec3& vertex, const WindowPlace& place, const WindowMap& map)
{
    const double depthSlack = rounding * (map.Z.SizeOf(vertex) + map.W.SizeOf(vertex));
    return std::fabs(place.X) < map.HalfWidth - place.Slack && std::fabs(place.Y) < map.HalfHeight - place.Slack &&
           std::fabs(map.Z.Of(vertex)) < map.W.Of(vertex) - depthSlack;
}

Facing FacingOf(const MvmFace& face)
{
    const auto at = [&face](size_t corner) { return static_cast<size_t>(face.Vertex[corner]) - 1; };
    const WindowPlace& a = view.Places[at(0)];
    const WindowPlace& b = view.Places[at(1)];
    const WindowPlace& c = view.Places[at(2)];
    if ((inside[at(0)] & inside[at(1)] & inside[at(2)]) == 0) {
        return Facing::Unsure; // what GL cuts off leaves slivers whose direction rounding can turn
    }
    if (SurelyClockwise(a, b, c)) {
        return Facing::Away;
    }
    return SurelyClockwise(a, c, b) ? Facing::Front : Facing::Unsure;
}

} // namespace

bool SurelyClockwise(const WindowPlace& a, const WindowPlace& b, const WindowPlace& c)
{
    const double abX = b.X - a.X;
    const double abY = b.Y - a.Y;
    const double acX = c.X - a.X;
    const double acY = c.Y - a.Y;
    const double slack = a.Slack + b.Slack + c.Slack; // of each difference
    const double reach = std::fabs(abX) + std::fabs(abY) + std::fabs(acX) + std::fabs(acY);
    return abX * acY - abY * acX < -slack * (reach + 2 * slack);
}

const FacesOnWindow& LookAtFaces(const MvmMesh& mesh)
{
    view.Facings.assign(mesh.Faces.Items.size(), Facing::Unsure);
    if (glIsEnabled(GL_CULL_FACE) == GL_FALSE) {
        return view;
    }
    const WindowMap map = FetchMap();
    view.Places.clear();
    inside.clear();
    for (const Vec3& vertex : mesh.Vertices) {
        view.Places.push_back(PlaceOf(vertex, map));
        inside.push_back(IsInside(vertex, view.Places.back(), map) ? 1 : 0);
    }
    std::transform(mesh.Faces.begin(), mesh.Faces.end(), view.Facings.begin(), [&mesh](const MvmFace& face) {
        return FaceCornersValid(mesh, face) ? FacingOf(face) : Facing::Unsure;
    });
    return view;
}
