#include "calc/CalcLex.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace zun {

CalcLex::CalcLex() : CalcFlexLexer(static_cast<std::istream*>(nullptr), static_cast<std::ostream*>(nullptr)) {}

CalcLex::~CalcLex() = default;

void CalcLex::track() {
    location.first_column = location.last_column + 1;
    location.last_column += yyleng;
    scanBuffer.append(yytext, static_cast<size_t>(yyleng));
    textStale = true;
}

void CalcLex::appendOctal() {
    unsigned value = 0;
    std::sscanf(yytext + 1, "%o", &value);
    stringBuffer += static_cast<char>(value & 0xFF);
}

const String& CalcLex::scanned() {
    if (textStale) {
        scannedText = String(scanBuffer.data(), static_cast<int>(scanBuffer.size()));
        textStale = false;
    }
    return scannedText;
}

String CalcLex::columnText(int first, int last) const {
    long size = static_cast<long>(scanBuffer.size());
    long from = first < 1 ? 0 : first - 1;
    long to = last > size ? size : last;
    if (to <= from) return String();
    return String(scanBuffer.data() + from, static_cast<int>(to - from));
}

int CalcLex::LexerInput(char* buf, int max) {
    if (!input || max < 1) return 0;
    input->read(buf, max);
    return static_cast<int>(input->gcount());
}

void CalcLex::LexerError(const char* msg) {
    std::cerr << msg << std::endl;
    std::exit(2);
}

}  // namespace zun
