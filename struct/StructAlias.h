// vexa::StructAlias: an element plus the index of every array on the way to
// it, the address of one concrete value in the file. The tree holds one object
// per field whatever the number of array elements, so a pointer alone doesn't
// say which element is meant; resolve() brings the arrays back to the indices
// remembered here and gives the element.
#pragma once

#include "base/ObjAppendList.h"
#include "base/String.h"

namespace zun {
class CalcBinder;
}

namespace vexa {

class StructElem;

class StructAlias {
public:
    unsigned char level;                  // structure level at which the alias is anchored
    StructElem* target;                   // the element named; not owned
    zun::ObjAppendList<long> indices;     // one per entry of arrays; -1: ask numElems() instead
    zun::ObjAppendList<StructElem*> arrays;  // elements to position, outermost first; not owned

    explicit StructAlias(StructElem& e);
    StructAlias(StructElem& e, const char* path);
    // Freezes the indices of the arrays above e as they stand now.
    StructAlias(StructElem& e, int depth);
    StructAlias(unsigned char level, StructElem& e);
    StructAlias(const StructAlias& other) = default;
    StructAlias& operator=(const StructAlias& other) = default;

    // Moves the arrays to the remembered indices and gives the target.
    StructElem* resolve() const;
    // Narrows the alias to the element named by a dotted path below target.
    void setChild(const char* path);
    StructAlias getChild(const char* path) const;
    StructAlias getParent() const;
    // A copy on e, a direct child of target, remembering target if it is an array.
    StructAlias getField(StructElem& e) const;
    StructAlias getField(long i) const;
    bool isFixedType(int level) const;
    bool isFixedSize(int level) const;
    zun::String getTypeStr(int level) const;
    long& readRef(long& value) const;
    // Wildcard list of aliases below this one; the number of entries added.
    long childList(const char* pattern, bool expand, zun::ObjAppendListP<StructAlias>& out) const;
    // A new binder on a copy of this alias; owned by the caller until handed to a parser.
    zun::CalcBinder* getCalcBinder(const char* symbolPrefix, const char* functionPrefix) const;
};

}  // namespace vexa
