#include "struct/StructUnion.h"

#include <sys/stat.h>

#include <cstring>

#include "calc/CalcNode.h"
#include "dict/Dictionary.h"
#include "struct/Error.h"
#include "struct/StructArray.h"
#include "struct/TextSink.h"

using zun::ObjAppendList;
using zun::ObjAppendListP;
using zun::String;

namespace vexa {

StructUnion::StructUnion(const char* switchText, const char* dictionary, StructElem* prev, StructElem* parent,
                         const char* name, const char* size)
    : StructRefSize(prev, parent, name, dictionary, size), switchText(switchText) {
    if (!parent) throw ErrorNoParent();
    try {
        Dictionary alternatives(*parent, dictionary);
        struct stat file;
        if (stat(alternatives.path().str(), &file) == 0) {
            alternativesDevice = file.st_dev;
            alternativesInode = file.st_ino;
            for (StructElem* p = parent; p; p = p->parent) {
                auto* outer = dynamic_cast<StructUnion*>(p);
                if (outer && outer->alternativesDevice == alternativesDevice &&
                    outer->alternativesInode == alternativesInode)
                    throw "union \"" + elemName + "\" inside its own alternatives '" + alternatives.path() + "'";
            }
        }
        StructElem* marker = nullptr;
        while (StructElem* e = alternatives.processNext(nullptr, this, marker)) {
            choices << e;
            if (marker) markers << marker;
        }
        const String& word = alternatives.recordSize;
        if (!word.isEmpty() && word != "*") setSizeText(word);
        sizeFixed = sizeText.length == 0 && this->size >= 0;
    } catch (...) {
        for (long i = 0; i < choices.count; ++i) delete choices.data[i];
        for (long i = 0; i < markers.count; ++i) delete markers.data[i];
        throw;
    }
}

StructUnion::~StructUnion() {
    switchValue.release();
    for (long i = 0; i < choices.count; ++i) delete choices.data[i];
    for (long i = 0; i < markers.count; ++i) delete markers.data[i];
}

zun::CalcNode* StructUnion::getUnionSwitchRef() {
    if (!switchRef) {
        switchRef.reset(new Calc(switchText.str(), *this, Calc::Switch));
        zun::CalcNode* node = switchRef->getCalcNode();
        StructArray* a = switchRef->registerCell(switchValue);
        switchLevel = a ? a->getStructLevel() : 0;
        return node;
    }
    return switchRef->getCalcNode();
}

void StructUnion::activate(long n) {
    long value = n;
    if (n < 0) {
        getUnionSwitchRef();
        value = static_cast<long>(switchRef->valInt());
    }
    switchValue = value;
    if (value < 0 || value >= choices.count) {
        String text = "switch [" + switchText + "] returns invalid value =";
        text << value;
        text += " in union [";
        text += unit;
        text += "] with ";
        text << choices.count;
        text += " choices";
        throw ErrorUnionSwitchInvalid(text.str());
    }
    active = choices.data[value];
}

void StructUnion::activate(const char* name) {
    if (!name || !*name) {
        activate(-1L);
        return;
    }
    for (long i = 0; i < choices.count; ++i) {
        if (choices.data[i]->elemName == name) {
            active = choices.data[i];
            switchValue = -1;
            return;
        }
    }
    String text = String("cast name [") + name + "] is invalid in union [" + unit + "]";
    throw ErrorUnionSwitchInvalid(text.str());
}

StructElem& StructUnion::current() {
    // A switch value that failed stays cached: it fails again rather than
    // reading an alternative it didn't choose.
    if (switchValue < 0 || !active || switchValue >= choices.count) activate(-1L);
    return *active;
}

bool StructUnion::isFixedType(int level) {
    getUnionSwitchRef();
    return switchLevel < level;
}

String StructUnion::getTypeStr(int level) {
    String text = "Union?(" + switchText + ")";
    if (!isFixedType(level)) return text;
    text += '=';
    text += current().getTypeStr(level);
    return text;
}

const String& StructUnion::getUnit() {
    if (switchValue >= 0 && active) return active->getUnit();
    return unit;
}

StructElem& StructUnion::operator[](long i) {
    activate(i);
    return *active;
}

StructElem* StructUnion::getChild(const char* path) {
    StructElem& alternative = current();
    if (!path) return &alternative;
    return alternative.getChild(path);
}

StructElem* StructUnion::cast(const char* rest) {
    if (!*rest) return this;
    String word(rest);
    if (word.isInteger()) {
        activate(word.toLong());
    } else {
        activate(rest);
    }
    return active;
}

StructElem* StructUnion::hasName(const char* name) {
    if (!name) return nullptr;
    size_t n = static_cast<size_t>(elemName.length);
    if (std::strncmp(name, elemName.text, n) != 0) return nullptr;
    if (name[n] == 0) return this;
    if (name[n] != '#') return nullptr;
    return cast(name + n + 1);
}

StructElem* StructUnion::matchesName(const char* pattern) {
    if (!pattern) return elemName.match(pattern) ? this : nullptr;
    const char* hash = std::strchr(pattern, '#');
    if (!hash) return elemName.match(pattern) ? this : nullptr;
    String head(pattern, static_cast<int>(hash - pattern));
    if (!elemName.match(head.str())) return nullptr;
    return cast(hash + 1);
}

void StructUnion::setSize() {
    StructRefSize::setSize();
    if (size >= 0) return;
    size = current().getSize();
}

StructArray* StructUnion::getSizeDep() {
    if (sizeDepKnown) return sizeDep;
    if (sizeText.length > 0 || sizeFixed) return StructRefSize::getSizeDep();
    sizeDepKnown = true;
    getUnionSwitchRef();
    StructArray* d = switchRef->dependency();
    for (long i = 0; i < choices.count; ++i) {
        d = innerDep(d, choices.data[i]->getOffsetDep());
        d = innerDep(d, choices.data[i]->getSizeDep());
    }
    sizeDep = size.registerWith(d);
    return sizeDep;
}

// ---------------------------------------------------------------------------
// Everything read goes to the alternative in force.

zun::RawBuffer& StructUnion::readBuf(zun::RawBuffer& buffer, int append) {
    return current().readBuf(buffer, append);
}
long StructUnion::readCPtr(char* buffer, long max) {
    return current().readCPtr(buffer, max);
}
String StructUnion::readAll(bool compress) {
    return current().readAll(compress);
}
String StructUnion::readHex(bool compress) {
    return current().readHex(compress);
}
String StructUnion::readHexNum(bool compress) {
    return current().readHexNum(compress);
}
void StructUnion::writeText(TextSink& sink, TextForm form, bool compress) {
    current().writeText(sink, form, compress);
}
std::stringstream& StructUnion::readStr(std::stringstream& out, int append) {
    return current().readStr(out, append);
}
String& StructUnion::readString(String& target, int append) {
    return current().readString(target, append);
}
zun::JulianDate& StructUnion::readDateTime(zun::JulianDate& date) {
    return current().readDateTime(date);
}
char StructUnion::readChar() {
    return current().readChar();
}

#define VEXA_UNION_READ(Name, T)      \
    T& StructUnion::Name(T& v) {      \
        return current().Name(v);     \
    }

VEXA_UNION_READ(readSShort, short)
VEXA_UNION_READ(readUShort, unsigned short)
VEXA_UNION_READ(readSLong, long)
VEXA_UNION_READ(readULong, unsigned long)
VEXA_UNION_READ(readSLLong, long long)
VEXA_UNION_READ(readULLong, unsigned long long)
VEXA_UNION_READ(readFloat, float)
VEXA_UNION_READ(readDouble, double)

#undef VEXA_UNION_READ

#define VEXA_UNION_LIST_READ(Name, List)   \
    void StructUnion::Name(List& list) {   \
        current().Name(list);              \
    }

VEXA_UNION_LIST_READ(readBufA, ObjAppendListP<zun::RawBuffer>)
VEXA_UNION_LIST_READ(readStrA, ObjAppendListP<std::stringstream>)
VEXA_UNION_LIST_READ(readStringA, ObjAppendListP<String>)
VEXA_UNION_LIST_READ(readDateTimeA, ObjAppendListP<zun::JulianDate>)
VEXA_UNION_LIST_READ(readSShortA, ObjAppendList<short>)
VEXA_UNION_LIST_READ(readUShortA, ObjAppendList<unsigned short>)
VEXA_UNION_LIST_READ(readSLongA, ObjAppendList<long>)
VEXA_UNION_LIST_READ(readULongA, ObjAppendList<unsigned long>)
VEXA_UNION_LIST_READ(readSLLongA, ObjAppendList<long long>)
VEXA_UNION_LIST_READ(readULLongA, ObjAppendList<unsigned long long>)
VEXA_UNION_LIST_READ(readFloatA, ObjAppendList<float>)
VEXA_UNION_LIST_READ(readDoubleA, ObjAppendList<double>)
VEXA_UNION_LIST_READ(readSCharA, ObjAppendList<char>)
VEXA_UNION_LIST_READ(readUCharA, ObjAppendList<unsigned char>)
VEXA_UNION_LIST_READ(readCharA, ObjAppendList<char>)

#undef VEXA_UNION_LIST_READ

void StructUnion::readAllA(bool compress, ObjAppendListP<String>& list) {
    current().readAllA(compress, list);
}
void StructUnion::readHexA(bool compress, ObjAppendListP<String>& list) {
    current().readHexA(compress, list);
}
void StructUnion::readHexNumA(bool compress, ObjAppendListP<String>& list) {
    current().readHexNumA(compress, list);
}

}  // namespace vexa
