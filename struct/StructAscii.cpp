#include "struct/StructAscii.h"

#include <algorithm>
#include <cstring>

#include "base/RawBuffer.h"
#include "input/InputStream.h"
#include "struct/StructBase.h"

using zun::String;

namespace vexa {

template <class U>
U& StructAsciiNum::parse(U& v) {
    v = 0;
    std::stringstream text;
    readStr(text, 1);
    text >> v;
    return v;
}

template <class U>
String StructAsciiNum::hexOf(U v) {
    char bytes[sizeof(U)];
    std::memcpy(bytes, &v, sizeof(U));
    if (getBase()->input->swapped()) std::reverse(bytes, bytes + sizeof(U));
    zun::RawBuffer buffer(bytes, sizeof(U));
    return buffer.hex();
}

template short& StructAsciiNum::parse(short&);
template unsigned short& StructAsciiNum::parse(unsigned short&);
template long& StructAsciiNum::parse(long&);
template unsigned long& StructAsciiNum::parse(unsigned long&);
template long long& StructAsciiNum::parse(long long&);
template unsigned long long& StructAsciiNum::parse(unsigned long long&);
template float& StructAsciiNum::parse(float&);
template double& StructAsciiNum::parse(double&);
template String StructAsciiNum::hexOf(short);
template String StructAsciiNum::hexOf(unsigned short);
template String StructAsciiNum::hexOf(long);
template String StructAsciiNum::hexOf(unsigned long);
template String StructAsciiNum::hexOf(long long);
template String StructAsciiNum::hexOf(unsigned long long);
template String StructAsciiNum::hexOf(float);
template String StructAsciiNum::hexOf(double);

char StructAUChar::readChar() {
    short v;
    readSShort(v);
    return static_cast<char>(v);
}

String StructAUChar::readHexNum(bool) {
    char c = readChar();
    zun::RawBuffer buffer(&c, 1);
    return buffer.hex();
}

}  // namespace vexa
