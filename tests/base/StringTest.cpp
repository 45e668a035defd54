#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "base/String.h"

using zun::String;

TEST(StringConstruct, NullDiffersFromEmpty) {
    String empty;
    String null(nullptr);
    EXPECT_FALSE(empty.isNull());
    EXPECT_STREQ(empty.text, "");
    EXPECT_TRUE(null.isNull());
    EXPECT_EQ(null.length, 0);
    EXPECT_STREQ(null.str(), "");
    EXPECT_FALSE(String("", 0).isNull());
}

TEST(StringConstruct, LengthAndRepeat) {
    String s("abcdef", 3);
    EXPECT_EQ(s.length, 3);
    EXPECT_STREQ(s.text, "abc");
    String zeros("a\0b", 3);
    EXPECT_EQ(zeros.length, 3);
    EXPECT_EQ(zeros.text[2], 'b');
    EXPECT_STREQ(String(3, 'x').text, "xxx");
    String neg(-2, 'x');
    EXPECT_FALSE(neg.isNull());
    EXPECT_EQ(neg.length, 0);
}

TEST(StringConstruct, CopyKeepsNullness) {
    String null(nullptr);
    String copy(null);
    EXPECT_TRUE(copy.isNull());
    String s("x");
    s = null;
    EXPECT_TRUE(s.isNull());
    s = "abc";
    EXPECT_EQ(s, "abc");
    s = static_cast<const char*>(nullptr);
    EXPECT_TRUE(s.isNull());
}

TEST(StringConstruct, FromStreamByCount) {
    std::istringstream in("0123456789abcdefghijXYZ");
    String first(in, 12);
    EXPECT_EQ(first, "0123456789ab");
    String rest(in, -1);
    EXPECT_EQ(rest, "cdefghijXYZ");
    std::istringstream in2("abc");
    EXPECT_TRUE(String(in2, 0).isNull());
    String more(in2, 10);  // fewer bytes than asked for
    EXPECT_EQ(more, "abc");
}

TEST(StringConstruct, FromStreamKeepsZeroBytes) {
    std::string bytes("ab\0\0\0\0\0\0\0\0\0\0cd", 14);
    std::istringstream in(bytes);
    String s(in, -1);
    EXPECT_EQ(s.length, 14);
    EXPECT_EQ(s.text[13], 'd');
}

TEST(StringConstruct, FromStreamToDelimiter) {
    std::string longLine(200, 'q');
    std::istringstream in("first line\n" + longLine + "\nlast");
    EXPECT_EQ(String(in, '\n'), "first line");
    String second(in, '\n');
    EXPECT_EQ(second.length, 200);
    EXPECT_EQ(String(in, '\n'), "last");
}

TEST(StringAccess, IndexOperator) {
    String s("ab");
    EXPECT_EQ(s[0], 'a');
    EXPECT_EQ(s[5], 0);
    EXPECT_EQ(s[-1], 0);
    EXPECT_EQ(String(nullptr)[0], 0);
    EXPECT_EQ(String()[0], 0);
}

TEST(StringFind, Character) {
    String s("a.b.c");
    EXPECT_EQ(s.find('.'), 1);
    EXPECT_EQ(s.find('.', 2), 3);
    EXPECT_EQ(s.find('.', 4), -1);
    EXPECT_EQ(s.find('.', s.length, true), 3);  // starts on the final zero
    EXPECT_EQ(s.find('.', 2, true), 1);
    EXPECT_EQ(s.find('a', 0, true), 0);
    EXPECT_EQ(s.find('x'), -1);
    EXPECT_EQ(s.find('.', -1), -1);
    EXPECT_EQ(String(nullptr).find('.'), -1);
}

TEST(StringFind, Text) {
    String s("abcabc");
    EXPECT_EQ(s.find("bc"), 1);
    EXPECT_EQ(s.find("bc", 2), 4);
    EXPECT_EQ(s.find("bc", -3), 1);
    EXPECT_EQ(s.find("zz"), -1);
    EXPECT_EQ(s.find("bc", 50), -1);
    EXPECT_EQ(String(nullptr).find("a"), -1);
}

