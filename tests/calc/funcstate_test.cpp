// The conditional, choose, sync, ifdef and ifndef on raw values, option,
// symref, keep and get on hand-built trees: what is read, what reduction
// puts in a node's place, and what the memory cells hold.
#include <gtest/gtest.h>

#include "calc/CalcFunctions.h"
#include "calc/CalcNodeFuncState.h"
#include "calc_testing.h"

using namespace calctest;
using namespace zun;

namespace {

// Reduces a node the way a parent does: the answer replaces it.
CalcNode* reduced(CalcNode* node) {
    CalcNode::reduceInPlace(node);
    return node;
}

// A binder list over one table with a column x of {4, 5}.
struct Table {
    Binder b;
    CalcBinderListT<CalcBinder> binders;
    Table() {
        b.setColumn("x", {4, 5});
        binders << static_cast<CalcBinder&>(b);
    }
};

}  // namespace

TEST(CalcFuncState, BranchesReadOnlyWhatTheyChoose) {
    auto* cond = new Leaf(0);
    auto* then = new Leaf(1);
    auto* otherwise = new Leaf(2);
    std::unique_ptr<CalcNode> n(makeIfNode(cond, then, otherwise));
    EXPECT_STREQ(n->name.str(), "if?then:else");
    EXPECT_EQ(n->valNum(), 2);
    n->valStr();
    n->valInt();
    EXPECT_EQ(then->reads, 0);
    EXPECT_EQ(otherwise->reads, 3);
    EXPECT_EQ(cond->reads, 3);
    std::unique_ptr<CalcNode> typed(makeIfNode(new Leaf(0), num(1), str("12")));
    EXPECT_EQ(typed->valType(), ValNum) << "the type of the then branch";
    EXPECT_EQ(typed->valNum(), 12);

    auto* a = new Leaf(1);
    auto* b = new Leaf(2);
    auto* d = new Leaf(9);
    CalcNodeFuncChoose c("choose", args({new Leaf(1), d, a, b}));
    EXPECT_EQ(c.valNum(), 2);
    EXPECT_EQ(a->reads + d->reads, 0);
}

TEST(CalcFuncState, AConstantSelectorReducesToTheBranch) {
    auto* then = new Leaf(5);
    CalcNode* n = reduced(makeIfNode(num(1), then, num(2)));
    EXPECT_EQ(n, then);
    delete n;
    auto* otherwise = new Leaf("x");
    n = reduced(makeIfNode(num(0), num(1), otherwise));
    EXPECT_EQ(n, otherwise);
    delete n;
    n = reduced(makeIfNode(num(0), num(1), num(2)));
    EXPECT_EQ(n->nodeType(), CalcNode::TypeConst) << "all constant: the usual fold";
    EXPECT_EQ(n->valNum(), 2);
    delete n;
    n = reduced(makeIfNode(new Leaf(1), num(1), num(2)));
    EXPECT_EQ(n->nodeType(), CalcNode::TypeFunc) << "a variable condition stays";
    delete n;
    auto* chosen = new Leaf(2);
    n = reduced(new CalcNodeFuncChoose("choose", args({num(1), new Leaf(9), new Leaf(1), chosen})));
    EXPECT_EQ(n, chosen);
    delete n;
}

TEST(CalcFuncState, SyncReadsEveryArgumentForANumberOrText) {
    auto* a = new Leaf(1);
    auto* b = new Leaf("b");
    CalcNodeFuncSync s("sync", args({a, b, new Leaf("7")}));
    EXPECT_EQ(s.valType(), ValStr);
    EXPECT_EQ(s.valNum(), 7);
    EXPECT_EQ(a->reads + b->reads, 2) << "every argument read";
    EXPECT_STREQ(s.valStr().str(), "7");
    EXPECT_EQ(a->reads, 2);
    s.valInt();
    s.valPrint();
    EXPECT_EQ(a->reads, 2) << "the other readings go to the last argument alone";
}

TEST(CalcFuncState, DefinedOrNotOnRawValues) {
    EXPECT_EQ(CalcNodeFuncDefineRaw("ifndef", args({raw(""), raw("yy")})).valRaw().count, 2);
    EXPECT_EQ(CalcNodeFuncDefineRaw("ifndef", args({raw("x"), raw("yy")})).valRaw().count, 1);
    EXPECT_EQ(CalcNodeFuncIfDefRaw("ifdef", args({raw(""), raw("yy")})).valRaw().count, 0);
    CalcNodeFuncIfDefRaw h("ifdef", args({raw("x"), raw("yy")}));
    RawBuffer out;
    out.append(1, "p");
    h.valRaw(out);
    EXPECT_EQ(bytesOf(out), "pxyy") << "what the buffer held stays, x and then y follow";
}

