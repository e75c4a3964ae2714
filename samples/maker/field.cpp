#include "field.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

enum Group { trunk, skull, arm, leg, tail, groupCount };

// Distance to a cone with round ends.
double RoundCone(V3 p, V3 a, V3 b, double ra, double rb)
{
    const V3 ba = b - a;
    const double l2 = Dot(ba, ba);
    const double rr = ra - rb;
    if (l2 <= rr * rr) {
        return std::min(Length(p - a) - ra, Length(p - b) - rb);
    }
    const double a2 = l2 - rr * rr;
    const V3 pa = p - a;
    const double y = Dot(pa, ba);
    const double z = y - l2;
    const V3 side = pa * l2 - ba * y;
    const double x2 = Dot(side, side);
    const double y2 = y * y * l2;
    const double z2 = z * z * l2;
    const double k = (rr < 0 ? -1.0 : 1.0) * rr * rr * x2;
    if ((z < 0 ? -1.0 : 1.0) * a2 * z2 > k) {
        return std::sqrt(x2 + z2) / l2 - rb;
    }
    if ((y < 0 ? -1.0 : 1.0) * a2 * y2 < k) {
        return std::sqrt(x2 + y2) / l2 - ra;
    }
    return (std::sqrt(x2 * a2 / l2) + y * rr) / l2 - ra;
}

double LimbDistance(const Limb& limb, V3 p)
{
    const double s = 1 / limb.wide;
    const V3 a{limb.a.x, limb.a.y, limb.a.z};
    const V3 q{a.x + (p.x - a.x) * s, p.y, p.z};
    const V3 b{a.x + (limb.b.x - a.x) * s, limb.b.y, limb.b.z};
    return RoundCone(q, a, b, limb.ra, limb.rb) * std::min(1.0, limb.wide);
}

double Blend(double a, double b, double k)
{
    const double h = std::max(k - std::fabs(a - b), 0.0) / k;
    return std::min(a, b) - h * h * h * k / 6;
}

} // namespace

Body MakeBody(const Skeleton& skeleton)
{
    Body body;
    const auto bone = [&](const char* stem) { return FindBone(skeleton, stem); };
    const auto at = [&](const char* stem) { return skeleton[static_cast<size_t>(bone(stem))].at; };
    const auto add = [&](const char* stem, Group group, V3 a, V3 b, double ra, double rb, double wide = 1) {
        body.limbs.push_back({a, b, ra, rb, bone(stem), group, wide});
    };
    const int pelvis = bone("Pelvis");
    const auto spine = [&](int step) { return skeleton[static_cast<size_t>(pelvis + step)].at; };
    const auto addSpine = [&](int step, V3 a, V3 b, double ra, double rb, double wide = 1) {
        body.limbs.push_back({a, b, ra, rb, pelvis + step, trunk, wide});
    };
    // Trunk and neck.
    addSpine(0, spine(0) + V3{0, 0, 0.02}, spine(1), 0.118, 0.108, 0.95);
    addSpine(1, spine(1), spine(2), 0.108, 0.125, 0.95);
    // The ribs belong to the chest, else it would show behind the elbow as a mere streak.
    const V3 ribs = Mix(spine(2), spine(3), 0.45) + V3{0, -0.01, 0};
    addSpine(2, spine(2) + V3{0, -0.015, 0}, ribs, 0.13, 0.138, 0.93);
    addSpine(3, ribs, spine(3), 0.138, 0.148, 0.93);
    addSpine(3, spine(3) + V3{0, -0.02, 0}, {0, 0.09, -0.215}, 0.155, 0.135, 0.9);
    addSpine(3, spine(3), spine(4), 0.14, 0.115, 0.9);
    addSpine(4, spine(4), spine(5), 0.115, 0.092, 0.88);
    addSpine(5, spine(5), spine(6), 0.092, 0.078, 0.9);
    // Head, snout and jaw.
    const V3 head = at("Head");
    const auto face = [&](double x, double y, double z) { return V3{x, head.y + y, head.z + z}; };
    add("Head", skull, face(0, 0.015, -0.02), face(0, 0.012, -0.055), 0.092, 0.082, 1.05);
    add("Head", skull, face(0.03, 0.055, -0.075), face(0.075, 0.04, -0.06), 0.022, 0.018);
    add("Head", skull, face(0.055, -0.025, -0.03), face(0.05, -0.03, -0.06), 0.048, 0.036);
    add("Head", skull, face(0, -0.005, -0.08), face(0, -0.035, -0.205), 0.06, 0.036, 1);
    add("Head", skull, face(0.02, -0.048, -0.175), face(0.018, -0.053, -0.2), 0.032, 0.028);
    add("Head", skull, face(0, -0.022, -0.222), face(0, -0.026, -0.228), 0.018, 0.018, 1.3);
    add("Jaw", skull, face(0, -0.055, -0.05), face(0, -0.088, -0.165), 0.048, 0.026);
    // Tail.
    const int firstTail = FindBone(skeleton, "Jaw") + 1;
    const std::array<double, 6> tailSize{0.058, 0.046, 0.037, 0.031, 0.028, 0.022};
    for (int i = 0; i < 5; ++i) {
        const V3 from = skeleton[static_cast<size_t>(firstTail + i)].at;
        const V3 to = i < 4 ? skeleton[static_cast<size_t>(firstTail + i + 1)].at : from + V3{0, 0.07, 0.035};
        body.limbs.push_back(
            {from, to, tailSize[static_cast<size_t>(i)], tailSize[static_cast<size_t>(i) + 1], firstTail + i, tail});
    }
    // Legs: shoulder, thigh and calf are thick above and sinewy below.
    add("ScapulaR", arm, at("ScapulaR"), at("UpperArmR"), 0.068, 0.078);
    add("UpperArmR", arm, at("UpperArmR"), at("ForearmR"), 0.074, 0.058);
    add("ForearmR", arm, at("ForearmR"), at("WristR"), 0.056, 0.041);
    add("WristR", arm, at("WristR"), at("PawFR"), 0.041, 0.042);
    add("ThighR", leg, at("ThighR") + V3{0, -0.01, 0}, at("ShinR"), 0.108, 0.066, 0.85);
    add("ThighR", leg, at("ThighR") + V3{0.01, -0.08, 0.03}, at("ShinR") + V3{0, -0.02, 0.03}, 0.075, 0.05, 0.9);
    add("ShinR", leg, at("ShinR"), at("HockR"), 0.062, 0.037);
    add("HockR", leg, at("HockR"), at("PawHR"), 0.036, 0.041);
    for (const auto& [stem, group] : {std::pair{"PawFR", arm}, std::pair{"PawHR", leg}}) {
        const V3 paw = at(stem);
        add(stem, group, paw + V3{0, -0.012, 0}, paw + V3{0, -0.02, -0.05}, 0.042, 0.04, 1.2);
        for (const double x : {-0.038, 0.0, 0.038}) {
            add(stem, group, paw + V3{x * 0.8, -0.022, -0.04}, paw + V3{x, -0.03, x == 0 ? -0.1 : -0.088}, 0.027,
                0.025);
        }
    }
    return body;
}

