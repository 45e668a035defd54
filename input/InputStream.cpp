#include "input/InputStream.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "base/Exception.h"

namespace zun {

InputStream::ByteOrder InputStream::hw_byte_order() {
    const unsigned short probe = 1;
    unsigned char first;
    std::memcpy(&first, &probe, 1);
    return first ? LittleEndian : BigEndian;
}

InputStream::InputStream(const char* name, int order) : streamName(name) { setByteOrder(order); }

InputStream::~InputStream() = default;

const char* InputStream::name(long) const { return streamName.str(); }

void InputStream::setByteOrder(int order) {
    if (order == HwOrder) byteOrder = HW_BYTE_ORDER;
    else byteOrder = order == LittleEndian ? LittleEndian : BigEndian;
}

unsigned long InputStream::read_swap(char* target, unsigned short targetSize, unsigned short fieldSize,
                                     bool signExtend) {
    unsigned long got;
    if (targetSize == fieldSize) {
        got = bufread(target, targetSize, 0);
        if (swapped()) reverseBytes(target, targetSize);
        return got;
    }
    bool big = byteOrder != LittleEndian;
    if (targetSize < fieldSize) {
        // the field is wider: its low-order bytes
        if (big) seek(fieldSize - targetSize, std::ios::cur);
        got = bufread(target, targetSize, 0);
    } else if (big) {
        unsigned short lead = targetSize - fieldSize;
        got = bufread(target + lead, fieldSize, 0);
        if (signExtend && fieldSize > 0 && (static_cast<unsigned char>(target[lead]) & 0x80))
            std::memset(target, 0xff, lead);
    } else {
        got = bufread(target, fieldSize, 0);
        if (signExtend && fieldSize > 0 && (static_cast<unsigned char>(target[fieldSize - 1]) & 0x80))
            std::memset(target + fieldSize, 0xff, targetSize - fieldSize);
    }
    if (swapped()) reverseBytes(target, targetSize);
    return got;
}

// ---------------------------------------------------------------------------

InputStreamStl::InputStreamStl(std::istream* stream, const char* name, int order, bool own)
    : InputStream(name, order), in(stream), owned(own) {}

InputStreamStl::~InputStreamStl() {
    if (owned) delete in;
}

InputStream& InputStreamStl::seek(long offset, std::ios::seekdir dir) {
    if (in) {
        // a new place starts afresh, as the end of the data may lie behind
        in->clear();
        in->seekg(offset, dir);
    }
    return *this;
}

long InputStreamStl::offset() {
    if (!in) return -1;
    // tellg refuses to answer at the end of the data; the place is still known
    std::ios::iostate state = in->rdstate();
    if (state & std::ios::eofbit) in->clear(state & ~std::ios::eofbit);
    long at = static_cast<long>(in->tellg());
    in->clear(state);
    return at;
}

InputStream& InputStreamStl::getline(char* buf, unsigned long size, char delim) {
    if (!in) {
        if (size) buf[0] = 0;
        return *this;
    }
    in->getline(buf, static_cast<std::streamsize>(size), delim);
    return *this;
}

bool InputStreamStl::eof() const { return !in || in->eof(); }

bool InputStreamStl::fail() const { return !in || in->fail(); }

int InputStreamStl::peek() {
    if (!in || in->eof()) return -1;
    int c = in->peek();
    return c == std::char_traits<char>::eof() ? -1 : c;
}

long InputStreamStl::size() {
    if (!in) return 0;
    std::ios::iostate state = in->rdstate();
    in->clear();
    std::streampos here = in->tellg();
    in->seekg(0, std::ios::end);
    long end = static_cast<long>(in->tellg());
    in->seekg(here);
    in->clear(state);
    return end;
}

unsigned long InputStreamStl::bufread(char* buf, unsigned long n, unsigned long done) {
    if (!in || n == 0) return done;
    in->read(buf, static_cast<std::streamsize>(n));
    unsigned long got = static_cast<unsigned long>(in->gcount());
    // a short read is the end of the data: the place stays readable
    if (got < n && !in->bad()) in->clear(std::ios::eofbit);
    return done + got;
}

// ---------------------------------------------------------------------------

namespace {

std::istream* openFile(const char* path) {
    errno = 0;
    auto* f = new std::ifstream(path ? path : "", std::ios::in | std::ios::binary);
    if (!f->is_open()) {
        int code = errno ? errno : ENOENT;
        delete f;
        String text("file ");
        text += String(path).quote('"');
        text += " open failed";
        errno = 0;
        throw StdError(text.str(), code);
    }
    return f;
}

}  // namespace

InputFStream::InputFStream(const char* path, int order) : InputStreamStl(openFile(path), path, order, true) {
    struct stat st;
    fifo = path && ::stat(path, &st) == 0 && S_ISFIFO(st.st_mode);
}

long InputFStream::size() {
    struct stat st;
    if (streamName.text && ::stat(streamName.text, &st) == 0) return static_cast<long>(st.st_size);
    return InputStreamStl::size();
}

// ---------------------------------------------------------------------------

namespace {

long textLength(const char* text, long n) {
    if (!text) return 0;
    return n < 0 ? static_cast<long>(std::strlen(text)) : n;
}

}  // namespace

InputSStream::InputSStream(const char* text, long n, const char* name, int order)
    : InputStreamStl(new std::istringstream(std::string(text ? text : "", textLength(text, n)),
                                            std::ios::in | std::ios::binary),
                     name, order, true),
      length(textLength(text, n)) {}

}  // namespace zun
