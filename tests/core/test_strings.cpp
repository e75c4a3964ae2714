#include <array>

#include <gtest/gtest.h>

#include "model/modStrings.h"

TEST(Paths, AreSplitAtTheLastSeparator)
{
    const struct {
        std::string_view Path, Folder, Name, Extension;
    } cases[] = {
        {"a.bmp", "", "a.bmp", "bmp"},
        {"C:\\x\\a.b.mvm", "C:\\x\\", "a.b.mvm", "mvm"},
        {"/x\\y/a", "/x\\y/", "a", "/x\\y/a"},
        {"x/y\\a.BMP", "x/y\\", "a.BMP", "BMP"},
        {"dir\\", "dir\\", "", "dir\\"},
        {"d.x/file", "d.x/", "file", "x/file"},
        {"file", "", "file", "file"},
        {"", "", "", ""},
        {"end.", "", "end.", ""},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(DirectoryOf(row.Path), row.Folder);
        EXPECT_EQ(FileNameOf(row.Path), row.Name);
        EXPECT_EQ(ExtensionOf(row.Path), row.Extension);
    }
    EXPECT_EQ(TextBeforeNull(std::string_view("ab\0cd", 5)), "ab");
    EXPECT_EQ(TextBeforeNull("ab"), "ab");
}

TEST(Texts, AreComparedWithoutTheCaseOfLatinLettersOnly)
{
    EXPECT_EQ(LowerCase("AZaz[@\xC4"), "azaz[@\xC4");
    EXPECT_TRUE(HoldsAnyCase("My$J$Bone", "$j$"));
    EXPECT_TRUE(HoldsAnyCase("xHEAD", "head"));
    EXPECT_FALSE(HoldsAnyCase("hea", "head"));
    EXPECT_FALSE(HoldsAnyCase("", "head"));
    EXPECT_TRUE(EqualsAnyCase("MeSh", "mesh"));
    EXPECT_FALSE(EqualsAnyCase("mesh2", "mesh"));
}

TEST(StripWhitespace, KeepsWhatStandsInQuotes)
{
    const struct {
        std::string_view Line, Stripped;
    } cases[] = {
        {"", ""},           {" a\tb \n", "ab\n"},          {"a \"b c\" d \"e f", "a\"b c\"d\"e f"},
        {"   ", ""},        {"\"a\tb\"", "\"a\tb\""},      {std::string_view("a \0 b", 5), std::string_view("a\0b", 3)},
        {"\"a b", "\"a b"}, {" m = \"a b\" ", "m=\"a b\""}};
    for (const auto& row : cases) {
        EXPECT_EQ(StripWhitespace(row.Line), row.Stripped);
    }
    EXPECT_EQ(StripQuotes("\"a\"b\""), "ab");
    EXPECT_EQ(StripQuotes("\"\""), "");
}

TEST(ParseVec3, ReadsTriplesIntoViewAxes)
{
    const struct {
        std::string_view Text;
        float X, Y, Z;
    } cases[] = {
        {"(1,2,3)", 1, 3, -2},       {"(1,2)", 1, 0, -2},     {"()", 0, 0, 0},
        {"(1,2,3),7", 1, 3, -2},     {"xy", 0, 0, 0},         {"[1,2,3]", 1, 3, -2},
        {"(,,5)", 0, 5, 0},          {"(1,2,3,4)", 1, 3, -2}, {"1,2,3", 0, 0, -2},
        {"(1,2,3", 1, 0, -2},        {"(1x,y2,3)", 1, 3, 0},  {"(1E2,-.5,+3)", 100, 3, 0.5F},
        {"(1,2,3,1E999)", 1, 3, -2},
    };
    for (const auto& row : cases) {
        Vec3 value{9, 9, 9};
        EXPECT_TRUE(ParseVec3(row.Text, &value)) << row.Text;
        EXPECT_EQ((std::array{value.X, value.Y, value.Z}), (std::array{row.X, row.Y, row.Z})) << row.Text;
    }
    for (const std::string_view text : {"", "x", "(1E39,0,0)", "(0,0,1E999)"}) {
        Vec3 value{9, 9, 9};
        EXPECT_FALSE(ParseVec3(text, &value)) << text;
        EXPECT_EQ(value.X, 9) << text;
    }
}

TEST(ParseUV, ReadsPairs)
{
    Vec2 value{9, 9};
    EXPECT_FALSE(ParseUV("(", &value));
    EXPECT_FALSE(ParseUV("(0,-1E39)", &value));
    EXPECT_EQ(value.U, 9);
    EXPECT_TRUE(ParseUV("(0.5,0.25)", &value));
    EXPECT_EQ(value.U, 0.5F);
    EXPECT_EQ(value.V, 0.25F);
    EXPECT_TRUE(ParseUV("(3)", &value));
    EXPECT_EQ(value.U, 3);
    EXPECT_EQ(value.V, 0);
}

TEST(JointNumber, ComesFromTheLastTwoCharacters)
{
    const struct {
        std::string_view Name;
        double Joint;
    } cases[] = {{"Thigh07", 7},   {"Thigh17", 17}, {"Toe9", 0}, {"Root", 0}, {"x-1", -1}, {"x.5", 0.5}, {"x5.", 5},
                 {"Spine123", 23}, {"9", 9},        {"", 0},     {"x1E", 1},  {"+3", 3},   {"a7x", 7},   {"07b", 7}};
    for (const auto& row : cases) {
        EXPECT_EQ(JointNumber(row.Name), row.Joint) << row.Name;
    }
}
