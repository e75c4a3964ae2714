#include <gtest/gtest.h>

#include "modCodePage.h"

TEST(CodePage, EveryByteSurvivesARoundTrip)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    EXPECT_EQ(CodePageFromUtf8(Utf8FromCodePage(all)), all);
}

TEST(CodePage, CharactersStandWhereTheCodePageHasThem)
{
    EXPECT_EQ(Utf8FromCodePage("\x80\x8A\x9F\xA0\xC4\xFF"), "€ŠŸ\u00A0Äÿ");
    EXPECT_EQ(CodePageFromUtf8("Œœ™–“ß"), "\x8C\x9C\x99\x96\x93\xDF");
    EXPECT_EQ(Utf8FromCodePage("\x81"), "\xC2\x81");
}

TEST(CodePage, WhatItCannotHoldBecomesAQuestionMark)
{
    const std::pair<const char*, const char*> cases[] = {
        {"aЖb", "a?b"},               // no such character
        {"a\U0001F600b", "a?b"},      // four bytes
        {"a\xC2\x80", "a?"},          // the control character whose byte is another character
        {"\xFF\xFE", "??"},           // no start bytes
        {"a\xC3", "a?"},              // cut
        {"\xC3(", "?("},              // a bad second byte keeps what follows
        {"\xC1\x81", "??"},           // overlong
        {"\xED\xA0\x80", "???"},      // half of a pair
        {"\xF4\x90\x80\x80", "????"}, // above all characters
    };
    for (const auto& [text, bytes] : cases) {
        EXPECT_EQ(CodePageFromUtf8(text), bytes) << text;
    }
}
