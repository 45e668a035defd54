// zun::InputStream: the abstract byte source of all reading, with the byte
// order of its data, and the streams over the standard library's istreams.
#pragma once

#include <fstream>
#include <ios>
#include <sstream>

#include "base/String.h"

namespace zun {

class InputStream {
public:
    // Byte order of the data. HwOrder stands for the machine's own order and
    // is replaced by HW_BYTE_ORDER when a stream takes it; NoOrder means that
    // nobody gave one.
    enum ByteOrder { BigEndian = 0, LittleEndian = 1, HwOrder = -1, NoOrder = -2 };

    // The machine's order.
    static constexpr ByteOrder HW_BYTE_ORDER =
        __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? LittleEndian : BigEndian;
    // The machine's order as found at run time; equals HW_BYTE_ORDER.
    static ByteOrder hw_byte_order();

    int byteOrder = BigEndian;  // 0 big-endian, 1 little-endian
    String streamName;          // the path, or a name given to the stream
    bool fifo = false;          // true if the source can't seek

    InputStream(const char* name = nullptr, int order = BigEndian);
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;
    virtual ~InputStream();

    // Name and size of the stream; streams of several files answer for the
    // part that holds the position given.
    virtual const char* name(long index = -1) const;
    virtual InputStream& seek(long offset, std::ios::seekdir dir = std::ios::beg) = 0;
    virtual long offset() = 0;
    virtual InputStream& getline(char* buf, unsigned long size, char delim = '\n') = 0;
    virtual bool isFifo() const { return fifo; }
    virtual bool eof() const = 0;
    virtual bool fail() const = 0;
    virtual int peek() = 0;  // the next byte, or -1
    virtual long size() = 0;
    virtual long size(long /*index*/) { return size(); }
    // Reads up to n bytes into buf; returns done plus the number read.
    virtual unsigned long bufread(char* buf, unsigned long n, unsigned long done = 0) = 0;

    // Sets the byte order: HwOrder is the machine's, LittleEndian little,
    // anything else big-endian.
    void setByteOrder(int order);
    bool swapped() const { return byteOrder != HW_BYTE_ORDER; }

    // Reads a field of fieldSize bytes into a variable of targetSize bytes in
    // the machine's order. A narrow field fills the low-order end of the
    // target, with 255 in the other bytes when signExtend is set and the top
    // bit of the field is; a wide field gives its low-order bytes. Bytes that
    // nothing writes keep what the caller put there. Returns the bytes read.
    unsigned long read_swap(char* target, unsigned short targetSize, unsigned short fieldSize, bool signExtend);

    // Reads n values of T in one block, each in the machine's order. Returns
    // the number of whole values read.
    template <class T>
    unsigned long typeReadBuffer(T* target, unsigned long n) {
        unsigned long got = bufread(reinterpret_cast<char*>(target), n * sizeof(T), 0) / sizeof(T);
        if (swapped()) {
            for (unsigned long i = 0; i < got; ++i) reverseBytes(reinterpret_cast<char*>(target + i), sizeof(T));
        }
        return got;
    }

    static void reverseBytes(char* p, unsigned long n) {
        for (unsigned long i = 0, j = n - 1; i < j; ++i, --j) {
            char t = p[i];
            p[i] = p[j];
            p[j] = t;
        }
    }
};

// Any std::istream, held by a pointer.
class InputStreamStl : public InputStream {
public:
    // Reads from in; with owned the stream is deleted with this one.
    InputStreamStl(std::istream* in, const char* name, int order = BigEndian, bool owned = false);
    ~InputStreamStl() override;

    InputStream& seek(long offset, std::ios::seekdir dir = std::ios::beg) override;
    long offset() override;
    InputStream& getline(char* buf, unsigned long size, char delim = '\n') override;
    bool eof() const override;
    bool fail() const override;
    int peek() override;
    long size() override;
    unsigned long bufread(char* buf, unsigned long n, unsigned long done = 0) override;

    std::istream* stream() const { return in; }

protected:
    std::istream* in;
    bool owned;
};

// A file opened for reading in binary mode; dictionaries are read so.
class InputFStream : public InputStreamStl {
public:
    // Throws StdError "file "path" open failed" with the system's code.
    explicit InputFStream(const char* path, int order = HW_BYTE_ORDER);
    long size() override;  // by stat
};

// Bytes in memory, under a name.
class InputSStream : public InputStreamStl {
public:
    // n bytes of text, all up to the first zero for a negative n.
    InputSStream(const char* text, long n = -1, const char* name = nullptr, int order = BigEndian);
    long size() override { return length; }

private:
    long length;
};

}  // namespace zun
