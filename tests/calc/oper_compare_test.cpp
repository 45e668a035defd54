// Comparison, matching, logic and text operators, and the choice of class by
// spelling and left operand type.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <typeinfo>

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

double value(const char* spelling, CalcNode* left, CalcNode* right) { return op(spelling, left, right)->valNum(); }

}  // namespace

TEST(OperCompare, NumericComparisonsWithNaN) {
    EXPECT_EQ(value("==", num(nan()), num(nan())), 0);
    EXPECT_EQ(value("!=", num(nan()), num(nan())), 1);
    EXPECT_EQ(value("<", num(nan()), num(1)), 0);
    EXPECT_EQ(value("<=", num(1), num(nan())), 0);
    EXPECT_EQ(value(">", num(nan()), num(1)), 0);
    EXPECT_EQ(value(">=", num(nan()), num(1)), 0);
    EXPECT_EQ(value("==", num(-0.0), num(0.0)), 1);
}

TEST(OperCompare, NumericOrdering) {
    EXPECT_EQ(value("<", num(1), num(2)), 1);
    EXPECT_EQ(value("<", num(2), num(2)), 0);
    EXPECT_EQ(value("<=", num(2), num(2)), 1);
    EXPECT_EQ(value(">", num(3), num(2)), 1);
    EXPECT_EQ(value(">", num(2), num(2)), 0);
    EXPECT_EQ(value(">=", num(2), num(2)), 1);
    EXPECT_EQ(value(">=", num(1), num(2)), 0);
}

TEST(OperCompare, LeftOperandChoosesNumericOrStringForm) {
    auto numeric = op("==", num(1), str("1.0"));
    EXPECT_EQ(typeid(*numeric), typeid(zun::CalcNodeOperEQNum));
    EXPECT_STREQ(numeric->name.str(), "numeric equality");
    EXPECT_EQ(numeric->valNum(), 1);
    auto text = op("==", str("1.0"), num(1));
    EXPECT_EQ(typeid(*text), typeid(zun::CalcNodeOperEQStr));
    EXPECT_STREQ(text->name.str(), "string equality");
    EXPECT_EQ(text->valNum(), 0);
    EXPECT_EQ(typeid(*op("!=", str("a"), str("b"))), typeid(zun::CalcNodeOperNEStr));
    EXPECT_EQ(typeid(*op("<", str("a"), num(1))), typeid(zun::CalcNodeOperLTStr));
    EXPECT_EQ(typeid(*op("<=", str("a"), num(1))), typeid(zun::CalcNodeOperLEStr));
    // > and >= are chosen by the written left operand, then exchanged
    EXPECT_EQ(typeid(*op(">", str("a"), num(1))), typeid(zun::CalcNodeOperLTStr));
    EXPECT_EQ(typeid(*op(">=", num(1), str("a"))), typeid(zun::CalcNodeOperLENum));
}

TEST(OperCompare, GreaterThanReadsItsRightOperandFirst) {
    std::string log;
    auto n = op(">", new Probe(log, "a", 3), new Probe(log, "b", 2));
    EXPECT_EQ(n->valNum(), 1);
    EXPECT_EQ(log, "ba");
    log.clear();
    auto m = op(">=", new Probe(log, "a", "x"), new Probe(log, "b", "y"));
    EXPECT_EQ(m->valNum(), 0);
    // string forms read their right operand first, and that is the written a
    EXPECT_EQ(log, "ab");
}

TEST(OperCompare, StringComparisonsAndNull) {
    EXPECT_EQ(value("==", str(""), str(nullptr)), 1);
    EXPECT_EQ(value("==", str(nullptr), str("")), 0);
    EXPECT_EQ(value("==", str(nullptr), str(nullptr)), 0);
    EXPECT_EQ(value("!=", str(nullptr), str(nullptr)), 1);
    EXPECT_EQ(value("<", str("abc"), str("abd")), 1);
    EXPECT_EQ(value("<", str("abd"), str("abc")), 0);
    EXPECT_EQ(value("<=", str("abc"), str("abc")), 1);
    EXPECT_EQ(value(">", str("b"), str("a")), 1);
    EXPECT_EQ(value(">=", str("a"), str("b")), 0);
    // a null left stays above any text
    EXPECT_EQ(value("<", str(nullptr), str("zzz")), 0);
    EXPECT_EQ(value("==", str("10"), num(10)), 1);
}

TEST(OperCompare, StringFormsReadRightFirst) {
    for (const char* spelling : {"==", "!=", "<", "<=", "~"}) {
        std::string log;
        auto n = op(spelling, new Probe(log, "L", "a"), new Probe(log, "R", "b"));
        n->valNum();
        EXPECT_EQ(log, "RL") << spelling;
    }
}