TEST(CalcFuncState, OptionBindsAConstantNameOnceByReduction) {
    Table t;
    CalcNode* n = reduced(new CalcNodeFuncOption("option", args({str("x"), num(5)}), &t.binders));
    EXPECT_STREQ(n->name.str(), "x");
    t.b.rows.index = 1;
    EXPECT_EQ(n->valNum(), 5);
    delete n;
    auto* fallback = new Leaf(8);
    n = reduced(new CalcNodeFuncOption("option", args({str("nothing"), fallback}), &t.binders));
    EXPECT_EQ(n, fallback);
    delete n;
    n = reduced(new CalcNodeFuncOption("option", args({new Leaf("x"), num(5)}), &t.binders));
    EXPECT_EQ(n->nodeType(), CalcNode::TypeFunc) << "a variable name is looked up at each read";
    t.b.rows.index = 0;
    EXPECT_EQ(n->valNum(), 4);
    delete n;
}

TEST(CalcFuncState, SymRefLooksUpAtEachRead) {
    Table t;
    CalcNodeFuncSymRef r("symref", args({new Leaf("x")}), &t.binders);
    EXPECT_EQ(r.valType(), ValNum);
    EXPECT_EQ(r.valNum(), 4);
    t.b.rows.index = 1;
    EXPECT_STREQ(r.valStr().str(), "5");
    CalcNodeFuncSymRef none("symref", args({str("y")}), &t.binders);
    EXPECT_TRUE(std::isnan(none.valNum()));
    EXPECT_TRUE(none.valStr().isNull());
    EXPECT_EQ(CalcNodeFuncSymRef("symref", args({str("x")}), nullptr).getRef(), nullptr);
    EXPECT_THROW(CalcNodeFuncSymRef("symref", nullptr, &t.binders), CalcErrorArgsMissing);
    CalcNode* n = reduced(new CalcNodeFuncSymRef("symref", args({str("x")}), &t.binders));
    EXPECT_STREQ(n->name.str(), "x") << "a constant name reduces to the reference";
    delete n;
    n = reduced(new CalcNodeFuncSymRef("symref", args({str("zz")}), &t.binders));
    EXPECT_EQ(n->nodeType(), CalcNode::TypeFunc) << "nothing to bind: it stays";
    delete n;
}

TEST(CalcFuncStateKeep, KeepHoldsAndGetWaitsUntilSampled) {
    Binder b;
    b.setColumn("x", {4, 5, 6});
    CalcNodeFuncKeep k("keep", args({b.bindSymbol("x")}), false);
    EXPECT_EQ(k.cell()->nodeType(), CalcNode::TypeMem);
    EXPECT_STREQ(k.cell()->name.str(), "keep");
    EXPECT_TRUE(k.activates());
    EXPECT_EQ(k.constLevel(), 0);
    CalcNodeFuncKeep g("get", args({b.bindSymbol("x")}), true);
    b.rows.index = 1;
    EXPECT_TRUE(std::isnan(g.valNum()));
    EXPECT_TRUE(g.valStr().isNull());
    EXPECT_EQ(k.valNum(), 5);
    b.rows.index = 2;
    EXPECT_EQ(k.valNum(), 5);
    k.reset();
    EXPECT_EQ(k.valNum(), 5) << "a reset doesn't reach the cell";
    EXPECT_EQ(b.reads["x"], 1) << "get never evaluates by itself";
    k.activate(true);
    g.activate(false);
    EXPECT_EQ(k.valNum(), 6);
    EXPECT_STREQ(k.valStr().str(), "6");
    EXPECT_EQ(k.valInt(), 6);
    EXPECT_STREQ(k.valPrint().str(), "6");
    EXPECT_EQ(g.valNum(), 6);

    String name("v");
    EXPECT_EQ(k.assigned(name), &k);
    EXPECT_EQ(k.property("anything", nullptr), nullptr);
    EXPECT_EQ(k.keyword("anything", nullptr), nullptr);
}

TEST(CalcFuncStateKeep, ConditionsAreOpposite) {
    Binder b;
    b.setColumn("x", {1, 2, 3, 4, 5});
    b.columns["c"] = {0, 1, nan(), 0, 2};
    CalcNodeFuncKeep k("keep", args({b.bindSymbol("x"), b.bindSymbol("c")}), false);
    CalcNodeFuncKeep g("get", args({b.bindSymbol("x"), b.bindSymbol("c")}), true);
    V kept, got;
    for (long i = 0; i < 5; ++i) {
        b.rows.index = i;
        k.activate(true);
        g.activate(true);
        kept.push_back(k.valNum());
        got.push_back(g.valNum());
    }
    // keep samples where c is exactly 0, get where it is not 0 (NaN too)
    EXPECT_EQ(kept, (V{1, 1, 1, 4, 4}));
    EXPECT_TRUE(std::isnan(got[0]));
    EXPECT_EQ(V(got.begin() + 1, got.end()), (V{2, 3, 3, 5}));
}

TEST(CalcFuncStateKeep, Folding) {
    CalcNode* n = reduced(new CalcNodeFuncKeep("keep", args({num(3)}), false));
    EXPECT_EQ(n->nodeType(), CalcNode::TypeConst) << "keep of a constant is that constant";
    EXPECT_EQ(n->valNum(), 3);
    delete n;
    n = reduced(new CalcNodeFuncKeep("get", args({num(3)}), true));
    ASSERT_EQ(n->nodeType(), CalcNode::TypeFunc) << "get of one waits for its sample";
    EXPECT_TRUE(std::isnan(n->valNum()));
    n->activate(true);
    EXPECT_EQ(n->valNum(), 3);
    delete n;
}
