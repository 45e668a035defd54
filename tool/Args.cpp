#include "tool/Args.h"

#include <cstring>

namespace zun {

Args::Args(int argc, char** argv) : argv(argv), argCount(argc) {
    for (int i = 0; i < argc; ++i) used << false;
}

const char* Args::param(int i) {
    if (i < 0 || i >= argCount) return nullptr;
    if (i >= paramEnd) {
        for (int j = paramEnd; j <= i; ++j)
            if (used[j]) return nullptr;
        paramEnd = i + 1;
    }
    return argv[i];
}

const char* Args::option(const char* name, char sep) {
    size_t n = strlen(name);
    for (int i = paramEnd; i < argCount; ++i) {
        if (used[i] || strncmp(argv[i], name, n) != 0) continue;
        const char* rest = argv[i] + n;
        if (sep != 0) {
            if (*rest == sep) ++rest;
            else if (*rest != 0) continue;
        }
        used[i] = true;
        cursor = i;
        return rest;
    }
    return nullptr;
}

bool Args::optional(const char* name) {
    for (int i = paramEnd; i < argCount; ++i) {
        if (!used[i] && strcmp(argv[i], name) == 0) {
            used[i] = true;
            cursor = i;
            return true;
        }
    }
    return false;
}

const char* Args::nextOption() {
    if (cursor >= argCount - 1) return nullptr;
    ++cursor;
    used[cursor] = true;
    return argv[cursor];
}

int Args::seekUnusedOption(bool fromEnd) {
    if (fromEnd) {
        int last = -1;
        for (int i = 0; i < argCount; ++i)
            if (used[i]) last = i;
        cursor = last + 1;
    } else {
        cursor = paramEnd;
        while (cursor < argCount && used[cursor]) ++cursor;
    }
    return cursor;
}

const char* Args::unusedOption() {
    for (int i = paramEnd > cursor ? paramEnd : cursor; i < argCount; ++i) {
        if (!used[i]) {
            used[i] = true;
            cursor = i;
            return argv[i];
        }
    }
    return nullptr;
}

int Args::unusedOptions(String& list) {
    list = "";
    int n = 0;
    for (int i = paramEnd; i < argCount; ++i) {
        if (used[i]) continue;
        used[i] = true;
        list += argv[i];
        list += ' ';
        ++n;
    }
    return n;
}

}  // namespace zun
