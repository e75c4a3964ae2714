#include "shells.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

constexpr double pi = std::numbers::pi;

Face Triangle(int a, int b, int c, int material)
{
    Face face;
    face.v = face.t = {a, b, c};
    face.material = material;
    return face;
}

V3 At(const Skeleton& skeleton, const char* stem)
{
    return skeleton[static_cast<size_t>(FindBone(skeleton, stem))].at;
}

// A point on a smooth curve through four points.
V3 Curve(const std::array<V3, 4>& p, double t)
{
    const double s = 1 - t;
    return p[0] * (s * s * s) + p[1] * (3 * s * s * t) + p[2] * (3 * s * t * t) + p[3] * (t * t * t);
}

// A tapering tube along a curve whose size at t in 0..1 is size(t).
template <typename Size>
Mesh Tusk(const std::array<V3, 4>& curve, int rings, int around, int bone, int material, Size size)
{
    std::vector<Ring> list;
    for (int i = 0; i < rings; ++i) {
        const double t = static_cast<double>(i) / rings;
        const V3 along = Unit(Curve(curve, t + 0.01) - Curve(curve, t));
        const V3 side = Unit(Cross(along, V3{0.2, 0.3, -0.93}));
        list.push_back({Curve(curve, t), side, Cross(side, along), size(t), size(t)});
    }
    return Sweep(list, Curve(curve, 0) - (Curve(curve, 0.05) - Curve(curve, 0)), Curve(curve, 1), around, bone,
                 material);
}

// A station of a strip of hair: where it grows, where it ends, and how far along the strip it is.
struct Lock {
    V3 root, tip;
    double along;
};

// A strip of hair through its locks. A strip on the middle plane gets one side; its image is the other.
void AddStrip(const std::vector<Lock>& locks, V3 droop, int (*boneOf)(const Skeleton&, V3), const Skeleton& skeleton,
              Mesh* mane)
{
    constexpr int rows = 5;
    Mesh strip;
    for (const Lock& lock : locks) {
        for (int row = 0; row < rows; ++row) {
            const double t = static_cast<double>(row) / (rows - 1);
            V3 at = Mix(lock.root, lock.tip, t) + droop * (t * t);
            strip.v.push_back(at);
            strip.t.push_back({lock.along, 0.02 + 0.96 * t});
            strip.bone.push_back(boneOf(skeleton, lock.root));
        }
    }
    for (int i = 0; i + 1 < static_cast<int>(locks.size()); ++i) {
        for (int row = 0; row + 1 < rows; ++row) {
            const int a = i * rows + row;
            strip.f.push_back(Triangle(a, a + rows, a + rows + 1, maneMaterial));
            strip.f.push_back(Triangle(a, a + rows + 1, a + 1, maneMaterial));
        }
    }
    SmoothNormals(&strip);
    const bool isMiddle = std::all_of(strip.v.begin(), strip.v.end(), [](V3 at) { return at.x == 0; });
    if (!isMiddle) {
        const int count = static_cast<int>(strip.n.size());
        for (int i = 0; i < count; ++i) {
            strip.n.push_back(strip.n[static_cast<size_t>(i)] * -1);
        }
        for (size_t i = 0, faces = strip.f.size(); i < faces; ++i) {
            Face back = strip.f[i];
            std::swap(back.v[1], back.v[2]);
            back.t = back.v;
            for (size_t k = 0; k < 3; ++k) {
                back.n[k] = back.v[k] + count;
            }
            strip.f.push_back(back);
        }
    }
    Append(strip, mane);
}

int NeckBone(const Skeleton& skeleton, V3 at)
{
    int best = FindBone(skeleton, "Head");
    for (const char* stem : {"Neck", "Chest", "Spine"}) {
        for (int bone = FindBone(skeleton, stem); skeleton[static_cast<size_t>(bone)].name.compare(0, 4, stem, 4) == 0;
             ++bone) {
            const auto far = [&](int b) {
                return Length(skeleton[static_cast<size_t>(b)].at + V3{0, 0.08, 0.02} - at);
            };
            best = far(bone) < far(best) ? bone : best;
        }
    }
    return best;
}

int TailEnd(const Skeleton& skeleton, V3)
{
    return FindBone(skeleton, "EarL") - 1;
}

} // namespace

