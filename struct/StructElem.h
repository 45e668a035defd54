// vexa::StructElem: the base of every element of the structure tree.
//
// An element describes bytes of the input without holding them. It knows its
// name, unit, previous sibling and parent; it works out where it lies and how
// long it is on demand, and reads its value straight from the input stream on
// each request. The only cached values are `offset` (from the parent's
// position) and `size`, both -1 while unknown; the arrays that can move them
// mark them stale through the dependency slots of the root (StructBase).
#pragma once

#include <iosfwd>
#include <sstream>
#include <string>

#include "base/JulianDate.h"
#include "base/ObjAppendList.h"
#include "base/RawBuffer.h"
#include "base/String.h"
#include "struct/DepCell.h"

namespace zun {
class InputStream;
class CalcBinder;
}  // namespace zun

namespace vexa {

class StructAlias;
class StructArray;
class StructBase;
class TextFolder;
class TextSink;
struct FieldLine;

// The three texts of an element: its value (readAll), its bytes in
// hexadecimal (readHex), and for numbers written as text the bytes of the
// binary number they stand for (readHexNum).
enum TextForm { FormAll, FormHex, FormHexNum };

enum ElemType {
    TypeRelativeOffset = -3,
    TypeAlignmentOffset = -2,
    TypeOffset = -1,
    TypeNone = 0,
    TypeNull,
    TypeUnion,
    TypeSpare,
    TypeAChar,
    TypeSChar,
    TypeUChar,
    TypeSShort,
    TypeUShort,
    TypeSLong,
    TypeULong,
    TypeSLLong,
    TypeULLong,
    TypeFloat,
    TypeDouble,
    TypeDateTime,
    TypeDate,
    TypeString,
    TypeASChar,
    TypeAUChar,
    TypeASShort,
    TypeAUShort,
    TypeASLong,
    TypeAULong,
    TypeASLLong,
    TypeAULLong,
    TypeAFloat,
    TypeADouble,
    TypeADateTime,
    TypeRecord = 29,
    TypeArray = 30
};

// The printed name of a type ("Relative Offset" .. "Array"); the empty text
// for TypeNone and values out of range.
const char* elemTypeName(int type);
// The type whose name equals word exactly; TypeNone for anything else.
ElemType elemType(const char* word);
// Whether a virtual field or a definition may have the type (the numbers,
// characters, dates and strings).
bool isValueType(int type);

class StructElem {
public:
    zun::String elemName;           // field name; empty on the root
    DepCell offset;                 // from the parent's position; -1 unknown
    DepCell size;                   // bytes; -1 unknown
    zun::String unit;
    StructElem* prev;               // previous sibling, not owned
    StructElem* parent;             // enclosing element, not owned; null on the root
    StructArray* offsetDep = nullptr;  // innermost array that moves `offset`
    bool offsetDepKnown = false;

    StructElem(StructElem* prev, StructElem* parent, const char* name, const char* unit, long size);
    StructElem(const StructElem&) = delete;
    StructElem& operator=(const StructElem&) = delete;
    virtual ~StructElem();

    virtual bool isVirtual() const { return false; }
    virtual bool isAnArray() const { return false; }
    virtual ElemType getType() const { return TypeNone; }
    // What joins the names of the children to this element's path: "." in
    // general, "#" below a union.
    virtual char pathSeparator() const { return '.'; }
    // Whether references and structure levels look through the element to
    // the element around it (a union, whose alternatives see the fields
    // beside it).
    virtual bool isSeenThrough() const { return false; }
    // Whether the element is a record: exploded into its fields by listings,
    // and the element of an array that takes the definitions given to the
    // array.
    virtual bool explodes() const { return false; }
    // Whether the type stays the same for all positions of the arrays at
    // structure level `level` and deeper.
    virtual bool isFixedType(int /*level*/) { return true; }
    virtual zun::String getTypeStr(int level) = 0;
    virtual const zun::String& getUnit() { return unit; }
    virtual const zun::String& getDictionaryPath() const;
    // Number of children; -1 for an element without children.
    virtual long numElems() { return -1; }
    virtual StructElem& operator[](long i);
    // Null or empty path: the element itself.
    virtual StructElem* getChild(const char* path);
    virtual long addVirtual(const char* name, ElemType type, const char* unit, const char* expression);
    virtual long addVirtualLink(const char* name, const char* a, const char* b, const char* c);
    virtual long addAuxFile(const char* name, const char* a, const char* b, const char* c);

    virtual long getPos();
    virtual long getOffset();
    virtual long getSize();

