#include "dict/CalcNodeFuncArrayLookup.h"

#include "base/String.h"
#include "dict/CalcNodeFuncArrayIndex.h"
#include "dict/CalcNodeRef.h"
#include "dict/LookupSearch.h"
#include "struct/ArrayReader.h"
#include "struct/StructAlias.h"
#include "struct/StructElem.h"

using zun::CalcNode;
using zun::String;

namespace vexa {

namespace {

// The rows of the search: every row counts, and its value is the reader's
// one column, read once.
template <class V>
class ColumnRows {
public:
    explicit ColumnRows(ArrayReader& reader) : reader(reader) {}

    bool start() { return reader = 0L; }
    bool next() { return LookupSearch::step(reader); }
    long row() const { return reader.row; }
    const V& value() {
        if (readRow != reader.row) {
            reader >> current;
            readRow = reader.row;
        }
        return current;
    }
    long count() { return reader.numRows(); }
    long notFound() const { return -1; }

private:
    ArrayReader& reader;
    V current{};
    long readRow = -1;
};

}  // namespace

CalcNodeFuncArrayLookup::CalcNodeFuncArrayLookup(const char* name, zun::ObjAppendListP<CalcNode>* args, char mode)
    : CalcNodeFunc(name, args, 2, 3), mode(mode) {
    StructElem* array = arrayOfReference(arrayReferenceArgument(args), "lookup array reference ",
                                         " is not an array stucture");
    reader.reset(new ArrayReader(*array));
    String field("");
    if (args->count == 3) field = takeConstantText(args, "String constant expected as lookup field name in third argument");
    // A union answers for its present alternative.
    int type = reader->getElement()->getChild(field.str())->getChild(nullptr)->getType();
    if (type > TypeADateTime) throw String("lookup field ") + zun::quoted(field) + " is a complex field";
    valueType = type == TypeAChar || type == TypeString ? zun::ValStr : zun::ValNum;
    *reader << field.str();
}

CalcNodeFuncArrayLookup::~CalcNodeFuncArrayLookup() = default;

CalcNodeRef* CalcNodeFuncArrayLookup::arrayReference() const { return static_cast<CalcNodeRef*>(arg(1)); }

double CalcNodeFuncArrayLookup::valNum() {
    arrayReference()->getRef()->resolve();
    if (reader->numRows() == 0) return -1.0;
    if (valueType == zun::ValStr) return search(arg(0)->valStr());
    return search(arg(0)->valNum());
}

template <class V>
double CalcNodeFuncArrayLookup::search(const V& x) {
    // The value may have moved the array (a lookup inside a lookup).
    arrayReference()->getRef()->resolve();
    ColumnRows<V> rows(*reader);
    return static_cast<double>(LookupSearch::find(rows, x, mode));
}

}  // namespace vexa
