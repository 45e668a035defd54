#include "struct/StructRec.h"

#include <memory>

#include "base/Exception.h"
#include "calc/CalcBinder.h"
#include "calc/CalcNode.h"
#include "calc/CalcParser.h"
#include "dict/Dictionary.h"
#include "input/InputStream.h"
#include "struct/Error.h"
#include "struct/StructArray.h"
#include "struct/StructBase.h"

using zun::String;

namespace vexa {

// ---------------------------------------------------------------------------
// StructRefSize

StructRefSize::StructRefSize(StructElem* prev, StructElem* parent, const char* name, const char* unit,
                             const char* text)
    : StructElem(prev, parent, name, unit, -1), sizeText(text) {
    if (sizeText.isInteger()) {
        size = sizeText.toLong();
        if (size < 0) throw elemName + " invalid negative size '" + sizeText + "'";
        sizeText.setNull();
    }
}

zun::CalcNode* StructRefSize::getSizeRef() {
    if (!sizeRef) {
        const char* text = sizeText.str();
        StructElem* bound = sizeBinding(text);
        sizeRef.reset(new Calc(text, *this, Calc::Size, bound));
    }
    return sizeRef->getCalcNode();
}

void StructRefSize::setSizeText(const String& text) {
    if (text.isInteger()) {
        size = text.toLong();
        sizeText.setNull();
    } else {
        size = -1;
        sizeText = text;
    }
    sizeRef.reset();
}

void StructRefSize::setSize() {
    if (sizeText.length == 0) return;
    getSizeRef();
    long long value = sizeRef->valInt();
    size = static_cast<long>(value);
    if (size < 0) {
        String text("size reference \"");
        text += sizeText;
        text += "\" of structure \"";
        text += getPathName();
        text += "\" returns ";
        text << value;
        throw ErrorValueRange(text.str());
    }
}

StructArray* StructRefSize::getSizeDep() {
    if (sizeDepKnown) return sizeDep;
    if (sizeText.length == 0) {
        sizeDepKnown = true;
        return nullptr;
    }
    getSizeRef();
    sizeDep = sizeRef->registerCell(size);
    sizeDepKnown = true;
    return sizeDep;
}

// ---------------------------------------------------------------------------
// StructTree

StructTree::StructTree(StructBase* base, StructElem* prev, StructElem* parent, const char* name, const char* unit,
                       const char* sizeText)
    : StructRefSize(prev, parent, name, unit, sizeText), base(base) {}

StructElem* StructTree::getChild(const char* path) {
    if (!path) return this;
    String head;
    int next = Dictionary::getStructField(path, head);
    if (!path[next]) return getField(path);
    return getField(head.str())->getChild(path + next);
}

void StructTree::setSize() {
    if (sizeText.length == 0) setSizeByCumul();
    else StructRefSize::setSize();
}

// ---------------------------------------------------------------------------
// StructRec

StructRec::StructRec(StructBase& root)
    : StructTree(&root, nullptr, nullptr, "", nullptr, nullptr), dictionaryPath(nullptr) {
    fields.setTruncSize(300);
}

StructRec::StructRec(const char* dictionary, StructBase& base, StructElem* prev, StructElem* parent,
                     const char* name, const char* unit, const char* sizeText)
    : StructTree(&base, prev, parent, name, unit, sizeText),
      dictionaryPath(parent ? parent->getDictionaryPath() : String(nullptr)) {
    fields.setTruncSize(300);
    try {
        autoDescribe(dictionary);
    } catch (...) {
        clearFields();
        throw;
    }
}

StructRec::~StructRec() {
    clearFields();
}

void StructRec::clearFields() {
    deleteFrom(0, 0);
    fields.flush(true);
    markers.flush(true);
    fields.setTruncSize(300);
    soleField = nullptr;
    initialised = false;
}

void StructRec::deleteFrom(long fieldCount, long markerCount) {
    for (long i = fieldCount; i < fields.count; ++i) delete fields.data[i];
    for (long i = markerCount; i < markers.count; ++i) delete markers.data[i];
    if (fields.count > fieldCount) fields.del(fields.count - fieldCount);
    if (markers.count > markerCount) markers.del(markers.count - markerCount);
}

String StructRec::getTypeStr(int) {
    String text("Record'");
    text += recordType;
    return text;
}

const String& StructRec::getUnit() {
    return unit.isEmpty() ? recordType : unit;
}

long StructRec::numElems() {
    init();
    return fields.count;
}

StructElem* StructRec::sizeBinding(const char*& text) {
    if (sizeText.cmp("+ ", 2) != 0) return this;
    text += 2;
    return &(*this)[0];
}

StructElem* StructRec::getField(long i) {
    if (i < 0 || i >= numElems()) throw ErrorFieldIndexInvalid(getPathName().str(), i);
    return fields.data[i];
}

StructElem* StructRec::getField(const char* name) {
    if (!name || !*name) return this;
    long n = numElems();
    for (long i = 0; i < n; ++i)
        if (StructElem* e = fields.data[i]->hasName(name)) return e;
    throw ErrorFieldNameInvalid(getPathName().str(), name);
}

long StructRec::addVirtual(const char* name, ElemType type, const char* unit, const char* expression) {
    long n = numElems();
    if (!Dictionary::fieldNameValid(String(name))) return -2;
    if (!isValueType(type)) return -3;
    StructElem* last = n > 0 ? fields.data[n - 1] : nullptr;
    String word("~");
    word += elemTypeName(type);
    StructElem* e;
    try {
        e = createChild(last, String(name), String(unit), word, String(expression));
    } catch (String& text) {
        throw ErrorDictionary(getDictionaryPath().str(), text.str());
    }
    fields << e;
    findSoleField();
    return fields.count;
}

long StructRec::addVirtualLink(const char* name, const char* /*a*/, const char* /*b*/, const char* /*c*/) {
    numElems();
    String text("unsupported virtual link \"");
    text += name;
    text += '"';
    throw ErrorDictionary(getDictionaryPath().str(), text.str());
}

long StructRec::addAuxFile(const char* name, const char* /*a*/, const char* /*b*/, const char* /*c*/) {
    numElems();
    String text("unsupported auxiliary field \"");
    text += name;
    text += '"';
    throw ErrorDictionary(getDictionaryPath().str(), text.str());
}

// ---------------------------------------------------------------------------
// Reading

String StructRec::readAll(bool compress) {
    long n = numElems();
    // A record of no fields that takes bytes reads none of them: it must
    // still find them in the data, as any field does.
    if (n == 0 && getSize() > 0) initRead();
    String text("[");
    for (long i = 0; i < n; ++i) {
        if (i > 0) text += ',';
        text += fields.data[i]->readAll(compress);
    }
    text += ']';
    return text;
}

String StructRec::joinHex(String (StructElem::*hex)(bool), bool compress) {
    long n = numElems();
    String text("");
    for (long i = 0; i < n; ++i) {
        text += '\'';
        text += (fields.data[i]->*hex)(compress);
    }
    return text;
}

String StructRec::readHex(bool compress) {
    return joinHex(&StructElem::readHex, compress);
}

String StructRec::readHexNum(bool compress) {
    return joinHex(&StructElem::readHexNum, compress);
}

std::stringstream& StructRec::readStr(std::stringstream& out, int append) {
    init();
    if (!soleField) readInvalid("String");
    return soleField->readStr(out, append);
}

String& StructRec::readString(String& target, int append) {
    init();
    if (!soleField) readInvalid("String");
    return soleField->readString(target, append);
}

zun::JulianDate& StructRec::readDateTime(zun::JulianDate& date) {
    init();
    if (!soleField) readInvalid("DateTime");
    return soleField->readDateTime(date);
}

#define VEXA_SOLE_READ(Name, Type, Word)   \
    Type& StructRec::Name(Type& v) {       \
        init();                            \
        if (!soleField) readInvalid(Word); \
        return soleField->Name(v);         \
    }

VEXA_SOLE_READ(readSShort, short, "SShort")
VEXA_SOLE_READ(readUShort, unsigned short, "UShort")
VEXA_SOLE_READ(readSLong, long, "SLong")
VEXA_SOLE_READ(readULong, unsigned long, "ULong")
VEXA_SOLE_READ(readSLLong, long long, "SLLong")
VEXA_SOLE_READ(readULLong, unsigned long long, "ULLong")
VEXA_SOLE_READ(readFloat, float, "Float")
VEXA_SOLE_READ(readDouble, double, "Double")

#undef VEXA_SOLE_READ

// ---------------------------------------------------------------------------
// Fields from the dictionary

void StructRec::init() {
    // A dictionary of no fields is read once too, not at every question.
    if (initialised || fields.count > 0) return;
    if (initialising) throw ErrorReferenceRecursion(getPathName().str());
    // Structure levels are 8-bit: a record can't hold fields below level 255.
    // A dictionary that contains itself reaches this however its data reads.
    int depth = 0;
    for (const StructElem* p = parent; p; p = p->parent) ++depth;
    const int maxLevel = 255;
    if (depth >= maxLevel) throw ErrorReferenceRecursion(getPathName().str(), "structure nested too deep");
    initialising = true;
    try {
        Dictionary dictionary(dictionaryPath.str());
        StructElem* prev = nullptr;
        StructElem* marker = nullptr;
        while (StructElem* e = dictionary.processNext(prev, this, marker)) {
            fields << e;
            if (marker) markers << marker;
            prev = e;
        }
        for (long i = 0; i < fields.count; ++i) fields.data[i]->initialise();
    } catch (...) {
        // A dictionary that fails leaves no half-built record behind: the
        // next request reads it again and meets the same error.
        clearFields();
        initialising = false;
        throw;
    }
    findSoleField();
    initialising = false;
    initialised = true;
}

void StructRec::findSoleField() {
    soleField = nullptr;
    if (fields.count == 1) {
        soleField = fields.data[0];
        return;
    }
    for (long i = 0; i < fields.count; ++i) {
        if (fields.data[i]->isVirtual()) continue;
        if (soleField) {
            soleField = nullptr;
            return;
        }
        soleField = fields.data[i];
    }
}

StructArray* StructRec::getSizeDep() {
    if (sizeDepKnown) return sizeDep;
    if (sizeText.isNull()) {
        sizeDep = nullptr;
    } else if (sizeText.length == 0) {
        long n = numElems();
        if (n > 0) {
            StructElem* last = fields.data[n - 1];
            StructArray* s = last->getSizeDep();
            StructArray* o = last->getOffsetDep();
            sizeDep = innerDep(o, s);
            size.registerWith(sizeDep);
        }
    } else {
        return StructRefSize::getSizeDep();
    }
    sizeDepKnown = true;
    return sizeDep;
}

void StructRec::setSizeByCumul() {
    long n = numElems();
    if (n == 0) {
        size = 0;
        return;
    }
    StructElem* last = fields.data[n - 1];
    long o = last->getOffset();
    long s = last->getSize();
    size = checkedSum(o, s);
}

void StructRec::initDictionary(const char* dictionary) {
    Dictionary d(*this, dictionary);
    dictionaryPath = d.path();
    recordType = d.name;
    if (!parent) {
        String standard(d.codingStandard);
        standard.uppercase();
        int order;
        if (standard.isEmpty() || standard == "BIG-ENDIAN") order = 0;
        else if (standard == "LITTLE-ENDIAN") order = 1;
        else if (standard == "LOCAL") order = zun::InputStream::HW_BYTE_ORDER;
        else {
            String text("invalid coding standard ");
            text += String(d.codingStandard).quote('"');
            throw ErrorDictionary(dictionaryPath.str(), text.str());
        }
        getBase()->input->setByteOrder(order);
    }
    if (!d.recordSize.isEmpty() && d.recordSize != "*") {
        if (d.recordSize.isInteger()) {
            long value = d.recordSize.toLong();
            if (value < 0) {
                String text = elemName + " invalid negative size '" + d.recordSize + "'";
                throw ErrorDictionary(dictionaryPath.str(), text.str());
            }
        }
        setSizeText(d.recordSize);
    }
}

String StructRec::lastFieldText() {
    long n = numElems();
    String text;
    getField(n - 1)->readString(text, 0);
    return text;
}

void StructRec::checkChain(zun::ObjAppendList<String>& seen, const String& next) {
    String step = dictionaryPath + "\n" + next.str();
    for (long i = 0; i < seen.count; ++i) {
        if (seen[i] != step) continue;
        String reason("auto-descriptive dictionary ");
        reason += String(dictionaryPath).quote('"');
        reason += " names ";
        reason += String(next.str()).quote('"');
        reason += " again";
        throw ErrorReferenceRecursion(getPathName().str(), reason.str());
    }
    seen << step;
}

void StructRec::autoDescribe(const char* dictionary) {
    initialising = false;
    initDictionary(dictionary);
    // The same dictionary reached again under the same name reads the same
    // bytes and names the same successor: the chain would never end.
    zun::ObjAppendList<String> seen;
    while (recordType.toUppercase() == "AUTO-DESCRIPTIVE") {
        String next = lastFieldText();
        checkChain(seen, next);
        clearFields();
        size = -1;
        offset = -1;
        offsetDepKnown = false;
        initDictionary(next.str());
    }
}

long StructRec::importDictionary(const char* name) {
    if (!name) return -1;
    init();
    long fieldCount = fields.count;
    long markerCount = markers.count;
    String savedPath = dictionaryPath;
    try {
        zun::ObjAppendList<String> seen;
        std::unique_ptr<Dictionary> dictionary(new Dictionary(name));
        for (;;) {
            dictionaryPath = dictionary->path();
            StructElem* prev = fields.count > 0 ? fields.data[fields.count - 1] : nullptr;
            StructElem* marker = nullptr;
            while (StructElem* e = dictionary->processNext(prev, this, marker)) {
                fields << e;
                if (marker) markers << marker;
                prev = e;
            }
            String kind = dictionary->name.toUppercase();
            dictionary.reset();
            if (kind != "AUTO-DESCRIPTIVE") break;
            if (fields.count == 0) throw ErrorFieldIndexInvalid(getPathName().str(), -1);
            String next;
            fields.data[fields.count - 1]->readString(next, 0);
            checkChain(seen, next);
            deleteFrom(fieldCount, markerCount);
            dictionary.reset(new Dictionary(*this, next.str()));
        }
    } catch (...) {
        deleteFrom(fieldCount, markerCount);
        dictionaryPath = savedPath;
        findSoleField();
        throw;
    }
    dictionaryPath = savedPath;
    for (long i = fieldCount; i < fields.count; ++i) fields.data[i]->initialise();
    findSoleField();
    return fields.count > 0 ? -1 : 0;
}

}  // namespace vexa
