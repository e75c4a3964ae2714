#include "render/modLabels.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "interaction/modCamera.h"
#include "render/modOpenGL.h"

namespace {

constexpr int glyphRows = 12; ///< nine above the baseline, three below it
constexpr int rowsAboveBaseline = 9;

/// A letter of the bold face in which the labels are set; rows from the top, "#" is ink. Rows may be left out.
struct Glyph {
    char Letter;
    std::array<std::string_view, glyphRows> Rows;
};

// clang-format off
constexpr Glyph glyphs[] = {
    {'B', {
        "#######.",
        "##....##",
        "##....##",
        "##....##",
        "#######.",
        "##....##",
        "##....##",
        "##....##",
        "#######."}},
    {'F', {
        "#######",
        "#######",
        "##.....",
        "##.....",
        "######.",
        "######.",
        "##.....",
        "##.....",
        "##....."}},
    {'L', {
        "##.....",
        "##.....",
        "##.....",
        "##.....",
        "##.....",
        "##.....",
        "##.....",
        "#######",
        "#######"}},
    {'O', {
        "..#####..",
        ".##...##.",
        "##.....##",
        "##.....##",
        "##.....##",
        "##.....##",
        "##.....##",
        ".##...##.",
        "..#####.."}},
    {'P', {
        "#######.",
        "##....##",
        "##....##",
        "##....##",
        "#######.",
        "##......",
        "##......",
        "##......",
        "##......"}},
    {'R', {
        "#######.",
        "##....##",
        "##....##",
        "##....##",
        "#######.",
        "##..##..",
        "##...##.",
        "##....##",
        "##....##"}},
    {'T', {
        "########",
        "########",
        "...##...",
        "...##...",
        "...##...",
        "...##...",
        "...##...",
        "...##...",
        "...##..."}},
    {'a', {
        "",
        "",
        ".#####.",
        "##...##",
        ".....##",
        ".######",
        "##...##",
        "##..###",
        ".###.##"}},
    {'c', {
        "",
        "",
        ".####.",
        "##..##",
        "##....",
        "##....",
        "##....",
        "##..##",
        ".####."}},
    {'e', {
        "",
        "",
        ".#####.",
        "##...##",
        "##...##",
        "#######",
        "##.....",
        "##...##",
        ".#####."}},
    {'f', {
        "..###",
        ".##..",
        "#####",
        ".##..",
        ".##..",
        ".##..",
        ".##..",
        ".##..",
        ".##.."}},
    {'g', {
        "",
        "",
        ".###.##",
        "##..###",
        "##...##",
        "##...##",
        "##...##",
        "##..###",
        ".###.##",
        ".....##",
        "##...##",
        ".#####."}},
    {'h', {
        "##.....",
        "##.....",
        "##.###.",
        "###..##",
        "##...##",
        "##...##",
        "##...##",
        "##...##",
        "##...##"}},
    {'i', {
        "##",
        "..",
        "##",
        "##",
        "##",
        "##",
        "##",
        "##",
        "##"}},
    {'k', {
        "##.....",
        "##.....",
        "##..##.",
        "##.##..",
        "####...",
        "#####..",
        "##.##..",
        "##..##.",
        "##...##"}},
    {'m', {
        "",
        "",
        "#####.###.",
        "##..##..##",
        "##..##..##",
        "##..##..##",
        "##..##..##",
        "##..##..##",
        "##..##..##"}},
    {'n', {
        "",
        "",
        "##.###.",
        "###..##",
        "##...##",
        "##...##",
        "##...##",
        "##...##",
        "##...##"}},
    {'o', {
        "",
        "",
        ".#####.",
        "##...##",
        "##...##",
        "##...##",
        "##...##",
        "##...##",
        ".#####."}},
    {'p', {
        "",
        "",
        "##.###.",
        "###..##",
        "##...##",
        "##...##",
        "##...##",
        "###..##",
        "##.###.",
        "##.....",
        "##.....",
        "##....."}},
    {'r', {
        "",
        "",
        "##.##",
        "#####",
        "##...",
        "##...",
        "##...",
        "##...",
        "##..."}},
    {'s', {
        "",
        "",
        ".####.",
        "##..##",
        "##....",
        ".####.",
        "....##",
        "##..##",
        ".####."}},
    {'t', {
        ".##.",
        ".##.",
        "####",
        ".##.",
        ".##.",
        ".##.",
        ".##.",
        ".##.",
        "..##"}},
    {'v', {
        "",
        "",
        "##...##",
        "##...##",
        ".##.##.",
        ".##.##.",
        ".##.##.",
        "..###..",
        "..###.."}},
};
// clang-format on

struct Label {
    std::string_view Word;
    int Baseline; ///< lowest row of the capitals, counted from the bottom
};

/// In the order of the images, which is from the last camera to the first.
constexpr std::array<Label, CameraCount> labels{{{"Bottom", 5},
                                                 {"Top", 5},
                                                 {"Right", 5},
                                                 {"Left", 4},
                                                 {"Back", 5},
                                                 {"Front", 5},
                                                 {"Ortho", 5},
                                                 {"Perspective", 5}}};

/// Draws a glyph with its left edge in `column` and gives its width. `image` is bottom row first.
int DrawGlyph(const Glyph& glyph, int column, int baseline, uint8_t* image)
{
    size_t width = 0;
    for (int row = 0; row < glyphRows; ++row) {
        const std::string_view ink = glyph.Rows[static_cast<size_t>(row)];
        const int y = baseline + rowsAboveBaseline - 1 - row;
        for (size_t x = 0; x < ink.size(); ++x) {
            if (ink[x] == '#') {
                image[y * LabelWidth + column + static_cast<int>(x)] = 255;
            }
        }
        width = std::max(width, ink.size());
    }
    return static_cast<int>(width);
}

void DrawLabel(const Label& label, uint8_t* image)
{
    int column = 1;
    for (const char letter : label.Word) {
        const auto* glyph = std::find_if(std::begin(glyphs), std::end(glyphs),
                                         [letter](const Glyph& candidate) { return candidate.Letter == letter; });
        if (glyph != std::end(glyphs)) {
            column += DrawGlyph(*glyph, column, label.Baseline, image) + 1;
        }
    }
}

} // namespace

void FillCameraLabels()
{
    CameraLabels.fill(0);
    for (size_t i = 0; i < labels.size(); ++i) {
        DrawLabel(labels[i], &CameraLabels[i * LabelBytes]);
    }
}
