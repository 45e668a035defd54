// recurse, recurse0 and lastof walked row by row over a table, on hand-built
// trees: forward walks, repeated reads at one index, jumps backwards.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "calc/CalcError.h"
#include "calc/CalcFunctions.h"
#include "calc/CalcNodeFuncState.h"
#include "funcstate_testing.h"

using namespace statetest;
using namespace zun;

namespace {

CalcNode* plus(CalcNode* a, CalcNode* b) { return makeOperatorNode("+", a, b); }
CalcNode* self() { return new CalcNodeSelf(1, 4); }

using Recurse = CalcNodeFuncRecurse<double>;
using LastOf = CalcNodeFuncLastOf<double>;

double at(CalcNode& node, RowBinder& b, long i) {
    b.rows.index = i;
    return node.valNum();
}

}  // namespace

TEST(FuncStateRecurse, SeedIsTheInitialValue) {
    RowBinder b;
    b.rows.count = 5;
    Recurse r("recurse", args({plus(self(), num(1)), num(10)}), b, -1);
    EXPECT_EQ(at(r, b, 0), 11);
    EXPECT_EQ(at(r, b, 4), 15);

    Recurse r0("recurse0", args({plus(self(), num(1)), num(10)}), b, 0);
    EXPECT_EQ(at(r0, b, 0), 10);
    EXPECT_EQ(at(r0, b, 1), 11);
    EXPECT_EQ(at(r0, b, 4), 14);
    Recurse plain0("recurse0", args({plus(self(), num(1))}), b, 0);
    EXPECT_EQ(at(plain0, b, 0), 0);
    EXPECT_EQ(at(plain0, b, 2), 2);
}

TEST(FuncStateRecurse, RunningSumCostsOneEvaluationPerStepForward) {
    RowBinder b;
    b.setColumn("x", {1, 2, 3, 4, 5});
    Recurse r("recurse", args({plus(self(), b.bindSymbol("x"))}), b, -1);
    int& reads = b.reads["x"];
    double expected[] = {1, 3, 6, 10, 15};
    for (long i = 0; i < 5; ++i) {
        EXPECT_EQ(at(r, b, i), expected[i]) << i;
        EXPECT_EQ(reads, i + 1) << i;
    }
    EXPECT_EQ(b.rows.moves, 0) << "a forward walk never moves the iterator";
}

TEST(FuncStateRecurse, RepeatedReadAtOneIndexStartsAgainFromTheSeed) {
    RowBinder b;
    b.setColumn("x", {1, 2, 3, 4, 5});
    Recurse r("recurse", args({plus(self(), b.bindSymbol("x"))}), b, -1);
    EXPECT_EQ(at(r, b, 3), 10);
    int& reads = b.reads["x"];
    reads = 0;
    EXPECT_EQ(at(r, b, 3), 10);
    EXPECT_EQ(reads, 4) << "indices 0 to 3 again";
    EXPECT_EQ(b.rows.index, 3);
}

TEST(FuncStateRecurse, JumpsBackwardsAndForwards) {
    RowBinder b;
    b.setColumn("x", {1, 2, 3, 4, 5, 6});
    Recurse r("recurse", args({plus(self(), b.bindSymbol("x"))}), b, -1);
    EXPECT_EQ(at(r, b, 5), 21);
    EXPECT_EQ(at(r, b, 1), 3);
    EXPECT_EQ(at(r, b, 4), 15);
    EXPECT_EQ(at(r, b, 0), 1);
    EXPECT_EQ(at(r, b, 2), 6);
    b.rows.path.clear();
    EXPECT_EQ(at(r, b, 4), 15);
    // From index 2 held: only index 3 is caught up, then back to 4.
    EXPECT_EQ(b.rows.path, (std::vector<long>{3, 4}));
}

TEST(FuncStateRecurse, NestedRecurseTakesItsOwnSelf) {
    RowBinder b;
    b.rows.count = 4;
    // outer: self + inner, inner: self + 1 (the inner counts 1, 2, 3, ...)
    auto* inner = new Recurse("recurse", args({plus(self(), num(1))}), b, -1);
    Recurse outer("recurse", args({plus(self(), inner)}), b, -1);
    EXPECT_EQ(at(outer, b, 0), 1);
    EXPECT_EQ(at(outer, b, 1), 3);
    EXPECT_EQ(at(outer, b, 3), 10);
}

