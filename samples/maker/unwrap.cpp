#include "unwrap.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>

namespace {

struct Place {
    double left, bottom, right, top; // pixels
};

constexpr std::array<Place, chartCount> chartPlaces{
    {{0, 0, 1024, 192}, {0, 192, 512, 512}, {512, 192, 1024, 320}, {512, 320, 1024, 448}, {512, 448, 1024, 512}}};

V2 InPlace(Chart chart, double along, double around)
{
    constexpr double margin = 4;
    const Place& place = chartPlaces[chart];
    return {(place.left + margin + along * (place.right - place.left - 2 * margin)) / hideWidth,
            (place.bottom + margin + around * (place.top - place.bottom - 2 * margin)) / hideHeight};
}

// A line through a part, as many points with their way along it.
struct Axis {
    std::vector<V3> at;
    std::vector<double> way;
    bool isMiddle; // on the middle plane: "around" counts from above; else from outside
};

Axis MakeAxis(const std::vector<V3>& corners, bool isMiddle)
{
    Axis axis;
    axis.isMiddle = isMiddle;
    double way = 0;
    for (size_t i = 0; i + 1 < corners.size(); ++i) {
        const double length = Length(corners[i + 1] - corners[i]);
        const int steps = std::max(2, static_cast<int>(length / 0.01));
        for (int k = 0; k < steps; ++k) {
            const double t = static_cast<double>(k) / steps;
            axis.at.push_back(Mix(corners[i], corners[i + 1], t));
            axis.way.push_back(way + t * length);
        }
        way += length;
    }
    axis.at.push_back(corners.back());
    axis.way.push_back(way);
    return axis;
}

// Way along and around the axis. All its points have a say, the near ones most, so that bends cause no jumps.
struct Turn {
    double way, angle; // the angle from -pi to pi
};

Turn Around(const Axis& axis, V3 at)
{
    double total = 0;
    double way = 0;
    V3 centre;
    V3 tangent;
    for (size_t i = 0; i < axis.at.size(); ++i) {
        const V3 d = at - axis.at[i];
        const double weight = std::pow(Dot(d, d) + 1e-4, -4.0);
        const V3 before = axis.at[i > 0 ? i - 1 : 0];
        const V3 behind = axis.at[std::min(i + 1, axis.at.size() - 1)];
        total += weight;
        way += axis.way[i] * weight;
        centre = centre + axis.at[i] * weight;
        tangent = tangent + Unit(behind - before) * weight;
    }
    centre = centre * (1 / total);
    tangent = Unit(tangent);
    V3 d = at - centre;
    d = d - tangent * Dot(d, tangent);
    const V3 zero = axis.isMiddle ? Cross(tangent, V3{1, 0, 0}) : V3{1, 0, 0};
    return {way / total, std::atan2(Dot(d, Cross(tangent, zero)), Dot(d, zero))};
}

V2 Unsigned(Turn turn)
{
    return {turn.way, std::fabs(turn.angle) / std::numbers::pi};
}

std::array<Axis, earChart> Axes(const Skeleton& skeleton)
{
    const auto at = [&](const char* stem, int step = 0) {
        return skeleton[static_cast<size_t>(FindBone(skeleton, stem) + step)].at;
    };
    const V3 toes{0, -0.03, -0.12};
    const V3 head = at("Head");
    std::vector<V3> trunk{head + V3{0, 0, -0.02}};
    for (const int bone : {5, 4, 3, 2, 1, 0, 8, 9, 10, 11, 12}) {
        trunk.push_back(skeleton[static_cast<size_t>(bone)].at);
    }
    trunk.push_back(trunk.back() + V3{0, 0.09, 0.045});
    return {MakeAxis(trunk, true),
            MakeAxis({head + V3{0, -0.045, -0.26}, head + V3{0, -0.015, -0.06}, head + V3{0, 0.02, 0.1}}, true),
            MakeAxis({at("UpperArmR") + V3{0, 0.1, 0.02}, at("UpperArmR"), at("ForearmR"), at("WristR"), at("PawFR"),
                      at("PawFR") + toes},
                     false),
            MakeAxis({at("ThighR") + V3{0, 0.1, 0.02}, at("ThighR"), at("ShinR"), at("HockR"), at("PawHR"),
                      at("PawHR") + toes},
                     false)};
}

} // namespace

