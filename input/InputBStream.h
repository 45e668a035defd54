// zun::InputBStream: the buffered stream. Its buffer keeps a stretch of the
// recent past, so that reading can hop back and forth by small amounts
// without a system call, even on a pipe. Seeking only moves the read
// position; reading does the rest.
#pragma once

#include "input/InputStream.h"

namespace zun {

class InputBStream : public InputStream {
public:
    char* buffer = nullptr;    // owned
    bool eofFlag = false;
    bool failFlag = false;
    long bufStart = 0;         // place in the source of buffer[0]
    long pos = 0;              // the read position in the source
    long bufFill = 0;          // valid bytes in the buffer
    long bufSize = 0;          // capacity
    long keep = 0;             // bytes of the past kept at a refill
    InputStream* source = nullptr;  // owned; null for memory

    // An empty stream under a name; initFile or initBuf gives it its bytes.
    explicit InputBStream(const char* name = nullptr, int order = BigEndian);
    // The stream of a path (null: standard input), with a buffer of bufBytes
    // (0: chosen by the source's size). With multi the path is always read
    // as a set of files.
    InputBStream(const char* path, int order, unsigned long bufBytes, bool multi = false);
    ~InputBStream() override;

    // Opens the source of the stream's name, and makes the buffer.
    void initFile(unsigned long bufBytes, bool multi = false);
    // Serves a copy of n bytes of text from memory.
    void initBuf(const char* text, unsigned long n);

    const char* name(long index = -1) const override;
    InputStream& seek(long offset, std::ios::seekdir dir = std::ios::beg) override;
    long offset() override { return pos; }
    InputStream& getline(char* buf, unsigned long size, char delim = '\n') override;
    bool eof() const override { return eofFlag; }
    bool fail() const override;
    int peek() override;
    long size() override;
    long size(long index) override;
    unsigned long bufread(char* buf, unsigned long n, unsigned long done = 0) override;

private:
    unsigned long readSlow(char* buf, unsigned long n, unsigned long done);
    void refill();
};

}  // namespace zun
