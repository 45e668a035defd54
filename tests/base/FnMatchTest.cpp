#include <gtest/gtest.h>

#include "base/FnMatch.h"

TEST(FnMatch, PatternsAndFlags) {
    const int path = zun::FNM_PATHNAME_, period = zun::FNM_PERIOD_, noescape = zun::FNM_NOESCAPE_;
    const struct {
        const char *pattern, *text;
        int flags, result;
    } rows[] = {
        // wildcards
        {"*", "", 0, 0}, {"a*c", "abbbc", 0, 0}, {"a*c", "abbb", 0, 1}, {"a?c", "abc", 0, 0},
        {"a?c", "ac", 0, 1}, {"*.*", "x.y.z", 0, 0}, {"**b", "aab", 0, 0}, {"abc", "abcd", 0, 1}, {"", "", 0, 0},
        // brackets; an unclosed one is literal
        {"[abc]x", "bx", 0, 0}, {"[a-c]", "d", 0, 1}, {"[!a-c]", "d", 0, 0}, {"[^a-c]", "b", 0, 1},
        {"[]]", "]", 0, 0}, {"[!]]", "]", 0, 1}, {"[a-]", "-", 0, 0}, {"f[0-9][0-9]", "f42", 0, 0},
        {"[ab", "[ab", 0, 0},
        // escapes
        {"a\\*", "a*", 0, 0}, {"a\\*", "ab", 0, 1}, {"a\\*", "a\\b", noescape, 0}, {"[\\]]", "]", 0, 0},
        // slashes and leading dots; an unknown flag
        {"*", "a/b", 0, 0}, {"*", "a/b", path, 1}, {"*/b", "a/b", path, 0}, {"a?b", "a/b", path, 1},
        {"*", ".hidden", 0, 0}, {"*", ".hidden", period, 1}, {".*", ".hidden", period, 0}, {"a*", "a.b", period, 0},
        {"*", "x", 8, -1},
    };
    for (const auto& r : rows)
        EXPECT_EQ(zun::fnmatch(r.pattern, r.text, r.flags), r.result) << r.pattern << " on " << r.text;
}
