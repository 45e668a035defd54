// What the fuzz targets share: the layout of their inputs (also known to the
// program that makes their seeds from the end-to-end cases), and the silence
// of the programs' output.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "base/Exception.h"

namespace fuzz {

// skelvor: parts separated by a line "----": the dictionary t.dd, the
// sub-dictionary s.dd (reached from t.dd as "@s"), the data file data.bin,
// and arguments, one a line, that follow "<data.bin> -d=<t>".
enum Part {
    Dictionary,
    SubDictionary,
    Data,
    Arguments,
    PartCount
};
const std::string separator = "\n----\n";

// The parts of input; missing ones are empty, the last takes the rest.
inline std::vector<std::string> split(const std::string& input) {
    std::vector<std::string> parts;
    size_t from = 0;
    for (int i = 0; i + 1 < PartCount; ++i) {
        size_t at = std::min(input.find(separator, from), input.size());
        parts.push_back(input.substr(from, at - from));
        from = std::min(at + separator.size(), input.size());
    }
    parts.push_back(input.substr(from));
    return parts;
}

inline std::string join(const std::vector<std::string>& parts) {
    std::string input;
    for (size_t i = 0; i < parts.size(); ++i) input += (i ? separator : "") + parts[i];
    return input;
}

// skelvor-calc: the first byte gives the rows (its value modulo 6, less 1:
// '0' no -n, '1' to '5' -n 0 to 4), the rest is the statement.
inline long rows(unsigned char first) { return first % 6 - 1; }
inline char rowsByte(long rows) { return static_cast<char>('1' + (rows < 0 ? -1 : rows > 4 ? 4 : rows)); }

// Sends standard output and the error log nowhere (the fuzzer's reports are
// on standard error), and gives an empty standard input.
inline void silence() {
    static struct NullBuffer : std::streambuf {
        int overflow(int c) override { return c; }
    } nullBuffer;
    static std::ostream nullStream(&nullBuffer);
    int in = open("/dev/null", O_RDONLY), out = open("/dev/null", O_WRONLY);
    if (in >= 0) dup2(in, 0);
    if (out >= 0) dup2(out, 1);
    zun::Exception::err_out = &nullStream;
}

// Runs a program's run (skelvorMain, skelvorCalcMain) on args, the first
// the program's name. An error it throws is the program's answer to a bad
// input (it logs it and ends with status 1); anything else goes on.
inline void run(int (*programRun)(int, char**), std::vector<std::string> args) {
    std::vector<char*> argv;
    for (std::string& a : args) argv.push_back(&a[0]);
    argv.push_back(nullptr);
    try {
        programRun(static_cast<int>(args.size()), argv.data());
    } catch (zun::Exception&) {}
}

}  // namespace fuzz
