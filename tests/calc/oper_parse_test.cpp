// Operators through expression texts: values, the string forms, and the
// reductions the parser applies.
#include <gtest/gtest.h>

#include <cmath>

#include "oper_testnodes.h"

using namespace calctest;
using zun::CalcParser;

namespace {

struct NumCase {
    const char* text;
    double value;
};

}  // namespace

TEST(OperParse, ExactValues) {
    const NumCase cases[] = {
        {"7 % -3", 4},          {"6 % -3", 3},           {"5 % 3", 2},           {"-5 % 3", 1},
        {"5 % -3", 5},          {"-5 % -3", -2},         {"2 ^ 3 ^ 2", 64},      {"-2 ^ 2", 4},
        {"0 * nan", 0},         {"12 & 10", 8},          {"12 | 10", 14},        {"1 / 0", INFINITY},
        {"nan == nan", 0},      {"nan != nan", 1},       {"!nan", 0},            {"nan && 1", 1},
        {"\"abc\" ~ \"a*\"", 1}, {"\"abc\" ~ \"b*\"", 0}, {"\"\" == null", 1},   {"null == \"\"", 0},
        {"null == null", 0},    {"1 == \"1.0\"", 1},     {"\"1.0\" == 1", 0},    {"\"b\" > \"a\"", 1},
        {"\"b\" <= \"a\"", 0},  {"3 >= 3", 1},           {"2 > 3", 0},           {"\"1\" << \"2\"", 12},
        {"0 || nan", 1},        {"1 && 0", 0},           {"!0", 1},              {"5 - 7", -2},
        {"7.5 % 2", 1.5},       {"-1 / 0", -INFINITY},   {"2.5 * 4", 10},        {"4 ^ 0.5", 2},
        {"nan < 1", 0},         {"-0 == 0", 1},          {"null < \"zzz\"", 0},
        {"\"abc\" ~ \"a?c\"", 1}, {"\"abc\" ~ null", 1}, {"null ~ \"*\"", 0},  {"\"10\" == 10", 1},
    };
    for (const NumCase& c : cases) EXPECT_EQ(numOf(c.text), c.value) << c.text;
    EXPECT_TRUE(std::isnan(numOf("\"a\" + \"b\"")));
    EXPECT_TRUE(std::isnan(numOf("5 % 0")));
    EXPECT_TRUE(std::isnan(numOf("0 / 0")));
}

TEST(OperParse, TextJoins) {
    EXPECT_EQ(strOf("\"ab\" << \"cd\""), "abcd");
    EXPECT_EQ(strOf("\"ab\" >> \"cd\""), "cdab");
    EXPECT_EQ(strOf("\"n=\" << 4 << \";\""), "n=4;");
    EXPECT_EQ(strOf("null << null"), "<null>");
}

TEST(OperParse, ConstantOperatorsFoldToNamedConstants) {
    CalcParser p("1 + 2 * 3", static_cast<zun::CalcBinder*>(nullptr));
    EXPECT_EQ(p.result->nodeType(), CalcNode::TypeConst);
    EXPECT_STREQ(p.result->name.str(), "numeric constant");
    EXPECT_EQ(p.valNum(), 7);
    CalcParser s("\"a\" << \"b\"", static_cast<zun::CalcBinder*>(nullptr));
    EXPECT_STREQ(s.result->name.str(), "string constant");
}

TEST(OperParse, LogicReductionsKeepTheSurvivorAsItIs) {
    ProbeBinder b;
    CalcParser andTrue("1 && x", b);
    EXPECT_EQ(andTrue.result->nodeType(), CalcNode::TypeData);
    EXPECT_EQ(andTrue.valNum(), 5) << "not normalised to 1";
    CalcParser andFalse("x && 0", b);
    EXPECT_EQ(andFalse.result->nodeType(), CalcNode::TypeConst);
    CalcParser orFalse("0 || x", b);
    EXPECT_EQ(orFalse.result->nodeType(), CalcNode::TypeData);
    CalcParser orTrue("x || 2", b);
    EXPECT_EQ(orTrue.valNum(), 2);
    CalcParser inner("(1 + 2) * x", b);
    auto* product = static_cast<zun::CalcNodeOper*>(inner.result);
    EXPECT_EQ(product->left->nodeType(), CalcNode::TypeConst) << "operands reduce in place";
    EXPECT_EQ(inner.valNum(), 15);
    CalcParser both("x && y", b);
    EXPECT_EQ(both.result->nodeType(), CalcNode::TypeOper);
    EXPECT_EQ(both.valNum(), 0);
}

TEST(OperParse, GreaterThanReadsTheRightOperandFirst) {
    ProbeBinder b;
    CalcParser p("x > y", b);
    b.log.clear();
    EXPECT_EQ(p.valNum(), 1);
    EXPECT_EQ(b.log, "yx");
}
