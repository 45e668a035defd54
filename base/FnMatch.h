// zun::fnmatch: wildcard matching with the classic flag bits.
#pragma once

namespace zun {

enum FnMatchFlags {
    FNM_PATHNAME_ = 1,  // a "/" isn't matched by wildcards
    FNM_NOESCAPE_ = 2,  // backslash isn't special
    FNM_PERIOD_ = 4     // a leading "." isn't matched by wildcards
};

// 0 for a match, 1 otherwise, -1 if flags has bits other than the low three.
// Patterns: "*", "?", "[...]" with "!" or "^" for negation and ranges, and a
// backslash that takes the next character literally.
int fnmatch(const char* pattern, const char* text, int flags);

}  // namespace zun
