// Offset markers: elements of zero or computed size that stand in the prev
// chain just before a field whose dictionary line has an offset column. The
// field's offset is its predecessor's offset plus size, so a marker only
// answers getOffset() or getSize() in its own way. Markers are kept in the
// record's `markers` list, not among its fields, and no name finds them.
#pragma once

#include <memory>

#include "dict/Calc.h"
#include "struct/StructElem.h"

namespace vexa {

// The field behind stands at a fixed place from the start of the parent.
class StructOffsetFixed : public StructElem {
public:
    StructOffsetFixed(StructElem* prev, StructElem* parent, const char* name, long place);

    ElemType getType() const override { return TypeOffset; }
    zun::String getTypeStr(int level) override;
    StructArray* getOffsetDep() override;
    virtual void setOffset(long place) { offset = place; }
};

// The field behind stands that many bytes (maybe negative) from where the
// previous field ended.
class StructOffsetRelative : public StructElem {
public:
    StructOffsetRelative(StructElem* prev, StructElem* parent, const char* name, long move);

    ElemType getType() const override { return TypeRelativeOffset; }
    zun::String getTypeStr(int level) override;
    long getSize() override { return size; }
};

// The field behind starts at the next multiple of the alignment, counted from
// the start of the parent. The `size` field holds the alignment; an alignment
// of 0 aligns nothing.
class StructOffsetAlign : public StructElem {
public:
    StructOffsetAlign(StructElem* prev, StructElem* parent, const char* name, long alignment);

    ElemType getType() const override { return TypeAlignmentOffset; }
    zun::String getTypeStr(int level) override;
    long getSize() override;
};

// The field behind stands at a place in the parent that an expression gives.
class StructOffsetRef : public StructElem {
public:
    zun::String offsetText;
    Calc offsetRef;   // the statement of offsetText, parsed on first use

    StructOffsetRef(StructElem* prev, StructElem* parent, const char* name, const char* text);

    ElemType getType() const override { return TypeOffset; }
    zun::String getTypeStr(int level) override;
    long getOffset() override;
    StructArray* getOffsetDep() override;
};

}  // namespace vexa
