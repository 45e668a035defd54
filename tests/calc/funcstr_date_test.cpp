// Date functions: days to text and text to days.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "base/JulianDate.h"
#include "calc/CalcNodeFuncStr.h"
#include "oper_testnodes.h"

using namespace calctest;
using namespace zun;

namespace {

String datestr(std::initializer_list<CalcNode*> nodes, const char* keyword = nullptr) {
    CalcNodeFuncDateStr f(args(nodes));
    if (keyword) {
        EXPECT_EQ(f.keyword(keyword, nullptr), &f);
    }
    return f.valStr();
}

double datenum(std::initializer_list<CalcNode*> nodes) {
    CalcNodeFuncDateNum f(args(nodes));
    return f.valNum();
}

const long long usecPerDay = 86400000000LL;

}  // namespace

TEST(FuncStrDate, DaysFrom2000) {
    EXPECT_STREQ(datestr({num(0)}).str(), JulianDate(0).str(-1).str());
    EXPECT_STREQ(datestr({num(0), num(2000)}).str(), datestr({num(0)}).str());
    EXPECT_STREQ(datestr({num(1.5)}).str(), JulianDate(usecPerDay * 3 / 2).str(-1).str());
    EXPECT_STREQ(datestr({num(-1)}).str(), JulianDate(-usecPerDay).str(-1).str());
    EXPECT_EQ(std::string(datestr({num(31)}).str()).substr(0, 11), "01-FEB-2000");
}

TEST(FuncStrDate, IsoKeyword) {
    EXPECT_STREQ(datestr({num(0)}, "iso").str(), JulianDate(0).strIso(-1, false).str());
    EXPECT_STREQ(datestr({num(2.25)}, "ISO").str(), JulianDate(usecPerDay * 9 / 4).strIso(-1, false).str());
    CalcNodeFuncDateStr f(args({num(0)}));
    CalcNodeMem mem("m", num(1));
    EXPECT_EQ(f.keyword("iso", &mem), nullptr);
    EXPECT_EQ(f.keyword("dmy", nullptr), nullptr);
    EXPECT_STREQ(f.valStr().str(), JulianDate(0).str(-1).str());
}

TEST(FuncStrDate, OtherBaseYear) {
    JulianDate start;
    ASSERT_TRUE(start.init("01-JAN-2001"));
    EXPECT_STREQ(datestr({num(0), num(2001)}).str(), JulianDate(start.usec).str(-1).str());
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
}

TEST(FuncStrDate, TextToDays) {
    EXPECT_EQ(datenum({str("01-JAN-2000")}), 0);
    EXPECT_EQ(datenum({str("02-JAN-2000 12:00:00")}), 1.5);
    EXPECT_EQ(datenum({str("2000-01-11T06:00:00")}), 10.25);
    EXPECT_EQ(datenum({str("01-JAN-2001"), num(2001)}), 0);
    EXPECT_EQ(datenum({str("01-JAN-2000"), num(1999)}), 365);
    EXPECT_TRUE(std::isnan(datenum({str("32-XYZ-2000")})));
}

TEST(FuncStrDate, RoundTrip) {
    for (double days : {0.0, 1.5, 366.0, 7000.25, -400.75}) {
        CalcNode* text = new CalcNodeFuncDateStr(args({num(days)}));
        EXPECT_EQ(datenum({text}), days) << days;
    }
}
