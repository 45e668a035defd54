#include "struct/StructNum.h"

#include <charconv>
#include <type_traits>

#include "input/InputStream.h"

using zun::String;

namespace vexa {

namespace {

template <class T>
int formatInteger(char* buffer, T v) {
    std::to_chars_result r = std::to_chars(buffer, buffer + 31, v);
    *r.ptr = 0;
    return static_cast<int>(r.ptr - buffer);
}

}  // namespace

int formatNumber(char* buffer, short v) { return formatInteger(buffer, v); }
int formatNumber(char* buffer, unsigned short v) { return formatInteger(buffer, v); }
int formatNumber(char* buffer, long v) { return formatInteger(buffer, v); }
int formatNumber(char* buffer, unsigned long v) { return formatInteger(buffer, v); }
int formatNumber(char* buffer, long long v) { return formatInteger(buffer, v); }
int formatNumber(char* buffer, unsigned long long v) { return formatInteger(buffer, v); }

int formatNumber(char* buffer, double v) {
    // "%g" with six significant digits, as the default stream format writes it.
    std::to_chars_result r = std::to_chars(buffer, buffer + 31, v, std::chars_format::general, 6);
    *r.ptr = 0;
    return static_cast<int>(r.ptr - buffer);
}

template <class T>
void StructNum<T>::setSize() {
    if constexpr (std::is_same<T, short>::value || std::is_same<T, unsigned short>::value) this->size = 2;
    else if constexpr (std::is_same<T, float>::value) this->size = 4;
    else this->size = 8;
}

template <class T>
T& StructNum<T>::read(T& v) {
    unsigned short fieldSize = static_cast<unsigned short>(this->getSize());
    zun::InputStream* in = this->initRead();
    v = 0;
    unsigned long got = in->read_swap(reinterpret_cast<char*>(&v), sizeof(T), fieldSize, std::is_signed<T>::value);
    unsigned long wanted = fieldSize < sizeof(T) ? fieldSize : sizeof(T);
    this->checkRead(*in, got, wanted);
    return v;
}

template <class T>
std::stringstream& StructNum<T>::readStr(std::stringstream& out, int append) {
    T v;
    read(v);
    if (!append) out.flush();
    if constexpr (std::is_same<T, float>::value) out << static_cast<double>(v);
    else out << v;
    return out;
}

template <class T>
String& StructNum<T>::readString(String& target, int append) {
    T v;
    read(v);
    char text[32];
    int n = formatNumber(text, v);
    if (!append) target = String(text, n);
    else target += text;
    return target;
}

template class StructNum<short>;
template class StructNum<unsigned short>;
template class StructNum<long>;
template class StructNum<unsigned long>;
template class StructNum<long long>;
template class StructNum<unsigned long long>;
template class StructNum<float>;
template class StructNum<double>;

short& StructNumSChar::read(short& v) {
    v = static_cast<signed char>(readChar());
    return v;
}

unsigned short& StructNumUChar::read(unsigned short& v) {
    v = static_cast<unsigned char>(readChar());
    return v;
}

}  // namespace vexa
