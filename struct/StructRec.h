// The sized element, the element with children, and the record read from a
// dictionary on first use.
//
// StructRefSize: an element whose size may be an expression of other fields.
// StructTree: a StructRefSize with children that knows the root.
// StructRec: a StructTree whose children come from a dictionary file; the
// ordinary record and, through StructBase, the root of every tree.
#pragma once

#include <memory>

#include "base/ObjAppendList.h"
#include "base/String.h"
#include "dict/Calc.h"
#include "struct/StructElem.h"

namespace vexa {

class StructRefSize : public StructElem {
public:
    zun::String sizeText;                // the size expression; null for a plain integer
    std::unique_ptr<Calc> sizeRef;       // the statement of sizeText, made on first use
    StructArray* sizeDep = nullptr;      // array that moves the size; not owned
    bool sizeDepKnown = false;

    // An integer size text sets the size; a negative one throws a zun::String.
    StructRefSize(StructElem* prev, StructElem* parent, const char* name, const char* unit, const char* sizeText);

    void setSize() override;
    StructArray* getSizeDep() override;
    // The parsed size expression, made on first call.
    zun::CalcNode* getSizeRef();

protected:
    // Where the names of the size statement are looked up from, and the text
    // to parse: the element itself and the whole text, unless a class says
    // otherwise.
    virtual StructElem* sizeBinding(const char*& /*text*/) { return this; }
    // Replaces the size text (a dictionary header's size word); the parsed
    // statement is dropped.
    void setSizeText(const zun::String& text);
};

class StructTree : public StructRefSize {
public:
    StructBase* base;   // the root; not owned

    StructTree(StructBase* base, StructElem* prev, StructElem* parent, const char* name, const char* unit,
               const char* sizeText);

    // Splits the path at its first "." and resolves each head with getField.
    StructElem* getChild(const char* path) override;
    StructBase* getBase() const override { return base; }
    void setSize() override;
    // The size when no size text is given: from the children.
    virtual void setSizeByCumul() = 0;
    // One component of a field path.
    virtual StructElem* getField(const char* name) = 0;
};

class StructRec : public StructTree {
public:
    zun::String recordType;       // name column of the dictionary's header
    zun::String dictionaryPath;   // path of the dictionary file opened
    zun::ObjAppendList<StructElem*> fields;   // in dictionary order; owned
    StructElem* soleField = nullptr;          // the one real field, or null
    zun::ObjAppendList<StructElem*> markers;  // offset markers; owned; not in fields
    bool initialising = false;                // recursion guard of init()
    bool initialised = false;                 // the fields are read, even when there are none

    StructRec(const char* dictionary, StructBase& base, StructElem* prev, StructElem* parent, const char* name,
              const char* unit, const char* sizeText);
    ~StructRec() override;

    ElemType getType() const override { return TypeRecord; }
    bool explodes() const override { return true; }
    zun::String getTypeStr(int level) override;
    const zun::String& getUnit() override;
    const zun::String& getDictionaryPath() const override { return dictionaryPath; }
    long numElems() override;
    StructElem& operator[](long i) override { return *getField(i); }
    long addVirtual(const char* name, ElemType type, const char* unit, const char* expression) override;
    long addVirtualLink(const char* name, const char* a, const char* b, const char* c) override;
    long addAuxFile(const char* name, const char* a, const char* b, const char* c) override;

    zun::String readAll(bool compress) override;
    zun::String readHex(bool compress) override;
    zun::String readHexNum(bool compress) override;
    std::stringstream& readStr(std::stringstream& out, int append) override;
    zun::String& readString(zun::String& target, int append) override;
    zun::JulianDate& readDateTime(zun::JulianDate& date) override;
    short& readSShort(short& v) override;
    unsigned short& readUShort(unsigned short& v) override;
    long& readSLong(long& v) override;
    unsigned long& readULong(unsigned long& v) override;
    long long& readSLLong(long long& v) override;
    unsigned long long& readULLong(unsigned long long& v) override;
    float& readFloat(float& v) override;
    double& readDouble(double& v) override;

    void init() override;
    StructArray* getSizeDep() override;
    void setSizeByCumul() override;
    StructElem* getField(const char* name) override;

    StructElem* getField(long i);
    // A size text "+ expression" looks its names up from the first field.
    StructElem* sizeBinding(const char*& text) override;
    // Opens the dictionary and takes its header: path, record type, byte
    // order (root only) and size word.
    void initDictionary(const char* dictionary);
    // initDictionary, then follows auto-descriptive dictionaries.
    void autoDescribe(const char* dictionary);
    // Appends the fields of a further dictionary, taken as a path (see
    // File::importDictionary).
    long importDictionary(const char* name);

protected:
    // The root's form: no dictionary is read here.
    explicit StructRec(StructBase& root);
    // Deletes the fields and markers and empties both lists.
    void clearFields();

private:
    // Each field's hexadecimal text behind a "'".
    zun::String joinHex(zun::String (StructElem::*hex)(bool), bool compress);
    void findSoleField();
    void deleteFrom(long fieldCount, long markerCount);
    // The last field's value as text: the next dictionary of an auto-descriptive chain.
    zun::String lastFieldText();
    // Throws ErrorReferenceRecursion when the chain comes back to a step it made.
    void checkChain(zun::ObjAppendList<zun::String>& seen, const zun::String& next);
};

}  // namespace vexa
