// String functions built directly as nodes.
#include <gtest/gtest.h>

#include <memory>

#include "calc/CalcError.h"
#include "calc/CalcFunctions.h"
#include "calc/CalcNodeFuncStr.h"
#include "oper_testnodes.h"

using namespace calctest;
using namespace zun;

namespace {

template <class F>
String text(std::initializer_list<CalcNode*> nodes) {
    F f(args(nodes));
    EXPECT_EQ(f.valType(), ValStr);
    return f.valStr();
}

template <class F>
double number(std::initializer_list<CalcNode*> nodes) {
    F f(args(nodes));
    EXPECT_EQ(f.valType(), ValNum);
    return f.valNum();
}

}  // namespace

TEST(FuncStrText, Fill) {
    EXPECT_STREQ(text<CalcNodeFuncStrFill>({num(3)}).str(), "   ");
    EXPECT_STREQ(text<CalcNodeFuncStrFill>({num(2), str("ab")}).str(), "abab");
    EXPECT_STREQ(text<CalcNodeFuncStrFill>({num(2.9), str("ab")}).str(), "abab");
    String none = text<CalcNodeFuncStrFill>({num(0), str("x")});
    EXPECT_FALSE(none.isNull());
    EXPECT_EQ(none.length, 0);
    EXPECT_EQ(text<CalcNodeFuncStrFill>({num(-4)}).length, 0);
    EXPECT_EQ(text<CalcNodeFuncStrFill>({num(nan()), str("x")}).length, 0);
    EXPECT_EQ(text<CalcNodeFuncStrFill>({num(5), str(nullptr)}).length, 0);
}

TEST(FuncStrText, FillThatCannotFitIsNull) {
    EXPECT_TRUE(text<CalcNodeFuncStrFill>({num(3e9), str("ab")}).isNull());
}

TEST(FuncStrText, Pad) {
    EXPECT_STREQ(text<CalcNodeFuncStrPad>({str("ab"), num(5)}).str(), "   ab");
    EXPECT_STREQ(text<CalcNodeFuncStrPad>({str("ab"), num(-5), str("*")}).str(), "ab***");
    EXPECT_STREQ(text<CalcNodeFuncStrPad>({str("ab"), num(5), str("xy")}).str(), "xyxab");
    EXPECT_STREQ(text<CalcNodeFuncStrPad>({str("abcdef"), num(3)}).str(), "abcdef");
    EXPECT_TRUE(text<CalcNodeFuncStrPad>({str(nullptr), num(3)}).isNull());
}

TEST(FuncStrText, SubstrAndNull) {
    EXPECT_STREQ(text<CalcNodeFuncSubstr>({str("abcdef"), num(1), num(2)}).str(), "bc");
    EXPECT_STREQ(text<CalcNodeFuncSubstr>({str("abcdef"), num(3)}).str(), "def");
    EXPECT_STREQ(text<CalcNodeFuncSubstr>({str("abcdef"), num(-2), num(0)}).str(), "a");
    EXPECT_STREQ(text<CalcNodeFuncSubstr>({str("abc"), num(1), num(99)}).str(), "bc");
    std::string log;
    EXPECT_TRUE(text<CalcNodeFuncSubstr>({str(nullptr), new Probe(log, "f", 1)}).isNull());
    EXPECT_EQ(log, "");
}

TEST(FuncStrText, IndexFormIsASubstrNamedAfterTheOperator) {
    std::unique_ptr<CalcNode> n(makeSubstrNode("operator::[]", args({str("abc"), num(1), num(2)})));
    EXPECT_STREQ(n->name.str(), "operator::[]");
    EXPECT_STREQ(n->valStr().str(), "bc");
    EXPECT_THROW(makeSubstrNode("operator::[]", args({str("abc")})), CalcErrorArgsMissing);
}

TEST(FuncStrText, Find) {
    EXPECT_EQ(number<CalcNodeFuncStrFind>({str("abcabc"), str("c")}), 2);
    EXPECT_EQ(number<CalcNodeFuncStrFind>({str("abcabc"), str("c"), num(3)}), 5);
    EXPECT_EQ(number<CalcNodeFuncStrFind>({str("abc"), str("x")}), -1);
    EXPECT_EQ(number<CalcNodeFuncStrFind>({str(nullptr), str("a")}), -1);
    EXPECT_EQ(number<CalcNodeFuncStrFind>({str("abc"), str(nullptr)}), 0);
}

