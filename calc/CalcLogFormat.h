// The error log written by a format statement of the expression language.
//
// With a format set, Exception::log(prefix, suffix) compiles it against these
// names, in order, and writes one line per exception of the chain, the
// deepest cause first, each the statement's value as a string:
//   err        the exception, with the fields err.family, err.code, err.sig,
//              err.title, err.msg and err.time (a date, with err.time.monthstr,
//              .month, .year, .mday, .yday, .wday, .hour, .min, .sec, .dsec);
//              err() is 1 while an exception is bound
//   err.seq    the exception's place in the chain, 0 for the last one
//   prefix, suffix   the texts given to log
//   pid, ppid  the process and its parent
// A format that fails to compile or to evaluate is dropped for good, and its
// error and then the exception are written in the default form.
#pragma once

namespace zun {

class Exception;

// Sets the format statement and installs the logger that runs it; a null or
// empty format restores the default form.
void setLogFormat(const char* format);

// The logger that setLogFormat installs as Exception::formatLogger.
void formatLog(const Exception& e, const char* prefix, const char* suffix);

}  // namespace zun