    // Reads. `append` 0 replaces what the target holds; `compress` is passed
    // down by containers and ignored by leaves.
    virtual zun::RawBuffer& readBuf(zun::RawBuffer& buffer, int append);
    virtual long readCPtr(char* buffer, long max);
    virtual zun::String readAll(bool compress);
    virtual zun::String readHex(bool compress);
    virtual zun::String readHexNum(bool compress);
    virtual std::stringstream& readStr(std::stringstream& out, int append);
    virtual zun::String& readString(zun::String& target, int append);
    virtual zun::JulianDate& readDateTime(zun::JulianDate& date);
    virtual short& readSShort(short& v);
    virtual unsigned short& readUShort(unsigned short& v);
    virtual long& readSLong(long& v);
    virtual unsigned long& readULong(unsigned long& v);
    virtual long long& readSLLong(long long& v);
    virtual unsigned long long& readULLong(unsigned long long& v);
    virtual float& readFloat(float& v);
    virtual double& readDouble(double& v);
    virtual char readChar();

    // The list family: the first form reads this element, the second the child
    // named by `field`. Classes that override one form of an overloaded name
    // bring the other back with a using-declaration.
    virtual void readAllA(bool compress, zun::ObjAppendListP<zun::String>& list);
    virtual void readAllA(bool compress, zun::ObjAppendListP<zun::String>& list, const char* field);
    virtual void readHexA(bool compress, zun::ObjAppendListP<zun::String>& list);
    virtual void readHexA(bool compress, zun::ObjAppendListP<zun::String>& list, const char* field);
    virtual void readHexNumA(bool compress, zun::ObjAppendListP<zun::String>& list);
    virtual void readHexNumA(bool compress, zun::ObjAppendListP<zun::String>& list, const char* field);
    virtual void readBufA(zun::ObjAppendListP<zun::RawBuffer>& list);
    virtual void readBufA(zun::ObjAppendListP<zun::RawBuffer>& list, const char* field);
    virtual void readStrA(zun::ObjAppendListP<std::stringstream>& list);
    virtual void readStrA(zun::ObjAppendListP<std::stringstream>& list, const char* field);
    virtual void readStringA(zun::ObjAppendListP<zun::String>& list);
    virtual void readStringA(zun::ObjAppendListP<zun::String>& list, const char* field);
    virtual void readDateTimeA(zun::ObjAppendListP<zun::JulianDate>& list);
    virtual void readDateTimeA(zun::ObjAppendListP<zun::JulianDate>& list, const char* field);
    virtual void readSShortA(zun::ObjAppendList<short>& list);
    virtual void readSShortA(zun::ObjAppendList<short>& list, const char* field);
    virtual void readUShortA(zun::ObjAppendList<unsigned short>& list);
    virtual void readUShortA(zun::ObjAppendList<unsigned short>& list, const char* field);
    virtual void readSLongA(zun::ObjAppendList<long>& list);
    virtual void readSLongA(zun::ObjAppendList<long>& list, const char* field);
    virtual void readULongA(zun::ObjAppendList<unsigned long>& list);
    virtual void readULongA(zun::ObjAppendList<unsigned long>& list, const char* field);
    virtual void readSLLongA(zun::ObjAppendList<long long>& list);
    virtual void readSLLongA(zun::ObjAppendList<long long>& list, const char* field);
    virtual void readULLongA(zun::ObjAppendList<unsigned long long>& list);
    virtual void readULLongA(zun::ObjAppendList<unsigned long long>& list, const char* field);
    virtual void readFloatA(zun::ObjAppendList<float>& list);
    virtual void readFloatA(zun::ObjAppendList<float>& list, const char* field);
    virtual void readDoubleA(zun::ObjAppendList<double>& list);
    virtual void readDoubleA(zun::ObjAppendList<double>& list, const char* field);
    virtual void readSCharA(zun::ObjAppendList<char>& list);
    virtual void readSCharA(zun::ObjAppendList<char>& list, const char* field);
    virtual void readUCharA(zun::ObjAppendList<unsigned char>& list);
    virtual void readUCharA(zun::ObjAppendList<unsigned char>& list, const char* field);
    virtual void readCharA(zun::ObjAppendList<char>& list);
    virtual void readCharA(zun::ObjAppendList<char>& list, const char* field);

    // One of the three texts, written to sink as it is made; the element's
    // readAll, readHex or readHexNum unless a class writes long texts in
    // pieces (arrays).
    virtual void writeText(TextSink& sink, TextForm form, bool compress);
    // The value texts of a run of n elements of this kind lying back to back
    // from where the input stands, added to folder; false, with nothing read,
    // where the element's text is no plain number.
    virtual bool writeRunTexts(TextFolder& folder, long n);

