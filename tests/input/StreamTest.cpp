// Streams over one source: the read buffer, plain and standard-library
// files, text in memory, and byte orders.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>

#include "InputTestUtil.h"
#include "input/InputBStream.h"
#include "input/InputBasicFile.h"

using inputtest::CountingSource;
using inputtest::nextLine;
using inputtest::readAt;
using inputtest::stdErrorOf;
using inputtest::TempDir;
using zun::InputBStream;
using zun::InputStream;

namespace {

// A buffered stream over a file whose source counts its reads.
struct Counted {
    InputBStream stream;
    CountingSource* counter;
    Counted(const std::string& path, unsigned long bufBytes) : stream(path.c_str(), 0, bufBytes) {
        counter = new CountingSource(stream.source);
        stream.source = counter;
    }
};

class ReadBuffer : public ::testing::Test {
protected:
    TempDir dir;
    std::string data = inputtest::pattern(20000);
    std::string file(size_t n) { return dir.write("f" + std::to_string(n), data.substr(0, n)); }
};

const int big = InputStream::BigEndian, little = InputStream::LittleEndian;

// A field of the given bytes read into a target of T in the given order.
template <class T>
T readField(std::initializer_list<int> values, int order, unsigned short fieldSize, bool signExtend,
            long* offsetAfter = nullptr) {
    std::string b;
    for (int v : values) b += static_cast<char>(v);
    InputBStream s("bytes", order);
    s.initBuf(b.data(), b.size());
    T v;
    std::memset(&v, 0, sizeof v);
    s.read_swap(reinterpret_cast<char*>(&v), sizeof v, fieldSize, signExtend);
    if (offsetAfter) *offsetAfter = s.offset();
    return v;
}

}  // namespace

TEST_F(ReadBuffer, KeepAndTheSizeForAnEmptyFile) {
    std::string path = file(10000);
    EXPECT_EQ(InputBStream(path.c_str(), 0, 2048).keep, 1024);
    EXPECT_EQ(InputBStream(path.c_str(), 0, 5120).keep, 1024);
    EXPECT_EQ(InputBStream(file(0).c_str(), 0, 0).bufSize, 2048);
}

TEST_F(ReadBuffer, ShortFileIsOneReadThenFreeHops) {
    Counted c(file(3000), 5 * 1024);
    EXPECT_EQ(readAt(c.stream, 100, 10), data.substr(100, 10));
    EXPECT_EQ(c.counter->reads, 1);
    EXPECT_EQ(readAt(c.stream, 2990, 10), data.substr(2990, 10));
    EXPECT_EQ(readAt(c.stream, 0, 4), data.substr(0, 4));
    EXPECT_EQ(readAt(c.stream, 1500, 700), data.substr(1500, 700));
    EXPECT_EQ(c.counter->reads, 1);
    EXPECT_EQ(c.stream.offset(), 2200);
}

TEST_F(ReadBuffer, RefillKeepsThePast) {
    Counted c(file(20000), 2048);
    EXPECT_EQ(readAt(c.stream, 0, 16), data.substr(0, 16));
    EXPECT_EQ(readAt(c.stream, 5000, 16), data.substr(5000, 16));
    EXPECT_EQ(c.stream.bufStart, 5000 - 1024);
    int reads = c.counter->reads;
    EXPECT_EQ(readAt(c.stream, 4000, 100), data.substr(4000, 100));  // inside the kept past
    EXPECT_EQ(c.counter->reads, reads);
    // reading across the end of the buffer moves the kept bytes and reads on
    EXPECT_EQ(readAt(c.stream, 5900, 600), data.substr(5900, 600));
    EXPECT_EQ(c.counter->reads, reads + 1);
    EXPECT_EQ(readAt(c.stream, 100, 50), data.substr(100, 50));  // before the buffer
    EXPECT_EQ(readAt(c.stream, 10, 8000), data.substr(10, 8000));  // larger than the buffer
    EXPECT_FALSE(c.stream.fail());
}

TEST_F(ReadBuffer, EndOfFileAndRecovery) {
    InputBStream s(file(3000).c_str(), 0, 1024);
    EXPECT_EQ(readAt(s, 2990, 20), data.substr(2990, 10));
    EXPECT_TRUE(s.eof());
    EXPECT_FALSE(s.fail());
    EXPECT_EQ(readAt(s, 5000, 4), "");
    EXPECT_TRUE(s.eof());
    EXPECT_EQ(readAt(s, 10, 4), data.substr(10, 4));
    EXPECT_FALSE(s.eof());
    s.seek(3000, std::ios::beg);
    EXPECT_EQ(s.peek(), -1);
    EXPECT_FALSE(s.eof());  // peek leaves no flags behind
    EXPECT_EQ(s.offset(), 3000);
}

