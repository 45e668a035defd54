// vector(): generations of elements, $0 to $9, indexing, sizes, text forms,
// and vectors standing for their elements in function calls.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "calc/CalcError.h"
#include "calc/CalcNodeVector.h"
#include "calc/CalcParser.h"
#include "funcstate_testing.h"

using namespace statetest;
using namespace zun;

namespace {

double value(const char* text) {
    RowBinder b;
    CalcParser p(text, b);
    return p.valNum();
}

String print(const char* text) {
    RowBinder b;
    CalcParser p(text, b);
    return p.valPrint();
}

String init(const char* text) {
    RowBinder b;
    CalcParser p(text, b);
    return p.valInit();
}

CalcNodeVector* vectorOf(CalcParser& p) { return dynamic_cast<CalcNodeVector*>(p.implements("vector")); }

}  // namespace

TEST(Vector, IndexingIsRowMajor) {
    EXPECT_EQ(value("a=vector(2,2)[1,2,3,4]; a[1,0]"), 3);
    EXPECT_EQ(value("a=vector(2,2)[1,2,3,4]; a[0,1]"), 2);
    EXPECT_EQ(value("a=vector(2,3,2)[0,1,2,3,4,5,6,7,8,9,10,11]; a[1,2,1]"), 11);
    EXPECT_EQ(value("a=vector(2,3,2)[0,1,2,3,4,5,6,7,8,9,10,11]; a[0,1,0]"), 2);
}

TEST(Vector, OutOfRangeIsNA) {
    EXPECT_TRUE(std::isnan(value("a=vector(3)[1,2,3]; a[9]")));
    EXPECT_TRUE(std::isnan(value("a=vector(3)[1,2,3]; a[-1]")));
    EXPECT_TRUE(std::isnan(value("a=vector(3)[1,2,3]; a[nan]")));
    EXPECT_TRUE(std::isnan(value("a=vector(3)[1,2,3]; a[1.0e300]")));
    EXPECT_TRUE(std::isnan(value("a=vector(3); a[0]"))) << "no generation yet";
    RowBinder b;
    CalcParser s("a=vector(2)['x','y']; a[5]", b);
    EXPECT_TRUE(s.valStr().isNull());
}

TEST(Vector, IndicesMustMatchTheDimensions) {
    RowBinder b;
    EXPECT_THROW(CalcParser("a=vector(2,2)[1,2,3,4]; a[1]", b), CalcErrorArgsMissing);
    EXPECT_THROW(CalcParser("a=vector(2)[1,2]; a[1,1]", b), CalcErrorArgsTooMany);
}

TEST(Vector, DollarZeroIsThePrecedingGeneration) {
    EXPECT_TRUE(std::isnan(value("a=vector(3)[$0+1]; a[0]")));
    EXPECT_EQ(value("a=vector(3)[1,2,3][$0*10]; a[2]"), 30);
    EXPECT_EQ(value("a=vector(3)[1,2,3][$0*10][$0+1]; a[1]"), 21);
    EXPECT_EQ(value("a=vector(2)['x','y'][$0]; strlen(a[1])"), 1);
}

TEST(Vector, PositionSymbols) {
    EXPECT_EQ(value("a=vector(2,3)[$1*10+$2]; a[1,2]"), 12);
    EXPECT_EQ(value("a=vector(2,3)[$1*10+$2]; a[0,1]"), 1);
    EXPECT_EQ(value("a=vector(4)[$1*$1]; a[3]"), 9);
    RowBinder b;
    EXPECT_THROW(CalcParser("a=vector(2)[$2]", b), CalcErrorSymbolInvalid) << "one dimension only";
    EXPECT_THROW(CalcParser("a=vector(2)[1,2]; $0", b), CalcErrorSymbolInvalid) << "symbols end with the statement";
}

TEST(Vector, SizeFromTheListAndRepetition) {
    EXPECT_EQ(value("a=vector()[1,2,3]; a@size(0)"), 3);
    EXPECT_EQ(value("a=vector()[1,2,3]; a[2]"), 3);
    EXPECT_EQ(value("a=vector(4)[1,2]; a[2]"), 1);
    EXPECT_EQ(value("a=vector(4)[1,2]; a[3]"), 2);
    EXPECT_EQ(value("a=vector(2)[1,2,3]; a@size(0)"), 2);
    EXPECT_EQ(print("vector(5)[1,'a']"), String("{1,\"a\",1,\"a\",1}"));
}

