#include "base/Exception.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>

namespace zun {

std::ostream* Exception::err_out = &std::cerr;
String Exception::log_fmt(nullptr);
void (*Exception::formatLogger)(const Exception& e, const char* prefix, const char* suffix) = nullptr;

Exception::Exception(const char* text) : message(text) { time.init(); }

Exception::Exception(const Exception& other)
    : message(other.message),
      chained(other.chained ? new ExceptionRecord(*other.chained) : nullptr),
      time(other.time) {}

Exception& Exception::operator=(const Exception& other) {
    if (this == &other) return *this;
    ExceptionRecord* copy = other.chained ? new ExceptionRecord(*other.chained) : nullptr;
    delete chained;
    chained = copy;
    message = other.message;
    time = other.time;
    return *this;
}

Exception::~Exception() { delete chained; }

Exception& Exception::chain(const Exception& cause) {
    // the record is made first: cause may be part of the present chain
    ExceptionRecord* record = new ExceptionRecord(cause);
    delete chained;
    chained = record;
    return *this;
}

String Exception::signature() const {
    String sig(family());
    int c = code();
    if (c > 0) {
        char digits[16];
        std::snprintf(digits, sizeof digits, "%.3d", c);
        sig += digits;
    }
    return sig;
}

void Exception::log(const char* prefix, const char* suffix) const {
    // What was written to standard output before the line comes first.
    std::fflush(stdout);
    if (log_fmt.text && formatLogger) formatLogger(*this, prefix, suffix);
    else logDefault(prefix, suffix);
}

void Exception::logDefault(const char* prefix, const char* suffix) const {
    if (chained) {
        String more(suffix ? suffix : "");
        more += " (*)";
        chained->logDefault(prefix, more.text);
    }
    std::ostream& out = err_out ? *err_out : std::cerr;
    if (prefix) out << prefix;
    out << signature();
    if (code() > 0) {
        const char* t = title();
        out << ' ' << (t ? t : "");
    }
    String m = msg();
    if (m[0] != 0) out << " : " << m;
    out << std::endl;
}

ExceptionRecord::ExceptionRecord(const Exception& e)
    : Exception(e), familyText(e.family()), codeValue(e.code()), titleText(e.title()) {
    message = e.msg();
    if (!familyText.text) familyText = "";
    if (!titleText.text) titleText = "";
}

ExceptionRecord::ExceptionRecord(const ExceptionRecord& other)
    : Exception(other), familyText(other.familyText), codeValue(other.codeValue), titleText(other.titleText) {}

// errno is read before anything else can touch it
StdError::StdError(const char* text) : StdError(text, errno) { errno = 0; }

StdError::StdError(const char* text, int code) : Exception(text), errorCode(code) {}

const char* StdError::title() const { return errorCode ? std::strerror(errorCode) : ""; }

}  // namespace zun
