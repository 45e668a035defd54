#include "base/RawBuffer.h"

namespace zun {

String RawBuffer::hex() const {
    if (count <= 0) return String(nullptr);
    static const char digits[] = "0123456789ABCDEF";
    String out(static_cast<int>(count * 3 - 1), ' ');
    char* w = out.text;
    for (long i = 0; i < count; ++i) {
        unsigned char b = static_cast<unsigned char>(data[i]);
        w[i * 3] = digits[b >> 4];
        w[i * 3 + 1] = digits[b & 15];
    }
    return out;
}

}  // namespace zun
