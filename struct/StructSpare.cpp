#include "struct/StructSpare.h"

#include <cstring>

namespace vexa {

unsigned long long& StructSpare::readULLong(unsigned long long& v) {
    long n = getSize();
    if (n > static_cast<long>(sizeof v)) return StructElem::readULLong(v);
    v = 0;
    if (n > 0) readCPtr(reinterpret_cast<char*>(&v) + sizeof v - n, n);
    return v;
}

long long& StructSpare::readSLLong(long long& v) {
    unsigned long long u;
    readULLong(u);
    std::memcpy(&v, &u, sizeof v);
    return v;
}

}  // namespace vexa
