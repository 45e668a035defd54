// vexa::CalcBinder: answers the expression parser's questions for one place
// of the structure tree. "#" names are the parameters of the file, then the
// global parameters; "iter" names are the arrays around the place; any other
// name is a field (a CalcNodeRef), found by StructElem::getRef:
//
//   symbolPrefix   a plain name is looked up
//   null           among the element's siblings: a dictionary statement
//                  stands in the definition of its element
//   empty          below the element itself: a statement bound to a record
//   other          only names that begin with it; the rest is a path below
//                  the element
//
// A name that can't be resolved (a vexa::Error while binding) gets no answer,
// so the parser reports it as an unknown symbol.
#pragma once

#include "base/String.h"
#include "calc/CalcBinder.h"
#include "calc/CalcNode.h"
#include "struct/StructAlias.h"

namespace vexa {

class StructElem;

class CalcBinder : public zun::CalcBinder {
public:
    StructAlias alias;            // the place in the tree
    zun::String symbolPrefix;     // required start of a symbol; null and empty differ
    zun::String functionPrefix;   // required start of a function name

    CalcBinder(const StructAlias& alias, const char* symbolPrefix, const char* functionPrefix);

    zun::CalcNode* bindSymbol(const char* name) override;
    zun::CalcIterator* bindIterator(int level) override;
    zun::CalcNode* bindFunction(const char* name, zun::ObjAppendListP<zun::CalcNode>* args) override;
};

// The index of an array around an element: level 0 the nearest array, 1 the
// one around that; a negative level the element itself. Without such an
// array the count and the index are 0.
class CalcArrayIterator : public zun::CalcIterator {
public:
    StructElem* array;   // not owned; null if there is none

    CalcArrayIterator(int level, StructElem* element);
    long count() override;
    long getIndex() override;
    void setIndex(long i) override;
};

}  // namespace vexa
