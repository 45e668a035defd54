// zun::String: the program's own text type.
//
// A length and an owned, zero-terminated buffer of exactly length+1 bytes.
// A string can be null (text is null, length 0), which differs from empty.
// Every change allocates a new buffer of the exact size. Indices are inclusive
// at both ends where a range is given. Bytes are bytes: no encoding handling.
#pragma once

#include <iosfwd>

namespace zun {

class String {
public:
    int length;   // bytes in text, without the final zero
    char* text;   // owned; null for the null string

    String();                                   // empty, not null
    String(const char* text, int n = -1);       // null pointer: null string; n < 0: strlen
    String(int n, char c);                      // n copies of c; n < 0: empty
    String(const String& other);                // keeps nullness
    String(String&& other) noexcept;
    String(std::istream& in, int n);            // n bytes, n < 0 all that remains, n == 0 null
    String(std::istream& in, char delim);       // up to delim (not included)
    ~String();

    String& operator=(const String& other);     // a null source gives a null string
    String& operator=(String&& other) noexcept;
    String& operator=(const char* other);

    // The text to pass on as a plain character pointer: the empty text for null.
    const char* str() const { return text ? text : ""; }
    bool isNull() const { return text == nullptr; }
    bool isEmpty() const { return length == 0; }   // true for null and empty

    void setNull();
    char operator[](int i) const;                // zero on null or empty, or out of range

    int find(char c, int from = 0, bool backward = false) const;
    int find(const char* s, int from = 0) const;
    String substr(int first, int last = -1) const;
    String word(int n, char sep = ' ') const;
    String words(int first, int last = -1, char sep = ' ') const;

    String& trim(char c = 0);
    String& swap(char a, char b);
    String& swap(const char* a, const char* b);
    int count(const char* s) const;
    String& insert(int at, const String& s);
    String& insert(int at, const char* s, int n = -1);
    // Makes room for n bytes at the end, filled with s repeated (left unset when
    // s is null or empty); returns where they start.
    char* append(const char* s, int n);

    String& operator+=(const String& s);
    String& operator+=(const char* s);
    String& operator+=(char c);                  // a zero char is ignored
    String operator+(const String& s) const;
    String operator+(const char* s) const;
    String operator+(char c) const;

    String& operator<<(int v);                   // "%ld"
    String& operator<<(long v);                  // "%ld"
    String& operator<<(long long v);             // "%lld"
    String& operator<<(double v);                // "%.15g"
    String& operator<<(const char* s) { return *this += s; }
    String& operator<<(const String& s) { return *this += s; }

    String& pad(int width, const char* fill = " ");
    String& quote(char c);                       // "[" closes with "]", "{" with "}", "(" with ")"
    String& escape(bool controls);
    String& uppercase();
    String& lowercase();
    String toUppercase() const;
    String& fill(char c);

    int cmp(const char* s, int n = -1) const;    // strcmp (n < 0), strncmp (n > 0), 0 (n == 0)
    int cmp(const String& s, int n = -1) const { return cmp(s.text, n); }
    int casecmp(const char* s, int n = -1) const;
    bool operator==(const char* s) const { return cmp(s) == 0; }
    bool operator==(const String& s) const { return cmp(s.text) == 0; }
    bool operator!=(const char* s) const { return cmp(s) != 0; }
    bool operator!=(const String& s) const { return cmp(s.text) != 0; }
    bool operator<(const String& s) const { return cmp(s.text) < 0; }

    bool match(const char* pattern) const;       // fnmatch; null pattern is "*"
    bool isInteger() const;
    int isNumber() const;                        // 0 no, 2 integer, 1 with one "."
    bool isAlpha() const;
    int toInt() const;
    long toLong() const;
    long long toLLong() const;
    double toDouble() const;
    double toSmartDouble() const;                // NaN when empty or trailing text

private:
    void assign(const char* s, int n);
    void dropTrailingZeros();
};

String operator+(const char* a, const String& b);
// A copy of text between marks, as quote(mark) writes them; null counts as empty.
String quoted(const char* text, char mark = '"');
String quoted(const String& text, char mark = '"');
std::ostream& operator<<(std::ostream& out, const String& s);

}  // namespace zun
