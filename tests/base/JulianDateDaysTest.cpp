// Moving a date by a number of days that may be missing, infinite or beyond
// the range of the microsecond count.
#include <gtest/gtest.h>

#include <limits>

#include "base/JulianDate.h"

using zun::JulianDate;

TEST(JulianDateDays, AddDaysInRangeClampedOrMissing) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const char* start;  // parsed; the epoch day when empty
        double days;
        bool ok;
        const char* value;  // str(6) afterwards
    } rows[] = {
        {"", 1.5, true, "02-JAN-2000 12:00:00.000000"},
        {"", -0.25, true, "31-DEC-1999 18:00:00.000000"},
        {"01-JAN-1970", 0.5, true, "01-JAN-1970 12:00:00.000000"},
        {"", 1e-11, true, "01-JAN-2000 00:00:00.000000"},    // below a microsecond: truncated
        {"", -1.5e-11, true, "31-DEC-1999 23:59:59.999999"},  // toward zero, one microsecond back
        // the ends of the range, and beyond: the limits that every
        // out-of-range date takes
        {"", 106751991.0, true, "09-JAN-294277 00:00:00.000000"},
        {"", -106751991.0, true, "23-DEC--290278 00:00:00.000000"},
        {"", 106751992.0, false, "19-JAN-2038 03:14:07.000000"},
        {"", -106751992.0, false, "13-DEC-1901 20:45:52.000000"},
        {"", inf, false, "19-JAN-2038 03:14:07.000000"},
        {"01-JAN-1970", 1e300, false, "19-JAN-2038 03:14:07.000000"},
        {"", -inf, false, "13-DEC-1901 20:45:52.000000"},
        {"01-JAN-1970", -1e300, false, "13-DEC-1901 20:45:52.000000"},
        // a missing number moves nothing
        {"05-MAR-2004 12:00:00", nan, false, "05-MAR-2004 12:00:00.000000"},
        {"05-MAR-2004 12:00:00", -nan, false, "05-MAR-2004 12:00:00.000000"},
    };
    for (const auto& r : rows) {
        JulianDate d;
        if (*r.start) {
            ASSERT_TRUE(d.init(r.start)) << r.start;
        }
        EXPECT_EQ(d.addDays(r.days), r.ok) << r.start << " + " << r.days;
        EXPECT_EQ(d.str(6), r.value) << r.start << " + " << r.days;
    }
}
