// Comparison, logic and text operators built directly as nodes: the class a
// spelling gives, operand order and short-circuits.
#include <gtest/gtest.h>

#include <memory>
#include <typeinfo>

#include "calc/CalcFunctions.h"
#include "oper_testnodes.h"

using namespace calctest;
using zun::makeOperatorNode;

namespace {

using NodePtr = std::unique_ptr<CalcNode>;

NodePtr op(const char* spelling, CalcNode* left, CalcNode* right) {
    return NodePtr(makeOperatorNode(spelling, left, right));
}

}  // namespace

TEST(OperCompare, LeftOperandChoosesNumericOrStringForm) {
    EXPECT_EQ(typeid(*op("==", num(1), str("1"))), typeid(zun::CalcNodeOperEQNum));
    EXPECT_EQ(typeid(*op("==", str("1"), num(1))), typeid(zun::CalcNodeOperEQStr));
    EXPECT_EQ(typeid(*op("!=", str("a"), str("b"))), typeid(zun::CalcNodeOperNEStr));
    EXPECT_EQ(typeid(*op("<", str("a"), num(1))), typeid(zun::CalcNodeOperLTStr));
    EXPECT_EQ(typeid(*op("<=", num(1), str("a"))), typeid(zun::CalcNodeOperLENum));
    // > and >= are chosen by the written left operand, then exchanged
    EXPECT_EQ(typeid(*op(">", str("a"), num(1))), typeid(zun::CalcNodeOperLTStr));
    EXPECT_EQ(typeid(*op(">=", num(1), str("a"))), typeid(zun::CalcNodeOperLENum));
    EXPECT_EQ(typeid(*op(">>", str("a"), str("b"))), typeid(zun::CalcNodeOperSuffix));
}

TEST(OperCompare, ExchangedOperandsAreReadInTheirNewOrder) {
    std::string log;
    EXPECT_EQ(op(">", new Probe(log, "a", 3), new Probe(log, "b", 2))->valNum(), 1);
    EXPECT_EQ(log, "ba");
    log.clear();
    // the string form reads its right operand first, which is the written a
    EXPECT_EQ(op(">=", new Probe(log, "a", "x"), new Probe(log, "b", "y"))->valNum(), 0);
    EXPECT_EQ(log, "ab");
    log.clear();
    EXPECT_STREQ(op(">>", new Probe(log, "a", "1"), new Probe(log, "b", "2"))->valStr().str(), "21");
    EXPECT_EQ(log, "ab");
}

TEST(OperCompare, TextFormsReadRightFirst) {
    for (const char* spelling : {"==", "!=", "<", "<=", "~", "<<"}) {
        std::string log;
        NodePtr n = op(spelling, new Probe(log, "L", "a"), new Probe(log, "R", "b"));
        n->valStr();
        EXPECT_EQ(log, "RL") << spelling;
    }
}

TEST(OperCompare, LogicOperatorsShortCircuit) {
    std::string log;
    EXPECT_EQ(op("&&", num(0), new Probe(log, "R", 1))->valNum(), 0);
    EXPECT_EQ(op("||", num(nan()), new Probe(log, "R", 0))->valNum(), 1);
    EXPECT_EQ(log, "");
    EXPECT_EQ(op("||", num(0), new Probe(log, "R", 4))->valNum(), 1);
    EXPECT_EQ(log, "R");
}

TEST(OperCompare, NodeNamesAndTypes) {
    const char* const cases[][2] = {
        {"+", "addition"},       {"-", "difference"},           {"*", "multiplication"},
        {"/", "division"},       {"^", "power"},                {"%", "modulo"},
        {"&", "binary and"},     {"|", "binary or"},            {"&&", "logic and"},
        {"||", "logic or"},      {"<", "numeric less than"},    {"<=", "numeric less than or equal to"},
        {"==", "numeric equality"}, {"!=", "numeric non equality"}, {"~", "string match"},
    };
    for (const auto& c : cases) {
        NodePtr n = op(c[0], num(1), num(2));
        ASSERT_TRUE(n) << c[0];
        EXPECT_STREQ(n->name.str(), c[1]) << c[0];
        EXPECT_EQ(n->nodeType(), CalcNode::TypeOper);
        EXPECT_EQ(n->valType(), zun::ValNum);
    }
    EXPECT_STREQ(op("<=", str("a"), num(1))->name.str(), "alphanumeric less than or equal to");
    EXPECT_STREQ(op("<", str("a"), num(1))->name.str(), "alphanumeric less than");
    EXPECT_EQ(op("<<", str("a"), num(1))->valType(), zun::ValStr);
    EXPECT_STREQ(op("-", num(1), nullptr)->name.str(), "unary minus");
    NodePtr no = op("!", num(1), nullptr);
    EXPECT_STREQ(no->name.str(), "not");
    EXPECT_EQ(no->nodeType(), CalcNode::TypeUnary);
}

TEST(OperCompare, UnknownSpellingsTakeNothingOver) {
    std::unique_ptr<CalcNode> left(num(1)), right(num(2));
    EXPECT_EQ(makeOperatorNode("!", left.get(), right.get()), nullptr);
    EXPECT_EQ(makeOperatorNode("**", left.get(), right.get()), nullptr);
    EXPECT_EQ(makeOperatorNode("+", left.get(), nullptr), nullptr);
    // both operands are still owned here, and released by the test
}
