// vexa::StructSpare: filler bytes, an array of single unsigned bytes whose
// count is the size column. It prints as an array and reads as one number
// of up to 8 bytes, in file order.
#pragma once

#include "struct/StructArray.h"

namespace vexa {

class StructSpare : public StructArray {
public:
    StructSpare(StructElem* prev, StructElem* parent, const char* name, const char* size)
        : StructArray("UChar", "spare", "1", prev, parent, name, size, size) {}

    // The bytes in the last getSize() bytes of the target, unswapped; more
    // than 8 bytes can't be read so.
    unsigned long long& readULLong(unsigned long long& v) override;
    long long& readSLLong(long long& v) override;
};

}  // namespace vexa
