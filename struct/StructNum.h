// Binary numeric leaves: StructNum<T> reads a field of the file into a T,
// with the byte order of the root's stream, and the named classes give each
// dictionary type its typed reads (widening only) and its type name.
#pragma once

#include <type_traits>

#include "input/InputStream.h"
#include "struct/StructBase.h"
#include "struct/StructElem.h"
#include "struct/TextSink.h"

namespace vexa {

// The typed reads a number answers, by one rule: a read into U works when U
// holds the number's values. Widths rank short < long < long long, and Float
// stands with long, Double above all. An integer reads into an integer of a
// greater width, or of its own width and sign; into Float up to long; into
// Double always. A floating value reads into floating types of its width or
// above. Binary fields also read into the other sign of their own width (the
// bits reinterpreted); numbers written as text don't.
template <class T>
constexpr int numberRank() {
    if constexpr (std::is_same<T, short>::value || std::is_same<T, unsigned short>::value) return 1;
    else if constexpr (std::is_same<T, long>::value || std::is_same<T, unsigned long>::value) return 2;
    else if constexpr (std::is_same<T, long long>::value || std::is_same<T, unsigned long long>::value) return 3;
    else if constexpr (std::is_same<T, float>::value) return 2;
    else return 4;
}

template <class T, class U>
constexpr bool readsAs(bool otherSignOfSameWidth) {
    if (std::is_same<U, double>::value || std::is_same<T, U>::value) return true;
    if (std::is_same<U, float>::value) return numberRank<T>() <= 2;
    if (std::is_floating_point<T>::value) return false;
    if (numberRank<U>() > numberRank<T>()) return true;
    return otherSignOfSameWidth && numberRank<U>() == numberRank<T>();
}

// The word of a typed read, as a refused read names it.
template <class U>
constexpr const char* readWord() {
    if constexpr (std::is_same<U, short>::value) return "SShort";
    else if constexpr (std::is_same<U, unsigned short>::value) return "UShort";
    else if constexpr (std::is_same<U, long>::value) return "SLong";
    else if constexpr (std::is_same<U, unsigned long>::value) return "ULong";
    else if constexpr (std::is_same<U, long long>::value) return "SLLong";
    else if constexpr (std::is_same<U, unsigned long long>::value) return "ULLong";
    else if constexpr (std::is_same<U, float>::value) return "Float";
    else return "Double";
}

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

// The eight typed reads of Base, each answered by Self::readAs<U>.
template <class Self, class Base>
class TypedReads : public Base {
public:
    using Base::Base;

    short& readSShort(short& v) override { return self().readAs(v); }
    unsigned short& readUShort(unsigned short& v) override { return self().readAs(v); }
    long& readSLong(long& v) override { return self().readAs(v); }
    unsigned long& readULong(unsigned long& v) override { return self().readAs(v); }
    long long& readSLLong(long long& v) override { return self().readAs(v); }
    unsigned long long& readULLong(unsigned long long& v) override { return self().readAs(v); }
    float& readFloat(float& v) override { return self().readAs(v); }
    double& readDouble(double& v) override { return self().readAs(v); }

    bool canReadRun() const override { return true; }
    bool readRun(short* target, long n) override { return self().readRunAs(target, n); }
    bool readRun(unsigned short* target, long n) override { return self().readRunAs(target, n); }
    bool readRun(long* target, long n) override { return self().readRunAs(target, n); }
    bool readRun(unsigned long* target, long n) override { return self().readRunAs(target, n); }
    bool readRun(long long* target, long n) override { return self().readRunAs(target, n); }
    bool readRun(unsigned long long* target, long n) override { return self().readRunAs(target, n); }
    bool readRun(float* target, long n) override { return self().readRunAs(target, n); }
    bool readRun(double* target, long n) override { return self().readRunAs(target, n); }

private:
    Self& self() { return static_cast<Self&>(*this); }
};

// n values of a field type F, each `size` bytes in the file, lying back to
// back from where in stands, into target as T. Values of their natural width
// come in one read and are swapped in place when the input's byte order
// isn't the machine's; other widths go one by one through read_swap. False
// when the input ended before the last value.
template <class F>
bool readFieldRun(zun::InputStream& in, F* target, long n, long size) {
    if (n <= 0) return true;
    if (size == static_cast<long>(sizeof(F)))
        return in.typeReadBuffer(target, static_cast<unsigned long>(n)) == static_cast<unsigned long>(n);
    unsigned long width = static_cast<unsigned long>(size) < sizeof(F) ? static_cast<unsigned long>(size) : sizeof(F);
    for (long i = 0; i < n; ++i) {
        target[i] = 0;
        unsigned long got = in.read_swap(reinterpret_cast<char*>(target + i), sizeof(F),
                                         static_cast<unsigned short>(size),
                                         std::is_signed<F>::value || std::is_floating_point<F>::value);
        if (got < width) return false;
    }
    return true;
}

template <class F, class T>
bool readFastArray(zun::InputStream& in, T* target, long n, long size) {
    if constexpr (std::is_same<F, T>::value) {
        return readFieldRun(in, target, n, size);
    } else {
        // Converted in blocks, so that the temporary stays small however long the run.
        const long block = 4096;
        F values[block];
        for (long done = 0; done < n; done += block) {
            long k = n - done < block ? n - done : block;
            if (!readFieldRun(in, values, k, size)) return false;
            for (long i = 0; i < k; ++i) target[done + i] = static_cast<T>(values[i]);
        }
        return true;
    }
}

template <class T>
class StructNum : public TypedReads<StructNum<T>, StructElem> {
    friend class TypedReads<StructNum<T>, StructElem>;

public:
    StructNum(StructElem* prev, StructElem* parent, const char* name, const char* unit, long size)
        : TypedReads<StructNum<T>, StructElem>(prev, parent, name, unit, size) {}