Chart ChartOf(const Skeleton& skeleton, int bone)
{
    const std::string& name = skeleton[static_cast<size_t>(bone)].name;
    const auto is = [&](const char* stem) { return name.rfind(stem, 0) == 0; };
    if (is("Head") || is("Jaw")) {
        return headChart;
    }
    if (is("UpperArm") || is("Forearm") || is("Wrist") || is("PawF")) {
        return armChart;
    }
    return is("Thigh") || is("Shin") || is("Hock") || is("PawH") ? legChart : trunkChart;
}

Unwrapping UnwrapBody(const Skeleton& skeleton, Mesh* half)
{
    const std::array<Axis, earChart> axes = Axes(skeleton);
    Unwrapping unwrapping;
    std::vector<std::array<Turn, earChart>> turns;
    for (const V3& at : half->v) {
        turns.push_back({Around(axes[0], at), Around(axes[1], at), Around(axes[2], at), Around(axes[3], at)});
    }
    std::map<std::array<int, 3>, int> known;
    std::vector<Chart> chartOf; // for each texture coordinate
    for (Face& face : half->f) {
        std::array<int, chartCount> votes{};
        for (const int v : face.v) {
            ++votes[ChartOf(skeleton, half->bone[static_cast<size_t>(v)])];
        }
        const auto chart = static_cast<Chart>(std::max_element(votes.begin(), votes.end()) - votes.begin());
        unwrapping.chart.push_back(chart);
        const auto turn = [&](int v) { return turns[static_cast<size_t>(v)][chart]; };
        const auto byAngle = [&](int a, int b) { return turn(a).angle < turn(b).angle; };
        const auto [low, high] = std::minmax_element(face.v.begin(), face.v.end(), byAngle);
        // A face across the cut lies whole at its upper end.
        const bool isCut = !axes[chart].isMiddle && turn(*high).angle - turn(*low).angle > std::numbers::pi;
        for (size_t k = 0; k < 3; ++k) {
            const Turn at = turn(face.v[k]);
            const bool isMoved = isCut && at.angle < 0;
            const auto [entry, isNew] =
                known.try_emplace({face.v[k], chart, isMoved ? 1 : 0}, static_cast<int>(unwrapping.raw.size()));
            if (isNew) {
                unwrapping.raw.push_back(
                    axes[chart].isMiddle ? Unsigned(at) : V2{at.way, at.angle + (isMoved ? 2 * std::numbers::pi : 0)});
                chartOf.push_back(chart);
            }
            face.t[k] = entry->second;
        }
    }
    std::array<V2, chartCount> low{};
    std::array<V2, chartCount> high{};
    low.fill({10, 10});
    high.fill({-10, -10});
    for (size_t i = 0; i < chartOf.size(); ++i) {
        const V2 raw = unwrapping.raw[i];
        V2& least = low[chartOf[i]];
        V2& most = high[chartOf[i]];
        least = {std::min(least.u, raw.u), std::min(least.v, raw.v)};
        most = {std::max(most.u, raw.u), std::max(most.v, raw.v)};
    }
    for (size_t i = 0; i < chartOf.size(); ++i) {
        const Chart chart = chartOf[i];
        const V2 raw = unwrapping.raw[i];
        half->t.push_back(InPlace(chart, (raw.u - low[chart].u) / (high[chart].u - low[chart].u),
                                  (raw.v - low[chart].v) / (high[chart].v - low[chart].v)));
    }
    return unwrapping;
}

std::vector<std::array<V2, earChart>> PlacesAround(const Skeleton& skeleton, const std::vector<V3>& places)
{
    const std::array<Axis, earChart> axes = Axes(skeleton);
    std::vector<std::array<V2, earChart>> all(places.size());
    for (size_t i = 0; i < places.size(); ++i) {
        for (size_t chart = 0; chart < axes.size(); ++chart) {
            all[i][chart] = Unsigned(Around(axes[chart], places[i]));
        }
    }
    return all;
}

void UnwrapEar(Mesh* ear, Unwrapping* unwrapping)
{
    for (V2& t : ear->t) {
        unwrapping->raw.push_back(t);
        t = InPlace(earChart, t.u, t.v);
    }
    unwrapping->chart.insert(unwrapping->chart.end(), ear->f.size(), earChart);
}
