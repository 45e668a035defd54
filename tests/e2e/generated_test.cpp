// End-to-end checks that need code: a named pipe fed while skelvor reads it,
// texts too long to write out, and the machine's own byte order. Every other
// end-to-end check is a case file under tests/cases.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "support/Process.h"
#include "support/TempDir.h"

namespace {

using testsupport::Result;

class Generated : public ::testing::Test {
protected:
    testsupport::TempDir dir;

    void SetUp() override { dir.write("data.bin", "ABCDEFGHIJKLMNOP"); }
    // Runs program in the scratch folder and compares the whole run.
    void expectRun(const char* program, const std::vector<std::string>& args, int status, const std::string& out,
                   const std::string& err = "") {
        testsupport::RunOptions options;
        options.cwd = dir.path();
        Result r = testsupport::run(testsupport::programPath(program), args, options);
        EXPECT_EQ(r.out, out);
        EXPECT_EQ(r.err, err);
        EXPECT_EQ(r.status, status);
    }
};

// Writes data into the FIFO at path once a reader has it open. Without a
// reader it gives up after some seconds, so that a failing test can't hang.
std::thread feedFifo(const std::string& path, const std::string& data) {
    return std::thread([path, data] {
        int fd = -1;
        for (int tries = 0; tries < 1000 && (fd = open(path.c_str(), O_WRONLY | O_NONBLOCK)) < 0; ++tries)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        if (fd < 0) return;
        fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
        size_t done = 0;
        while (done < data.size()) {
            ssize_t n = ::write(fd, data.data() + done, data.size() - done);
            if (n <= 0) break;  // the reader is gone
            done += static_cast<size_t>(n);
        }
        close(fd);
    });
}

TEST_F(Generated, ANamedPipe) {
    signal(SIGPIPE, SIG_IGN);
    dir.write("back.dd", "back|||\na|UChar||||5000\nb|UChar||||0\n");
    dir.write("p.dd", "p|||\na|String||strlen(#filename)\nb|String||#fifo + 1\nc|String||strlen(#dirname)\n");
    ASSERT_EQ(mkfifo(dir.path("pipe").c_str(), 0600), 0);

    std::thread writer = feedFifo(dir.path("pipe"), "ABCDEFGHIJ");
    expectRun("skelvor", {"pipe", "-d=p"}, 0, "00000000> a = \"ABCD\"\n00000004> b = \"EF\"\n00000006> c = \"\"\n");
    writer.join();

    writer = feedFifo(dir.path("pipe"), testsupport::pattern(8000));
    expectRun("skelvor", {"pipe", "-d=back", "-bs=1"}, 1, "00005000> a = 231\n00000000> b = ",
              "ERROR-STD029 Illegal seek : seek backwards not allowed on FIFO stream \"pipe\", try increasing the "
              "read buffer to minimum 6 KBytes\n");
    writer.join();
}

TEST_F(Generated, TheMachinesByteOrder) {
    const std::string fields = "s|UShort|||\nt|SLong||3\n";
    dir.write("none.dd", "none|||\n" + fields);
    dir.write("local.dd", "local|||Local\n" + fields);
    dir.write("order.bin", testsupport::bytes({0x01, 0x02, 0xFF, 0xFF, 0xFE}));
    const std::string asMachine =
        __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? "0> s = 513\n2> t = -65537\n" : "0> s = 258\n2> t = -2\n";
    expectRun("skelvor", {"order.bin", "-d=local"}, 0, asMachine);
    expectRun("skelvor", {"order.bin", "-d=none", "-cs=local"}, 0, asMachine);
}

TEST_F(Generated, DictionaryLinesOverTheLimit) {
    const std::string longName(3000, 'n');
    const std::string error =
        "ERROR-VEXA015 dictionary error : line longer than 2047 characters in dictionary 't.dd'\n";
    dir.write("t.dd", "t|||\n" + longName + "|UChar|||\n");
    expectRun("skelvor", {"data.bin", "-d=t"}, 1, "", error);
    dir.write("t.dd", "t|" + longName + "||\na|UChar|||\n");
    expectRun("skelvor", {"data.bin", "-d=t"}, 1, "", error);
    // a line of 2047 characters is within the limit
    const std::string name(2047 - 9, 'n');
    dir.write("t.dd", "t|||\n" + name + "|UChar|||\n");
    expectRun("skelvor", {"data.bin", "-d=t", "-base", "-i"}, 0, "FILE ; Record't ; t\n|_ " + name + " ; UChar ; \n");
}

TEST_F(Generated, ADictionaryThatContainsItself) {
    dir.write("self.dd", "self|||\na|@self|||\n");
    std::string path = "a";
    for (int level = 2; level <= 255; ++level) path += ".a";
    const std::string error = "ERROR-VEXA008 reference recursion : reference recursion from structure [" + path +
                              "] (structure nested too deep)\n";
    expectRun("skelvor", {"data.bin", "-d=self"}, 1, "00> a.a (self) = ", error);
    expectRun("skelvor", {"data.bin", "-d=self", "-b"}, 1, "", error);
    std::string tree = "a ; Record'self ; self\n";
    for (int level = 2; level <= 255; ++level)
        tree += std::string(2 * (level - 2), ' ') + "|_ a ; Record'self ; self\n";
    expectRun("skelvor", {"data.bin", "-d=self", "-i", "-r"}, 1, tree, error);
}

TEST_F(Generated, StatementNestedDeeperThanTheParsersStacks) {
    // the mark stands on the token where they ran out
    std::string deep = std::string(250, '(') + "1" + std::string(250, ')');
    expectRun("skelvor-calc", {deep}, 1, "",
              "ERROR-CALC001 parse error : in statement (" + std::string(198, '(') + " >>> ( <<< )\n");
}

}  // namespace
