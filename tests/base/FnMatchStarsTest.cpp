// Wildcard patterns with many stars: the answers under every flag, on texts
// where each star has many places to end.
#include <gtest/gtest.h>

#include <string>

#include "base/FnMatch.h"

namespace {

std::string repeat(const std::string& piece, int n) {
    std::string s;
    for (int i = 0; i < n; ++i) s += piece;
    return s;
}

const int path = zun::FNM_PATHNAME_, noescape = zun::FNM_NOESCAPE_, period = zun::FNM_PERIOD_;

}  // namespace

TEST(FnMatchStars, ManyStarsOnALongText) {
    const std::string as = repeat("a", 60);
    const struct {
        std::string pattern, text;
        int result, noEscapeResult;  // under every other flag combination
    } rows[] = {
        {repeat("*a", 40) + "*b", as, 1, 1},
        {repeat("*a", 40) + "*b", as + "b", 0, 0},
        {repeat("*a", 60), as, 0, 0},
        {repeat("*a", 61), as, 1, 1},
        {repeat("*?", 60) + "*", as, 0, 0},
        {repeat("*[ab]", 40) + "c", as + "c", 0, 0},
        {repeat("*[!a]", 2), as + "xy", 0, 0},
        {"*" + repeat("ab*", 20) + "c", repeat("ab", 60), 1, 1},
        // an escaped star is a star of the text, unless backslash is plain
        {repeat("*\\*", 3), repeat("a*", 3), 0, 1},
        {repeat("*\\*", 3), repeat("a\\*", 3), 0, 0},
    };
    for (const auto& r : rows) {
        for (int flags = 0; flags < 8; ++flags) {
            EXPECT_EQ(zun::fnmatch(r.pattern.c_str(), r.text.c_str(), flags),
                      (flags & noescape) ? r.noEscapeResult : r.result)
                << r.pattern << " on " << r.text << " flags " << flags;
        }
    }
}

TEST(FnMatchStars, SlashesAndLeadingDotsWithManyStars) {
    const std::string deep = repeat("a/", 30) + "b";
    const struct {
        std::string pattern, text;
        int flags, result;
    } rows[] = {
        // a star takes no "/" under the path flag
        {repeat("*", 30) + "b", deep, 0, 0},
        {repeat("*", 30) + "b", deep, path, 1},
        {repeat("*/", 30) + "b", deep, path, 0},
        {repeat("*/", 29) + "b", deep, path, 1},
        {repeat("a*/", 30) + "*b", deep, path, 0},
        {repeat("*a*/", 30) + "b*", deep, path, 0},
        // a leading dot: only up to the first star that can take more
        {"*" + repeat("a*", 20), "." + repeat("a", 30), period, 1},
        {".*" + repeat("a*", 20), "." + repeat("a", 30), period, 0},
        {"x*" + repeat("a*", 20) + ".b", "x" + repeat("a", 30) + ".b", period, 0},
        // a star that ends at a "/" keeps it: a dot behind it still counts
        {"*/*" + repeat("a*", 3), "x/.aaa", path | period, 1},
        {"*/*" + repeat("a*", 3), "x/.aaa", path, 0},
        {"*/?" + repeat("a*", 3), "x/.aaa", path | period, 1},
        {"*a*/?" + repeat("a*", 2), "za/.aa", path | period, 0},
    };
    for (const auto& r : rows)
        EXPECT_EQ(zun::fnmatch(r.pattern.c_str(), r.text.c_str(), r.flags), r.result)
            << r.pattern << " on " << r.text << " flags " << r.flags;
}
