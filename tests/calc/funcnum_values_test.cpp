// Numeric functions built directly as nodes: NA tests, min and max, bits,
// threshold, the table lookups, rounding and logarithms.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#include "calc/CalcError.h"
#include "calc/CalcNodeFuncNum.h"
#include "oper_testnodes.h"

using namespace calctest;
using namespace zun;

namespace {

const double inf = std::numeric_limits<double>::infinity();

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
    EXPECT_EQ(eval<CalcNodeFuncHasNA>({num(1), str("a"), raw("b")}), 0);
    // "abc" is a string, so it isn't NA although it is no number
    EXPECT_EQ(eval<CalcNodeFuncHasNA>({str("abc")}), 0);
}

TEST(FuncNumNA, NaTestsStopAtTheDecidingArgument) {
    std::string log;
    EXPECT_EQ(eval<CalcNodeFuncIsNA>({new Probe(log, "a", 1), new Probe(log, "b", nan())}), 0);
    EXPECT_EQ(log, "a");
    log.clear();
    EXPECT_EQ(eval<CalcNodeFuncHasNA>({new Probe(log, "a", nan()), new Probe(log, "b", 1)}), 1);
    EXPECT_EQ(log, "a");
}

TEST(FuncNumNA, NullStringAndNanForms) {
    EXPECT_EQ(eval<CalcNodeFuncIsNullStr>({str(nullptr), num(nan())}), 1);
    EXPECT_EQ(eval<CalcNodeFuncIsNullStr>({str(nullptr), str("")}), 0);
    EXPECT_EQ(eval<CalcNodeFuncHasNullStr>({str("a"), num(nan())}), 1);
    EXPECT_EQ(eval<CalcNodeFuncHasNullStr>({str("a"), num(2)}), 0);
    // isnan reads numbers whatever the type: text that is no number is NaN
    EXPECT_EQ(eval<CalcNodeFuncIsNan>({num(nan()), str("12x")}), 1);
    EXPECT_EQ(eval<CalcNodeFuncIsNan>({num(nan()), str("12")}), 0);
    EXPECT_EQ(eval<CalcNodeFuncHasNan>({num(1), str("")}), 1);
    EXPECT_EQ(eval<CalcNodeFuncHasNan>({num(1), num(2)}), 0);
    EXPECT_EQ(eval<CalcNodeFuncIsFinite>({num(1), str("2")}), 1);
    EXPECT_EQ(eval<CalcNodeFuncIsFinite>({num(1), num(inf)}), 0);
    EXPECT_EQ(eval<CalcNodeFuncIsFinite>({num(nan())}), 0);
}

TEST(FuncNumMinMax, NaNIsIgnored) {
    EXPECT_EQ(eval<CalcNodeFuncMin>({num(nan()), num(2), num(1)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncMax>({num(nan()), num(2), num(1)}), 2);
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncMin>({num(nan()), num(nan())})));
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncMax>({num(nan())})));
    EXPECT_EQ(eval<CalcNodeFuncMin>({num(3), num(-inf), num(nan())}), -inf);
    EXPECT_EQ(eval<CalcNodeFuncMax>({str("7"), num(5)}), 7);
}

TEST(FuncNumBits, SingleBitsAndFields) {
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(12), num(2)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(12), num(1)}), 0);
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(12), num(2), num(2)}), 3);
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(12), num(3), num(-2)}), 3);
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(0xABCD), num(15), num(-8)}), 0xAB);
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(0xABCD), num(4), num(0)}), 0);
}

TEST(FuncNumBits, ArithmeticShiftAndModuloShiftCounts) {
    // the shift is arithmetic: the sign fills from the top
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(-1), num(63)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(-256), num(4), num(8)}), 0xF0);
    // shift counts are taken modulo 64
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(12), num(66)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncBits>({num(5), num(64), num(3)}), 5);
}

TEST(FuncNumBits, IntegerResultWrittenInDecimal) {
    CalcNodeFuncBits f(args({new CalcNodeConst<long long>("v", -1), num(0), num(63)}));
    EXPECT_EQ(f.valInt(), LLONG_MAX);
    EXPECT_STREQ(f.valStr().str(), "9223372036854775807");
}

