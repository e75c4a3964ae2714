#pragma once

#include <array>
#include <string>
#include <vector>

#include "body.h"
#include "vec.h"

/// A triangle, counter-clockwise from outside; numbers count from 0.
struct Face {
    std::array<int, 3> v{}, t{}, n{};
    int material = 0;
};

struct Mesh {
    std::string name;
    bool skin = false;
    std::vector<std::string> materials;
    std::vector<V3> v, n;
    std::vector<V2> t;
    std::vector<Face> f;
    std::vector<int> bone; ///< index into the skeleton for each vertex, -1 for none; for skins only
};

/// Rounds to the steps that a file holds; values next to 0 become 0, so that no text needs an exponent.
double Rounded(double value);
/// Rounds all arrays of a mesh.
void RoundMesh(Mesh* mesh);

/// Adds `part` (one material number for all its faces) to `mesh`.
void Append(const Mesh& part, Mesh* mesh);

/// Gives a half one normal for each vertex, from the faces around it.
void SmoothNormals(Mesh* mesh);

/// Completes a half with X >= 0: every vertex off the plane gets a twin, every face its reversed image, and a twin gets
/// the partner bone of its original.
void MirrorHalf(const Skeleton& skeleton, Mesh* mesh);

/// Of the vertices of a half that lie so close together that mirroring cannot tell them apart, the last has its way:
/// the others get its bone.
/// True when that changed anything.
bool SettleClose(double tolerance, Mesh* mesh);

/// Moves close vertices of different bones apart until mirroring can tell them from each other: those of different
/// shells (an ear on the head), the smaller one's away from the larger one's, and with `inShell` also those of one
/// shell. Shells of the material `still` stay as they are. True when that changed anything.
bool PartClose(double tolerance, bool inShell, int still, Mesh* mesh);

/// Small pieces of a bone's vertices, apart from the rest of it in one shell, go over to the bone beside them. True
/// when that changed anything.
bool SettlePieces(Mesh* mesh);

/// Stops the program with a message unless the faces of all materials but `open` form closed, consistently wound
/// shells, the mesh is exactly symmetric, and every array fits the format.
void CheckMesh(const Mesh& mesh, int open);

/// Ends the program with a message.
[[noreturn]] void Fail(const std::string& message);
