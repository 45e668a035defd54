// zun::JulianDate: a point in time, microseconds since 2000-01-01 00:00:00 UTC.
#pragma once

#include <ctime>

#include "base/String.h"

namespace zun {

class JulianDate {
public:
    long long usec = 0;   // microseconds since 2000-01-01 00:00:00 UTC

    static int d_precision;                    // decimals of seconds in text; 2 at start
    static const char* const months[12];       // "JAN" .. "DEC"
    static const char* const months_fullname[12];  // "January" .. "December"
    static const long long UNIX_OFFSET = 946684800;  // seconds from 1970 to 2000

    JulianDate() = default;
    explicit JulianDate(long long microseconds) : usec(microseconds) {}

    JulianDate& init();                        // the present moment, whole seconds
    bool init(const char* text);               // parses; false on failure
    bool update(struct tm* t);                 // sets the date from t, keeping the fraction

    double julianDayD(int epochYear = 2000) const;
    JulianDate& operator+=(int days);
    JulianDate& operator+=(double days);
    // Moves the point by days, the fraction as part of a day, truncated to
    // the microsecond. A point beyond the range of the microseconds (also
    // for an infinite number of days) clamps to the limit on its side, as
    // update does, and the result is false. NaN leaves the point: false.
    bool addDays(double days);
    JulianDate& addYears(int n);
    JulianDate& addMonths(int n);

    int year() const;
    int month() const;        // 1 to 12
    int monthDay() const;
    int yearDay() const;
    int weekDay() const;
    int hour() const;
    int minute() const;
    int second() const;
    double daySeconds() const;  // seconds since the start of the day, fraction included

    String monthStr() const;  // full name of the month
    String dateStr() const;   // "05-MAR-2004"
    String timeStr(int precision = -1, bool compact = false) const;
    String str(int precision = -1) const;
    String strIso(int precision = -1, bool compact = false) const;

private:
    struct tm brokenDown() const;  // gmtime of the floor of the seconds
};

}  // namespace zun
