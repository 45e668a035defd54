// Numeric, geodesic, string and date functions built directly as nodes: NA by
// value type, which arguments are read and in which order, bit patterns and
// integer results, keywords, and the precision of the arc formulas.
#include <gtest/gtest.h>

#include <climits>

#include "base/JulianDate.h"
#include "calc/CalcFunctions.h"
#include "calc/CalcNodeFuncNum.h"
#include "calc/CalcNodeFuncStr.h"
#include "calc_testing.h"

using namespace calctest;
using namespace zun;

namespace {

const double pi = 3.141592653589793;

template <class F>
double numberOf(std::initializer_list<CalcNode*> nodes) {
    F f(args(nodes));
    EXPECT_EQ(f.valType(), ValNum);
    return f.valNum();
}

template <class F>
String textOf(std::initializer_list<CalcNode*> nodes) {
    F f(args(nodes));
    EXPECT_EQ(f.valType(), ValStr);
    return f.valStr();
}

double arclen(double lon1, double lat1, double lon2, double lat2, bool haversine) {
    CalcNodeFuncArcLen f(args({num(lon1), num(lat1), num(lon2), num(lat2)}));
    f.haversine = haversine;
    return f.valNum();
}

}  // namespace

TEST(CalcFuncNum, NaByTheArgumentsOwnType) {
    EXPECT_EQ(numberOf<CalcNodeFuncIsNA>({num(nan()), str(nullptr), raw(nullptr)}), 1);
    EXPECT_EQ(numberOf<CalcNodeFuncIsNA>({num(nan()), str("")}), 0);
    EXPECT_EQ(numberOf<CalcNodeFuncIsNA>({raw("x")}), 0);
    EXPECT_EQ(numberOf<CalcNodeFuncHasNA>({num(1), str("a"), raw(nullptr)}), 1);
    EXPECT_EQ(numberOf<CalcNodeFuncHasNA>({str("abc")}), 0) << "a text that is no number isn't NA, but it is NaN";
    EXPECT_EQ(numberOf<CalcNodeFuncIsNan>({num(nan()), str("12x")}), 1);
    EXPECT_EQ(numberOf<CalcNodeFuncIsNullStr>({str(nullptr), num(nan())}), 1);
}

TEST(CalcFuncNum, LaterArgumentsReadOnlyWhenNeeded) {
    std::string log;
    EXPECT_EQ(numberOf<CalcNodeFuncIsNA>({probe(log, "a", 1), probe(log, "b", nan())}), 0);
    EXPECT_EQ(numberOf<CalcNodeFuncHasNA>({probe(log, "c", nan()), probe(log, "d", 1)}), 1);
    EXPECT_EQ(numberOf<CalcNodeFuncIsFinite>({probe(log, "e", INFINITY), probe(log, "f", 1)}), 0);
    EXPECT_EQ(log, "ace") << "the tests stop at the deciding argument";
    log.clear();
    EXPECT_EQ(numberOf<CalcNodeFuncThreshold>({num(1), num(2), probe(log, "high", 4)}), -1);
    EXPECT_EQ(numberOf<CalcNodeFuncLog>({num(1), probe(log, "base", 2)}), 0);
    EXPECT_EQ(bitsOf(numberOf<CalcNodeFuncRound>({num(-0.0), probe(log, "d", 2)})), bitsOf(0.0));
    EXPECT_EQ(numberOf<CalcNodeFuncFloor>({num(0), probe(log, "d", 2)}), 0);
    EXPECT_EQ(log, "");
    EXPECT_EQ(numberOf<CalcNodeFuncNumLookup>({probe(log, "x", 1), probe(log, "0", 1), probe(log, "1", 2)}), 0);
    EXPECT_EQ(log, "x0");
}

TEST(CalcFuncNum, BitsShiftArithmeticallyWithCountsModulo64) {
    const double cases[][4] = {
        {0xABCD, 15, -8, 0xAB}, {0xABCD, 4, 0, 0}, {-1, 63, 1, 1}, {-256, 4, 8, 0xF0}, {5, 64, 3, 5},
    };
    for (const auto& c : cases) EXPECT_EQ(numberOf<CalcNodeFuncBits>({num(c[0]), num(c[1]), num(c[2])}), c[3]) << c[0];
    CalcNodeFuncBits f(args({new CalcNodeConst<long long>("v", -1), num(0), num(63)}));
    EXPECT_EQ(f.valInt(), LLONG_MAX);
    EXPECT_STREQ(f.valStr().str(), "9223372036854775807") << "the integer result written in decimal";
    EXPECT_EQ(bitsOf(numberOf<CalcNodeFuncAbs>({num(-nan())})) >> 63, 0u) << "abs clears the sign of NaN";
}

