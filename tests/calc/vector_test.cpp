// vector() as the program around a statement sees it: the node and its
// generations, the shifts of @shift, the forms that only a caller reads, and
// the parser's binder list that a vector enters and leaves.
#include <gtest/gtest.h>

#include "calc/CalcNodeVector.h"
#include "calc_testing.h"

using namespace calctest;
using zun::CalcNodeVector;

namespace {

CalcNodeVector* vectorOf(CalcParser& p) { return dynamic_cast<CalcNodeVector*>(p.implements("vector")); }

}  // namespace

TEST(CalcVector, NodeModel) {
    auto p = parse("a=vector(2)[1,2]; a");
    CalcNodeVector* v = vectorOf(*p);
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->nodeType(), CalcNode::TypeMem);
    EXPECT_EQ(v->constLevel(), 0);
    EXPECT_EQ(v->generation, 1);
    EXPECT_EQ(v->total, 2);
    EXPECT_FALSE(v->bindActive);
    EXPECT_EQ(v->implements("other"), nullptr);
    EXPECT_EQ(v->bindSymbol("$0"), nullptr) << "assigned: no more symbols";
    std::list<CalcNode*> found;
    EXPECT_GE(p->listNodes(found, CalcNode::TypeMem), 1);
    EXPECT_EQ(parse("a=vector(2)[1,2]; a[1]")->constLevel(), -1) << "a constant read folds";

    auto t = parse("vector(2)['a','b']");
    EXPECT_EQ(t->valType(), zun::ValStr);
    EXPECT_TRUE(t->valStr().isNull()) << "a vector has a printed form only";
    EXPECT_TRUE(std::isnan(t->valNum()));
    EXPECT_EQ(text(parse("vector(2,2)[1,2,3,4]")->valInit()), "vector(2,2)[1,2,3,4]");
    EXPECT_EQ(text(parse("vector(3)")->valInit()), "vector(3)");
    EXPECT_EQ(text(parse("vector(2)['a',5]")->valInit()), "vector(2)[\"a\",5]");
}

TEST(CalcVector, Shifts) {
    auto p = parse("a=vector(2,3)@shift(1,2)[0]; a");
    zun::ObjAppendList<long> shifts;
    shifts << 99L;
    vectorOf(*p)->getBindShifts(shifts);
    ASSERT_EQ(shifts.count, 2);
    EXPECT_EQ(shifts[0], 1);
    EXPECT_EQ(shifts[1], 2);
    vectorOf(*parse("a=vector(2,3); a"))->getBindShifts(shifts);
    ASSERT_EQ(shifts.count, 2);
    EXPECT_EQ(shifts[0] + shifts[1], 0);
    EXPECT_THROW(parse("vector(2)@shift(1)@shift(2)"), zun::CalcErrorMethodInvalid);
}

TEST(CalcVector, LeavesTheBinderListWhenDestroyed) {
    Binder b;
    // The vector goes with the branch that the constant condition drops; the
    // parser must not ask it for symbols afterwards.
    auto p = parse("1 ? 2 : vector(2)[1,2]", &b);
    EXPECT_EQ(p->vectorBinders().size(), 0);
    EXPECT_EQ(p->bindSymbol("$0"), nullptr);
    auto q = parse("vector(2)[1,2]", &b);
    EXPECT_EQ(q->binders.size(), 2) << "the vectors follow the binder given";
    EXPECT_EQ(q->vectorBinders().size(), 1);
    EXPECT_EQ(parse("", &b)->binders.size(), 1) << "no vector, no entry";
}

TEST(CalcVector, AssignedVectorsLeaveTheParsersVectors) {
    auto p = parse("a = vector(2)[1,2]; b = vector(3)[$1]; vector(2,2)[0]");
    EXPECT_EQ(p->vectorBinders().size(), 1) << "only the vector of the statement under way still answers";
    auto q = parse("a = vector(2)[1,2] + 0; vector(2,2)[0]");
    EXPECT_EQ(q->vectorBinders().size(), 1) << "a vector inside an expression ends with its statement";
    // Elements that make vectors enter them too, one per element.
    EXPECT_EQ(parse("vector(50)[vector(1,2)[0]]")->vectorBinders().size(), 51);
}
