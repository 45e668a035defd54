// vexa::CalcNodeFuncArrayLookup: alookup, aminlookup and amaxlookup, the row
// of an array that holds a value: alookup(v, arr) or alookup(v, arr, "f")
// for field f of each element. The answer is the row as a number, or -1.
//
//   alookup     mode '='   the first row equal to v
//   aminlookup  mode '-'   the row at or below v in sorted rows
//   amaxlookup  mode '+'   the row at or above v in sorted rows
//
// The field's type decides the comparison: String and AChar fields compare
// as text, any other as numbers; a record or an array is refused. The
// search itself is LookupSearch's.
#pragma once

#include <memory>

#include "calc/CalcNode.h"

namespace vexa {

class ArrayReader;
class CalcNodeRef;

class CalcNodeFuncArrayLookup : public zun::CalcNodeFunc {
public:
    std::unique_ptr<ArrayReader> reader;   // over the array, with one column: the field
    int valueType = zun::ValNum;           // ValStr: the field compares as text
    char mode;                             // '=', '-' or '+'

    // Takes args over, also when it throws. The field name, if given, leaves
    // the list: the arguments are (value, array reference).
    CalcNodeFuncArrayLookup(const char* name, zun::ObjAppendListP<zun::CalcNode>* args, char mode);
    ~CalcNodeFuncArrayLookup() override;

    double valNum() override;

private:
    CalcNodeRef* arrayReference() const;
    template <class V>
    double search(const V& x);
};

}  // namespace vexa
