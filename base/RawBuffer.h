// zun::RawBuffer: undecoded bytes, a byte list with a byte count.
#pragma once

#include "base/ObjAppendList.h"
#include "base/String.h"

namespace zun {

class RawBuffer : public ObjAppendList<char> {
public:
    RawBuffer() = default;
    RawBuffer(const char* bytes, long n) : ObjAppendList<char>(n, bytes) {}

    // Each byte as two upper-case hexadecimal digits, separated by single
    // blanks; the null string for an empty buffer.
    String hex() const;
};

}  // namespace zun
