#include <gtest/gtest.h>

#include <string>

#include "InputTestUtil.h"
#include "base/Exception.h"
#include "input/InputBasicFile.h"
#include "input/InputStream.h"

using inputtest::TempDir;

TEST(StlStream, GetlineLastLineWithoutNewline) {
    TempDir dir;
    zun::InputFStream f(dir.write("d.dd", "head\nlast").c_str());
    EXPECT_EQ(f.size(), 9);
    char line[32];
    f.getline(line, sizeof line, '\n');
    EXPECT_STREQ(line, "head");
    EXPECT_FALSE(f.eof());
    f.getline(line, sizeof line, '\n');
    EXPECT_STREQ(line, "last");
    EXPECT_TRUE(f.eof());
}

TEST(StlStream, LongLineLeavesTheFailedState) {
    zun::InputSStream s("abcdefghij\nk\n", -1, "text");
    char line[5];
    s.getline(line, sizeof line, '\n');
    EXPECT_STREQ(line, "abcd");
    EXPECT_TRUE(s.fail());
    EXPECT_FALSE(s.eof());
}

TEST(StlStream, MemoryTextSizeNameAndShortReads) {
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
}

TEST(StlStream, OpenFailure) {
    try {
        zun::InputFStream f("/nonexistent-folder/d.dd");
        FAIL() << "no error";
    } catch (zun::StdError& e) {
        EXPECT_EQ(e.code(), 2);
        EXPECT_EQ(std::string(e.message.str()), "file \"/nonexistent-folder/d.dd\" open failed");
    }
}

TEST(StlStream, AnyIstream) {
    std::istringstream text("xyz");
    zun::InputStreamStl s(&text, "outside");
    EXPECT_EQ(s.size(), 3);
    char b[2];
    EXPECT_EQ(s.bufread(b, 2, 5), 7u);
    EXPECT_EQ(s.offset(), 2);
}

TEST(BasicFileLines, Getline) {
    TempDir dir;
    zun::InputBasicFile f(dir.write("t.txt", "one\ntwo").c_str());
    char line[16];
    f.getline(line, sizeof line, '\n');
    EXPECT_STREQ(line, "one");
    f.getline(line, sizeof line, '\n');
    EXPECT_STREQ(line, "two");
    EXPECT_TRUE(f.eof());
    EXPECT_FALSE(f.fail());
    f.getline(line, sizeof line, '\n');
    EXPECT_TRUE(f.fail());
}
