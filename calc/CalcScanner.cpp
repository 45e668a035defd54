#include "calc/CalcScanner.h"

#include <iterator>
#include <string>

namespace zun {

namespace {
String nullString() { return String(static_cast<const char*>(nullptr)); }
}  // namespace

CalcScanner::CalcScanner(const char* text) : own(new std::istringstream(text ? text : "")), in(own) {}

CalcScanner::CalcScanner(std::istream& stream) : in(&stream) {}

CalcScanner::~CalcScanner() { delete own; }

bool CalcScanner::atEnd() const { return in->eof() || in->fail(); }

CalcScanner& CalcScanner::skip(int n) {
    if (n == 0 || atEnd()) return *this;
    in->seekg(n, std::ios::cur);
    if (in->fail()) {
        in->clear();
        in->setstate(std::ios::eofbit);
    }
    return *this;
}

String CalcScanner::flush() {
    if (atEnd()) return nullString();
    std::string rest((std::istreambuf_iterator<char>(*in)), std::istreambuf_iterator<char>());
    in->setstate(std::ios::eofbit);
    return String(rest.data(), static_cast<int>(rest.size()));
}

String CalcScanner::scan(int skipCount) {
    exprKind = KindNone;
    skip(skipCount);
    if (atEnd()) return nullString();

    std::streampos start = in->tellg();
    CalcValue saved = Calclval;
    rearm(*in);
    long n;
    if (parse() == 0) {
        n = location.last_column;
    } else {
        // The stream goes back to the token that could not be taken.
        n = location.first_column - 1;
        if (n < 0) n = 0;
        in->clear();
        if (start != std::streampos(-1)) {
            in->seekg(start);
            in->seekg(n, std::ios::cur);
        }
    }
    Calclval = saved;

    const String& text = scanned();
    stopChar = n < text.length ? static_cast<unsigned char>(text.text[n]) : 0;
    if (n < 1) return String();
    return columnText(1, static_cast<int>(n));
}

}  // namespace zun
