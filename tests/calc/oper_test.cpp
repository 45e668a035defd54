// Operators built directly as nodes: the class and name a spelling gives, sign
// bits, the integer forms, and what an unknown spelling leaves to its caller.
#include <gtest/gtest.h>

#include <climits>

#include "calc/CalcFunctions.h"
#include "calc_testing.h"

using namespace calctest;
using zun::makeOperatorNode;

namespace {

std::unique_ptr<CalcNode> op(const char* spelling, CalcNode* left, CalcNode* right) {
    return std::unique_ptr<CalcNode>(makeOperatorNode(spelling, left, right));
}

CalcNode* big(long long v) { return new zun::CalcNodeConst<long long>("integer", v); }

}  // namespace

TEST(CalcOper, NamesAndTypes) {
    const char* const cases[][2] = {
        {"+", "addition"},        {"-", "difference"},     {"*", "multiplication"},
        {"/", "division"},        {"^", "power"},          {"%", "modulo"},
        {"&", "binary and"},      {"|", "binary or"},      {"&&", "logic and"},
        {"||", "logic or"},       {"<", "numeric less than"}, {"<=", "numeric less than or equal to"},
        {"==", "numeric equality"}, {"!=", "numeric non equality"}, {"~", "string match"},
        {">=", "numeric less than or equal to"},  // exchanged operands
    };
    for (const auto& c : cases) {
        auto n = op(c[0], num(1), str("2"));
        ASSERT_TRUE(n) << c[0];
        EXPECT_STREQ(n->name.str(), c[1]) << c[0];
        EXPECT_EQ(n->nodeType(), CalcNode::TypeOper);
        EXPECT_EQ(n->valType(), zun::ValNum);
    }
    // The written left operand chooses the text form, before > and >= exchange them.
    EXPECT_STREQ(op("<=", str("a"), num(1))->name.str(), "alphanumeric less than or equal to");
    EXPECT_STREQ(op(">", str("a"), num(1))->name.str(), "alphanumeric less than");
    EXPECT_EQ(op("<<", str("a"), num(1))->valType(), zun::ValStr);
    EXPECT_STREQ(op("-", num(1), nullptr)->name.str(), "unary minus");
    auto no = op("!", num(1), nullptr);
    EXPECT_STREQ(no->name.str(), "not");
    EXPECT_EQ(no->nodeType(), CalcNode::TypeUnary);
}

TEST(CalcOper, UnaryMinusFlipsTheSignBit) {
    EXPECT_EQ(bitsOf(op("-", num(0.0), nullptr)->valNum()), bitsOf(-0.0));
    EXPECT_EQ(bitsOf(op("-", num(-0.0), nullptr)->valNum()), bitsOf(0.0));
    EXPECT_EQ(bitsOf(op("-", num(nan()), nullptr)->valNum()), bitsOf(nan()) ^ (std::uint64_t(1) << 63));
}

TEST(CalcOper, ShortCircuitsAndIntegerForms) {
    std::string log;
    EXPECT_EQ(op("&&", num(0), probe(log, "R", 1))->valNum(), 0);
    EXPECT_EQ(op("||", num(nan()), probe(log, "R", 0))->valNum(), 1);
    EXPECT_EQ(op("&", num(0), probe(log, "R", 3))->valInt(), 0);
    EXPECT_EQ(op("%", num(0.4), probe(log, "R", 3))->valInt(), 0) << "nor the divisor of a dividend below 1";
    EXPECT_EQ(log, "");
    EXPECT_EQ(op("||", num(0), probe(log, "R", 4))->valNum(), 1);
    EXPECT_EQ(op("|", probe(log, "L", 0.0), probe(log, "R", 3))->valInt(), 3);
    EXPECT_EQ(log, "RLR");
    // % keeps the sign of the dividend
    EXPECT_EQ(op("%", num(7), num(-3))->valInt(), 1);
    EXPECT_EQ(op("%", num(-7.9), num(3))->valInt(), -1);
    // no trap on a zero or a -1 divisor; no remainder by zero is the integer NA
    EXPECT_EQ(op("%", num(5), num(0))->valInt(), LLONG_MIN);
    EXPECT_EQ(op("%", big(LLONG_MIN), num(-1))->valInt(), 0);
    EXPECT_EQ(op("&", num(-1), num(255))->valInt(), 255);
    // 2^60 + 1 has no exact double: the text must come from the integer
    EXPECT_STREQ(op("|", big((1LL << 60) + 1), num(2))->valStr().str(), "1152921504606846979");
    auto a = op("&", big((1LL << 60) + 7), big(-1));
    EXPECT_STREQ(a->valStr().str(), "1152921504606846983");
    EXPECT_EQ(a->valNum(), static_cast<double>((1LL << 60) + 7));
}

TEST(CalcOper, UnknownSpellingsTakeNothingOver) {
    std::unique_ptr<CalcNode> left(num(1)), right(num(2));
    EXPECT_EQ(makeOperatorNode("!", left.get(), right.get()), nullptr);
    EXPECT_EQ(makeOperatorNode("**", left.get(), right.get()), nullptr);
    EXPECT_EQ(makeOperatorNode("+", left.get(), nullptr), nullptr);
}