TEST_F(ReadBuffer, SeekMovesOnlyThePosition) {
    Counted c(file(500), 1024);
    c.stream.seek(100, std::ios::beg);
    c.stream.seek(-40, std::ios::cur);
    c.stream.seek(-5, std::ios::beg);  // ignored
    c.stream.seek(7, std::ios::end);   // does nothing
    EXPECT_EQ(c.stream.offset(), 60);
    EXPECT_EQ(c.counter->reads + c.counter->seeks, 0);
    EXPECT_EQ(c.stream.peek(), 60);
    EXPECT_EQ(c.stream.offset(), 60);
    c.stream.seek(-100, std::ios::cur);
    char b;
    EXPECT_EQ(c.stream.bufread(&b, 1, 0), 0u);
    EXPECT_TRUE(c.stream.fail());
}

TEST_F(ReadBuffer, SparseFileEndWithOneRead) {
    std::string path = dir.path("sparse.bin");
    int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ASSERT_GE(fd, 0);
    const long size = 20L * 1024 * 1024 * 1024;
    bool sparse = ::ftruncate(fd, size) == 0 && ::pwrite(fd, "END!", 4, size - 4) == 4;
    ::close(fd);
    if (!sparse) GTEST_SKIP() << "no sparse files here";
    Counted c(path, 5 * 1024);
    EXPECT_EQ(c.stream.size(), size);
    EXPECT_EQ(readAt(c.stream, size - 4, 4), "END!");
    EXPECT_EQ(c.stream.bufStart, size - 4 - 1024);
    EXPECT_EQ(readAt(c.stream, size - 1000, 2), std::string(2, '\0'));
    EXPECT_EQ(c.counter->reads, 1);
}

TEST_F(ReadBuffer, MemoryBuffer) {
    InputBStream s("text", 0);
    s.initBuf("hello", 5);
    EXPECT_EQ(readAt(s, 3, 10), "lo");
    EXPECT_TRUE(s.eof());
    char out[3];
    s.seek(0);
    EXPECT_EQ(s.bufread(out, 3, 10), 13u);  // done counts on
    EXPECT_EQ(std::string(out, 3), "hel");
    InputBStream empty("none", 0);
    empty.initBuf("", 0);
    EXPECT_EQ(empty.peek(), -1);
    EXPECT_EQ(readAt(empty, 0, 1), "");
    EXPECT_TRUE(empty.eof());
}

TEST_F(ReadBuffer, Getline) {
    InputBStream s("lines", 0), cut("cut", 0);
    const char text[] = "first\nsecond line\n\nlast";
    s.initBuf(text, sizeof text - 1);
    for (const char* expected : {"first", "second line", "", "last"}) {
        EXPECT_FALSE(s.eof());
        EXPECT_EQ(nextLine(s), expected);
    }
    EXPECT_TRUE(s.eof());
    cut.initBuf("abcdefgh\nx\n", 11);
    EXPECT_EQ(nextLine(cut, 5), "abcd");  // limited by the size
    EXPECT_EQ(cut.offset(), 4);
    EXPECT_EQ(nextLine(cut, 5), "efgh");

    std::string many;
    for (int i = 0; i < 300; ++i) many += "line " + std::to_string(i) + "\n";
    InputBStream f(dir.write("t.txt", many).c_str(), 0, 1024);
    int n = 0;
    for (std::string line = nextLine(f); !(f.eof() && line.empty()); line = nextLine(f))
        EXPECT_EQ(line, "line " + std::to_string(n++));
    EXPECT_EQ(n, 300);
}

TEST(StlStream, GetlineAtTheEnd) {
    TempDir dir;
    zun::InputFStream f(dir.write("d.dd", "head\nlast").c_str());
    EXPECT_EQ(f.size(), 9);
    EXPECT_EQ(nextLine(f), "head");
    EXPECT_FALSE(f.eof());
    EXPECT_EQ(nextLine(f), "last");
    EXPECT_TRUE(f.eof());
}

TEST(StlStream, MemoryTextAndAnyIstream) {
    zun::InputSStream s("0123456789", 6, "mem", zun::InputStream::LittleEndian);
    EXPECT_EQ(s.size(), 6);
    EXPECT_STREQ(s.name(7), "mem");
    EXPECT_EQ(s.byteOrder, 1);
    char b[10];
    s.seek(4);
    EXPECT_EQ(s.bufread(b, 10, 0), 2u);
    EXPECT_TRUE(s.eof());
    EXPECT_FALSE(s.fail());
    EXPECT_EQ(s.offset(), 6);  // the place stays known at the end
    EXPECT_EQ(s.peek(), -1);
    s.seek(1);
    EXPECT_EQ(s.peek(), '1');
    EXPECT_EQ(s.size(), 6);
    EXPECT_EQ(s.offset(), 1);
    std::istringstream text("xyz");
    zun::InputStreamStl any(&text, "outside");
    EXPECT_EQ(any.size(), 3);
    EXPECT_EQ(any.bufread(b, 2, 5), 7u);
    EXPECT_EQ(any.offset(), 2);
}