TEST(FuncStateRecurse, TypesFollowTheInitialValue) {
    RowBinder b;
    b.rows.count = 3;
    CalcNodeFuncRecurse<String> s("recurse", args({self(), str("seed")}), b, -1);
    EXPECT_EQ(s.valType(), ValStr);
    b.rows.index = 2;
    EXPECT_STREQ(s.valStr().str(), "seed");

    Recurse n("recurse", args({plus(self(), num(0.5))}), b, -1);
    EXPECT_EQ(n.valType(), ValNum);
    b.rows.index = 2;
    EXPECT_STREQ(n.valStr().str(), "1.5");
    EXPECT_EQ(n.valInt(), 1);
}

TEST(FuncStateRecurse, NegativeIndexGivesTheSeedAndLeavesTheStateAlone) {
    RowBinder b;
    b.setColumn("x", {1, 2, 3});
    Recurse r("recurse", args({plus(self(), b.bindSymbol("x")), num(100)}), b, -1);
    EXPECT_EQ(at(r, b, 1), 103);
    EXPECT_EQ(at(r, b, -1), 100);
    b.rows.path.clear();
    EXPECT_EQ(at(r, b, 2), 106);
    EXPECT_TRUE(b.rows.path.empty());
}

TEST(FuncStateRecurse, LevelIncludesTheIterator) {
    RowBinder b;
    b.rows.count = 3;
    // A constant expression still changes with the index (the seed at 0 of
    // recurse0 differs), so it must not fold.
    Recurse r0("recurse0", args({num(5), num(1)}), b, 0);
    EXPECT_EQ(r0.constLevel(), 0);
    EXPECT_EQ(r0.reduce(), nullptr);
    EXPECT_EQ(at(r0, b, 0), 1);
    EXPECT_EQ(at(r0, b, 1), 5);
}

TEST(FuncStateRecurse, NeedsAnIterator) {
    RowBinder b;
    b.offerIterator = false;
    EXPECT_THROW(Recurse("recurse", args({plus(self(), num(1))}), b, -1), CalcErrorIterator);
    EXPECT_THROW(LastOf("lastof", args({num(1)}), b), CalcErrorIterator);
}

TEST(FuncStateRecurse, ArgumentCountIsChecked) {
    RowBinder b;
    EXPECT_THROW(Recurse("recurse", args({}), b, -1), CalcErrorArgsMissing);
    EXPECT_THROW(Recurse("recurse", args({num(1), num(2), num(3)}), b, -1), CalcErrorArgsTooMany);
    EXPECT_EQ(b.iteratorsMade, 0) << "the count is checked before the iterator is bound";
}

TEST(FuncStateLastOf, SeedAtIndexZeroThenThePreviousValue) {
    RowBinder b;
    b.setColumn("x", {10, 20, 30, 40});
    LastOf l("lastof", args({b.bindSymbol("x"), num(7)}), b);
    EXPECT_EQ(at(l, b, 0), 7);
    EXPECT_EQ(at(l, b, 1), 10);
    EXPECT_EQ(at(l, b, 2), 20);
    EXPECT_EQ(at(l, b, 3), 30);
    EXPECT_EQ(b.reads["x"], 4) << "one read per index walking forward";
    EXPECT_EQ(b.rows.moves, 0);

    LastOf plain("lastof", args({b.bindSymbol("x")}), b);
    EXPECT_EQ(at(plain, b, 0), 0);
}

TEST(FuncStateLastOf, RepeatedReadsAndJumps) {
    RowBinder b;
    b.setColumn("x", {10, 20, 30, 40});
    LastOf l("lastof", args({b.bindSymbol("x"), num(7)}), b);
    int& reads = b.reads["x"];
    EXPECT_EQ(at(l, b, 3), 30);
    EXPECT_EQ(b.rows.index, 3);
    reads = 0;
    EXPECT_EQ(at(l, b, 3), 30);
    EXPECT_EQ(reads, 0) << "a repeated read answers what it holds";
    EXPECT_EQ(at(l, b, 1), 10);
    EXPECT_EQ(at(l, b, 0), 7);
    EXPECT_EQ(at(l, b, 2), 20);
    EXPECT_EQ(b.rows.index, 2);
}

TEST(FuncStateLastOf, TextValues) {
    RowBinder b;
    b.texts["t"] = {"a", "b", "c"};
    b.rows.count = 3;
    CalcNodeFuncLastOf<String> l("lastof", args({b.bindSymbol("t"), str("none")}), b);
    EXPECT_EQ(l.valType(), ValStr);
    b.rows.index = 0;
    EXPECT_STREQ(l.valStr().str(), "none");
    b.rows.index = 2;
    EXPECT_STREQ(l.valStr().str(), "b");
    EXPECT_TRUE(std::isnan(l.valNum()));
}
