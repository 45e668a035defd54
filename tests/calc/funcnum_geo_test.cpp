// Transcendental and geodesic functions, and the haversine keyword.
#include <gtest/gtest.h>

#include <cmath>

#include "calc/CalcNodeFuncNum.h"
#include "oper_testnodes.h"

using namespace calctest;
using namespace zun;

namespace {

const double pi = 3.141592653589793;

template <class F>
double eval(std::initializer_list<CalcNode*> nodes) {
    F f(args(nodes));
    return f.valNum();
}

double arclen(double lon1, double lat1, double lon2, double lat2, bool haversine) {
    CalcNodeFuncArcLen f(args({num(lon1), num(lat1), num(lon2), num(lat2)}));
    f.haversine = haversine;
    return f.valNum();
}

}  // namespace

TEST(FuncNumTrig, AtanWithOneOrTwoArguments) {
    EXPECT_NEAR(eval<CalcNodeFuncATan>({num(1)}), pi / 4, 1e-15);
    EXPECT_NEAR(eval<CalcNodeFuncATan>({num(1), num(-1)}), 3 * pi / 4, 1e-15);
    EXPECT_NEAR(eval<CalcNodeFuncATan>({num(-1), num(-1)}), -3 * pi / 4, 1e-15);
    EXPECT_TRUE(std::isnan(eval<CalcNodeFuncASin>({num(-1.5)})));
}

TEST(FuncNumGeo, ArcLengthOnTheUnitSphere) {
    for (bool haversine : {false, true}) {
        EXPECT_EQ(arclen(0, 0, 0, 0, haversine), 0) << haversine;
        EXPECT_NEAR(arclen(0, 0, 0, pi / 2, haversine), pi / 2, 1e-12) << haversine;
        EXPECT_NEAR(arclen(0, 0, pi, 0, haversine), pi, 1e-7) << haversine;
        EXPECT_NEAR(arclen(0.1, 0, 0.1 + pi / 180, 0, haversine), pi / 180, 1e-12) << haversine;
    }
    EXPECT_NEAR(arclen(0.04, 0.85, -0.2, 0.7, false), arclen(0.04, 0.85, -0.2, 0.7, true), 1e-12);
}

TEST(FuncNumGeo, SamePointIsZeroNotNaN) {
    // the cosine of a zero angle may round just above 1
    for (double lat : {0.3, 0.5, 0.7, 1.1, -0.9}) EXPECT_NEAR(arclen(0.3, lat, 0.3, lat, false), 0, 1e-7) << lat;
    EXPECT_TRUE(std::isnan(arclen(nan(), 0, 0, 0, false)));
}

TEST(FuncNumGeo, HaversineKeywordOnlyWithoutVia) {
    CalcNodeFuncArcLen f(args({num(0), num(0), num(1), num(0)}));
    EXPECT_EQ(f.keyword("cosine", nullptr), nullptr);
    CalcNodeMem mem("m", num(1));
    EXPECT_EQ(f.keyword("haversine", &mem), nullptr);
    EXPECT_FALSE(f.haversine);
    EXPECT_EQ(f.keyword("HAVERSINE", nullptr), &f);
    EXPECT_TRUE(f.haversine);
}

TEST(FuncNumGeo, InitialBearing) {
    EXPECT_EQ(eval<CalcNodeFuncArcBearing>({num(0), num(0), num(0), num(1)}), 0);
    EXPECT_NEAR(eval<CalcNodeFuncArcBearing>({num(0), num(0), num(1), num(0)}), pi / 2, 1e-15);
    EXPECT_NEAR(eval<CalcNodeFuncArcBearing>({num(0), num(0), num(-1), num(0)}), -pi / 2, 1e-15);
    EXPECT_NEAR(eval<CalcNodeFuncArcBearing>({num(0), num(0.5), num(0), num(-0.5)}), pi, 1e-15);
}
