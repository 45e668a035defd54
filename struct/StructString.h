// Text leaves: strings of fixed or computed length, one raw character, and
// the empty Null element.
#pragma once

#include "struct/StructElem.h"
#include "struct/StructRec.h"

namespace vexa {

// A string of a fixed positive size.
class StructString : public StructElem {
public:
    StructString(StructElem* prev, StructElem* parent, const char* name, const char* unit, long size)
        : StructElem(prev, parent, name, unit, size) {}

    ElemType getType() const override { return TypeString; }
    zun::String getTypeStr(int level) override;
    // All bytes of the field, zero bytes included.
    zun::String& readString(zun::String& target, int append) override;
    // The bytes up to the first zero byte.
    std::stringstream& readStr(std::stringstream& out, int append) override;
    // The text escaped and in double quotes.
    zun::String readAll(bool compress) override;
};

// A string whose size is an expression (or 0).
class StructVarString : public StructRefSize {
public:
    StructVarString(StructElem* prev, StructElem* parent, const char* name, const char* unit, const char* sizeText)
        : StructRefSize(prev, parent, name, unit, sizeText) {}

    ElemType getType() const override { return TypeString; }
    zun::String getTypeStr(int level) override;
    zun::String& readString(zun::String& target, int append) override;
    std::stringstream& readStr(std::stringstream& out, int append) override;
    // The text in double quotes, with line feeds and tabs as \n and \t.
    zun::String readAll(bool compress) override;
};

// One raw character.
class StructAChar : public StructElem {
public:
    StructAChar(StructElem* prev, StructElem* parent, const char* name, const char* unit)
        : StructElem(prev, parent, name, unit, 1) {}

    ElemType getType() const override { return TypeAChar; }
    zun::String getTypeStr(int level) override;
    void setSize() override { size = 1; }
    // The character; a zero byte adds nothing.
    zun::String& readString(zun::String& target, int append) override;
    std::stringstream& readStr(std::stringstream& out, int append) override;
    // 'c' escaped, or '\0' for a zero byte.
    zun::String readAll(bool compress) override;
};

// An element without bytes.
class StructNull : public StructElem {
public:
    StructNull(StructElem* prev, StructElem* parent, const char* name)
        : StructElem(prev, parent, name, nullptr, 0) {}

    ElemType getType() const override { return TypeNull; }
    zun::String getTypeStr(int level) override;
    zun::String readAll(bool compress) override;
    zun::String& readString(zun::String& target, int append) override;
    std::stringstream& readStr(std::stringstream& out, int append) override;
};

// Reading shared by the string classes: the element's bytes as text.
zun::String& readStringBytes(StructElem& e, zun::String& target, int append);
std::stringstream& readStrBytes(StructElem& e, std::stringstream& out, int append);

}  // namespace vexa