Mesh Sweep(const std::vector<Ring>& rings, V3 first, V3 last, int around, int bone, int material)
{
    Mesh mesh;
    for (size_t i = 0; i < rings.size(); ++i) {
        const Ring& ring = rings[i];
        for (int k = 0; k < around; ++k) {
            const double angle = 2 * pi * k / around;
            const double c = std::cos(angle);
            const double s = std::sin(angle);
            mesh.v.push_back(ring.at + ring.front * (c * ring.deep + ring.cup * s * s) + ring.side * (s * ring.wide));
            const double turn = std::acos(std::clamp(c, -1.0, 1.0)) / pi;
            mesh.t.push_back({(static_cast<double>(i) + 1) / (static_cast<double>(rings.size()) + 1), turn});
        }
    }
    const int rows = static_cast<int>(rings.size());
    const int start = static_cast<int>(mesh.v.size());
    const int end = start + 1;
    mesh.v.push_back(first);
    mesh.v.push_back(last);
    mesh.t.push_back({0, 0.5});
    mesh.t.push_back({1, 0.5});
    for (int k = 0; k < around; ++k) {
        const int next = (k + 1) % around;
        mesh.f.push_back(Triangle(start, next, k, material));
        mesh.f.push_back(Triangle(end, (rows - 1) * around + k, (rows - 1) * around + next, material));
        for (int i = 0; i + 1 < rows; ++i) {
            const int a = i * around + k;
            const int b = i * around + next;
            mesh.f.push_back(Triangle(a, b, b + around, material));
            mesh.f.push_back(Triangle(a, b + around, a + around, material));
        }
    }
    // The shell faces outward whatever way its rings turn.
    double volume = 0;
    for (const Face& face : mesh.f) {
        const auto at = [&](size_t k) { return mesh.v[static_cast<size_t>(face.v[k])] - first; };
        volume += Dot(at(0), Cross(at(1), at(2)));
    }
    for (Face& face : mesh.f) {
        if (volume < 0) {
            std::swap(face.v[1], face.v[2]);
        }
        face.t = face.v;
    }
    mesh.bone.assign(mesh.v.size(), bone);
    SmoothNormals(&mesh);
    return mesh;
}

Mesh Eye(V3 at, V3 look, double radius, int bone)
{
    constexpr int around = 16;
    constexpr int rows = 9;
    look = Unit(look);
    const V3 side = Unit(Cross(V3{0, 1, 0}, look));
    const V3 up = Cross(look, side);
    std::vector<Ring> rings;
    for (int i = 1; i <= rows; ++i) {
        const double angle = pi * i / (rows + 1);
        rings.push_back(
            {at + look * (radius * std::cos(angle)), side, up, radius * std::sin(angle), radius * std::sin(angle)});
    }
    Mesh mesh = Sweep(rings, at + look * radius, at - look * radius, around, bone, eyeMaterial);
    for (size_t i = 0; i < mesh.v.size(); ++i) {
        const V3 d = (mesh.v[i] - at) * (1 / radius);
        const double across = std::sqrt(std::max(0.0, 1 - Dot(d, look) * Dot(d, look)));
        const double reach = std::acos(std::clamp(Dot(d, look), -1.0, 1.0)) / pi;
        const double scale = across > 0 ? std::min(reach, 0.49) / across : 0;
        mesh.t[i] = {0.5 + Dot(d, side) * scale, 0.5 + Dot(d, up) * scale};
        mesh.n[i] = d;
    }
    return mesh;
}

Mesh Horn(const Skeleton& skeleton)
{
    const V3 root = At(skeleton, "HornR");
    const std::array<V3, 4> curve{root + V3{-0.003, -0.03, 0.015}, root + V3{0.012, 0.065, -0.02},
                                  root + V3{0.055, 0.095, 0.06}, root + V3{0.062, 0.105, 0.165}};
    return Tusk(curve, 18, 10, FindBone(skeleton, "HornR"), hornMaterial,
                [](double t) { return 0.021 * (1 - t) * (1 + 0.09 * std::cos(t * 2 * pi * 9) * (1 - t)) + 0.003; });
}

