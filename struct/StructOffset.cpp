#include "struct/StructOffset.h"

#include "struct/Error.h"
#include "struct/StructArray.h"

using zun::String;

namespace vexa {

StructOffsetFixed::StructOffsetFixed(StructElem* prev, StructElem* parent, const char* name, long place)
    : StructElem(prev, parent, name, "bytes", 0) {
    offset = place;
}

String StructOffsetFixed::getTypeStr(int) { return String("Offset"); }

StructArray* StructOffsetFixed::getOffsetDep() {
    offsetDepKnown = true;
    return nullptr;
}

// ---------------------------------------------------------------------------

StructOffsetRelative::StructOffsetRelative(StructElem* prev, StructElem* parent, const char* name, long move)
    : StructElem(prev, parent, name, "bytes", move) {}

String StructOffsetRelative::getTypeStr(int) { return String("Relative Offset"); }

// ---------------------------------------------------------------------------

StructOffsetAlign::StructOffsetAlign(StructElem* prev, StructElem* parent, const char* name, long alignment)
    : StructElem(prev, parent, name, "bytes", alignment) {}

String StructOffsetAlign::getTypeStr(int) { return String("Alignment Offset"); }

long StructOffsetAlign::getSize() {
    if (size <= 0) return 0;
    long r = getOffset() % size;
    return r == 0 ? 0 : size - r;
}

// ---------------------------------------------------------------------------

StructOffsetRef::StructOffsetRef(StructElem* prev, StructElem* parent, const char* name, const char* text)
    : StructElem(prev, parent, name, "bytes", 0), offsetText(text), offsetRef(text, *this, Calc::Offset) {}

String StructOffsetRef::getTypeStr(int) { return String("Offset"); }

long StructOffsetRef::getOffset() {
    if (offset >= 0) return offset;
    if (!offsetRef.node) {
        getOffsetDep();
        if (offset >= 0) return offset;
    }
    long long value = offsetRef.valInt();
    if (value < 0) {
        String text("offset reference \"");
        text += offsetText;
        text += "\" of structure \"";
        text += getPathName();
        text += "\" returns ";
        text << value;
        throw ErrorValueRange(text.str());
    }
    offset = static_cast<long>(value);
    return offset;
}

StructArray* StructOffsetRef::getOffsetDep() {
    if (offsetDepKnown && offsetRef.node) return offsetDep;
    if (!offsetRef.node) offsetDep = offsetRef.registerCell(offset);
    offsetDepKnown = true;
    getOffset();
    return offsetDep;
}

}  // namespace vexa
