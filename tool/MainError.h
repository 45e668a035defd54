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

// Runs body(argc, argv) inside the error frame and gives the exit status:
// - MainError: logged with "ERROR-", the usage text behind it unless its
//   code is 2; status 1.
// - any other zun::Exception: logged with "ERROR-"; status 1.
// - std::exception, anything else: logged as a system error; status 0.
int mainFrame(int argc, char** argv, int (*body)(int, char**), void (*usage)());