TEST(BasicFile, ReadsSeeksAndLines) {
    TempDir dir;
    std::string data = inputtest::pattern(300);
    zun::InputBasicFile f(dir.write("f.bin", data).c_str());
    EXPECT_FALSE(f.isFifo());
    EXPECT_EQ(f.size(), 300);
    f.seek(250);
    EXPECT_EQ(f.peek(), 250 % 251);
    char b[100];
    EXPECT_EQ(f.bufread(b, 100, 0), 50u);
    EXPECT_TRUE(f.eof());
    f.seek(-10, std::ios::end);
    EXPECT_EQ(f.offset(), 290);
    EXPECT_EQ(f.bufread(b, 5, 0), 5u);
    EXPECT_EQ(std::string(b, 5), data.substr(290, 5));

    zun::InputBasicFile t(dir.write("t.txt", "one\ntwo").c_str());
    EXPECT_EQ(nextLine(t), "one");
    EXPECT_EQ(nextLine(t), "two");
    EXPECT_TRUE(t.eof());
    EXPECT_FALSE(t.fail());
    nextLine(t);
    EXPECT_TRUE(t.fail());
}

TEST(BasicFile, OpenFailures) {
    EXPECT_EQ(stdErrorOf([] { zun::InputBasicFile f("/nonexistent-folder/x.bin"); }),
              "2: file \"/nonexistent-folder/x.bin\" open failed");
    EXPECT_EQ(stdErrorOf([] { zun::InputFStream f("/nonexistent-folder/d.dd"); }),
              "2: file \"/nonexistent-folder/d.dd\" open failed");
}

TEST(ByteOrder, MachineOrderAndNoOrder) {
    EXPECT_EQ(InputStream::hw_byte_order(), InputStream::HW_BYTE_ORDER);
    InputBStream s("x", InputStream::HwOrder);
    EXPECT_EQ(s.byteOrder, InputStream::HW_BYTE_ORDER);
    s.setByteOrder(InputStream::NoOrder);
    EXPECT_EQ(s.byteOrder, big);
}

TEST(ReadSwap, WidthsOrdersAndSigns) {
    EXPECT_EQ(readField<uint32_t>({0x12, 0x34, 0x56, 0x78}, big, 4, false), 0x12345678u);
    EXPECT_EQ(readField<uint32_t>({0x12, 0x34, 0x56, 0x78}, little, 4, false), 0x78563412u);
    EXPECT_EQ(readField<int16_t>({0xff, 0xfe}, big, 2, true), -2);
    // a narrow field fills the low end: extended when signed, not when unsigned
    EXPECT_EQ(readField<int32_t>({0xff, 0xff, 0xfe}, big, 3, true), -2);
    EXPECT_EQ(readField<int32_t>({0xfe, 0xff, 0xff}, little, 3, true), -2);
    EXPECT_EQ(readField<int32_t>({0x01, 0x02, 0x03}, big, 3, true), 0x010203);
    EXPECT_EQ(readField<int64_t>({0x80, 0x00, 0x00}, big, 3, true), -0x800000LL);
    EXPECT_EQ(readField<uint32_t>({0xff, 0xff, 0xfe}, big, 3, false), 0xfffffeu);
    EXPECT_EQ(readField<uint32_t>({0xfe, 0xff, 0xff}, little, 3, false), 0xfffffeu);
    // a wide field gives its low-order bytes; the caller places the next field
    long after = 0;
    EXPECT_EQ(readField<uint32_t>({0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99}, big, 8, false, &after),
              0x55667788u);
    EXPECT_EQ(after, 8);
    EXPECT_EQ(readField<uint32_t>({0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11}, little, 8, false, &after),
              0x55667788u);
    EXPECT_EQ(after, 4);
}

TEST(ReadSwap, ShortReadReportsTheCount) {
    InputBStream s("short", big);
    s.initBuf("\x01\x02", 2);
    uint32_t v = 0;
    EXPECT_EQ(s.read_swap(reinterpret_cast<char*>(&v), 4, 4, false), 2u);
    EXPECT_TRUE(s.eof());
}

TEST(TypeReadBuffer, SwapsEachWholeValue) {
    InputBStream shorts("s", big);
    shorts.initBuf("\x00\x01\xff\xfe\x12\x34", 6);
    short values[3];
    EXPECT_EQ(shorts.typeReadBuffer(values, 3), 3u);
    EXPECT_EQ(values[0], 1);
    EXPECT_EQ(values[1], -2);
    EXPECT_EQ(values[2], 0x1234);

    double in[2] = {1.5, -2.25};
    std::string bytes(reinterpret_cast<const char*>(in), sizeof in);
    for (size_t i = 0; i < 2; ++i) std::reverse(bytes.begin() + i * 8, bytes.begin() + i * 8 + 8);
    InputBStream doubles("d", InputStream::HW_BYTE_ORDER == little ? big : little);
    doubles.initBuf(bytes.data(), bytes.size());
    double out[3] = {0, 0, 0};
    EXPECT_EQ(doubles.typeReadBuffer(out, 3), 2u);  // only two whole values
    EXPECT_EQ(out[0], 1.5);
    EXPECT_EQ(out[1], -2.25);

    unsigned long long same[2] = {0x0102030405060708ULL, 42}, got[2];
    InputBStream machine("u", InputStream::HwOrder);
    machine.initBuf(reinterpret_cast<const char*>(same), sizeof same);
    EXPECT_EQ(machine.typeReadBuffer(got, 2), 2u);
    EXPECT_EQ(got[0], same[0]);
    EXPECT_EQ(got[1], 42u);
}
