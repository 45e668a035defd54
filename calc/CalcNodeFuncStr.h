// The builtin string and date functions of the expression language.
//
// Thin nodes over the operations of String and JulianDate: what they add is
// the order in which arguments are read, their defaults, and what a null
// string does. Text functions answer ValStr, the others ValNum. Dates travel
// as days from the start of 2000 (or of a given year) or as text.
#pragma once

#include "base/JulianDate.h"
#include "calc/CalcNodeFuncNum.h"

namespace zun {

// A function whose value is text.
class CalcNodeFuncText : public CalcNodeFunc {
public:
    using CalcNodeFunc::CalcNodeFunc;
    int valType() override { return ValStr; }
};

// strfill(n [, text]): text, one blank by default, n times.
class CalcNodeFuncStrFill : public CalcNodeFuncText {
public:
    explicit CalcNodeFuncStrFill(ObjAppendListP<CalcNode>* args, const char* name = "strfill")
        : CalcNodeFuncText(name, args, 1, 2) {}
    String valStr() override;
};

// padstr(text, width [, pad]): padded in front (positive width) or behind.
class CalcNodeFuncStrPad : public CalcNodeFuncText {
public:
    explicit CalcNodeFuncStrPad(ObjAppendListP<CalcNode>* args, const char* name = "padstr")
        : CalcNodeFuncText(name, args, 2, 3) {}
    String valStr() override;
};

// substr(text, from [, to]), both bounds inclusive; also text[from, to].
class CalcNodeFuncSubstr : public CalcNodeFuncText {
public:
    explicit CalcNodeFuncSubstr(ObjAppendListP<CalcNode>* args, const char* name = "substr")
        : CalcNodeFuncText(name, args, 2, 3) {}
    String valStr() override;
};

// strfind(text, what [, from]): index of what, or -1.
class CalcNodeFuncStrFind : public CalcNodeFunc {
public:
    explicit CalcNodeFuncStrFind(ObjAppendListP<CalcNode>* args, const char* name = "strfind")
        : CalcNodeFunc(name, args, 2, 3) {}
    double valNum() override;
};

// words(text, separators, first [, last]): words split at the first separator.
class CalcNodeFuncStrWords : public CalcNodeFuncText {
public:
    explicit CalcNodeFuncStrWords(ObjAppendListP<CalcNode>* args, const char* name = "words")
        : CalcNodeFuncText(name, args, 3, 4) {}
    String valStr() override;
};

// insert(text, what, position).
class CalcNodeFuncStrInsert : public CalcNodeFuncText {
public:
    explicit CalcNodeFuncStrInsert(ObjAppendListP<CalcNode>* args, const char* name = "insert")
        : CalcNodeFuncText(name, args, 3, 3) {}
    String valStr() override;
};

// escape(text): backslashes doubled, control characters spelled out.
class CalcNodeFuncStrEscape : public CalcNodeFuncText {
public:
    explicit CalcNodeFuncStrEscape(ObjAppendListP<CalcNode>* args, const char* name = "escape")
        : CalcNodeFuncText(name, args, 1, 1) {}
    String valStr() override;
};

// trim(text [, chars]): the first of chars, or blanks and tabs, off both ends.
class CalcNodeFuncStrTrim : public CalcNodeFuncText {
public:
    explicit CalcNodeFuncStrTrim(ObjAppendListP<CalcNode>* args, const char* name = "trim")
        : CalcNodeFuncText(name, args, 1, 2) {}
    String valStr() override;
};

// isnumber, isinteger, isdecimal, isalpha: 1 if every argument's text passes.
class CalcNodeFuncStrIsNumber : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncStrIsNumber(ObjAppendListP<CalcNode>* args, const char* name = "isnumber")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncStrIsInteger : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncStrIsInteger(ObjAppendListP<CalcNode>* args, const char* name = "isinteger")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncStrIsDecimal : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncStrIsDecimal(ObjAppendListP<CalcNode>* args, const char* name = "isdecimal")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncStrIsAlpha : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncStrIsAlpha(ObjAppendListP<CalcNode>* args, const char* name = "isalpha")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

// swap(text, from, to): each occurrence of from replaced by to.
class CalcNodeFuncSwap : public CalcNodeFuncText {
public:
    explicit CalcNodeFuncSwap(ObjAppendListP<CalcNode>* args, const char* name = "swap")
        : CalcNodeFuncText(name, args, 3, 3) {}
    String valStr() override;
};

class CalcNodeFuncLowercase : public CalcNodeFuncText {
public:
    explicit CalcNodeFuncLowercase(ObjAppendListP<CalcNode>* args, const char* name = "lowercase")
        : CalcNodeFuncText(name, args, 1, 1) {}
    String valStr() override;
};

class CalcNodeFuncUppercase : public CalcNodeFuncText {
public:
    explicit CalcNodeFuncUppercase(ObjAppendListP<CalcNode>* args, const char* name = "uppercase")
        : CalcNodeFuncText(name, args, 1, 1) {}
    String valStr() override;
};

// datestr(days [, baseyear]): the date as "DD-MON-YYYY hh:mm:ss", or in ISO
// form after the keyword "iso".
class CalcNodeFuncDateStr : public CalcNodeFuncText {
public:
    using Format = String (CalcNodeFuncDateStr::*)(const JulianDate& date) const;
    Format format = &CalcNodeFuncDateStr::valStrDMY;

