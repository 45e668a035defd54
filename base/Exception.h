// zun::Exception and its base-library families: the error objects of the
// program and the one-line error log.
#pragma once

#include <iosfwd>

#include "base/JulianDate.h"
#include "base/String.h"

namespace zun {

class ExceptionRecord;

// Base of all errors; thrown by value, caught by reference.
class Exception {
public:
    String message;
    ExceptionRecord* chained = nullptr;   // the cause, owned
    JulianDate time;                      // when it was made

    static std::ostream* err_out;         // the log's stream: standard error
    static String log_fmt;                // format statement of the log; null: default form
    // Writes an exception by the format statement; installed by the expression
    // language together with log_fmt. Null: the default form only.
    static void (*formatLogger)(const Exception& e, const char* prefix, const char* suffix);

    explicit Exception(const char* message = "");
    Exception(const Exception& other);
    Exception& operator=(const Exception& other);
    virtual ~Exception();

    virtual const char* family() const = 0;
    virtual int code() const { return 0; }
    virtual const char* title() const { return ""; }
    virtual String msg() const { return message; }

    // Stores a frozen copy of cause as the chained exception; returns itself.
    Exception& chain(const Exception& cause);
    // family(), and when code() is positive the code by "%.3d".
    String signature() const;
    const JulianDate& timeStamp() const { return time; }

    // One line on err_out, the chained causes first.
    void log(const char* prefix, const char* suffix = nullptr) const;
    // The default form, whatever log_fmt holds.
    void logDefault(const char* prefix, const char* suffix = nullptr) const;
};

// A frozen copy of any exception, so that a chain outlives what was caught.
class ExceptionRecord : public Exception {
public:
    explicit ExceptionRecord(const Exception& e);
    ExceptionRecord(const ExceptionRecord& other);

    const char* family() const override { return familyText.str(); }
    int code() const override { return codeValue; }
    const char* title() const override { return titleText.str(); }

private:
    String familyText;
    int codeValue;
    String titleText;
};

// A system error: the code is an errno value, the title its strerror text.
class StdError : public Exception {
public:
    // Takes errno as the code, then sets errno to 0.
    explicit StdError(const char* text);
    StdError(const char* text, int code);

    const char* family() const override { return "STD"; }
    int code() const override { return errorCode; }
    const char* title() const override;
    void setCode(int code) { errorCode = code; }

private:
    int errorCode;
};

}  // namespace zun
