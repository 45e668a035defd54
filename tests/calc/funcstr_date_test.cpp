// Date functions built directly as nodes: base years, order of reading, NA
// days, the iso keyword, and the way back from text to days.
#include <gtest/gtest.h>

#include <cmath>

#include "base/JulianDate.h"
#include "calc/CalcNodeFuncStr.h"
#include "oper_testnodes.h"

using namespace calctest;
using namespace zun;

namespace {

String datestr(std::initializer_list<CalcNode*> nodes) {
    CalcNodeFuncDateStr f(args(nodes));
    return f.valStr();
}

double datenum(std::initializer_list<CalcNode*> nodes) {
    CalcNodeFuncDateNum f(args(nodes));
    return f.valNum();
}

const long long usecPerDay = 86400000000LL;

}  // namespace

TEST(FuncStrDate, DaysFromTheBaseYear) {
    EXPECT_STREQ(datestr({num(1.5)}).str(), JulianDate(usecPerDay * 3 / 2).str(-1).str());
    EXPECT_STREQ(datestr({num(-1)}).str(), JulianDate(-usecPerDay).str(-1).str());
    JulianDate start;
    ASSERT_TRUE(start.init("01-JAN-2001"));
    EXPECT_STREQ(datestr({num(2), num(2001)}).str(), JulianDate(start.usec + 2 * usecPerDay).str(-1).str());
    EXPECT_EQ(std::string(datestr({num(0), num(1990)}).str()).substr(0, 11), "01-JAN-1990");
}

TEST(FuncStrDate, BaseYearIsReadFirst) {
    std::string log;
    datestr({new Probe(log, "d", 0), new Probe(log, "y", 2000)});
    EXPECT_EQ(log, "yd");
}

TEST(FuncStrDate, NaNDaysGiveTheNullString) {
    EXPECT_TRUE(datestr({num(nan())}).isNull());
    EXPECT_TRUE(datestr({num(INFINITY), num(2000)}).isNull());
    EXPECT_TRUE(datestr({num(1e300), num(1990)}).isNull());
}

TEST(FuncStrDate, IsoKeywordOnlyWithoutVia) {
    CalcNodeFuncDateStr f(args({num(0)}));
    CalcNodeMem mem("m", num(1));
    EXPECT_EQ(f.keyword("iso", &mem), nullptr);
    EXPECT_EQ(f.keyword("dmy", nullptr), nullptr);
    EXPECT_STREQ(f.valStr().str(), JulianDate(0).str(-1).str());
    EXPECT_EQ(f.keyword("Iso", nullptr), &f);
    EXPECT_STREQ(f.valStr().str(), JulianDate(0).strIso(-1, false).str());
}

TEST(FuncStrDate, TextToDays) {
    EXPECT_EQ(datenum({str("2000-01-11T06:00:00")}), 10.25);
    EXPECT_EQ(datenum({str("01-JAN-2001"), num(2001)}), 0);
    EXPECT_TRUE(std::isnan(datenum({str("32-XYZ-2000")})));
    for (double days : {0.0, 366.0, 7000.25, -400.75})
        EXPECT_EQ(datenum({new CalcNodeFuncDateStr(args({num(days)}))}), days) << days;
}
