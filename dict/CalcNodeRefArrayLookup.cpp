#include "dict/CalcNodeRefArrayLookup.h"

#include <utility>

#include "calc/CalcError.h"
#include "calc/CalcParser.h"
#include "dict/CalcBinder.h"
#include "dict/CalcNodeRef.h"
#include "dict/LookupSearch.h"
#include "struct/ArrayReader.h"
#include "struct/StructAlias.h"
#include "struct/StructArray.h"
#include "struct/StructElem.h"

using zun::CalcNode;
using zun::CalcParser;
using zun::String;

namespace vexa {

namespace {

using Args = zun::ObjAppendListP<CalcNode>;

// The statement in the element of the reader's array: names are looked up
// below the element, and "{}" is the element itself. A node that refuses
// its arguments while it is bound says why in a bare text, which becomes
// an error of the statement.
std::unique_ptr<CalcParser> parseIn(ArrayReader& reader, const String& statement) {
    const char* text = statement.length > 0 ? statement.str() : "{}";
    try {
        return std::make_unique<CalcParser>(text, new CalcBinder(StructAlias(*reader.getElement()), "", nullptr),
                                            false);
    } catch (String& refused) {
        throw zun::CalcError(refused.str());
    }
}

// The rows of the search: those that the statement's `valid` lets through,
// all of them without it; the value of a row is the statement's.
template <class V>
class StatementRows {
public:
    StatementRows(ArrayReader& reader, CalcParser& parser, const StructAlias& array)
        : reader(reader), parser(parser), valid(parser.getVar("valid")), array(array) {}

    bool start() {
        if (!(reader = 0L)) return false;
        lastTried = 0;
        return counts() || next();
    }
    bool next() {
        do {
            if (!LookupSearch::step(reader)) return false;
            lastTried = reader.row;
        } while (!counts());
        return true;
    }
    long row() const { return reader.row; }
    const V& value() {
        if (!known) {
            place();
            read(current);
            known = true;
        }
        return current;
    }
    long count() { return reader.numRows(); }
    // An array whose count is still unknown at its end (it is being
    // counted) answers the number of rows tried.
    long notFound() { return reader.numRows() < 0 ? lastTried + 1 : -1; }

private:
    ArrayReader& reader;
    CalcParser& parser;
    CalcNode* valid;           // may be null
    const StructAlias& array;  // the array reference, with the arrays around it
    V current{};
    bool known = false;
    long lastTried = -1;

    // The statement of a row may read other rows of the array: the array
    // goes back to the reader's row before the row is read.
    void place() {
        array.resolve();
        StructArrayBase* a = reader.readerArray;
        if (a->activeIndex != reader.row || a->element->offset < 0) a->getElement(reader.row);
    }
    bool counts() {
        known = false;
        place();
        parser.reset();
        if (!valid) return true;
        return !(valid->valNum() == 0);   // NaN counts
    }
    void read(double& v) { v = parser.valNum(); }
    void read(String& v) { v = parser.valStr(); }
};

}  // namespace

CalcNodeRefArrayLookup::CalcNodeRefArrayLookup(const char* name, CalcNode* receiver, Args* args, char mode)
    : CalcNodeRefArrayLookup(name, receiver, args, mode, partsOf(name, receiver, args)) {}

CalcNodeRefArrayLookup::Parts CalcNodeRefArrayLookup::partsOf(const char* name, CalcNode* receiver, Args* args) {
    checkArguments(name, args, 1, 2);
    auto* ref = static_cast<CalcNodeRef*>(receiver->implements("vexa::ref"));
    Parts parts;
    parts.reader.reset(new ArrayReader(*ref->getRef()->target));
    parts.statement = "";
    if (args->count == 2) {
        CalcNode* text = args->data[1];
        if (text->constLevel() >= 0)
            throw zun::CalcErrorFunctionCallInvalid(name, "String constant expected as lookup statement field in second argument");
        parts.statement = text->valStr();
        if (parts.statement.isNull()) parts.statement = "";
    }
    // Parsed once here for its type, then again for each search.
    parts.valueType = parseIn(*parts.reader, parts.statement)->valType();
    return parts;
}

CalcNodeRefArrayLookup::CalcNodeRefArrayLookup(const char* name, CalcNode* receiver, Args* args, char mode,
                                               Parts parts)
    : CalcNodeMethod(name, args, receiver, true, 1, 2),
      reader(std::move(parts.reader)),
      valueType(parts.valueType),
      mode(mode),
      lookupStatement(parts.statement) {
    if (this->args->count == 2) this->args->del(1);
}

CalcNodeRefArrayLookup::~CalcNodeRefArrayLookup() = default;

CalcNodeRef& CalcNodeRefArrayLookup::reference() const {
    return *static_cast<CalcNodeRef*>(object->implements("vexa::ref"));
}

std::unique_ptr<CalcParser> CalcNodeRefArrayLookup::parseStatement() const {
    return parseIn(*reader, lookupStatement);
}

CalcNode* CalcNodeRefArrayLookup::property(const char* name, zun::CalcNodeMem* via) {
    if (via || !name) return nullptr;
    String word(name);
    word.lowercase();
    if (word == "min") mode = '-';
    else if (word == "max") mode = '+';
    else return nullptr;
    return this;
}

double CalcNodeRefArrayLookup::valNum() {
    reference().getRef()->resolve();
    if (reader->numRows() == 0) return -1.0;
    if (valueType == zun::ValStr) return search(arg(0)->valStr());
    return search(arg(0)->valNum());
}

template <class V>
double CalcNodeRefArrayLookup::search(const V& x) {
    StructAlias* array = reference().getRef();
    array->resolve();
    std::unique_ptr<CalcParser> parser = parseStatement();
    StatementRows<V> rows(*reader, *parser, *array);
    return static_cast<double>(LookupSearch::find(rows, x, mode));
}

}  // namespace vexa
