#include "struct/StructElem.h"

#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "base/Exception.h"
#include "dict/CalcBinder.h"
#include "dict/Dictionary.h"
#include "input/InputStream.h"
#include "struct/Error.h"
#include "struct/StructAlias.h"
#include "struct/StructArray.h"
#include "struct/StructBase.h"
#include "struct/TextSink.h"

using zun::quoted;
using zun::String;

namespace vexa {

namespace {

const String& emptyString() {
    static const String empty;
    return empty;
}

}  // namespace

StructElem::StructElem(StructElem* prev, StructElem* parent, const char* name, const char* unit, long size)
    : elemName(name ? name : ""), size(size), unit(unit), prev(prev), parent(parent) {}

StructElem::~StructElem() {
    size.release();
    offset.release();
}

const String& StructElem::getDictionaryPath() const {
    return parent ? parent->getDictionaryPath() : emptyString();
}

StructElem& StructElem::operator[](long i) {
    throw ErrorFieldIndexInvalid(getPathName().str(), i);
}

StructElem* StructElem::getChild(const char* path) {
    if (!path || !*path) return this;
    throw ErrorFieldNameInvalid(getPathName().str(), path);
}

long StructElem::addVirtual(const char* name, ElemType type, const char* unit, const char* expression) {
    StructElem& e = (*this)[0];
    if (!e.explodes()) return -1;
    return e.addVirtual(name, type, unit, expression);
}

long StructElem::addVirtualLink(const char* name, const char* a, const char* b, const char* c) {
    StructElem& e = (*this)[0];
    if (!e.explodes()) return -1;
    return e.addVirtualLink(name, a, b, c);
}

long StructElem::addAuxFile(const char* name, const char* a, const char* b, const char* c) {
    StructElem& e = (*this)[0];
    if (!e.explodes()) return -1;
    return e.addAuxFile(name, a, b, c);
}

// ---------------------------------------------------------------------------
// Position, offset, size

long StructElem::getPos() {
    long base = parent ? parent->getPos() : 0;
    return checkedSum(base, getOffset());
}

namespace {

[[noreturn]] void positionOverflow(const StructElem& e, char op, long a, long b) {
    String text = "field " + quoted(e.getPathName()) + " lies beyond the range of positions (";
    text << a;
    text += ' ';
    text += op;
    text += ' ';
    text << b;
    text += ')';
    throw ErrorValueRange(text.str());
}

}  // namespace

long StructElem::checkedSum(long a, long b) const {
    long r;
    if (__builtin_add_overflow(a, b, &r)) positionOverflow(*this, '+', a, b);
    return r;
}

long StructElem::checkedProduct(long a, long b) const {
    long r;
    if (__builtin_mul_overflow(a, b, &r)) positionOverflow(*this, '*', a, b);
    return r;
}

long StructElem::getOffset() {
    if (offset >= 0) return offset;
    if (!offsetDepKnown) getOffsetDep();
    if (!prev) {
        offset = 0;
        return offset;
    }
    if (prev->offset < 0) warmOffsets();
    long s = prev->getSize();
    long o = prev->getOffset();
    offset = checkedSum(o, s);
    return offset;
}

// A long run of siblings with unknown offsets is worked out from its front, so
// that the recursion through prev stays shallow however long the record.
void StructElem::warmOffsets() {
    const int limit = 256;
    int n = 0;
    StructElem* p = prev;
    while (p && p->offset < 0 && n <= limit) {
        p = p->prev;
        ++n;
    }
    if (n <= limit) return;
    std::vector<StructElem*> chain;
    for (p = prev; p && p->offset < 0; p = p->prev) chain.push_back(p);
    for (long i = static_cast<long>(chain.size()) - 1; i >= 0; i -= limit / 2) chain[i]->getOffset();
}

// The same for the dependencies of the offsets, which also ask their
// predecessors first.
void StructElem::warmOffsetDeps() {
    const int limit = 256;
    int n = 0;
    StructElem* p = prev;
    while (p && !p->offsetDepKnown && n <= limit) {
        p = p->prev;
        ++n;
    }
    if (n <= limit) return;
    std::vector<StructElem*> chain;
    for (p = prev; p && !p->offsetDepKnown; p = p->prev) chain.push_back(p);
    for (long i = static_cast<long>(chain.size()) - 1; i >= 0; i -= limit / 2) chain[i]->getOffsetDep();
}

long StructElem::getSize() {
    if (size >= 0) return size;
    setSize();
    getSizeDep();
    return size;
}

void StructElem::setSize() {
    throw ErrorInternal("invalid virtual call in StructElem::setSize");
}

StructArray* StructElem::innerDep(StructArray* a, StructArray* b) {
    if (!a) return b;
    if (!b) return a;
    return a->getStructLevel() > b->getStructLevel() ? a : b;
}

StructArray* StructElem::getOffsetDep() {
    if (offsetDepKnown) return offsetDep;
    offsetDepKnown = true;
    StructArray* nearest = getParentArray(0);
    if (!nearest) return nullptr;
    if (!prev) {
        offset = 0;
        return nullptr;
    }
    if (!prev->offsetDepKnown) warmOffsetDeps();
    StructArray* s = prev->getSizeDep();
    StructArray* o = prev->getOffsetDep();
    offsetDep = innerDep(o, s);
    if (!offsetDep) return nullptr;
    if (offsetDep->getStructLevel() >= getStructLevel()) offsetDep = nearest;
    offset.registerWith(offsetDep);
    return offsetDep;
}

// ---------------------------------------------------------------------------
// Tree position

StructElem& StructElem::getParent() const {
    if (!parent) throw ErrorNoParent();
    return *parent;
}

StructArray* StructElem::getParentArray(int n) const {
    if (n < 0) return nullptr;
    for (StructElem* p = parent; p; p = p->parent) {
        if (!p->isAnArray()) continue;
        // Index maps are arrays without positions in the file: nothing registers with them.
        if (n-- == 0) return dynamic_cast<StructArray*>(p);
    }
    return nullptr;
}

unsigned char StructElem::getStructLevel() const {
    unsigned char level = 0;
    for (const StructElem* p = parent; p; p = p->parent)
        if (p->parent == nullptr || !p->isSeenThrough()) ++level;
    return level;
}

String StructElem::getPathName() const {
    if (!parent || parent->elemName.isEmpty()) return elemName;
    String path = parent->getPathName();
    path += parent->pathSeparator();
    path += elemName;
    return path;
}

String StructElem::getPathName(int depth) const {
    if (!parent) return elemName;
    if (parent->isSeenThrough()) {
        String path = parent->getPathName(depth);
        path += parent->pathSeparator();
        path += elemName;
        return path;
    }
    if (depth < -1) {
        String path = parent->getPathName(depth + 1);
        path += '.';
        path += elemName;
        return path;
    }
    if (depth == -1) {
        String path(parent->elemName);
        path += '.';
        path += elemName;
        return path;
    }
    if (depth < parent->getStructLevel()) {
        String path = parent->getPathName(depth);
        path += '.';
        path += elemName;
        return path;
    }
    return elemName;
}

String StructElem::messagePath() const {
    return Error::pathText(getPathName().str());
}

StructBase* StructElem::getBase() const {
    return parent ? parent->getBase() : nullptr;
}

// ---------------------------------------------------------------------------
// Reading bytes

zun::InputStream* StructElem::initRead() {
    zun::InputStream* in = getBase()->input;
    long pos = getPos();
    // A position before the start of the input (an offset that moved back
    // too far) has no byte to read: the stream would ignore the seek.
    if (pos >= 0) in->seek(pos, std::ios::beg);
    if (pos < 0 || in->peek() < 0) {
        String path = getPathName();
        String name(in->name());
        path.quote('"');
        name.quote('"');
        String text("eof seeking field ");
        text += path;
        text += " at position ";
        text << pos;
        text += " in ";
        text += name;
        throw zun::StdError(text.str(), 5);
    }
    return in;
}

void StructElem::checkRead(zun::InputStream& in) {
    if (in.fail()) readFailed(in);
}

void StructElem::checkRead(zun::InputStream& in, unsigned long got, unsigned long wanted) {
    if (got < wanted || in.fail()) readFailed(in);
}

void StructElem::readFailed(zun::InputStream& in) {
    String path = getPathName();
    String name(in.name());
    path.quote('"');
    name.quote('"');
    String where;
    where << getPos();
    where += ',';
    where << getSize();
    where.quote('[');
    String text("reading field ");
    text += path;
    text += ' ';
    text += where;
    text += " in ";
    text += name;
    throw zun::StdError(text.str(), 5);
}

void StructElem::checkExtent(long n) {
    // Small fields are read straight away; the probe is for sizes that a
    // wrong size statement can make absurd.
    const long probeFrom = 1L << 20;
    if (n < probeFrom) return;
    zun::InputStream* in = getBase()->input;
    long pos = getPos();
    if (pos < 0) return;  // initRead reports it
    if (n > std::numeric_limits<long>::max() - pos) readFailed(*in);
    // A pipe can't come back from the probe; its reading fails on its own.
    if (in->isFifo()) return;
    in->seek(pos + n - 1, std::ios::beg);
    if (in->peek() < 0) readFailed(*in);
}

long StructElem::dataEnd() {
    zun::InputStream* in = getBase()->input;
    return in->isFifo() ? -1 : in->size();
}

bool StructElem::startsBeyondData(long dataEnd) {
    long pos = getPos();
    if (pos <= 0) return pos < 0;
    if (dataEnd >= 0) return pos > dataEnd;
    zun::InputStream* in = getBase()->input;
    in->seek(pos - 1, std::ios::beg);
    return in->peek() < 0;
}

char* StructElem::readData() {
    long n = getSize();
    if (n < 0) n = 0;
    checkExtent(n);
    std::unique_ptr<char[]> data(new (std::nothrow) char[n + 1]);
    if (!data) readFailed(*getBase()->input);
    if (n > 0) readCPtr(data.get(), n);
    data[n] = 0;
    return data.release();
}

long StructElem::readCPtr(char* buffer, long max) {
    long n = getSize();
    zun::InputStream* in = initRead();
    long k = max < n ? max : n;
    unsigned long got = k > 0 ? in->bufread(buffer, static_cast<unsigned long>(k), 0) : 0;
    checkRead(*in, got, k > 0 ? static_cast<unsigned long>(k) : 0);
    return n;
}

zun::RawBuffer& StructElem::readBuf(zun::RawBuffer& buffer, int append) {
    long n = getSize();
    if (!append) buffer.flush(true);
    if (n <= 0) return buffer;
    checkExtent(n);
    try {
        buffer.allocate(n);
    } catch (std::bad_alloc&) {
        readFailed(*getBase()->input);
    }
    char* tail = buffer.data + buffer.count;
    std::memset(tail, 0, n);
    buffer.count += n;
    buffer.free -= n;
    zun::InputStream* in = initRead();
    unsigned long got = in->bufread(tail, static_cast<unsigned long>(n), 0);
    checkRead(*in, got, static_cast<unsigned long>(n));
    return buffer;
}

char StructElem::readChar() {
    if (getSize() != 1) readInvalid("UChar");
    zun::InputStream* in = initRead();
    char c = 0;
    unsigned long got = in->bufread(&c, 1, 0);
    checkRead(*in, got, 1);
    return c;
}

String StructElem::readAll(bool /*compress*/) {
    String text;
    readString(text, 0);
    return text;
}

String StructElem::readHex(bool /*compress*/) {
    zun::RawBuffer buffer;
    readBuf(buffer, 1);
    return buffer.hex();
}

String StructElem::readHexNum(bool compress) {
    return readHex(compress);
}

void StructElem::readInvalid(const char* requested) {
    throw ErrorReadInvalid(getPathName().str(), getTypeStr(0).str(), requested);
}

std::stringstream& StructElem::readStr(std::stringstream& /*out*/, int /*append*/) {
    readInvalid("String");
}
String& StructElem::readString(String& /*target*/, int /*append*/) {
    readInvalid("String");
}
zun::JulianDate& StructElem::readDateTime(zun::JulianDate& /*date*/) {
    readInvalid("DateTime");
}
short& StructElem::readSShort(short& /*v*/) {
    readInvalid("SShort");
}
unsigned short& StructElem::readUShort(unsigned short& /*v*/) {
    readInvalid("UShort");
}
long& StructElem::readSLong(long& /*v*/) {
    readInvalid("SLong");
}
unsigned long& StructElem::readULong(unsigned long& /*v*/) {
    readInvalid("ULong");
}
long long& StructElem::readSLLong(long long& /*v*/) {
    readInvalid("SLLong");
}
unsigned long long& StructElem::readULLong(unsigned long long& /*v*/) {
    readInvalid("ULLong");
}
float& StructElem::readFloat(float& /*v*/) {
    readInvalid("Float");
}
double& StructElem::readDouble(double& /*v*/) {
    readInvalid("Double");
}

void StructElem::writeText(TextSink& sink, TextForm form, bool compress) {
    switch (form) {
    case FormAll:
        sink.write(readAll(compress));
        break;
    case FormHex:
        sink.write(readHex(compress));
        break;
    case FormHexNum:
        sink.write(readHexNum(compress));
        break;
    }
}

bool StructElem::writeRunTexts(TextFolder&, long) {
    return false;
}

#define VEXA_NO_RUN(T)                                                       \
    bool StructElem::readRun(T*, long) {                                     \
        throw ErrorInternal("invalid virtual call in StructElem::readRun");  \
    }

VEXA_NO_RUN(short)
VEXA_NO_RUN(unsigned short)
VEXA_NO_RUN(long)
VEXA_NO_RUN(unsigned long)
VEXA_NO_RUN(long long)
VEXA_NO_RUN(unsigned long long)
VEXA_NO_RUN(float)
VEXA_NO_RUN(double)

#undef VEXA_NO_RUN

// ---------------------------------------------------------------------------
// The list family. Values are read first and appended afterwards, so that a
// failure leaves the list as it was; the object forms append an empty object
// first and read into it.

void StructElem::readAllA(bool compress, zun::ObjAppendListP<String>& list) {
    String* s = new String(readAll(compress));
    list << s;
}
void StructElem::readAllA(bool compress, zun::ObjAppendListP<String>& list, const char* field) {
    getChild(field)->readAllA(compress, list);
}
void StructElem::readHexA(bool compress, zun::ObjAppendListP<String>& list) {
    String* s = new String(readHex(compress));
    list << s;
}
void StructElem::readHexA(bool compress, zun::ObjAppendListP<String>& list, const char* field) {
    getChild(field)->readHexA(compress, list);
}
void StructElem::readHexNumA(bool compress, zun::ObjAppendListP<String>& list) {
    String* s = new String(readHexNum(compress));
    list << s;
}
void StructElem::readHexNumA(bool compress, zun::ObjAppendListP<String>& list, const char* field) {
    getChild(field)->readHexNumA(compress, list);
}
void StructElem::readBufA(zun::ObjAppendListP<zun::RawBuffer>& list) {
    zun::RawBuffer* b = new zun::RawBuffer;
    list << b;
    readBuf(*b, 1);
}
void StructElem::readBufA(zun::ObjAppendListP<zun::RawBuffer>& list, const char* field) {
    getChild(field)->readBufA(list);
}
void StructElem::readStrA(zun::ObjAppendListP<std::stringstream>& list) {
    std::stringstream* s = new std::stringstream;
    list << s;
    readStr(*s, 1);
}
void StructElem::readStrA(zun::ObjAppendListP<std::stringstream>& list, const char* field) {
    getChild(field)->readStrA(list);
}
void StructElem::readStringA(zun::ObjAppendListP<String>& list) {
    String* s = new String;
    list << s;
    readString(*s, 0);
}
void StructElem::readStringA(zun::ObjAppendListP<String>& list, const char* field) {
    getChild(field)->readStringA(list);
}
void StructElem::readDateTimeA(zun::ObjAppendListP<zun::JulianDate>& list) {
    zun::JulianDate* d = new zun::JulianDate;
    list << d;
    readDateTime(*d);
}
void StructElem::readDateTimeA(zun::ObjAppendListP<zun::JulianDate>& list, const char* field) {
    getChild(field)->readDateTimeA(list);
}

#define VEXA_LIST_READ(Name, Type)                                                 \
    void StructElem::Name##A(zun::ObjAppendList<Type>& list) {                     \
        Type v;                                                                    \
        Name(v);                                                                   \
        list << v;                                                                 \
    }                                                                              \
    void StructElem::Name##A(zun::ObjAppendList<Type>& list, const char* field) { \
        getChild(field)->Name##A(list);                                            \
    }

