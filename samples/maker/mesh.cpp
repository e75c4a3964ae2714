#include "mesh.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <numeric>
#include <utility>

namespace {

constexpr size_t formatLimit = 32767;

void Expect(bool holds, const std::string& what, const Mesh& mesh)
{
    if (!holds) {
        Fail("mesh " + mesh.name + ": " + what);
    }
}

V3 Reflected(V3 a)
{
    return {a.x == 0 ? 0 : -a.x, a.y, a.z};
}

// Each edge of a closed surface is walked once in each direction.
void CheckClosed(const Mesh& mesh, int open)
{
    std::map<std::pair<int, int>, int> walked;
    for (const Face& face : mesh.f) {
        for (size_t k = 0; face.material != open && k < 3; ++k) {
            ++walked[{face.v[k], face.v[(k + 1) % 3]}];
        }
    }
    for (const auto& [edge, times] : walked) {
        const auto back = walked.find({edge.second, edge.first});
        const V3 at = mesh.v[static_cast<size_t>(edge.first)];
        const std::string where =
            " at " + std::to_string(at.x) + " " + std::to_string(at.y) + " " + std::to_string(at.z);
        Expect(times == 1, "an edge belongs to more than two faces" + where, mesh);
        Expect(back != walked.end() && back->second == 1, "an edge has one face only" + where, mesh);
    }
}

void CheckSymmetric(const Mesh& mesh)
{
    std::map<std::array<double, 3>, int> places;
    for (const V3& at : mesh.v) {
        ++places[{at.x, at.y, at.z}];
    }
    for (const V3& at : mesh.v) {
        const V3 twin = Reflected(at);
        Expect(places[{at.x, at.y, at.z}] == 1, "two vertices share a place", mesh);
        Expect(places.count({twin.x, twin.y, twin.z}) == 1, "a vertex has no twin", mesh);
    }
}

/// For each vertex a number that it shares with those that hang together with it over edges where `holds` says so.
template <typename Holds>
std::vector<int> Joined(const Mesh& mesh, const Holds& holds)
{
    std::vector<int> roots(mesh.v.size());
    std::iota(roots.begin(), roots.end(), 0);
    const auto rootOf = [&roots](int vertex) {
        while (roots[static_cast<size_t>(vertex)] != vertex) {
            vertex = roots[static_cast<size_t>(vertex)] =
                roots[static_cast<size_t>(roots[static_cast<size_t>(vertex)])];
        }
        return vertex;
    };
    for (const Face& face : mesh.f) {
        for (size_t k = 0; k < 3; ++k) {
            const int a = face.v[k];
            const int b = face.v[(k + 1) % 3];
            if (holds(a, b)) {
                roots[static_cast<size_t>(rootOf(a))] = rootOf(b);
            }
        }
    }
    std::vector<int> result(roots.size());
    for (size_t i = 0; i < roots.size(); ++i) {
        result[i] = rootOf(static_cast<int>(i));
    }
    return result;
}

std::vector<int> ShellsOf(const Mesh& mesh)
{
    return Joined(mesh, [](int, int) { return true; });
}

bool IsClose(V3 a, V3 b, double tolerance)
{
    return std::max({std::fabs(a.x - b.x), std::fabs(a.y - b.y), std::fabs(a.z - b.z)}) < tolerance;
}

/// `a`, moved away from `b` along the axis on which they are furthest apart until they are not close.
V3 Beside(V3 a, V3 b, double tolerance)
{
    const V3 apart = a - b;
    const double far = std::max({std::fabs(apart.x), std::fabs(apart.y), std::fabs(apart.z)});
    const auto moved = [&](double at, double away) {
        return at + (away < 0 ? -1 : 1) * (tolerance * 1.01 - std::fabs(away));
    };
    if (std::fabs(apart.x) == far) {
        return {moved(a.x, apart.x), a.y, a.z};
    }
    return std::fabs(apart.y) == far ? V3{a.x, moved(a.y, apart.y), a.z} : V3{a.x, a.y, moved(a.z, apart.z)};
}

} // namespace

void Fail(const std::string& message)
{
    std::fprintf(stderr, "vorrel_maker: %s\n", message.c_str());
    std::exit(1);
}

