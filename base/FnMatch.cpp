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

int matchFrom(const char* p, const char* s, const char* start, int flags) {
    for (;;) {
        char c = *p++;
        switch (c) {
        case 0:
            return *s == 0 ? 0 : 1;
        case '?':
            if (*s == 0) return 1;
            if (*s == '/' && (flags & FNM_PATHNAME_)) return 1;
            if (hiddenDot(s, start, flags)) return 1;
            ++s;
            break;
        case '*': {
            while (*p == '*') ++p;
            if (hiddenDot(s, start, flags)) return 1;
            if (*p == 0) {
                if (flags & FNM_PATHNAME_) return std::strchr(s, '/') ? 1 : 0;
                return 0;
            }
            if (*p == '/' && (flags & FNM_PATHNAME_)) {
                s = std::strchr(s, '/');
                if (!s) return 1;
                break;
            }
            // try every rest of the text; a leading "." matters only once
            for (; *s; ++s) {
                if (matchFrom(p, s, start, flags & ~FNM_PERIOD_) == 0) return 0;
                if (*s == '/' && (flags & FNM_PATHNAME_)) break;
            }
            return 1;
        }
        case '[': {
            if (*s == 0) return 1;
            if (*s == '/' && (flags & FNM_PATHNAME_)) return 1;
            if (hiddenDot(s, start, flags)) return 1;
            const char* next = nullptr;
            int r = bracket(p, *s, flags, &next);
            if (r < 0) {
                // unclosed: a literal "["
                if (*s != '[') return 1;
                ++s;
                break;
            }
            if (r == 0) return 1;
            p = next;
            ++s;
            break;
        }
        case '\\':
            if (!(flags & FNM_NOESCAPE_)) {
                if (*p) c = *p++;
            }
            if (*s != c) return 1;
            ++s;
            break;
        default:
            if (*s != c) return 1;
            ++s;
            break;
        }
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
