// zun::CalcScanner: finds where one expression ends inside a longer text,
// without binding anything.
//
// It runs the scanning grammar, the expression grammar with its symbols left
// unbound, over a stream, and stops at the first token that the grammar can't
// take. So a comma-separated list of expressions splits at its top-level
// commas only: construct on the text, scan(); if the stream isn't at its end
// and stopChar is ',', skip(1) and flush() give the remainder.
#pragma once

#include <istream>
#include <sstream>

#include "calc/CalcLex.h"

namespace zun {

class CalcScanner : public CalcLex {
public:
    // What the whole input of the last scan turned out to be.
    enum Kind {
        KindNone = 0,      // nothing (scan not run, or empty)
        KindInteger = 1,   // an INTEGER, possibly after one '-'
        KindFloat = 2,     // a FLOAT, possibly after one '-'
        KindDQString = 3,  // a double-quoted string
        KindSQString = 4,  // a single-quoted string
        KindName = 5,      // a NAME
        KindBraced = 6,    // a {BRACED} name
        KindOther = 7      // any other expression
    };

    int exprKind = KindNone;
    int stopChar = -1;     // where the last scan stopped; 0 at the end, -1 before any scan

    explicit CalcScanner(const char* text);   // over an own copy of text
    explicit CalcScanner(std::istream& in);   // over the caller's stream
    ~CalcScanner() override;
    CalcScanner(const CalcScanner&) = delete;
    CalcScanner& operator=(const CalcScanner&) = delete;

    // The text up to the first token the grammar can't take (all of it when
    // the whole rest parses), after moving skip characters forward. The
    // stream then stands at that token. Null when the stream is at its end.
    String scan(int skip = 0);
    // Moves the stream n characters forward; if that fails the stream is
    // marked as being at its end.
    CalcScanner& skip(int n);
    // The whole rest of the stream, or null if it is at its end.
    String flush();
    // Whether the stream is at its end (or has failed).
    bool atEnd() const;
    std::istream& stream() { return *in; }

    int parse();                    // the scanning grammar; 0 on success
    void error(const char*) {}      // the scanning grammar reports nothing

private:
    std::istringstream* own = nullptr;
    std::istream* in;
};

}  // namespace zun
