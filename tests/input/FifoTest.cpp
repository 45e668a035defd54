#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "InputTestUtil.h"
#include "base/Exception.h"
#include "input/InputBStream.h"
#include "input/InputBasicFile.h"
#include "input/InputMultiFile.h"

using inputtest::TempDir;

namespace {

// A FIFO with the test holding both of its ends, so that no open blocks.
// The data is written at once (it must fit the pipe), and closing the
// test's end leaves the reader the data and then the end of the stream.
class Fifo {
public:
    std::string path;
    int keeper = -1;

    Fifo(const TempDir& dir, const std::string& name) : path(dir.path(name)) {
        if (::mkfifo(path.c_str(), 0600) == 0) keeper = ::open(path.c_str(), O_RDWR | O_NONBLOCK);
    }
    ~Fifo() { release(); }
    bool ok() const { return keeper >= 0; }
    bool write(const std::string& data) {
        return ::write(keeper, data.data(), data.size()) == static_cast<ssize_t>(data.size());
    }
    void release() {
        if (keeper >= 0) ::close(keeper);
        keeper = -1;
    }
};

// Every test ends: a stuck read is killed by the alarm.
class FifoInput : public ::testing::Test {
protected:
    void SetUp() override { ::alarm(30); }
    void TearDown() override { ::alarm(0); }
};

std::string readAt(zun::InputStream& s, long at, unsigned long n) {
    std::string out(n, '\0');
    s.seek(at, std::ios::beg);
    out.resize(s.bufread(&out[0], n, 0));
    return out;
}

}  // namespace

TEST_F(FifoInput, BasicFileSeeksOnlyForward) {
    TempDir dir;
    Fifo fifo(dir, "pipe");
    ASSERT_TRUE(fifo.ok());
    std::string data = inputtest::pattern(3000);
    ASSERT_TRUE(fifo.write(data));
    zun::InputBasicFile f(fifo.path.c_str());
    fifo.release();
    EXPECT_TRUE(f.isFifo());
    f.seek(100);
    EXPECT_EQ(f.offset(), 100);
    char b[10];
    EXPECT_EQ(f.bufread(b, 10, 0), 10u);
    EXPECT_EQ(std::string(b, 10), data.substr(100, 10));
    f.seek(5, std::ios::cur);
    EXPECT_EQ(f.offset(), 115);
    f.seek(2000, std::ios::end);  // taken as the place itself
    EXPECT_EQ(f.offset(), 2000);
    try {
        f.seek(50);
        FAIL() << "no error";
    } catch (zun::StdError& e) {
        EXPECT_EQ(e.code(), 29);
        EXPECT_EQ(std::string(e.message.str()), "seek backwards not allowed on FIFO stream \"" + fifo.path + "\"");
    }
    EXPECT_THROW(f.seek(-7, std::ios::beg), zun::StdError);  // counts as 0, which lies behind
    f.seek(9000);               // past the end: stops there
    EXPECT_EQ(f.offset(), 3000);
    EXPECT_TRUE(f.eof());
}

TEST_F(FifoInput, BufferedJumpsBackWithinKeep) {
    TempDir dir;
    Fifo fifo(dir, "pipe");
    ASSERT_TRUE(fifo.ok());
    std::string data = inputtest::pattern(20000);
    ASSERT_TRUE(fifo.write(data));
    zun::InputBStream s(fifo.path.c_str(), 0, 4096);
    fifo.release();
    EXPECT_TRUE(s.isFifo());
    EXPECT_EQ(s.keep, 4096 - 1024);
    EXPECT_EQ(readAt(s, 0, 8), data.substr(0, 8));
    EXPECT_EQ(readAt(s, 10000, 16), data.substr(10000, 16));
    EXPECT_EQ(readAt(s, 10000 - 3000, 16), data.substr(7000, 16));
    EXPECT_EQ(readAt(s, 11000, 1000), data.substr(11000, 1000));  // across a refill
    EXPECT_EQ(readAt(s, 12000 - 3072, 100), data.substr(12000 - 3072, 100));
    EXPECT_EQ(readAt(s, 19990, 100), data.substr(19990, 10));
    EXPECT_TRUE(s.eof());
}

TEST_F(FifoInput, BufferedJumpTooFarBackFails) {
    TempDir dir;
    Fifo fifo(dir, "pipe");
    ASSERT_TRUE(fifo.ok());
    std::string data = inputtest::pattern(20000);
    ASSERT_TRUE(fifo.write(data));
    zun::InputBStream s(fifo.path.c_str(), 0, 4096);
    fifo.release();
    EXPECT_EQ(readAt(s, 10000, 16), data.substr(10000, 16));
    // the buffer holds 6928 up to 11024
    try {
        readAt(s, 6000, 4);
        FAIL() << "no error";
    } catch (zun::StdError& e) {
        EXPECT_EQ(e.code(), 29);
        EXPECT_EQ(std::string(e.message.str()), "seek backwards not allowed on FIFO stream \"" + fifo.path +
                                 "\", try increasing the read buffer to minimum 5 KBytes");
    }
}

TEST_F(FifoInput, StandardInput) {
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    std::string data = inputtest::pattern(5000);
    ASSERT_EQ(::write(fds[1], data.data(), data.size()), static_cast<ssize_t>(data.size()));
    ::close(fds[1]);
    int savedStdin = ::dup(0);
    ASSERT_GE(savedStdin, 0);
    ::dup2(fds[0], 0);
    ::close(fds[0]);
    {
        zun::InputBStream s(nullptr, 0, 2048);
        EXPECT_STREQ(s.name(), "(stdin)");
        EXPECT_TRUE(s.isFifo());
        EXPECT_EQ(readAt(s, 4000, 10), data.substr(4000, 10));
        EXPECT_EQ(readAt(s, 4990, 20), data.substr(4990, 10));
        EXPECT_TRUE(s.eof());
    }
    ::dup2(savedStdin, 0);
    ::close(savedStdin);
}

TEST_F(FifoInput, MultiFileWithAPipePart) {
    TempDir dir;
    std::string first = inputtest::pattern(300);
    std::string third = "third part";
    dir.write("p1", first);
    Fifo fifo(dir, "p2");
    ASSERT_TRUE(fifo.ok());
    ASSERT_TRUE(fifo.write("PIPE"));
    dir.write("p3", third);
    zun::InputMultiFile m(dir.path("p*").c_str(), 0, "basic", nullptr);
    fifo.release();
    ASSERT_EQ(m.streams.count, 3);
    // the end of the pipe part is found on the way
    m.seek(306);
    EXPECT_EQ(m.starts.count, 3);
    EXPECT_EQ(m.starts[2], 304);
    char b[8];
    EXPECT_EQ(m.bufread(b, 4, 0), 4u);
    EXPECT_EQ(std::string(b, 4), "ird ");
    EXPECT_STREQ(m.name(), dir.path("p3").c_str());
}
