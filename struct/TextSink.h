// vexa::TextSink: where the text of an element goes as it is made. The text
// of a whole array can be far longer than anything worth holding in memory,
// so arrays write it piece by piece; the printer passes its output on.
//
// vexa::TextFolder: the folding of an array's text, "<text> (n times)" for
// repeats, over any sink.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "base/String.h"

namespace vexa {

class TextSink {
public:
    virtual ~TextSink() = default;
    virtual void write(const char* text, size_t n) = 0;
    void write(const zun::String& s) {
        if (s.text) write(s.text, static_cast<size_t>(s.length));
    }
    void put(char c) { write(&c, 1); }
};

// A sink that keeps the text.
class StringSink : public TextSink {
public:
    std::string text;
    void write(const char* t, size_t n) override { text.append(t, n); }
    // The text as a String; one that a String can't hold fails with
    // ErrorValueRange naming what.
    zun::String take(const char* what);
};

class TextFolder {
public:
    // Elements joined by separator; with compress a run of equal texts
    // is written once, followed by " (n times)".
    TextFolder(TextSink& sink, bool compress, char separator) : sink(sink), compress(compress), separator(separator) {}
    ~TextFolder() = default;
    TextFolder(const TextFolder&) = delete;
    TextFolder& operator=(const TextFolder&) = delete;

    // With compress, whether a value whose bits are key repeats the one
    // added last (then it is counted and nothing more is needed).
    bool repeats(uint64_t key) {
        if (!compress || !keyed || key != lastKey || count == 0) return false;
        ++count;
        return true;
    }
    // Adds the next element's text; key stands for its bits when it has any.
    void add(const char* text, size_t n);
    void add(uint64_t key, const char* text, size_t n) {
        add(text, n);
        keyed = true;
        lastKey = key;
    }
    void add(const zun::String& s) { add(s.text ? s.text : "", static_cast<size_t>(s.length)); }
    // Writes the count of the last run and passes everything on to the sink.
    void finish();

private:
    TextSink& sink;
    bool compress;
    char separator;
    // The text of the current run: where it stands in the block while it is
    // there (lastAt), else kept aside.
    std::string lastKept;
    size_t lastLength = 0;
    long lastAt = -1;
    long count = 0;  // elements of the current run; 0 before the first
    bool keyed = false;
    uint64_t lastKey = 0;
    // Texts wait here and go to the sink in blocks. The block is on the
    // heap: arrays nest as deep as records do, each level with its folder.
    static const size_t blockSize = 1 << 16;
    std::unique_ptr<char[]> block{new char[blockSize]};
    size_t used = 0;

    // Appends text to the block; where it stands there, or -1 when it was
    // too long and went to the sink directly.
    long put(const char* text, size_t n);
    void writeCount();
    bool sameAsLast(const char* text, size_t n) const;
    // Remembers the text of a new run, written at `at` of the block.
    void keep(long at, const char* text, size_t n);
};

}  // namespace vexa
