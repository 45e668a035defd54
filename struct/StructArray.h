// Arrays: one child element object moved over the bytes of the file.
//
// An array keeps the index it stands on (activeIndex) and its one child; the
// child's offset says where that index lies. There is no table of element
// positions: everything derived from the current position (sizes, offsets,
// counts, union choices, statement results below the element) is a DepCell
// registered with the array, and a move writes -1 through them.
//
// An array of fixed-size elements jumps to any index in one step; one of
// variable elements walks forward one element at a time, and goes back by
// walking again from 0. An unbound array ("inf") runs to the end of the
// input and learns its count when a step finds no byte.
//
// A multi-dimensional array is a chain: the element of an array is again an
// array, one per dimension, named "0".
#pragma once

#include <memory>

#include "base/ObjAppendList.h"
#include "base/String.h"
#include "dict/Calc.h"
#include "struct/StructRec.h"

namespace zun {
class CalcNode;
class InputStream;
}  // namespace zun

namespace vexa {

class StructArrayBase : public StructTree {
public:
    long activeIndex = 0;           // index of the element the array stands on
    StructElem* element = nullptr;  // the one child; owned

    StructArrayBase(StructElem* prev, StructElem* parent, const char* name, const char* unit,
                    const char* sizeText);
    ~StructArrayBase() override;

    bool isAnArray() const override { return true; }
    ElemType getType() const override { return TypeArray; }
    long numElems() override = 0;
    zun::String getTypeStr(int level) override = 0;
    StructElem& operator[](long i) override { return *getElement(i); }
    // One component of a path: an index, "#", "#last", "#mid", or a search
    // "field=pattern" over an array of records.
    StructElem* getField(const char* text) override;

    // The whole array as one text, repeats folded to "(n times)" with compress.
    void writeText(TextSink& sink, TextForm form, bool compress) override;
    zun::String readAll(bool compress) override;
    zun::String readHex(bool compress) override;
    zun::String readHexNum(bool compress) override;

    // The list reads, element by element.
    void readAllA(bool compress, zun::ObjAppendListP<zun::String>& list) override;
    void readAllA(bool compress, zun::ObjAppendListP<zun::String>& list, const char* field) override;
    void readHexA(bool compress, zun::ObjAppendListP<zun::String>& list) override;
    void readHexA(bool compress, zun::ObjAppendListP<zun::String>& list, const char* field) override;
    void readHexNumA(bool compress, zun::ObjAppendListP<zun::String>& list) override;
    void readHexNumA(bool compress, zun::ObjAppendListP<zun::String>& list, const char* field) override;
    void readBufA(zun::ObjAppendListP<zun::RawBuffer>& list) override;
    void readBufA(zun::ObjAppendListP<zun::RawBuffer>& list, const char* field) override;
    void readStrA(zun::ObjAppendListP<std::stringstream>& list) override;
    void readStrA(zun::ObjAppendListP<std::stringstream>& list, const char* field) override;
    void readStringA(zun::ObjAppendListP<zun::String>& list) override;
    void readStringA(zun::ObjAppendListP<zun::String>& list, const char* field) override;
    void readDateTimeA(zun::ObjAppendListP<zun::JulianDate>& list) override;
    void readDateTimeA(zun::ObjAppendListP<zun::JulianDate>& list, const char* field) override;
    void readSShortA(zun::ObjAppendList<short>& list) override;
    void readSShortA(zun::ObjAppendList<short>& list, const char* field) override;
    void readUShortA(zun::ObjAppendList<unsigned short>& list) override;
    void readUShortA(zun::ObjAppendList<unsigned short>& list, const char* field) override;
    void readSLongA(zun::ObjAppendList<long>& list) override;
    void readSLongA(zun::ObjAppendList<long>& list, const char* field) override;
    void readULongA(zun::ObjAppendList<unsigned long>& list) override;
    void readULongA(zun::ObjAppendList<unsigned long>& list, const char* field) override;
    void readSLLongA(zun::ObjAppendList<long long>& list) override;
    void readSLLongA(zun::ObjAppendList<long long>& list, const char* field) override;
    void readULLongA(zun::ObjAppendList<unsigned long long>& list) override;
    void readULLongA(zun::ObjAppendList<unsigned long long>& list, const char* field) override;
    void readFloatA(zun::ObjAppendList<float>& list) override;
    void readFloatA(zun::ObjAppendList<float>& list, const char* field) override;
    void readDoubleA(zun::ObjAppendList<double>& list) override;
    void readDoubleA(zun::ObjAppendList<double>& list, const char* field) override;
    void readSCharA(zun::ObjAppendList<char>& list) override;
    void readSCharA(zun::ObjAppendList<char>& list, const char* field) override;
    void readUCharA(zun::ObjAppendList<unsigned char>& list) override;
    void readUCharA(zun::ObjAppendList<unsigned char>& list, const char* field) override;
    void readCharA(zun::ObjAppendList<char>& list) override;
    void readCharA(zun::ObjAppendList<char>& list, const char* field) override;

    // The distance in bytes between successive elements when all lie back
    // to back with the size of the first and the count is known; -1 when
    // they don't, or it isn't.
    virtual long fixedStride() { return -1; }
    // Moves to element i.
    virtual void setArray(long i) = 0;
    // Moves n elements on from the present one.
    virtual void stepArray(long n) = 0;