TEST(Vector, SizesAndDimensions) {
    EXPECT_EQ(value("a=vector(2,3)[1,2,3,4,5,6]; a@size(0)"), 6);
    EXPECT_EQ(value("a=vector(2,3)[1,2,3,4,5,6]; a@size(1)"), 2);
    EXPECT_EQ(value("a=vector(2,3)[1,2,3,4,5,6]; a@size(2)"), 3);
    EXPECT_TRUE(std::isnan(value("a=vector(2,3)[1,2,3,4,5,6]; a@size(3)")));
    EXPECT_TRUE(std::isnan(value("a=vector(2,3)[1,2,3,4,5,6]; a@size(-1)")));
    EXPECT_EQ(value("a=vector(2,3); a@dims"), 2);
    EXPECT_EQ(value("a=vector(); a@size(0)"), 0);
    EXPECT_EQ(value("a=vector(nan, 2); a@size(0)"), 0);
}

TEST(Vector, TextForms) {
    EXPECT_EQ(print("vector(2,2)[1,2,3,4]"), String("{{1,2},{3,4}}"));
    EXPECT_EQ(print("vector(3)[1.5,nan,-2]"), String("{1.5,nan,-2}"));
    EXPECT_EQ(print("vector(2)['a','bc']"), String("{\"a\",\"bc\"}"));
    EXPECT_EQ(print("vector(2,2,2)[1,2,3,4,5,6,7,8]"), String("{{{1,2},{3,4}},{{5,6},{7,8}}}"));
    EXPECT_EQ(print("vector(2)"), String("{}"));
    EXPECT_EQ(init("vector(2,2)[1,2,3,4]"), String("vector(2,2)[1,2,3,4]"));
    EXPECT_EQ(init("vector(3)"), String("vector(3)"));
    EXPECT_EQ(init("vector(2)['a',5]"), String("vector(2)[\"a\",5]"));
    RowBinder b;
    CalcParser p("vector(2)['a','b']", b);
    EXPECT_TRUE(p.valStr().isNull());
    EXPECT_TRUE(std::isnan(p.valNum()));
    EXPECT_EQ(p.valType(), ValStr);
}

TEST(Vector, CopyOfAnotherVector) {
    EXPECT_EQ(value("a=vector(3)[1,2,3]; b=vector(a); b[1]"), 2);
    EXPECT_EQ(value("a=vector(3)[1,2,3]; b=vector(a)[$0*2]; b[2]"), 6);
    EXPECT_EQ(value("a=vector(2,2); b=vector(a); b@size(2)"), 2);
    EXPECT_EQ(print("b=vector(vector(2)[7,8]); b"), String("{7,8}"));
}

TEST(Vector, AnotherGenerationThroughTheVariable) {
    EXPECT_EQ(value("a=vector(2)[1,2]; b=a@next(5,6); a[1]"), 6);
    EXPECT_EQ(print("a=vector(2)[1,2]; a@next(7)"), String("{7,7}"));
    // The variable is assigned: its symbols are gone.
    RowBinder b;
    EXPECT_THROW(CalcParser("a=vector(2)[1,2]; a@next($0)", b), CalcErrorSymbolInvalid);
}

TEST(Vector, StandsForItsElementsInFunctions) {
    EXPECT_EQ(value("a=vector(3)[4,1,7]; min(a)"), 1);
    EXPECT_EQ(value("a=vector(3)[4,1,7]; max(a, 9)"), 9);
    EXPECT_EQ(value("max(vector(3)[4,8,7])"), 8) << "written in place";
    EXPECT_EQ(value("choose(1, 0, vector(3)[5,6,7])"), 6);
    EXPECT_EQ(value("choose(5, 0, vector(3)[5,6,7])"), 0);
    EXPECT_EQ(value("a=vector(2)[1,nan]; hasna(a)"), 1);
    RowBinder b;
    CalcParser s("a=vector(3)['b','a','c']; strmin(a)", b);
    EXPECT_STREQ(s.valStr().str(), "a");
}