TEST(OperCompare, WildcardMatch) {
    EXPECT_EQ(value("~", str("abc"), str("a*")), 1);
    EXPECT_EQ(value("~", str("abc"), str("b*")), 0);
    EXPECT_EQ(value("~", str("abc"), str("a?c")), 1);
    EXPECT_EQ(value("~", str("abc"), str(nullptr)), 1);
    EXPECT_EQ(value("~", str(nullptr), str("*")), 0);
    auto n = op("~", str("x"), str("*"));
    EXPECT_STREQ(n->name.str(), "string match");
}

TEST(OperCompare, LogicOperators) {
    EXPECT_EQ(value("&&", num(nan()), num(1)), 1);
    EXPECT_EQ(value("&&", num(2), num(5)), 1);
    EXPECT_EQ(value("&&", num(2), num(0)), 0);
    EXPECT_EQ(value("||", num(0), num(nan())), 1);
    EXPECT_EQ(value("||", num(0), num(0)), 0);
    EXPECT_EQ(op("!", num(nan()), nullptr)->valNum(), 0);
    EXPECT_EQ(op("!", num(0), nullptr)->valNum(), 1);
    EXPECT_EQ(op("!", num(-0.0), nullptr)->valNum(), 1);
    EXPECT_EQ(op("!", num(3), nullptr)->valNum(), 0);
}

TEST(OperCompare, LogicOperatorsShortCircuit) {
    std::string log;
    EXPECT_EQ(op("&&", num(0), new Probe(log, "R", 1))->valNum(), 0);
    EXPECT_EQ(op("||", num(nan()), new Probe(log, "R", 0))->valNum(), 1);
    EXPECT_EQ(log, "");
    EXPECT_EQ(op("||", num(0), new Probe(log, "R", 4))->valNum(), 1);
    EXPECT_EQ(log, "R");
}

TEST(OperCompare, SuffixJoinsText) {
    auto forward = op("<<", str("ab"), str("cd"));
    EXPECT_EQ(forward->valType(), zun::ValStr);
    EXPECT_STREQ(forward->valStr().str(), "abcd");
    EXPECT_STREQ(forward->name.str(), "string suffix");
    auto backward = op(">>", str("ab"), str("cd"));
    EXPECT_STREQ(backward->valStr().str(), "cdab");
    EXPECT_EQ(op("<<", str("12"), num(3))->valNum(), 123);
    EXPECT_STREQ(op("<<", str(nullptr), str("x"))->valStr().str(), "x");
}

TEST(OperCompare, SuffixReadsRightThenLeft) {
    std::string log;
    op("<<", new Probe(log, "a", "1"), new Probe(log, "b", "2"))->valStr();
    EXPECT_EQ(log, "ba");
    log.clear();
    // a >> b: b is the left of the join, a its right, and a is read first
    EXPECT_STREQ(op(">>", new Probe(log, "a", "1"), new Probe(log, "b", "2"))->valStr().str(), "21");
    EXPECT_EQ(log, "ab");
}

TEST(OperCompare, NamesOfTheOperatorNodes) {
    struct Case {
        const char* spelling;
        const char* name;
    } cases[] = {{"+", "addition"}, {"-", "difference"},     {"*", "multiplication"}, {"/", "division"},
                 {"^", "power"},    {"%", "modulo"},         {"&", "binary and"},     {"|", "binary or"},
                 {"&&", "logic and"}, {"||", "logic or"},   {"<", "numeric less than"},
                 {"<=", "numeric less than or equal to"},  {"!=", "numeric non equality"}};
    for (const Case& c : cases) {
        auto n = op(c.spelling, num(1), num(2));
        ASSERT_TRUE(n) << c.spelling;
        EXPECT_STREQ(n->name.str(), c.name) << c.spelling;
        EXPECT_EQ(n->nodeType(), CalcNode::TypeOper);
    }
    EXPECT_STREQ(op("-", num(1), nullptr)->name.str(), "unary minus");
    EXPECT_STREQ(op("!", num(1), nullptr)->name.str(), "not");
    EXPECT_EQ(op("!", num(1), nullptr)->nodeType(), CalcNode::TypeUnary);
    EXPECT_STREQ(op("<=", str("a"), num(1))->name.str(), "alphanumeric less than or equal to");
}

TEST(OperCompare, UnknownSpellingsTakeNothingOver) {
    std::unique_ptr<CalcNode> left(num(1)), right(num(2));
    EXPECT_EQ(makeOperatorNode("!", left.get(), right.get()), nullptr);
    EXPECT_EQ(makeOperatorNode("**", left.get(), right.get()), nullptr);
    EXPECT_EQ(makeOperatorNode("+", left.get(), nullptr), nullptr);
    EXPECT_EQ(makeOperatorNode("=", left.get(), right.get()), nullptr);
    // both operands are still ours and are released here
}
