// String functions built directly as nodes: what is read and in which order,
// null strings, and the limits of the text type.
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

TEST(FuncStrText, EmptyIsNotNull) {
    String none = text<CalcNodeFuncStrFill>({num(0), str("x")});
    EXPECT_FALSE(none.isNull());
    EXPECT_EQ(none.length, 0);
    EXPECT_FALSE(text<CalcNodeFuncStrFill>({num(nan())}).isNull());
    EXPECT_FALSE(text<CalcNodeFuncStrFill>({num(5), str(nullptr)}).isNull());
    EXPECT_FALSE(text<CalcNodeFuncStrMin>({str("b"), str("")}).isNull());
}

TEST(FuncStrText, FillThatCannotFitIsNull) {
    EXPECT_TRUE(text<CalcNodeFuncStrFill>({num(3e9), str("ab")}).isNull());
    EXPECT_TRUE(text<CalcNodeFuncStrFill>({num(3e9)}).isNull());
    EXPECT_TRUE(text<CalcNodeFuncStrPad>({str("a"), num(-2147483648.0)}).isNull());
}

TEST(FuncStrText, NullTextGivesNullWithoutReadingTheRest) {
    std::string log;
    EXPECT_TRUE(text<CalcNodeFuncSubstr>({str(nullptr), new Probe(log, "f", 1)}).isNull());
    EXPECT_TRUE(text<CalcNodeFuncStrWords>({str(nullptr), new Probe(log, "s", " "), num(0)}).isNull());
    EXPECT_TRUE(text<CalcNodeFuncSwap>({str(nullptr), new Probe(log, "a", "."), str("x")}).isNull());
    EXPECT_TRUE(text<CalcNodeFuncStrPad>({str(nullptr), new Probe(log, "w", 3)}).isNull());
    EXPECT_EQ(number<CalcNodeFuncStrFind>({str(nullptr), new Probe(log, "w", "a")}), -1);
    EXPECT_EQ(log, "");
    EXPECT_TRUE(text<CalcNodeFuncStrEscape>({str(nullptr)}).isNull());
    EXPECT_TRUE(text<CalcNodeFuncUppercase>({str(nullptr)}).isNull());
    EXPECT_TRUE(text<CalcNodeFuncStrTrim>({str(nullptr), str("x")}).isNull());
}

TEST(FuncStrText, InsertReadsWhatThenPositionThenText) {
    std::string log;
    text<CalcNodeFuncStrInsert>({new Probe(log, "t", "abc"), new Probe(log, "w", "x"), new Probe(log, "p", 0)});
    EXPECT_EQ(log, "wpt");
    EXPECT_STREQ(text<CalcNodeFuncStrInsert>({str("abc"), str("XY"), num(-3)}).str(), "XYabc");
}

TEST(FuncStrText, ClassificationStopsAtTheFirstFailure) {
    std::string log;
    EXPECT_EQ(number<CalcNodeFuncStrIsInteger>({new Probe(log, "a", "x"), new Probe(log, "b", "1")}), 0);
    EXPECT_EQ(log, "a");
}

TEST(FuncStrText, AsciiIsSigned) {
    EXPECT_EQ(number<CalcNodeFuncAscii>({str("\xE9")}), -23);
    EXPECT_EQ(number<CalcNodeFuncAscii>({str(nullptr)}), 0);
    EXPECT_STREQ(text<CalcNodeFuncChar>({num(256 + 65)}).str(), "A");
}

TEST(FuncStrText, IndexFormIsASubstrNamedAfterTheOperator) {
    std::unique_ptr<CalcNode> n(makeSubstrNode("operator::[]", args({str("abc"), num(1), num(2)})));
    EXPECT_STREQ(n->name.str(), "operator::[]");
    EXPECT_STREQ(n->valStr().str(), "bc");
    EXPECT_THROW(makeSubstrNode("operator::[]", args({str("abc")})), CalcErrorArgsMissing);
}
