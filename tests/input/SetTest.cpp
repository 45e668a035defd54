// Sets of files, pipes, the driver registry and file names.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "InputTestUtil.h"
#include "input/FileUtils.h"
#include "input/InputBStream.h"
#include "input/InputBasicFile.h"
#include "input/InputMultiFile.h"
#include "input/InputServer.h"

using inputtest::readAll;
using inputtest::readAt;
using inputtest::stdErrorOf;
using inputtest::TempDir;
using zun::FileUtils;
using zun::InputMultiFile;
using zun::InputServer;
using zun::InputStream;
using zun::String;

namespace {

// A FIFO with the test holding both of its ends, so that no open blocks. The
// data is written at once (it must fit the pipe); release() leaves the reader
// the data and then the end of the stream.
class Fifo {
public:
    std::string path;
    int keeper = -1;

    Fifo(const TempDir& dir, const std::string& name, const std::string& data) : path(dir.path(name)) {
        if (::mkfifo(path.c_str(), 0600) == 0) keeper = ::open(path.c_str(), O_RDWR | O_NONBLOCK);
        if (keeper >= 0 && ::write(keeper, data.data(), data.size()) != static_cast<ssize_t>(data.size())) release();
    }
    ~Fifo() { release(); }
    bool ok() const { return keeper >= 0; }
    void release() {
        if (keeper >= 0) ::close(keeper);
        keeper = -1;
    }
};

// Every test ends: a stuck read is killed by the alarm.
class FifoInput : public ::testing::Test {
protected:
    TempDir dir;
    void SetUp() override { ::alarm(30); }
    void TearDown() override { ::alarm(0); }
};

InputServer& server() { return InputServer::getInstance(); }

// What kind of stream s is: "none", "basic", "fstream", "buffer <bytes>",
// "bmulti <bytes>" or "multi of <kind of the first part>".
std::string kind(InputStream* s) {
    if (!s) return "none";
    if (auto* b = dynamic_cast<zun::InputBStream*>(s))
        return (dynamic_cast<zun::InputMultiFile*>(b->source) ? "bmulti " : "buffer ") + std::to_string(b->bufSize);
    if (auto* m = dynamic_cast<zun::InputMultiFile*>(s)) return "multi of " + kind(m->streams.at(0));
    if (dynamic_cast<zun::InputBasicFile*>(s)) return "basic";
    if (dynamic_cast<zun::InputFStream*>(s)) return "fstream";
    return "other";
}

class Server : public ::testing::Test {
protected:
    TempDir dir;
    void SetUp() override {
        dir.write("d.bin", inputtest::pattern(10000));
        dir.write("w1", "one");
        dir.write("w2", "two");
    }
    std::unique_ptr<InputStream> open(const std::string& name, const char* driver = nullptr,
                                      const char* option = nullptr) {
        return std::unique_ptr<InputStream>(
            server().getFile(dir.path(name).c_str(), InputStream::BigEndian, driver, option));
    }
    std::string kindOf(const std::string& name, const char* driver = nullptr, const char* option = nullptr) {
        return kind(open(name, driver, option).get());
    }
};

}  // namespace

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
    EXPECT_EQ(readAt(m, 0, 4096), whole);
    EXPECT_EQ(m.size(), 4006);
    EXPECT_EQ(readAt(m, 1002, 2), "co");
    EXPECT_STREQ(m.name(1003), dir.path("f2").c_str());
    EXPECT_EQ(m.size(1003), 6);
    EXPECT_EQ(readAt(m, 10, 3), whole.substr(10, 3));
    EXPECT_STREQ(m.name(), dir.path("f1").c_str());
}

