#include <gtest/gtest.h>

#include <string>

#include "InputTestUtil.h"
#include "base/Exception.h"
#include "input/InputBStream.h"
#include "input/InputMultiFile.h"

using inputtest::TempDir;
using zun::InputMultiFile;

namespace {

std::string readAll(zun::InputStream& s, unsigned long chunk) {
    std::string out;
    std::string piece(chunk, '\0');
    for (;;) {
        unsigned long got = s.bufread(&piece[0], chunk, 0);
        out.append(piece, 0, got);
        if (got < chunk) break;
    }
    return out;
}

std::string readAt(zun::InputStream& s, long at, unsigned long n) {
    std::string out(n, '\0');
    s.seek(at, std::ios::beg);
    out.resize(s.bufread(&out[0], n, 0));
    return out;
}

}  // namespace

TEST(MultiFile, SortedOrderWithoutHiddenFiles) {
    TempDir dir;
    dir.write("c.part", "CCC");
    dir.write("a.part", "A");
    dir.write(".b.part", "hidden");
    dir.write("b.part", "BB");
    dir.write("other.txt", "no");
    InputMultiFile m(dir.path("*.part").c_str(), 0, "basic", nullptr);
    EXPECT_EQ(m.streams.count, 3);
    EXPECT_EQ(readAll(m, 4), "ABBCCC");
    EXPECT_EQ(m.offset(), 6);
}

TEST(MultiFile, ReadingAcrossParts) {
    TempDir dir;
    std::string a = inputtest::pattern(1000), b = "second", c = inputtest::pattern(3000);
    dir.write("f1", a);
    dir.write("f2", b);
    dir.write("f3", c);
    std::string whole = a + b + c;
    InputMultiFile m(dir.path("f?").c_str(), 0, "buffer", "1");
    EXPECT_EQ(readAt(m, 995, 20), whole.substr(995, 20));
    EXPECT_STREQ(m.name(), dir.path("f3").c_str());
    EXPECT_EQ(readAt(m, 0, 4096), whole.substr(0, 4006));
    EXPECT_EQ(m.size(), 4006);
    EXPECT_EQ(readAt(m, 1002, 2), "co");
    EXPECT_STREQ(m.name(1003), dir.path("f2").c_str());
    EXPECT_EQ(m.size(1003), 6);
    EXPECT_EQ(readAt(m, 10, 3), whole.substr(10, 3));
    EXPECT_STREQ(m.name(), dir.path("f1").c_str());
}

TEST(MultiFile, SeekForwardFindsTheParts) {
    TempDir dir;
    std::string a = inputtest::pattern(700), b = inputtest::pattern(50), c = "xyz";
    dir.write("g1", a);
    dir.write("g2", b);
    dir.write("g3", c);
    InputMultiFile m(dir.path("g*").c_str(), 0, "basic", nullptr);
    EXPECT_EQ(m.starts.count, 1);
    EXPECT_EQ(readAt(m, 751, 5), "yz");
    EXPECT_EQ(m.starts.count, 3);
    EXPECT_EQ(m.starts[1], 700);
    EXPECT_EQ(m.starts[2], 750);
    m.seek(-2, std::ios::cur);
    EXPECT_EQ(m.offset(), 751);
    EXPECT_EQ(readAt(m, 699, 2), std::string(1, a[699]) + b[0]);
    m.seek(-5, std::ios::beg);
    EXPECT_EQ(m.offset(), 0);
    EXPECT_EQ(m.peek(), 0);
}

TEST(MultiFile, NameGoesInFrontOfAtFiles) {
    TempDir dir;
    dir.write("x@", "data");
    dir.write("longer_name@", "!");
    InputMultiFile m(dir.path("*@").c_str(), 0, "basic", nullptr);
    EXPECT_EQ(m.streams.count, 4);
    EXPECT_EQ(readAll(m, 100), "12longer_name@!02x@data");
    EXPECT_STREQ(m.name(1), dir.path("longer_name@").c_str());
}

TEST(MultiFile, PlainFileIsTheOnlyPart) {
    TempDir dir;
    std::string path = dir.write("one.bin", "just this");
    InputMultiFile m(path.c_str(), 0, "buffer", "1");
    EXPECT_EQ(m.streams.count, 1);
    EXPECT_EQ(readAll(m, 3), "just this");
    EXPECT_TRUE(m.eof());
}

TEST(MultiFile, NoFileMatching) {
    TempDir dir;
    dir.write("a.bin", "x");
    try {
        InputMultiFile m(dir.path("*.dat").c_str(), 0, "basic", nullptr);
        FAIL() << "no error";
    } catch (zun::StdError& e) {
        EXPECT_EQ(e.code(), 2);
        EXPECT_EQ(std::string(e.message.str()), "no file matching \"*.dat\" in folder \"" + dir.path() + "\"");
    }
}

TEST(MultiFile, OnlyHiddenFilesGiveAnEmptyStream) {
    TempDir dir;
    dir.write(".h1", "x");
    InputMultiFile m(dir.path(".h*").c_str(), 0, "basic", nullptr);
    EXPECT_EQ(m.streams.count, 0);
    char b[4];
    EXPECT_EQ(m.bufread(b, 4, 0), 0u);
    EXPECT_TRUE(m.eof());
    EXPECT_EQ(m.peek(), -1);
}

TEST(MultiFile, BufferedSetOfFiles) {
    TempDir dir;
    dir.write("s1", "abc");
    dir.write("s2", "def");
    zun::InputBStream s(dir.path("s*").c_str(), 0, 1024);
    EXPECT_EQ(readAt(s, 2, 3), "cde");
    EXPECT_EQ(readAt(s, 0, 10), "abcdef");
    EXPECT_TRUE(s.eof());
}
