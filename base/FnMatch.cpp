#include "base/FnMatch.h"

#include <cstring>

namespace zun {

namespace {

const int FLAG_MASK = FNM_PATHNAME_ | FNM_NOESCAPE_ | FNM_PERIOD_;

// A "." that wildcards may not match: at the start of the text, or behind a
// "/" when slashes separate path components.
bool hiddenDot(const char* s, const char* start, int flags) {
    return *s == '.' && (flags & FNM_PERIOD_) &&
           (s == start || ((flags & FNM_PATHNAME_) && s[-1] == '/'));
}

// Matches ch against the bracket expression at p (just behind "["). Sets *next
// behind the closing "]". Returns -1 when the expression isn't closed: then
// the "[" stands for itself.
int bracket(const char* p, char ch, int flags, const char** next) {
    bool negate = (*p == '!' || *p == '^');
    if (negate) ++p;
    bool ok = false;
    bool first = true;
    for (;;) {
        char c = *p;
        if (c == 0) return -1;
        if (c == ']' && !first) break;
        first = false;
        if (c == '\\' && !(flags & FNM_NOESCAPE_) && p[1]) c = *++p;
        if (c == '/' && (flags & FNM_PATHNAME_)) return -1;
        ++p;
        if (*p == '-' && p[1] && p[1] != ']') {
            char hi = p[1];
            p += 2;
            if (hi == '\\' && !(flags & FNM_NOESCAPE_) && *p) hi = *p++;
            if (static_cast<unsigned char>(c) <= static_cast<unsigned char>(ch) &&
                static_cast<unsigned char>(ch) <= static_cast<unsigned char>(hi))
                ok = true;
        } else if (c == ch) {
            ok = true;
        }
    }
    *next = p + 1;
    return ok != negate ? 1 : 0;
}

// One pattern element (not a star) at p against the text at s: the place
// behind the element in the pattern, or null when it doesn't match. The text
// moves on by one character on a match.
const char* matchOne(const char* p, const char*& s, const char* start, int flags) {
    char c = *p++;
    switch (c) {
    case '?':
        if (*s == 0) return nullptr;
        if (*s == '/' && (flags & FNM_PATHNAME_)) return nullptr;
        if (hiddenDot(s, start, flags)) return nullptr;
        break;
    case '[': {
        if (*s == 0) return nullptr;
        if (*s == '/' && (flags & FNM_PATHNAME_)) return nullptr;
        if (hiddenDot(s, start, flags)) return nullptr;
        const char* next = nullptr;
        int r = bracket(p, *s, flags, &next);
        if (r < 0) {
            // unclosed: a literal "["
            if (*s != '[') return nullptr;
        } else if (r == 0) {
            return nullptr;
        } else {
            p = next;
        }
        break;
    }
    case '\\':
        if (!(flags & FNM_NOESCAPE_) && *p) c = *p++;
        if (*s != c) return nullptr;
        break;
    default:
        if (*s != c) return nullptr;
        break;
    }
    ++s;
    return p;
}

// The pattern against the whole text, with one place to go back to: the
// last "*" and the text where its match ended. A failure behind it lets the
// star take one more character and tries again from there; an earlier star
// never needs to, since the last one can take whatever the earlier would.
// So the cost is at most the pattern's length times the text's.
int matchFrom(const char* p, const char* s, const char* start, int flags) {
    const char* starPattern = nullptr;  // behind the last star
    const char* starText = nullptr;     // where that star's match ends
    for (;;) {
        if (*p == '*') {
            while (*p == '*') ++p;
            if (hiddenDot(s, start, flags)) return 1;
            if (*p == 0) {
                if (flags & FNM_PATHNAME_) return std::strchr(s, '/') ? 1 : 0;
                return 0;
            }
            if (*p == '/' && (flags & FNM_PATHNAME_)) {
                // the star takes the rest of the component, no more, no less
                s = std::strchr(s, '/');
                if (!s) return 1;
                continue;
            }
            // a leading "." matters only up to the first star that can take more
            flags &= ~FNM_PERIOD_;
            starPattern = p;
            starText = s;
            continue;
        }
        if (*p == 0) {
            if (*s == 0) return 0;
        } else if (const char* next = matchOne(p, s, start, flags)) {
            p = next;
            continue;
        }
        // a mismatch: the last star takes one more character, if it can
        if (!starPattern || *starText == 0) return 1;
        if (*starText == '/' && (flags & FNM_PATHNAME_)) return 1;
        p = starPattern;
        s = ++starText;
    }
}

}  // namespace

int fnmatch(const char* pattern, const char* text, int flags) {
    if (flags & ~FLAG_MASK) return -1;
    if (!pattern) pattern = "";
    if (!text) text = "";
    return matchFrom(pattern, text, text, flags);
}

}  // namespace zun
