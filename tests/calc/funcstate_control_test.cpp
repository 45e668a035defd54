// The conditional, choose, const, sync, ifdef, ifndef, option and symref on
// hand-built trees.
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

// A leaf that counts its reads and answers a fixed number or text.
class Counted : public CalcNode {
public:
    int reads = 0;
    double number;
    String text;
    int type;
    int level;

    explicit Counted(double v, int level = 0) : CalcNode("counted"), number(v), type(ValNum), level(level) {}
    explicit Counted(const char* s, int level = 0) : CalcNode("counted"), number(0), text(s), type(ValStr), level(level) {}
    Type nodeType() override { return TypeData; }
    int valType() override { return type; }
    int constLevel() override { return level; }
    double valNum() override {
        ++reads;
        return type == ValNum ? number : text.toSmartDouble();
    }
    String valStr() override {
        ++reads;
        if (type == ValStr) return text;
        String s;
        s << number;
        return s;
    }
};

CalcNode* ifNode(CalcNode* c, CalcNode* t, CalcNode* e) { return makeIfNode(c, t, e); }

// Reduces a node the way a parent does: the answer replaces it.
CalcNode* reduced(CalcNode* node) {
    CalcNode::reduceInPlace(node);
    return node;
}

}  // namespace

TEST(FuncStateIf, OnlyTheSelectedBranchIsRead) {
    auto* cond = new Counted(0.0);
    auto* then = new Counted(1.0);
    auto* otherwise = new Counted(2.0);
    std::unique_ptr<CalcNode> n(ifNode(cond, then, otherwise));
    EXPECT_STREQ(n->name.str(), "if?then:else");
    EXPECT_EQ(n->valNum(), 2);
    n->valStr();
    n->valInt();
    EXPECT_EQ(then->reads, 0);
    EXPECT_EQ(otherwise->reads, 3);
    EXPECT_EQ(cond->reads, 3);
}

TEST(FuncStateIf, TypeIsThatOfTheThenBranch) {
    std::unique_ptr<CalcNode> n(ifNode(new Counted(0.0), num(1), str("12")));
    EXPECT_EQ(n->valType(), ValNum);
    EXPECT_EQ(n->valNum(), 12);
}

