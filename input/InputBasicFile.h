// zun::InputBasicFile: a file, standard input or a FIFO read through a C
// stream, without buffering of its own.
#pragma once

#include <cstdio>

#include "input/InputStream.h"

namespace zun {

class InputBasicFile : public InputStream {
public:
    FILE* file = nullptr;
    long position = 0;  // bytes read so far: the place on a stream that can't seek

    // A null path is standard input, named "(stdin)". Throws StdError
    // "file "path" open failed" with the system's code.
    explicit InputBasicFile(const char* path, int order = BigEndian);
    ~InputBasicFile() override;

    InputStream& seek(long offset, std::ios::seekdir dir = std::ios::beg) override;
    long offset() override;
    InputStream& getline(char* buf, unsigned long size, char delim = '\n') override;
    bool eof() const override;
    bool fail() const override;
    int peek() override;
    long size() override;
    unsigned long bufread(char* buf, unsigned long n, unsigned long done = 0) override;
    // Drops the C stream's own buffer, for a reader that buffers itself: each
    // read then goes straight to the system with the reader's size. Must come
    // before the first read.
    void unbuffered() { std::setvbuf(file, nullptr, _IONBF, 0); }

protected:
    void open();
    // Forward seek on a stream that can't seek: reads and drops the bytes.
    // Throws StdError code 29 for a place behind the present one.
    void seekFifo(long offset, std::ios::seekdir dir);

private:
    bool failFlag = false;
};

}  // namespace zun
