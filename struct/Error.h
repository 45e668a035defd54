// vexa::Error: the exceptions of the structure tree, family "VEXA".
//
// In every message an empty path name reads "root".
#pragma once

#include "base/Exception.h"
#include "base/String.h"

namespace vexa {

class Error : public zun::Exception {
public:
    explicit Error(const char* message = "") : zun::Exception(message) {}
    const char* family() const override { return "VEXA"; }

    // The path as messages show it: "root" for the empty path.
    static zun::String pathText(const char* path);
};

class ErrorInternal : public Error {
public:
    explicit ErrorInternal(const char* message) : Error(message) {}
    int code() const override { return 1; }
    const char* title() const override { return "internal error"; }
};

class ErrorValueRange : public Error {
public:
    explicit ErrorValueRange(const char* message) : Error(message) {}
    int code() const override { return 2; }
    const char* title() const override { return "value out-of-range"; }
};

// "field [path] (type) cannot be read as 'requested'"
class ErrorReadInvalid : public Error {
public:
    ErrorReadInvalid(const char* path, const char* type, const char* requested);
    int code() const override { return 3; }
    const char* title() const override { return "invalid read request"; }
};

class ErrorCalc : public Error {
public:
    explicit ErrorCalc(const char* message) : Error(message) {}
    int code() const override { return 4; }
    const char* title() const override { return "runtime error on virtual field"; }
};

// "field [field] in structure [path]"
class ErrorFieldNameInvalid : public Error {
public:
    ErrorFieldNameInvalid(const char* path, const char* field);
    int code() const override { return 5; }
    const char* title() const override { return "invalid field name"; }
};

// "index (n) in structure [path]"
class ErrorFieldIndexInvalid : public Error {
public:
    ErrorFieldIndexInvalid(const char* path, long index);
    int code() const override { return 6; }
    const char* title() const override { return "invalid field index"; }
};

// "reference [ref] in structure [path]", then " (reason)" when a reason is given.
class ErrorReferenceInvalid : public Error {
public:
    ErrorReferenceInvalid(const char* path, const char* reference, const char* reason = nullptr);
    int code() const override { return 7; }
    const char* title() const override { return "invalid reference"; }
};

// "reference recursion from structure [path]", then " (reason)" when given.
class ErrorReferenceRecursion : public Error {
public:
    explicit ErrorReferenceRecursion(const char* path, const char* reason = nullptr);
    int code() const override { return 8; }
    const char* title() const override { return "reference recursion"; }
};

class ErrorUnionSwitchInvalid : public Error {
public:
    explicit ErrorUnionSwitchInvalid(const char* message) : Error(message) {}
    int code() const override { return 9; }
    const char* title() const override { return "invalid union switch"; }
};

// Base of the three array index errors.
class ErrorArray : public Error {
public:
    explicit ErrorArray(const char* message) : Error(message) {}
};

// "array [path] index [index] is invalid"
class ErrorArrayIndexInvalid : public ErrorArray {
public:
    ErrorArrayIndexInvalid(const char* path, const char* index);
    int code() const override { return 10; }
    const char* title() const override { return "invalid array index"; }
};

// "array [path]"
class ErrorArrayIndexOverflow : public ErrorArray {
public:
    explicit ErrorArrayIndexOverflow(const char* path);
    int code() const override { return 11; }
    const char* title() const override { return "array index overflow"; }
};

// "array [path]"
class ErrorArrayIndexUnderflow : public ErrorArray {
public:
    explicit ErrorArrayIndexUnderflow(const char* path);
    int code() const override { return 12; }
    const char* title() const override { return "array index underflow"; }
};

// "path (reason)"
class ErrorAliasInvalid : public Error {
public:
    ErrorAliasInvalid(const char* path, const char* reason);
    int code() const override { return 13; }
    const char* title() const override { return "alias invalid"; }
};

class ErrorArrayReader : public Error {
public:
    explicit ErrorArrayReader(const char* message) : Error(message) {}
    int code() const override { return 14; }
    const char* title() const override { return "array reader error"; }
};

// "text in dictionary 'dictionary'"
class ErrorDictionary : public Error {
public:
    ErrorDictionary(const char* dictionary, const char* text);
    int code() const override { return 15; }
    const char* title() const override { return "dictionary error"; }
};

class ErrorNoParent : public Error {
public:
    ErrorNoParent() : Error("") {}
    int code() const override { return 16; }
    const char* title() const override { return "no parent to root structure"; }
};

}  // namespace vexa
