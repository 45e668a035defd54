#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <utility>

#include "base/String.h"

using zun::String;

namespace {

const std::string null = "(null)";

// The bytes of s, or "(null)" for the null string.
std::string v(const String& s) { return s.isNull() ? null : std::string(s.text, s.length); }

// Each row: a string made by the code under test, and what it should hold.
void expectRows(std::initializer_list<std::pair<String, std::string>> rows) {
    int i = 0;
    for (const auto& r : rows) EXPECT_EQ(v(r.first), r.second) << "row " << i++;
}

void expectRows(std::initializer_list<std::pair<long long, long long>> rows) {
    int i = 0;
    for (const auto& r : rows) EXPECT_EQ(r.first, r.second) << "row " << i++;
}

}  // namespace

TEST(String, ConstructionKeepsNullApartFromEmpty) {
    String s("x"), nul(nullptr), copyOfNull(nul), assigned("x"), fromText("x");
    assigned = nul;
    fromText = static_cast<const char*>(nullptr);
    expectRows({{String(), ""}, {String(nullptr), null}, {String("", 0), ""}, {String("abcdef", 3), "abc"},
                {String("a\0b", 3), std::string("a\0b", 3)}, {String(3, 'x'), "xxx"}, {String(-2, 'x'), ""},
                {copyOfNull, null}, {assigned, null}, {fromText, null}, {s = "abc", "abc"}});
    EXPECT_STREQ(String(nullptr).str(), "");
    expectRows({{String("ab")[0], 'a'}, {String("ab")[5], 0}, {String("ab")[-1], 0}, {String(nullptr)[0], 0},
                {String()[0], 0}});
}

TEST(String, FromStream) {
    std::istringstream in("0123456789abcdefghijXYZ");
    String first(in, 12), rest(in, -1);
    std::istringstream small("abc");
    String none(small, 0), more(small, 10);  // fewer bytes than asked for
    std::istringstream zeros(std::string("ab\0\0\0\0\0\0\0\0\0\0cd", 14));
    std::istringstream lines("first line\n" + std::string(200, 'q') + "\nlast");
    String line1(lines, '\n'), line2(lines, '\n'), line3(lines, '\n');
    expectRows({{first, "0123456789ab"}, {rest, "cdefghijXYZ"}, {none, null}, {more, "abc"},
                {String(zeros, -1), std::string("ab\0\0\0\0\0\0\0\0\0\0cd", 14)}, {line1, "first line"},
                {line2, std::string(200, 'q')}, {line3, "last"}});
}

TEST(String, FindCountAndMatch) {
    String s("a.b.c"), t("abcabc");
    expectRows({{s.find('.'), 1}, {s.find('.', 2), 3}, {s.find('.', 4), -1}, {s.find('x'), -1}, {s.find('.', -1), -1},
                {s.find('.', s.length, true), 3},  // backward from the final zero
                {s.find('.', 2, true), 1}, {s.find('a', 0, true), 0}, {String(nullptr).find('.'), -1},
                {t.find("bc"), 1}, {t.find("bc", 2), 4}, {t.find("bc", -3), 1}, {t.find("zz"), -1},
                {t.find("bc", 50), -1}, {String(nullptr).find("a"), -1},
                {String("aaaa").count("aa"), 2}, {String("abc").count("x"), 0}, {String("abc").count(""), -1},
                {String("abc").count(nullptr), -1},
                {String("data.bin").match("*.bin"), true}, {String("data.bin").match("*.dd"), false},
                {String("").match(nullptr), true}, {String(nullptr).match("*"), false},
                {String(nullptr).match(nullptr), true}});
}

TEST(String, SubstrAndWords) {
    String s("abc"), eq("a=b=c");
    expectRows({{s.substr(1, 1), "b"}, {s.substr(-4, 1), "ab"}, {s.substr(1, -1), "bc"}, {s.substr(1, 99), "bc"},
                {s.substr(2, 1), ""}, {s.substr(7, 9), ""}, {String(nullptr).substr(0, 1), null},
                {eq.word(0, '='), "a"}, {eq.word(2, '='), "c"}, {eq.word(3, '='), null}, {eq.word(-1, '='), null},
                {eq.words(1, -1, '='), "b=c"}, {eq.words(0, 1, '='), "a=b"}, {String("a==b").word(1, '='), ""},
                {String("a==b").word(2, '='), "b"}, {String("whole").word(0, '='), "whole"},
                {String("x y").word(1), "y"}, {String(nullptr).word(0), null}});
    String p("p,q,,r");
    int n = 0;
    for (String w = p.word(0, ','); !w.isNull(); w = p.word(++n, ',')) {
    }
    EXPECT_EQ(n, 4);
}

TEST(String, TrimSwapInsert) {
    String self("12");
    self.insert(1, self.text, 2);
    expectRows({{String(" \tab c\t ").trim(), "ab c"}, {String("xxaxx").trim('x'), "a"},
                // only trimmed characters: the first stays
                {String("   ").trim(0), " "}, {String("\t  ").trim(0), "\t"}, {String("x").trim('x'), "x"},
                {String("").trim(0), ""}, {String(nullptr).trim(), null},
                {String("a.b.c").swap('.', '/'), "a/b/c"}, {String("a/b").swap('/', 0), "a/b"},
                {String("aXbXc").swap("X", "XX"), "aXXbXXc"},  // what was put in isn't looked at again
                {String("one, two, three").swap(", ", nullptr), "onetwothree"}, {String("aaa").swap("aa", "b"), "ba"},
                {String("abc").swap("", "x"), "abc"},
                {String("ace").insert(1, "b"), "abce"}, {String("abce").insert(4, String("fg")), "abcefg"},
                {String("ab").insert(99, "h", 1), "abh"}, {String("ab").insert(0, "xyz", 2), "xyab"},
                {self, "1122"}, {String(nullptr).insert(3, "q"), "q"}});
}

