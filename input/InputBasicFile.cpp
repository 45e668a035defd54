#include "input/InputBasicFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

#include "base/Exception.h"

namespace zun {

InputBasicFile::InputBasicFile(const char* path, int order) : InputStream(path, order) { open(); }

InputBasicFile::~InputBasicFile() {
    if (file) std::fclose(file);
}

void InputBasicFile::open() {
    if (!streamName.text) {
        streamName = "(stdin)";
        // a duplicate of descriptor 0, so that closing this stream leaves
        // standard input open
        int fd = ::dup(0);
        file = fd >= 0 ? ::fdopen(fd, "rb") : nullptr;
        if (!file && fd >= 0) ::close(fd);
        fifo = true;
    } else {
        file = std::fopen(streamName.text, "rb");
        struct stat st;
        fifo = file && ::fstat(::fileno(file), &st) == 0 && S_ISFIFO(st.st_mode);
    }
    if (!file) {
        int code = errno;
        errno = 0;
        String text("file ");
        text += String(streamName).quote('"');
        text += " open failed";
        throw StdError(text.str(), code);
    }
    position = 0;
}

InputStream& InputBasicFile::seek(long offset, std::ios::seekdir dir) {
    if (fifo) {
        seekFifo(offset, dir);
        return *this;
    }
    // The reads of the buffered stream above come one after the other: a
    // seek to where the file stands already costs nothing.
    if (dir == std::ios::beg && offset == position && !failFlag && !std::feof(file)) return *this;
    int whence = dir == std::ios::beg ? SEEK_SET : dir == std::ios::cur ? SEEK_CUR : SEEK_END;
    failFlag = ::fseeko(file, static_cast<off_t>(offset), whence) != 0;
    if (failFlag) errno = 0;
    position = failFlag ? -1 : static_cast<long>(::ftello(file));
    return *this;
}

void InputBasicFile::seekFifo(long offset, std::ios::seekdir dir) {
    long target;
    if (dir == std::ios::beg) target = offset < 0 ? 0 : offset;
    else if (dir == std::ios::cur) target = position + offset;
    else target = offset;
    if (target < position) {
        String text("seek backwards not allowed on FIFO stream ");
        text += String(streamName).quote('"');
        throw StdError(text.str(), 29);
    }
    char drop[1024];
    while (position < target) {
        size_t want = target - position < static_cast<long>(sizeof drop) ? target - position : sizeof drop;
        size_t got = std::fread(drop, 1, want, file);
        position += static_cast<long>(got);
        if (got < want) break;
    }
}

void InputBasicFile::setReadBlocks() {
    if (fifo) {
        std::setvbuf(file, nullptr, _IONBF, 0);
        return;
    }
    const size_t size = 64 * 1024;
    blocks.reset(new (std::nothrow) char[size]);
    if (blocks) std::setvbuf(file, blocks.get(), _IOFBF, size);
}

long InputBasicFile::offset() {
    if (fifo || position >= 0) return position;
    return static_cast<long>(::ftello(file));
}

InputStream& InputBasicFile::getline(char* buf, unsigned long size, char delim) {
    if (size == 0) return *this;
    unsigned long n = 0;
    failFlag = false;
    for (;;) {
        if (n + 1 >= size) {
            // the line doesn't fit
            failFlag = true;
            break;
        }
        int c = std::getc(file);
        if (c == EOF) {
            if (n == 0) failFlag = true;
            break;
        }
        ++position;
        if (static_cast<char>(c) == delim) break;
        buf[n++] = static_cast<char>(c);
    }
    buf[n] = 0;
    return *this;
}

bool InputBasicFile::eof() const { return std::feof(file) != 0; }

bool InputBasicFile::fail() const { return failFlag || std::ferror(file) != 0; }

int InputBasicFile::peek() {
    int c = std::getc(file);
    if (c == EOF) return -1;
    std::ungetc(c, file);
    return c;
}

long InputBasicFile::size() {
    struct stat st;
    if (::fstat(::fileno(file), &st) != 0) return 0;
    return static_cast<long>(st.st_size);
}

unsigned long InputBasicFile::bufread(char* buf, unsigned long n, unsigned long done) {
    if (n == 0) return done;
    size_t got = std::fread(buf, 1, n, file);
    position += static_cast<long>(got);
    return done + got;
}

}  // namespace zun
