// The stateful and control functions compiled from text and walked over a
// table as an array is walked: set the index, reset the parser, read.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "calc/CalcError.h"
#include "calc/CalcParser.h"
#include "funcstate_testing.h"

using namespace statetest;
using namespace zun;

namespace {

double readAt(CalcParser& p, RowBinder& b, long i) {
    b.rows.index = i;
    p.reset();
    return p.valNum();
}

std::vector<double> walk(CalcParser& p, RowBinder& b) {
    std::vector<double> out;
    for (long i = 0; i < b.rows.count; ++i) out.push_back(readAt(p, b, i));
    return out;
}

double value(const char* text) {
    RowBinder b;
    CalcParser p(text, b);
    return p.valNum();
}

using V = std::vector<double>;

}  // namespace

TEST(FuncStateText, RecurrencesFromText) {
    RowBinder b;
    b.rows.count = 5;
    CalcParser r("recurse(self+1)", b);
    EXPECT_EQ(readAt(r, b, 0), 1);
    EXPECT_EQ(readAt(r, b, 3), 4);
    CalcParser r10("recurse(self+1,10)", b);
    EXPECT_EQ(readAt(r10, b, 0), 11);
    CalcParser z("recurse0(self+1,10)", b);
    EXPECT_EQ(readAt(z, b, 0), 10);
    EXPECT_EQ(readAt(z, b, 1), 11);
}

TEST(FuncStateText, RecurseOverVariables) {
    RowBinder b;
    b.setColumn("x", {1, 2, 3, 4});
    // y is a variable: it must be computed again at every index the walk visits.
    CalcParser p("y = x*2; recurse(self + y)", b);
    EXPECT_EQ(walk(p, b), (V{2, 6, 12, 20}));
    EXPECT_EQ(readAt(p, b, 2), 12);
    EXPECT_EQ(readAt(p, b, 2), 12) << "a second read at one index";
    EXPECT_EQ(readAt(p, b, 1), 6) << "a jump backwards";
    EXPECT_EQ(readAt(p, b, 3), 20);
}

TEST(FuncStateText, StringRecurrence) {
    RowBinder b;
    b.texts["t"] = {"a", "b", "c"};
    b.rows.count = 3;
    CalcParser p("recurse(t, \"-\")", b);
    EXPECT_EQ(p.valType(), ValStr);
    b.rows.index = 2;
    p.reset();
    EXPECT_STREQ(p.valStr().str(), "c");
}

TEST(FuncStateText, LastOfFromText) {
    RowBinder b;
    b.setColumn("x", {10, 20, 30});
    CalcParser p("lastof(x,7)", b);
    EXPECT_EQ(walk(p, b), (V{7, 10, 20}));
    CalcParser q("y = x + 1; lastof(y)", b);
    EXPECT_EQ(readAt(q, b, 2), 21);
    EXPECT_EQ(readAt(q, b, 1), 11);
    EXPECT_EQ(readAt(q, b, 0), 0);
}

TEST(FuncStateText, IteratorIsRequired) {
    RowBinder b;
    b.offerIterator = false;
    for (const char* text : {"recurse(self+1)", "recurse0(1)", "lastof(1)", "sort(1)"}) {
        bool thrown = false;
        try {
            CalcParser p(text, b);
        } catch (...) {
            thrown = true;
        }
        EXPECT_TRUE(thrown) << text;
    }
}

TEST(FuncStateText, SelfOutsideARecurrence) {
    RowBinder b;
    EXPECT_THROW(CalcParser("self+1", b), CalcErrorUnboundSelf);
    EXPECT_THROW(CalcParser("lastof(self)", b), CalcErrorUnboundSelf);
}

TEST(FuncStateText, ControlFunctions) {
    EXPECT_EQ(value("choose(-1,9,1,2)"), 9);
    EXPECT_EQ(value("choose(1,9,1,2)"), 2);
    EXPECT_EQ(value("choose(2,9,1,2)"), 9);
    EXPECT_EQ(value("ifndef(nan,3)"), 3);
    EXPECT_TRUE(std::isnan(value("ifdef(nan,3)")));
    EXPECT_EQ(value("ifdef(1,3)"), 3);
    EXPECT_EQ(value("nan ? 1 : 2"), 1);
    EXPECT_EQ(value("0 ? 1 : 2"), 2);
    EXPECT_EQ(value("sync(1, 2, 3)"), 3);
    RowBinder b;
    CalcParser s("ifndef(null, \"dflt\")", b);
    EXPECT_STREQ(s.valStr().str(), "dflt");
}

TEST(FuncStateText, ConstantConditionsFold) {
    RowBinder b;
    b.setColumn("x", {1, 2});
    CalcParser p("1 ? x : 2", b);
    EXPECT_EQ(p.constLevel(), 0);
    EXPECT_EQ(p.result->nodeType(), CalcNode::TypeData) << "the branch took the place of the conditional";
    CalcParser q("choose(0, 5, x, 7)", b);
    EXPECT_EQ(q.result->nodeType(), CalcNode::TypeData);
}

TEST(FuncStateText, ConstIsReadOnceWhileParsing) {
    RowBinder b;
    b.setColumn("x", {4, 5, 6});
    CalcParser p("const(x) + 0*x", b);
    EXPECT_EQ(b.reads["x"], 1);
    EXPECT_EQ(walk(p, b), (V{4, 4, 4}));
}

