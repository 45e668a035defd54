#include "struct/StructArray.h"

#include <cmath>
#include <cstring>
#include <memory>

#include "base/Exception.h"
#include "calc/CalcNode.h"
#include "calc/CalcScanner.h"
#include "input/InputStream.h"
#include "struct/Error.h"
#include "struct/StructAlias.h"
#include "struct/StructBase.h"
#include "struct/TextSink.h"

using zun::ObjAppendList;
using zun::ObjAppendListP;
using zun::quoted;
using zun::String;

namespace vexa {

namespace {

String decimal(long v) {
    String s;
    s << v;
    return s;
}

StructArrayBase* asArray(StructElem* e) {
    return static_cast<StructArrayBase*>(e);
}

}  // namespace

// ---------------------------------------------------------------------------
// StructArrayBase

StructArrayBase::StructArrayBase(StructElem* prev, StructElem* parent, const char* name, const char* unit,
                                 const char* sizeText)
    : StructTree(parent ? parent->getBase() : nullptr, prev, parent, name, unit, sizeText) {}

StructArrayBase::~StructArrayBase() {
    delete element;
}

void StructArrayBase::nameElement() {
    String& name = element->elemName;
    // One step on, as walks go: the digits count up in place, unless the
    // carry runs through all of them and the name grows.
    if (namedIndex >= 0 && activeIndex == namedIndex + 1 && name.text && name.length > 0) {
        namedIndex = activeIndex;
        int i = name.length - 1;
        while (i >= 0 && name.text[i] == '9') name.text[i--] = '0';
        if (i >= 0) {
            ++name.text[i];
            return;
        }
    }
    namedIndex = activeIndex;
    char text[24];
    char* end = text + sizeof text;
    char* p = end;
    unsigned long v = static_cast<unsigned long>(activeIndex);  // never negative here
    do {
        *--p = static_cast<char>('0' + v % 10);
        v /= 10;
    } while (v);
    int n = static_cast<int>(end - p);
    // The name has the length of the last index mostly: written over in place.
    if (name.length == n && name.text) std::memcpy(name.text, p, static_cast<size_t>(n));
    else name = String(p, n);
}

StructElem* StructArrayBase::getElement(long i) {
    if (i < 0) throw ErrorArrayIndexInvalid(getPathName().str(), decimal(i).str());
    long n = numElems();
    if (n >= 0 && i >= n) throw ErrorArrayIndexOverflow(getPathName().str());
    setArray(i);
    nameElement();
    return element;
}

StructElem* StructArrayBase::getNextElement(long n) {
    long count = numElems();
    long target = checkedSum(activeIndex, n);
    if (count >= 0 && target >= count) throw ErrorArrayIndexOverflow(getPathName().str());
    if (target < 0) throw ErrorArrayIndexUnderflow(getPathName().str());
    stepArray(n);
    nameElement();
    return element;
}

long StructArrayBase::countElems() {
    long n = numElems();
    if (n >= 0) return n;
    try {
        getElement(0);
        for (;;) stepArray(1);
    } catch (ErrorArrayIndexOverflow&) {
    }
    return numElems();
}

StructElem* StructArrayBase::getField(const char* text) {
    if (!text || !*text) return this;
    String word(text);
    if (word.isInteger()) return getElement(word.toLong());
    if (text[0] == '#') {
        if (!text[1]) return element;
        long n = numElems();
        if (n == 0) throw ErrorArrayIndexOverflow(getPathName().str());
        if (n < 0) {
            // An unbound array: walk to its end, where the count is learned.
            if (activeIndex < 0) getElement(0);
            try {
                for (;;) stepArray(1);
            } catch (ErrorArrayIndexOverflow&) {
            }
            n = numElems();
        }
        bool last = word == "#last";
        if (!last && word != "#mid") return this;
        if (n < 0) throw ErrorReferenceRecursion(getPathName().str(), "in array dimension computation");
        return getElement(last ? n - 1 : (n - 1) / 2);
    }
    int cast = word.find('#');
    if (element->isSeenThrough() && cast >= 0) {
        getField(cast > 0 ? word.substr(0, cast - 1).str() : "");
        if (StructElem* e = element->hasName(text)) return e;
        throw ErrorArrayIndexInvalid(getPathName().str(), text);
    }
    if (element->explodes()) return search(text);
    throw ErrorArrayIndexInvalid(getPathName().str(), text);
}

// "field=pattern": the first element, from the current one and then from 0,
// whose field matches the pattern.
StructElem* StructArrayBase::search(const char* text) {
    String word(text);
    int eq = word.find('=');
    if (eq < 0 || !text[eq + 1]) throw ErrorArrayIndexInvalid(getPathName().str(), text);
    String fieldName = eq > 0 ? word.substr(0, eq - 1) : String("");
    const char* pattern = text + eq + 1;
    StructElem* f = element->getChild(fieldName.str());
    String value;
    auto matches = [&] {
        f->readString(value, 0);
        return value.match(pattern);
    };
    long n = numElems();
    if (n > 0) {
        if (element->offset < 0) setArray(activeIndex);
        if (matches()) return element;
    }
    long end = element->dataEnd();  // asked once: on a file, a call to the system
    for (long i = 0; n < 0 || i < n; ++i) {
        getElement(i);  // an unbound array ends the search with the overflow
        // Past the end of the data nothing more is found, even by a field of
        // no size that reads the same empty text all along a huge count.
        if (element->startsBeyondData(end)) break;
        if (matches()) return element;
    }
    throw ErrorArrayIndexInvalid(getPathName().str(), text);
}

void StructArrayBase::writeText(TextSink& sink, TextForm form, bool compress) {
    long remembered = activeIndex;
    // An unbound array is printed whole: its count is learned first.
    long n = countElems();
    if (form == FormAll) sink.put('{');
    if (n != 0) {
        setArray(0);
        writeElements(sink, form, compress, n);
    }
    if (form == FormAll) sink.put('}');
    if (n != 0 && remembered != activeIndex) setArray(remembered);
}

void StructArrayBase::writeElements(TextSink& sink, TextForm form, bool compress, long n) {
    TextFolder folder(sink, compress, form == FormAll ? ',' : '\'');
    auto text = [&] {
        switch (form) {
        case FormHex:
            return element->readHex(compress);
        case FormHexNum:
            return element->readHexNum(compress);
        default:
            return element->readAll(compress);
        }
    };
    folder.add(text());
    while (activeIndex < n - 1) {
        stepArray(1);
        folder.add(text());
    }
    folder.finish();
}

String StructArrayBase::readAll(bool compress) {
    StringSink sink;
    writeText(sink, FormAll, compress);
    return sink.take(getPathName().str());
}

String StructArrayBase::readHex(bool compress) {
    StringSink sink;
    writeText(sink, FormHex, compress);
    return sink.take(getPathName().str());
}

String StructArrayBase::readHexNum(bool compress) {
    StringSink sink;
    writeText(sink, FormHexNum, compress);
    return sink.take(getPathName().str());
}

// Calls each() on the element at every index, in order; through an array
// chain each inner array is walked in turn. The loops end on the last index.
template <class F>
void StructArrayBase::forEachElement(F each) {
    long n = numElems();
    if (n < 1) return;
    setArray(0);
    for (;;) {
        if (element->isAnArray()) asArray(element)->forEachElement(each);
        else each(*element);
        if (activeIndex >= n - 1) break;
        stepArray(1);
    }
}

// The same for the field named by a path below the element; an array reached
// that way is walked like an inner array.
template <class F>
void StructArrayBase::forEachField(const char* field, F each) {
    long n = numElems();
    if (n < 1) return;
    setArray(0);
    StructAlias alias(*element, field);
    for (;;) {
        StructElem* target = alias.resolve();
        if (target->isAnArray()) asArray(target)->forEachElement(each);
        else each(*target);
        if (activeIndex >= n - 1) break;
        stepArray(1);
    }
}

#define VEXA_ARRAY_LIST_READ(Name, List, Read)                                   \
    void StructArrayBase::Name(List& list) {                                     \
        forEachElement([&](StructElem& e) { Read; });                            \
    }                                                                            \
    void StructArrayBase::Name(List& list, const char* field) {                  \
        forEachField(field, [&](StructElem& e) { Read; });                       \
    }

VEXA_ARRAY_LIST_READ(readBufA, ObjAppendListP<zun::RawBuffer>, e.readBufA(list))
VEXA_ARRAY_LIST_READ(readStrA, ObjAppendListP<std::stringstream>, e.readStrA(list))
VEXA_ARRAY_LIST_READ(readStringA, ObjAppendListP<String>, e.readStringA(list))
VEXA_ARRAY_LIST_READ(readDateTimeA, ObjAppendListP<zun::JulianDate>, e.readDateTimeA(list))
VEXA_ARRAY_LIST_READ(readSShortA, ObjAppendList<short>, e.readSShortA(list))
VEXA_ARRAY_LIST_READ(readUShortA, ObjAppendList<unsigned short>, e.readUShortA(list))
VEXA_ARRAY_LIST_READ(readSLongA, ObjAppendList<long>, e.readSLongA(list))
VEXA_ARRAY_LIST_READ(readULongA, ObjAppendList<unsigned long>, e.readULongA(list))
VEXA_ARRAY_LIST_READ(readSLLongA, ObjAppendList<long long>, e.readSLLongA(list))
VEXA_ARRAY_LIST_READ(readULLongA, ObjAppendList<unsigned long long>, e.readULLongA(list))
VEXA_ARRAY_LIST_READ(readFloatA, ObjAppendList<float>, e.readFloatA(list))
VEXA_ARRAY_LIST_READ(readDoubleA, ObjAppendList<double>, e.readDoubleA(list))

#undef VEXA_ARRAY_LIST_READ

#define VEXA_ARRAY_TEXT_LIST_READ(Name)                                                          \
    void StructArrayBase::Name(bool compress, ObjAppendListP<String>& list) {                    \
        forEachElement([&](StructElem& e) { e.Name(compress, list); });                          \
    }                                                                                            \
    void StructArrayBase::Name(bool compress, ObjAppendListP<String>& list, const char* field) { \
        forEachField(field, [&](StructElem& e) { e.Name(compress, list); });                     \
    }

VEXA_ARRAY_TEXT_LIST_READ(readAllA)
VEXA_ARRAY_TEXT_LIST_READ(readHexA)
VEXA_ARRAY_TEXT_LIST_READ(readHexNumA)

#undef VEXA_ARRAY_TEXT_LIST_READ

// Character lists: single bytes side by side are read in one go.
#define VEXA_ARRAY_CHAR_LIST_READ(Name, Char)                                                   \
    void StructArrayBase::Name(ObjAppendList<Char>& list) {                                     \
        long n = numElems();                                                                    \
        if (n < 1) return;                                                                      \
        setArray(0);                                                                            \
        if (element->getSize() == 1 && !element->isAnArray()) {                                 \
            list.allocate(n);                                                                   \
            readCPtr(reinterpret_cast<char*>(list.data + list.count), n);                       \
            list.count += n;                                                                    \
            list.free -= n;                                                                     \
            return;                                                                             \
        }                                                                                       \
        forEachElement([&](StructElem& e) { e.Name(list); });                                   \
    }                                                                                           \
    void StructArrayBase::Name(ObjAppendList<Char>& list, const char* field) {                  \
        forEachField(field, [&](StructElem& e) { e.Name(list); });                              \
    }

VEXA_ARRAY_CHAR_LIST_READ(readSCharA, char)
VEXA_ARRAY_CHAR_LIST_READ(readUCharA, unsigned char)
VEXA_ARRAY_CHAR_LIST_READ(readCharA, char)

#undef VEXA_ARRAY_CHAR_LIST_READ

// ---------------------------------------------------------------------------
// StructArray

StructArray::StructArray(const char* type, const char* unit, const char* detail, StructElem* prev,
                         StructElem* parent, const char* name, const char* sizeText, const char* dims)
    : StructArrayBase(prev, parent, name, "array", sizeText) {
    depLinks.setTruncSize(8);
    if (type && type[0] == '~') {
        size = 0;
        this->sizeText.setNull();
    }
    zun::CalcScanner scanner(dims ? dims : "");
    dimText = scanner.scan(0);
    dimText.trim(0);
    if (!scanner.atEnd()) {
        if (scanner.stopChar == ',') {
            String rest = scanner.skip(1).flush();
            element = new StructArray(type, unit, detail, nullptr, this, "0", "", rest.str());
        } else {
            dimText = dims;
        }
    }
    if (!element) element = createChild(nullptr, String("0"), String(unit), String(type), String(detail));
    element->offset.registerWith(getParentArray(0));
    if (dimText.isEmpty())
        throw "array " + quoted(dimensionOwner()) + " invalid array dimension " + quoted(dims ? dims : "");
    if (dimText.isInteger()) {
        long n = dimText.toLong();
        if (n < 0) throw "array " + quoted(dimensionOwner()) + " invalid negative array dimension " + quoted(dimText);
        dim = n;
        dimText.setNull();
    }
}

StructArray::~StructArray() = default;

String StructArray::dimensionOwner() const {
    const StructElem* owner = this;
    while (owner->parent && owner->parent->isAnArray()) owner = owner->parent;
    return owner->elemName;
}

zun::CalcNode* StructArray::getDimRef() {
    if (!dimRef) {
        dimRef.reset(new Calc(dimText.str(), *this, Calc::Dimension));
        zun::CalcNode* node = dimRef->getCalcNode();
        dimRef->registerCell(dim);
        return node;
    }
    return dimRef->getCalcNode();
}

void StructArray::checkUnboundPlace() {
    const StructElem* p = this;
    for (StructElem* up = parent; up; p = up, up = up->parent) {
        bool fails = up->isAnArray();
        if (!fails && up->explodes()) {
            const StructElem* lastReal = nullptr;
            for (long i = up->numElems() - 1; i >= 0; --i) {
                StructElem& f = (*up)[i];
                if (!f.isVirtual()) {
                    lastReal = &f;
                    break;
                }
            }
            fails = lastReal != p;
        }
        if (fails) {
            // Found when the array is first used: the dictionary is wrong.
            String text = "array " + quoted(elemName) +
                          " is unbound within structure (unbound arrays only allowed at the tail of the structure)";
            throw ErrorDictionary(getDictionaryPath().str(), text.str());
        }
    }
}

long StructArray::numElems() {
    if (dim < -1) return -1;
    if (dim == -1) {
        dim = -2;
        if (dimText == "inf") {
            try {
                checkUnboundPlace();
            } catch (...) {
                dim = -1;
                throw;
            }
            dim = -3;
            return -1;
        }
        double value;
        try {
            getDimRef();
            value = dimRef->valNum();
        } catch (...) {
            // The next request meets the same error instead of an unknown count.
            dim = -1;
            throw;
        }
        // A count must be a whole number in range; NaN or one beyond 2^63 is
        // as wrong as a negative one.
        if (!(value >= 0 && value < 9223372036854775808.0)) {
            dim = -1;
            String text = "dimension reference " + quoted(dimText) + " of structure " + quoted(getPathName()) +
                          " returns ";
            if (std::isnan(value)) text += "nan";
            else text << value;
            throw ErrorValueRange(text.str());
        }
        dim = static_cast<long>(value);
    }
    return dim;
}

String StructArray::getTypeStr(int level) {
    long n = numElems();
    bool showCount = n >= 0;
    if (showCount && dimRef) {
        int c = dimRef->constLevel();
        StructArray* a = c >= 0 ? getParentArray(c) : nullptr;
        if (a && level < a->getStructLevel()) showCount = false;
    }
    String text("(");
    if (showCount) text << n;
    text += '*';
    text += element->getTypeStr(level);
    text += ')';
    return text;
}

bool StructArray::fixedElements() {
    return element->getOffsetDep() == nullptr && element->getSizeDep() == nullptr;
}

void StructArray::linkBack(long slot) {
    if (slot < 0) return;
    for (StructArray* a = this; a; a = a->getParentArray(0)) a->depLinks << slot;
}

void StructArray::invalidate() {
    long** slots = getBase()->depSlots.data;
    const long* links = depLinks.data;
    for (long i = 0, n = depLinks.count; i < n; ++i) {
        long* slot = slots[links[i]];
        if (slot) *slot = -1;
    }
}

void StructArray::setPtr(long place, long index) {
    if (dim < -1) {
        zun::InputStream* in = getBase()->input;
        long pos = checkedSum(getPos(), place);
        if (pos >= 0) in->seek(pos, std::ios::beg);
        if (pos < 0 || in->peek() < 0) {
            if (dim == -3) dim = index;
            throw ErrorArrayIndexOverflow(getPathName().str());
        }
    }
    element->offset = place;
    activeIndex = index;
    invalidate();
}

void StructArray::setArray(long i) {
    if (element->offset < 0) setPtr(0, 0);
    if (activeIndex == i) return;
    if (i == 0) {
        setPtr(0, 0);
        return;
    }
    if (i > activeIndex) {
        stepArray(i - activeIndex);
        return;
    }
    if (fixedElements() && dim >= -1) {
        setPtr(checkedSum(element->offset, checkedProduct(element->getSize(), i - activeIndex)), i);
        return;
    }
    setPtr(0, 0);
    stepArray(i);
}

void StructArray::stepArray(long n) {
    if (element->offset < 0) setArray(activeIndex + n);
    if (n == 0) return;
    if (fixedElements() && dim >= -1) {
        setPtr(checkedSum(element->offset, checkedProduct(element->getSize(), n)), checkedSum(activeIndex, n));
        return;
    }
    if (n < 0) {
        setArray(activeIndex + n);
        return;
    }
    for (long k = 0; k < n; ++k) {
        long step = element->getSize();
        // An unbound array of elements without size would never reach the end.
        if (step <= 0 && dim == -3) {
            String text = "unbound array " + quoted(getPathName()) + " has elements of size 0";
            throw ErrorValueRange(text.str());
        }
        setPtr(checkedSum(element->offset, step), activeIndex + 1);
    }
}

void StructArray::writeElements(TextSink& sink, TextForm form, bool compress, long n) {
    // A run of plain numbers side by side: read in blocks and formatted
    // straight into the sink, without moving the element over each value.
    if (form == FormAll && n > 0 && dim >= 0 && !element->isVirtual() && fixedElements()) {
        TextFolder folder(sink, compress, ',');
        element->initRead();
        if (element->writeRunTexts(folder, n)) {
            folder.finish();
            checkRead(*getBase()->input);
            return;
        }
    }
    StructArrayBase::writeElements(sink, form, compress, n);
}

long StructArray::fixedStride() {
    if (dim < 0 || element->isVirtual() || !fixedElements()) return -1;
    return element->getSize();
}

void StructArray::setSizeByCumul() {
    long n = numElems();
    if (n == 0) {
        size = 0;
        return;
    }
    if (dim == -2) {
        size = -1;
        return;
    }
    if (dim == -3) {
        getField("#last");
        n = numElems();
    }
    if (fixedElements()) {
        size = checkedProduct(n, element->getSize());
        return;
    }
    getElement(n - 1);
    size = checkedSum(element->getOffset(), element->getSize());
}

StructArray* StructArray::getSizeDep() {
    if (sizeDepKnown) return sizeDep;
    if (sizeText.length > 0) return StructRefSize::getSizeDep();
    sizeDepKnown = true;
    StructArray* d = nullptr;
    if (!dimText.isNull() && dimText != "inf") {
        getDimRef();
        d = dimRef->dependency();
    }
    d = innerDep(d, element->getOffsetDep());
    d = innerDep(d, element->getSizeDep());
    if (d && d->getStructLevel() >= getStructLevel()) d = getParentArray(0);
    sizeDep = size.registerWith(d);
    return sizeDep;
}

// ---------------------------------------------------------------------------
// The fast path of the numeric list reads

namespace {

// One value through the element's own typed read.
inline void readOne(StructElem& e, short& v) { e.readSShort(v); }
inline void readOne(StructElem& e, unsigned short& v) { e.readUShort(v); }
inline void readOne(StructElem& e, long& v) { e.readSLong(v); }
inline void readOne(StructElem& e, unsigned long& v) { e.readULong(v); }
inline void readOne(StructElem& e, long long& v) { e.readSLLong(v); }
inline void readOne(StructElem& e, unsigned long long& v) { e.readULLong(v); }
inline void readOne(StructElem& e, float& v) { e.readFloat(v); }
inline void readOne(StructElem& e, double& v) { e.readDouble(v); }

}  // namespace

// All values of a run of numbers lying back to back (a numeric leaf as the
// element, or as the one field that fills it, through any number of nested
// arrays) in one read. Where the shape of the array doesn't allow it, the
// values are read element by element.
template <class T>
void StructArray::readNumbers(ObjAppendList<T>& list, const char* field) {
    if (!readRunOf(list, field)) slowRead(list, field);
}

template <class T>
bool StructArray::readRunOf(ObjAppendList<T>& list, const char* field) {
    long n = numElems();
    if (n < 1) return true;
    setArray(0);
    StructElem* e = element;
    while (e->isAnArray()) {
        if (e->isVirtual()) return false;
        long m = e->numElems();
        if (m == 0) return true;
        if (m < 0) return false;
        n = checkedProduct(n, m);
        asArray(e)->setArray(0);
        e = asArray(e)->element;
    }
    if (e->isVirtual()) return false;
    int level = getStructLevel();
    StructAlias a(*e);
    if (field) {
        a = StructAlias(*e, field);
        StructElem* x = a.resolve();
        if (x->isVirtual() || !a.isFixedSize(level)) return false;
        e->init();
        int s = e->getSizeType();
        // The named field must fill the element exactly, or there would be gaps.
        if (s == 255 || s > level || x->getSize() != e->getSize()) return false;
        if (x->isAnArray()) {
            StructElem* y = x;
            while (y->isAnArray()) {
                long m = y->numElems();
                if (m == 0) return true;
                if (m < 0) return false;
                n = checkedProduct(n, m);
                asArray(y)->setArray(0);
                y = asArray(y)->element;
            }
            a = StructAlias(*y);
        }
    }
    if (a.isFixedType(level)) a = a.getChild(nullptr);
    StructElem* x = a.resolve();
    if (!x->canReadRun()) return false;
    T first;
    readOne(*x, first);
    list.allocate(n);
    T* p = list.data + list.count;
    p[0] = first;
    list.count += n;
    list.free -= n;
    // The values are in the list, as far as the input held them; the
    // failure names the array.
    if (!x->readRun(p + 1, n - 1)) readFailed(*getBase()->input);
    checkRead(*getBase()->input);
    return true;
}

#define VEXA_ARRAY_NUMBER_READ(Name, T)                                   \
    void StructArray::Name(ObjAppendList<T>& list) {                      \
        readNumbers(list, nullptr);                                       \
    }                                                                     \
    void StructArray::Name(ObjAppendList<T>& list, const char* field) {   \
        readNumbers(list, field);                                         \
    }                                                                     \
    void StructArray::slowRead(ObjAppendList<T>& list, const char* field) { \
        if (field) StructArrayBase::Name(list, field);                    \
        else StructArrayBase::Name(list);                                 \
    }

VEXA_ARRAY_NUMBER_READ(readSShortA, short)
VEXA_ARRAY_NUMBER_READ(readUShortA, unsigned short)
VEXA_ARRAY_NUMBER_READ(readSLongA, long)
VEXA_ARRAY_NUMBER_READ(readULongA, unsigned long)
VEXA_ARRAY_NUMBER_READ(readSLLongA, long long)
VEXA_ARRAY_NUMBER_READ(readULLongA, unsigned long long)
VEXA_ARRAY_NUMBER_READ(readFloatA, float)
VEXA_ARRAY_NUMBER_READ(readDoubleA, double)

#undef VEXA_ARRAY_NUMBER_READ

}  // namespace vexa
