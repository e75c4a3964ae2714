#include "render/modFacing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <GL/gl.h>

namespace {

// A sign that rounding could turn must be left to GL: it works with 32-bit floats and at least four bits of subpixels.
constexpr double subpixel = 1.0 / 16;
constexpr double rounding = 1e-6;

/// A vertex on the window, in pixels. All three are not a number for one that is not well in front of the eye.
struct WindowPlace {
    double X = 0;
    double Y = 0;
    double Slack = 0; ///< how far off GL's place may be
};

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
    Row X, Y, W;
    double HalfWidth = 0;
    double HalfHeight = 0;
};

std::vector<WindowPlace> places;
std::vector<uint8_t> turnedAway;

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
    return {row(0), row(1), row(3), viewport[2] / 2.0, viewport[3] / 2.0};
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

/// True when the corners run clockwise on the window wherever they are within their slack.
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

} // namespace

const std::vector<uint8_t>& FacesTurnedAway(const MvmMesh& mesh)
{
    turnedAway.assign(mesh.Faces.Items.size(), 0);
    if (glIsEnabled(GL_CULL_FACE) == GL_FALSE) {
        return turnedAway;
    }
    const WindowMap map = FetchMap();
    places.resize(mesh.Vertices.Items.size());
    std::transform(mesh.Vertices.begin(), mesh.Vertices.end(), places.begin(),
                   [&map](const Vec3& vertex) { return PlaceOf(vertex, map); });
    for (size_t i = 0; i < turnedAway.size(); ++i) {
        const MvmFace& face = mesh.Faces.Items[i];
        if (FaceCornersValid(mesh, face)) {
            const auto place = [&face](size_t k) { return places[static_cast<size_t>(face.Vertex[k]) - 1]; };
            turnedAway[i] = SurelyClockwise(place(0), place(1), place(2)) ? 1 : 0;
        }
    }
    return turnedAway;
}
