#include "base/String.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <ostream>
#include <string>
#include <strings.h>
#include <utility>

#include "base/Exception.h"
#include "base/FnMatch.h"

namespace zun {

namespace {

// A fresh buffer of n+1 bytes with the final zero set. A text has a 32-bit
// length: a longer one is an error, not a length that wraps.
char* newBuffer(long long n) {
    if (n > INT_MAX) {
        char message[96];
        std::snprintf(message, sizeof message, "a text of %lld characters is longer than a text can be", n);
        throw StdError(message, EOVERFLOW);
    }
    char* b = new char[n + 1];
    b[n] = 0;
    return b;
}

bool isBlankOrTab(char ch) { return ch == ' ' || ch == '\t'; }

}  // namespace

String::String() : length(0), text(newBuffer(0)) {}

String::String(const char* s, int n) : length(0), text(nullptr) {
    if (s) assign(s, n < 0 ? static_cast<int>(std::strlen(s)) : n);
}

String::String(int n, char c) : length(n < 0 ? 0 : n), text(newBuffer(n < 0 ? 0 : n)) {
    std::memset(text, c, length);
}

String::String(const String& other) : length(0), text(nullptr) {
    if (other.text) assign(other.text, other.length);
}

String::String(String&& other) noexcept : length(other.length), text(other.text) {
    other.text = nullptr;
    other.length = 0;
}

String::String(std::istream& in, int n) : length(0), text(nullptr) {
    if (n == 0) return;
    std::string got;
    char piece[10];
    while (n < 0 || static_cast<long>(got.size()) < n) {
        std::streamsize want = sizeof piece;
        if (n >= 0 && n - static_cast<long>(got.size()) < want) want = n - static_cast<long>(got.size());
        in.read(piece, want);
        std::streamsize count = in.gcount();
        got.append(piece, count);
        if (count < want) break;
    }
    assign(got.data(), static_cast<int>(got.size()));
}

String::String(std::istream& in, char delim) : length(0), text(nullptr) {
    std::string got;
    std::getline(in, got, delim);  // delim is taken from the stream, not kept
    assign(got.data(), static_cast<int>(got.size()));
}

String::~String() { delete[] text; }

void String::assign(const char* s, int n) {
    char* b = newBuffer(n);
    if (n > 0) std::memcpy(b, s, n);
    delete[] text;
    text = b;
    length = n;
}

void String::dropTrailingZeros() {
    if (!text) return;
    while (length > 0 && text[length - 1] == 0) --length;
}

String& String::operator=(const String& other) {
    if (this == &other) return *this;
    if (other.text) assign(other.text, other.length);
    else setNull();
    return *this;
}

String& String::operator=(String&& other) noexcept {
    if (this != &other) {
        delete[] text;
        text = other.text;
        length = other.length;
        other.text = nullptr;
        other.length = 0;
    }
    return *this;
}

String& String::operator=(const char* other) {
    if (other) {
        assign(other, static_cast<int>(std::strlen(other)));  // copies before freeing
    } else {
        setNull();
    }
    return *this;
}

void String::setNull() {
    delete[] text;
    text = nullptr;
    length = 0;
}

char String::operator[](int i) const {
    if (!text || i < 0 || i >= length) return 0;
    return text[i];
}

int String::find(char c, int from, bool backward) const {
    if (!text || from < 0) return -1;
    if (backward) {
        if (from > length) from = length;
        for (int i = from; i >= 0; --i)
            if (text[i] == c) return i;
    } else {
        for (int i = from; i <= length; ++i)
            if (text[i] == c) return i;
    }
    return -1;
}

int String::find(const char* s, int from) const {
    if (!text || !s) return -1;
    if (from < 0) from = 0;
    if (from > length) return -1;
    const char* hit = std::strstr(text + from, s);
    return hit ? static_cast<int>(hit - text) : -1;
}

String String::substr(int first, int last) const {
    if (!text) return String(nullptr);
    if (first < 0) first = 0;
    if (last < 0 || last >= length) last = length - 1;
    if (last < first) return String();
    return String(text + first, last - first + 1);
}

String String::word(int n, char sep) const { return words(n, n, sep); }

String String::words(int first, int last, char sep) const {
    if (!text || first < 0) return String(nullptr);
    // start of word `first`
    int start = 0;
    for (int w = 0; w < first; ++w) {
        const void* hit = std::memchr(text + start, sep, length - start);
        if (!hit) return String(nullptr);
        start = static_cast<int>(static_cast<const char*>(hit) - text) + 1;
    }
    if (last >= 0 && last < first) return String();
    int stop = length;  // one past the end of word `last`
    if (last >= 0) {
        int pos = start;
        for (int w = first; w <= last; ++w) {
            const void* hit = std::memchr(text + pos, sep, length - pos);
            if (!hit) {
                pos = length;
                break;
            }
            pos = static_cast<int>(static_cast<const char*>(hit) - text);
            if (w < last) ++pos;
        }
        stop = pos;
    }
    return String(text + start, stop - start);
}

String& String::trim(char c) {
    if (!text || length == 0) return *this;
    auto trimmed = [c](char ch) { return c ? ch == c : isBlankOrTab(ch); };
    int first = 0;
    while (first < length && trimmed(text[first])) ++first;
    if (first == length) {
        // nothing but trimmed characters: keep the first one
        if (length > 1) assign(text, 1);
        return *this;
    }
    int last = length - 1;
    while (last > first && trimmed(text[last])) --last;
    if (first > 0 || last < length - 1) assign(text + first, last - first + 1);
    return *this;
}

String& String::swap(char a, char b) {
    if (!text || b == 0) return *this;
    for (int i = 0; i < length; ++i)
        if (text[i] == a) text[i] = b;
    return *this;
}

String& String::swap(const char* a, const char* b) {
    if (!text || !a || !*a) return *this;
    int n = count(a);
    if (n <= 0) return *this;
    int la = static_cast<int>(std::strlen(a));
    int lb = b ? static_cast<int>(std::strlen(b)) : 0;
    long long total = length + static_cast<long long>(n) * (lb - la);
    char* out = newBuffer(total);
    char* w = out;
    const char* r = text;
    const char* endText = text + length;
    while (r < endText) {
        const char* hit = std::strstr(r, a);
        if (!hit) break;
        std::memcpy(w, r, hit - r);
        w += hit - r;
        if (lb) std::memcpy(w, b, lb);
        w += lb;
        r = hit + la;
    }
    std::memcpy(w, r, endText - r);
    delete[] text;
    text = out;
    length = static_cast<int>(total);
    return *this;
}

int String::count(const char* s) const {
    if (!s || !*s) return -1;
    if (!text) return 0;
    int n = 0;
    size_t ls = std::strlen(s);
    for (const char* r = std::strstr(text, s); r; r = std::strstr(r + ls, s)) ++n;
    return n;
}

String& String::insert(int at, const String& s) {
    if (!s.text) return *this;
    return insert(at, s.text, s.length);
}

String& String::insert(int at, const char* s, int n) {
    if (!s) return *this;
    if (n < 0) n = static_cast<int>(std::strlen(s));
    if (!text) {
        assign(s, n);
        return *this;
    }
    if (at < 0) at = 0;
    if (at >= length) {
        dropTrailingZeros();
        at = length;
    }
    // the new buffer is filled before the old one goes, so s may point into it
    char* out = newBuffer(static_cast<long long>(length) + n);
    std::memcpy(out, text, at);
    std::memcpy(out + at, s, n);
    std::memcpy(out + at + n, text + at, length - at);
    delete[] text;
    text = out;
    length += n;
    return *this;
}

char* String::append(const char* s, int n) {
    dropTrailingZeros();
    if (n < 0) n = 0;
    char* out = newBuffer(static_cast<long long>(length) + n);
    if (text) std::memcpy(out, text, length);
    char* start = out + length;
    if (s && *s && n > 0) {
        int ls = static_cast<int>(std::strlen(s));
        for (int i = 0; i < n; ++i) start[i] = s[i % ls];
    } else {
        std::memset(start, 0, n);
    }
    delete[] text;
    text = out;
    length += n;
    return start;
}

String& String::operator+=(const String& s) {
    if (!s.text) return *this;
    if (this == &s) {
        String copy(s);
        return *this += copy;
    }
    std::memcpy(append(nullptr, s.length), s.text, s.length);
    return *this;
}

String& String::operator+=(const char* s) {
    if (!s) return *this;
    if (text && s >= text && s <= text + length) {
        String copy(s);
        return *this += copy;
    }
    int n = static_cast<int>(std::strlen(s));
    std::memcpy(append(nullptr, n), s, n);
    return *this;
}

String& String::operator+=(char c) {
    if (c == 0) return *this;
    *append(nullptr, 1) = c;
    return *this;
}

String String::operator+(const String& s) const {
    String r(*this);
    r += s;
    return r;
}

String String::operator+(const char* s) const {
    String r(*this);
    r += s;
    return r;
}

String String::operator+(char c) const {
    String r(*this);
    r += c;
    return r;
}

String& String::operator<<(int v) { return *this << static_cast<long>(v); }

String& String::operator<<(long v) {
    char b[32];
    int n = std::snprintf(b, sizeof b, "%ld", v);
    std::memcpy(append(nullptr, n), b, n);
    return *this;
}

String& String::operator<<(long long v) {
    char b[32];
    int n = std::snprintf(b, sizeof b, "%lld", v);
    std::memcpy(append(nullptr, n), b, n);
    return *this;
}

String& String::operator<<(double v) {
    char b[40];
    int n = std::snprintf(b, sizeof b, "%.15g", v);
    std::memcpy(append(nullptr, n), b, n);
    return *this;
}

String& String::pad(int width, const char* fill) {
    if (!fill || !*fill) fill = " ";
    long long wanted = width < 0 ? -static_cast<long long>(width) : width;
    if (length >= wanted) return *this;
    char* out = newBuffer(wanted);
    int target = static_cast<int>(wanted);
    int n = target - length;
    int lf = static_cast<int>(std::strlen(fill));
    char* padAt = width > 0 ? out : out + length;
    if (text) std::memcpy(width > 0 ? out + n : out, text, length);
    // The fill repeated: its first copy, then the filled part doubled.
    if (lf == 1) {
        std::memset(padAt, fill[0], static_cast<size_t>(n));
    } else {
        int done = std::min(lf, n);
        std::memcpy(padAt, fill, static_cast<size_t>(done));
        while (done < n) {
            int more = std::min(done, n - done);
            std::memcpy(padAt + done, padAt, static_cast<size_t>(more));
            done += more;
        }
    }
    delete[] text;
    text = out;
    length = target;
    return *this;
}

String& String::quote(char c) {
    char close = c;
    if (c == '[') close = ']';
    else if (c == '{') close = '}';
    else if (c == '(') close = ')';
    char* out = newBuffer(static_cast<long long>(length) + 2);
    out[0] = c;
    if (text) std::memcpy(out + 1, text, length);
    out[length + 1] = close;
    delete[] text;
    text = out;
    length += 2;
    return *this;
}

String quoted(const char* text, char mark) {
    String s(text ? text : "");
    s.quote(mark);
    return s;
}

String quoted(const String& text, char mark) {
    String s(text);
    s.quote(mark);
    return s;
}

String& String::escape(bool controls) {
    if (!text) return *this;
    long long total = 0;
    for (int i = 0; i < length; ++i) {
        unsigned char ch = static_cast<unsigned char>(text[i]);
        if (ch == '\\') total += 2;
        else if (std::isprint(ch)) total += 1;
        else if (ch == 10 || ch == 13 || ch == 9) total += controls ? 2 : 1;
        else total += 5;
    }
    if (total == length) return *this;
    char* out = newBuffer(total);
    char* w = out;
    for (int i = 0; i < length; ++i) {
        unsigned char ch = static_cast<unsigned char>(text[i]);
        if (ch == '\\') {
            *w++ = '\\';
            *w++ = '\\';
        } else if (std::isprint(ch)) {
            *w++ = static_cast<char>(ch);
        } else if (ch == 10 || ch == 13 || ch == 9) {
            if (controls) {
                *w++ = '\\';
                *w++ = ch == 10 ? 'n' : ch == 13 ? 'r' : 't';
            } else {
                *w++ = static_cast<char>(ch);
            }
        } else {
            char code[8];
            std::snprintf(code, sizeof code, "\\d%.3u", static_cast<unsigned>(ch));
            std::memcpy(w, code, 5);
            w += 5;
        }
    }
    delete[] text;
    text = out;
    length = static_cast<int>(total);
    return *this;
}

String& String::uppercase() {
    for (int i = 0; i < length; ++i)
        text[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[i])));
    return *this;
}