TEST(CalcFuncNum, ArcLengthOnTheUnitSphere) {
    for (bool haversine : {false, true}) {
        EXPECT_EQ(arclen(0, 0, 0, 0, haversine), 0) << haversine;
        EXPECT_NEAR(arclen(0, 0, 0, pi / 2, haversine), pi / 2, 1e-12) << haversine;
        EXPECT_NEAR(arclen(0, 0, pi, 0, haversine), pi, 1e-7) << haversine;
        EXPECT_NEAR(arclen(0.1, 0, 0.1 + pi / 180, 0, haversine), pi / 180, 1e-12) << haversine;
    }
    EXPECT_NEAR(arclen(0.04, 0.85, -0.2, 0.7, false), arclen(0.04, 0.85, -0.2, 0.7, true), 1e-12);
    // the cosine of a zero angle may round just above 1: still zero, not NaN
    for (double lat : {0.3, 0.5, 0.7, 1.1, -0.9}) EXPECT_NEAR(arclen(0.3, lat, 0.3, lat, false), 0, 1e-7) << lat;
    EXPECT_TRUE(std::isnan(arclen(nan(), 0, 0, 0, false)));
}

TEST(CalcFuncNum, KeywordsOnlyWithoutVia) {
    CalcNodeMem mem("m", num(1));
    CalcNodeFuncArcLen arc(args({num(0), num(0), num(1), num(0)}));
    EXPECT_EQ(arc.keyword("cosine", nullptr), nullptr);
    EXPECT_EQ(arc.keyword("haversine", &mem), nullptr);
    EXPECT_FALSE(arc.haversine);
    EXPECT_EQ(arc.keyword("HAVERSINE", nullptr), &arc);
    EXPECT_TRUE(arc.haversine);
    CalcNodeFuncDateStr date(args({num(0)}));
    EXPECT_EQ(date.keyword("iso", &mem), nullptr);
    EXPECT_EQ(date.keyword("dmy", nullptr), nullptr);
    EXPECT_STREQ(date.valStr().str(), JulianDate(0).str(-1).str());
    EXPECT_EQ(date.keyword("Iso", nullptr), &date);
    EXPECT_STREQ(date.valStr().str(), JulianDate(0).strIso(-1, false).str());
}

TEST(CalcFuncStr, NullTextGivesNullWithoutReadingTheRest) {
    std::string log;
    EXPECT_TRUE(textOf<CalcNodeFuncSubstr>({str(nullptr), probe(log, "f", 1)}).isNull());
    EXPECT_TRUE(textOf<CalcNodeFuncStrWords>({str(nullptr), probe(log, "s", " "), num(0)}).isNull());
    EXPECT_TRUE(textOf<CalcNodeFuncSwap>({str(nullptr), probe(log, "a", "."), str("x")}).isNull());
    EXPECT_TRUE(textOf<CalcNodeFuncStrPad>({str(nullptr), probe(log, "w", 3)}).isNull());
    EXPECT_EQ(numberOf<CalcNodeFuncStrFind>({str(nullptr), probe(log, "w", "a")}), -1);
    EXPECT_EQ(log, "");
    EXPECT_TRUE(textOf<CalcNodeFuncStrEscape>({str(nullptr)}).isNull());
    EXPECT_TRUE(textOf<CalcNodeFuncUppercase>({str(nullptr)}).isNull());
    EXPECT_TRUE(textOf<CalcNodeFuncStrTrim>({str(nullptr), str("x")}).isNull());
}

TEST(CalcFuncStr, OrderOfReading) {
    std::string log;
    textOf<CalcNodeFuncStrInsert>({probe(log, "t", "abc"), probe(log, "w", "x"), probe(log, "p", 0.0)});
    EXPECT_EQ(log, "wpt") << "insert reads what, then position, then text";
    log.clear();
    EXPECT_EQ(numberOf<CalcNodeFuncStrIsInteger>({probe(log, "a", "x"), probe(log, "b", "1")}), 0);
    EXPECT_EQ(log, "a") << "a classification stops at the first failure";
}

TEST(CalcFuncStr, IndexFormIsASubstrNamedAfterTheOperator) {
    std::unique_ptr<CalcNode> n(makeSubstrNode("operator::[]", args({str("abc"), num(1), num(2)})));
    EXPECT_STREQ(n->name.str(), "operator::[]");
    EXPECT_STREQ(n->valStr().str(), "bc");
    EXPECT_THROW(makeSubstrNode("operator::[]", args({str("abc")})), CalcErrorArgsMissing);
}