TEST(String, AppendAndConcat) {
    String s("ab");
    char* at = s.append("xy", 5);
    EXPECT_EQ(at, s.text + 2);
    String t("ab");
    at = t.append(nullptr, 2);
    at[0] = 'c';
    at[1] = 'd';
    String nul(nullptr), nul2(nullptr), nul3(nullptr), a("a"), twice("a");
    twice += twice;
    expectRows({{s, "abxyxyx"}, {t, "abcd"},
                {String("ab\0\0", 4) += "c", "abc"},  // trailing zero bytes go first
                {nul += String("x"), "x"}, {nul2 += String(nullptr), null}, {nul3 += "", ""},
                {String(nullptr) + "ab", "ab"}, {"ab" + String("cd"), "abcd"}, {a += '\0', "a"}, {a + 'b', "ab"},
                {a + '\0', "a"}, {twice, "aa"},
                {String("n=") << 42L << " ", "n=42 "}, {String() << -7LL << 0.1 << 1e20, "-70.11e+20"},
                {String() << 1.0 / 3, "0.333333333333333"}});
}

TEST(String, Formatting) {
    String s("a\\b\n\t\r\x01\x7f"), c(s), p(s), mixed("aBc1");
    EXPECT_EQ(v(mixed.toUppercase()), "ABC1");
    expectRows({{String("ab").pad(5), "   ab"}, {String("ab").pad(-5, "*"), "ab***"}, {String("ab").pad(6, "xy"), "xyxyab"},
                {String("abcdef").pad(3), "abcdef"}, {String("abc").pad(-3), "abc"},
                {String("a").pad(-12, "xyz"), "axyzxyzxyzxy"}, {String("a").pad(3, "wxyz"), "wxa"}, {String("").pad(-2, "xyz"), "xy"},
                {String("x").quote('"'), "\"x\""}, {String("x").quote('['), "[x]"}, {String("x").quote('{'), "{x}"},
                {String("x").quote('('), "(x)"}, {String(nullptr).quote('\''), "''"},
                {c.escape(true), "a\\\\b\\n\\t\\r\\d001\\d127"}, {p.escape(false), "a\\\\b\n\t\r\\d001\\d127"},
                {String("\xff").escape(true), "\\d255"},
                {mixed, "aBc1"}, {mixed.lowercase(), "abc1"}, {mixed.uppercase(), "ABC1"}, {mixed.fill('-'), "----"}});
    std::ostringstream out;
    out << String("a\0b", 3) << String(nullptr) << String("!");
    EXPECT_EQ(out.str(), std::string("a\0b!", 4));
}

TEST(String, CompareNullLast) {
    String n(nullptr), s("abcd");
    expectRows({{n.cmp(nullptr), 0}, {n.cmp("a"), 1}, {String("a").cmp(nullptr), -1}, {String("").cmp(nullptr), -1},
                {String("a") < n, true}, {n == String(""), false}, {n == String(nullptr), true},
                {s.cmp("abXX", 2), 0}, {s.cmp("abXX", 3) > 0, true}, {s.cmp("zzz", 0), 0}, {s.cmp("abc") > 0, true},
                {s.casecmp("ABCD"), 0}, {s.casecmp("ABxx", 2), 0}, {s.casecmp("ABxx", 3) != 0, true},
                {String("a") < String("b"), true}, {String("a") != "b", true}});
}

TEST(String, Numbers) {
    expectRows({{String("123").isInteger(), true}, {String("-12").isInteger(), true}, {String("+").isInteger(), true},
                {String("-").isInteger(), true}, {String("").isInteger(), false}, {String(nullptr).isInteger(), false},
                {String("1.5").isInteger(), false}, {String("--1").isInteger(), false}, {String(" 1").isInteger(), false},
                {String("12").isNumber(), 2}, {String("-1.5").isNumber(), 1}, {String(".5").isNumber(), 1},
                {String("1.2.3").isNumber(), 0}, {String("1e5").isNumber(), 0}, {String("").isNumber(), 0},
                {String(".").isNumber(), 0},
                {String("abc123").isAlpha(), true}, {String("").isAlpha(), true}, {String("a_b").isAlpha(), false},
                {String("-").toLong(), 0}, {String("42abc").toInt(), 42}, {String("").toLong(), 0},
                {String(nullptr).toLLong(), 0}, {String("-9000000000").toLLong(), -9000000000LL},
                {String("010").toLong(), 10}});  // always base 10
    EXPECT_DOUBLE_EQ(String("2.5x").toDouble(), 2.5);
    EXPECT_EQ(String("").toDouble(), 0.0);
    EXPECT_DOUBLE_EQ(String("2.5").toSmartDouble(), 2.5);
    for (const char* bad : {"2.5x", "", "x"}) EXPECT_TRUE(std::isnan(String(bad).toSmartDouble())) << bad;
}