double Rounded(double value)
{
    const double steps = std::nearbyint(value * 1e5);
    return std::fabs(steps) < 100 ? 0 : steps / 1e5;
}

void RoundMesh(Mesh* mesh)
{
    for (std::vector<V3>* list : {&mesh->v, &mesh->n}) {
        for (V3& a : *list) {
            a = {Rounded(a.x), Rounded(a.y), Rounded(a.z)};
        }
    }
    for (V2& a : mesh->t) {
        a = {Rounded(a.u), Rounded(a.v)};
    }
}

void Append(const Mesh& part, Mesh* mesh)
{
    const int v = static_cast<int>(mesh->v.size());
    const int t = static_cast<int>(mesh->t.size());
    const int n = static_cast<int>(mesh->n.size());
    mesh->v.insert(mesh->v.end(), part.v.begin(), part.v.end());
    mesh->t.insert(mesh->t.end(), part.t.begin(), part.t.end());
    mesh->n.insert(mesh->n.end(), part.n.begin(), part.n.end());
    mesh->bone.insert(mesh->bone.end(), part.bone.begin(), part.bone.end());
    for (Face face : part.f) {
        for (size_t k = 0; k < 3; ++k) {
            face.v[k] += v;
            face.t[k] += t;
            face.n[k] += n;
        }
        mesh->f.push_back(face);
    }
}

void SmoothNormals(Mesh* mesh)
{
    mesh->n.assign(mesh->v.size(), V3{});
    for (Face& face : mesh->f) {
        const auto at = [&](size_t k) { return mesh->v[static_cast<size_t>(face.v[k])]; };
        const V3 across = Cross(at(1) - at(0), at(2) - at(0));
        for (const int v : face.v) {
            mesh->n[static_cast<size_t>(v)] = mesh->n[static_cast<size_t>(v)] + across;
        }
        face.n = face.v;
    }
    const bool isFlat = std::all_of(mesh->v.begin(), mesh->v.end(), [](V3 at) { return at.x == 0; });
    for (size_t i = 0; i < mesh->n.size(); ++i) {
        // The image of a half adds the opposite slope on the middle plane.
        const V3 n = mesh->n[i];
        mesh->n[i] = Unit({mesh->v[i].x == 0 && !isFlat ? 0 : n.x, n.y, n.z});
    }
}

void MirrorHalf(const Skeleton& skeleton, Mesh* mesh)
{
    const auto reflect = [](std::vector<V3>* list) {
        std::vector<int> twin;
        const size_t count = list->size();
        for (size_t i = 0; i < count; ++i) {
            const V3 a = (*list)[i];
            twin.push_back(static_cast<int>(a.x == 0 ? i : list->size()));
            if (a.x != 0) {
                list->push_back(Reflected(a));
            }
        }
        return twin;
    };
    const std::vector<int> vertexTwin = reflect(&mesh->v);
    const std::vector<int> normalTwin = reflect(&mesh->n);
    mesh->bone.resize(mesh->v.size(), -1);
    for (size_t i = 0; i < vertexTwin.size(); ++i) {
        const int bone = mesh->bone[i];
        mesh->bone[static_cast<size_t>(vertexTwin[i])] = bone < 0 ? -1 : skeleton[static_cast<size_t>(bone)].partner;
    }
    const size_t count = mesh->f.size();
    for (size_t i = 0; i < count; ++i) {
        const Face face = mesh->f[i];
        Face image = face;
        for (size_t k = 0; k < 3; ++k) {
            image.v[k] = vertexTwin[static_cast<size_t>(face.v[2 - k])];
            image.n[k] = normalTwin[static_cast<size_t>(face.n[2 - k])];
            image.t[k] = face.t[2 - k];
        }
        mesh->f.push_back(image);
    }
}