    explicit CalcNodeFuncDateStr(ObjAppendListP<CalcNode>* args, const char* name = "datestr")
        : CalcNodeFuncText(name, args, 1, 2) {}
    CalcNode* keyword(const char* word, CalcNodeMem* via) override;
    String valStr() override;
    String valStrDMY(const JulianDate& date) const;
    String valStrISO(const JulianDate& date) const;
};

// datenum(text [, baseyear]): days since the start of baseyear, 2000 by default.
class CalcNodeFuncDateNum : public CalcNodeFunc {
public:
    explicit CalcNodeFuncDateNum(ObjAppendListP<CalcNode>* args, const char* name = "datenum")
        : CalcNodeFunc(name, args, 1, 2) {}
    double valNum() override;
};

// char(n): the one character of code n.
class CalcNodeFuncChar : public CalcNodeFuncText {
public:
    explicit CalcNodeFuncChar(ObjAppendListP<CalcNode>* args, const char* name = "char")
        : CalcNodeFuncText(name, args, 1, 1) {}
    String valStr() override;
};

// ascii(text): the first character's code, signed.
class CalcNodeFuncAscii : public CalcNodeFunc {
public:
    explicit CalcNodeFuncAscii(ObjAppendListP<CalcNode>* args, const char* name = "ascii")
        : CalcNodeFunc(name, args, 1, 1) {}
    double valNum() override;
};

class CalcNodeFuncStrLen : public CalcNodeFunc {
public:
    explicit CalcNodeFuncStrLen(ObjAppendListP<CalcNode>* args, const char* name = "strlen")
        : CalcNodeFunc(name, args, 1, 1) {}
    double valNum() override;
};

// strmin, strmax: the lowest and highest text, null strings ignored.
class CalcNodeFuncStrMin : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncStrMin(ObjAppendListP<CalcNode>* args, const char* name = "strmin")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    int valType() override { return ValStr; }
    String valStr() override;
};

class CalcNodeFuncStrMax : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncStrMax(ObjAppendListP<CalcNode>* args, const char* name = "strmax")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    int valType() override { return ValStr; }
    String valStr() override;
};

// strcount(text, what): non-overlapping occurrences of what.
class CalcNodeFuncStrCount : public CalcNodeFunc {
public:
    explicit CalcNodeFuncStrCount(ObjAppendListP<CalcNode>* args, const char* name = "strcount")
        : CalcNodeFunc(name, args, 2, 2) {}
    double valNum() override;
};

}  // namespace zun
