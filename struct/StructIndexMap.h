// Index maps: virtual arrays whose elements are indices into other arrays,
// worked out from the file's data.
//
// StructSelectMap selects and orders combinations of rows of nested arrays by
// a statement: a filtered or sorted view of a table. StructInverseMap inverts
// a column: for a value, the row that holds it. A map takes no room in the
// file and keeps nothing of it but its list of indices (8 bytes each). It is
// built when its count is first asked for, and built again after an
// enclosing array has moved (its `mapDirty` cell is registered with them).
//
// The elements read the list: StructIndexMapIdx1 where each entry is one
// index; where a selection combines several arrays, the element is a
// StructIndexMapDims of that many indices, whose element StructIndexMapIdx2
// reads one of them.
#pragma once

#include <vector>

#include "base/ObjAppendList.h"
#include "base/String.h"
#include "struct/DepCell.h"
#include "struct/StructArray.h"
#include "struct/StructCalc.h"

namespace vexa {

class ArrayReader;

// The common part of a map and of its tuples: an array that stands on no
// bytes of the file. Moving it only changes the index.
class StructIndexArray : public StructArrayBase {
public:
    StructIndexArray(StructElem* prev, StructElem* parent, const char* name)
        : StructArrayBase(prev, parent, name, "array", "0") {}

    bool isVirtual() const override { return true; }
    const zun::String& getUnit() override { return element->getUnit(); }
    void setArray(long i) override { activeIndex = i; }
    void stepArray(long n) override { activeIndex = checkedSum(activeIndex, n); }
    void setSizeByCumul() override { size = 0; }
};

class StructIndexMap : public StructIndexArray {
public:
    DepCell mapDirty{1};             // not 0: map must be built
    zun::ObjAppendList<long> map;    // the flat list of indices
    long width = 1;                  // indices per entry

    // The most indices a map may hold: 2^24, or 16 for each index that its
    // build read, whichever is more.
    static const long leastLimit = 1L << 24;
    static long lengthLimit(long indicesRead);

    StructIndexMap(StructElem* prev, StructElem* parent, const char* name);

    // Builds the map if it must be; the count of its entries.
    long numElems() override;
    zun::String getTypeStr(int level) override;
    // Builds the map when it is stale.
    void init() override;

    // The index at position i of the list, after building; fails with the
    // array overflow past its end.
    long indexAt(long i);

protected:
    // Fills map from the file (the list is empty on entry). Errors escape;
    // init wraps them.
    virtual void build() = 0;
    // Fails when a map of `length` indices would pass the limit.
    void checkLength(long length, long indicesRead, const char* what, long value) const;

private:
    bool building = false;   // a statement of the build reached the map
};

// Rows of nested arrays chosen and ordered by a statement. The statement
// gives a repeat count for each combination of rows (0 drops it); a variable
// "sort" of the statement orders the entries, ascending and stable.
class StructSelectMap : public StructIndexMap {
public:
    zun::ObjAppendList<zun::String> references;   // the array references, outermost first
    zun::String selection;                         // the selection statement

    // referenceList is "a" or "a,b,...", each array inside the element of the
    // one before. Throws ErrorDictionary when it holds no reference.
    StructSelectMap(StructElem* prev, StructElem* parent, const char* name, const char* referenceList,
                    const char* statement);

protected:
    void build() override;

private:
    // Moves the readers to the next combination of rows from `level` on:
    // that reader steps (or, with `first`, starts at row 0) and the deeper
    // ones start at row 0; an inner array that is empty, or a reader that
    // has run out, steps the reader before it. False when none is left.
    static bool nextCombination(zun::ObjAppendListP<ArrayReader>& readers, long level, bool first);
};

// For each value of the named columns of an array, the row that holds it.
class StructInverseMap : public StructIndexMap {
public:
    zun::String arrayRef;    // reference to the array
    zun::String fieldList;   // comma-separated columns; "inner+column" for a column of an inner array

    StructInverseMap(StructElem* prev, StructElem* parent, const char* name, const char* arrayRef,
                     const char* fieldList);

protected:
    void build() override;
};

// A leaf that reads an index of its map: a virtual SLong, unit "index".
class StructIndexMapIdx : public StructVirtualNum<long> {
public:
    StructIndexMapIdx(StructElem* parent, const char* name) : StructVirtualNum<long>(nullptr, parent, name, "index") {}
    ElemType getType() const override { return TypeSLong; }
};

// The element of a map of one index per entry.
class StructIndexMapIdx1 : public StructIndexMapIdx {
public:
    StructIndexMapIdx1(StructIndexMap& owner, const char* name) : StructIndexMapIdx(&owner, name), owner(owner) {}
    long& read(long& v) override;

private:
    StructIndexMap& owner;
};

// The element of a map of several indices per entry: an inner array of
// `dimCount` indices.
class StructIndexMapDims : public StructIndexArray {
public:
    long dimCount;

    StructIndexMapDims(StructIndexMap& owner, const char* name, long dimCount);
    long numElems() override { return dimCount; }
    zun::String getTypeStr(int level) override;
};

class StructIndexMapIdx2 : public StructIndexMapIdx {
public:
    StructIndexMapIdx2(StructIndexMapDims& dims, StructIndexMap& owner)
        : StructIndexMapIdx(&dims, ""), dims(dims), owner(owner) {}
    long& read(long& v) override;

private:
    StructIndexMapDims& dims;
    StructIndexMap& owner;
};

}  // namespace vexa
