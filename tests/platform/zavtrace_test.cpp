#include "tools/support/harmless.h"
#include "tools/zavtrace/trace_lines.h"

#include <gtest/gtest.h>

TEST(TraceLines, PiecesOfSeveralProgramsBecomeLines) {
    TraceLines all("");
    EXPECT_EQ("", all.Take(1, "one "));
    EXPECT_EQ("other\n", all.Take(2, "other\nhalf"));
    EXPECT_EQ("one line\n\n", all.Take(1, "line\n\n"));
    EXPECT_EQ("half\n", all.Rest());
    EXPECT_EQ("", all.Rest());
    EXPECT_EQ(65537u, all.Take(1, std::string(65536, 'x')).size());
}

TEST(Harmless, WhatCouldSteerATerminalIsWrittenOut) {
    EXPECT_EQ("\\033[2J\\007\\177", Harmless("\x1B[2J\a\x7F"));
    EXPECT_EQ("a\\011\\012", Harmless("a\t\n"));
    EXPECT_EQ("a\t\n\\015", Harmless("a\t\n\r", true));
    EXPECT_EQ("\\302\\233", Harmless("\xC2\x9B"));
    EXPECT_EQ("\xC2\xA0\xE2\x82\xAC\xF0\x9F\x98\x80", Harmless("\xC2\xA0\xE2\x82\xAC\xF0\x9F\x98\x80"));
    EXPECT_EQ("\\200\\300\\257\\355\\240\\200\\340\\200\\200",
              Harmless("\x80\xC0\xAF\xED\xA0\x80\xE0\x80\x80"));
    EXPECT_EQ("\\364\\220\\200\\200\\342\\202", Harmless("\xF4\x90\x80\x80\xE2\x82"));
    EXPECT_EQ(std::string("\\000x"), Harmless(std::string("\0x", 2)));
}
