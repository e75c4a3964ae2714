#include "surface.h"

#include <algorithm>
#include <array>
#include <map>

namespace {

// Planes from `low` to `high`, fine outside the range between.
std::vector<double> Planes(double low, double high, double step, double coarseLow, double coarseHigh, double fine)
{
    std::vector<double> planes{low};
    while (planes.back() < high) {
        const double at = planes.back();
        // The step changes gradually, so that no long thin faces arise where the ranges meet.
        const double coarse = Step(coarseLow, coarseLow + 0.08, at) * (1 - Step(coarseHigh - 0.08, coarseHigh, at));
        planes.push_back(at + fine + (step - fine) * coarse);
    }
    return planes;
}

// Samples of the field at the corners of the cells. Cell i in X lies between corners i and i + 1; the middle plane runs
// through the middle of the cells with i = 0.
struct Grid {
    std::vector<double> xs, ys, zs;
    std::vector<double> field;
    std::vector<int> vertex; ///< number of the cell's vertex, -1 for none

    [[nodiscard]] size_t At(size_t i, size_t j, size_t k) const { return (i * ys.size() + j) * zs.size() + k; }
};

Grid Sample(const Body& body, const GridSteps& steps)
{
    Grid grid;
    for (int i = 0; i * steps.x < 0.5; ++i) {
        grid.xs.push_back((i - 0.5) * steps.x);
    }
    grid.ys = Planes(-0.6, 0.6, steps.y, -0.28, 0.2, steps.fineY);
    grid.zs = Planes(-0.95, 1.05, steps.z, -0.46, 0.46, steps.fineZ);
    grid.field.resize(grid.xs.size() * grid.ys.size() * grid.zs.size());
    grid.vertex.assign(grid.field.size(), -1);
    for (size_t i = 0; i < grid.xs.size(); ++i) {
        for (size_t j = 0; j < grid.ys.size(); ++j) {
            for (size_t k = 0; k < grid.zs.size(); ++k) {
                grid.field[grid.At(i, j, k)] = Distance(body, {grid.xs[i], grid.ys[j], grid.zs[k]});
            }
        }
    }
    return grid;
}

// Where a face of a cell has its inside corners at opposite ends, four faces of the mesh would meet in one edge. There
// the corner next to the surface changes sides; the vertices are brought back to the true surface later.
void Untangle(Grid* grid)
{
    for (bool changed = true; changed;) {
        changed = false;
        for (size_t i = 1; i + 1 < grid->xs.size(); ++i) {
            for (size_t j = 0; j + 1 < grid->ys.size(); ++j) {
                for (size_t k = 0; k + 1 < grid->zs.size(); ++k) {
                    for (size_t axis = 0; axis < 3; ++axis) {
                        std::array<size_t, 3> one{i, j, k};
                        std::array<size_t, 3> two{i, j, k};
                        ++one[axis];
                        ++two[(axis + 1) % 3];
                        std::array<size_t, 3> far = one;
                        ++far[(axis + 1) % 3];
                        const std::array<double*, 4> corners{&grid->field[grid->At(i, j, k)],
                                                             &grid->field[grid->At(far[0], far[1], far[2])],
                                                             &grid->field[grid->At(one[0], one[1], one[2])],
                                                             &grid->field[grid->At(two[0], two[1], two[2])]};
                        const auto isIn = [&](size_t corner) { return *corners[corner] < 0; };
                        if (isIn(0) != isIn(1) || isIn(2) != isIn(3) || isIn(0) == isIn(2)) {
                            continue;
                        }
                        double* nearest =
                            *std::min_element(corners.begin(), corners.end(), [](const double* a, const double* b) {
                                return std::fabs(*a) < std::fabs(*b);
                            });
                        *nearest = *nearest < 0 ? 1e-6 : -1e-6;
                        changed = true;
                    }
                }
            }
        }
        const auto layer = static_cast<std::ptrdiff_t>(grid->At(1, 0, 0));
        std::copy(grid->field.begin() + layer, grid->field.begin() + 2 * layer, grid->field.begin());
    }
}

// The mean of the places where the field changes its sign along the cell's edges.
bool CellVertex(const Grid& grid, size_t i, size_t j, size_t k, V3* at)
{
    V3 sum;
    int crossings = 0;
    for (size_t axis = 0; axis < 3; ++axis) {
        for (size_t side = 0; side < 4; ++side) {
            std::array<size_t, 3> from{i, j, k};
            from[(axis + 1) % 3] += side & 1;
            from[(axis + 2) % 3] += side >> 1;
            std::array<size_t, 3> to = from;
            ++to[axis];
            const double a = grid.field[grid.At(from[0], from[1], from[2])];
            const double b = grid.field[grid.At(to[0], to[1], to[2])];
            if ((a < 0) != (b < 0)) {
                const V3 start{grid.xs[from[0]], grid.ys[from[1]], grid.zs[from[2]]};
                const V3 end{grid.xs[to[0]], grid.ys[to[1]], grid.zs[to[2]]};
                sum = sum + Mix(start, end, a / (a - b));
                ++crossings;
            }
        }
    }
    if (crossings > 0) {
        *at = sum * (1.0 / crossings);
    }
    return crossings > 0;
}

using Quad = std::array<int, 4>;

// A quad around each grid edge that the surface crosses, counter-clockwise from outside.
std::vector<Quad> Quads(const Grid& grid)
{
    std::vector<Quad> quads;
    for (size_t i = 0; i + 1 < grid.xs.size(); ++i) {
        for (size_t j = 1; j + 1 < grid.ys.size(); ++j) {
            for (size_t k = 1; k + 1 < grid.zs.size(); ++k) {
                const std::array<size_t, 3> here{i, j, k};
                for (size_t axis = 0; axis < 3; ++axis) {
                    // What lies on the other side of the middle plane is the image of this side.
                    if (i == 0) {
                        continue;
                    }
                    std::array<size_t, 3> to = here;
                    ++to[axis];
                    const double a = grid.field[grid.At(i, j, k)];
                    const double b = grid.field[grid.At(to[0], to[1], to[2])];
                    if ((a < 0) == (b < 0)) {
                        continue;
                    }
                    Quad quad{};
                    for (size_t corner = 0; corner < 4; ++corner) {
                        std::array<size_t, 3> cell = here;
                        cell[(axis + 1) % 3] -= corner == 0 || corner == 3 ? 1 : 0;
                        cell[(axis + 2) % 3] -= corner < 2 ? 1 : 0;
                        quad[corner] = grid.vertex[grid.At(cell[0], cell[1], cell[2])];
                    }
                    if (a >= 0) {
                        std::swap(quad[1], quad[3]);
                    }
                    quads.push_back(quad);
                }
            }
        }
    }
    return quads;
}

// Evens out the distances between neighbours without leaving the surface.
void Relax(const Body& body, const std::vector<Quad>& quads, std::vector<V3>* vertices)
{
    for (int round = 0; round < 8; ++round) {
        std::vector<V3> sum(vertices->size());
        std::vector<int> count(vertices->size());
        for (const Quad& quad : quads) {
            for (size_t k = 0; k < 4; ++k) {
                for (const size_t other : {(k + 1) % 4, (k + 3) % 4}) {
                    sum[static_cast<size_t>(quad[k])] =
                        sum[static_cast<size_t>(quad[k])] + (*vertices)[static_cast<size_t>(quad[other])];
                    ++count[static_cast<size_t>(quad[k])];
                }
            }
        }
        for (size_t i = 0; i < vertices->size(); ++i) {
            V3& at = (*vertices)[i];
            const bool isMiddle = at.x == 0;
            const V3 n = Unit(Gradient(body, at));
            V3 move = sum[i] * (1.0 / count[i]) - at;
            move = move - n * Dot(move, n);
            at = at + move * 0.5;
            at.x = isMiddle ? 0 : at.x;
            at = OnSurface(body, at);
        }
    }
}

// Vertices cut off from the rest of their bone go over to the bone around them.
void JoinIslands(const std::vector<Quad>& quads, std::vector<int>* bones)
{
    std::vector<std::vector<size_t>> next(bones->size());
    for (const Quad& quad : quads) {
        for (size_t k = 0; k < 4; ++k) {
            next[static_cast<size_t>(quad[k])].push_back(static_cast<size_t>(quad[(k + 1) % 4]));
            next[static_cast<size_t>(quad[(k + 1) % 4])].push_back(static_cast<size_t>(quad[k]));
        }
    }
    std::map<int, std::vector<size_t>> mainlands;
    std::vector<char> isSeen(bones->size());
    for (size_t i = 0; i < bones->size(); ++i) {
        std::vector<size_t> island;
        if (isSeen[i] == 0) {
            isSeen[i] = 1;
            island.push_back(i);
        }
        for (size_t k = 0; k < island.size(); ++k) {
            for (const size_t other : next[island[k]]) {
                if (isSeen[other] == 0 && (*bones)[other] == (*bones)[i]) {
                    isSeen[other] = 1;
                    island.push_back(other);
                }
            }
        }
        std::vector<size_t>& mainland = mainlands[(*bones)[i]];
        mainland = island.size() > mainland.size() ? island : mainland;
    }
    std::vector<char> isSettled(bones->size());
    std::vector<size_t> settled;
    for (const auto& [bone, mainland] : mainlands) {
        settled.insert(settled.end(), mainland.begin(), mainland.end());
    }
    for (const size_t i : settled) {
        isSettled[i] = 1;
    }
    for (size_t k = 0; k < settled.size(); ++k) {
        for (const size_t other : next[settled[k]]) {
            if (isSettled[other] == 0) {
                isSettled[other] = 1;
                (*bones)[other] = (*bones)[settled[k]];
                settled.push_back(other);
            }
        }
    }
}

} // namespace

