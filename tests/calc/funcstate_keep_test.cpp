// keep and get: memory cells that only activation refreshes.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "calc/CalcError.h"
#include "calc/CalcNodeFuncState.h"
#include "funcstate_testing.h"

using namespace statetest;
using namespace zun;

TEST(FuncStateKeep, HoldsTheFirstValueUntilSampled) {
    RowBinder b;
    b.setColumn("x", {4, 5, 6});
    CalcNodeFuncKeep k("keep", args({b.bindSymbol("x")}), false);
    EXPECT_EQ(k.cell()->nodeType(), CalcNode::TypeMem);
    EXPECT_STREQ(k.cell()->name.str(), "keep");
    EXPECT_TRUE(k.activates());
    b.rows.index = 1;
    EXPECT_EQ(k.valNum(), 5);
    b.rows.index = 2;
    EXPECT_EQ(k.valNum(), 5);
    k.reset();  // a reset doesn't reach the cell
    EXPECT_EQ(k.valNum(), 5);
    EXPECT_EQ(b.reads["x"], 1);
    k.activate(true);
    EXPECT_EQ(k.valNum(), 6);
    EXPECT_STREQ(k.valStr().str(), "6");
    EXPECT_EQ(k.valInt(), 6);
    EXPECT_STREQ(k.valPrint().str(), "6");
}

TEST(FuncStateKeep, GetIsEmptyUntilSampled) {
    RowBinder b;
    b.setColumn("x", {4, 5, 6});
    CalcNodeFuncKeep g("get", args({b.bindSymbol("x")}), true);
    b.rows.index = 1;
    EXPECT_TRUE(std::isnan(g.valNum()));
    EXPECT_TRUE(g.valStr().isNull());
    EXPECT_EQ(b.reads["x"], 0) << "get never evaluates by itself";
    g.activate(false);
    EXPECT_EQ(g.valNum(), 5);
    b.rows.index = 2;
    EXPECT_EQ(g.valNum(), 5);
}

TEST(FuncStateKeep, ConditionsAreOpposite) {
    RowBinder b;
    b.setColumn("x", {1, 2, 3, 4, 5});
    b.columns["c"] = {0, 1, nan(), 0, 2};
    CalcNodeFuncKeep k("keep", args({b.bindSymbol("x"), b.bindSymbol("c")}), false);
    CalcNodeFuncKeep g("get", args({b.bindSymbol("x"), b.bindSymbol("c")}), true);
    double keepSeen[5], getSeen[5];
    for (long i = 0; i < 5; ++i) {
        b.rows.index = i;
        k.activate(true);
        g.activate(true);
        keepSeen[i] = k.valNum();
        getSeen[i] = g.valNum();
    }
    // keep samples where c is exactly 0, get where it is not 0 (NaN too).
    double keepWanted[] = {1, 1, 1, 4, 4};
    EXPECT_EQ(std::vector<double>(keepSeen, keepSeen + 5), std::vector<double>(keepWanted, keepWanted + 5));
    EXPECT_TRUE(std::isnan(getSeen[0]));
    EXPECT_EQ(getSeen[1], 2);
    EXPECT_EQ(getSeen[2], 3);
    EXPECT_EQ(getSeen[3], 3);
    EXPECT_EQ(getSeen[4], 5);
}

TEST(FuncStateKeep, TextCell) {
    RowBinder b;
    b.texts["t"] = {"a", "b"};
    b.rows.count = 2;
    CalcNodeFuncKeep k("keep", args({b.bindSymbol("t")}), false);
    EXPECT_EQ(k.valType(), ValStr);
    EXPECT_STREQ(k.valStr().str(), "a");
    EXPECT_STREQ(k.valPrint().str(), "\"a\"");
    b.rows.index = 1;
    EXPECT_STREQ(k.valStr().str(), "a");
    k.activate(true);
    EXPECT_STREQ(k.valStr().str(), "b");
}

TEST(FuncStateKeep, LevelsAndFolding) {
    RowBinder b;
    b.setColumn("x", {1});
    CalcNodeFuncKeep k("keep", args({b.bindSymbol("x")}), false);
    EXPECT_EQ(k.constLevel(), 0);
    // keep of a constant is that constant; get of one waits for its sample.
    CalcNode* n = new CalcNodeFuncKeep("keep", args({num(3)}), false);
    CalcNode::reduceInPlace(n);
    EXPECT_EQ(n->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(n->valNum(), 3);
    delete n;
    n = new CalcNodeFuncKeep("get", args({num(3)}), true);
    CalcNode::reduceInPlace(n);
    ASSERT_EQ(n->nodeType(), CalcNode::TypeFunc);
    EXPECT_TRUE(std::isnan(n->valNum()));
    n->activate(true);
    EXPECT_EQ(n->valNum(), 3);
    delete n;
}

TEST(FuncStateKeep, MethodsOnlyThroughAVariable) {
    CalcNodeFuncKeep k("keep", args({num(3)}), false);
    EXPECT_EQ(k.property("anything", nullptr), nullptr);
    EXPECT_EQ(k.keyword("anything", nullptr), nullptr);
    String name("v");
    EXPECT_EQ(k.assigned(name), &k);
    EXPECT_THROW(CalcNodeFuncKeep("keep", args({num(1), num(2), num(3)}), false), CalcErrorArgsTooMany);
    EXPECT_THROW(CalcNodeFuncKeep("keep", nullptr, false), CalcErrorArgsMissing);
}
