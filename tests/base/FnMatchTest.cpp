#include <gtest/gtest.h>

#include "base/FnMatch.h"

using zun::fnmatch;

TEST(FnMatch, Wildcards) {
    EXPECT_EQ(fnmatch("*", "", 0), 0);
    EXPECT_EQ(fnmatch("a*c", "abbbc", 0), 0);
    EXPECT_EQ(fnmatch("a*c", "abbb", 0), 1);
    EXPECT_EQ(fnmatch("a?c", "abc", 0), 0);
    EXPECT_EQ(fnmatch("a?c", "ac", 0), 1);
    EXPECT_EQ(fnmatch("*.*", "x.y.z", 0), 0);
    EXPECT_EQ(fnmatch("**b", "aab", 0), 0);
    EXPECT_EQ(fnmatch("abc", "abcd", 0), 1);
    EXPECT_EQ(fnmatch("", "", 0), 0);
}

TEST(FnMatch, BracketExpressions) {
    EXPECT_EQ(fnmatch("[abc]x", "bx", 0), 0);
    EXPECT_EQ(fnmatch("[a-c]", "d", 0), 1);
    EXPECT_EQ(fnmatch("[!a-c]", "d", 0), 0);
    EXPECT_EQ(fnmatch("[^a-c]", "b", 0), 1);
    EXPECT_EQ(fnmatch("[]]", "]", 0), 0);
    EXPECT_EQ(fnmatch("[!]]", "]", 0), 1);
    EXPECT_EQ(fnmatch("[a-]", "-", 0), 0);
    EXPECT_EQ(fnmatch("f[0-9][0-9]", "f42", 0), 0);
    EXPECT_EQ(fnmatch("[ab", "[ab", 0), 0);  // unclosed: literal
}

TEST(FnMatch, Escapes) {
    EXPECT_EQ(fnmatch("a\\*", "a*", 0), 0);
    EXPECT_EQ(fnmatch("a\\*", "ab", 0), 1);
    EXPECT_EQ(fnmatch("a\\*", "a\\b", zun::FNM_NOESCAPE_), 0);
    EXPECT_EQ(fnmatch("[\\]]", "]", 0), 0);
}

TEST(FnMatch, Flags) {
    EXPECT_EQ(fnmatch("*", "a/b", 0), 0);
    EXPECT_EQ(fnmatch("*", "a/b", zun::FNM_PATHNAME_), 1);
    EXPECT_EQ(fnmatch("*/b", "a/b", zun::FNM_PATHNAME_), 0);
    EXPECT_EQ(fnmatch("a?b", "a/b", zun::FNM_PATHNAME_), 1);
    EXPECT_EQ(fnmatch("*", ".hidden", 0), 0);
    EXPECT_EQ(fnmatch("*", ".hidden", zun::FNM_PERIOD_), 1);
    EXPECT_EQ(fnmatch(".*", ".hidden", zun::FNM_PERIOD_), 0);
    EXPECT_EQ(fnmatch("a*", "a.b", zun::FNM_PERIOD_), 0);  // only a leading dot counts
    EXPECT_EQ(fnmatch("*", "x", 8), -1);
}