TEST(FuncStrText, Words) {
    EXPECT_STREQ(text<CalcNodeFuncStrWords>({str("a=b=c"), str("="), num(1)}).str(), "b");
    EXPECT_STREQ(text<CalcNodeFuncStrWords>({str("a=b=c"), str("=;"), num(1), num(-1)}).str(), "b=c");
    EXPECT_STREQ(text<CalcNodeFuncStrWords>({str("a b c"), str(" "), num(0), num(1)}).str(), "a b");
    EXPECT_TRUE(text<CalcNodeFuncStrWords>({str("a=b"), str("="), num(5)}).isNull());
    EXPECT_STREQ(text<CalcNodeFuncStrWords>({str("a=b"), str(nullptr), num(1)}).str(), "a=b");
    EXPECT_TRUE(text<CalcNodeFuncStrWords>({str(nullptr), str("="), num(0)}).isNull());
    // no separator character: the whole text is the only word
    EXPECT_STREQ(text<CalcNodeFuncStrWords>({str("a=b"), str(""), num(0)}).str(), "a=b");
    EXPECT_TRUE(text<CalcNodeFuncStrWords>({str("a=b"), str(""), num(1)}).isNull());
}

TEST(FuncStrText, Insert) {
    EXPECT_STREQ(text<CalcNodeFuncStrInsert>({str("abc"), str("XY"), num(1)}).str(), "aXYbc");
    EXPECT_STREQ(text<CalcNodeFuncStrInsert>({str("abc"), str("XY"), num(10)}).str(), "abcXY");
    EXPECT_STREQ(text<CalcNodeFuncStrInsert>({str("abc"), str("XY"), num(-3)}).str(), "XYabc");
    EXPECT_STREQ(text<CalcNodeFuncStrInsert>({str("abc"), str(nullptr), num(1)}).str(), "abc");
    std::string log;
    text<CalcNodeFuncStrInsert>({new Probe(log, "t", "abc"), new Probe(log, "w", "x"), new Probe(log, "p", 0)});
    EXPECT_EQ(log, "wpt");
}

TEST(FuncStrText, EscapeTrimCase) {
    EXPECT_STREQ(text<CalcNodeFuncStrEscape>({str("a\\b\n\x01")}).str(), "a\\\\b\\n\\d001");
    EXPECT_TRUE(text<CalcNodeFuncStrEscape>({str(nullptr)}).isNull());
    EXPECT_STREQ(text<CalcNodeFuncStrTrim>({str(" \tab \t")}).str(), "ab");
    EXPECT_STREQ(text<CalcNodeFuncStrTrim>({str("xxabxx"), str("xyz")}).str(), "ab");
    EXPECT_STREQ(text<CalcNodeFuncStrTrim>({str("   ")}).str(), " ");
    EXPECT_EQ(text<CalcNodeFuncStrTrim>({str("")}).length, 0);
    EXPECT_TRUE(text<CalcNodeFuncStrTrim>({str(nullptr), str("x")}).isNull());
    EXPECT_STREQ(text<CalcNodeFuncLowercase>({str("AbC1")}).str(), "abc1");
    EXPECT_STREQ(text<CalcNodeFuncUppercase>({str("AbC1")}).str(), "ABC1");
    EXPECT_TRUE(text<CalcNodeFuncUppercase>({str(nullptr)}).isNull());
}

TEST(FuncStrText, Swap) {
    EXPECT_STREQ(text<CalcNodeFuncSwap>({str("a.b.c"), str("."), str("::")}).str(), "a::b::c");
    EXPECT_STREQ(text<CalcNodeFuncSwap>({str("a.b.c"), str("."), str(nullptr)}).str(), "abc");
    EXPECT_STREQ(text<CalcNodeFuncSwap>({str("a.b"), str(nullptr), str("x")}).str(), "a.b");
    EXPECT_STREQ(text<CalcNodeFuncSwap>({str("a.b"), str(""), str("x")}).str(), "a.b");
    EXPECT_TRUE(text<CalcNodeFuncSwap>({str(nullptr), str("."), str("x")}).isNull());
}

