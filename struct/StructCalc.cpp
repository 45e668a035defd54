#include "struct/StructCalc.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "input/InputStream.h"
#include "struct/StructBase.h"

using zun::RawBuffer;
using zun::String;

namespace vexa {

template <class T>
T fromStatement(double v) {
    if constexpr (std::is_same<T, float>::value) {
        // Beyond the range of float: the infinity of its sign.
        const double largest = 3.4028234663852886e38;
        if (v > largest) return std::numeric_limits<float>::infinity();
        if (v < -largest) return -std::numeric_limits<float>::infinity();
        return static_cast<float>(v);
    } else if constexpr (std::is_floating_point<T>::value) {
        return static_cast<T>(v);
    } else {
        const double two63 = 9223372036854775808.0;
        const uint64_t indefinite = uint64_t(1) << 63;
        uint64_t bits;
        if (!(v > -two63 - 1.0 && v < 2 * two63)) {
            bits = indefinite;  // NaN, or beyond 64 bits
        } else if (v >= two63) {
            // The unsigned range above 2^63: what an unsigned conversion gives.
            bits = static_cast<uint64_t>(static_cast<int64_t>(v - two63)) | indefinite;
        } else {
            bits = static_cast<uint64_t>(static_cast<int64_t>(v));
        }
        return static_cast<T>(bits);
    }
}

template short fromStatement<short>(double);
template unsigned short fromStatement<unsigned short>(double);
template long fromStatement<long>(double);
template unsigned long fromStatement<unsigned long>(double);
template long long fromStatement<long long>(double);
template unsigned long long fromStatement<unsigned long long>(double);
template float fromStatement<float>(double);
template double fromStatement<double>(double);
template signed char fromStatement<signed char>(double);
template unsigned char fromStatement<unsigned char>(double);

namespace {

// A buffer to append to: with append 0 what it held goes first.
RawBuffer& startBuffer(RawBuffer& buffer, int append) {
    if (!append) buffer.flush(true);
    return buffer;
}

long copyBytes(const RawBuffer& bytes, char* buffer, long max) {
    long n = max < bytes.count ? max : bytes.count;
    if (n > 0) std::memcpy(buffer, bytes.data, static_cast<size_t>(n));
    return n < 0 ? 0 : n;
}

}  // namespace

template <class T>
void StructVirtualNum<T>::appendValue(RawBuffer& buffer) {
    T v;
    read(v);
    buffer.append(sizeof v, reinterpret_cast<const char*>(&v));
}

template <class T>
RawBuffer& StructVirtualNum<T>::readBuf(RawBuffer& buffer, int append) {
    appendValue(startBuffer(buffer, append));
    return buffer;
}

template <class T>
long StructVirtualNum<T>::readCPtr(char* buffer, long max) {
    RawBuffer bytes;
    readBuf(bytes, 1);
    return copyBytes(bytes, buffer, max);
}

template <class T>
String StructVirtualNum<T>::readHex(bool) {
    RawBuffer bytes;
    readBuf(bytes, 1);
    if (this->getBase()->input->swapped() && bytes.count > 1) zun::InputStream::reverseBytes(bytes.data, bytes.count);
    return bytes.hex();
}

#define VEXA_INSTANCE_STRUCTVIRTUALNUM(T) template class StructVirtualNum<T>;
VEXA_EACH_NUMBER_TYPE(VEXA_INSTANCE_STRUCTVIRTUALNUM)
#undef VEXA_INSTANCE_STRUCTVIRTUALNUM
#define VEXA_INSTANCE_STRUCTCALCNUM(T) template class StructCalcNum<T>;
VEXA_EACH_NUMBER_TYPE(VEXA_INSTANCE_STRUCTCALCNUM)
#undef VEXA_INSTANCE_STRUCTCALCNUM

unsigned short& StructCalcUChar::read(unsigned short& v) {
    v = static_cast<unsigned char>(readChar());
    return v;
}

void StructCalcUChar::appendValue(RawBuffer& buffer) {
    char c = readChar();
    buffer.append(1, &c);
}

short& StructCalcSChar::read(short& v) {
    v = static_cast<signed char>(readChar());
    return v;
}

void StructCalcSChar::appendValue(RawBuffer& buffer) {
    char c = readChar();
    buffer.append(1, &c);
}

float& StructCalcDateTime::readFloat(float& v) {
    double d = value();
    v = static_cast<float>((d - std::floor(d)) * 86400.0);
    return v;
}

// ---------------------------------------------------------------------------
// Text

String& StructCalcStr::readString(String& target, int append) {
    String value = calc.valStr();
    if (!append) target = "";
    target += value;
    return target;
}

std::stringstream& StructCalcStr::readStr(std::stringstream& out, int append) {
    String value = calc.valStr();
    if (!append) out.flush();
    out << (value.text ? value.text : "");
    return out;
}

String StructCalcStr::readAll(bool) {
    String text("");
    readString(text, 1);
    text.escape(true);
    text.quote('"');
    return text;
}

RawBuffer& StructCalcStr::readBuf(RawBuffer& buffer, int append) {
    String value = calc.valStr();
    startBuffer(buffer, append);
    if (value.length > 0) buffer.append(value.length, value.text);
    return buffer;
}

long StructCalcStr::readCPtr(char* buffer, long max) {
    RawBuffer bytes;
    readBuf(bytes, 1);
    return copyBytes(bytes, buffer, max);
}

String StructCalcStr::readHex(bool) {
    RawBuffer bytes;
    readBuf(bytes, 1);
    return bytes.hex();
}

char StructCalcAChar::readChar() {
    String value = calc.valStr();
    return value.length > 0 ? value.text[0] : 0;
}

String& StructCalcAChar::readString(String& target, int append) {
    char c = readChar();
    if (!append) target = "";
    target += c;
    return target;
}

std::stringstream& StructCalcAChar::readStr(std::stringstream& out, int append) {
    char c = readChar();
    if (!append) out.flush();
    out << c;
    return out;
}

String StructCalcAChar::readAll(bool) {
    char c = readChar();
    if (c == 0) return String("'\\0'");
    String text(&c, 1);
    text.escape(true);
    text.quote('\'');
    return text;
}

RawBuffer& StructCalcAChar::readBuf(RawBuffer& buffer, int append) {
    char c = readChar();
    startBuffer(buffer, append);
    buffer.append(1, &c);
    return buffer;
}

long StructCalcAChar::readCPtr(char*, long max) {
    return max > 0 ? 1 : 0;
}

String StructCalcAChar::readHex(bool) {
    RawBuffer bytes;
    readBuf(bytes, 1);
    return bytes.hex();
}

}  // namespace vexa
