// Numbers written as text in the file ("aUShort", "aDouble" and so on).
//
// They read and print as strings (the bytes, quoted); the typed reads parse
// the text with the standard stream extractor of the type asked for, with no
// error path, and readHexNum shows the number as the file's byte order would
// hold it in binary.
#pragma once

#include <sstream>
#include <string>

#include "struct/StructNum.h"
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

// A number written as text that stands for a binary N: its typed reads follow
// the rule of the numbers (readsAs), without the other sign of N's width.
template <class N>
class StructAsciiNumOf : public TypedReads<StructAsciiNumOf<N>, StructAsciiNum> {
    friend class TypedReads<StructAsciiNumOf<N>, StructAsciiNum>;

public:
    using TypedReads<StructAsciiNumOf<N>, StructAsciiNum>::TypedReads;

    zun::String getTypeStr(int) override { return zun::String(elemTypeName(this->getType())); }
    // The bytes of the binary N that the text stands for.
    zun::String readHexNum(bool) override {
        N v;
        return this->hexOf(this->parse(v));
    }

private:
    // The run of n text fields behind the one just read, each parsed as U the
    // way parse() does: up to the first zero byte, blanks first skipped, a
    // bad text giving 0.
    template <class U>
    bool readRunAs(U* target, long n) {
        zun::InputStream& in = *this->getBase()->input;
        long size = this->getSize();
        std::string bytes(static_cast<size_t>(size) + 1, '\0');
        std::istringstream text;
        for (long i = 0; i < n; ++i) {
            if (in.bufread(&bytes[0], static_cast<unsigned long>(size), 0) < static_cast<unsigned long>(size))
                return false;
            text.clear();
            text.str(bytes.c_str());
            U v = 0;
            text >> v;
            target[i] = v;
        }
        return true;
    }
    template <class U>
    U& readAs(U& v) {
        if constexpr (readsAs<N, U>(false)) return this->parse(v);
        else this->readInvalid(readWord<U>());
    }
};

// The text of an unsigned character is read as a short.
class StructAUChar : public StructAsciiNumOf<short> {
public:
    using StructAsciiNumOf<short>::StructAsciiNumOf;
    ElemType getType() const override { return TypeAUChar; }
    // The low byte of the number.
    char readChar() override;
    zun::String readHexNum(bool compress) override;
};

class StructASChar : public StructAUChar {
public:
    using StructAUChar::StructAUChar;
    ElemType getType() const override { return TypeASChar; }
};

#define VEXA_ASCII_NUMBER(Class, N, Type)                      \
    class Class : public StructAsciiNumOf<N> {                 \
    public:                                                    \
        using StructAsciiNumOf<N>::StructAsciiNumOf;           \
        ElemType getType() const override { return Type; }     \
    };

VEXA_ASCII_NUMBER(StructAUShort, unsigned short, TypeAUShort)
VEXA_ASCII_NUMBER(StructASShort, short, TypeASShort)
VEXA_ASCII_NUMBER(StructAULong, unsigned long, TypeAULong)
VEXA_ASCII_NUMBER(StructASLong, long, TypeASLong)
VEXA_ASCII_NUMBER(StructAULLong, unsigned long long, TypeAULLong)
VEXA_ASCII_NUMBER(StructASLLong, long long, TypeASLLong)
VEXA_ASCII_NUMBER(StructAFloat, float, TypeAFloat)
VEXA_ASCII_NUMBER(StructADouble, double, TypeADouble)

#undef VEXA_ASCII_NUMBER

}  // namespace vexa