    // The natural width of T in the file: 2, 8, 4 or 8 bytes.
    void setSize() override;
    zun::String getTypeStr(int) override { return zun::String(elemTypeName(this->getType())); }
    std::stringstream& readStr(std::stringstream& out, int append) override;
    zun::String& readString(zun::String& target, int append) override;
    // The value's text straight into the sink, as readString makes it.
    void writeText(TextSink& sink, TextForm form, bool compress) override;
    // Reads the field into v, converting the byte order of the stream.
    virtual T& read(T& v);
    // The run's values, read in blocks and formatted as readString does;
    // a value with the bits of the one before is folded without formatting.
    bool writeRunTexts(TextFolder& folder, long n) override;


protected:
    // The run of n values behind the one just read, as U.
    template <class U>
    bool readRunAs(U* target, long n) {
        return readFastArray<T, U>(*this->getBase()->input, target, n, this->getSize());
    }
    // Reads the field and converts its value to U, where the rule allows it.
    template <class U>
    U& readAs(U& v) {
        if constexpr (readsAs<T, U>(true)) {
            T t;
            read(t);
            v = static_cast<U>(t);
            return v;
        } else {
            this->readInvalid(readWord<U>());
        }
    }
};

// The number types of the tree's numeric classes, for their instantiations.
#define VEXA_EACH_NUMBER_TYPE(M) \
    M(short) M(unsigned short) M(long) M(unsigned long) M(long long) M(unsigned long long) M(float) M(double)

#define VEXA_EXTERN_STRUCTNUM(T) extern template class StructNum<T>;
VEXA_EACH_NUMBER_TYPE(VEXA_EXTERN_STRUCTNUM)
#undef VEXA_EXTERN_STRUCTNUM

class StructNumSShort : public StructNum<short> {
public:
    using StructNum<short>::StructNum;
    ElemType getType() const override { return TypeSShort; }
};

// One signed byte, read as a short.
class StructNumSChar : public StructNumSShort {
public:
    using StructNumSShort::StructNumSShort;
    ElemType getType() const override { return TypeSChar; }
    // A character field without a size column takes one byte.
    void setSize() override { size = 1; }
    short& read(short& v) override;
};

class StructNumUShort : public StructNum<unsigned short> {
public:
    using StructNum<unsigned short>::StructNum;
    ElemType getType() const override { return TypeUShort; }
};

// One unsigned byte, read as an unsigned short.
class StructNumUChar : public StructNumUShort {
public:
    using StructNumUShort::StructNumUShort;
    ElemType getType() const override { return TypeUChar; }
    void setSize() override { size = 1; }
    unsigned short& read(unsigned short& v) override;
};

class StructNumSLong : public StructNum<long> {
public:
    using StructNum<long>::StructNum;
    ElemType getType() const override { return TypeSLong; }
};

class StructNumULong : public StructNum<unsigned long> {
public:
    using StructNum<unsigned long>::StructNum;
    ElemType getType() const override { return TypeULong; }
};

class StructNumSLLong : public StructNum<long long> {
public:
    using StructNum<long long>::StructNum;
    ElemType getType() const override { return TypeSLLong; }
};

class StructNumULLong : public StructNum<unsigned long long> {
public:
    using StructNum<unsigned long long>::StructNum;
    ElemType getType() const override { return TypeULLong; }
};

class StructNumFloat : public StructNum<float> {
public:
    using StructNum<float>::StructNum;
    ElemType getType() const override { return TypeFloat; }
};

class StructNumDouble : public StructNum<double> {
public:
    using StructNum<double>::StructNum;
    ElemType getType() const override { return TypeDouble; }
};

}  // namespace vexa
