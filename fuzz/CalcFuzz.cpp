// Fuzz target: a statement of the expression language through skelvor-calc's
// own run (skelvorCalcMain): parsed, reduced and evaluated once, or once per
// row of -n, with two parameters #k and #s defined. The input's first byte
// gives the rows (FuzzTarget.h), the rest is the statement.
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/FuzzTarget.h"
#include "tool/Calculator.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silence();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    long rows = fuzz::rows(data[0]);
    // the statement is one argument: it ends at a zero byte, and a leading
    // blank keeps it from being taken for an option
    std::string statement(reinterpret_cast<const char*>(data) + 1, size - 1);
    statement = " " + statement.substr(0, statement.find('\0'));
    std::vector<std::string> args{"skelvor-calc", "-D", "k=7", "-D", "s=abc"};
    if (rows >= 0) args.insert(args.end(), {"-n", std::to_string(rows)});
    args.push_back(statement);
    fuzz::run(skelvorCalcMain, args);
    return 0;
}
