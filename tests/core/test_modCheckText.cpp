#include <cctype>
#include <cerrno>
#include <map>
#include <random>

#include "checks/modCheckText.h"
#include "support/fresh.h"
#include "support/system_words.h"

namespace {

class TextCheck : public ModelFile {
protected:
    /// What is found in these bytes: "code@line,line" in the order in which it is found, "xN" for another count.
    std::string Check(std::string_view bytes)
    {
        PutFile(Path, bytes);
        Found.clear();
        EXPECT_TRUE(CheckText(Path, &Found, &Error)) << Error;
        std::string text;
        for (const Finding& finding : Found) {
            text += (text.empty() ? "" : " ") + std::string(finding.Code);
            char before = '@';
            for (const int64_t line : finding.Lines) {
                text += before + std::to_string(line);
                before = ',';
            }
            text += finding.Count != std::ssize(finding.Lines) ? "x" + std::to_string(finding.Count) : "";
            EXPECT_TRUE(finding.What.ends_with('.') && finding.Advice.ends_with('.')) << text;
        }
        return text;
    }
    void Expect(const std::vector<std::pair<std::string, std::string>>& cases)
    {
        for (const auto& [text, found] : cases) {
            EXPECT_EQ(Check(CrLf(text)), found) << text;
        }
    }
    std::vector<Finding> Found;
};

const std::string model =
    FileInfoText + "material \"Bark\"|{| colormap = \"a b.bmp\"|}||"
                   "bone \"Thigh07\"|{| position = (0.5,-1.25,3)| rotation = (0,0,1E-07)|mass = 3 // a|\tb||}||"
                   "skin \"Beast\"|{| m = \"Bark\"| v = (0,0.3333333,1234568),7| v = (1,0,0),-1| t = (0,1)|"
                   " n = (0,0,1)| f = (1,2,3),(1,2,3),(1,2,3),1| f = (-1,32767,-32768),(0,0,0),(0,0,0),-3|}||"
                   "mesh \"$head\"|{| v = (0,0,0)|}||"
                   "instance \"Beast\"|{| mesh = \"Beast\"| position = (1,2,3)| rotation = (0,0,0)| scale = 2.5|}|";

} // namespace

TEST_F(TextCheck, FindsNothingInWhatLosesNothing)
{
    ASSERT_TRUE(Load(CrLf(model)));
    EXPECT_EQ(Check(ModelText()), "");
    Expect({{"", ""},
            {"||\t| |", ""},
            {"  BONE \"A\"  {|POSITION=(1.0,+2,.5)| rotation\t= ( 1 , 2. , 3D0 ) }|", ""},
            {"skin A|{|M=\"x\"|V = (1e0,2,3),7.0|v = (1,2,3,7)|F=1,2,3,1,2,3,1,2,3,1|f=((1,2,3),1,2,3,1,2,3,1)}", ""},
            {"material \"A\" {|colormap = x.bmp|bumpmap = \"\"| opacitymap=\"a{b\"|}", ""},
            {"instance \"A\"||{||mesh=\"Ab|scale=1.0E0}|fileinfo {|formatversion = 1.0.2}", ""},
            {"mesh \"A\"|{|v = (0.123456,123456.5,9999999)|n = (1234567000,0.0012345670,0.50000000)|}", ""}});
}

TEST_F(TextCheck, FindsTextThatNoBlockTakes)
{
    Expect({{"// a|bone A|// b|{|}|c", "text-between@1,3,6"},
            {"}|bone A|{|}|}|} x", "stray-brace@1,5,6 text-between@6"},
            {"camera \"x\"|{|v = ()|}|bone A {|}||Light|| { |mass|}|light {|}|camera x {|}",
             "unknown-block@1 unknown-block@8,13 unknown-block@15"},
            {"bone A|{|}|a|b|{|}|{|}", "text-between@4 unknown-block@5 unknown-block@8"},
            {"material A|{|a=1|A = 2|b|}|bone A|{|b|c}|}|instance A|{|b}|fileinfo|{|author = 3|}",
             "unknown-key@3,4 unknown-key@5 unknown-key@10 stray-brace@11 unknown-key@14 unknown-key@17"},
            {"bone A b|{ x|} y|skin B c {|}|fileinfo 3 { }|}| skin B|x {|}",
             "text-behind@1,4 text-behind@2 text-behind@3 text-behind@6 stray-brace@6 text-behind@9"},
            {"material A|{|bone B|{|}|}", "unknown-key@3 stray-brace@4 stray-brace@6"},
            {"bone A|{|a {|}|} bone B {|}", "stray-brace@3 name@5"},
            {"bone A {| position = (1,2,3)", "cut-off@2"},
            {"camera {|", "unknown-block@1 cut-off@1"}});
}