TEST(FuncNumThreshold, BandAndNaN) {
    EXPECT_EQ(eval<CalcNodeFuncThreshold>({num(1), num(2), num(4)}), -1);
    EXPECT_EQ(eval<CalcNodeFuncThreshold>({num(5), num(2), num(4)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncThreshold>({num(2), num(2), num(4)}), 0);
    EXPECT_EQ(eval<CalcNodeFuncThreshold>({num(4), num(2), num(4)}), 0);
    EXPECT_EQ(eval<CalcNodeFuncThreshold>({num(nan()), num(2), num(4)}), 0);
    std::string log;
    EXPECT_EQ(eval<CalcNodeFuncThreshold>({num(1), num(2), new Probe(log, "high", 4)}), -1);
    EXPECT_EQ(log, "");
}

TEST(FuncNumLookup, LowerAndUpperBounds) {
    EXPECT_EQ(eval<CalcNodeFuncMinLookup>({num(5), num(0), num(10), num(20)}), 0);
    EXPECT_EQ(eval<CalcNodeFuncMinLookup>({num(-1), num(0), num(10), num(20)}), -1);
    EXPECT_EQ(eval<CalcNodeFuncMinLookup>({num(25), num(0), num(10), num(20)}), 2);
    EXPECT_EQ(eval<CalcNodeFuncMinLookup>({num(10), num(0), num(10), num(20)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncMaxLookup>({num(5), num(0), num(10), num(20)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncMaxLookup>({num(10), num(0), num(10), num(20)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncMaxLookup>({num(25), num(0), num(10), num(20)}), -1);
    EXPECT_EQ(eval<CalcNodeFuncMinLookup>({num(nan()), num(0), num(10)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncMaxLookup>({num(nan()), num(0), num(10)}), -1);
}

TEST(FuncNumLookup, Selections) {
    EXPECT_EQ(eval<CalcNodeFuncMinSelect>({num(5), num(0), num(10), num(20)}), 0);
    EXPECT_EQ(eval<CalcNodeFuncMinSelect>({num(-5), num(0), num(10), num(20)}), -inf);
    EXPECT_EQ(eval<CalcNodeFuncMinSelect>({num(25), num(0), num(10), num(20)}), 20);
    EXPECT_EQ(eval<CalcNodeFuncMinSelect>({num(25)}), -inf);
    EXPECT_EQ(eval<CalcNodeFuncMaxSelect>({num(5), num(0), num(10), num(20)}), 10);
    EXPECT_EQ(eval<CalcNodeFuncMaxSelect>({num(25), num(0), num(10)}), inf);
    EXPECT_EQ(eval<CalcNodeFuncMaxSelect>({num(0), num(0), num(10)}), 0);
}

TEST(FuncNumLookup, ExactMatches) {
    EXPECT_EQ(eval<CalcNodeFuncNumLookup>({num(10), num(0), num(10), num(20)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncNumLookup>({num(11), num(0), num(10)}), -1);
    EXPECT_EQ(eval<CalcNodeFuncNumLookup>({num(nan()), num(nan())}), -1);
    EXPECT_EQ(eval<CalcNodeFuncStrLookup>({str("b"), str("a"), str("b")}), 1);
    EXPECT_EQ(eval<CalcNodeFuncStrLookup>({str(""), str("a"), str(nullptr)}), 1);
    EXPECT_EQ(eval<CalcNodeFuncStrLookup>({str("c"), str("a"), str("b")}), -1);
}

TEST(FuncNumLookup, TableIsReadOnlyUpToTheDecision) {
    std::string log;
    EXPECT_EQ(eval<CalcNodeFuncNumLookup>(
                  {new Probe(log, "x", 1), new Probe(log, "0", 1), new Probe(log, "1", 2)}),
              0);
    EXPECT_EQ(log, "x0");
}

TEST(FuncNumRound, HalfUpAndDecimals) {
    EXPECT_EQ(eval<CalcNodeFuncRound>({num(2.5)}), 3);
    EXPECT_EQ(eval<CalcNodeFuncRound>({num(-2.5)}), -2);
    EXPECT_EQ(eval<CalcNodeFuncRound>({num(1.25), num(1)}), 1.3);
    EXPECT_EQ(eval<CalcNodeFuncRound>({num(1234), num(-2)}), 1200);
    EXPECT_EQ(eval<CalcNodeFuncFloor>({num(-1.5)}), -2);
    EXPECT_EQ(eval<CalcNodeFuncFloor>({num(1.29), num(1.9)}), 1.2);
    EXPECT_EQ(eval<CalcNodeFuncCeil>({num(1.21), num(1)}), 1.3);
    EXPECT_EQ(eval<CalcNodeFuncCeil>({num(-1.5)}), -1);
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncRound>({num(nan())})));
}

TEST(FuncNumRound, ZeroSkipsTheDecimals) {
    std::string log;
    EXPECT_EQ(bitsOf(eval<CalcNodeFuncRound>({num(-0.0), new Probe(log, "d", 2)})), bitsOf(0.0));
    EXPECT_EQ(eval<CalcNodeFuncFloor>({num(0), new Probe(log, "d", 2)}), 0);
    EXPECT_EQ(eval<CalcNodeFuncCeil>({num(0), new Probe(log, "d", 2)}), 0);
    EXPECT_EQ(log, "");
}

TEST(FuncNumLog, DomainAndBase) {
    EXPECT_EQ(eval<CalcNodeFuncLog>({num(1), num(nan())}), 0);
    EXPECT_EQ(eval<CalcNodeFuncLog>({num(0)}), -inf);
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncLog>({num(-1)})));
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncLog>({num(nan())})));
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncLog>({num(8), num(-2)})));
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncLog>({num(8), num(nan())})));
    EXPECT_DOUBLE_EQ(eval<CalcNodeFuncLog>({num(8), num(2)}), 3);
    EXPECT_DOUBLE_EQ(eval<CalcNodeFuncLog>({num(std::exp(2.0))}), 2);
}

TEST(FuncNumAbs, ClearsTheSignBit) {
    EXPECT_EQ(bitsOf(eval<CalcNodeFuncAbs>({num(-0.0)})), bitsOf(0.0));
    EXPECT_EQ(eval<CalcNodeFuncAbs>({num(-3.5)}), 3.5);
    EXPECT_EQ(bitsOf(eval<CalcNodeFuncAbs>({num(-std::nan(""))})) >> 63, 0u);
}

TEST(FuncNumArgs, CountsAreCheckedAtConstruction) {
    EXPECT_THROW({ CalcNodeFuncBits f(args({num(1)})); }, CalcErrorArgsMissing);
    EXPECT_THROW({ CalcNodeFuncBits f(args({num(1), num(2), num(3), num(4)})); }, CalcErrorArgsTooMany);
    EXPECT_THROW({ CalcNodeFuncAbs f(nullptr); }, CalcErrorArgsMissing);
    EXPECT_THROW({ CalcNodeFuncArcLen f(args({num(1), num(2), num(3)})); }, CalcErrorArgsMissing);
    try {
        CalcNodeFuncThreshold f(args({num(1), num(2), num(3), num(4)}));
        FAIL() << "no error";
    } catch (const CalcErrorArgsTooMany& e) {
        EXPECT_STREQ(e.msg().str(), "Function \"threshold\" takes at most 3 argument(s)");
    }
}
