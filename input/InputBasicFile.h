// zun::InputBasicFile: a file, standard input or a FIFO read through a C
// stream, without buffering of its own.
#pragma once

#include <cstdio>
#include <memory>

#include "input/InputStream.h"

namespace zun {

class InputBasicFile : public InputStream {
public:
    FILE* file = nullptr;
    long position = 0;  // where the stream stands; -1 when not known

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
    // Sets the C stream's buffer before the first read, for a reader that
    // buffers itself. A pipe gets none: each read goes to it as it comes. A
    // plain file is read in blocks of 64 KB below the reader's buffer: its
    // reads come one after the other, and small ones would each cost a call.
    void setReadBlocks();

protected:
    void open();
    // Forward seek on a stream that can't seek: reads and drops the bytes.
    // Throws StdError code 29 for a place behind the present one.
    void seekFifo(long offset, std::ios::seekdir dir);

private:
    bool failFlag = false;
    std::unique_ptr<char[]> blocks;  // the C stream's buffer, freed after it is closed
};

}  // namespace zun
