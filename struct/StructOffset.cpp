#include "struct/StructOffset.h"

#include "calc/CalcNode.h"
#include "calc/CalcParser.h"
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
    : StructElem(prev, parent, name, "bytes", 0), offsetText(text) {}

StructOffsetRef::~StructOffsetRef() {
    delete offsetRef;
}

String StructOffsetRef::getTypeStr(int) { return String("Offset"); }

long StructOffsetRef::getOffset() {
    if (offset >= 0) return offset;
    if (!offsetRef) {
        getOffsetDep();
        if (offset >= 0) return offset;
    }
    long long value = offsetRef->valInt();
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
    if (offsetDepKnown && offsetRef) return offsetDep;
    if (!offsetRef) {
        zun::CalcNode* node = new zun::CalcParser(offsetText.str(), getCalcBinder(nullptr, nullptr), false);
        try {
            zun::CalcNode::reduceInPlace(node);
        } catch (...) {
            delete node;
            throw;
        }
        offsetRef = node;
        offsetDep = getParentArray(offsetRef->constLevel());
        StructArray::registerDep(offsetDep, offset);
    }
    offsetDepKnown = true;
    getOffset();
    return offsetDep;
}

}  // namespace vexa
