#include "paint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace {

constexpr double pi = std::numbers::pi;
constexpr int maneSize = 128;

double Hash(int x, int y, int z)
{
    uint32_t h = static_cast<uint32_t>(x) * 374761393U + static_cast<uint32_t>(y) * 668265263U +
                 static_cast<uint32_t>(z) * 2246822519U;
    h = (h ^ (h >> 13)) * 1274126177U;
    h ^= h >> 16;
    return static_cast<double>(h & 0xFFFFU) / 65535.0;
}

// Smooth noise from 0 to 1 with features of size 1.
double Noise(V3 p)
{
    const V3 cell{std::floor(p.x), std::floor(p.y), std::floor(p.z)};
    const V3 f = p - cell;
    const V3 s{Step(0, 1, f.x), Step(0, 1, f.y), Step(0, 1, f.z)};
    double sum = 0;
    for (int corner = 0; corner < 8; ++corner) {
        const int x = corner & 1;
        const int y = (corner >> 1) & 1;
        const int z = corner >> 2;
        const double weight = (x != 0 ? s.x : 1 - s.x) * (y != 0 ? s.y : 1 - s.y) * (z != 0 ? s.z : 1 - s.z);
        sum += weight * Hash(static_cast<int>(cell.x) + x, static_cast<int>(cell.y) + y, static_cast<int>(cell.z) + z);
    }
    return sum;
}

double Layers(V3 p)
{
    return 0.55 * Noise(p) + 0.3 * Noise(p * 2.1) + 0.15 * Noise(p * 4.3);
}

constexpr V3 tawny{206, 132, 66};
constexpr V3 rust{168, 84, 38};
constexpr V3 umber{62, 36, 28};
constexpr V3 cream{246, 226, 188};
constexpr V3 nose{34, 24, 26};

// A place on the hide: where it is, which way it faces, and its place along and around its part.
struct Spot {
    V3 at, normal;
    V3 head;                           // seen from the joint of the head
    V2 raw;                            // its place within its part of the picture
    std::array<V2, earChart> places{}; // along and around each part, whichever it belongs to
    double arm = 0, leg = 0;           // how much of it belongs to the legs
    Chart chart;
};

// Bands across a part, torn by noise; 1 in the middle of a band.
double Bands(double way, double count, double width, V3 at)
{
    const double torn = way * count + 0.9 * (Layers(at * 9) - 0.5) + 0.35 * (Noise(at * 27) - 0.5);
    return Step(1 - width, 1 - width * 0.55, 0.5 + 0.5 * std::cos(2 * pi * torn));
}

// The ground colours of the trunk: dark above, pale below. Limbs begin with them.
V3 TrunkGround(const Spot& spot, V3 colour)
{
    const double above = 1 - spot.places[trunkChart].v;
    colour = Mix(colour, rust, 0.75 * Step(0.5, 0.95, above));
    return Mix(colour, cream, spot.at.z > 0.45 ? 0 : Step(0.42, 0.18, above + 0.08 * (Layers(spot.at * 12) - 0.5)));
}

V3 TrunkColour(const Spot& spot, V3 colour)
{
    const double above = 1 - spot.places[trunkChart].v;
    const bool isTail = spot.at.z > 0.45;
    const double width = isTail ? 0.55 : 0.34 * Step(0.3, 0.75, above) + 0.06;
    const double fade = isTail ? 1 : Step(0.36, 0.56, above) * Step(0.038, 0.148, spot.head.z - 0.2 * spot.head.y);
    return Mix(TrunkGround(spot, colour), umber,
               0.92 * fade * Bands(spot.places[trunkChart].u, isTail ? 13 : 10.5, width, spot.at));
}

