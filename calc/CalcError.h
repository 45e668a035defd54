// zun::CalcError: the errors of the expression language, family "CALC".
//
// A location is added by chainStmt: the statement text with " >>> " before
// column `first` and " <<< " after column `last`, escaped, in parentheses,
// behind "in statement ".
#pragma once

#include "base/Exception.h"

namespace zun {

class CalcError : public Exception {
public:
    explicit CalcError(const char* message = "") : Exception(message) {}
    // A parse error over a statement text, marked from column first to last.
    CalcError(const char* statement, int first, int last) : Exception("") { chainStmt(statement, first, last); }

    const char* family() const override { return "CALC"; }
    int code() const override { return 1; }
    const char* title() const override { return "parse error"; }

    // Appends the location: a blank if the message isn't empty, then
    // "in statement (" text with the marks ")".
    CalcError& chainStmt(const char* statement, int first, int last);
};

#define ZUN_CALC_ERROR(Class, Code, Title)                                      \
    class Class : public CalcError {                                            \
    public:                                                                     \
        using CalcError::CalcError;                                             \
        int code() const override { return Code; }                              \
        const char* title() const override { return Title; }                    \
    };

// Message: the operator in parentheses, then the location.
ZUN_CALC_ERROR(CalcErrorOperatorInvalid, 2, "invalid operator")
ZUN_CALC_ERROR(CalcErrorOperatorExpected, 3, "operator expected")
ZUN_CALC_ERROR(CalcErrorUnarySeqInvalid, 4, "forbidden compound operator sequence")
ZUN_CALC_ERROR(CalcErrorSemicolonExpected, 5, "semicolon Expected")
ZUN_CALC_ERROR(CalcErrorFunctionUnknown, 8, "function unknown")
ZUN_CALC_ERROR(CalcErrorReduction, 11, "error reducing expression")
ZUN_CALC_ERROR(CalcErrorIterator, 12, "error creating iterator")
ZUN_CALC_ERROR(CalcErrorUnboundSelf, 13, "invalid self reference")
ZUN_CALC_ERROR(CalcErrorPropertyInvalid, 14, "unsupported property or option")
ZUN_CALC_ERROR(CalcErrorMethodInvalid, 15, "unsupported method")
ZUN_CALC_ERROR(CalcErrorArgNotConst, 16, "invalid non-const argument")
ZUN_CALC_ERROR(CalcErrorAssignmentInvalid, 17, "invalid assignment")

#undef ZUN_CALC_ERROR

// `Function "` name `" takes at least ` n ` argument(s)`
class CalcErrorArgsMissing : public CalcError {
public:
    CalcErrorArgsMissing(const char* function, long n);
    int code() const override { return 6; }
    const char* title() const override { return "missing function arguments"; }
};

// `Function "` name `" takes at most ` n ` argument(s)`
class CalcErrorArgsTooMany : public CalcError {
public:
    CalcErrorArgsTooMany(const char* function, long n);
    int code() const override { return 7; }
    const char* title() const override { return "too many function arguments"; }
};

// text ` in call to function "` name `"`
class CalcErrorFunctionCallInvalid : public CalcError {
public:
    CalcErrorFunctionCallInvalid(const char* function, const char* text);
    int code() const override { return 9; }
    const char* title() const override { return "invalid function call"; }
};

// The name in double quotes; the two-argument form prefixes a context and
// " while evaluating symbol ".
class CalcErrorSymbolInvalid : public CalcError {
public:
    explicit CalcErrorSymbolInvalid(const char* symbol);
    CalcErrorSymbolInvalid(const char* context, const char* symbol);
    int code() const override { return 10; }
    const char* title() const override { return "invalid symbol"; }
};

// `Operation "` op `" is invalid or incompatible`; with a second text, two
// blanks and that text in parentheses.
class CalcErrorOperationInvalid : public CalcError {
public:
    explicit CalcErrorOperationInvalid(const char* operation, const char* detail = nullptr);
    int code() const override { return 18; }
    const char* title() const override { return "invalid operation"; }
};

}  // namespace zun
