// Numbers written as text in the file ("aUShort", "aDouble" and so on).
//
// They read and print as strings (the bytes, quoted); the typed reads parse
// the text with the standard stream extractor of the type asked for, with no
// error path, and readHexNum shows the number as the file's byte order would
// hold it in binary.
#pragma once

#include "struct/StructString.h"

namespace vexa {

class StructAsciiNum : public StructString {
public:
    using StructString::StructString;

protected:
    // Parses the field's text (up to its first zero byte) as a U.
    template <class U>
    U& parse(U& v);
    // The bytes of v in the stream's byte order, in hexadecimal.
    template <class U>
    zun::String hexOf(U v);
};

class StructAUChar : public StructAsciiNum {
public:
    using StructAsciiNum::StructAsciiNum;
    ElemType getType() const override { return TypeAUChar; }
    zun::String getTypeStr(int level) override;
    short& readSShort(short& v) override { return parse(v); }
    long& readSLong(long& v) override { return parse(v); }
    unsigned long& readULong(unsigned long& v) override { return parse(v); }
    long long& readSLLong(long long& v) override { return parse(v); }
    unsigned long long& readULLong(unsigned long long& v) override { return parse(v); }
    float& readFloat(float& v) override { return parse(v); }
    double& readDouble(double& v) override { return parse(v); }
    // The low byte of the number.
    char readChar() override;
    zun::String readHexNum(bool compress) override;
};

class StructASChar : public StructAUChar {
public:
    using StructAUChar::StructAUChar;
    ElemType getType() const override { return TypeASChar; }
    zun::String getTypeStr(int level) override;
};

class StructAUShort : public StructAsciiNum {
public:
    using StructAsciiNum::StructAsciiNum;
    ElemType getType() const override { return TypeAUShort; }
    zun::String getTypeStr(int level) override;
    unsigned short& readUShort(unsigned short& v) override { return parse(v); }
    long& readSLong(long& v) override { return parse(v); }
    unsigned long& readULong(unsigned long& v) override { return parse(v); }
    long long& readSLLong(long long& v) override { return parse(v); }
    unsigned long long& readULLong(unsigned long long& v) override { return parse(v); }
    float& readFloat(float& v) override { return parse(v); }
    double& readDouble(double& v) override { return parse(v); }
    zun::String readHexNum(bool compress) override;
};

class StructASShort : public StructAsciiNum {
public:
    using StructAsciiNum::StructAsciiNum;
    ElemType getType() const override { return TypeASShort; }
    zun::String getTypeStr(int level) override;
    short& readSShort(short& v) override { return parse(v); }
    long& readSLong(long& v) override { return parse(v); }
    unsigned long& readULong(unsigned long& v) override { return parse(v); }
    long long& readSLLong(long long& v) override { return parse(v); }
    unsigned long long& readULLong(unsigned long long& v) override { return parse(v); }
    float& readFloat(float& v) override { return parse(v); }
    double& readDouble(double& v) override { return parse(v); }
    zun::String readHexNum(bool compress) override;
};

class StructAULong : public StructAsciiNum {
public:
    using StructAsciiNum::StructAsciiNum;
    ElemType getType() const override { return TypeAULong; }
    zun::String getTypeStr(int level) override;
    unsigned long& readULong(unsigned long& v) override { return parse(v); }
    long long& readSLLong(long long& v) override { return parse(v); }
    unsigned long long& readULLong(unsigned long long& v) override { return parse(v); }
    float& readFloat(float& v) override { return parse(v); }
    double& readDouble(double& v) override { return parse(v); }
    zun::String readHexNum(bool compress) override;
};

class StructASLong : public StructAsciiNum {
public:
    using StructAsciiNum::StructAsciiNum;
    ElemType getType() const override { return TypeASLong; }
    zun::String getTypeStr(int level) override;
    long& readSLong(long& v) override { return parse(v); }
    long long& readSLLong(long long& v) override { return parse(v); }
    unsigned long long& readULLong(unsigned long long& v) override { return parse(v); }
    float& readFloat(float& v) override { return parse(v); }
    double& readDouble(double& v) override { return parse(v); }
    zun::String readHexNum(bool compress) override;
};

class StructAULLong : public StructAsciiNum {
public:
    using StructAsciiNum::StructAsciiNum;
    ElemType getType() const override { return TypeAULLong; }
    zun::String getTypeStr(int level) override;
    unsigned long long& readULLong(unsigned long long& v) override { return parse(v); }
    double& readDouble(double& v) override { return parse(v); }
    zun::String readHexNum(bool compress) override;
};

class StructASLLong : public StructAsciiNum {
public:
    using StructAsciiNum::StructAsciiNum;
    ElemType getType() const override { return TypeASLLong; }
    zun::String getTypeStr(int level) override;
    long long& readSLLong(long long& v) override { return parse(v); }
    double& readDouble(double& v) override { return parse(v); }
    zun::String readHexNum(bool compress) override;
};

class StructAFloat : public StructAsciiNum {
public:
    using StructAsciiNum::StructAsciiNum;
    ElemType getType() const override { return TypeAFloat; }
    zun::String getTypeStr(int level) override;
    float& readFloat(float& v) override { return parse(v); }
    double& readDouble(double& v) override { return parse(v); }
    zun::String readHexNum(bool compress) override;
};

class StructADouble : public StructAsciiNum {
public:
    using StructAsciiNum::StructAsciiNum;
    ElemType getType() const override { return TypeADouble; }
    zun::String getTypeStr(int level) override;
    double& readDouble(double& v) override { return parse(v); }
    zun::String readHexNum(bool compress) override;
};

}  // namespace vexa
