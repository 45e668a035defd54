#include "struct/StructDate.h"

#include <cmath>
#include <cstdint>
#include <cstdio>

#include "struct/Error.h"
#include "struct/StructString.h"

using zun::JulianDate;
using zun::String;

namespace vexa {

namespace {

const double usecPerDay = 86400000000.0;

// n * 86400 in signed 32 bits, wrapping as the stored form does.
int daySecondsWrapped(int n) {
    return static_cast<int>(static_cast<uint32_t>(n) * 86400u);
}

// x, which a DateTime value v gave for an integer read of the given type,
// must lie in [low, high): NaN, infinities and numbers too large have no
// such value.
void checkIntegral(StructElem& e, double x, double low, double high, const char* type, double v) {
    if (x >= low && x < high) return;
    String text("date of structure \"");
    text += e.getPathName();
    text += "\" out of range for ";
    text += type;
    text += ": ";
    text << v;
    throw ErrorValueRange(text.str());
}

const double two63 = 9223372036854775808.0;

}  // namespace

String dateText(double days, int year, bool withTime) {
    if (std::isnan(days)) return String("nan");
    JulianDate date;
    daysToDate(days, year, date);
    return withTime ? date.str(-1) : date.dateStr();
}

JulianDate& daysToDate(double days, int year, JulianDate& date) {
    if (std::isnan(days)) return date;
    if (year == 2000) {
        date.usec = 0;
        date.addDays(days);
        return date;
    }
    char start[32];
    std::snprintf(start, sizeof start, "01-JAN-%4d", year);
    if (date.init(start)) date.addDays(days);
    return date;
}

// ---------------------------------------------------------------------------


short daysOf(StructElem& e, double v) {
    double day = std::floor(v);
    checkIntegral(e, day, -2147483648.0, 2147483648.0, "SShort", v);
    return static_cast<short>(static_cast<int>(day));
}

unsigned long microsecondsOfDay(StructElem& e, double v) {
    double usec = (v - std::floor(v)) * usecPerDay;
    checkIntegral(e, usec, 0, 2 * two63, "ULong", v);
    return static_cast<unsigned long>(usec);
}

long long microseconds(StructElem& e, double v) {
    double usec = v * usecPerDay;
    checkIntegral(e, usec, -two63, two63, "SLLong", v);
    return static_cast<long long>(usec);
}

// ---------------------------------------------------------------------------

String StructADateTime::getTypeStr(int) { return String("aDateTime"); }

String& StructADateTime::readString(String& target, int append) {
    return readStringBytes(*this, target, append);
}

std::stringstream& StructADateTime::readStr(std::stringstream& out, int append) {
    return readStrBytes(*this, out, append);
}

JulianDate& StructADateTime::readDateTime(JulianDate& date) {
    String text;
    readString(text, 0);
    date.init(text.str());
    return date;
}

short& StructADateTime::readSShort(short& v) {
    JulianDate date;
    readDateTime(date);
    v = static_cast<short>(static_cast<int>(std::floor(date.julianDayD(year))));
    return v;
}

void StructADateTime::daysAndSeconds(int& days, double& seconds, bool wrap) {
    JulianDate date;
    readDateTime(date);
    days = static_cast<int>(std::floor(date.julianDayD(year)));
    double t = static_cast<double>(date.usec);
    double dayOfT = std::floor(t / usecPerDay);
    double start = wrap ? daySecondsWrapped(static_cast<int>(dayOfT)) : 86400.0 * dayOfT;
    seconds = t * 0.000001 - start;
}

double& StructADateTime::readDouble(double& v) {
    int days;
    double seconds;
    daysAndSeconds(days, seconds, false);
    v = days + seconds / 86400.0;
    return v;
}

unsigned long& StructADateTime::readULong(unsigned long& v) {
    int days;
    double seconds;
    daysAndSeconds(days, seconds, true);
    v = static_cast<unsigned long>(static_cast<long long>(seconds * 1000000.0));
    return v;
}

long long& StructADateTime::readSLLong(long long& v) {
    int days;
    double seconds;
    daysAndSeconds(days, seconds, true);
    v = static_cast<long long>((daySecondsWrapped(days) + seconds) * 1000000.0);
    return v;
}

}  // namespace vexa