VEXA_LIST_READ(readSShort, short)
VEXA_LIST_READ(readUShort, unsigned short)
VEXA_LIST_READ(readSLong, long)
VEXA_LIST_READ(readULong, unsigned long)
VEXA_LIST_READ(readSLLong, long long)
VEXA_LIST_READ(readULLong, unsigned long long)
VEXA_LIST_READ(readFloat, float)
VEXA_LIST_READ(readDouble, double)

#undef VEXA_LIST_READ

void StructElem::readSCharA(zun::ObjAppendList<char>& list) {
    char c = readChar();
    list << c;
}
void StructElem::readSCharA(zun::ObjAppendList<char>& list, const char* field) {
    getChild(field)->readSCharA(list);
}
void StructElem::readUCharA(zun::ObjAppendList<unsigned char>& list) {
    unsigned char c = static_cast<unsigned char>(readChar());
    list << c;
}
void StructElem::readUCharA(zun::ObjAppendList<unsigned char>& list, const char* field) {
    getChild(field)->readUCharA(list);
}
void StructElem::readCharA(zun::ObjAppendList<char>& list) {
    char c = readChar();
    list << c;
}
void StructElem::readCharA(zun::ObjAppendList<char>& list, const char* field) {
    getChild(field)->readCharA(list);
}

