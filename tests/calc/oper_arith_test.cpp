// Arithmetic and bitwise operators built directly as nodes: the order in
// which operands are read, signs of zero and NaN, and the integer forms.
#include <gtest/gtest.h>

#include <climits>
#include <memory>

#include "calc/CalcFunctions.h"
#include "oper_testnodes.h"

using namespace calctest;
using zun::makeOperatorNode;

namespace {

using NodePtr = std::unique_ptr<CalcNode>;

NodePtr op(const char* spelling, CalcNode* left, CalcNode* right) {
    return NodePtr(makeOperatorNode(spelling, left, right));
}

CalcNode* big(long long v) { return new zun::CalcNodeConst<long long>("integer", v); }

}  // namespace

TEST(OperArith, RightOperandReadFirstWhereRequired) {
    for (const char* spelling : {"/", "^", "%"}) {
        std::string log;
        op(spelling, new Probe(log, "L", 8), new Probe(log, "R", 3))->valNum();
        EXPECT_EQ(log, "RL") << spelling;
    }
    for (const char* spelling : {"+", "-", "*", "==", "<"}) {
        std::string log;
        op(spelling, new Probe(log, "L", 8), new Probe(log, "R", 3))->valNum();
        EXPECT_EQ(log, "LR") << spelling;
    }
}

TEST(OperArith, MultiplicationByLeftZeroSkipsRight) {
    std::string log;
    EXPECT_EQ(bitsOf(op("*", num(-0.0), new Probe(log, "R", nan()))->valNum()), bitsOf(0.0));
    EXPECT_EQ(log, "");
}

TEST(OperArith, UnaryMinusFlipsTheSignBit) {
    EXPECT_EQ(bitsOf(op("-", num(0.0), nullptr)->valNum()), bitsOf(-0.0));
    EXPECT_EQ(bitsOf(op("-", num(-0.0), nullptr)->valNum()), bitsOf(0.0));
    double n = nan();
    EXPECT_EQ(bitsOf(op("-", num(n), nullptr)->valNum()), bitsOf(n) ^ (std::uint64_t(1) << 63));
}

TEST(OperArith, ModuloIntegerFormKeepsTheDividendSign) {
    EXPECT_EQ(op("%", num(7), num(-3))->valInt(), 1);
    EXPECT_EQ(op("%", num(-7.9), num(3))->valInt(), -1);
    std::string log;
    EXPECT_EQ(op("%", num(0.4), new Probe(log, "R", 3))->valInt(), 0);
    EXPECT_EQ(log, "");
    // no trap on a zero or a -1 divisor; no remainder by zero is the integer NA
    EXPECT_EQ(op("%", num(5), num(0))->valInt(), LLONG_MIN);
    EXPECT_EQ(op("%", big(LLONG_MIN), num(-1))->valInt(), 0);
}

TEST(OperArith, BinaryAndSkipsRightOnZero) {
    std::string log;
    EXPECT_EQ(op("&", num(0), new Probe(log, "R", 3))->valInt(), 0);
    EXPECT_EQ(log, "");
    EXPECT_EQ(op("|", new Probe(log, "L", 0), new Probe(log, "R", 3))->valInt(), 3);
    EXPECT_EQ(log, "LR");
    EXPECT_EQ(op("&", num(-1), num(255))->valInt(), 255);
}

TEST(OperArith, BinaryOperatorsWriteTheIntegerNotTheDouble) {
    // 2^60 + 1 has no exact double: the text must come from the integer
    EXPECT_STREQ(op("|", big((1LL << 60) + 1), num(2))->valStr().str(), "1152921504606846979");
    auto a = op("&", big((1LL << 60) + 7), big(-1));
    EXPECT_STREQ(a->valStr().str(), "1152921504606846983");
    EXPECT_EQ(a->valNum(), static_cast<double>((1LL << 60) + 7));
}
