#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>

#include "InputTestUtil.h"
#include "base/Exception.h"
#include "input/FileUtils.h"

using inputtest::TempDir;
using zun::FileUtils;
using zun::String;

TEST(FileUtils, PathName) {
    EXPECT_EQ(FileUtils::pathName("a", "b/"), "b/a");
    EXPECT_EQ(FileUtils::pathName("a", "b"), "b/a");
    EXPECT_EQ(FileUtils::pathName("a", nullptr), "a");
    EXPECT_EQ(FileUtils::pathName("a", ""), "/a");
    EXPECT_EQ(FileUtils::pathName("sub/x.bin", "/data"), "/data/sub/x.bin");
}

TEST(FileUtils, BaseName) {
    EXPECT_EQ(FileUtils::baseName("a/b/c.dd"), "c.dd");
    EXPECT_EQ(FileUtils::baseName("c.dd"), "c.dd");
    EXPECT_EQ(FileUtils::baseName(""), "");
    EXPECT_EQ(FileUtils::baseName("a/b/"), "");
    EXPECT_EQ(FileUtils::baseName("a/b/", true), "b");
    EXPECT_EQ(FileUtils::baseName("/", true), "");
}

TEST(FileUtils, DirName) {
    EXPECT_EQ(FileUtils::dirName("a/b/c.dd"), "a/b");
    EXPECT_EQ(FileUtils::dirName("/c.dd"), "/");
    EXPECT_EQ(FileUtils::dirName("c.dd"), "/");  // no folder counts as the root
    EXPECT_EQ(FileUtils::dirName(""), "/");
    EXPECT_EQ(FileUtils::dirName("a/b/"), "a/b");
    EXPECT_EQ(FileUtils::dirName("a/b/", true), "a");
    EXPECT_EQ(FileUtils::dirName("a/", true), "/");
    EXPECT_EQ(FileUtils::dirName("/x/y", true), "/x");
}

TEST(FileUtils, CheckFile) {
    TempDir dir;
    std::string file = dir.write("f", "x");
    EXPECT_TRUE(FileUtils::checkFile(file.c_str()));
    EXPECT_FALSE(FileUtils::checkFile(dir.path().c_str()));
    EXPECT_FALSE(FileUtils::checkFile(dir.path("none").c_str()));
    EXPECT_FALSE(FileUtils::checkFile(nullptr));
    std::string fifo = dir.path("p");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_TRUE(FileUtils::checkFile(fifo.c_str()));
}

TEST(FileUtils, PathNameCheck) {
    TempDir dir;
    dir.write("f.dd", "x");
    EXPECT_EQ(FileUtils::pathNameCheck("f.dd", dir.path().c_str()), dir.path("f.dd").c_str());
    try {
        FileUtils::pathNameCheck("", dir.path().c_str());
        FAIL() << "no error";
    } catch (zun::StdError& e) {
        EXPECT_EQ(e.code(), 2);
        EXPECT_EQ(std::string(e.message.str()), "invalid blank filename");
    }
    EXPECT_THROW(FileUtils::pathNameCheck(nullptr, nullptr), zun::StdError);
    try {
        FileUtils::pathNameCheck("g.dd", dir.path().c_str());
        FAIL() << "no error";
    } catch (zun::StdError& e) {
        EXPECT_EQ(e.code(), 2);
        EXPECT_EQ(std::string(e.message.str()), "\"" + dir.path("g.dd") + "\"");
    }
}

TEST(FileUtils, MakePath) {
    TempDir dir;
    std::string deep = dir.path("a/b/c");
    EXPECT_TRUE(FileUtils::makePath(deep.c_str(), 0755));
    struct stat st;
    ASSERT_EQ(::stat(deep.c_str(), &st), 0);
    EXPECT_TRUE(S_ISDIR(st.st_mode));
    EXPECT_TRUE(FileUtils::makePath(deep.c_str(), 0755));  // already there
    std::string file = dir.write("plain", "x");
    EXPECT_FALSE(FileUtils::makePath((file + "/sub").c_str(), 0755));
    EXPECT_FALSE(FileUtils::makePath(file.c_str(), 0755));
    EXPECT_FALSE(FileUtils::makePath(nullptr, 0755));
}

TEST(FileUtils, ListFilesSortedAndFiltered) {
    TempDir dir;
    dir.write("b.bin", "");
    dir.write("a.bin", "");
    dir.write("c.txt", "");
    dir.write("sub.bin/z.bin", "");
    zun::ObjAppendList<String> list;
    EXPECT_EQ(FileUtils::listFiles(dir.path().c_str(), "*.bin", false, list), 2);
    ASSERT_EQ(list.count, 2);
    EXPECT_EQ(list[0], dir.path("a.bin").c_str());
    EXPECT_EQ(list[1], dir.path("b.bin").c_str());
    EXPECT_EQ(FileUtils::listFiles(dir.path().c_str(), nullptr, false, list), 3);
    EXPECT_EQ(list.count, 5);
    EXPECT_EQ(list[4], dir.path("c.txt").c_str());
}

TEST(FileUtils, ListFilesRecursive) {
    TempDir dir;
    dir.write("x1", "");
    dir.write("x2/x3", "");
    dir.write("x2/y", "");
    dir.write("x4", "");
    zun::ObjAppendList<String> list;
    EXPECT_EQ(FileUtils::listFiles(dir.path().c_str(), "x*", true, list), 3);
    ASSERT_EQ(list.count, 3);
    EXPECT_EQ(list[0], dir.path("x1").c_str());
    EXPECT_EQ(list[1], dir.path("x2/x3").c_str());
    EXPECT_EQ(list[2], dir.path("x4").c_str());
    zun::ObjAppendList<String> none;
    EXPECT_EQ(FileUtils::listFiles(dir.path("missing").c_str(), nullptr, false, none), 0);
}
