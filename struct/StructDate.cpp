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

// The text of the date `days` days after the 1st of January of year: the
// date alone, or with the time. A missing number is a missing date, and
// prints as a missing number does.
String dateText(double days, int year, bool withTime) {
    if (std::isnan(days)) return String("nan");
    JulianDate date;
    daysToDate(days, year, date);
    return withTime ? date.str(-1) : date.dateStr();
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


JulianDate& StructNumDate::readDateTime(JulianDate& date) {
    double v;
    readDouble(v);
    return daysToDate(v, year, date);
}

String& StructNumDate::readString(String& target, int append) {
    double v;
    readDouble(v);
    if (!append) target = "";
    target += dateText(v, year, false);
    return target;
}

std::stringstream& StructNumDate::readStr(std::stringstream& out, int append) {
    double v;
    readDouble(v);
    if (!append) out.flush();
    out << dateText(v, year, false);
    return out;
}

// ---------------------------------------------------------------------------


JulianDate& StructNumDateTime::readDateTime(JulianDate& date) {
    double v;
    readDouble(v);
    return daysToDate(v, year, date);
}

String& StructNumDateTime::readString(String& target, int append) {
    double v;
    read(v);
    if (!append) target = "";
    target += dateText(v, year, true);
    return target;
}

std::stringstream& StructNumDateTime::readStr(std::stringstream& out, int append) {
    double v;
    read(v);
    if (!append) out.flush();
    out << dateText(v, year, true);
    return out;
}

short& StructNumDateTime::readSShort(short& v) {
    double d;
    read(d);
    double day = std::floor(d);
    checkIntegral(*this, day, -2147483648.0, 2147483648.0, "SShort", d);
    v = static_cast<short>(static_cast<int>(day));
    return v;
}

unsigned long& StructNumDateTime::readULong(unsigned long& v) {
    double d;
    read(d);
    double usec = (d - std::floor(d)) * usecPerDay;
    checkIntegral(*this, usec, 0, 2 * two63, "ULong", d);
    v = static_cast<unsigned long>(usec);
    return v;
}

long long& StructNumDateTime::readSLLong(long long& v) {
    double d;
    read(d);
    double usec = d * usecPerDay;
    checkIntegral(*this, usec, -two63, two63, "SLLong", d);
    v = static_cast<long long>(usec);
    return v;
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