V3 HeadColour(const Spot& spot, V3 colour, const Skeleton& skeleton)
{
    const V3 eye = skeleton[static_cast<size_t>(FindBone(skeleton, "EyeR"))].at;
    const V3 d = spot.head;
    const double above = 1 - spot.places[headChart].v;
    colour = Mix(colour, rust, 0.6 * Step(0.6, 0.95, above));
    // Pale cheeks, throat and muzzle; a dark line from the eye; a blaze down the snout.
    colour = Mix(colour, cream, Step(0.5, 0.36, above + 0.1 * (Layers(spot.at * 16) - 0.5)));
    colour = Mix(colour, cream, 0.85 * Step(-0.135, -0.17, d.z) * Step(0.9, 0.75, above));
    colour = Mix(colour, umber,
                 0.9 * Step(0.026, 0.008, d.x) * Step(-0.01, 0.02, d.y) * Step(-0.085, -0.06, d.z) *
                     Bands(d.z, 34, 0.6, spot.at));
    const V3 fromEye = spot.at - eye;
    const V3 tear{fromEye.x + 0.35 * fromEye.y, fromEye.y * 0.55, fromEye.z * 0.8};
    colour = Mix(colour, umber, 0.95 * Step(0.044, 0.03, Length(fromEye)));
    colour = Mix(colour, umber, 0.9 * (fromEye.y < 0 ? Step(0.026, 0.016, Length(tear)) : 0));
    // The lips bend up at their corner; the line thins out there, and the lower lip lies in its shadow.
    const double corner = Step(-0.13, -0.075, d.z);
    const double lips = d.y + 0.066 + 0.012 * Step(-0.1, -0.2, d.z) - 0.02 * corner;
    const double ends = Step(-0.07, -0.085, d.z);
    colour = Mix(colour, umber, 0.55 * ends * Step(-0.026, -0.002, lips) * Step(0.004, -0.002, lips));
    colour = Mix(colour, nose, 0.95 * ends * Step(0.006 - 0.003 * corner, 0.0025 - 0.0015 * corner, std::fabs(lips)));
    const bool isLip = lips > 0 && d.y < -0.03 && d.z < -0.2;
    colour = Mix(colour, nose, isLip ? Step(0.006, 0.003, d.x) : 0);
    const V3 tip = d - V3{0, -0.024, -0.24};
    colour = Mix(colour, nose, Step(0.033, 0.026, Length({tip.x * 0.8, tip.y, tip.z})));
    return colour;
}

// The banded part of a leg begins below `top`.
V3 LegColour(const Spot& spot, V2 place, V3 colour, double top)
{
    const double outside = 1 - place.v;
    const V3 ground = TrunkGround(spot, colour);
    colour = Mix(colour, cream, 0.8 * Step(0.42, 0.2, outside) * Step(-0.23, -0.13, spot.at.y));
    colour = Mix(colour, ground, Step(top - 0.12, top, spot.at.y));
    const double bands = Bands(place.u, 14, 0.36, spot.at) * Step(0.3, 0.6, outside);
    colour = Mix(colour, umber, 0.9 * bands * Step(top, top - 0.07, spot.at.y));
    return Mix(colour, umber, Step(-0.17, -0.25, spot.at.y + 0.06 * (Layers(spot.at * 30) - 0.5)));
}

V3 EarColour(const Spot& spot, V3 colour)
{
    const V3 inner = Mix(V3{226, 160, 138}, cream, Step(0.35, 0.48, spot.raw.v));
    colour = Mix(colour, rust, 0.6);
    colour = Mix(inner, colour, Step(0.47, 0.54, spot.raw.v));
    return Mix(colour, umber, Step(0.7, 0.88, spot.raw.u + 0.1 * (Layers(spot.at * 40) - 0.5)));
}

V3 HideColour(const Spot& spot, const Skeleton& skeleton)
{
    const V3 ground = Mix(tawny, rust, 0.35 * Layers(spot.at * 6));
    V3 colour;
    if (spot.chart == earChart) {
        colour = EarColour(spot, ground);
    } else {
        colour = Mix(HeadColour(spot, ground, skeleton), TrunkColour(spot, ground),
                     Step(-0.02, 0.045, spot.head.z + 0.3 * spot.head.y));
        colour = Mix(colour, LegColour(spot, spot.places[armChart], ground, 0.0), spot.arm);
        colour = Mix(colour, LegColour(spot, spot.places[legChart], ground, 0.13), spot.leg);
    }
    // Short hair: fine strokes along the body.
    const V3 hair{spot.at.x * 130, spot.at.y * 130, spot.at.z * 50};
    return colour * (0.9 + 0.1 * (Noise(hair) + Noise(hair * 2.3)));
}