    // Runs of numbers, the fast path of the list reads of arrays: n values of
    // this element's kind lying back to back from where the input stands,
    // converted as the typed reads convert. Only plain number leaves can.
    // False when the input ended before the last value.
    virtual bool canReadRun() const { return false; }
    virtual bool readRun(short* target, long n);
    virtual bool readRun(unsigned short* target, long n);
    virtual bool readRun(long* target, long n);
    virtual bool readRun(unsigned long* target, long n);
    virtual bool readRun(long long* target, long n);
    virtual bool readRun(unsigned long long* target, long n);
    virtual bool readRun(float* target, long n);
    virtual bool readRun(double* target, long n);

    // Called on each child once a record has read its dictionary.
    virtual void initialise() {}
    // The element itself when `name` equals the field name exactly, else null.
    virtual StructElem* hasName(const char* name);
    // The element itself when the field name matches the wildcard pattern.
    virtual StructElem* matchesName(const char* pattern);
    // A record reads its dictionary here.
    virtual void init() {}
    virtual StructBase* getBase() const;
    virtual void setSize();
    // Array level at which the size stops changing: always 0.
    virtual int getSizeType() { return 0; }
    virtual StructArray* getOffsetDep();
    virtual StructArray* getSizeDep() { return nullptr; }

    // Non-virtual members.
    StructElem& getParent() const;
    // The n-th enclosing array, 0 the nearest; null for a negative n or none.
    StructArray* getParentArray(int n) const;
    unsigned char getStructLevel() const;
    zun::String getPathName() const;
    zun::String getPathName(int depth) const;
    // getPathName() written to out (anything with put(char) and
    // write(const char*, size_t)), without a text made on the way.
    template <class Out>
    void appendPathName(Out& out) const {
        if (parent && !parent->elemName.isEmpty()) {
            parent->appendPathName(out);
            out.put(parent->pathSeparator());
        }
        if (elemName.length > 0) out.write(elemName.text, static_cast<size_t>(elemName.length));
    }
    // The deeper of two arrays; the other when one of them is null.
    static StructArray* innerDep(StructArray* a, StructArray* b);

    // Seeks the input to the element and checks that a byte is there.
    zun::InputStream* initRead();
    // Throws the read error when the stream failed.
    void checkRead(zun::InputStream& in);
    // The same, and also when fewer bytes came than were wanted.
    void checkRead(zun::InputStream& in, unsigned long got, unsigned long wanted);
    // The element's bytes in a new array of getSize()+1 chars, zero-terminated.
    char* readData();
    // Before room is made for n bytes of the element: fails with the read
    // error when a seekable input ends before them, so that a size gone wrong
    // ends in that error instead of a huge allocation.
    void checkExtent(long n);
    // Whether the element starts past the end of the data (at the end is in
    // it: a field of no size may stand there). dataEnd is the size of a data
    // file that can seek, from dataEnd(); on a pipe (-1) it is read up to there.
    bool startsBeyondData(long dataEnd);
    long dataEnd();
    // The error of a read that failed or ran past the end of the input.
    [[noreturn]] void readFailed(zun::InputStream& in);

    // A reference written in a definition (self true) or from this element
    // (self false); `up` gets the number of array levels climbed, -1 from the
    // root. The caller owns the result.
    StructAlias* getRef(const char* ref, int& up, bool self);
    long childList(int level, const char* pattern, bool expand, zun::ObjAppendList<StructElem*>& out);
    long childList(const char* pattern, bool expand, zun::ObjAppendListP<StructAlias>& out);
    // A new binder on an alias of this element; the caller owns it until it
    // hands it to a parser.
    zun::CalcBinder* getCalcBinder(const char* symbolPrefix, const char* functionPrefix);

    // Makes the element described by one dictionary line (dict/ElemFactory.cpp).
    // Errors are thrown as zun::String.
    StructElem* createChild(StructElem* prev, const FieldLine& line);
    StructElem* createChild(StructElem* prev, const zun::String& name, const zun::String& unit,
                            const zun::String& type, const zun::String& size);

    // a + b, and a * b, for positions, offsets and sizes of this element: a
    // result beyond the 64-bit range fails with ErrorValueRange naming the
    // element, instead of wrapping round to a wrong place.
    long checkedSum(long a, long b) const;
    long checkedProduct(long a, long b) const;

protected:
    // The failure of a read this class can't answer.
    [[noreturn]] void readInvalid(const char* requested);
    // The path name for messages: "root" for the empty path.
    zun::String messagePath() const;

private:
    void warmOffsets();
    void warmOffsetDeps();
};

}  // namespace vexa
