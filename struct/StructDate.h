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

// The text of the date `days` days after the 1st of January of year: the
// date alone ("DD-MON-YYYY"), or with the time to JulianDate::d_precision.
// A missing number is a missing date, and prints as a missing number does.
zun::String dateText(double days, int year, bool withTime);
// The DateTime value v as an integer read gives it: days, microseconds of
// the day or microseconds from the reference, each checked to fit.
short daysOf(StructElem& e, double v);
unsigned long microsecondsOfDay(StructElem& e, double v);
long long microseconds(StructElem& e, double v);

// The reads of a date held as a number of days: Base is the number element
// (a short for "Date", a double for "DateTime"), in the file or virtual;
// the reference year is the unit column.
template <class Base>
class DaysAsDate : public Base {
public:
    int year;   // reference year

    template <class... Rest>
    DaysAsDate(int year, StructElem* prev, StructElem* parent, const char* name, const char* unit, Rest... rest)
        : Base(prev, parent, name, unit, rest...), year(year) {}

    // The text is a date, not the number: no run of numbers to print.
    bool writeRunTexts(TextFolder&, long) override { return false; }
    void writeText(TextSink& sink, TextForm form, bool compress) override {
        StructElem::writeText(sink, form, compress);
    }
    zun::JulianDate& readDateTime(zun::JulianDate& date) override { return daysToDate(days(), year, date); }
    // The date as "DD-MON-YYYY".
    zun::String& readString(zun::String& target, int append) override {
        zun::String text = dateText(days(), year, false);
        if (!append) target = "";
        target += text;
        return target;
    }
    std::stringstream& readStr(std::stringstream& out, int append) override {
        zun::String text = dateText(days(), year, false);
        if (!append) out.flush();
        out << text;
        return out;
    }

protected:
    double days() {
        double v;
        this->readDouble(v);
        return v;
    }
};

template <class Base>
class DaysAsDateTime : public DaysAsDate<Base> {
public:
    using DaysAsDate<Base>::DaysAsDate;

    // The date and time, with the precision of JulianDate::d_precision.
    zun::String& readString(zun::String& target, int append) override {
        zun::String text = dateText(value(), this->year, true);
        if (!append) target = "";
        target += text;
        return target;
    }
    std::stringstream& readStr(std::stringstream& out, int append) override {
        zun::String text = dateText(value(), this->year, true);
        if (!append) out.flush();
        out << text;
        return out;
    }
    // The whole days.
    short& readSShort(short& v) override { return v = daysOf(*this, value()); }
    // Microseconds of the day.
    unsigned long& readULong(unsigned long& v) override { return v = microsecondsOfDay(*this, value()); }
    // Microseconds from the reference.
    long long& readSLLong(long long& v) override { return v = microseconds(*this, value()); }

protected:
    double value() {
        double v;
        this->read(v);
        return v;
    }
};

class StructNumDate : public DaysAsDate<StructNumSShort> {
public:
    StructNumDate(StructElem* prev, StructElem* parent, const char* name, int year, long size)
        : DaysAsDate<StructNumSShort>(year, prev, parent, name, "date", size) {}
    ElemType getType() const override { return TypeDate; }
};

class StructNumDateTime : public DaysAsDateTime<StructNumDouble> {
public:
    StructNumDateTime(StructElem* prev, StructElem* parent, const char* name, int year, long size)
        : DaysAsDateTime<StructNumDouble>(year, prev, parent, name, "date", size) {}
    ElemType getType() const override { return TypeDateTime; }
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