TEST(FuncStateIf, ConstantConditionReducesToTheBranch) {
    auto* then = new Counted(5.0);
    CalcNode* n = reduced(ifNode(num(1), then, num(2)));
    EXPECT_EQ(n, then);
    delete n;

    auto* otherwise = new Counted("x");
    n = reduced(ifNode(num(0), num(1), otherwise));
    EXPECT_EQ(n, otherwise);
    delete n;

    // All constant: the usual fold to a constant.
    n = reduced(ifNode(num(0), num(1), num(2)));
    EXPECT_EQ(n->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(n->valNum(), 2);
    delete n;

    // A variable condition stays.
    auto* cond = new Counted(1.0);
    n = reduced(ifNode(cond, num(1), num(2)));
    EXPECT_EQ(n->nodeType(), CalcNode::TypeFunc);
    delete n;
}

TEST(FuncStateChoose, PicksByIndexWithADefault) {
    auto choose = [](double n) {
        CalcNodeFuncChoose c("choose", args({num(n), num(9), num(1), num(2)}));
        return c.valNum();
    };
    EXPECT_EQ(choose(-1), 9);
    EXPECT_EQ(choose(0), 1);
    EXPECT_EQ(choose(1), 2);
    EXPECT_EQ(choose(1.9), 2);
    EXPECT_EQ(choose(2), 9);
    EXPECT_EQ(choose(nan()), 9);
    EXPECT_EQ(choose(1e30), 9);
    EXPECT_EQ(choose(4294967297.0), 9) << "no wrap-around to 1";
}

TEST(FuncStateChoose, ReadsOnlyTheChosenValue) {
    auto* a = new Counted(1.0);
    auto* b = new Counted(2.0);
    auto* d = new Counted(9.0);
    CalcNodeFuncChoose c("choose", args({new Counted(1.0), d, a, b}));
    EXPECT_EQ(c.valNum(), 2);
    EXPECT_EQ(a->reads + d->reads, 0);
    EXPECT_EQ(c.valType(), ValNum);
}

TEST(FuncStateChoose, CountsAndConstantReduction) {
    EXPECT_THROW(CalcNodeFuncChoose("choose", args({num(1)})), CalcErrorArgsMissing);
    auto* b = new Counted(2.0);
    CalcNode* n = reduced(new CalcNodeFuncChoose("choose", args({num(1), new Counted(9.0), new Counted(1.0), b})));
    EXPECT_EQ(n, b);
    delete n;
}

TEST(FuncStateConst, FoldsWhateverItsArgument) {
    auto* x = new Counted(4.0, 2);
    auto* c = new CalcNodeFuncConst("const", args({x}));
    EXPECT_EQ(c->constLevel(), -1);
    EXPECT_EQ(c->valNum(), 4);
    CalcNode* n = reduced(c);
    EXPECT_EQ(n->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(n->valNum(), 4);
    delete n;

    n = reduced(new CalcNodeFuncConst("const", args({new Counted("abc", 0)})));
    EXPECT_EQ(n->valType(), ValStr);
    EXPECT_STREQ(n->valStr().str(), "abc");
    delete n;
}

TEST(FuncStateSync, ReadsEveryArgumentAndAnswersTheLast) {
    auto* a = new Counted(1.0);
    auto* b = new Counted("b");
    auto* z = new Counted("7");
    CalcNodeFuncSync s("sync", args({a, b, z}));
    EXPECT_EQ(s.valType(), ValStr);
    EXPECT_EQ(s.valNum(), 7);
    EXPECT_EQ(a->reads, 1);
    EXPECT_EQ(b->reads, 1);
    EXPECT_STREQ(s.valStr().str(), "7");
    EXPECT_EQ(a->reads, 2);
    // The other readings go to the last argument alone.
    s.valInt();
    s.valPrint();
    EXPECT_EQ(a->reads, 2);
    EXPECT_THROW(CalcNodeFuncSync("sync", args({num(1)})), CalcErrorArgsMissing);
}

TEST(FuncStateDefined, OnTextAndRawValues) {
    CalcNodeFuncDefineStr a("ifndef", args({str(nullptr), str("y")}));
    EXPECT_STREQ(a.valStr().str(), "y");
    CalcNodeFuncDefineStr b("ifndef", args({str(""), str("y")}));
    EXPECT_TRUE(b.valStr().isEmpty()) << "empty is defined";
    EXPECT_FALSE(b.valStr().isNull());
    CalcNodeFuncIfDefStr c("ifdef", args({str(nullptr), str("y")}));
    EXPECT_TRUE(c.valStr().isNull());
    CalcNodeFuncIfDefStr d("ifdef", args({str("x"), str("y")}));
    EXPECT_STREQ(d.valStr().str(), "y");

    CalcNodeFuncDefineRaw e("ifndef", args({raw(""), raw("yy")}));
    EXPECT_EQ(e.valRaw().count, 2);
    CalcNodeFuncDefineRaw f("ifndef", args({raw("x"), raw("yy")}));
    EXPECT_EQ(f.valRaw().count, 1);
    CalcNodeFuncIfDefRaw g("ifdef", args({raw(""), raw("yy")}));
    EXPECT_EQ(g.valRaw().count, 0);
    CalcNodeFuncIfDefRaw h("ifdef", args({raw("x"), raw("yy")}));
    RawBuffer out;
    out.append(1, "p");
    h.valRaw(out);
    ASSERT_EQ(out.count, 4);
    EXPECT_EQ(std::string(out.data, 4), "pxyy") << "what the buffer held stays, x and then y follow";
}

TEST(FuncStateOption, OutsideSymbolOrTheDefault) {
    RowBinder b;
    b.symbols["width"] = 12;
    CalcBinderListT<CalcBinder> binders;
    binders << static_cast<CalcBinder&>(b);
    CalcNodeFuncOption known("option", args({str("width"), num(5)}), &binders);
    EXPECT_EQ(known.valNum(), 12);
    CalcNodeFuncOption unknown("option", args({str("height"), num(5)}), &binders);
    EXPECT_EQ(unknown.valNum(), 5);
    CalcNodeFuncOption text("option", args({str("height"), str("abc")}), &binders);
    EXPECT_EQ(text.valType(), ValStr);
    EXPECT_STREQ(text.valStr().str(), "abc");
}

TEST(FuncStateOption, ConstantNameIsBoundOnceByReduction) {
    RowBinder b;
    b.setColumn("x", {4, 5});
    CalcBinderListT<CalcBinder> binders;
    binders << static_cast<CalcBinder&>(b);
    CalcNode* n = reduced(new CalcNodeFuncOption("option", args({str("x"), num(5)}), &binders));
    EXPECT_STREQ(n->name.str(), "x");
    b.rows.index = 1;
    EXPECT_EQ(n->valNum(), 5);
    delete n;

    auto* fallback = new Counted(8.0);
    n = reduced(new CalcNodeFuncOption("option", args({str("nothing"), fallback}), &binders));
    EXPECT_EQ(n, fallback);
    delete n;

    // A variable name is looked up at each read.
    n = reduced(new CalcNodeFuncOption("option", args({new Counted("x"), num(5)}), &binders));
    EXPECT_EQ(n->nodeType(), CalcNode::TypeFunc);
    b.rows.index = 0;
    EXPECT_EQ(n->valNum(), 4);
    delete n;
}

TEST(FuncStateSymRef, FreshReferenceAtEachRead) {
    RowBinder b;
    b.setColumn("x", {4, 5});
    CalcBinderListT<CalcBinder> binders;
    binders << static_cast<CalcBinder&>(b);
    CalcNodeFuncSymRef r("symref", args({new Counted("x")}), &binders);
    EXPECT_EQ(r.valType(), ValNum);
    EXPECT_EQ(r.valNum(), 4);
    b.rows.index = 1;
    EXPECT_STREQ(r.valStr().str(), "5");
    CalcNodeFuncSymRef none("symref", args({str("y")}), &binders);
    EXPECT_TRUE(std::isnan(none.valNum()));
    EXPECT_TRUE(none.valStr().isNull());
    CalcNodeFuncSymRef unbound("symref", args({str("x")}), nullptr);
    EXPECT_EQ(unbound.getRef(), nullptr);
    EXPECT_THROW(CalcNodeFuncSymRef("symref", nullptr, &binders), CalcErrorArgsMissing);
}

TEST(FuncStateSymRef, ConstantNameReducesToTheReference) {
    RowBinder b;
    b.setColumn("x", {4, 5});
    CalcBinderListT<CalcBinder> binders;
    binders << static_cast<CalcBinder&>(b);
    CalcNode* n = reduced(new CalcNodeFuncSymRef("symref", args({str("x")}), &binders));
    EXPECT_STREQ(n->name.str(), "x");
    delete n;
    n = reduced(new CalcNodeFuncSymRef("symref", args({str("zz")}), &binders));
    EXPECT_EQ(n->nodeType(), CalcNode::TypeFunc) << "nothing to bind: it stays";
    delete n;
}
