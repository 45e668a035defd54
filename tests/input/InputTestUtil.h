// Scratch folders, readers and an instrumented source for the input tests.
#pragma once

#include <string>

#include "base/Exception.h"
#include "input/InputStream.h"
#include "support/TempDir.h"

namespace inputtest {

using testsupport::pattern;
using testsupport::TempDir;

// Up to n bytes from place at.
inline std::string readAt(zun::InputStream& s, long at, unsigned long n) {
    std::string out(n, '\0');
    s.seek(at, std::ios::beg);
    out.resize(s.bufread(&out[0], n, 0));
    return out;
}

// The next line of s, read into a buffer of size bytes.
inline std::string nextLine(zun::InputStream& s, unsigned long size = 64) {
    std::string buf(size, '\0');
    s.getline(&buf[0], size, '\n');
    return buf.c_str();
}

// Everything from the current place, read in pieces of chunk bytes.
inline std::string readAll(zun::InputStream& s, unsigned long chunk) {
    std::string out, piece(chunk, '\0');
    for (;;) {
        unsigned long got = s.bufread(&piece[0], chunk, 0);
        out.append(piece, 0, got);
        if (got < chunk) return out;
    }
}

// "code: message" of the StdError that f throws, or "" when it throws none.
template <class F>
std::string stdErrorOf(F f) {
    try {
        f();
    } catch (zun::StdError& e) {
        return std::to_string(e.code()) + ": " + e.message.str();
    }
    return "";
}

// Passes everything to an inner stream and counts the reads and seeks.
class CountingSource : public zun::InputStream {
public:
    zun::InputStream* inner;
    int reads = 0, seeks = 0;

    explicit CountingSource(zun::InputStream* in) : zun::InputStream(in->name(-1)), inner(in) { fifo = in->isFifo(); }
    ~CountingSource() override { delete inner; }

    zun::InputStream& seek(long offset, std::ios::seekdir dir) override {
        ++seeks;
        inner->seek(offset, dir);
        return *this;
    }
    long offset() override { return inner->offset(); }
    zun::InputStream& getline(char* buf, unsigned long size, char delim) override {
        inner->getline(buf, size, delim);
        return *this;
    }
    bool eof() const override { return inner->eof(); }
    bool fail() const override { return inner->fail(); }
    int peek() override { return inner->peek(); }
    long size() override { return inner->size(); }
    unsigned long bufread(char* buf, unsigned long n, unsigned long done) override {
        ++reads;
        return inner->bufread(buf, n, done);
    }
};

}  // namespace inputtest