TEST(Vector, IndexByIterator) {
    RowBinder b;
    b.rows.count = 4;
    CalcParser p("a=vector(3)[10,20,30]; a[iter]", b);
    std::vector<double> seen;
    for (long i = 0; i < 4; ++i) {
        b.rows.index = i;
        p.reset();
        seen.push_back(p.valNum());
    }
    EXPECT_EQ(seen[0], 10);
    EXPECT_EQ(seen[2], 30);
    EXPECT_TRUE(std::isnan(seen[3]));
    EXPECT_EQ(p.constLevel(), 0);
}

TEST(Vector, ConstantReadsFold) {
    RowBinder b;
    CalcParser p("a=vector(2)[1,2]; a[1]", b);
    EXPECT_EQ(p.constLevel(), -1);
    EXPECT_EQ(p.valNum(), 2);
}

TEST(Vector, Shifts) {
    RowBinder b;
    CalcParser p("a=vector(2,3)@shift(1,2)[0]; a", b);
    CalcNodeVector* v = vectorOf(p);
    ASSERT_NE(v, nullptr);
    ObjAppendList<long> shifts;
    shifts << 99L;
    v->getBindShifts(shifts);
    ASSERT_EQ(shifts.count, 2);
    EXPECT_EQ(shifts[0], 1);
    EXPECT_EQ(shifts[1], 2);

    CalcParser q("a=vector(2,3); a", b);
    vectorOf(q)->getBindShifts(shifts);
    ASSERT_EQ(shifts.count, 2);
    EXPECT_EQ(shifts[0] + shifts[1], 0);

    EXPECT_THROW(CalcParser("vector(2,3)@shift(1)", b), CalcErrorArgsMissing);
    EXPECT_THROW(CalcParser("vector(2)@shift(1)@shift(2)", b), CalcErrorMethodInvalid);
}

TEST(Vector, Limits) {
    RowBinder b;
    EXPECT_THROW(CalcParser("vector(2000, 1000)", b), CalcErrorOperationInvalid);
    EXPECT_THROW(CalcParser("vector(infinity)", b), CalcErrorOperationInvalid);
    EXPECT_EQ(value("a=vector(-3); a@size(0)"), 0);
    EXPECT_EQ(value("a=vector(0, 1.0e300); a@size(0)"), 0) << "empty whatever the other sizes";
}

TEST(Vector, NestedVectors) {
    EXPECT_EQ(print("vector(2)[vector(2)[1,2], 3]"), String("{{1,2},3}"));
    EXPECT_EQ(value("a=vector(2)[vector(2)[1,2], 3]; a[1]"), 3);
}

TEST(Vector, NodeModel) {
    RowBinder b;
    CalcParser p("a=vector(2)[1,2]; a", b);
    CalcNodeVector* v = vectorOf(p);
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->nodeType(), CalcNode::TypeMem);
    EXPECT_EQ(v->constLevel(), 0);
    EXPECT_EQ(v->generation, 1);
    EXPECT_EQ(v->total, 2);
    EXPECT_FALSE(v->bindActive);
    EXPECT_EQ(v->implements("other"), nullptr);
    EXPECT_EQ(v->bindSymbol("$0"), nullptr) << "assigned: no more symbols";
    std::list<CalcNode*> found;
    EXPECT_GE(p.listNodes(found, CalcNode::TypeMem), 1);
}

TEST(Vector, FlatteningAVectorWithoutElements) {
    // The vector gives no element, and the argument after it stays.
    EXPECT_EQ(value("a=vector(3); max(a, 4)"), 4);
    RowBinder b;
    EXPECT_THROW(CalcParser("a=vector(3); choose(a, 1)", b), CalcErrorArgsMissing);
}

TEST(Vector, LeavesTheBinderListWhenDestroyed) {
    RowBinder b;
    // The vector goes with the branch that the constant condition drops; the
    // parser must not ask it for symbols afterwards.
    CalcParser p("1 ? 2 : vector(2)[1,2]", b);
    EXPECT_EQ(p.binders.size(), 1);
    EXPECT_EQ(p.bindSymbol("$0"), nullptr);
    CalcParser q("vector(2)[1,2]", b);
    EXPECT_EQ(q.binders.size(), 2);
}
