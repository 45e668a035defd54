// vexa::CalcNodeFuncArrayIndex: aread(i, arr) and aread(i, arr, "f"), the
// value of element i of an array, or of field f of that element. A text
// index is a path component of the array ("#last", "id=A*", "3"), a number
// an element index.
//
// Its arguments after construction: the index, the array reference (a plain
// field name), and the element reference, which reads the element (or its
// field f) wherever the array stands. getElem() moves the array to the index
// first.
//
// The checks of the array functions (aread and the lookups) while a
// statement is bound throw a bare text; the helpers below make them.
#pragma once

#include "base/String.h"
#include "calc/CalcNode.h"

namespace vexa {

class CalcNodeRef;
class StructElem;

// Argument 1 of an array function: a plain field reference, refused with
// "VEXA array reference expected as second argument" (an indexed reference
// such as a[1], a variable or any other expression is no plain one).
CalcNodeRef* arrayReferenceArgument(zun::ObjAppendListP<zun::CalcNode>* args);
// The array it names; anything else is refused with what + the name in
// double quotes + tail.
StructElem* arrayOfReference(CalcNodeRef* ref, const char* what, const char* tail);
// Takes the last argument off the list and gives its text; it must be
// constant, else `message` is thrown.
zun::String takeConstantText(zun::ObjAppendListP<zun::CalcNode>* args, const char* message);

class CalcNodeFuncArrayIndex : public zun::CalcNodeFunc {
public:
    bool byName;   // the index is a text

    // Takes args over, also when it throws.
    CalcNodeFuncArrayIndex(const char* name, zun::ObjAppendListP<zun::CalcNode>* args);

    // Moves the array to the index and gives the array's element.
    StructElem* getElem();

    int valType() override;
    double valNum() override;
    zun::String valStr() override;
    long long valInt() override;
    zun::RawBuffer& valRaw(zun::RawBuffer& buffer) override;
    using zun::CalcNode::valRaw;
};

}  // namespace vexa
