#include <gtest/gtest.h>

#include <ctime>

#include "base/JulianDate.h"

using zun::JulianDate;

namespace {

const long long DAY = 86400000000LL;

JulianDate parsed(const char* text) {
    JulianDate d;
    EXPECT_TRUE(d.init(text)) << text;
    return d;
}

}  // namespace

TEST(JulianDateParse, AllFormsAgree) {
    JulianDate a = parsed("05-MAR-2004 12:00:00");
    EXPECT_EQ(a.year(), 2004);
    EXPECT_EQ(a.month(), 3);
    EXPECT_EQ(a.monthDay(), 5);
    EXPECT_EQ(a.hour(), 12);
    EXPECT_EQ(parsed("2004-03-05T12:00:00").usec, a.usec);
    EXPECT_EQ(parsed("20040305T120000").usec, a.usec);
    EXPECT_EQ(parsed("05/03/2004 12:00:00").usec, a.usec);
}

TEST(JulianDateParse, DateAloneIsMidnight) {
    JulianDate a = parsed("05-MAR-2004");
    EXPECT_EQ(a.daySeconds(), 0.0);
    EXPECT_EQ(parsed("2004-03-05").usec, a.usec);
    EXPECT_EQ(parsed("05/03/2004").usec, a.usec);
    EXPECT_EQ(parsed("2004-03-05T").usec, a.usec);
}

TEST(JulianDateParse, FractionOfSecond) {
    JulianDate d = parsed("05-MAR-2004 12:00:00.5");
    EXPECT_DOUBLE_EQ(d.daySeconds(), 43200.5);
    EXPECT_EQ(d.second(), 0);
    JulianDate e = parsed("20040305T1200001.25");
    EXPECT_DOUBLE_EQ(e.daySeconds(), 43201.25);
    JulianDate hm = parsed("05-MAR-2004 12:30");  // two items are enough
    EXPECT_EQ(hm.minute(), 30);
}

TEST(JulianDateParse, TwoDigitYears) {
    EXPECT_EQ(parsed("12-FEB-99").year(), 1999);
    EXPECT_EQ(parsed("12-FEB-05").year(), 2005);
    EXPECT_EQ(parsed("12-FEB-69").year(), 2069);
    EXPECT_EQ(parsed("12-FEB-70").year(), 1970);
    EXPECT_EQ(parsed("12-FEB-150").year(), 150);
}

TEST(JulianDateParse, MonthWordAnyCase) {
    EXPECT_EQ(parsed("12-feb-2005").month(), 2);
    EXPECT_EQ(parsed("12-Dec-2005").month(), 12);
    JulianDate d(5);
    EXPECT_FALSE(d.init("12-FOO-2005"));
}

TEST(JulianDateParse, TimeOnlyIsOnTheEpochDay) {
    JulianDate d = parsed("12:30:15");
    EXPECT_EQ(d.year(), 2000);
    EXPECT_EQ(d.month(), 1);
    EXPECT_EQ(d.monthDay(), 1);
    EXPECT_EQ(d.usec, (12 * 3600 + 30 * 60 + 15) * 1000000LL);
}

TEST(JulianDateParse, BadTimeFails) {
    JulianDate d;
    EXPECT_FALSE(d.init("05-MAR-2004 12"));
    EXPECT_FALSE(d.init("05-MAR-2004 noon"));
    EXPECT_FALSE(d.init("garbage"));
    EXPECT_FALSE(d.init(nullptr));
}

TEST(JulianDateParse, OutOfRangeClamps) {
    JulianDate late;
    EXPECT_FALSE(late.init("01-JAN-5000000"));
    EXPECT_EQ(late.str(0), "19-JAN-2038 03:14:07");
    JulianDate early;
    EXPECT_FALSE(early.init("-5000000-01-01"));
    EXPECT_EQ(early.str(0), "13-DEC-1901 20:45:52");
    JulianDate huge;
    EXPECT_FALSE(huge.init("01-JAN-2004 00:00:1e300"));
}

TEST(JulianDateParse, WideRangeWithinLimits) {
    JulianDate d = parsed("01-JAN-2100");
    EXPECT_EQ(d.year(), 2100);
    JulianDate old = parsed("01-JAN-1800 06:00:00");
    EXPECT_EQ(old.dateStr(), "01-JAN-1800");
    EXPECT_EQ(old.hour(), 6);
}

TEST(JulianDateParse, OutOfRangeFieldsCarry) {
    EXPECT_EQ(parsed("2004-13-01").dateStr(), "01-JAN-2005");
    EXPECT_EQ(parsed("2003-02-29").dateStr(), "01-MAR-2003");
}

TEST(JulianDateText, DefaultPrecisionAndForms) {
    JulianDate d = parsed("05-MAR-2004 07:08:09.123456");
    EXPECT_EQ(JulianDate::d_precision, 2);
    EXPECT_EQ(d.dateStr(), "05-MAR-2004");
    EXPECT_EQ(d.str(), "05-MAR-2004 07:08:09.12");
    EXPECT_EQ(d.str(6), "05-MAR-2004 07:08:09.123456");
    EXPECT_EQ(d.str(9), d.str(6));
    EXPECT_EQ(d.timeStr(3, true), "070809.123");
    EXPECT_EQ(d.strIso(1), "2004-03-05T07:08:09.1");
    EXPECT_EQ(d.strIso(0, true), "20040305T070809");
    EXPECT_EQ(d.monthStr(), "March");
}

