// Binary numeric leaves: StructNum<T> reads a field of the file into a T,
// with the byte order of the root's stream, and the named classes give each
// dictionary type its typed reads (widening only) and its type name.
#pragma once

#include "struct/StructElem.h"

namespace vexa {

// Writes v as the standard stream's default format would (decimal integers,
// "%g"-like six significant digits for floating values, "inf", "nan",
// "-nan"), zero-terminated; returns the number of characters. buffer must
// hold at least 32 bytes.
int formatNumber(char* buffer, short v);
int formatNumber(char* buffer, unsigned short v);
int formatNumber(char* buffer, long v);
int formatNumber(char* buffer, unsigned long v);
int formatNumber(char* buffer, long long v);
int formatNumber(char* buffer, unsigned long long v);
int formatNumber(char* buffer, double v);
inline int formatNumber(char* buffer, float v) { return formatNumber(buffer, static_cast<double>(v)); }

template <class T>
class StructNum : public StructElem {
public:
    StructNum(StructElem* prev, StructElem* parent, const char* name, const char* unit, long size)
        : StructElem(prev, parent, name, unit, size) {}

    // The natural width of T in the file: 2, 8, 4 or 8 bytes.
    void setSize() override;
    std::stringstream& readStr(std::stringstream& out, int append) override;
    zun::String& readString(zun::String& target, int append) override;
    // Reads the field into v, converting the byte order of the stream.
    virtual T& read(T& v);

protected:
    // Reads the field and converts its value to U.
    template <class U>
    U& readAs(U& v) {
        T t;
        read(t);
        v = static_cast<U>(t);
        return v;
    }
};

extern template class StructNum<short>;
extern template class StructNum<unsigned short>;
extern template class StructNum<long>;
extern template class StructNum<unsigned long>;
extern template class StructNum<long long>;
extern template class StructNum<unsigned long long>;
extern template class StructNum<float>;
extern template class StructNum<double>;

class StructNumSShort : public StructNum<short> {
public:
    using StructNum<short>::StructNum;
    ElemType getType() const override { return TypeSShort; }
    zun::String getTypeStr(int level) override;
    short& readSShort(short& v) override { return readAs(v); }
    unsigned short& readUShort(unsigned short& v) override { return readAs(v); }
    long& readSLong(long& v) override { return readAs(v); }
    unsigned long& readULong(unsigned long& v) override { return readAs(v); }
    long long& readSLLong(long long& v) override { return readAs(v); }
    unsigned long long& readULLong(unsigned long long& v) override { return readAs(v); }
    float& readFloat(float& v) override { return readAs(v); }
    double& readDouble(double& v) override { return readAs(v); }
};

// One signed byte, read as a short.
class StructNumSChar : public StructNumSShort {
public:
    using StructNumSShort::StructNumSShort;
    ElemType getType() const override { return TypeSChar; }
    zun::String getTypeStr(int level) override;
    // A character field without a size column takes one byte.
    void setSize() override { size = 1; }
    short& read(short& v) override;
};

class StructNumUShort : public StructNum<unsigned short> {
public:
    using StructNum<unsigned short>::StructNum;
    ElemType getType() const override { return TypeUShort; }
    zun::String getTypeStr(int level) override;
    short& readSShort(short& v) override { return readAs(v); }
    unsigned short& readUShort(unsigned short& v) override { return readAs(v); }
    long& readSLong(long& v) override { return readAs(v); }
    unsigned long& readULong(unsigned long& v) override { return readAs(v); }
    long long& readSLLong(long long& v) override { return readAs(v); }
    unsigned long long& readULLong(unsigned long long& v) override { return readAs(v); }
    float& readFloat(float& v) override { return readAs(v); }
    double& readDouble(double& v) override { return readAs(v); }
};

// One unsigned byte, read as an unsigned short.
class StructNumUChar : public StructNumUShort {
public:
    using StructNumUShort::StructNumUShort;
    ElemType getType() const override { return TypeUChar; }
    zun::String getTypeStr(int level) override;
    void setSize() override { size = 1; }
    unsigned short& read(unsigned short& v) override;
};

class StructNumSLong : public StructNum<long> {
public:
    using StructNum<long>::StructNum;
    ElemType getType() const override { return TypeSLong; }
    zun::String getTypeStr(int level) override;
    long& readSLong(long& v) override { return readAs(v); }
    unsigned long& readULong(unsigned long& v) override { return readAs(v); }
    long long& readSLLong(long long& v) override { return readAs(v); }
    unsigned long long& readULLong(unsigned long long& v) override { return readAs(v); }
    float& readFloat(float& v) override { return readAs(v); }
    double& readDouble(double& v) override { return readAs(v); }
};

class StructNumULong : public StructNum<unsigned long> {
public:
    using StructNum<unsigned long>::StructNum;
    ElemType getType() const override { return TypeULong; }
    zun::String getTypeStr(int level) override;
    long& readSLong(long& v) override { return readAs(v); }
    unsigned long& readULong(unsigned long& v) override { return readAs(v); }
    long long& readSLLong(long long& v) override { return readAs(v); }
    unsigned long long& readULLong(unsigned long long& v) override { return readAs(v); }
    float& readFloat(float& v) override { return readAs(v); }
    double& readDouble(double& v) override { return readAs(v); }
};

class StructNumSLLong : public StructNum<long long> {
public:
    using StructNum<long long>::StructNum;
    ElemType getType() const override { return TypeSLLong; }
    zun::String getTypeStr(int level) override;
    long long& readSLLong(long long& v) override { return readAs(v); }
    unsigned long long& readULLong(unsigned long long& v) override { return readAs(v); }
    double& readDouble(double& v) override { return readAs(v); }
};

class StructNumULLong : public StructNum<unsigned long long> {
public:
    using StructNum<unsigned long long>::StructNum;
    ElemType getType() const override { return TypeULLong; }
    zun::String getTypeStr(int level) override;
    long long& readSLLong(long long& v) override { return readAs(v); }
    unsigned long long& readULLong(unsigned long long& v) override { return readAs(v); }
    double& readDouble(double& v) override { return readAs(v); }
};

class StructNumFloat : public StructNum<float> {
public:
    using StructNum<float>::StructNum;
    ElemType getType() const override { return TypeFloat; }
    zun::String getTypeStr(int level) override;
    float& readFloat(float& v) override { return readAs(v); }
    double& readDouble(double& v) override { return readAs(v); }
};

class StructNumDouble : public StructNum<double> {
public:
    using StructNum<double>::StructNum;
    ElemType getType() const override { return TypeDouble; }
    zun::String getTypeStr(int level) override;
    double& readDouble(double& v) override { return readAs(v); }
};

}  // namespace vexa
