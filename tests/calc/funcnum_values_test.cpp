// Numeric functions built directly as nodes: NA by value type, what is read
// and what isn't, bit patterns and integer results, argument counts.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>

#include "calc/CalcError.h"
#include "calc/CalcNodeFuncNum.h"
#include "oper_testnodes.h"

using namespace calctest;
using namespace zun;

namespace {

template <class F>
double eval(std::initializer_list<CalcNode*> nodes) {
    F f(args(nodes));
    return f.valNum();
}

CalcNode* raw(const char* bytes) {
    return new CalcNodeConst<RawBuffer>("data constant", RawBuffer(bytes, bytes ? std::strlen(bytes) : 0));
}

}  // namespace

TEST(FuncNumNA, NaByTheArgumentsOwnType) {
    EXPECT_EQ(eval<CalcNodeFuncIsNA>({num(nan()), str(nullptr), raw(nullptr)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncIsNA>({num(nan()), str("")}), 0);
    EXPECT_EQ(eval<CalcNodeFuncIsNA>({raw("x")}), 0);
    EXPECT_EQ(eval<CalcNodeFuncHasNA>({num(1), str("a"), raw(nullptr)}), 1);
    // a string that is no number isn't NA, but it is NaN
    EXPECT_EQ(eval<CalcNodeFuncHasNA>({str("abc")}), 0);
    EXPECT_EQ(eval<CalcNodeFuncIsNan>({num(nan()), str("12x")}), 1);
    EXPECT_EQ(eval<CalcNodeFuncIsNullStr>({str(nullptr), num(nan())}), 1);
}

TEST(FuncNumNA, TestsStopAtTheDecidingArgument) {
    std::string log;
    EXPECT_EQ(eval<CalcNodeFuncIsNA>({new Probe(log, "a", 1), new Probe(log, "b", nan())}), 0);
    EXPECT_EQ(eval<CalcNodeFuncHasNA>({new Probe(log, "c", nan()), new Probe(log, "d", 1)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncIsFinite>({new Probe(log, "e", INFINITY), new Probe(log, "f", 1)}), 0);
    EXPECT_EQ(log, "ace");
}

TEST(FuncNumBits, ArithmeticShiftAndModuloShiftCounts) {
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(0xABCD), num(15), num(-8)}), 0xAB);
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(0xABCD), num(4), num(0)}), 0);
    // the sign fills from the top
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(-1), num(63)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(-256), num(4), num(8)}), 0xF0);
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(12), num(66)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(5), num(64), num(3)}), 5);
}

TEST(FuncNumBits, IntegerResultWrittenInDecimal) {
    CalcNodeFuncBits f(args({new CalcNodeConst<long long>("v", -1), num(0), num(63)}));
    EXPECT_EQ(f.valInt(), LLONG_MAX);
    EXPECT_STREQ(f.valStr().str(), "9223372036854775807");
}

TEST(FuncNumReads, LaterArgumentsReadOnlyWhenNeeded) {
    std::string log;
    EXPECT_EQ(eval<CalcNodeFuncThreshold>({num(1), num(2), new Probe(log, "high", 4)}), -1);
    EXPECT_EQ(eval<CalcNodeFuncLog>({num(1), new Probe(log, "base", 2)}), 0);
    EXPECT_EQ(bitsOf(eval<CalcNodeFuncRound>({num(-0.0), new Probe(log, "d", 2)})), bitsOf(0.0));
    EXPECT_EQ(eval<CalcNodeFuncFloor>({num(0), new Probe(log, "d", 2)}), 0);
    EXPECT_EQ(log, "");
    EXPECT_EQ(eval<CalcNodeFuncNumLookup>(
                  {new Probe(log, "x", 1), new Probe(log, "0", 1), new Probe(log, "1", 2)}),
              0);
    EXPECT_EQ(log, "x0");
}

TEST(FuncNumRound, DecimalsAndNaN) {
    EXPECT_EQ(eval<CalcNodeFuncRound>({num(1234), num(-2)}), 1200);
    EXPECT_EQ(eval<CalcNodeFuncFloor>({num(1.29), num(1.9)}), 1.2);
    EXPECT_EQ(eval<CalcNodeFuncCeil>({num(1.21), num(1)}), 1.3);
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncRound>({num(nan())})));
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncFloor>({num(2.5), num(nan())})));
}

TEST(FuncNumLog, DomainAndBase) {
    EXPECT_EQ(eval<CalcNodeFuncLog>({num(0)}), -INFINITY);
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncLog>({num(-1)})));
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncLog>({num(8), num(-2)})));
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncLog>({num(8), num(nan())})));
    EXPECT_DOUBLE_EQ(eval<CalcNodeFuncLog>({num(8), num(2)}), 3);
    EXPECT_DOUBLE_EQ(eval<CalcNodeFuncLog>({num(std::exp(2.0))}), 2);
}

TEST(FuncNumAbs, ClearsTheSignBit) {
    EXPECT_EQ(bitsOf(eval<CalcNodeFuncAbs>({num(-0.0)})), bitsOf(0.0));
    EXPECT_EQ(bitsOf(eval<CalcNodeFuncAbs>({num(-nan())})) >> 63, 0u);
}

TEST(FuncNumArgs, CountsAreCheckedAtConstruction) {
    EXPECT_THROW({ CalcNodeFuncAbs f(nullptr); }, CalcErrorArgsMissing);
    try {
        CalcNodeFuncThreshold f(args({num(1), num(2), num(3), num(4)}));
        FAIL() << "no error";
    } catch (const CalcErrorArgsTooMany& e) {
        EXPECT_STREQ(e.msg().str(), "Function \"threshold\" takes at most 3 argument(s)");
    }
}
