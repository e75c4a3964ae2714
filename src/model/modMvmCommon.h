#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "app/modMvmDef.h"

// The lines that make up nearly all of a large model, read in one pass over their characters and without a look at the
// scene, so that any thread can read any stretch of a file ahead of its turn.

/// Readable bytes that ReadCommonLines needs behind its text; the first of them is a CR.
inline constexpr size_t commonPadding = 128;

/// The first CR from `at` on, or `end`.
inline const char* FindLineEnd(const char* at, const char* end)
{
    const void* const found = std::memchr(at, '\r', static_cast<size_t>(end - at));
    return found != nullptr ? static_cast<const char*>(found) : end;
}

/// The start of the line behind a line end, which is CR LF, a lone CR or `end`.
inline const char* BehindLine(const char* lineEnd, const char* end)
{
    if (lineEnd == end) {
        return end;
    }
    return end - lineEnd > 1 && lineEnd[1] == '\n' ? lineEnd + 2 : lineEnd + 1;
}

/// How many entries of each kind.
struct CommonCounts {
    size_t Vertices = 0;
    size_t Normals = 0;
    size_t TexCoords = 0;
    size_t Faces = 0;
};

/// Common lines in a row. Start and End are places in the text: of its first line, and behind the end of its last one.
/// Its entries are those from First up to the First of the next run.
struct CommonRun {
    size_t Start = 0;
    size_t End = 0;
    int64_t Lines = 0;
    CommonCounts First;
};

/// What the common lines of a text hold, as if all stood in one skin: every vertex with its joint number, 0 for none, and
/// faces with the material number of their line.
struct CommonLines {
    std::vector<Vec3> Vertices;
    std::vector<int16_t> Joints;
    std::vector<Vec3> Normals;
    std::vector<Vec2> TexCoords;
    std::vector<MvmFace> Faces;
    std::vector<CommonRun> Runs; ///< in the order of the text
};

/// Finds the v, t, n and f lines of the shape that writers of models use. Lines end at CR LF, at a lone CR or with the
/// text. A line that is taken reads under the general rules as it does here and holds no brace; any other line, also one
/// that must fail, is left out. Of a text with few such lines the rest is left out too. Replaces what *lines held.
void ReadCommonLines(const char* text, size_t size, CommonLines* lines);

/// Adds the entries of run `index` to a mesh, as reading its lines one by one would.
void AddCommonRun(const CommonLines& lines, size_t index, MvmMesh* mesh);
