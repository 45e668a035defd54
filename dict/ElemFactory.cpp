// The type vocabulary of the dictionary: each type word bound to its class,
// with its size checks and messages. Errors are thrown as zun::String; the
// dictionary reader turns them into ErrorDictionary.
#include <cstring>

#include "struct/StructAscii.h"
#include "struct/StructBase.h"
#include "struct/StructDate.h"
#include "struct/StructElem.h"
#include "struct/StructNum.h"
#include "struct/StructRec.h"
#include "struct/StructString.h"

using zun::String;
using zun::quoted;

namespace vexa {

ElemType elemType(const char* word) {
    if (!word || !*word) return TypeNone;
    for (int t = TypeRelativeOffset; t <= TypeArray; ++t)
        if (t != TypeNone && std::strcmp(word, elemTypeName(t)) == 0) return static_cast<ElemType>(t);
    return TypeNone;
}

namespace {

String badSize(const char* kind, const String& size) {
    return String("invalid size for ") + kind + " field '" + size.str() + "'";
}

// The words a virtual line may carry behind "~".
bool knownVirtualType(const String& word) {
    static const char* const words[] = {"UChar", "SChar",  "AChar", "UShort",   "SShort",    "ULong",
                                        "SLong", "ULLong", "SLLong", "Float",   "Double",    "DateTime",
                                        "Date",  "String", "SelectMap", "InverseMap", "Auxiliary"};
    for (const char* w : words)
        if (word == w) return true;
    return word.match("Auxiliary/*") || word[0] == '@';
}

StructElem* makeAscii(StructElem* prev, StructElem* parent, const String& name, const String& unit,
                      const String& type, long size) {
    bool isUnsigned = type[1] == 'U';
    const char* n = name.str();
    const char* u = unit.text;
    if (type.match("??Char")) {
        if (isUnsigned) return new StructAUChar(prev, parent, n, u, size);
        return new StructASChar(prev, parent, n, u, size);
    }
    if (type.match("??Short")) {
        if (isUnsigned) return new StructAUShort(prev, parent, n, u, size);
        return new StructASShort(prev, parent, n, u, size);
    }
    if (type.match("??Long")) {
        if (isUnsigned) return new StructAULong(prev, parent, n, u, size);
        return new StructASLong(prev, parent, n, u, size);
    }
    if (type.match("??LLong")) {
        if (isUnsigned) return new StructAULLong(prev, parent, n, u, size);
        return new StructASLLong(prev, parent, n, u, size);
    }
    if (type == "aFloat") return new StructAFloat(prev, parent, n, u, size);
    if (type == "aDouble") return new StructADouble(prev, parent, n, u, size);
    if (type == "aDateTime") return new StructADateTime(prev, parent, n, unit.toInt(), size);
    return nullptr;
}

}  // namespace

StructElem* StructElem::createChild(StructElem* prev, const String& name, const String& unit, const String& type,
                                    const String& size) {
    if (type[0] == '~') {
        String word = type.substr(1);
        if (knownVirtualType(word)) throw String("unsupported virtual field ") + quoted(name);
        throw String("unknown virtual field type ") + quoted(word);
    }

    long n = -1;
    if (size.isInteger()) {
        n = size.toLong();
        if (n < 0) throw name + " invalid negative size '" + size + "'";
    }
    const char* nm = name.str();
    const char* u = unit.text;

    if (type == "String") {
        if (n >= 1) return new StructString(prev, this, nm, u, n);
        // Without a size the string would take no room and misplace what follows.
        if (size.isEmpty()) throw badSize("String", size);
        return new StructVarString(prev, this, nm, u, size.str());
    }
    if (type[0] == 'a') {
        if (!(type.match("??Char") || type.match("??Short") || type.match("??Long") || type.match("??LLong") ||
              type == "aFloat" || type == "aDouble" || type == "aDateTime"))
            throw String("unknown field type ") + quoted(type);
        if (n < 1) throw badSize("Ascii numeric", size);
        return makeAscii(prev, this, name, unit, type, n);
    }
    if (type.match("?Char")) {
        char kind = type[0];
        if (kind == 'S' || kind == 'U' || kind == 'A') {
            if (n > 1) throw badSize("Char", size);
            if (kind == 'S') return new StructNumSChar(prev, this, nm, u, n);
            if (kind == 'U') return new StructNumUChar(prev, this, nm, u, n);
            return new StructAChar(prev, this, nm, u);
        }
        throw String("unknown field type ") + quoted(type);
    }
    if (type.match("?Short")) {
        if (n > 0 && n != 2) throw badSize("Short", size);
        if (type[0] == 'U') return new StructNumUShort(prev, this, nm, u, n);
        return new StructNumSShort(prev, this, nm, u, n);
    }
    if (type.match("?Long")) {
        if (n > 0 && n != 3 && n != 4) throw badSize("Long", size);
        if (type[0] == 'U') return new StructNumULong(prev, this, nm, u, n);
        return new StructNumSLong(prev, this, nm, u, n);
    }
    if (type.match("?LLong")) {
        if (n > 0 && (n < 5 || n > 8)) throw badSize("LLong", size);
        if (type[0] == 'U') return new StructNumULLong(prev, this, nm, u, n);
        return new StructNumSLLong(prev, this, nm, u, n);
    }
    if (type == "Float") {
        if (n > 0 && n != 4) throw badSize("Float", size);
        return new StructNumFloat(prev, this, nm, u, n);
    }
    if (type == "Double") {
        if (n > 0 && n != 8) throw badSize("Double", size);
        return new StructNumDouble(prev, this, nm, u, n);
    }
    if (type == "DateTime") {
        if (n > 0 && n != 8) throw badSize("DateTime", size);
        return new StructNumDateTime(prev, this, nm, unit.toInt(), n);
    }
    if (type == "Date") {
        if (n == 1) throw badSize("Date", size);
        return new StructNumDate(prev, this, nm, unit.toInt(), n);
    }
    if (type[0] == '@') {
        String dictionary = type.substr(1);
        return new StructRec(dictionary.str(), *getBase(), prev, this, nm, u, size.text);
    }
    if (type == "Spare") throw String("unsupported field type ") + quoted(type);
    if (type[0] == '?') throw String("unsupported union field ") + quoted(name);
    if (type == "Null") return new StructNull(prev, this, nm);
    throw String("unknown field type ") + quoted(type);
}

}  // namespace vexa
