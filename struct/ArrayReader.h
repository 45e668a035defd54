// vexa::ArrayReader: a cursor over an array seen as a table, a row an
// element and a column a field path below it. Running off either end of the
// array makes the reader not ready instead of throwing.
#pragma once

#include "base/ObjAppendList.h"
#include "struct/StructAlias.h"

namespace vexa {

class File;
class StructArrayBase;
class StructElem;

class ArrayReader {
public:
    long row = -1;                          // current row; -1: not ready
    StructArrayBase* readerArray;           // not owned
    zun::ObjAppendListP<StructAlias> columns;
    long columnPos = 0;                     // column handed out last; -1 before the first of a row
    bool expand = false;                    // passed to childList when columns are added

    // The array behind element (a link or alias gives the array it stands for).
    explicit ArrayReader(StructElem& array);
    ArrayReader(File& file, const char* name);
    // The array `name` inside the element of outer's array. An element that
    // is no record is its own first column.
    ArrayReader(ArrayReader& outer, const char* name);

    // Goes to row i; false (not ready) when there is no such row.
    bool operator=(long i);
    // Moves n rows; past either end the reader is not ready.
    ArrayReader& operator+=(long n);
    // Adds the columns that pattern matches below the element ("*": all its
    // fields, or the element itself when it has none).
    ArrayReader& operator<<(const char* pattern);
    // The next column of the current row; after the last one, the array
    // moves on to the next element.
    StructAlias* getNextColumn();
    ArrayReader& operator>>(zun::String& value);
    ArrayReader& operator>>(double& value);

    long numRows();
    StructElem* getElement();
    long activeIndex() const;

private:
    void init(StructElem* array, const char* name);
    zun::String arrayPath() const;
};

}  // namespace vexa
