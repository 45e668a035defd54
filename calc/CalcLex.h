// zun::CalcLex: the token rules of the expression language, with the column
// bookkeeping and the record of the scanned text.
//
// CalcFlexLexer is the recogniser generated from CalcLex.l; CalcLex derives
// from it and runs the generated yylex() as its own. Every token (skipped text
// included) advances the location: first_column = last_column + 1, and
// last_column grows by the length of the match, so columns are 1-based
// offsets into the scanned text. Lines are not tracked.
//
// The semantic value of a token is left in the one global Calclval: an
// integer (INTEGER), a double (FLOAT) or a heap String (every string-valued
// token), which the consumer of the token owns and deletes. Parsers nest, so
// whoever runs a parse saves Calclval before and restores it afterwards.
#pragma once

#include <istream>
#include <string>

#include "base/ObjAppendList.h"
#include "base/String.h"

// The generated recogniser class: flex's own interface header, once per
// translation unit (the generated scanner includes it by itself).
#if !defined(yyFlexLexerOnce)
#undef yyFlexLexer
#define yyFlexLexer CalcFlexLexer
#include <FlexLexer.h>
#undef yyFlexLexer
#endif

namespace zun {

class CalcNode;

// Token kinds; both grammars declare the same numbers.
namespace CalcToken {
enum : int {
    END = 0,
    SQ_STRING = 258,
    DQ_STRING = 259,
    INTEGER = 260,
    FLOAT = 261,
    NAME = 262,
    BRACED = 263,
    INVALID = 264,
    EQ = 265,
    NE = 266,
    GE = 267,
    LE = 268,
    AND = 269,
    OR = 270,
    SHR = 271,
    SHL = 272,
    OPER = 273
};
// Whether a token of that kind carries a heap String in Calclval.
inline bool hasString(int token) {
    return token == SQ_STRING || token == DQ_STRING || token == NAME || token == BRACED || token == INVALID ||
           token == OPER;
}
}  // namespace CalcToken

// The location of a token. Lines stay 1; columns count bytes from 1.
struct CalcLocation {
    int first_line = 1;
    int first_column = 0;
    int last_line = 1;
    int last_column = 0;
};

// The semantic value of the grammars: the token values, and the nodes and
// argument lists that the parser's rules build from them.
union CalcValue {
    long long integer;
    double real;
    String* str;
    CalcNode* node;
    ObjAppendListP<CalcNode>* args;
};

class CalcLex : public CalcFlexLexer {
public:
    CalcLocation location;   // of the last token
    // Every character consumed since the scan began, comments and whitespace
    // included. Kept current by scanned(), and at the end of each run.
    String scannedText;

    CalcLex();
    ~CalcLex() override;

    int yylex() override;    // the generated recogniser
    int nextToken() { return yylex(); }

    // Starts a fresh scan of in: columns and scanned text cleared, start
    // condition back to the initial one.
    void rearm(std::istream& in);
    // scannedText brought up to date, and returned.
    const String& scanned();
    // Characters consumed so far.
    long scannedLength() const { return static_cast<long>(scanBuffer.size()); }
    // The source text from column first to column last, both included.
    String columnText(int first, int last) const;

protected:
    std::istream* input = nullptr;

    // As much as the stream has, up to max; 0 when it has failed or ended.
    // The recogniser thus takes more of the stream than the tokens it gives:
    // whoever stops before the end of the text puts the stream back behind
    // the last token taken (CalcScanner::scan, CalcParser::init).
    int LexerInput(char* buf, int max) override;
    // Ends the process with status 2: the recogniser found no rule to apply.
    [[noreturn]] void LexerError(const char* msg) override;

private:
    std::string scanBuffer;    // what scannedText will hold
    std::string stringBuffer;  // the quoted string being assembled
    int stringStart = 0;       // first column of the opening quote
    bool textStale = false;    // scannedText lags behind scanBuffer

    void track();              // the bookkeeping that every rule runs first
    void appendOctal();
    void appendString(const char* text, int n) { stringBuffer.append(text, static_cast<size_t>(n)); }
};

}  // namespace zun

// The semantic value of the last token (defined with the parser's grammar).
extern zun::CalcValue Calclval;