// ---------------------------------------------------------------------------
// Names

StructElem* StructElem::hasName(const char* name) {
    return elemName.cmp(name, -1) == 0 ? this : nullptr;
}

StructElem* StructElem::matchesName(const char* pattern) {
    return elemName.match(pattern) ? this : nullptr;
}

// ---------------------------------------------------------------------------
// References and lists

StructAlias* StructElem::getRef(const char* ref, int& up, bool self) {
    if (!ref) ref = "";
    if (isAnArray() && parent && parent->isAnArray()) {
        StructAlias* alias = parent->getRef(ref, up, self);
        ++up;
        return alias;
    }
    if (ref[0] == '.') {
        up = -1;
        return new StructAlias(*getBase(), ref + 1);
    }
    StructElem* start;
    up = 0;
    if (!self) {
        start = this;
    } else {
        if (ref[0] == '+') {
            if (isAnArray())
                throw ErrorReferenceInvalid(getPathName().str(), ref, "cannot self refer to array element");
            if (!ref[1]) throw ErrorReferenceInvalid(getPathName().str(), ref, "invalid field definition");
            return new StructAlias(*this, ref + 1);
        }
        start = parent;
    }
    if (!start) throw ErrorReferenceInvalid(getPathName().str(), ref);
    const char* p = ref;
    StructElem* e = start;
    for (;;) {
        while (e->parent && e->isSeenThrough()) e = e->parent;
        if (std::strncmp(p, "--.", 3) == 0) {
            if (!e->parent) throw ErrorReferenceInvalid(getPathName().str(), ref);
            if (e->isAnArray()) ++up;
            e = e->parent;
            while (e->isAnArray() && e->parent) {
                ++up;
                e = e->parent;
                while (e->parent && e->isSeenThrough()) e = e->parent;
            }
            p += 3;
        } else if (std::strncmp(p, "-.", 2) == 0) {
            if (!e->parent) throw ErrorReferenceInvalid(getPathName().str(), ref);
            if (e->isAnArray()) ++up;
            e = e->parent;
            p += 2;
        } else {
            break;
        }
    }
    if (!*p) return new StructAlias(*e);
    return new StructAlias(*e, p);
}

