// Arrays: one child element object moved over the bytes of the file.
//
// An array keeps the index it stands on (activeIndex) and its one child; the
// child's offset says where that index lies. Everything that caches a value
// which a move of the array can change registers the cached cell in the
// root's dependency slots and the slot index in depLinks of the array and of
// every array above it. A move writes -1 through those slots.
//
// What is here is the common shape and the dependency machinery; the
// dimension, the moves and the bulk reads are given by the concrete classes.
#pragma once

#include "base/ObjAppendList.h"
#include "base/String.h"
#include "struct/StructRec.h"

namespace zun {
class CalcNode;
}

namespace vexa {

class StructArrayBase : public StructTree {
public:
    long activeIndex = 0;          // index of the element the array stands on
    StructElem* element = nullptr;  // the one child; owned

    StructArrayBase(StructElem* prev, StructElem* parent, const char* name, const char* unit,
                    const char* sizeText);
    ~StructArrayBase() override;

    bool isAnArray() const override { return true; }
    ElemType getType() const override { return TypeArray; }
    long numElems() override = 0;
    zun::String getTypeStr(int level) override = 0;
    // Moves to element i.
    virtual void setArray(long i) = 0;
    // Moves n elements on from the present one.
    virtual void stepArray(long n) = 0;
};

class StructArray : public StructArrayBase {
public:
    DepCell dim;                         // element count, or -1 unknown, -2 computing, -3 unbound
    zun::String dimText;                 // dimension statement; null for a plain integer
    zun::CalcNode* dimRef = nullptr;     // parsed dimText; owned
    zun::ObjAppendList<long> depLinks;   // indices into the root's depSlots

    ~StructArray() override;

    // Appends slot to depLinks of this array and of every array above it;
    // nothing for a negative slot.
    void linkBack(long slot);

protected:
    StructArray(StructElem* prev, StructElem* parent, const char* name, const char* unit, const char* sizeText);
    // Writes -1 through every live slot of depLinks: the values that hang on
    // the position of this array become stale.
    void invalidate();
};

}  // namespace vexa
