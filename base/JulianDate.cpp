#include "base/JulianDate.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <strings.h>

namespace zun {

int JulianDate::d_precision = 2;
const char* const JulianDate::months[12] = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                            "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
const char* const JulianDate::months_fullname[12] = {"January", "February", "March",     "April",
                                                     "May",     "June",     "July",      "August",
                                                     "September", "October", "November", "December"};

namespace {

const long long USEC_PER_SEC = 1000000;
const long long SEC_PER_DAY = 86400;
// the widest span of seconds from the epoch that microseconds can hold
const long long MAX_SECONDS = 9223372036854LL;
// the limits of a signed 32-bit Unix time, where dates out of range are clamped
const long long CLAMP_LOW = -2147483648LL;
const long long CLAMP_HIGH = 2147483647LL;

long long floorDiv(long long a, long long b) {
    long long q = a / b;
    if ((a % b != 0) && ((a < 0) != (b < 0))) --q;
    return q;
}

// Days from 1970-01-01 of a proleptic Gregorian date (month 1 to 12).
long long daysFromCivil(long long y, long long m, long long d) {
    y -= m <= 2;
    long long era = floorDiv(y, 400);
    long long yoe = y - era * 400;
    long long doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    long long doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

void civilFromDays(long long z, long long& y, int& m, int& d) {
    z += 719468;
    long long era = floorDiv(z, 146097);
    long long doe = z - era * 146097;
    long long yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    long long doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    long long mp = (5 * doy + 2) / 153;
    d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    y = yoe + era * 400 + (m <= 2);
}

// The broken-down UTC time of a Unix time, as gmtime gives it.
struct tm utcFields(long long unixSeconds) {
    struct tm t;
    std::memset(&t, 0, sizeof t);
    long long days = floorDiv(unixSeconds, SEC_PER_DAY);
    long long rest = unixSeconds - days * SEC_PER_DAY;
    long long y;
    int m, d;
    civilFromDays(days, y, m, d);
    t.tm_year = static_cast<int>(y - 1900);
    t.tm_mon = m - 1;
    t.tm_mday = d;
    t.tm_hour = static_cast<int>(rest / 3600);
    t.tm_min = static_cast<int>(rest / 60 % 60);
    t.tm_sec = static_cast<int>(rest % 60);
    t.tm_wday = static_cast<int>(((days + 4) % 7 + 7) % 7);  // 1970-01-01 was a Thursday
    t.tm_yday = static_cast<int>(days - daysFromCivil(y, 1, 1));
    return t;
}

// Microseconds rounded at the given number of decimals of the second; half
// away from zero.
long long roundedUsec(long long usec, int precision) {
    long long unit = 1;
    for (int i = precision; i < 6; ++i) unit *= 10;
    if (unit == 1) return usec;
    long long q = usec / unit;
    long long rem = usec % unit;
    if (rem * 2 >= unit) ++q;
    else if (rem * 2 <= -unit) --q;
    return q * unit;
}

int effectivePrecision(int precision) {
    if (precision < 0) precision = JulianDate::d_precision;
    if (precision < 0) precision = 0;
    if (precision > 6) precision = 6;
    return precision;
}

String formatTime(const struct tm& t, long long fracUsec, int precision, bool compact) {
    char b[64];
    double sec = t.tm_sec + static_cast<double>(fracUsec) / USEC_PER_SEC;
    int width = precision ? precision + 3 : 2;
    std::snprintf(b, sizeof b, compact ? "%.2d%.2d%0*.*lf" : "%.2d:%.2d:%0*.*lf", t.tm_hour, t.tm_min, width,
                  precision, sec);
    return String(b);
}

String formatDate(const struct tm& t) {
    char b[64];
    std::snprintf(b, sizeof b, "%.2d-%s-%.4d", t.tm_mday, JulianDate::months[t.tm_mon], t.tm_year + 1900);
    return String(b);
}

// The fields of a point in time rounded at a precision.
struct Rounded {
    struct tm t;
    long long fracUsec;
};

Rounded roundedFields(long long usec, int precision) {
    long long r = roundedUsec(usec, precision);
    long long secs = floorDiv(r, USEC_PER_SEC);
    return Rounded{utcFields(secs + JulianDate::UNIX_OFFSET), r - secs * USEC_PER_SEC};
}

int fullYear(int y) {
    if (y < 70) return y + 2000;
    if (y < 100) return y + 1900;
    return y;
}

}  // namespace

struct tm JulianDate::brokenDown() const {
    return utcFields(floorDiv(usec, USEC_PER_SEC) + UNIX_OFFSET);
}

JulianDate& JulianDate::init() {
    usec = (static_cast<long long>(std::time(nullptr)) - UNIX_OFFSET) * USEC_PER_SEC;
    return *this;
}

// Sets the point from broken-down fields, any of which may be out of its
// usual range and is carried as a calendar would. Out of the range that the
// microseconds can hold, the point clamps to a limit of 32-bit Unix time and
// the result is false.
static bool setFields(long long& usec, long long tmYear, long long tmMon, long long mday, long long hour,
                      long long minute, long long sec, long long fracUsec) {
    long long year = 1900 + tmYear + floorDiv(tmMon, 12);
    long long mon = tmMon - floorDiv(tmMon, 12) * 12 + 1;
    bool ok = year > -300000 && year < 300000;
    long long unixSeconds = 0;
    if (ok) {
        long long days = daysFromCivil(year, mon, 1) + mday - 1;
        unixSeconds = days * SEC_PER_DAY + hour * 3600 + minute * 60 + sec;
        long long fromEpoch = unixSeconds - JulianDate::UNIX_OFFSET;
        ok = fromEpoch > -MAX_SECONDS && fromEpoch < MAX_SECONDS;
    }
    if (!ok) {
        usec = ((tmYear < 71 ? CLAMP_LOW : CLAMP_HIGH) - JulianDate::UNIX_OFFSET) * USEC_PER_SEC;
        return false;
    }
    usec = (unixSeconds - JulianDate::UNIX_OFFSET) * USEC_PER_SEC + fracUsec;
    return true;
}

bool JulianDate::update(struct tm* t) {
    if (!t) return false;
    long long frac = usec - floorDiv(usec, USEC_PER_SEC) * USEC_PER_SEC;
    return setFields(usec, t->tm_year, t->tm_mon, t->tm_mday, t->tm_hour, t->tm_min, t->tm_sec, frac);
}

bool JulianDate::init(const char* text) {
    if (!text) return false;
    struct Form {
        const char* full;  // the date and what must follow it
        const char* core;  // the date alone
        const char* time;  // the time behind it
    };
    static const Form forms[4] = {
        {"%d-%3s-%d %n", "%*d-%*3s-%*d%n", "%d:%d:%lf"},
        {"%d-%d-%dT%n", "%*d-%*d-%*d%n", "%d:%d:%lf"},
        {"%4d%2d%2dT%n", "%*4d%*2d%*2d%n", "%2d%2d%lf"},
        {"%d/%d/%d %n", "%*d/%*d/%*d%n", "%d:%d:%lf"},
    };
    int textLength = static_cast<int>(std::strlen(text));
    int year = 2000, mon = 1, day = 1;
    int used = 0;
    const char* timeFormat = "%d:%d:%lf";
    for (int f = 0; f < 4; ++f) {
        int a = 0, b = 0, c = 0, n = 0;
        char word[4] = {0, 0, 0, 0};
        int got = f == 0 ? std::sscanf(text, forms[f].full, &a, word, &c, &n)
                         : std::sscanf(text, forms[f].full, &a, &b, &c, &n);
        if (got != 3) continue;
        if (n <= 0) {
            // the text may end right behind the date, before what should follow it
            int end = 0;
            std::sscanf(text, forms[f].core, &end);
            if (end <= 0 || end != textLength) continue;
            n = textLength;
        }
        used = n;
        timeFormat = forms[f].time;
        switch (f) {
        case 0: {
            int m = 0;
            while (m < 12 && strcasecmp(word, months[m]) != 0) ++m;
            if (m == 12) return false;
            day = a, mon = m + 1, year = c;
            break;
        }
        case 1:
        case 2:
            year = a, mon = b, day = c;
            break;
        default:
            day = a, mon = b, year = c;
            break;
        }
        year = fullYear(year);
        break;
    }
    int hour = 0, minute = 0;
    double sec = 0;
    bool ok = true;
    const char* rest = text + used;
    if (*rest) {
        int got = std::sscanf(rest, timeFormat, &hour, &minute, &sec);
        if (got < 2) {
            ok = false;
            hour = minute = 0;
            sec = 0;
        }
    }
    long long wholeSec = 0, fracUsec = 0;
    bool inRange = std::isfinite(sec) && std::fabs(sec) < 1e12;
    if (inRange) {
        double fl = std::floor(sec);
        wholeSec = static_cast<long long>(fl);
        fracUsec = std::llround((sec - fl) * USEC_PER_SEC);
    }
    bool set = inRange ? setFields(usec, year - 1900LL, mon - 1LL, day, hour, minute, wholeSec, fracUsec)
                       : setFields(usec, year < 1971 ? -300000LL : 300000LL, 0, 1, 0, 0, 0, 0);
    return ok && set;
}

double JulianDate::julianDayD(int epochYear) const {
    if (epochYear == 2000) return static_cast<double>(usec) / (SEC_PER_DAY * USEC_PER_SEC);
    long long epochDays = daysFromCivil(epochYear, 1, 1) - daysFromCivil(2000, 1, 1);
    return (static_cast<double>(usec) / USEC_PER_SEC - static_cast<double>(epochDays * SEC_PER_DAY)) /
           SEC_PER_DAY;
}

JulianDate& JulianDate::operator+=(int days) {
    usec += static_cast<long long>(days) * SEC_PER_DAY * USEC_PER_SEC;
    return *this;
}

JulianDate& JulianDate::operator+=(double days) {
    double moved = days * SEC_PER_DAY * USEC_PER_SEC;
    if (std::isfinite(moved) && std::fabs(moved) < 9.2e18) usec += std::llround(moved);
    return *this;
}

bool JulianDate::addDays(double days) {
    if (std::isnan(days)) return false;
    const double limit = static_cast<double>(MAX_SECONDS) * USEC_PER_SEC;
    double moved = std::trunc(days * static_cast<double>(SEC_PER_DAY * USEC_PER_SEC));
    double target = static_cast<double>(usec) + moved;
    if (!(std::fabs(target) < limit)) {
        usec = ((target < 0 ? CLAMP_LOW : CLAMP_HIGH) - UNIX_OFFSET) * USEC_PER_SEC;
        return false;
    }
    // the sum in whole microseconds where the move has a count of its own
    if (std::fabs(moved) < limit) usec += static_cast<long long>(moved);
    else usec = static_cast<long long>(target);
    return true;
}

JulianDate& JulianDate::addYears(int n) {
    if (n == 0) return *this;
    struct tm t = brokenDown();
    long long frac = usec - floorDiv(usec, USEC_PER_SEC) * USEC_PER_SEC;
    setFields(usec, static_cast<long long>(t.tm_year) + n, t.tm_mon, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec,
              frac);
    return *this;
}

JulianDate& JulianDate::addMonths(int n) {
    if (n == 0) return *this;
    struct tm t = brokenDown();
    long long frac = usec - floorDiv(usec, USEC_PER_SEC) * USEC_PER_SEC;
    long long mon = static_cast<long long>(t.tm_mon) + n;
    long long tmYear = t.tm_year + floorDiv(mon, 12);
    setFields(usec, tmYear, mon - floorDiv(mon, 12) * 12, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, frac);
    return *this;
}

int JulianDate::year() const { return brokenDown().tm_year + 1900; }
int JulianDate::month() const { return brokenDown().tm_mon + 1; }
int JulianDate::monthDay() const { return brokenDown().tm_mday; }
int JulianDate::yearDay() const { return brokenDown().tm_yday + 1; }
int JulianDate::weekDay() const { return brokenDown().tm_wday; }
int JulianDate::hour() const { return brokenDown().tm_hour; }
int JulianDate::minute() const { return brokenDown().tm_min; }
int JulianDate::second() const { return brokenDown().tm_sec; }

double JulianDate::daySeconds() const {
    const long long dayUsec = SEC_PER_DAY * USEC_PER_SEC;
    long long inDay = usec - floorDiv(usec, dayUsec) * dayUsec;
    return static_cast<double>(inDay) / USEC_PER_SEC;
}

String JulianDate::monthStr() const { return String(months_fullname[brokenDown().tm_mon]); }

String JulianDate::dateStr() const { return formatDate(brokenDown()); }

String JulianDate::timeStr(int precision, bool compact) const {
    int p = effectivePrecision(precision);
    Rounded r = roundedFields(usec, p);
    return formatTime(r.t, r.fracUsec, p, compact);
}

String JulianDate::str(int precision) const {
    int p = effectivePrecision(precision);
    Rounded r = roundedFields(usec, p);
    String s = formatDate(r.t);
    s += ' ';
    s += formatTime(r.t, r.fracUsec, p, false);
    return s;
}

String JulianDate::strIso(int precision, bool compact) const {
    int p = effectivePrecision(precision);
    Rounded r = roundedFields(usec, p);
    char b[64];
    std::snprintf(b, sizeof b, compact ? "%.4d%.2d%.2dT" : "%.4d-%.2d-%.2dT", r.t.tm_year + 1900, r.t.tm_mon + 1,
                  r.t.tm_mday);
    String s(b);
    s += formatTime(r.t, r.fracUsec, p, compact);
    return s;
}

}  // namespace zun
