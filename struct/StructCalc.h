// Virtual fields: fields whose value is a statement instead of bytes of the
// file. They take no room (size 0), read like the file field of their type,
// and evaluate their statement once per position of the arrays it depends
// on (vexa::Calc keeps the value until one of them moves).
//
// Their bytes, for -b and -x, are those of the value as the machine holds
// it; -x shows them in the file's byte order.
#pragma once

#include "dict/Calc.h"
#include "struct/StructDate.h"
#include "struct/StructNum.h"

namespace vexa {

// A statement's number converted to T: truncated towards zero, wrapping to
// the width of T as integer conversions do. NaN and values beyond 64 bits
// give the bits of the most negative 64-bit integer, as the machine's own
// conversion does.
template <class T>
T fromStatement(double v);

// A number that takes no room in the file: its value comes from elsewhere
// (a statement, an index map). Its bytes, for -b and -x, are those of the
// value as the machine holds it.
template <class T>
class StructVirtualNum : public StructNum<T> {
public:
    StructVirtualNum(StructElem* prev, StructElem* parent, const char* name, const char* unit)
        : StructNum<T>(prev, parent, name, unit, 0) {}

    bool isVirtual() const override { return true; }
    T& read(T& v) override = 0;
    // The value's bytes in the machine's order.
    zun::RawBuffer& readBuf(zun::RawBuffer& buffer, int append) override;
    // The bytes copied, at most max; not the size.
    long readCPtr(char* buffer, long max) override;
    // The bytes as the file's byte order would hold them.
    zun::String readHex(bool compress) override;
    // Nothing lies in the file: no run to read.
    bool canReadRun() const override { return false; }
    bool writeRunTexts(TextFolder&, long) override { return false; }

protected:
    // The bytes of the value: sizeof(T), or one for the character classes.
    virtual void appendValue(zun::RawBuffer& buffer);
};

#define VEXA_EXTERN_STRUCTVIRTUALNUM(T) extern template class StructVirtualNum<T>;
VEXA_EACH_NUMBER_TYPE(VEXA_EXTERN_STRUCTVIRTUALNUM)
#undef VEXA_EXTERN_STRUCTVIRTUALNUM

template <class T>
class StructCalcNum : public StructVirtualNum<T> {
public:
    Calc calc;

    StructCalcNum(StructElem* prev, StructElem* parent, const char* name, const char* unit, const char* statement)
        : StructVirtualNum<T>(prev, parent, name, unit), calc(statement, *this) {}

    T& read(T& v) override {
        v = fromStatement<T>(calc.valNum());
        return v;
    }
    virtual StructElem* whoami() { return this; }
};

#define VEXA_EXTERN_STRUCTCALCNUM(T) extern template class StructCalcNum<T>;
VEXA_EACH_NUMBER_TYPE(VEXA_EXTERN_STRUCTCALCNUM)
#undef VEXA_EXTERN_STRUCTCALCNUM

#define VEXA_CALC_NUMBER(Class, T, Type)                      \
    class Class : public StructCalcNum<T> {                   \
    public:                                                   \
        using StructCalcNum<T>::StructCalcNum;                \
        ElemType getType() const override { return Type; }    \
    };

VEXA_CALC_NUMBER(StructCalcSShort, short, TypeSShort)
VEXA_CALC_NUMBER(StructCalcUShort, unsigned short, TypeUShort)
VEXA_CALC_NUMBER(StructCalcSLong, long, TypeSLong)
VEXA_CALC_NUMBER(StructCalcULong, unsigned long, TypeULong)
VEXA_CALC_NUMBER(StructCalcSLLong, long long, TypeSLLong)
VEXA_CALC_NUMBER(StructCalcULLong, unsigned long long, TypeULLong)
VEXA_CALC_NUMBER(StructCalcFloat, float, TypeFloat)
VEXA_CALC_NUMBER(StructCalcDouble, double, TypeDouble)

#undef VEXA_CALC_NUMBER

// One byte of the value, widened as the file's character fields are.
class StructCalcUChar : public StructCalcUShort {
public:
    using StructCalcUShort::StructCalcUShort;
    ElemType getType() const override { return TypeUChar; }
    char readChar() override { return static_cast<char>(fromStatement<unsigned char>(calc.valNum())); }
    unsigned short& read(unsigned short& v) override;

protected:
    void appendValue(zun::RawBuffer& buffer) override;
};

class StructCalcSChar : public StructCalcSShort {
public:
    using StructCalcSShort::StructCalcSShort;
    ElemType getType() const override { return TypeSChar; }
    char readChar() override { return static_cast<char>(fromStatement<signed char>(calc.valNum())); }
    short& read(short& v) override;

protected:
    void appendValue(zun::RawBuffer& buffer) override;
};

// A date from a number of days, the reference year in the unit column.
class StructCalcDate : public DaysAsDate<StructCalcSShort> {
public:
    StructCalcDate(StructElem* prev, StructElem* parent, const char* name, int year, const char* statement)
        : DaysAsDate<StructCalcSShort>(year, prev, parent, name, "Date", statement) {}
    ElemType getType() const override { return TypeDate; }
};

class StructCalcDateTime : public DaysAsDateTime<StructCalcDouble> {
public:
    StructCalcDateTime(StructElem* prev, StructElem* parent, const char* name, int year, const char* statement)
        : DaysAsDateTime<StructCalcDouble>(year, prev, parent, name, "DateTime", statement) {}
    ElemType getType() const override { return TypeDateTime; }
    // The seconds of the day.
    float& readFloat(float& v) override;
};

// A text.
class StructCalcStr : public StructElem {
public:
    Calc calc;

    StructCalcStr(StructElem* prev, StructElem* parent, const char* name, const char* unit, const char* statement)
        : StructElem(prev, parent, name, unit, 0), calc(statement, *this) {}

    bool isVirtual() const override { return true; }
    ElemType getType() const override { return TypeString; }
    zun::String getTypeStr(int) override { return zun::String("String"); }
    zun::String& readString(zun::String& target, int append) override;
    std::stringstream& readStr(std::stringstream& out, int append) override;
    zun::String readAll(bool compress) override;
    zun::RawBuffer& readBuf(zun::RawBuffer& buffer, int append) override;
    long readCPtr(char* buffer, long max) override;
    zun::String readHex(bool compress) override;
};

// The first character of a text; a zero byte for an empty one.
class StructCalcAChar : public StructElem {
public:
    Calc calc;

    StructCalcAChar(StructElem* prev, StructElem* parent, const char* name, const char* unit, const char* statement)
        : StructElem(prev, parent, name, unit, 0), calc(statement, *this) {}

    bool isVirtual() const override { return true; }
    ElemType getType() const override { return TypeAChar; }
    zun::String getTypeStr(int) override { return zun::String("AChar"); }
    char readChar() override;
    zun::String& readString(zun::String& target, int append) override;
    std::stringstream& readStr(std::stringstream& out, int append) override;
    zun::String readAll(bool compress) override;
    zun::RawBuffer& readBuf(zun::RawBuffer& buffer, int append) override;
    // Writes nothing; 1 when max is above 0.
    long readCPtr(char* buffer, long max) override;
    zun::String readHex(bool compress) override;
};

}  // namespace vexa
