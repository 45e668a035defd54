#include "struct/TextSink.h"

#include <climits>
#include <cstring>

#include "struct/Error.h"

namespace vexa {

zun::String StringSink::take(const char* what) {
    if (text.size() > static_cast<size_t>(INT_MAX)) {
        zun::String message = zun::String("the text of ") + zun::quoted(what) + " is longer than 2 GB";
        throw ErrorValueRange(message.str());
    }
    return zun::String(text.data(), static_cast<int>(text.size()));
}

namespace {

// Copies of a few bytes, the usual length of an element's text, without
// the call that a general copy costs.
inline void copyBytes(char* to, const char* from, size_t n) {
    if (n <= 16) {
        for (size_t i = 0; i < n; ++i) to[i] = from[i];
    } else {
        std::memcpy(to, from, n);
    }
}

}  // namespace

long TextFolder::put(const char* text, size_t n) {
    if (used + n > blockSize) {
        if (lastAt >= 0) {
            // The block goes: the text of the run is kept aside.
            lastKept.assign(block.get() + lastAt, lastLength);
            lastAt = -1;
        }
        sink.write(block.get(), used);
        used = 0;
        if (n > blockSize) {
            sink.write(text, n);
            return -1;
        }
    }
    copyBytes(block.get() + used, text, n);
    used += n;
    return static_cast<long>(used - n);
}

bool TextFolder::sameAsLast(const char* text, size_t n) const {
    if (n != lastLength) return false;
    const char* kept = lastAt >= 0 ? block.get() + lastAt : lastKept.data();
    for (size_t i = 0; i < n; ++i)
        if (kept[i] != text[i]) return false;
    return true;
}

void TextFolder::keep(long at, const char* text, size_t n) {
    lastLength = n;
    lastAt = at;
    if (at < 0) lastKept.assign(text, n);
}

void TextFolder::add(const char* text, size_t n) {
    keyed = false;
    if (count > 0 && compress && sameAsLast(text, n)) {
        ++count;
        return;
    }
    if (count > 1) writeCount();
    if (count > 0) {
        if (used < blockSize) block[used++] = separator;
        else put(&separator, 1);
    }
    long at = put(text, n);
    if (compress) keep(at, text, n);
    count = 1;
}

void TextFolder::writeCount() {
    char buffer[40];
    int n = std::snprintf(buffer, sizeof buffer, " (%ld times)", count);
    put(buffer, static_cast<size_t>(n));
}

void TextFolder::finish() {
    if (count > 1) writeCount();
    count = count > 0 ? 1 : 0;
    if (lastAt >= 0) {
        lastKept.assign(block.get() + lastAt, lastLength);
        lastAt = -1;
    }
    if (used > 0) sink.write(block.get(), used);
    used = 0;
}

}  // namespace vexa