String& String::lowercase() {
    for (int i = 0; i < length; ++i)
        text[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
    return *this;
}

String String::toUppercase() const {
    String r(*this);
    r.uppercase();
    return r;
}

String& String::fill(char c) {
    if (text) std::memset(text, c, length);
    return *this;
}

int String::cmp(const char* s, int n) const {
    if (n == 0) return 0;
    if (!text) return s ? 1 : 0;
    if (!s) return -1;
    return n < 0 ? std::strcmp(text, s) : std::strncmp(text, s, n);
}

int String::casecmp(const char* s, int n) const {
    if (n == 0) return 0;
    if (!text) return s ? 1 : 0;
    if (!s) return -1;
    return n < 0 ? strcasecmp(text, s) : strncasecmp(text, s, n);
}

bool String::match(const char* pattern) const {
    if (!text) return pattern == nullptr;
    return fnmatch(pattern ? pattern : "*", text, 0) == 0;
}

bool String::isInteger() const {
    if (!text || length == 0) return false;
    int i = (text[0] == '+' || text[0] == '-') ? 1 : 0;
    for (; i < length; ++i)
        if (!std::isdigit(static_cast<unsigned char>(text[i]))) return false;
    return true;
}

int String::isNumber() const {
    if (!text || length == 0) return 0;
    int i = (text[0] == '+' || text[0] == '-') ? 1 : 0;
    int dots = 0, digits = 0;
    for (; i < length; ++i) {
        char ch = text[i];
        if (ch == '.') {
            if (++dots > 1) return 0;
        } else if (std::isdigit(static_cast<unsigned char>(ch))) {
            ++digits;
        } else {
            return 0;
        }
    }
    if (dots == 0) return 2;
    return digits > 0 ? 1 : 0;
}

bool String::isAlpha() const {
    for (int i = 0; i < length; ++i)
        if (!std::isalnum(static_cast<unsigned char>(text[i]))) return false;
    return true;
}

int String::toInt() const { return length ? static_cast<int>(std::strtol(text, nullptr, 10)) : 0; }

long String::toLong() const { return length ? std::strtol(text, nullptr, 10) : 0; }

long long String::toLLong() const { return length ? std::strtoll(text, nullptr, 10) : 0; }

double String::toDouble() const { return length ? std::strtod(text, nullptr) : 0.0; }

double String::toSmartDouble() const {
    if (!length) return NAN;
    char* end = nullptr;
    double v = std::strtod(text, &end);
    if (end == text || end != text + length) return NAN;
    return v;
}

String operator+(const char* a, const String& b) {
    String r(a);
    r += b;
    return r;
}

std::ostream& operator<<(std::ostream& out, const String& s) {
    if (s.text) out.write(s.text, s.length);
    return out;
}

}  // namespace zun
