// Numeric functions through expression texts: binding by name, vectors as
// argument lists, the haversine keyword and the reserved names.
#include <gtest/gtest.h>

#include <cmath>

#include "calc/CalcError.h"
#include "oper_testnodes.h"

using namespace calctest;
using zun::CalcParser;

namespace {

struct NumCase {
    const char* text;
    double value;
};

}  // namespace

TEST(FuncNumParse, ExactValues) {
    const NumCase cases[] = {
        {"min(nan,2,1)", 1},           {"max(nan,2,1)", 2},          {"minlookup(5,0,10,20)", 0},
        {"minlookup(-1,0,10,20)", -1}, {"minlookup(25,0,10,20)", 2}, {"maxlookup(5,0,10,20)", 1},
        {"maxlookup(25,0,10,20)", -1}, {"minselect(5,0,10,20)", 0},  {"maxselect(5,0,10,20)", 10},
        {"maxselect(25,0,10)", INFINITY}, {"numlookup(nan,nan)", -1}, {"strlookup(\"b\",\"a\",\"b\")", 1},
        {"bits(12,2)", 1},             {"bits(12,2,2)", 3},          {"bits(12,3,-2)", 3},
        {"round(2.5)", 3},             {"round(-2.5)", -2},          {"round(1.25,1)", 1.3},
        {"floor(-2.5)", -3},           {"ceil(2.01)", 3},            {"log(1,nan)", 0},
        {"arclen(0,0,0,0)", 0},        {"abs(-4)", 4},               {"sqrt(9)", 3},
        {"threshold(5,1,3)", 1},       {"isna(nan,null)", 1},        {"hasnan(1,\"x\")", 1},
        {"isnullstr(null)", 1},        {"hasnullstr(\"\")", 0},      {"isfinite(1, 1/0)", 0},
        {"minlookup(10,0,10,20)", 1},  {"maxlookup(10,0,10,20)", 1}, {"minlookup(nan,0,10)", 1},
        {"maxlookup(nan,0,10)", -1},   {"minselect(-5,0,10)", -INFINITY}, {"minselect(25,0,10,20)", 20},
        {"minselect(25)", -INFINITY},  {"maxselect(0,0,10)", 0},     {"numlookup(11,0,10)", -1},
        {"strlookup(\"\",\"a\",null)", 1}, {"min(3,-1/0,nan)", -INFINITY}, {"max(\"7\",5)", 7},
        {"ceil(-1.5)", -1},            {"threshold(nan,1,3)", 0},    {"threshold(2,2,3)", 0},
        {"bits(1,nan,nan)", 0},
    };
    for (const NumCase& c : cases) EXPECT_EQ(numOf(c.text), c.value) << c.text;
    EXPECT_TRUE(std::isnan(numOf("min(nan,nan)")));
    EXPECT_TRUE(std::isnan(numOf("acos(2)")));
}

TEST(FuncNumParse, VectorsStandForTheirElements) {
    EXPECT_EQ(numOf("v=vector(3)[4,nan,2]; min(v)"), 2);
    EXPECT_EQ(numOf("v=vector(3)[4,nan,2]; max(1, v, 3)"), 4);
    EXPECT_EQ(numOf("v=vector(3)[0,10,20]; minlookup(15, v)"), 1);
    EXPECT_EQ(numOf("v=vector(2)[nan,nan]; isnan(v)"), 1);
    EXPECT_EQ(numOf("v=vector(2)[1,2]; numlookup(2, v, 9)"), 1);
    // an empty vector leaves no argument: the "is" forms hold, the "has" forms don't
    EXPECT_EQ(numOf("v=vector(0); isna(v)"), 1);
    EXPECT_EQ(numOf("v=vector(0); hasna(v)"), 0);
    EXPECT_TRUE(std::isnan(numOf("v=vector(0); min(v)")));
    EXPECT_EQ(numOf("v=vector(0); minlookup(v)"), -1);
}

TEST(FuncNumParse, HaversineKeywordInAnyCase) {
    EXPECT_NEAR(numOf("arclen(0,0,1,0) haversine"), 1, 1e-15);
    EXPECT_NEAR(numOf("arclen(0.1,0.2,0.3,0.4) HaverSine"), numOf("arclen(0.1,0.2,0.3,0.4)"), 1e-12);
    EXPECT_THROW(numOf("arclen(0,0,1,0) cosine"), zun::CalcErrorOperatorExpected);
    EXPECT_THROW(numOf("min(1,2) haversine"), zun::CalcErrorOperatorExpected);
}

TEST(FuncNumParse, ReservedAndWrongCalls) {
    EXPECT_THROW(numOf("arcmidpoint(0,0,1,1)"), zun::CalcErrorFunctionUnknown);
    EXPECT_THROW(numOf("arcdest(0,0,1,1)"), zun::CalcErrorFunctionUnknown);
    EXPECT_THROW(numOf("arcinter(0,0,1,1)"), zun::CalcErrorFunctionUnknown);
    EXPECT_THROW(numOf("min()"), zun::CalcErrorArgsMissing);
    EXPECT_THROW(numOf("abs(1,2)"), zun::CalcErrorArgsTooMany);
    EXPECT_THROW(numOf("arclen(1,2,3)"), zun::CalcErrorArgsMissing);
}

TEST(FuncNumParse, ConstantCallsFoldAndVariableOnesStay) {
    CalcParser c("max(1, 2) + bits(7, 0, 2)", static_cast<zun::CalcBinder*>(nullptr));
    EXPECT_EQ(c.result->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(c.valNum(), 5);
    ProbeBinder b;
    CalcParser v("max(1, x)", b);
    EXPECT_EQ(v.result->nodeType(), CalcNode::TypeFunc);
    EXPECT_STREQ(v.result->name.str(), "max");
    EXPECT_EQ(v.valNum(), 5);
}