bool PartClose(double tolerance, bool inShell, int still, Mesh* mesh)
{
    constexpr int rounds = 100;
    const std::vector<int> shells = ShellsOf(*mesh);
    std::map<int, int> sizes;
    for (const int shell : shells) {
        ++sizes[shell];
    }
    for (const Face& face : mesh->f) {
        if (face.material == still) {
            sizes[shells[static_cast<size_t>(face.v[0])]] = static_cast<int>(formatLimit);
        }
    }
    bool changed = false;
    bool moved = true;
    for (int round = 0; moved && round < rounds; ++round) {
        moved = false;
        for (size_t i = 0; i < mesh->v.size(); ++i) {
            for (size_t j = i + 1; j < mesh->v.size(); ++j) {
                const bool differ = mesh->bone[i] != mesh->bone[j] && (inShell || shells[i] != shells[j]);
                if (differ && mesh->v[i].x > 0 && mesh->v[j].x > 0 && IsClose(mesh->v[i], mesh->v[j], tolerance)) {
                    const bool first = sizes[shells[i]] <= sizes[shells[j]];
                    V3& gives = mesh->v[first ? i : j];
                    gives =
                        Beside(gives, mesh->v[first ? j : i], tolerance * (1 + 0.05 * round)); // out of a tight place
                    moved = changed = true;
                }
            }
        }
    }
    return changed;
}

bool SettlePieces(Mesh* mesh)
{
    constexpr size_t smallPart = 8; // of the largest piece of its bone, and of its shell
    const std::vector<int> shells = ShellsOf(*mesh);
    const std::vector<int> pieces = Joined(
        *mesh, [&](int a, int b) { return mesh->bone[static_cast<size_t>(a)] == mesh->bone[static_cast<size_t>(b)]; });
    std::map<int, std::vector<size_t>> byPiece;
    for (size_t i = 0; i < pieces.size(); ++i) {
        byPiece[pieces[i]].push_back(i);
    }
    std::map<int, size_t> largest; // by bone
    std::map<int, size_t> shellSizes;
    for (const auto& [piece, vertices] : byPiece) {
        size_t& size = largest[mesh->bone[vertices.front()]];
        size = std::max(size, vertices.size());
        shellSizes[shells[vertices.front()]] += vertices.size();
    }
    std::map<int, std::map<int, int>> beside; // bones beside a piece, by piece
    for (const Face& face : mesh->f) {
        for (size_t k = 0; k < 3; ++k) {
            const auto a = static_cast<size_t>(face.v[k]);
            const auto b = static_cast<size_t>(face.v[(k + 1) % 3]);
            if (mesh->bone[a] != mesh->bone[b]) {
                ++beside[pieces[a]][mesh->bone[b]];
                ++beside[pieces[b]][mesh->bone[a]];
            }
        }
    }
    bool changed = false;
    const std::vector<int> before = mesh->bone;
    for (const auto& [piece, vertices] : byPiece) {
        const int shell = shells[vertices.front()];
        const bool isIsland = vertices.size() * smallPart < largest[before[vertices.front()]];
        const bool isSmall = vertices.size() * smallPart < shellSizes[shell];
        if (beside[piece].empty() || !isSmall || (!isIsland && vertices.size() > 2)) {
            continue;
        }
        const auto most = std::max_element(beside[piece].begin(), beside[piece].end(),
                                           [](const auto& a, const auto& b) { return a.second < b.second; });
        for (const size_t i : vertices) {
            mesh->bone[i] = most->first;
        }
        changed = true;
    }
    return changed;
}

bool SettleClose(double tolerance, Mesh* mesh)
{
    const std::vector<int> before = mesh->bone;
    for (size_t i = mesh->v.size(); i-- > 0;) {
        for (size_t last = mesh->v.size() - 1; last > i && mesh->v[i].x > 0; --last) {
            if (mesh->v[last].x > 0 && IsClose(mesh->v[i], mesh->v[last], tolerance)) {
                mesh->bone[i] = mesh->bone[last];
                break;
            }
        }
    }
    return mesh->bone != before;
}

void CheckMesh(const Mesh& mesh, int open)
{
    Expect(mesh.v.size() < formatLimit && mesh.t.size() < formatLimit && mesh.n.size() < formatLimit &&
               mesh.f.size() < formatLimit,
           "an array is too long", mesh);
    CheckClosed(mesh, open);
    CheckSymmetric(mesh);
    for (const Face& face : mesh.f) {
        const V3 a = mesh.v[static_cast<size_t>(face.v[0])];
        const V3 across = Cross(mesh.v[static_cast<size_t>(face.v[1])] - a, mesh.v[static_cast<size_t>(face.v[2])] - a);
        Expect(Length(across) > 0, "a face has no area", mesh);
    }
}