TEST(StringSubstr, InclusiveBounds) {
    String s("abc");
    EXPECT_EQ(s.substr(1, 1), "b");
    EXPECT_EQ(s.substr(-4, 1), "ab");
    EXPECT_EQ(s.substr(1, -1), "bc");
    EXPECT_EQ(s.substr(1, 99), "bc");
    String empty = s.substr(2, 1);
    EXPECT_FALSE(empty.isNull());
    EXPECT_EQ(empty.length, 0);
    EXPECT_EQ(s.substr(7, 9).length, 0);
    EXPECT_TRUE(String(nullptr).substr(0, 1).isNull());
}

TEST(StringWord, SingleSeparators) {
    String s("a=b=c");
    EXPECT_EQ(s.word(0, '='), "a");
    EXPECT_EQ(s.word(1, '='), "b");
    EXPECT_EQ(s.word(2, '='), "c");
    EXPECT_TRUE(s.word(3, '=').isNull());
    EXPECT_EQ(s.words(1, -1, '='), "b=c");
    EXPECT_EQ(s.words(0, 1, '='), "a=b");
    EXPECT_TRUE(String("a=b").word(5, '=').isNull());
    EXPECT_TRUE(s.word(-1, '=').isNull());
}

TEST(StringWord, AdjacentSeparatorsAndWholeText) {
    String s("a==b");
    EXPECT_EQ(s.word(1, '='), "");
    EXPECT_FALSE(s.word(1, '=').isNull());
    EXPECT_EQ(s.word(2, '='), "b");
    EXPECT_EQ(String("whole").word(0, '='), "whole");
    EXPECT_EQ(String("x y").word(1), "y");
    EXPECT_TRUE(String(nullptr).word(0).isNull());
}

TEST(StringWord, LoopEndsOnNull) {
    String s("p,q,,r");
    int n = 0;
    for (String w = s.word(0, ','); !w.isNull(); w = s.word(++n, ',')) {
    }
    EXPECT_EQ(n, 4);
}

TEST(StringTrim, BothEnds) {
    String s(" \tab c\t ");
    s.trim();
    EXPECT_EQ(s, "ab c");
    String x("xxaxx");
    x.trim('x');
    EXPECT_EQ(x, "a");
}

TEST(StringTrim, OnlyTrimmedCharactersKeepTheFirst) {
    String blanks("   ");
    blanks.trim(0);
    EXPECT_EQ(blanks, " ");
    String mixed("\t  ");
    mixed.trim(0);
    EXPECT_EQ(mixed, "\t");
    String one("x");
    one.trim('x');
    EXPECT_EQ(one, "x");
    String empty("");
    empty.trim(0);
    EXPECT_EQ(empty.length, 0);
    EXPECT_FALSE(empty.isNull());
    String null(nullptr);
    null.trim();
    EXPECT_TRUE(null.isNull());
}

TEST(StringSwap, Characters) {
    String s("a.b.c");
    s.swap('.', '/');
    EXPECT_EQ(s, "a/b/c");
    s.swap('/', 0);
    EXPECT_EQ(s, "a/b/c");
}

TEST(StringSwap, TextsInOnePass) {
    String s("aXbXc");
    s.swap("X", "XX");  // what was inserted isn't looked at again
    EXPECT_EQ(s, "aXXbXXc");
    String r("one, two, three");
    r.swap(", ", nullptr);
    EXPECT_EQ(r, "onetwothree");
    String t("aaa");
    t.swap("aa", "b");
    EXPECT_EQ(t, "ba");
    String u("abc");
    u.swap("", "x");
    EXPECT_EQ(u, "abc");
}

TEST(StringCount, NonOverlapping) {
    EXPECT_EQ(String("aaaa").count("aa"), 2);
    EXPECT_EQ(String("abc").count("x"), 0);
    EXPECT_EQ(String("abc").count(""), -1);
    EXPECT_EQ(String("abc").count(nullptr), -1);
}

