#include <gtest/gtest.h>

#include <ctime>

#include "base/JulianDate.h"

using zun::JulianDate;

namespace {

JulianDate parsed(const char* text) {
    JulianDate d;
    EXPECT_TRUE(d.init(text)) << text;
    return d;
}

}  // namespace

TEST(JulianDate, ParseEveryForm) {
    const char* noon = "05-MAR-2004 12:00:00.000000";
    const char* midnight = "05-MAR-2004 00:00:00.000000";
    const struct {
        const char* text;
        bool ok;
        const char* value;  // str(6) after the parse; null: not looked at
    } rows[] = {
        {"05-MAR-2004 12:00:00", true, noon}, {"2004-03-05T12:00:00", true, noon},
        {"20040305T120000", true, noon}, {"05/03/2004 12:00:00", true, noon},
        {"05-MAR-2004", true, midnight}, {"2004-03-05", true, midnight}, {"05/03/2004", true, midnight},
        {"2004-03-05T", true, midnight},
        {"05-MAR-2004 12:00:00.5", true, "05-MAR-2004 12:00:00.500000"},
        {"20040305T1200001.25", true, "05-MAR-2004 12:00:01.250000"},
        {"05-MAR-2004 12:30", true, "05-MAR-2004 12:30:00.000000"},  // two items are enough
        {"12:30:15", true, "01-JAN-2000 12:30:15.000000"},             // on the epoch day
        // two-digit years, month words in any case
        {"12-FEB-99", true, "12-FEB-1999 00:00:00.000000"}, {"12-FEB-05", true, "12-FEB-2005 00:00:00.000000"},
        {"12-FEB-69", true, "12-FEB-2069 00:00:00.000000"}, {"12-FEB-70", true, "12-FEB-1970 00:00:00.000000"},
        {"12-feb-2005", true, "12-FEB-2005 00:00:00.000000"}, {"12-Dec-2005", true, "12-DEC-2005 00:00:00.000000"},
        // a wide range, fields out of range carry, times before the epoch
        {"01-JAN-2100", true, "01-JAN-2100 00:00:00.000000"}, {"01-JAN-1800 06:00:00", true, "01-JAN-1800 06:00:00.000000"},
        {"2004-13-01", true, "01-JAN-2005 00:00:00.000000"}, {"2003-02-29", true, "01-MAR-2003 00:00:00.000000"},
        {"31-DEC-1999 23:59:59.25", true, "31-DEC-1999 23:59:59.250000"},
        // failures; out of range clamps to the limits of 32-bit seconds
        {"12-FOO-2005", false, nullptr}, {"05-MAR-2004 12", false, nullptr}, {"05-MAR-2004 noon", false, nullptr},
        {"garbage", false, nullptr}, {nullptr, false, nullptr}, {"01-JAN-2004 00:00:1e300", false, nullptr},
        {"01-JAN-5000000", false, "19-JAN-2038 03:14:07.000000"}, {"-5000000-01-01", false, "13-DEC-1901 20:45:52.000000"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.text ? r.text : "(null)");
        JulianDate d(5);
        EXPECT_EQ(d.init(r.text), r.ok);
        if (r.value) {
            EXPECT_EQ(d.str(6), r.value);
        }
    }
    EXPECT_EQ(parsed("12-FEB-150").year(), 150);
}

TEST(JulianDate, Fields) {
    JulianDate d = parsed("05-MAR-2004 12:30:15.5");
    EXPECT_EQ(d.year(), 2004);
    EXPECT_EQ(d.month(), 3);
    EXPECT_EQ(d.monthDay(), 5);
    EXPECT_EQ(d.hour(), 12);
    EXPECT_EQ(d.minute(), 30);
    EXPECT_EQ(d.second(), 15);
    EXPECT_DOUBLE_EQ(d.daySeconds(), 45015.5);
    EXPECT_EQ(d.yearDay(), 31 + 29 + 5);
    EXPECT_EQ(d.weekDay(), 5);  // a Friday
    EXPECT_EQ(JulianDate(0).weekDay(), 6);
    EXPECT_EQ(JulianDate(0).yearDay(), 1);
    JulianDate before = parsed("31-DEC-1999 23:59:59.25");
    EXPECT_LT(before.usec, 0);
    EXPECT_EQ(before.second(), 59);
    EXPECT_DOUBLE_EQ(before.daySeconds(), 86399.25);
}