Body MakeShadowBody(const Skeleton& skeleton)
{
    Body body;
    body.tight = 0.05;
    const auto bone = [&](const char* stem) { return FindBone(skeleton, stem); };
    const auto at = [&](const char* stem) { return skeleton[static_cast<size_t>(bone(stem))].at; };
    const auto add = [&](const char* stem, Group group, V3 a, V3 b, double ra, double rb, double wide = 1) {
        body.limbs.push_back({a, b, ra, rb, bone(stem), group, wide});
    };
    const V3 middle = Mix(at("$j$Pelvis"), at("$j$Chest"), 0.5);
    add("$j$Pelvis", trunk, at("$j$Pelvis"), middle, 0.13, 0.125);
    add("$j$Chest", trunk, middle, at("$j$Chest") + V3{0, 0, -0.08}, 0.125, 0.155);
    add("$j$Neck", trunk, at("$j$Neck"), at("$j$Head"), 0.115, 0.095);
    add("$j$Head", trunk, at("$j$Head"), at("$j$Head") + V3{0, -0.04, -0.16}, 0.11, 0.06);
    add("$j$Tail", tail, at("$j$Tail"), V3{0, 0.06, 0.58}, 0.062, 0.058);
    const int lastTail = FindBone(skeleton, "$j$Tail") + 1;
    body.limbs.push_back({{0, 0.06, 0.58}, {0, 0.12, 0.74}, 0.058, 0.052, lastTail, tail});
    add("$j$ArmR", arm, at("$j$ArmR"), at("$j$ForeR"), 0.08, 0.06);
    add("$j$ForeR", arm, at("$j$ForeR"), V3{0.122, -0.3, -0.23}, 0.06, 0.062);
    add("$j$LegR", leg, at("$j$LegR"), at("$j$FootR"), 0.1, 0.06);
    add("$j$FootR", leg, at("$j$FootR"), V3{0.125, -0.3, 0.32}, 0.06, 0.062);
    return body;
}

double Distance(const Body& body, V3 at)
{
    const V3 p{std::fabs(at.x), at.y, at.z};
    std::array<double, groupCount> near{};
    near.fill(10);
    for (const Limb& limb : body.limbs) {
        double& group = near[static_cast<size_t>(limb.group)];
        const double distance = LimbDistance(limb, p);
        group = group > 9 ? distance : Blend(group, distance, limb.group == trunk ? 0.06 : body.tight);
    }
    double all = 10;
    for (const double group : near) {
        all = all > 9 ? group : Blend(all, group, body.loose);
    }
    const double k = 0.02;
    const double ground = sole - p.y;
    const double h = std::max(k - std::fabs(all - ground), 0.0) / k;
    return std::max(all, ground) + h * h * h * k / 6;
}

V3 Gradient(const Body& body, V3 at)
{
    const double e = 1e-4;
    const V3 g{Distance(body, at + V3{e, 0, 0}) - Distance(body, at - V3{e, 0, 0}),
               Distance(body, at + V3{0, e, 0}) - Distance(body, at - V3{0, e, 0}),
               Distance(body, at + V3{0, 0, e}) - Distance(body, at - V3{0, 0, e})};
    return V3{at.x == 0 ? 0 : g.x, g.y, g.z} * (0.5 / e);
}

V3 OnSurface(const Body& body, V3 at)
{
    for (int i = 0; i < 6; ++i) {
        const V3 g = Gradient(body, at);
        const double length = std::max(Dot(g, g), 0.1);
        at = at - g * (Distance(body, at) / length);
        at.x = std::max(at.x, 0.0);
    }
    return at;
}

int NearestBone(const Body& body, const Skeleton& skeleton, V3 at)
{
    double best = 10;
    int bone = -1;
    for (const Limb& limb : body.limbs) {
        const double distance = LimbDistance(limb, at);
        const bool isMiddle = skeleton[static_cast<size_t>(limb.bone)].partner == limb.bone;
        if (distance < best && (isMiddle || at.x > 0)) {
            best = distance;
            bone = limb.bone;
        }
    }
    return bone;
}