TEST(MultiFile, SeekForwardFindsTheParts) {
    TempDir dir;
    std::string a = inputtest::pattern(700), b = inputtest::pattern(50);
    dir.write("g1", a);
    dir.write("g2", b);
    dir.write("g3", "xyz");
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

TEST(MultiFile, OnePlainFileNoFileAndOnlyHiddenFiles) {
    TempDir dir;
    std::string path = dir.write("one.bin", "just this");
    dir.write(".h1", "x");
    InputMultiFile one(path.c_str(), 0, "buffer", "1");
    EXPECT_EQ(one.streams.count, 1);
    EXPECT_EQ(readAll(one, 3), "just this");
    EXPECT_TRUE(one.eof());
    InputMultiFile hidden(dir.path(".h*").c_str(), 0, "basic", nullptr);
    EXPECT_EQ(hidden.streams.count, 0);
    EXPECT_EQ(readAll(hidden, 4), "");
    EXPECT_TRUE(hidden.eof());
    EXPECT_EQ(hidden.peek(), -1);
    EXPECT_EQ(stdErrorOf([&] { InputMultiFile m(dir.path("*.dat").c_str(), 0, "basic", nullptr); }),
              "2: no file matching \"*.dat\" in folder \"" + dir.path() + "\"");
    // a buffered stream over a missing file looks for it as a set
    EXPECT_EQ(stdErrorOf([&] { zun::InputBStream s(dir.path("nothing.bin").c_str(), 0, 1024); }),
              "2: no file matching \"nothing.bin\" in folder \"" + dir.path() + "\"");
}

TEST_F(FifoInput, BasicFileSeeksOnlyForward) {
    std::string data = inputtest::pattern(3000);
    Fifo fifo(dir, "pipe", data);
    ASSERT_TRUE(fifo.ok());
    zun::InputBasicFile f(fifo.path.c_str());
    fifo.release();
    EXPECT_TRUE(f.isFifo());
    EXPECT_EQ(readAt(f, 100, 10), data.substr(100, 10));
    f.seek(5, std::ios::cur);
    EXPECT_EQ(f.offset(), 115);
    f.seek(2000, std::ios::end);  // taken as the place itself
    EXPECT_EQ(f.offset(), 2000);
    EXPECT_EQ(stdErrorOf([&] { f.seek(50); }), "29: seek backwards not allowed on FIFO stream \"" + fifo.path + "\"");
    EXPECT_NE(stdErrorOf([&] { f.seek(-7, std::ios::beg); }), "");  // counts as 0, which lies behind
    f.seek(9000);                                                      // past the end: stops there
    EXPECT_EQ(f.offset(), 3000);
    EXPECT_TRUE(f.eof());
}

TEST_F(FifoInput, BufferedJumpsBackWithinWhatItKeeps) {
    std::string data = inputtest::pattern(20000);
    Fifo fifo(dir, "pipe", data);
    ASSERT_TRUE(fifo.ok());
    zun::InputBStream s(fifo.path.c_str(), 0, 4096);
    fifo.release();
    EXPECT_TRUE(s.isFifo());
    EXPECT_EQ(s.keep, 4096 - 1024);
    EXPECT_EQ(readAt(s, 0, 8), data.substr(0, 8));
    EXPECT_EQ(readAt(s, 10000, 16), data.substr(10000, 16));
    EXPECT_EQ(readAt(s, 10000 - 3000, 16), data.substr(7000, 16));
    // the buffer holds 6928 up to 11024
    EXPECT_EQ(stdErrorOf([&] { readAt(s, 6000, 4); }),
              "29: seek backwards not allowed on FIFO stream \"" + fifo.path +
                  "\", try increasing the read buffer to minimum 5 KBytes");
    EXPECT_EQ(readAt(s, 11000, 1000), data.substr(11000, 1000));  // across a refill
    EXPECT_EQ(readAt(s, 12000 - 3072, 100), data.substr(12000 - 3072, 100));
    EXPECT_EQ(readAt(s, 19990, 100), data.substr(19990, 10));
    EXPECT_TRUE(s.eof());
}

TEST_F(FifoInput, MultiFileWithAPipePart) {
    dir.write("p1", inputtest::pattern(300));
    Fifo fifo(dir, "p2", "PIPE");
    ASSERT_TRUE(fifo.ok());
    dir.write("p3", "third part");
    zun::InputMultiFile m(dir.path("p*").c_str(), 0, "basic", nullptr);
    fifo.release();
    ASSERT_EQ(m.streams.count, 3);
    // the end of the pipe part is found on the way
    EXPECT_EQ(readAt(m, 306, 4), "ird ");
    EXPECT_EQ(m.starts.count, 3);
    EXPECT_EQ(m.starts[2], 304);
    EXPECT_STREQ(m.name(), dir.path("p3").c_str());
}

TEST_F(Server, DriversAndTheirOptions) {
    const struct {
        const char *name, *driver, *option, *kind;
    } rows[] = {
        {"d.bin", nullptr, nullptr, "buffer 2048"}, {"d.bin", nullptr, "9", "buffer 2048"},  // no driver: no option
        // buffer sizes in kilobytes; 0 takes the file's size, empty the default
        {"d.bin", "buffer", "5", "buffer 5120"}, {"d.bin", "buffer", "-3", "buffer 3072"},
        {"d.bin", "buffer", "0", "buffer 10000"}, {"d.bin", "buffer", "", "buffer 2048"},
        {"d.bin", "buffer", "50", "buffer 10000"},  // no more than the file's size
        {"d.bin", "buffer", "5k", "none"}, {"d.bin", "memory", nullptr, "buffer 10000"},
        // a driver without a default option takes none
        {"d.bin", "memory", "4", "none"}, {"d.bin", "basic", nullptr, "basic"}, {"d.bin", "basic", "1", "none"},
        {"d.bin", "fstream", nullptr, "fstream"}, {"d.bin", "nosuchdriver", nullptr, "none"},
        // the driver inside the path
        {"d.bin::basic", nullptr, nullptr, "basic"}, {"d.bin::buffer:3", nullptr, nullptr, "buffer 3072"},
        {"d.bin::buffer", nullptr, nullptr, "buffer 2048"},
        // wildcards open each match by the driver; bmulti buffers a set, even a set of one;
        // a part as small as these needs no buffer beyond the smallest
        {"w*", nullptr, nullptr, "multi of buffer 2048"}, {"w*", "buffer", "3", "multi of buffer 2048"},
        {"w*", "basic", nullptr, "multi of basic"}, {"w*", "multi", nullptr, "multi of buffer 2048"},
        {"w*", "bmulti", "1", "bmulti 1024"}, {"w1", "bmulti", nullptr, "bmulti 2048"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(kindOf(r.name, r.driver, r.option), r.kind)
            << r.name << " " << (r.driver ? r.driver : "-") << " " << (r.option ? r.option : "-");
    EXPECT_STREQ(server().getDriverDefault(), "buffer");
    EXPECT_EQ(open("d.bin::basic")->name(), dir.path("d.bin"));
    char b[6];
    EXPECT_EQ(open("w*")->bufread(b, 6, 0), 6u);
    EXPECT_EQ(std::string(b, 6), "onetwo");
    EXPECT_EQ(open("w*", "bmulti")->bufread(b, 6, 0), 6u);
    EXPECT_EQ(std::string(b, 6), "onetwo");
    EXPECT_EQ(stdErrorOf([&] { open("absent.bin", "buffer", "5"); }).rfind("2: no file matching ", 0), 0u);
}

TEST_F(Server, DriverDefaultsCanChange) {
    server().setDriverOption("4");
    EXPECT_EQ(kindOf("d.bin"), "buffer 4096");
    server().setDriverOption("1", "memory");  // no default option: stays without
    EXPECT_EQ(kindOf("d.bin", "memory", "1"), "none");
    server().setDriverDefault("basic");
    EXPECT_EQ(kindOf("d.bin"), "basic");
    server().setDriverDefault("buffer");
    server().setDriverOption("2", "buffer");
    EXPECT_EQ(kindOf("d.bin"), "buffer 2048");
}

TEST_F(Server, AddedDriverIsFoundFirst) {
    InputServer& srv = server();
    long before = srv.drivers.count;
    srv.addDriver("basic", [](const char*, InputStream::ByteOrder, const char*) -> InputStream* {
        return new zun::InputSStream("replaced", -1, "custom");
    }, nullptr);
    EXPECT_STREQ(open("d.bin", "basic")->name(), "custom");
    srv.drivers.del(srv.drivers.count - before);
    srv.options.del(srv.options.count - before);
    srv.factories.del(srv.factories.count - before);
    EXPECT_EQ(kindOf("d.bin", "basic"), "basic");
}

TEST(FileUtils, PathParts) {
    const struct {
        String got;
        const char* expected;
    } rows[] = {
        {FileUtils::pathName("a", "b/"), "b/a"}, {FileUtils::pathName("a", "b"), "b/a"},
        {FileUtils::pathName("a", nullptr), "a"}, {FileUtils::pathName("a", ""), "/a"},
        {FileUtils::pathName("sub/x.bin", "/data"), "/data/sub/x.bin"},
        {FileUtils::baseName("a/b/c.dd"), "c.dd"}, {FileUtils::baseName("c.dd"), "c.dd"}, {FileUtils::baseName(""), ""},
        {FileUtils::baseName("a/b/"), ""}, {FileUtils::baseName("a/b/", true), "b"}, {FileUtils::baseName("/", true), ""},
        {FileUtils::dirName("a/b/c.dd"), "a/b"}, {FileUtils::dirName("/c.dd"), "/"},
        {FileUtils::dirName("c.dd"), "/"},  // no folder counts as the root
        {FileUtils::dirName(""), "/"}, {FileUtils::dirName("a/b/"), "a/b"}, {FileUtils::dirName("a/b/", true), "a"},
        {FileUtils::dirName("a/", true), "/"}, {FileUtils::dirName("/x/y", true), "/x"},
    };
    for (const auto& r : rows) EXPECT_EQ(r.got, r.expected);
}

TEST(FileUtils, ChecksAndFolders) {
    TempDir dir;
    std::string file = dir.write("f.dd", "x"), fifo = dir.path("p");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_TRUE(FileUtils::checkFile(file.c_str()));
    EXPECT_TRUE(FileUtils::checkFile(fifo.c_str()));
    EXPECT_FALSE(FileUtils::checkFile(dir.path().c_str()));
    EXPECT_FALSE(FileUtils::checkFile(dir.path("none").c_str()));
    EXPECT_FALSE(FileUtils::checkFile(nullptr));

    EXPECT_EQ(FileUtils::pathNameCheck("f.dd", dir.path().c_str()), file.c_str());
    EXPECT_EQ(stdErrorOf([&] { FileUtils::pathNameCheck("", dir.path().c_str()); }),
              "2: invalid blank filename");
    EXPECT_NE(stdErrorOf([&] { FileUtils::pathNameCheck(nullptr, nullptr); }), "");
    EXPECT_EQ(stdErrorOf([&] { FileUtils::pathNameCheck("g.dd", dir.path().c_str()); }),
              "2: \"" + dir.path("g.dd") + "\"");

    std::string deep = dir.path("a/b/c");
    EXPECT_TRUE(FileUtils::makePath(deep.c_str(), 0755));
    struct stat st;
    ASSERT_EQ(::stat(deep.c_str(), &st), 0);
    EXPECT_TRUE(S_ISDIR(st.st_mode));
    EXPECT_TRUE(FileUtils::makePath(deep.c_str(), 0755));  // already there
    EXPECT_FALSE(FileUtils::makePath((file + "/sub").c_str(), 0755));
    EXPECT_FALSE(FileUtils::makePath(file.c_str(), 0755));
    EXPECT_FALSE(FileUtils::makePath(nullptr, 0755));
}

TEST(FileUtils, ListFilesSortedFilteredAndRecursive) {
    TempDir dir;
    for (const char* name : {"b.bin", "a.bin", "c.txt", "sub.bin/z.bin", "x1", "x2/x3", "x2/y", "x4"}) dir.write(name, "");
    zun::ObjAppendList<String> list;
    auto names = [&] {
        std::string out;
        for (long i = 0; i < list.count; ++i) out += std::string(list[i].str() + dir.path().size() + 1) + " ";
        list.flush();
        return out;
    };
    EXPECT_EQ(FileUtils::listFiles(dir.path().c_str(), "*.bin", false, list), 2);
    EXPECT_EQ(FileUtils::listFiles(dir.path().c_str(), nullptr, false, list), 5);  // appended
    EXPECT_EQ(names(), "a.bin b.bin a.bin b.bin c.txt x1 x4 ");
    EXPECT_EQ(FileUtils::listFiles(dir.path().c_str(), "x*", true, list), 3);
    EXPECT_EQ(names(), "x1 x2/x3 x4 ");
    EXPECT_EQ(FileUtils::listFiles(dir.path("missing").c_str(), nullptr, false, list), 0);
}