// Fills pixels next to painted ones, so that filters find no bare ground beside a part.
void Spread(Picture* picture, std::vector<char>* painted)
{
    for (int round = 0; round < 12; ++round) {
        const std::vector<char> before = *painted;
        for (int y = 0; y < picture->height; ++y) {
            for (int x = 0; x < picture->width; ++x) {
                const auto index = [&](int i, int j) { return static_cast<size_t>(j * picture->width + i); };
                V3 sum;
                int count = 0;
                for (int j = std::max(0, y - 1); j <= std::min(picture->height - 1, y + 1); ++j) {
                    for (int i = std::max(0, x - 1); i <= std::min(picture->width - 1, x + 1); ++i) {
                        sum = before[index(i, j)] != 0 ? sum + picture->At(i, j) : sum;
                        count += before[index(i, j)];
                    }
                }
                if (before[index(x, y)] == 0 && count > 0) {
                    picture->At(x, y) = sum * (1.0 / count);
                    (*painted)[index(x, y)] = 1;
                }
            }
        }
    }
}

} // namespace

Picture PaintHide(const Mesh& half, const Unwrapping& unwrapping, const Skeleton& skeleton)
{
    Picture picture(hideWidth, hideHeight);
    std::fill(picture.pixels.begin(), picture.pixels.end(), tawny);
    std::vector<char> painted(picture.pixels.size());
    const V3 head = skeleton[static_cast<size_t>(FindBone(skeleton, "Head"))].at;
    const std::vector<std::array<V2, earChart>> places = PlacesAround(skeleton, half.v);
    const Body body = MakeBody(skeleton);
    std::array<Body, earChart> parts;
    for (size_t chart = 0; chart < parts.size(); ++chart) {
        parts[chart] = PartOf(body, [&](int bone) { return static_cast<size_t>(ChartOf(skeleton, bone)) == chart; });
    }
    // How much of each vertex belongs to a part, going by its distances to the part and to the trunk.
    const auto shares = [&](Chart chart) {
        std::vector<double> share;
        for (const V3& at : half.v) {
            share.push_back(Step(0.03, -0.03, Distance(parts[chart], at) - Distance(parts[trunkChart], at)));
        }
        return share;
    };
    const std::vector<double> arm = shares(armChart);
    const std::vector<double> leg = shares(legChart);
    for (size_t f = 0; f < unwrapping.chart.size(); ++f) {
        const Face& face = half.f[f];
        std::array<V2, 3> c;
        for (size_t k = 0; k < 3; ++k) {
            const V2 t = half.t[static_cast<size_t>(face.t[k])];
            c[k] = {t.u * hideWidth - 0.5, t.v * hideHeight - 0.5};
        }
        const double area = (c[1].u - c[0].u) * (c[2].v - c[0].v) - (c[2].u - c[0].u) * (c[1].v - c[0].v);
        if (std::fabs(area) < 1e-9) {
            continue;
        }
        const int left = static_cast<int>(std::floor(std::min({c[0].u, c[1].u, c[2].u})));
        const int right = static_cast<int>(std::ceil(std::max({c[0].u, c[1].u, c[2].u})));
        const int bottom = static_cast<int>(std::floor(std::min({c[0].v, c[1].v, c[2].v})));
        const int top = static_cast<int>(std::ceil(std::max({c[0].v, c[1].v, c[2].v})));
        for (int y = std::max(0, bottom); y <= std::min(hideHeight - 1, top); ++y) {
            for (int x = std::max(0, left); x <= std::min(hideWidth - 1, right); ++x) {
                std::array<double, 3> w{};
                for (size_t k = 0; k < 3; ++k) {
                    const V2 a = c[(k + 1) % 3];
                    const V2 b = c[(k + 2) % 3];
                    w[k] = ((a.u - x) * (b.v - y) - (b.u - x) * (a.v - y)) / area;
                }
                if (std::min({w[0], w[1], w[2]}) < -1e-6) {
                    continue;
                }
                Spot spot;
                spot.chart = unwrapping.chart[f];
                for (size_t k = 0; k < 3; ++k) {
                    const V2 raw = unwrapping.raw[static_cast<size_t>(face.t[k])];
                    spot.at = spot.at + half.v[static_cast<size_t>(face.v[k])] * w[k];
                    spot.normal = spot.normal + half.n[static_cast<size_t>(face.n[k])] * w[k];
                    spot.raw = {spot.raw.u + raw.u * w[k], spot.raw.v + raw.v * w[k]};
                    const auto v = static_cast<size_t>(face.v[k]);
                    spot.arm += arm[v] * w[k];
                    spot.leg += leg[v] * w[k];
                    for (size_t i = 0; i < spot.places.size(); ++i) {
                        spot.places[i].u += places[v][i].u * w[k];
                        spot.places[i].v += places[v][i].v * w[k];
                    }
                }
                spot.head = spot.at - head;
                picture.At(x, y) = HideColour(spot, skeleton);
                painted[static_cast<size_t>(y * hideWidth + x)] = 1;
            }
        }
    }
    Spread(&picture, &painted);
    return picture;
}