long StructElem::childList(int level, const char* pattern, bool expand, zun::ObjAppendList<StructElem*>& out) {
    if (!pattern || !*pattern) {
        if (expand && explodes()) return childList(level, "*", expand, out);
        if (expand && isSeenThrough()) {
            StructElem* alternative = getChild(nullptr);
            if (alternative->explodes() && isFixedType(level))
                return alternative->childList(level, "*", expand, out);
        }
        out << this;
        return 1;
    }
    String head;
    int used = Dictionary::getStructField(pattern, head);
    const char* rest = pattern + used;
    long before = out.count;
    if (isAnArray()) return 0;
    if (isSeenThrough()) {
        if (isFixedType(level)) getChild(nullptr)->childList(level, pattern, expand, out);
        return out.count - before;
    }
    long n = numElems();
    for (long i = 0; i < n; ++i) {
        StructElem* m = (*this)[i].matchesName(head.str());
        if (m) m->childList(level, rest, expand, out);
    }
    return out.count - before;
}

long StructElem::childList(const char* pattern, bool expand, zun::ObjAppendListP<StructAlias>& out) {
    StructAlias alias(*this);
    return alias.childList(pattern, expand, out);
}

zun::CalcBinder* StructElem::getCalcBinder(const char* symbolPrefix, const char* functionPrefix) {
    return new CalcBinder(StructAlias(*this), symbolPrefix, functionPrefix);
}

}  // namespace vexa
