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

String StructAUShort::readHexNum(bool) {
    unsigned short v;
    return hexOf(parse(v));
}

String StructASShort::readHexNum(bool) {
    short v;
    return hexOf(parse(v));
}

String StructAULong::readHexNum(bool) {
    unsigned long v;
    return hexOf(parse(v));
}

String StructASLong::readHexNum(bool) {
    long v;
    return hexOf(parse(v));
}

String StructAULLong::readHexNum(bool) {
    unsigned long long v;
    return hexOf(parse(v));
}

String StructASLLong::readHexNum(bool) {
    long long v;
    return hexOf(parse(v));
}

String StructAFloat::readHexNum(bool) {
    float v;
    return hexOf(parse(v));
}

String StructADouble::readHexNum(bool) {
    double v;
    return hexOf(parse(v));
}

String StructAUChar::getTypeStr(int) { return String("aUChar"); }
String StructASChar::getTypeStr(int) { return String("aSChar"); }
String StructAUShort::getTypeStr(int) { return String("aUShort"); }
String StructASShort::getTypeStr(int) { return String("aSShort"); }
String StructAULong::getTypeStr(int) { return String("aULong"); }
String StructASLong::getTypeStr(int) { return String("aSLong"); }
String StructAULLong::getTypeStr(int) { return String("aULLong"); }
String StructASLLong::getTypeStr(int) { return String("aSLLong"); }
String StructAFloat::getTypeStr(int) { return String("aFloat"); }
String StructADouble::getTypeStr(int) { return String("aDouble"); }

}  // namespace vexa