TEST_F(TextCheck, FindsNamesAndTextsThatAreReadAsOthers)
{
    const std::pair<const char*, const char*> names[] = {
        {"bone \"A b\"|{|}", "The name \"A b\" of a bone is read as \"A\"."},
        {"bone  \"A\" {|}", "The name \"A\" of a bone is read as an empty name."},
        {"skin|{|}", "The header of a block \"skin\" has no name."},
        {"mesh \"A\"{|}", "The name \"A\" of a mesh is read as \"A{\", with the brace in the name."},
        {"bone {|}", "The name \"\" of a bone is read as \"{\", with the brace in the name."},
        {"bone \"A}\"|{|}", "The name \"A}\" of a bone is read as \"A}\", with the brace in the name."},
        {"bone A\"\"B|{|}", "The name \"A\"\"B\" of a bone is read as \"AB\"."},
        {"bone \"\xC4\"\x1B|{|}", "The name \"\xC3\x84\" of a bone is read as \"\xC3\x84?\"."},
        {"material A {|colormap = my tex.bmp|}", "The text \"my tex.bmp\" behind \"colormap\" in a material block is "
                                                 "read as \"mytex.bmp\"."},
        {"mesh A {|m = \"a=b\"|}", "The text \"a=b\" behind \"m\" in a mesh or skin block is read as \"a\"."},
        {"instance A {|mesh = \"a\" // b|}", "The text \"a\" // b\" behind \"mesh\" in an instance block is read as "
                                             "\"a//b\"."},
        {"material A {|bumpmap = \"a}b\"",
         "The \"}\" in \"a}b\" behind \"bumpmap\" in a material block closes the block "
         "there."}};
    for (const auto& [text, what] : names) {
        const std::string found = Check(CrLf(text));
        EXPECT_EQ(found.substr(0, 5) + std::to_string(Found.size()), "name@1") << text;
        EXPECT_EQ(Found.at(0).What, what);
    }
    Expect({{"\tbone A|{|v=1|}|bone\tA {|}|\xEF\xBB\xBF"
             "bone A|{|}|bone{|}",
             "name@1,5,7,10"},
            {"bone A|{|Position=(0,0,0)|x=1|x=1|position=(0,0,0)|}|bone A|{|position=(0,0,0)|}", "repeated-key@6"},
            {"fileinfo|{|formatversion = 1.0.3|formatversion = \"1.0.2\"|}", "version@3 repeated-key@4"}});
    std::string many;
    for (int i = 0; i < 1000; ++i) {
        many += "material A|{|key" + std::to_string(i) + " = 1|}|";
    }
    (void)Check(CrLf(many));
    EXPECT_LT(Found.size(), 100U);
    EXPECT_GT(Found.back().Count, 900);
}

TEST_F(TextCheck, FindsNumbersThatAreReadAsOthers)
{
    const std::pair<const char*, const char*> lines[] = {
        {"v=(1,2,3),7", ""},
        {"v = (1,nan,1.#QNAN),7", "no-number@3x2"},
        {"v = (1,2,abc),x", "no-number@3 no-number@3"},
        {"v = (1,,3),7", "no-number@3"},
        {"v = (1,2,3)", "no-number@3"},
        {"v = (1,2),7", "no-number@3 no-number@3"},
        {"v = (1,2,3),7,8", "text-behind@3 no-number@3"},
        {"v = (1,5,2,5,3,5),7", "no-number@3"},
        {"v = 1,2,3,7", "no-number@3"},
        {"v = (1,2,3),6.5", "rounded@3"},
        {"v = (1,2,3),40000", "size@3"},
        {"v = (1,1E39,3),1E400", "size@3 size@3"},
        {"v = (1,2,3) 4", "text-behind@3 no-number@3"},
        {"n = (1,2,3),4", "text-behind@3"},
        {"n = (1,2,3", "no-number@3"},
        {"n = (1,2,3,4)", "text-behind@3"},
        {"n = \"(1,2,3)\"", "no-number@3 text-behind@3"},
        {"n = (1,2,3) = 4", "text-behind@3"},
        {"n = ", "no-number@3"},
        {"t = (0,1,0)", "text-behind@3"},
        {"t = (0)", "no-number@3"},
        {"t = (1 // 2,3)", "no-number@3"},
        {"f = (1,2,3),(1,2,3),(1,2,3)", "no-number@3"},
        {"f = (1,2,3),(1,2,3.5),(x,2,3),0", "rounded@3 no-number@3"},
        {"f = (1,2,3),(1,2,3),(1,2,3),0,4", "text-behind@3"},
        {"f = (1,2,3),(1,2,3),(1,2,32768),0", "size@3"},
        {"m = \"x\"|f = (1,2,3),(1,2,3),(1,2,3),2|m = \"x\"", "face-material@4"},
        {"t = (0.12345678,1)", "digits@3"},
        {"t = (12345678,-0.010000001)|n=(0,0,1.2345678901234567)", "digits@3,4x3"},
        {"t = (0.0009765629,0.0009765625)", "digits@3"}, // seven digits, but of a float that has others
        {"t = (1.23456789E-07,1E-60)", "digits@3x2"},
    };
    for (const auto& [line, found] : lines) {
        EXPECT_EQ(Check(CrLf("skin A|{|" + std::string(line) + "|}")), found) << line;
    }
    Expect({{"mesh A|{|v = (1,2,3),4|}", "text-behind@3"},
            {"instance A|{|scale = 1,5|rotation=(0,0,0.123456789)|}", "no-number@3 digits@4"},
            {"bone A|{|position = (1,2,3) x|rotation = (a,0,0.123456789)|}", "text-behind@3 no-number@4 digits@4"}});
    (void)Check(CrLf("instance A|{|scale = 1,5|}"));
    EXPECT_EQ(Found.at(0).What,
              "\"1,5\" behind \"scale\" in an instance block is no number of its own there and is read as 1.");
}

