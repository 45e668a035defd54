#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "InputTestUtil.h"
#include "base/Exception.h"
#include "input/InputBStream.h"
#include "input/InputBasicFile.h"

using inputtest::CountingSource;
using inputtest::TempDir;
using zun::InputBStream;

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

std::string readAt(zun::InputStream& s, long at, unsigned long n) {
    std::string out(n, '\0');
    s.seek(at, std::ios::beg);
    unsigned long got = s.bufread(&out[0], n, 0);
    out.resize(got);
    return out;
}

}  // namespace

TEST(ReadBuffer, SizesAndKeep) {
    TempDir dir;
    std::string path = dir.write("f.bin", inputtest::pattern(10000));
    InputBStream small(path.c_str(), 0, 2048);
    EXPECT_EQ(small.bufSize, 2048);
    EXPECT_EQ(small.keep, 1024);
    InputBStream big(path.c_str(), 0, 5120);
    EXPECT_EQ(big.keep, 1024);
    InputBStream whole(path.c_str(), 0, 0);  // chosen by the file's size
    EXPECT_EQ(whole.bufSize, 10000);
    EXPECT_FALSE(whole.isFifo());
    EXPECT_EQ(whole.size(), 10000);
    EXPECT_STREQ(whole.name(), path.c_str());
    std::string empty = dir.write("empty.bin", "");
    InputBStream none(empty.c_str(), 0, 0);
    EXPECT_EQ(none.bufSize, 2048);
}

TEST(ReadBuffer, ShortFileIsOneReadThenFreeHops) {
    TempDir dir;
    std::string data = inputtest::pattern(3000);
    Counted c(dir.write("f.bin", data), 5 * 1024);
    EXPECT_EQ(readAt(c.stream, 100, 10), data.substr(100, 10));
    int readsAfterFirst = c.counter->reads;
    EXPECT_EQ(readsAfterFirst, 1);
    EXPECT_EQ(readAt(c.stream, 2990, 10), data.substr(2990, 10));
    EXPECT_EQ(readAt(c.stream, 0, 4), data.substr(0, 4));
    EXPECT_EQ(readAt(c.stream, 1500, 700), data.substr(1500, 700));
    EXPECT_EQ(c.counter->reads, readsAfterFirst);
    EXPECT_EQ(c.stream.offset(), 2200);
}

TEST(ReadBuffer, RefillKeepsThePast) {
    TempDir dir;
    std::string data = inputtest::pattern(20000);
    Counted c(dir.write("f.bin", data), 2048);
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
    EXPECT_FALSE(c.stream.fail());
}

TEST(ReadBuffer, RequestLargerThanTheBuffer) {
    TempDir dir;
    std::string data = inputtest::pattern(9000);
    InputBStream s(dir.write("f.bin", data).c_str(), 0, 1024);
    EXPECT_EQ(readAt(s, 10, 8000), data.substr(10, 8000));
    EXPECT_FALSE(s.eof());
}

