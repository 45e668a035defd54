// zun::Args: the command line, handed out argument by argument.
//
// Options are found by prefix (option) or whole text (optional); each
// argument is used once, so the order of the calls decides which option takes
// an argument.
#pragma once

#include "base/ObjAppendList.h"
#include "base/String.h"

namespace zun {

class Args {
public:
    Args(int argc, char** argv);

    int count() const { return argCount; }
    // Positional argument i; null when i is out of range or, at or past
    // paramEnd, when an argument from paramEnd up to i is used already.
    // paramEnd becomes i + 1. Doesn't set the used flag.
    const char* param(int i);
    // The first unused argument from paramEnd on that begins with name. With
    // sep 0 the text behind name; with a separator the argument matches only
    // when sep or the end of the text follows name, and the text behind sep
    // (or the empty text) is the result.
    const char* option(const char* name, char sep);
    // The first unused argument from paramEnd on that equals name.
    bool optional(const char* name);
    // The argument behind the cursor, used or not; null at the last argument.
    const char* nextOption();
    int seekUnusedOption(bool fromEnd);
    const char* unusedOption();
    // All remaining unused arguments, each followed by one blank.
    int unusedOptions(String& list);

private:
    char** argv;
    int argCount;
    ObjAppendList<bool> used;
    int cursor = 0;
    int paramEnd = 0;
};

}  // namespace zun
