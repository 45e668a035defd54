#include "input/InputBStream.h"

#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>

#include "base/Exception.h"
#include "input/FileUtils.h"
#include "input/InputBasicFile.h"
#include "input/InputMultiFile.h"

namespace zun {

namespace {

// The bytes of memory of the machine; the largest long when unknown.
long physicalMemory() {
    long pages = ::sysconf(_SC_PHYS_PAGES);
    long pageSize = ::sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0 || pages > LONG_MAX / pageSize) return LONG_MAX;
    return pages * pageSize;
}

}  // namespace

InputBStream::InputBStream(const char* name, int order) : InputStream(name, order) {}

InputBStream::InputBStream(const char* path, int order, unsigned long bufBytes, bool multi)
    : InputStream(path, order) {
    try {
        initFile(bufBytes, multi);
    } catch (...) {
        // the destructor won't run for a stream that was never made
        delete source;
        source = nullptr;
        throw;
    }
}

InputBStream::~InputBStream() {
    delete[] buffer;
    delete source;
}

void InputBStream::initFile(unsigned long bufBytes, bool multi) {
    delete source;
    source = nullptr;
    delete[] buffer;
    buffer = nullptr;
    bool plainFile = false;
    if (!streamName.text || (!multi && FileUtils::checkFile(streamName.text))) {
        auto* file = new InputBasicFile(streamName.text, byteOrder);
        file->setReadBlocks();
        source = file;
        if (!streamName.text) streamName = "(stdin)";
        plainFile = true;
    } else {
        source = new InputMultiFile(streamName.text, byteOrder, "basic", nullptr);
    }
    fifo = source->isFifo();

    const long smallest = 2048;
    long bytes = bufBytes > static_cast<unsigned long>(LONG_MAX) ? LONG_MAX : static_cast<long>(bufBytes);
    if (bytes <= 0) {
        bytes = source->size();
        if (bytes <= 0) bytes = smallest;
    } else if (plainFile && !fifo) {
        // a file that can seek needs no buffer beyond its own size
        long size = source->size();
        if (size < smallest) size = smallest;
        if (bytes > size) bytes = size;
    }
    bufSize = bytes;
    if (bufSize <= 2048) keep = bufSize / 2;
    else keep = fifo ? bufSize - 1024 : 1024;

    // A buffer beyond the memory of the machine is refused rather than
    // tried: the system might promise it and fail when it is filled.
    if (bytes > physicalMemory() || !(buffer = new (std::nothrow) char[bufSize]))
        throw StdError("cannot allocate read buffer in InputBStream::initFile", 12);
    bufStart = pos = bufFill = 0;
    eofFlag = failFlag = false;
}

void InputBStream::initBuf(const char* text, unsigned long n) {
    delete source;
    source = nullptr;
    delete[] buffer;
    buffer = new (std::nothrow) char[n + 1];
    if (!buffer) throw StdError("cannot allocate read buffer in InputStream::initBuf", 12);
    if (n && text) std::memcpy(buffer, text, n);
    buffer[n] = 0;
    bufFill = static_cast<long>(n);
    bufSize = bufFill + 1;
    bufStart = pos = 0;
    keep = 0;
    fifo = false;
    eofFlag = failFlag = false;
}

const char* InputBStream::name(long index) const { return source ? source->name(index) : streamName.str(); }

InputStream& InputBStream::seek(long offset, std::ios::seekdir dir) {
    if (dir == std::ios::beg) {
        if (offset >= 0) pos = offset;
    } else if (dir == std::ios::cur) {
        pos += offset;
    }
    return *this;
}

bool InputBStream::fail() const { return failFlag || (source && source->fail()); }

unsigned long InputBStream::bufread(char* buf, unsigned long n, unsigned long done) {
    // the common case: the whole request lies in the valid part of the buffer
    long at = pos - bufStart;
    if (at >= 0 && at <= bufFill && static_cast<unsigned long>(bufFill - at) >= n && buffer) {
        std::memcpy(buf, buffer + at, n);
        pos += static_cast<long>(n);
        eofFlag = failFlag = false;
        return done + n;
    }
    return readSlow(buf, n, done);
}

unsigned long InputBStream::readSlow(char* buf, unsigned long n, unsigned long done) {
    eofFlag = failFlag = false;
    if (n == 0) return done;
    if (!buffer) {
        failFlag = true;
        return done;
    }
    bool refilled = false;
    for (;;) {
        if (pos < 0) {
            failFlag = true;
            return done;
        }
        if (pos < bufStart) {
            // the place lies before the buffer: the source goes back
            try {
                source->seek(pos, std::ios::beg);
            } catch (StdError& e) {
                if (e.code() != 29) throw;
                String text(e.message);
                text += ", try increasing the read buffer to minimum ";
                text << std::ceil(static_cast<double>(bufStart + bufFill - pos) / 1024.0);
                text += " KBytes";
                throw StdError(text.str(), 29);
            }
            if (source->peek() < 0) {
                failFlag = true;
                return done;
            }
            bufStart = bufFill = 0;
            continue;
        }
        long at = pos - bufStart;
        if (at < bufFill) {
            unsigned long avail = static_cast<unsigned long>(bufFill - at);
            if (avail >= n) {
                std::memcpy(buf, buffer + at, n);
                pos += static_cast<long>(n);
                return done + n;
            }
            std::memcpy(buf, buffer + at, avail);
            pos += static_cast<long>(avail);
            done += avail;
            buf += avail;
            n -= avail;
            if (bufFill < bufSize) {
                // the source has ended
                eofFlag = true;
                return done;
            }
            refilled = false;
            continue;
        }
        if (source && !refilled && (bufFill == 0 || bufFill >= bufSize)) {
            long back = keep < pos ? keep : pos;
            refill();
            refilled = true;
            if (bufFill >= back && pos - bufStart < bufFill) continue;
        }
        eofFlag = true;
        return done;
    }
}

void InputBStream::refill() {
    long back = keep < pos ? keep : pos;
    long kept = 0;
    if (bufFill != 0) {
        kept = bufStart + bufFill + keep - pos;
        if (kept < 0) kept = 0;
        if (kept > bufFill) kept = bufFill;
        if (kept > back) kept = back;
        if (kept > 0) std::memmove(buffer, buffer + bufFill - kept, kept);
    }
    source->seek(pos - back + kept, std::ios::beg);
    bufStart = pos - back;
    long before = source->offset();
    source->bufread(buffer + kept, static_cast<unsigned long>(bufSize - kept), 0);
    long moved = source->offset() - before;
    bufFill = kept + (moved > 0 ? moved : 0);
}

InputStream& InputBStream::getline(char* buf, unsigned long size, char delim) {
    if (size == 0) return *this;
    long start = pos;
    unsigned long got = bufread(buf, size - 1, 0);
    void* hit = std::memchr(buf, delim, got);
    if (hit) {
        unsigned long i = static_cast<unsigned long>(static_cast<char*>(hit) - buf);
        pos = start + static_cast<long>(i) + 1;
        eofFlag = false;
        buf[i] = 0;
    } else {
        buf[got] = 0;
    }
    return *this;
}

int InputBStream::peek() {
    char c;
    if (bufread(&c, 1, 0) == 1) {
        --pos;
        return static_cast<unsigned char>(c);
    }
    eofFlag = failFlag = false;
    return -1;
}

long InputBStream::size() { return source ? source->size() : bufFill; }

long InputBStream::size(long index) { return source ? source->size(index) : bufFill; }

}  // namespace zun