TEST(ReadBuffer, EndOfFileAndRecovery) {
    TempDir dir;
    std::string data = inputtest::pattern(3000);
    InputBStream s(dir.write("f.bin", data).c_str(), 0, 1024);
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

TEST(ReadBuffer, SeekMovesOnlyThePosition) {
    TempDir dir;
    std::string data = inputtest::pattern(500);
    Counted c(dir.write("f.bin", data), 1024);
    c.stream.seek(100, std::ios::beg);
    c.stream.seek(-40, std::ios::cur);
    c.stream.seek(-5, std::ios::beg);   // ignored
    c.stream.seek(7, std::ios::end);    // does nothing
    EXPECT_EQ(c.stream.offset(), 60);
    EXPECT_EQ(c.counter->reads + c.counter->seeks, 0);
    EXPECT_EQ(c.stream.peek(), 60);
    EXPECT_EQ(c.stream.offset(), 60);
    c.stream.seek(-100, std::ios::cur);
    char b;
    EXPECT_EQ(c.stream.bufread(&b, 1, 0), 0u);
    EXPECT_TRUE(c.stream.fail());
}

TEST(ReadBuffer, DoneCountsOn) {
    zun::InputBStream s("mem");
    s.initBuf("abcdef", 6);
    char out[8] = {};
    EXPECT_EQ(s.bufread(out, 3, 10), 13u);
    EXPECT_EQ(std::string(out, 3), "abc");
}

TEST(ReadBuffer, SparseFileEndWithOneRead) {
    TempDir dir;
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
    EXPECT_EQ(c.counter->reads, 1);
    EXPECT_EQ(c.stream.bufStart, size - 4 - 1024);
    EXPECT_EQ(readAt(c.stream, size - 1000, 2), std::string(2, '\0'));
    EXPECT_EQ(c.counter->reads, 1);
}

TEST(ReadBuffer, MemoryBuffer) {
    InputBStream s("text", 0);
    s.initBuf("hello", 5);
    EXPECT_EQ(s.size(), 5);
    EXPECT_STREQ(s.name(), "text");
    EXPECT_EQ(readAt(s, 1, 3), "ell");
    EXPECT_EQ(readAt(s, 3, 10), "lo");
    EXPECT_TRUE(s.eof());
    EXPECT_EQ(readAt(s, 9, 1), "");
    InputBStream empty("none", 0);
    empty.initBuf("", 0);
    EXPECT_EQ(empty.peek(), -1);
    EXPECT_EQ(readAt(empty, 0, 1), "");
    EXPECT_TRUE(empty.eof());
}

TEST(ReadBuffer, Getline) {
    InputBStream s("lines", 0);
    const char text[] = "first\nsecond line\n\nlast";
    s.initBuf(text, sizeof text - 1);
    char line[64];
    s.getline(line, sizeof line, '\n');
    EXPECT_STREQ(line, "first");
    EXPECT_EQ(s.offset(), 6);
    EXPECT_FALSE(s.eof());
    s.getline(line, sizeof line, '\n');
    EXPECT_STREQ(line, "second line");
    s.getline(line, sizeof line, '\n');
    EXPECT_STREQ(line, "");
    s.getline(line, sizeof line, '\n');
    EXPECT_STREQ(line, "last");
    EXPECT_TRUE(s.eof());
}

TEST(ReadBuffer, GetlineLimitedBySize) {
    InputBStream s("lines", 0);
    s.initBuf("abcdefgh\nx\n", 11);
    char line[5];
    s.getline(line, sizeof line, '\n');
    EXPECT_STREQ(line, "abcd");
    EXPECT_EQ(s.offset(), 4);
    s.getline(line, sizeof line, '\n');
    EXPECT_STREQ(line, "efgh");
}

TEST(ReadBuffer, GetlineAcrossRefills) {
    TempDir dir;
    std::string text;
    for (int i = 0; i < 300; ++i) text += "line " + std::to_string(i) + "\n";
    InputBStream s(dir.write("t.txt", text).c_str(), 0, 1024);
    char line[100];
    int n = 0;
    for (;;) {
        s.getline(line, sizeof line, '\n');
        if (s.eof() && !*line) break;
        EXPECT_EQ(std::string(line), "line " + std::to_string(n));
        ++n;
    }
    EXPECT_EQ(n, 300);
}

TEST(ReadBuffer, MissingFileIsAMultiFileError) {
    TempDir dir;
    std::string path = dir.path("nothing.bin");
    try {
        InputBStream s(path.c_str(), 0, 1024);
        FAIL() << "no error";
    } catch (zun::StdError& e) {
        EXPECT_EQ(e.code(), 2);
        EXPECT_EQ(std::string(e.message.str()), "no file matching \"nothing.bin\" in folder \"" + dir.path() + "\"");
    }
}

TEST(BasicFile, OpenFailure) {
    try {
        zun::InputBasicFile f("/nonexistent-folder/x.bin");
        FAIL() << "no error";
    } catch (zun::StdError& e) {
        EXPECT_EQ(e.code(), 2);
        EXPECT_EQ(std::string(e.message.str()), "file \"/nonexistent-folder/x.bin\" open failed");
    }
}

TEST(BasicFile, ReadsAndSeeks) {
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
}