TEST(StringInsert, PositionsAndAppend) {
    String s("ace");
    s.insert(1, "b");
    EXPECT_EQ(s, "abce");
    s.insert(4, String("fg"));
    EXPECT_EQ(s, "abcefg");
    s.insert(99, "h", 1);
    EXPECT_EQ(s, "abcefgh");
    s.insert(0, "xyz", 2);
    EXPECT_EQ(s, "xyabcefgh");
    String self("12");
    self.insert(1, self.text, 2);
    EXPECT_EQ(self, "1122");
    String null(nullptr);
    null.insert(3, "q");
    EXPECT_EQ(null, "q");
}

TEST(StringAppend, RoomFilledOrLeftUnset) {
    String s("ab");
    char* at = s.append("xy", 5);
    EXPECT_EQ(at, s.text + 2);
    EXPECT_EQ(s, "abxyxyx");
    String t("ab");
    at = t.append(nullptr, 2);
    at[0] = 'c';
    at[1] = 'd';
    EXPECT_EQ(t, "abcd");
    EXPECT_EQ(t.length, 4);
}

TEST(StringAppend, TrailingZeroBytesGoFirst) {
    String s("ab\0\0", 4);
    s += "c";
    EXPECT_EQ(s.length, 3);
    EXPECT_EQ(s, "abc");
}

TEST(StringConcat, NullTakesTheOtherValue) {
    String null(nullptr);
    null += String("x");
    EXPECT_EQ(null, "x");
    String n2(nullptr);
    n2 += String(nullptr);
    EXPECT_TRUE(n2.isNull());
    String n3(nullptr);
    n3 += "";
    EXPECT_FALSE(n3.isNull());
    EXPECT_EQ(String(nullptr) + "ab", "ab");
    EXPECT_EQ("ab" + String("cd"), "abcd");
    String s("a");
    s += '\0';
    EXPECT_EQ(s.length, 1);
    EXPECT_EQ(s + 'b', "ab");
    EXPECT_EQ(s + '\0', "a");
    s += s;
    EXPECT_EQ(s, "aa");
}

TEST(StringConcat, Numbers) {
    String s("n=");
    s << 42L << " ";
    EXPECT_EQ(s, "n=42 ");
    String t;
    t << -7LL << 0.1 << 1e20;
    EXPECT_EQ(t, "-70.11e+20");
    String u;
    u << 1.0 / 3;
    EXPECT_EQ(u, "0.333333333333333");
}

TEST(StringFormat, Pad) {
    EXPECT_EQ(String("ab").pad(5), "   ab");
    EXPECT_EQ(String("ab").pad(-5, "*"), "ab***");
    EXPECT_EQ(String("ab").pad(6, "xy"), "xyxyab");
    EXPECT_EQ(String("abcdef").pad(3), "abcdef");
    EXPECT_EQ(String("abc").pad(-3), "abc");
}

TEST(StringFormat, Quote) {
    EXPECT_EQ(String("x").quote('"'), "\"x\"");
    EXPECT_EQ(String("x").quote('['), "[x]");
    EXPECT_EQ(String("x").quote('{'), "{x}");
    EXPECT_EQ(String("x").quote('('), "(x)");
    EXPECT_EQ(String(nullptr).quote('\''), "''");
}

TEST(StringFormat, Escape) {
    String s("a\\b\n\t\r\x01\x7f");
    String controls(s);
    controls.escape(true);
    EXPECT_EQ(controls, "a\\\\b\\n\\t\\r\\d001\\d127");
    String plain(s);
    plain.escape(false);
    EXPECT_EQ(plain, "a\\\\b\n\t\r\\d001\\d127");
    String high("\xff");
    high.escape(true);
    EXPECT_EQ(high, "\\d255");
}

TEST(StringFormat, CaseAndFill) {
    String s("aBc1");
    EXPECT_EQ(s.toUppercase(), "ABC1");
    EXPECT_EQ(s, "aBc1");
    s.lowercase();
    EXPECT_EQ(s, "abc1");
    s.uppercase();
    EXPECT_EQ(s, "ABC1");
    s.fill('-');
    EXPECT_EQ(s, "----");
}