TEST(FuncStrText, Classification) {
    EXPECT_EQ(number<CalcNodeFuncStrIsNumber>({str("12"), str("-1.5"), num(3)}), 1);
    EXPECT_EQ(number<CalcNodeFuncStrIsNumber>({str("12"), str("1e5")}), 0);
    EXPECT_EQ(number<CalcNodeFuncStrIsDecimal>({str("1.5"), str("-0.25")}), 1);
    EXPECT_EQ(number<CalcNodeFuncStrIsDecimal>({str("1.5"), str("2")}), 0);
    EXPECT_EQ(number<CalcNodeFuncStrIsInteger>({str("-12"), str("+3")}), 1);
    EXPECT_EQ(number<CalcNodeFuncStrIsInteger>({str("12"), str("")}), 0);
    EXPECT_EQ(number<CalcNodeFuncStrIsAlpha>({str("abc1"), str("")}), 1);
    EXPECT_EQ(number<CalcNodeFuncStrIsAlpha>({str("ab c")}), 0);
    std::string log;
    number<CalcNodeFuncStrIsInteger>({new Probe(log, "a", "x"), new Probe(log, "b", "1")});
    EXPECT_EQ(log, "a");
}

TEST(FuncStrText, CharAsciiLength) {
    EXPECT_STREQ(text<CalcNodeFuncChar>({num(65)}).str(), "A");
    EXPECT_STREQ(text<CalcNodeFuncChar>({num(65.9)}).str(), "A");
    EXPECT_EQ(text<CalcNodeFuncChar>({num(0)}).length, 0);
    EXPECT_EQ(number<CalcNodeFuncAscii>({str("Abc")}), 65);
    EXPECT_EQ(number<CalcNodeFuncAscii>({str("\xE9")}), -23);
    EXPECT_EQ(number<CalcNodeFuncAscii>({str(nullptr)}), 0);
    EXPECT_EQ(number<CalcNodeFuncStrLen>({str("abcd")}), 4);
    EXPECT_EQ(number<CalcNodeFuncStrLen>({str(nullptr)}), 0);
    EXPECT_EQ(number<CalcNodeFuncStrLen>({num(12.5)}), 4);
}

TEST(FuncStrText, MinMaxIgnoreNull) {
    EXPECT_STREQ(text<CalcNodeFuncStrMin>({str("b"), str(nullptr), str("a")}).str(), "a");
    EXPECT_STREQ(text<CalcNodeFuncStrMax>({str("b"), str(nullptr), str("a")}).str(), "b");
    EXPECT_STREQ(text<CalcNodeFuncStrMin>({str("b"), str("")}).str(), "");
    EXPECT_TRUE(text<CalcNodeFuncStrMin>({str(nullptr)}).isNull());
    EXPECT_TRUE(text<CalcNodeFuncStrMax>({str(nullptr), str(nullptr)}).isNull());
}

TEST(FuncStrText, Count) {
    EXPECT_EQ(number<CalcNodeFuncStrCount>({str("aaaa"), str("aa")}), 2);
    EXPECT_EQ(number<CalcNodeFuncStrCount>({str("abc"), str("x")}), 0);
    EXPECT_EQ(number<CalcNodeFuncStrCount>({str("abc"), str("")}), -1);
    EXPECT_EQ(number<CalcNodeFuncStrCount>({str(nullptr), str("a")}), 0);
}

TEST(FuncStrText, ArgumentCounts) {
    EXPECT_THROW({ CalcNodeFuncStrWords f(args({str("a"), str("b")})); }, CalcErrorArgsMissing);
    EXPECT_THROW({ CalcNodeFuncStrCount f(args({str("a"), str("b"), str("c")})); }, CalcErrorArgsTooMany);
    EXPECT_THROW({ CalcNodeFuncChar f(nullptr); }, CalcErrorArgsMissing);
}