TEST(JulianDateText, PrecisionSetting) {
    JulianDate d = parsed("05-MAR-2004 07:08:09.123456");
    int saved = JulianDate::d_precision;
    JulianDate::d_precision = 4;
    EXPECT_EQ(d.timeStr(), "07:08:09.1235");
    JulianDate::d_precision = saved;
}

TEST(JulianDateText, RoundingCarriesIntoTheDate) {
    JulianDate d = parsed("31-DEC-2004 23:59:59.9996");
    EXPECT_EQ(d.str(3), "01-JAN-2005 00:00:00.000");
    EXPECT_EQ(d.str(4), "31-DEC-2004 23:59:59.9996");
    EXPECT_EQ(d.dateStr(), "31-DEC-2004");
    JulianDate half = parsed("05-MAR-2004 12:00:00.5");
    EXPECT_EQ(half.str(0), "05-MAR-2004 12:00:01");  // no decimal point, rounded
    EXPECT_EQ(half.timeStr(1), "12:00:00.5");
}

TEST(JulianDateText, SecondsFieldIsZeroPadded) {
    JulianDate d = parsed("05-MAR-2004 01:02:03.5");
    EXPECT_EQ(d.timeStr(1), "01:02:03.5");
    EXPECT_EQ(d.timeStr(0), "01:02:04");
}

TEST(JulianDateText, BeforeTheEpoch) {
    JulianDate d = parsed("31-DEC-1999 23:59:59.25");
    EXPECT_LT(d.usec, 0);
    EXPECT_EQ(d.str(2), "31-DEC-1999 23:59:59.25");
    EXPECT_EQ(d.second(), 59);
    EXPECT_DOUBLE_EQ(d.daySeconds(), 86399.25);
}

TEST(JulianDateParts, WeekAndYearDay) {
    JulianDate epoch(0);
    EXPECT_EQ(epoch.weekDay(), 6);  // a Saturday
    EXPECT_EQ(epoch.yearDay(), 1);
    JulianDate d = parsed("05-MAR-2004");
    EXPECT_EQ(d.yearDay(), 31 + 29 + 5);
    EXPECT_EQ(d.weekDay(), 5);  // a Friday
}

TEST(JulianDateDays, EpochYears) {
    JulianDate d(DAY + DAY / 2);
    EXPECT_DOUBLE_EQ(d.julianDayD(), 1.5);
    EXPECT_DOUBLE_EQ(d.julianDayD(2000), 1.5);
    EXPECT_DOUBLE_EQ(JulianDate(0).julianDayD(1970), 10957.0);
    EXPECT_DOUBLE_EQ(parsed("01-JAN-2005").julianDayD(2004), 366.0);
    EXPECT_DOUBLE_EQ(parsed("01-JAN-1999").julianDayD(), -365.0);
}

TEST(JulianDateMove, Days) {
    JulianDate d(0);
    d += 2;
    EXPECT_EQ(d.usec, 2 * DAY);
    d += -0.5;
    EXPECT_EQ(d.usec, 3 * DAY / 2);
}

TEST(JulianDateMove, MonthsAndYearsKeepTheFraction) {
    JulianDate d = parsed("31-JAN-2004 10:00:00.25");
    JulianDate m = d;
    m.addMonths(1);
    EXPECT_EQ(m.str(2), "02-MAR-2004 10:00:00.25");
    JulianDate back = d;
    back.addMonths(-2);
    EXPECT_EQ(back.dateStr(), "01-DEC-2003");
    JulianDate y = parsed("29-FEB-2004 00:00:00.5");
    y.addYears(1);
    EXPECT_EQ(y.str(1), "01-MAR-2005 00:00:00.5");
    JulianDate same = d;
    same.addYears(0);
    EXPECT_EQ(same.usec, d.usec);
    JulianDate far = d;
    far.addYears(1000000);
    EXPECT_EQ(far.str(0), "19-JAN-2038 03:14:07");
}

TEST(JulianDateMove, UpdateFromFields) {
    JulianDate d = parsed("05-MAR-2004 12:00:00.75");
    struct tm t = {};
    t.tm_year = 110;
    t.tm_mon = 5;
    t.tm_mday = 15;
    t.tm_hour = 8;
    EXPECT_TRUE(d.update(&t));
    EXPECT_EQ(d.str(2), "15-JUN-2010 08:00:00.75");
}

TEST(JulianDateNow, WholeSecondsOfThePresent) {
    JulianDate d;
    d.init();
    EXPECT_EQ(d.usec % 1000000, 0);
    long long now = static_cast<long long>(std::time(nullptr)) - JulianDate::UNIX_OFFSET;
    EXPECT_LE(d.usec / 1000000, now);
    EXPECT_GE(d.usec / 1000000, now - 5);
}
