// vexa::CalcNodeRefArrayLookup: the methods lookup, minlookup and maxlookup
// of an array reference, the row whose value a statement computes:
//
//   arr@lookup(v)             the first row whose element equals v
//   arr@lookup(v, "s")        the same for the value of statement s, run in
//                             the element (names are looked up below it)
//   arr@minlookup(v, "s")     at or below v, in sorted rows
//   arr@maxlookup(v, "s")     at or above v, in sorted rows
//   arr@lookup(v)@min, @max   the property form of minlookup and maxlookup
//
// A statement that assigns `valid` filters the rows: "valid=flag; value"
// looks only at the rows whose flag is not 0. The statement is parsed again
// for each search, and its variables reset on each row. The answer is the
// row as a number, or -1. The search itself is LookupSearch's.
#pragma once

#include <memory>

#include "base/String.h"
#include "calc/CalcNode.h"

namespace zun {
class CalcParser;
}

namespace vexa {

class ArrayReader;
class CalcNodeRef;

class CalcNodeRefArrayLookup : public zun::CalcNodeMethod {
public:
    std::unique_ptr<ArrayReader> reader;   // moves the array; no column
    int valueType;                         // the statement's: ValStr compares as text
    char mode;                             // '=', '-' or '+'
    zun::String lookupStatement;           // empty: the element's own value

    // receiver is the reference or a link to it. Takes receiver and args
    // over once it is made; when it throws it takes nothing. A statement,
    // if given, leaves the list: the argument is the value.
    CalcNodeRefArrayLookup(const char* name, zun::CalcNode* receiver, zun::ObjAppendListP<zun::CalcNode>* args,
                           char mode);
    ~CalcNodeRefArrayLookup() override;

    // "min" and "max", case ignored, set the mode; asked through a variable
    // nothing is changed.
    zun::CalcNode* property(const char* name, zun::CalcNodeMem* via) override;
    double valNum() override;

private:
    struct Parts {
        std::unique_ptr<ArrayReader> reader;
        zun::String statement;
        int valueType;
    };
    static Parts partsOf(const char* name, zun::CalcNode* receiver, zun::ObjAppendListP<zun::CalcNode>* args);
    CalcNodeRefArrayLookup(const char* name, zun::CalcNode* receiver, zun::ObjAppendListP<zun::CalcNode>* args,
                           char mode, Parts parts);

    CalcNodeRef& reference() const;
    // A parser of the statement in the array's element.
    std::unique_ptr<zun::CalcParser> parseStatement() const;
    template <class V>
    double search(const V& x);
};

}  // namespace vexa
