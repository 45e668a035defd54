#include "struct/StructArray.h"

#include "calc/CalcNode.h"
#include "struct/StructBase.h"

namespace vexa {

StructArrayBase::StructArrayBase(StructElem* prev, StructElem* parent, const char* name, const char* unit,
                                 const char* sizeText)
    : StructTree(parent ? parent->getBase() : nullptr, prev, parent, name, unit, sizeText) {}

StructArrayBase::~StructArrayBase() {
    delete element;
}

StructArray::StructArray(StructElem* prev, StructElem* parent, const char* name, const char* unit,
                         const char* sizeText)
    : StructArrayBase(prev, parent, name, unit, sizeText) {
    depLinks.setTruncSize(8);
}

StructArray::~StructArray() {
    delete dimRef;
}

void StructArray::linkBack(long slot) {
    if (slot < 0) return;
    for (StructArray* a = this; a; a = a->getParentArray(0)) a->depLinks << slot;
}

void StructArray::invalidate() {
    long** slots = getBase()->depSlots.data;
    const long* links = depLinks.data;
    for (long i = 0, n = depLinks.count; i < n; ++i) {
        long* slot = slots[links[i]];
        if (slot) *slot = -1;
    }
}

}  // namespace vexa