Mesh HalfSurface(const Body& body, const Skeleton& skeleton, const GridSteps& steps)
{
    Grid grid = Sample(body, steps);
    Untangle(&grid);
    Mesh mesh;
    for (size_t i = 0; i + 1 < grid.xs.size(); ++i) {
        for (size_t j = 0; j + 1 < grid.ys.size(); ++j) {
            for (size_t k = 0; k + 1 < grid.zs.size(); ++k) {
                V3 at;
                if (CellVertex(grid, i, j, k, &at)) {
                    at.x = i == 0 ? 0 : at.x;
                    grid.vertex[grid.At(i, j, k)] = static_cast<int>(mesh.v.size());
                    mesh.v.push_back(at);
                }
            }
        }
    }
    const std::vector<Quad> quads = Quads(grid);
    Relax(body, quads, &mesh.v);
    for (V3& at : mesh.v) {
        // A vertex off the plane must stay off it when it is rounded.
        at.x = at.x == 0 ? 0 : std::max(at.x, 0.0015);
        mesh.n.push_back(Unit(Gradient(body, at)));
        mesh.bone.push_back(NearestBone(body, skeleton, at));
    }
    JoinIslands(quads, &mesh.bone);
    const auto at = [&](int v) { return mesh.v[static_cast<size_t>(v)]; };
    // How well the two halves of a quad follow the surface when it is cut from corner `turn`.
    const auto fit = [&](const Quad& quad, size_t turn) {
        double worst = 1;
        for (const size_t first : {turn, turn + 2}) {
            const V3 corner = at(quad[first % 4]);
            const V3 out = Unit(Cross(at(quad[(first + 1) % 4]) - corner, at(quad[(first + 2) % 4]) - corner));
            V3 sum;
            for (size_t k = 0; k < 3; ++k) {
                sum = sum + mesh.n[static_cast<size_t>(quad[(first + k) % 4])];
            }
            worst = std::min(worst, Dot(out, sum));
        }
        return worst;
    };
    for (const Quad& quad : quads) {
        size_t turn = Length(at(quad[0]) - at(quad[2])) <= Length(at(quad[1]) - at(quad[3])) ? 0 : 1;
        turn = fit(quad, turn) < 0.5 && fit(quad, 1 - turn) > fit(quad, turn) ? 1 - turn : turn;
        for (const size_t first : {turn, turn + 2}) {
            Face face;
            for (size_t k = 0; k < 3; ++k) {
                face.v[k] = quad[(first + k) % 4];
            }
            face.n = face.v;
            mesh.f.push_back(face);
        }
    }
    return mesh;
}