TEST(FuncStateText, WrongCounts) {
    RowBinder b;
    EXPECT_THROW(CalcParser("const(1,2)", b), CalcErrorArgsTooMany);
    EXPECT_THROW(CalcParser("option(1)", b), CalcErrorArgsMissing);
    EXPECT_THROW(CalcParser("ifdef(1)", b), CalcErrorArgsMissing);
    EXPECT_THROW(CalcParser("ifndef(1,2,3)", b), CalcErrorArgsTooMany);
    EXPECT_THROW(CalcParser("choose(1)", b), CalcErrorArgsMissing);
    EXPECT_THROW(CalcParser("keep()", b), CalcErrorArgsMissing);
    EXPECT_THROW(CalcParser("exec(\"1\", 2, 3)", b), CalcErrorArgsTooMany);
}

TEST(FuncStateText, OptionAndSymref) {
    RowBinder b;
    b.symbols["width"] = 12;
    b.setColumn("x", {3, 4});
    EXPECT_EQ(CalcParser("option(\"width\", 5)", b).valNum(), 12);
    EXPECT_EQ(CalcParser("option(\"height\", 5)", b).valNum(), 5);
    CalcParser s("symref(\"x\")", b);
    EXPECT_EQ(readAt(s, b, 1), 4);
    CalcParser t("n = \"x\"; symref(n) * 2", b);
    EXPECT_EQ(readAt(t, b, 0), 6);
    EXPECT_EQ(readAt(t, b, 1), 8);
    // Bound while parsing, but still read at each index.
    CalcParser o("option(\"x\", 5) * 2", b);
    EXPECT_EQ(readAt(o, b, 0), 6);
    EXPECT_EQ(readAt(o, b, 1), 8);
}

TEST(FuncStateText, ExecCompilesAtTheFirstRead) {
    RowBinder b;
    b.setColumn("x", {3, 4});
    EXPECT_EQ(value("exec(\"1+2\")"), 3);
    CalcParser p("a = 5; exec(\"a*2\")", b);
    EXPECT_EQ(p.valNum(), 10);
    CalcParser q("exec(\"v = x*2; v+1\")", b);
    EXPECT_EQ(walk(q, b), (V{7, 9})) << "its variables are reset with the statement";
    CalcParser bad("exec(\"1+\")", b);  // nothing compiled yet
    EXPECT_THROW(bad.valNum(), CalcError);
    EXPECT_THROW(bad.valNum(), CalcError) << "and again";
}

TEST(FuncStateText, KeepHoldsOutsideSort) {
    RowBinder b;
    b.setColumn("x", {4, 5, 6});
    CalcParser k("keep(x)", b);
    EXPECT_EQ(walk(k, b), (V{4, 4, 4}));
    CalcParser g("get(x)", b);
    EXPECT_TRUE(std::isnan(readAt(g, b, 1)));
}

TEST(FuncStateText, SortDrivesTheCells) {
    RowBinder b;
    b.setColumn("x", {4, 9, 2, 7});
    CalcParser mx("m = keepmax(x); s = sort(m); sync(s, m)", b);
    EXPECT_EQ(readAt(mx, b, 0), 9);
    CalcParser mn("m = keepmin(x); s = sort(m); sync(s, m)", b);
    EXPECT_EQ(readAt(mn, b, 0), 2);
    CalcParser gm("m = getmax(x, x < 8); s = sort(m); sync(s, m)", b);
    EXPECT_EQ(readAt(gm, b, 0), 7);
    CalcParser km("m = keepmin(x, x > 5); s = sort(m); sync(s, m)", b);
    EXPECT_EQ(readAt(km, b, 0), 2) << "sampled where x > 5 is 0: 4 and 2";

    RowBinder t;
    t.texts["t"] = {"pear", "fig", "plum"};
    t.rows.count = 3;
    CalcParser ts("m = keepmin(t); s = sort(m); sync(s, m)", t);
    t.rows.index = 0;
    EXPECT_STREQ(ts.valStr().str(), "fig");
}

TEST(FuncStateText, SortFromText) {
    RowBinder b;
    b.setColumn("x", {3, 1, 2, 1});
    CalcParser s("sort(x)", b);
    EXPECT_EQ(walk(s, b), (V{1, 3, 2, 0}));
    CalcParser r("sort(x)@reverse", b);
    EXPECT_EQ(walk(r, b), (V{0, 2, 1, 3}));
    CalcParser sel("sort(x)@select(x > 1)", b);
    EXPECT_EQ(walk(sel, b), (V{2, 0, -1, -1}));
    CalcParser two("sort(-x, iter)", b);
    EXPECT_EQ(walk(two, b), (V{0, 2, 1, 3}));
    CalcParser var("y = 10 - x; sort(y)", b);
    EXPECT_EQ(walk(var, b), (V{0, 2, 1, 3}));
    EXPECT_THROW(CalcParser("sort(x)@reverse(1,1,1)", b), CalcErrorArgsTooMany);
    EXPECT_THROW(CalcParser("sort(x)@select(1,2)", b), CalcErrorArgsTooMany);
}

TEST(FuncStateText, TreesThatReadThroughTheirParserKeepIt) {
    // A parser reduced inside another tree gives its tree up when nothing in
    // it needs the parser; these do, at every read.
    RowBinder b;
    b.texts["n"] = {"x", "y"};
    b.setColumn("x", {3, 4});
    b.rows.count = 2;
    CalcParser e("exec(\"2*3\")", b);
    EXPECT_EQ(e.reduce(), nullptr);
    EXPECT_EQ(e.valNum(), 6);
    CalcParser o("option(n, 5)", b);
    EXPECT_EQ(o.reduce(), nullptr);
    EXPECT_EQ(o.valNum(), 3);
    CalcParser s("symref(n)", b);
    EXPECT_EQ(s.reduce(), nullptr);
    EXPECT_EQ(s.valNum(), 3);
    // The same as elements of a vector, each compiled by a parser of its own.
    CalcParser v("a = vector(2)[exec(\"1+1\"), option(n, 5)]; a[0] + a[1]", b);
    EXPECT_EQ(v.valNum(), 5);
}
