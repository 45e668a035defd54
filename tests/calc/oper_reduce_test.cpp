// Parse-time reduction of operators: the constant fold, and the logic
// operators that give way to one operand.
#include <gtest/gtest.h>

#include <memory>
#include <typeinfo>

#include "calc/CalcFunctions.h"
#include "calc/CalcNodeOper.h"
#include "oper_testnodes.h"

using namespace calctest;
using zun::makeOperatorNode;

namespace {

using NodePtr = std::unique_ptr<CalcNode>;

// Reduces node the way the parser does: an answer replaces the node, which is
// then destroyed.
NodePtr reduced(CalcNode* node) {
    NodePtr owner(node);
    if (CalcNode* r = owner->reduce()) return NodePtr(r);
    return owner;
}

}  // namespace

TEST(OperReduce, ConstantOperandsFold) {
    NodePtr n = reduced(makeOperatorNode("+", num(1), num(2)));
    EXPECT_EQ(n->nodeType(), CalcNode::TypeConst);
    EXPECT_STREQ(n->name.str(), "numeric constant");
    EXPECT_EQ(n->valNum(), 3);
    NodePtr s = reduced(makeOperatorNode("<<", str("a"), str("b")));
    EXPECT_EQ(s->nodeType(), CalcNode::TypeConst);
    EXPECT_STREQ(s->valStr().str(), "ab");
}

TEST(OperReduce, VariableOperandsStay) {
    std::string log;
    CalcNode* n = makeOperatorNode("+", num(1), new Probe(log, "x", 5));
    NodePtr r = reduced(n);
    EXPECT_EQ(r.get(), n);
    EXPECT_EQ(r->constLevel(), 0);
}

TEST(OperReduce, AndWithTrueLeftGivesTheRightOperandUnnormalised) {
    std::string log;
    Probe* x = new Probe(log, "x", 5);
    NodePtr r = reduced(makeOperatorNode("&&", num(1), x));
    EXPECT_EQ(r.get(), x);
    EXPECT_EQ(r->valNum(), 5);
}

TEST(OperReduce, AndWithFalseSideGivesTheFalseConstant) {
    std::string log;
    NodePtr left = reduced(makeOperatorNode("&&", num(0), new Probe(log, "x", 5)));
    EXPECT_EQ(left->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(left->valNum(), 0);
    NodePtr right = reduced(makeOperatorNode("&&", new Probe(log, "x", 5), num(0)));
    EXPECT_EQ(right->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(right->valNum(), 0);
    EXPECT_EQ(log, "");
}

TEST(OperReduce, AndWithTrueRightGivesTheLeftOperand) {
    std::string log;
    Probe* x = new Probe(log, "x", 7);
    NodePtr r = reduced(makeOperatorNode("&&", x, num(nan())));
    EXPECT_EQ(r.get(), x);
}

TEST(OperReduce, OrReductions) {
    std::string log;
    NodePtr t = reduced(makeOperatorNode("||", num(3), new Probe(log, "x", 0)));
    EXPECT_EQ(t->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(t->valNum(), 3);
    Probe* x = new Probe(log, "x", 9);
    NodePtr f = reduced(makeOperatorNode("||", num(0), x));
    EXPECT_EQ(f.get(), x);
    Probe* y = new Probe(log, "y", 9);
    NodePtr rf = reduced(makeOperatorNode("||", y, num(0)));
    EXPECT_EQ(rf.get(), y);
    NodePtr rt = reduced(makeOperatorNode("||", new Probe(log, "z", 0), num(2)));
    EXPECT_EQ(rt->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(rt->valNum(), 2);
}

TEST(OperReduce, LogicWithTwoVariablesStays) {
    std::string log;
    CalcNode* a = makeOperatorNode("&&", new Probe(log, "a", 1), new Probe(log, "b", 1));
    EXPECT_EQ(reduced(a).get(), a);
    CalcNode* o = makeOperatorNode("||", new Probe(log, "a", 0), new Probe(log, "b", 0));
    EXPECT_EQ(reduced(o).get(), o);
}

TEST(OperReduce, ChildrenAreReducedInPlace) {
    std::string log;
    // (1 + 2) * x: the sum becomes a constant inside the product
    auto* mul = static_cast<zun::CalcNodeOper*>(
        makeOperatorNode("*", makeOperatorNode("+", num(1), num(2)), new Probe(log, "x", 4)));
    NodePtr r = reduced(mul);
    EXPECT_EQ(r.get(), mul);
    EXPECT_EQ(mul->left->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(r->valNum(), 12);
}
