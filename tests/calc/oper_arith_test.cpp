// Arithmetic and bitwise operators built directly as nodes.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <memory>

#include "calc/CalcFunctions.h"
#include "calc/CalcNodeOper.h"
#include "oper_testnodes.h"

using namespace calctest;
using zun::makeOperatorNode;

namespace {

using NodePtr = std::unique_ptr<CalcNode>;

NodePtr op(const char* spelling, CalcNode* left, CalcNode* right) {
    return NodePtr(makeOperatorNode(spelling, left, right));
}

double value(const char* spelling, double l, double r) { return op(spelling, num(l), num(r))->valNum(); }

}  // namespace

TEST(OperArith, BasicArithmetic) {
    EXPECT_EQ(value("+", 2, 3), 5);
    EXPECT_EQ(value("-", 2, 3), -1);
    EXPECT_EQ(value("*", 2.5, 4), 10);
    EXPECT_EQ(value("/", 7, 2), 3.5);
    EXPECT_EQ(value("^", 2, 10), 1024);
    EXPECT_EQ(value("^", 4, 0.5), 2);
}

TEST(OperArith, StringsThatAreNoNumbersAddToNaN) {
    EXPECT_TRUE(std::isnan(op("+", str("a"), str("b"))->valNum()));
    EXPECT_EQ(op("+", str("12"), str("3"))->valNum(), 15);
}

TEST(OperArith, DivisionByZeroFollowsIeee) {
    EXPECT_EQ(value("/", 1, 0), INFINITY);
    EXPECT_EQ(value("/", -1, 0), -INFINITY);
    EXPECT_TRUE(std::isnan(value("/", 0, 0)));
}

TEST(OperArith, MultiplicationByLeftZeroSkipsRight) {
    std::string log;
    auto n = op("*", num(0), new Probe(log, "R", nan()));
    EXPECT_EQ(bitsOf(n->valNum()), bitsOf(0.0));
    EXPECT_EQ(log, "");
    EXPECT_TRUE(std::isnan(value("*", nan(), 0)));
}

TEST(OperArith, RightOperandReadFirstWhereRequired) {
    for (const char* spelling : {"/", "^", "%"}) {
        std::string log;
        auto n = op(spelling, new Probe(log, "L", 8), new Probe(log, "R", 3));
        n->valNum();
        EXPECT_EQ(log, "RL") << spelling;
    }
    for (const char* spelling : {"+", "-", "*"}) {
        std::string log;
        auto n = op(spelling, new Probe(log, "L", 8), new Probe(log, "R", 3));
        n->valNum();
        EXPECT_EQ(log, "LR") << spelling;
    }
}

TEST(OperArith, UnaryMinusFlipsTheSignBit) {
    auto zero = op("-", num(0.0), nullptr);
    EXPECT_EQ(bitsOf(zero->valNum()), bitsOf(-0.0));
    auto negZero = op("-", num(-0.0), nullptr);
    EXPECT_EQ(bitsOf(negZero->valNum()), bitsOf(0.0));
    double n = std::nan("");
    auto flipped = op("-", num(n), nullptr);
    EXPECT_EQ(bitsOf(flipped->valNum()), bitsOf(n) ^ (std::uint64_t(1) << 63));
    EXPECT_EQ(op("-", num(2.5), nullptr)->valNum(), -2.5);
}

TEST(OperArith, ModuloSignRule) {
    EXPECT_EQ(value("%", 5, 3), 2);
    EXPECT_EQ(value("%", -5, 3), 1);
    EXPECT_EQ(value("%", 5, -3), 5);
    EXPECT_EQ(value("%", -5, -3), -2);
    EXPECT_EQ(value("%", 7, -3), 4);
    EXPECT_EQ(value("%", 6, -3), 3);
    EXPECT_EQ(value("%", 7.5, 2), 1.5);
    EXPECT_TRUE(std::isnan(value("%", 5, 0)));
}

TEST(OperArith, ModuloIntegerFormKeepsTheDividendSign) {
    EXPECT_EQ(op("%", num(7), num(-3))->valInt(), 1);
    EXPECT_EQ(op("%", num(-7), num(3))->valInt(), -1);
    EXPECT_EQ(op("%", num(-7.9), num(3))->valInt(), -1);
    std::string log;
    auto zeroLeft = op("%", num(0.4), new Probe(log, "R", 3));
    EXPECT_EQ(zeroLeft->valInt(), 0);
    EXPECT_EQ(log, "");
    // no trap on a zero or a -1 divisor; no remainder for zero is the integer NA
    EXPECT_EQ(op("%", num(5), num(0))->valInt(), LLONG_MIN);
    EXPECT_EQ(op("%", num(-9223372036854775808.0), num(-1))->valInt(), 0);
}

TEST(OperArith, BinaryAndOrOnIntegers) {
    EXPECT_EQ(value("&", 12, 10), 8);
    EXPECT_EQ(value("|", 12, 10), 14);
    EXPECT_EQ(op("&", num(-1), num(255))->valInt(), 255);
    std::string log;
    auto n = op("&", num(0), new Probe(log, "R", 3));
    EXPECT_EQ(n->valInt(), 0);
    EXPECT_EQ(log, "");
    auto both = op("|", new Probe(log, "L", 0), new Probe(log, "R", 3));
    EXPECT_EQ(both->valInt(), 3);
    EXPECT_EQ(log, "LR");
}

TEST(OperArith, BinaryOperatorsWriteTheIntegerNotTheDouble) {
    // 2^60 + 1 has no exact double: the text must come from the integer.
    zun::CalcNodeConst<long long>* big = new zun::CalcNodeConst<long long>("big", (1LL << 60) + 1);
    auto n = op("|", big, num(2));
    EXPECT_STREQ(n->valStr().str(), "1152921504606846979");
    zun::CalcNodeConst<long long>* big2 = new zun::CalcNodeConst<long long>("big", (1LL << 60) + 7);
    auto a = op("&", big2, new zun::CalcNodeConst<long long>("mask", -1));
    EXPECT_STREQ(a->valStr().str(), "1152921504606846983");
    EXPECT_EQ(a->valNum(), static_cast<double>((1LL << 60) + 7));
}
