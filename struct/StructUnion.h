// vexa::StructUnion: a field that is one of several alternatives at the same
// place of the file, chosen by a switch statement (the type column "?switch")
// among the alternatives listed by a dictionary (the unit column). The switch
// is evaluated again whenever an array it depends on has moved; everything a
// caller asks goes to the alternative in force, so a union looks like it.
//
// Paths show the union with "#": "body#data.size" is the field "size" of the
// alternative "data" of the union "body". A path may cast: "body#2" or
// "body#data" choose the alternative by number or by name. A cast by number
// lasts until an array the switch depends on moves; a cast by name gives the
// alternative to the caller only, and the next read goes by the switch again.
#pragma once

#include <memory>

#include "base/ObjAppendList.h"
#include "dict/Calc.h"
#include "struct/StructRec.h"

namespace zun {
class CalcNode;
}

namespace vexa {

class StructUnion : public StructRefSize {
public:
    zun::String switchText;
    unsigned char switchLevel = 255;       // level of the array the switch depends on; 0 if none
    std::unique_ptr<Calc> switchRef;       // the switch statement, made on first use
    DepCell switchValue;                   // the alternative in force; -1 unknown
    StructElem* active = nullptr;          // the alternative in force
    zun::ObjAppendList<StructElem*> choices;   // the alternatives in dictionary order; owned
    zun::ObjAppendList<StructElem*> markers;   // offset markers among them; owned
    // A number in the size column or in the header of the alternatives: the
    // size holds whatever alternative is in force, and no array moves it.
    bool sizeFixed = false;
    // The file of the alternatives, by device and inode: a union inside
    // its own alternatives, which are read at once, would never end.
    unsigned long long alternativesDevice = 0, alternativesInode = 0;

    // Reads the dictionary of the alternatives at once; errors of the
    // dictionary stage are thrown as zun::String.
    StructUnion(const char* switchText, const char* dictionary, StructElem* prev, StructElem* parent,
                const char* name, const char* size);
    ~StructUnion() override;

    ElemType getType() const override { return TypeUnion; }
    char pathSeparator() const override { return '#'; }
    bool isSeenThrough() const override { return true; }
    bool isFixedType(int level) override;
    zun::String getTypeStr(int level) override;
    const zun::String& getUnit() override;
    long numElems() override { return choices.count; }
    StructElem& operator[](long i) override;
    StructElem* getChild(const char* path) override;
    StructElem* hasName(const char* name) override;
    StructElem* matchesName(const char* pattern) override;
    void setSize() override;
    StructArray* getSizeDep() override;

    zun::RawBuffer& readBuf(zun::RawBuffer& buffer, int append) override;
    long readCPtr(char* buffer, long max) override;
    zun::String readAll(bool compress) override;
    zun::String readHex(bool compress) override;
    zun::String readHexNum(bool compress) override;
    void writeText(TextSink& sink, TextForm form, bool compress) override;
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
    char readChar() override;

    using StructElem::readAllA;
    using StructElem::readBufA;
    using StructElem::readCharA;
    using StructElem::readDateTimeA;
    using StructElem::readDoubleA;
    using StructElem::readFloatA;
    using StructElem::readHexA;
    using StructElem::readHexNumA;
    using StructElem::readSCharA;
    using StructElem::readSLLongA;
    using StructElem::readSLongA;
    using StructElem::readSShortA;
    using StructElem::readStrA;
    using StructElem::readStringA;
    using StructElem::readUCharA;
    using StructElem::readULLongA;
    using StructElem::readULongA;
    using StructElem::readUShortA;
    void readAllA(bool compress, zun::ObjAppendListP<zun::String>& list) override;
    void readHexA(bool compress, zun::ObjAppendListP<zun::String>& list) override;
    void readHexNumA(bool compress, zun::ObjAppendListP<zun::String>& list) override;
    void readBufA(zun::ObjAppendListP<zun::RawBuffer>& list) override;
    void readStrA(zun::ObjAppendListP<std::stringstream>& list) override;
    void readStringA(zun::ObjAppendListP<zun::String>& list) override;
    void readDateTimeA(zun::ObjAppendListP<zun::JulianDate>& list) override;
    void readSShortA(zun::ObjAppendList<short>& list) override;
    void readUShortA(zun::ObjAppendList<unsigned short>& list) override;
    void readSLongA(zun::ObjAppendList<long>& list) override;
    void readULongA(zun::ObjAppendList<unsigned long>& list) override;
    void readSLLongA(zun::ObjAppendList<long long>& list) override;
    void readULLongA(zun::ObjAppendList<unsigned long long>& list) override;
    void readFloatA(zun::ObjAppendList<float>& list) override;
    void readDoubleA(zun::ObjAppendList<double>& list) override;
    void readSCharA(zun::ObjAppendList<char>& list) override;
    void readUCharA(zun::ObjAppendList<unsigned char>& list) override;
    void readCharA(zun::ObjAppendList<char>& list) override;

    // The parsed switch, made and registered with its array on first use.
    zun::CalcNode* getUnionSwitchRef();
    // Makes alternative n the one in force; a negative n evaluates the switch.
    void activate(long n);
    // The alternative of that name, for the caller only; null or empty
    // evaluates the switch.
    void activate(const char* name);

private:
    // The alternative in force, the switch evaluated where it is stale.
    StructElem& current();
    // What follows the union's name in a cast "name#x": the union itself for
    // nothing, else the alternative x chose.
    StructElem* cast(const char* rest);
};

}  // namespace vexa
