// The type vocabulary of the dictionary: one table binds each type to its
// printed name, the dictionary words it takes, the sizes it allows and the
// class it makes. Errors are thrown as zun::String; the dictionary reader
// turns them into ErrorDictionary.
#include <cstring>

#include "dict/Dictionary.h"
#include "calc/CalcScanner.h"
#include "struct/StructArray.h"
#include "struct/StructAscii.h"
#include "struct/StructCalc.h"
#include "struct/StructBase.h"
#include "struct/StructDate.h"
#include "struct/StructElem.h"
#include "struct/StructIndexMap.h"
#include "struct/StructNum.h"
#include "struct/StructRec.h"
#include "struct/StructSpare.h"
#include "struct/StructUnion.h"
#include "struct/StructString.h"

using zun::quoted;
using zun::String;

namespace vexa {

namespace {

// Makes the element of a dictionary line; n is the size column as an
// integer, -1 when it isn't one. For a virtual field the size column is its
// statement.
using Maker = StructElem* (*)(const FieldLine& line, StructElem* prev, StructElem* parent, long n);

// The sizes a type allows, and its name in the message of a size it refuses.
struct SizeRule {
    const char* kind;
    bool (*fits)(long n);
};

template <class C>
StructElem* plain(const FieldLine& line, StructElem* prev, StructElem* parent, long n) {
    return new C(prev, parent, line.name.str(), line.unit.text, n);
}

// Dates take the unit column as their date convention.
template <class C>
StructElem* dated(const FieldLine& line, StructElem* prev, StructElem* parent, long n) {
    return new C(prev, parent, line.name.str(), line.unit.toInt(), n);
}

// A virtual field: the statement in the size column.
template <class C>
StructElem* computed(const FieldLine& line, StructElem* prev, StructElem* parent, long) {
    return new C(prev, parent, line.name.str(), line.unit.text, line.size.str());
}

// A virtual date: the unit column is the reference year.
template <class C>
StructElem* computedDate(const FieldLine& line, StructElem* prev, StructElem* parent, long) {
    return new C(prev, parent, line.name.str(), line.unit.toInt(), line.size.str());
}

StructElem* character(const FieldLine& line, StructElem* prev, StructElem* parent, long) {
    return new StructAChar(prev, parent, line.name.str(), line.unit.text);
}

String badSize(const char* kind, const String& size) {
    return String("invalid size for ") + kind + " field '" + size.str() + "'";
}

StructElem* string(const FieldLine& line, StructElem* prev, StructElem* parent, long n) {
    if (n >= 1) return new StructString(prev, parent, line.name.str(), line.unit.text, n);
    // Without a size the string would take no room and misplace what follows.
    if (line.size.isEmpty()) throw badSize("String", line.size);
    return new StructVarString(prev, parent, line.name.str(), line.unit.text, line.size.str());
}

StructElem* record(const FieldLine& line, StructElem* prev, StructElem* parent, long) {
    String dictionary = line.type.substr(1);
    return new StructRec(dictionary.str(), *parent->getBase(), prev, parent, line.name.str(), line.unit.text,
                         line.size.text);
}

StructElem* null(const FieldLine& line, StructElem* prev, StructElem* parent, long) {
    return new StructNull(prev, parent, line.name.str());
}

StructElem* spare(const FieldLine& line, StructElem* prev, StructElem* parent, long) {
    return new StructSpare(prev, parent, line.name.str(), line.size.text);
}

// An array line: the size column is "<element size>, <array size>", split at
// its first comma outside parentheses.
StructElem* array(const FieldLine& line, StructElem* prev, StructElem* parent) {
    String detail = line.size;
    String arraySize("");
    if (!line.size.isEmpty()) {
        zun::CalcScanner scanner(line.size.str());
        String head = scanner.scan(0);
        if (!scanner.atEnd() && scanner.stopChar == ',') {
            detail = head;
            arraySize = scanner.skip(1).flush();
        }
    }
    detail.trim(0);
    arraySize.trim(0);
    return new StructArray(line.type.str(), line.unit.text, detail.text, prev, parent, line.name.str(),
                           arraySize.str(), line.dims.str());
}

// "?switch": the alternatives are listed by the dictionary in the unit column.
StructElem* unionField(const FieldLine& line, StructElem* prev, StructElem* parent, long) {
    String switchText = line.type.substr(1);
    return new StructUnion(switchText.str(), line.unit.str(), prev, parent, line.name.str(), line.size.text);
}

bool anySize(long) { return true; }
bool charSize(long n) { return n <= 1; }
bool shortSize(long n) { return n <= 0 || n == 2; }
bool longSize(long n) { return n <= 0 || n == 3 || n == 4; }
bool llongSize(long n) { return n <= 0 || (n >= 5 && n <= 8); }
bool floatSize(long n) { return n <= 0 || n == 4; }
bool doubleSize(long n) { return n <= 0 || n == 8; }
bool dateSize(long n) { return n != 1; }
bool asciiSize(long n) { return n >= 1; }

constexpr SizeRule any{"", anySize};
constexpr SizeRule ascii{"Ascii numeric", asciiSize};

// One row a type. `words` is the pattern (String::match) of the dictionary
// words that make it, tried in the order of the table: a word beginning with
// "a" is an ASCII number or nothing, "UShort" comes before the "?Short" that
// takes every other letter, and "?Short" before the union's "[?]*". Types
// without words are made by other means (offset columns, arrays) or not at
// all. `valueType` marks the types a definition may have; `computed` makes
// the virtual field of a line whose type is "~" and the name.
struct TypeRow {
    ElemType type;
    const char* name;
    const char* words;
    SizeRule size;
    Maker make;
    bool valueType;
    Maker computed;
};

constexpr TypeRow table[] = {
    {TypeUChar, "UChar", "UChar", {"Char", charSize}, plain<StructNumUChar>, true, computed<StructCalcUChar>},
    {TypeSChar, "SChar", "SChar", {"Char", charSize}, plain<StructNumSChar>, true, computed<StructCalcSChar>},
    {TypeAChar, "AChar", "AChar", {"Char", charSize}, character, true, computed<StructCalcAChar>},
    {TypeUShort, "UShort", "UShort", {"Short", shortSize}, plain<StructNumUShort>, true, computed<StructCalcUShort>},
    {TypeSShort, "SShort", "?Short", {"Short", shortSize}, plain<StructNumSShort>, true, computed<StructCalcSShort>},
    {TypeULong, "ULong", "ULong", {"Long", longSize}, plain<StructNumULong>, true, computed<StructCalcULong>},
    {TypeSLong, "SLong", "?Long", {"Long", longSize}, plain<StructNumSLong>, true, computed<StructCalcSLong>},
    {TypeULLong, "ULLong", "ULLong", {"LLong", llongSize}, plain<StructNumULLong>, true, computed<StructCalcULLong>},
    {TypeSLLong, "SLLong", "?LLong", {"LLong", llongSize}, plain<StructNumSLLong>, true, computed<StructCalcSLLong>},
    {TypeFloat, "Float", "Float", {"Float", floatSize}, plain<StructNumFloat>, true, computed<StructCalcFloat>},
    {TypeDouble, "Double", "Double", {"Double", doubleSize}, plain<StructNumDouble>, true, computed<StructCalcDouble>},
    {TypeDateTime, "DateTime", "DateTime", {"DateTime", doubleSize}, dated<StructNumDateTime>, true,
     computedDate<StructCalcDateTime>},
    {TypeDate, "Date", "Date", {"Date", dateSize}, dated<StructNumDate>, true, computedDate<StructCalcDate>},
    {TypeString, "String", "String", any, string, true, computed<StructCalcStr>},
    {TypeAUChar, "aUChar", "aUChar", ascii, plain<StructAUChar>, true, nullptr},
    {TypeASChar, "aSChar", "a?Char", ascii, plain<StructASChar>, true, nullptr},
    {TypeAUShort, "aUShort", "aUShort", ascii, plain<StructAUShort>, true, nullptr},
    {TypeASShort, "aSShort", "a?Short", ascii, plain<StructASShort>, true, nullptr},
    {TypeAULong, "aULong", "aULong", ascii, plain<StructAULong>, true, nullptr},
    {TypeASLong, "aSLong", "a?Long", ascii, plain<StructASLong>, true, nullptr},
    {TypeAULLong, "aULLong", "aULLong", ascii, plain<StructAULLong>, true, nullptr},
    {TypeASLLong, "aSLLong", "a?LLong", ascii, plain<StructASLLong>, true, nullptr},
    {TypeAFloat, "aFloat", "aFloat", ascii, plain<StructAFloat>, true, nullptr},
    {TypeADouble, "aDouble", "aDouble", ascii, plain<StructADouble>, true, nullptr},
    {TypeADateTime, "aDateTime", "aDateTime", ascii, dated<StructADateTime>, true, nullptr},
    {TypeRecord, "Record", "@*", any, record, false, nullptr},
    {TypeSpare, "Spare", "Spare", any, spare, false, nullptr},
    {TypeUnion, "Union", "[?]*", any, unionField, false, nullptr},
    {TypeNull, "Null", "Null", any, null, false, nullptr},
    {TypeRelativeOffset, "Relative Offset", nullptr, any, nullptr, false, nullptr},
    {TypeAlignmentOffset, "Alignment Offset", nullptr, any, nullptr, false, nullptr},
    {TypeOffset, "Offset", nullptr, any, nullptr, false, nullptr},
    {TypeArray, "Array", nullptr, any, nullptr, false, nullptr},
};

constexpr long typeCount = TypeArray - TypeRelativeOffset;  // every type but TypeNone
constexpr long rowCount = sizeof table / sizeof table[0];

// Every type of the enumeration but TypeNone has exactly one row.
constexpr bool coversEveryType() {
    for (int t = TypeRelativeOffset; t <= TypeArray; ++t) {
        int rows = 0;
        for (const TypeRow& row : table)
            if (row.type == t) ++rows;
        if (rows != (t == TypeNone ? 0 : 1)) return false;
    }
    return rowCount == typeCount;
}
static_assert(coversEveryType(), "the type table must name every element type once");

const TypeRow* rowOf(int type) {
    for (const TypeRow& row : table)
        if (row.type == type) return &row;
    return nullptr;
}

const TypeRow* rowForWord(const String& word) {
    bool asciiWord = word[0] == 'a';
    for (const TypeRow& row : table) {
        if (!row.words || (row.words[0] == 'a') != asciiWord) continue;
        if (word.match(row.words)) return &row;
    }
    return nullptr;
}

// Index maps: the unit column holds the array references, the statement
// column the selection (or the columns to invert).
template <class C>
StructElem* indexMap(const FieldLine& line, StructElem* prev, StructElem* parent, long) {
    return new C(prev, parent, line.name.str(), line.unit.str(), line.size.str());
}

// The words a virtual line may carry behind "~" that make no value field,
// by pattern (String::match), and their makers; null for the kinds this
// build does not support.
struct VirtualRow {
    const char* words;
    Maker make;
};

constexpr VirtualRow otherVirtual[] = {
    {"SelectMap", indexMap<StructSelectMap>},
    {"InverseMap", indexMap<StructInverseMap>},
    {"Auxiliary", nullptr},
    {"Auxiliary/*", nullptr},
    {"@*", nullptr},
};

const VirtualRow* otherVirtualRow(const String& word) {
    for (const VirtualRow& row : otherVirtual)
        if (word.match(row.words)) return &row;
    return nullptr;
}

}  // namespace

const char* elemTypeName(int type) {
    const TypeRow* row = rowOf(type);
    return row ? row->name : "";
}

ElemType elemType(const char* word) {
    if (!word || !*word) return TypeNone;
    for (const TypeRow& row : table)
        if (std::strcmp(word, row.name) == 0) return row.type;
    return TypeNone;
}

bool isValueType(int type) {
    const TypeRow* row = rowOf(type);
    return row && row->valueType;
}

StructElem* StructElem::createChild(StructElem* prev, const String& name, const String& unit, const String& type,
                                    const String& size) {
    FieldLine line;
    line.name = name;
    line.type = type;
    line.unit = unit;
    line.size = size;
    return createChild(prev, line);
}

StructElem* StructElem::createChild(StructElem* prev, const FieldLine& line) {
    const String& type = line.type;
    if (line.isArray()) {
        // A virtual array takes no room: its elements are statements.
        if (type[0] == '~')
            return new StructArray(type.str(), line.unit.text, line.size.text, prev, this, line.name.str(), "0",
                                   line.dims.str());
        return array(line, prev, this);
    }
    if (type[0] == '~') {
        String word = type.substr(1);
        const TypeRow* row = rowOf(elemType(word.str()));
        if (row && row->computed) return row->computed(line, prev, this, -1);
        if (const VirtualRow* other = otherVirtualRow(word)) {
            if (other->make) return other->make(line, prev, this, -1);
            throw String("unsupported virtual field ") + quoted(line.name);
        }
        throw String("unknown virtual field type ") + quoted(word);
    }

    long n = -1;
    if (line.size.isInteger()) {
        n = line.size.toLong();
        if (n < 0) throw line.name + " invalid negative size '" + line.size + "'";
    }
    const TypeRow* row = rowForWord(type);
    if (!row) throw String("unknown field type ") + quoted(type);
    if (!row->size.fits(n)) throw badSize(row->size.kind, line.size);
    return row->make(line, prev, this, n);
}

}  // namespace vexa
