// Date leaves: a number of days from the 1st of January of a reference year
// (the unit column), stored as a short ("Date") or a double ("DateTime"), or
// a date written as text ("aDateTime"). The element's unit is "date".
#pragma once

#include "base/JulianDate.h"
#include "struct/StructNum.h"

namespace vexa {

// The date `days` days (fraction included) after the 1st of January of year.
// When that start can't be made the date is what JulianDate::init left; a
// date beyond the range of JulianDate clamps as JulianDate::addDays does.
// NaN, a missing number, is a missing date: the date is left as it was.
zun::JulianDate& daysToDate(double days, int year, zun::JulianDate& date);

class StructNumDate : public StructNumSShort {
public:
    int year;   // reference year

    StructNumDate(StructElem* prev, StructElem* parent, const char* name, int year, long size)
        : StructNumSShort(prev, parent, name, "date", size), year(year) {}

    ElemType getType() const override { return TypeDate; }
    bool writeRunTexts(TextFolder&, long) override { return false; }
    zun::JulianDate& readDateTime(zun::JulianDate& date) override;
    // The date as "DD-MON-YYYY".
    zun::String& readString(zun::String& target, int append) override;
    std::stringstream& readStr(std::stringstream& out, int append) override;
};

class StructNumDateTime : public StructNumDouble {
public:
    int year;   // reference year

    StructNumDateTime(StructElem* prev, StructElem* parent, const char* name, int year, long size)
        : StructNumDouble(prev, parent, name, "date", size), year(year) {}

    ElemType getType() const override { return TypeDateTime; }
    bool writeRunTexts(TextFolder&, long) override { return false; }
    zun::JulianDate& readDateTime(zun::JulianDate& date) override;
    // The date and time, with the precision of JulianDate::d_precision.
    zun::String& readString(zun::String& target, int append) override;
    std::stringstream& readStr(std::stringstream& out, int append) override;
    // The whole days.
    short& readSShort(short& v) override;
    // Microseconds of the day.
    unsigned long& readULong(unsigned long& v) override;
    // Microseconds from the reference.
    long long& readSLLong(long long& v) override;
};

// A date written as text, in any form JulianDate::init accepts.
class StructADateTime : public StructElem {
public:
    int year;   // reference year

    StructADateTime(StructElem* prev, StructElem* parent, const char* name, int year, long size)
        : StructElem(prev, parent, name, "date", size), year(year) {}

    ElemType getType() const override { return TypeADateTime; }
    zun::String getTypeStr(int level) override;
    void setSize() override { size = 20; }
    zun::String& readString(zun::String& target, int append) override;
    std::stringstream& readStr(std::stringstream& out, int append) override;
    zun::JulianDate& readDateTime(zun::JulianDate& date) override;
    short& readSShort(short& v) override;
    double& readDouble(double& v) override;
    unsigned long& readULong(unsigned long& v) override;
    long long& readSLLong(long long& v) override;

private:
    // Whole days from the reference year and seconds of the day; with wrap
    // the day's start is counted in signed 32-bit seconds, as the integer
    // forms have always done.
    void daysAndSeconds(int& days, double& seconds, bool wrap);
};

}  // namespace vexa