    // Moves to element i, checking it against the count, and names the
    // element by its index.
    StructElem* getElement(long i);
    // Moves n elements on, checking the count both ways.
    StructElem* getNextElement(long n);
    // The element count; an unbound array is walked to its end first, to
    // learn it. -1 while the count is being computed.
    long countElems();

protected:
    // Gives the element the name of the index it stands on.
    void nameElement();
    long namedIndex = -1;   // the index the element's name gives; -1 none yet
    // Element by element over the whole array (through the inner arrays of a
    // chain); `each` reads the element at hand. False when there is nothing.
    template <class F>
    void forEachElement(F each);
    template <class F>
    void forEachField(const char* field, F each);
    // The texts of the n elements from element 0 on, where the array stands.
    virtual void writeElements(TextSink& sink, TextForm form, bool compress, long n);

private:
    StructElem* search(const char* text);
};

class StructArray : public StructArrayBase {
public:
    DepCell dim;                      // element count, or -1 unknown, -2 computing, -3 unbound
    zun::String dimText;              // dimension statement; null for a plain integer
    std::unique_ptr<Calc> dimRef;     // the statement of dimText, made on first need
    zun::ObjAppendList<long> depLinks;   // indices into the root's depSlots

    // type, unit and detail (the element's size text) describe the element;
    // sizeText is the array's own size, dims the dimension column. Errors of
    // the dictionary stage are thrown as zun::String.
    StructArray(const char* type, const char* unit, const char* detail, StructElem* prev, StructElem* parent,
                const char* name, const char* sizeText, const char* dims);
    ~StructArray() override;

    long numElems() override;
    zun::String getTypeStr(int level) override;
    const zun::String& getUnit() override { return element->getUnit(); }
    void initialise() override { element->initialise(); }
    StructArray* getSizeDep() override;
    void setSizeByCumul() override;
    void setArray(long i) override;
    long fixedStride() override;
    void writeElements(TextSink& sink, TextForm form, bool compress, long n) override;
    void stepArray(long n) override;

    // The list reads that take all values of a run of numbers in one read.
    using StructArrayBase::readCharA;
    using StructArrayBase::readSCharA;
    using StructArrayBase::readUCharA;
    void readSShortA(zun::ObjAppendList<short>& list) override;
    void readSShortA(zun::ObjAppendList<short>& list, const char* field) override;
    void readUShortA(zun::ObjAppendList<unsigned short>& list) override;
    void readUShortA(zun::ObjAppendList<unsigned short>& list, const char* field) override;
    void readSLongA(zun::ObjAppendList<long>& list) override;
    void readSLongA(zun::ObjAppendList<long>& list, const char* field) override;
    void readULongA(zun::ObjAppendList<unsigned long>& list) override;
    void readULongA(zun::ObjAppendList<unsigned long>& list, const char* field) override;
    void readSLLongA(zun::ObjAppendList<long long>& list) override;
    void readSLLongA(zun::ObjAppendList<long long>& list, const char* field) override;
    void readULLongA(zun::ObjAppendList<unsigned long long>& list) override;
    void readULLongA(zun::ObjAppendList<unsigned long long>& list, const char* field) override;
    void readFloatA(zun::ObjAppendList<float>& list) override;
    void readFloatA(zun::ObjAppendList<float>& list, const char* field) override;
    void readDoubleA(zun::ObjAppendList<double>& list) override;
    void readDoubleA(zun::ObjAppendList<double>& list, const char* field) override;

    // The only place where the position changes: the element stands at
    // offset in the array and is element index. On an unbound array the
    // place is first checked to hold a byte; at the end the count is known.
    void setPtr(long offset, long index);
    // The parsed dimension statement, made and registered on first need.
    zun::CalcNode* getDimRef();
    // Appends slot to depLinks of this array and of every array above it;
    // nothing for a negative slot.
    void linkBack(long slot);

protected:
    // Writes -1 through every live slot of depLinks.
    void invalidate();

private:
    // Whether the element's offset and size depend on no array: then every
    // element has the size of the first and the array jumps.
    bool fixedElements();
    // The check of "inf": an unbound array must be the last real field on
    // every level up to the root, and inside no other array.
    void checkUnboundPlace();
    template <class T>
    void readNumbers(zun::ObjAppendList<T>& list, const char* field);
    // The fast path of readNumbers; false when it can't apply, before
    // anything is appended.
    template <class T>
    bool readRunOf(zun::ObjAppendList<T>& list, const char* field);
    // The element-by-element reads, by the type of the list.
    void slowRead(zun::ObjAppendList<short>& list, const char* field);
    void slowRead(zun::ObjAppendList<unsigned short>& list, const char* field);
    void slowRead(zun::ObjAppendList<long>& list, const char* field);
    void slowRead(zun::ObjAppendList<unsigned long>& list, const char* field);
    void slowRead(zun::ObjAppendList<long long>& list, const char* field);
    void slowRead(zun::ObjAppendList<unsigned long long>& list, const char* field);
    void slowRead(zun::ObjAppendList<float>& list, const char* field);
    void slowRead(zun::ObjAppendList<double>& list, const char* field);
    // The name that the dimension errors of the dictionary stage give.
    zun::String dimensionOwner() const;
};

}  // namespace vexa
