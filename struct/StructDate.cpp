#include "struct/StructDate.h"

#include <cmath>
#include <cstdint>
#include <cstdio>

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

}  // namespace

JulianDate& daysToDate(double days, int year, JulianDate& date) {
    if (year == 2000) {
        date.usec = static_cast<long long>(days * usecPerDay);
        return date;
    }
    char start[32];
    std::snprintf(start, sizeof start, "01-JAN-%4d", year);
    if (date.init(start)) date.usec += static_cast<long long>(days * usecPerDay);
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
    JulianDate date;
    target += daysToDate(v, year, date).dateStr();
    return target;
}

std::stringstream& StructNumDate::readStr(std::stringstream& out, int append) {
    double v;
    readDouble(v);
    if (!append) out.flush();
    JulianDate date;
    out << daysToDate(v, year, date).dateStr();
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
    JulianDate date;
    target += daysToDate(v, year, date).str(-1);
    return target;
}

std::stringstream& StructNumDateTime::readStr(std::stringstream& out, int append) {
    double v;
    read(v);
    if (!append) out.flush();
    JulianDate date;
    out << daysToDate(v, year, date).str(-1);
    return out;
}

short& StructNumDateTime::readSShort(short& v) {
    double d;
    read(d);
    v = static_cast<short>(static_cast<int>(std::floor(d)));
    return v;
}

unsigned long& StructNumDateTime::readULong(unsigned long& v) {
    double d;
    read(d);
    v = static_cast<unsigned long>((d - std::floor(d)) * usecPerDay);
    return v;
}

long long& StructNumDateTime::readSLLong(long long& v) {
    double d;
    read(d);
    v = static_cast<long long>(d * usecPerDay);
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