TEST_F(TextCheck, CountsLinesAsALoadDoes)
{
    EXPECT_EQ(Check("bone A\r{\r\n\r}\r\r\n// x\r\n\r\r}"), "text-between@6 stray-brace@9");
    EXPECT_EQ(Check("bone A\n{\n}\nfoo"), "line-ends@1x3");
    EXPECT_EQ(Check("bone A\r\n{\r\nx\ny\n\r\n}\r\n\n"), "line-ends@3,5x3");
    EXPECT_EQ(Check("bone A\n{\r\nx}\r\n\nz"), "line-ends@1,3 name@1 unknown-key@2 text-between@3");
    std::string text = "mesh \"S\" {\r\n"; // every place of a line falls on the end of a piece
    std::string found;
    for (int line = 2; text.size() < 900'000; ++line) {
        const bool odd = line % 1000 == 0;
        text += odd ? " v = (1,2,x)" : " v = (" + std::to_string(line) + ",2,3)";
        text += line % 3 == 0 ? "\r" : "\r\n";
        found += odd ? (found.empty() ? "no-number@" : ",") + std::to_string(line) : "";
    }
    EXPECT_EQ(Check(text + "}\r" + std::string(600'000, ' ') + "\r"), found);
    scripted::Reset();
    scripted::FailAt = 3; // behind the open and the first piece
    scripted::FailError = EIO;
    EXPECT_FALSE(CheckText(Path, &Found, &Error));
    EXPECT_EQ(Error, SystemWords(EIO));
    scripted::Reset();
    EXPECT_FALSE(CheckText(Folder / "none", &Found, &Error));
}

TEST_F(TextCheck, TellsOfWhateverASaveLoses)
{
    std::mt19937 random(7);
    const auto pick = [&random](size_t count) { return random() % count; };
    const std::string defects[] = {"z",  "|",   " ",   "\t",  "{",       "}",    "\"",
                                   "=",  ",",   "(",   ")",   "9",       "-",    ".",
                                   "|z", "|}|", "|{|", "zz|", "1234567", "7.5 ", "bone \"B07\"|{|"};
    // How often each character stands in a text that it would be missed in: not those of the ways of writing a number.
    const auto census = [](std::string_view text) {
        std::map<char, int64_t> counts;
        for (const char c : text) {
            counts[c] += std::isalnum(static_cast<unsigned char>(c)) != 0 && c != '0' && c != 'e' ? 1 : 0;
        }
        return counts;
    };
    int clean = 0;
    for (int round = 0; round < 5000; ++round) {
        std::string text = model;
        text.replace(text.find("1E-07"), 5, "2");
        for (size_t left = 1 + pick(2); left > 0; --left) {
            text.replace(pick(text.size()), pick(2), defects[pick(std::size(defects))]);
        }
        text = CrLf(text);
        if (!Check(text).empty()) {
            continue;
        }
        ASSERT_TRUE(LoadAnew(text)) << text << Told();
        const MvmMesh& skin = Meshes[1];
        if (skin.VertexBones.Count() < 2 || skin.VertexBones[1] == 0 ||
            (skin.VertexBones[2] == 0) != (skin.VertexJoints[2] == -1)) {
            continue; // joint numbers without a bone are no matter of the text
        }
        ++clean;
        const std::string saved = ModelText();
        std::map<char, int64_t> kept = census(saved);
        for (const auto& [c, count] : census(text)) {
            ASSERT_TRUE(kept[c] >= count) << c << "\n" << text << "\n" << saved;
        }
        EXPECT_EQ(Check(saved), "") << text;
    }
    EXPECT_GT(clean, 500);
}
