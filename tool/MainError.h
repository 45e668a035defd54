// MainError and the error frame of the programs.
#pragma once

#include "base/Exception.h"

// An error of the command line. Code 0 is a warning (logged, never thrown),
// 1 an error of use (the usage text follows), 2 an error in a value.
class MainError : public zun::Exception {
public:
    MainError(int code, const char* message) : zun::Exception(message), errorCode(code) {}
    const char* family() const override { return "MAIN"; }
    int code() const override { return errorCode; }

private:
    int errorCode;
};

// Runs body(argc, argv) inside the error frame and gives the exit status.
// Standard streams that are closed are first held open on a device that
// takes no writes, so that no file opened later takes their place. The
// output left in standard output's buffer is written before the end. Then:
// - MainError: logged with "ERROR-", the usage text behind it unless its
//   code is 2; status 1.
// - any other zun::Exception (a failure to write the output too): logged
//   with "ERROR-"; status 1.
// - std::exception, anything else: logged as a system error; status 1.
int mainFrame(int argc, char** argv, int (*body)(int, char**), void (*usage)());

// Flushes standard output; a failure to write it (a full disk, a closed
// stream) is a zun::StdError with the system's code, to be reported once.
// A caller that wrote to standard output clears errno before it writes, so
// that the code of a write that failed then is the one reported.
void flushOutput();