TEST(StringCompare, NullOrdersLast) {
    String null(nullptr);
    EXPECT_EQ(null.cmp(nullptr), 0);
    EXPECT_EQ(null.cmp("a"), 1);
    EXPECT_EQ(String("a").cmp(nullptr), -1);
    EXPECT_EQ(String("").cmp(nullptr), -1);
    EXPECT_TRUE(String("a") < null);
    EXPECT_FALSE(null == String(""));
    EXPECT_TRUE(null == String(nullptr));
}

TEST(StringCompare, LengthLimits) {
    String s("abcd");
    EXPECT_EQ(s.cmp("abXX", 2), 0);
    EXPECT_GT(s.cmp("abXX", 3), 0);
    EXPECT_EQ(s.cmp("zzz", 0), 0);
    EXPECT_GT(s.cmp("abc"), 0);
    EXPECT_EQ(s.casecmp("ABCD"), 0);
    EXPECT_EQ(s.casecmp("ABxx", 2), 0);
    EXPECT_NE(s.casecmp("ABxx", 3), 0);
    EXPECT_TRUE(String("a") < String("b"));
    EXPECT_TRUE(String("a") != "b");
}

TEST(StringMatch, PatternsAndNulls) {
    EXPECT_TRUE(String("data.bin").match("*.bin"));
    EXPECT_FALSE(String("data.bin").match("*.dd"));
    EXPECT_TRUE(String("x").match(nullptr));
    EXPECT_TRUE(String("").match(nullptr));
    EXPECT_FALSE(String(nullptr).match("*"));
    EXPECT_TRUE(String(nullptr).match(nullptr));
}

TEST(StringNumbers, IsInteger) {
    EXPECT_TRUE(String("123").isInteger());
    EXPECT_TRUE(String("-12").isInteger());
    EXPECT_TRUE(String("+").isInteger());
    EXPECT_TRUE(String("-").isInteger());
    EXPECT_FALSE(String("").isInteger());
    EXPECT_FALSE(String(nullptr).isInteger());
    EXPECT_FALSE(String("1.5").isInteger());
    EXPECT_FALSE(String("--1").isInteger());
    EXPECT_FALSE(String(" 1").isInteger());
    EXPECT_EQ(String("-").toLong(), 0);
}

TEST(StringNumbers, IsNumber) {
    EXPECT_EQ(String("12").isNumber(), 2);
    EXPECT_EQ(String("-1.5").isNumber(), 1);
    EXPECT_EQ(String(".5").isNumber(), 1);
    EXPECT_EQ(String("1.2.3").isNumber(), 0);
    EXPECT_EQ(String("1e5").isNumber(), 0);
    EXPECT_EQ(String("").isNumber(), 0);
    EXPECT_EQ(String(".").isNumber(), 0);
}

TEST(StringNumbers, IsAlpha) {
    EXPECT_TRUE(String("abc123").isAlpha());
    EXPECT_TRUE(String("").isAlpha());
    EXPECT_FALSE(String("a_b").isAlpha());
}

TEST(StringNumbers, Conversions) {
    EXPECT_EQ(String("42abc").toInt(), 42);
    EXPECT_EQ(String("").toLong(), 0);
    EXPECT_EQ(String(nullptr).toLLong(), 0);
    EXPECT_EQ(String("-9000000000").toLLong(), -9000000000LL);
    EXPECT_EQ(String("010").toLong(), 10);  // always base 10
    EXPECT_DOUBLE_EQ(String("2.5x").toDouble(), 2.5);
    EXPECT_EQ(String("").toDouble(), 0.0);
    EXPECT_DOUBLE_EQ(String("2.5").toSmartDouble(), 2.5);
    EXPECT_TRUE(std::isnan(String("2.5x").toSmartDouble()));
    EXPECT_TRUE(std::isnan(String("").toSmartDouble()));
    EXPECT_TRUE(std::isnan(String("x").toSmartDouble()));
}

TEST(StringOutput, StreamWritesAllBytes) {
    std::ostringstream out;
    out << String("a\0b", 3) << String(nullptr) << String("!");
    EXPECT_EQ(out.str(), std::string("a\0b!", 4));
}