TEST(JulianDate, TextForms) {
    JulianDate d = parsed("05-MAR-2004 07:08:09.123456");
    EXPECT_EQ(JulianDate::d_precision, 2);
    EXPECT_EQ(d.dateStr(), "05-MAR-2004");
    EXPECT_EQ(d.str(), "05-MAR-2004 07:08:09.12");
    EXPECT_EQ(d.str(9), "05-MAR-2004 07:08:09.123456");
    EXPECT_EQ(d.timeStr(3, true), "070809.123");
    EXPECT_EQ(d.strIso(1), "2004-03-05T07:08:09.1");
    EXPECT_EQ(d.strIso(0, true), "20040305T070809");
    EXPECT_EQ(d.monthStr(), "March");
    JulianDate::d_precision = 4;
    EXPECT_EQ(d.timeStr(), "07:08:09.1235");
    JulianDate::d_precision = 2;
    // rounding carries into the date; the date alone is never rounded
    JulianDate late = parsed("31-DEC-2004 23:59:59.9996");
    EXPECT_EQ(late.str(3), "01-JAN-2005 00:00:00.000");
    EXPECT_EQ(late.str(4), "31-DEC-2004 23:59:59.9996");
    EXPECT_EQ(late.dateStr(), "31-DEC-2004");
    JulianDate half = parsed("05-MAR-2004 01:02:03.5");
    EXPECT_EQ(half.str(0), "05-MAR-2004 01:02:04");
    EXPECT_EQ(half.timeStr(1), "01:02:03.5");
}

TEST(JulianDate, DaysAndMoves) {
    const long long day = 86400000000LL;
    EXPECT_DOUBLE_EQ(JulianDate(day + day / 2).julianDayD(), 1.5);
    EXPECT_DOUBLE_EQ(JulianDate(0).julianDayD(1970), 10957.0);
    EXPECT_DOUBLE_EQ(parsed("01-JAN-2005").julianDayD(2004), 366.0);
    EXPECT_DOUBLE_EQ(parsed("01-JAN-1999").julianDayD(), -365.0);
    JulianDate d(0);
    d += 2;
    d += -0.5;
    EXPECT_EQ(d.usec, 3 * day / 2);

    JulianDate jan = parsed("31-JAN-2004 10:00:00.25");
    EXPECT_EQ(JulianDate(jan).addMonths(1).str(2), "02-MAR-2004 10:00:00.25");
    EXPECT_EQ(JulianDate(jan).addMonths(-2).dateStr(), "01-DEC-2003");
    EXPECT_EQ(JulianDate(jan).addYears(0).usec, jan.usec);
    EXPECT_EQ(JulianDate(jan).addYears(1000000).str(0), "19-JAN-2038 03:14:07");
    EXPECT_EQ(parsed("29-FEB-2004 00:00:00.5").addYears(1).str(1), "01-MAR-2005 00:00:00.5");

    struct tm t = {};
    t.tm_year = 110;
    t.tm_mon = 5;
    t.tm_mday = 15;
    t.tm_hour = 8;
    JulianDate fields = parsed("05-MAR-2004 12:00:00.75");
    EXPECT_TRUE(fields.update(&t));
    EXPECT_EQ(fields.str(2), "15-JUN-2010 08:00:00.75");
}

TEST(JulianDate, NowInWholeSeconds) {
    JulianDate d;
    d.init();
    EXPECT_EQ(d.usec % 1000000, 0);
    long long now = static_cast<long long>(std::time(nullptr)) - JulianDate::UNIX_OFFSET;
    EXPECT_LE(d.usec / 1000000, now);
    EXPECT_GE(d.usec / 1000000, now - 5);
}