Mesh Ear(const Skeleton& skeleton)
{
    const V3 root = At(skeleton, "EarR") + V3{-0.005, -0.02, 0};
    const V3 along = Unit({0.7, 0.66, 0.24});
    const V3 front = Unit(Cross(Cross(along, V3{0.35, 0.1, -0.93}), along));
    const V3 side = Cross(along, front);
    std::vector<Ring> rings;
    constexpr int rows = 12;
    for (int i = 0; i < rows; ++i) {
        // The rings lie denser towards the tip, where the outline bends most.
        const double t = 1 - std::pow(1 - static_cast<double>(i) / rows, 1.45);
        const double wide = 0.052 * std::pow(1 - t, 0.95) * (0.6 + 2.2 * t);
        rings.push_back({root + along * (0.185 * t) - front * (0.05 * t * t), side, front, wide,
                         0.014 * (1 - t) + 0.002, 0.55 * wide});
    }
    const V3 tip = root + along * 0.19 - front * 0.052;
    return Sweep(rings, root - along * 0.01, tip, 16, FindBone(skeleton, "EarR"), hideMaterial);
}

Mesh Claws(const Skeleton& skeleton)
{
    Mesh all;
    for (const char* stem : {"PawFR", "PawHR"}) {
        const V3 paw = At(skeleton, stem);
        for (const double x : {-0.038, 0.0, 0.038}) {
            const V3 root = paw + V3{x, -0.026, x == 0 ? -0.115 : -0.103};
            const std::array<V3, 4> curve{root, root + V3{x * 0.05, 0.014, -0.02}, root + V3{x * 0.12, 0.002, -0.04},
                                          root + V3{x * 0.15, -0.024, -0.046}};
            Append(Tusk(curve, 5, 8, FindBone(skeleton, stem), clawMaterial,
                        [](double t) { return 0.0105 * (1 - 0.8 * t); }),
                   &all);
        }
    }
    return all;
}

Mesh Mane(const Body& body, const Skeleton& skeleton)
{
    Mesh mane;
    // From the brow over the neck to the back, along a line above the body.
    const V3 head = At(skeleton, "Head");
    const std::array<V3, 4> above{
        head + V3{0, 0.17, -0.07}, head + V3{0, 0.22, 0.12}, {0, 0.42, -0.22}, {0, 0.4, 0.06}};
    constexpr int stations = 15;
    for (int sheet = 0; sheet < 4; ++sheet) {
        std::vector<Lock> locks;
        for (int i = 0; i < stations; ++i) {
            const double t = static_cast<double>(i) / (stations - 1);
            V3 start = Curve(above, t);
            start.x = 0.017 * sheet;
            const V3 skin = OnSurface(body, start);
            const V3 n = Unit(Gradient(body, skin));
            const V3 back = Unit(Curve(above, std::min(t + 0.02, 1.0)) - Curve(above, std::max(t - 0.02, 0.0)));
            const double swell = 0.35 + 0.65 * std::sin(pi * std::min(1.0, 0.12 + t * 0.9));
            const double length = (0.15 - 0.012 * sheet) * swell;
            V3 out = Unit(n + back * (0.95 + 0.12 * sheet) + V3{0.22 * sheet, 0, 0});
            out.x = sheet == 0 ? 0 : out.x;
            V3 root = skin - n * 0.012;
            root.x = sheet == 0 ? 0 : root.x;
            locks.push_back({root, root + out * length, 3.2 * t + 0.37 * sheet});
        }
        AddStrip(locks, V3{0.006 * sheet, -0.024 - 0.012 * sheet, 0.02}, NeckBone, skeleton, &mane);
    }
    // A brush at the end of the tail: skirts of hair, one within the other.
    const V3 along = Unit({0, 0.07, 0.035});
    const V3 end = skeleton[static_cast<size_t>(TailEnd(skeleton, {}))].at;
    const V3 up = Unit(Cross(along, V3{1, 0, 0}));
    constexpr int skirts = 5;
    for (int skirt = 0; skirt < skirts; ++skirt) {
        const double t = static_cast<double>(skirt) / (skirts - 1);
        std::vector<Lock> locks;
        for (int i = 0; i < stations; ++i) {
            const double angle = pi * i / (stations - 1);
            V3 out = up * std::cos(angle) + V3{1, 0, 0} * std::sin(angle);
            out.x = i == 0 || i == stations - 1 ? 0 : out.x;
            const V3 root = end + along * (0.075 * t - 0.03) + out * (0.026 - 0.012 * t);
            const V3 flow = along + out * (0.45 - 0.4 * t);
            locks.push_back({root, root + flow * (0.085 + 0.035 * t), angle * 0.45 + 0.23 * skirt});
        }
        AddStrip(locks, V3{0, 0.012, 0.006}, TailEnd, skeleton, &mane);
    }
    return mane;
}