Picture PaintEye()
{
    Picture picture(64, 64);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const double u = (x - 31.5) / 32;
            const double v = (y - 31.5) / 32;
            const double r = std::sqrt(u * u + v * v);
            const double rays = Noise({std::atan2(v, u) * 9 + 30, r * 3, 1});
            V3 colour = Mix(V3{250, 214, 70}, V3{214, 112, 22}, Step(0.12, 0.42, r + 0.15 * (rays - 0.5)));
            colour = Mix(colour, V3{24, 16, 14}, Step(0.4, 0.47, r));
            colour = Mix(colour, V3{12, 8, 8}, Step(0.125, 0.085, std::fabs(u) + 0.16 * v * v * 4));
            const double shine = std::sqrt((u + 0.13) * (u + 0.13) + (v - 0.17) * (v - 0.17));
            picture.At(x, y) = Mix(colour, V3{255, 255, 255}, Step(0.1, 0.06, shine));
        }
    }
    return picture;
}

Picture PaintHorn()
{
    Picture picture(128, 32);
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 128; ++x) {
            const double t = x / 127.0;
            const double grooves = 0.5 + 0.5 * std::cos(2 * pi * 9.5 * t);
            V3 colour = Mix(V3{92, 72, 60}, V3{226, 206, 172}, Step(0, 0.6, t));
            colour = Mix(colour, V3{52, 38, 34}, Step(0.82, 0.98, t));
            picture.At(x, y) = colour * (0.74 + 0.2 * grooves + 0.12 * Noise({t * 20, y * 0.6, 5}));
        }
    }
    return picture;
}

Picture PaintMane()
{
    Picture picture(maneSize, maneSize);
    for (int y = 0; y < maneSize; ++y) {
        for (int x = 0; x < maneSize; ++x) {
            const double t = static_cast<double>(y) / (maneSize - 1);
            const double strand = 0.6 * Noise({x * 0.5, y * 0.025, 2}) + 0.4 * Noise({x * 1.3, y * 0.05, 4});
            V3 colour = Mix(V3{52, 28, 26}, V3{150, 50, 28}, Step(0.1, 0.7, t + 0.2 * (strand - 0.5)));
            colour = Mix(colour, V3{228, 134, 56}, 0.75 * Step(0.68, 1, t + 0.2 * (strand - 0.5)));
            picture.At(x, y) = colour * (0.68 + 0.5 * strand);
        }
    }
    return picture;
}

Picture PaintStrands()
{
    Picture picture(maneSize, maneSize);
    constexpr int locks = 30;
    for (int lock = 0; lock < locks; ++lock) {
        // Each lock is a blade that tapers to its own length and bends a little.
        const double root = (lock + 0.5) * maneSize / locks;
        const double reach = (maneSize - 1) * (0.74 + 0.26 * Hash(lock, 5, 1));
        const double bend = 10 + 12 * (Hash(lock, 9, 2) - 0.5);
        for (int y = 0; y < maneSize && y < reach; ++y) {
            const double t = y / reach;
            const double half = 4.6 * std::pow(1 - t, 0.6) + 0.3;
            const double centre = root + bend * t * t;
            for (int x = static_cast<int>(centre - half) - 1; x <= static_cast<int>(centre + half) + 1; ++x) {
                const double solid = std::clamp(half + 0.5 - std::fabs(x - centre), 0.0, 1.0) * 255;
                V3& pixel = picture.At((x + maneSize) % maneSize, y);
                pixel = solid > pixel.x ? V3{solid, solid, solid} : pixel;
            }
        }
    }
    return picture;
}
