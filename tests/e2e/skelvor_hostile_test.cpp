// skelvor on hostile input: paths that are no files, sizes and values at the
// edge of their range, output that can't be written, dictionaries that are no
// dictionaries. Each run must end with a clear error line and status 1, or
// with the right value; never a crash, a hang or a wrong value.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "support/Process.h"
#include "support/TempDir.h"

namespace {

// A run that hangs ends at this limit with status -1.
const int limitSeconds = 20;

class Hostile : public ::testing::Test {
protected:
    testsupport::TempDir dir;

    std::string write(const std::string& name, const std::string& bytes) { return dir.write(name, bytes); }

    // skelvor in the scratch folder; input, when given, through a pipe.
    testsupport::Result run(const std::vector<std::string>& args, const std::string& input = "") {
        testsupport::RunOptions options;
        options.cwd = dir.path();
        options.timeoutSeconds = limitSeconds;
        options.input = input;
        return testsupport::run(testsupport::programPath("skelvor"), args, options);
    }

    // A shell script run in the scratch folder, with skelvor as $0 and args
    // as its arguments.
    testsupport::Result runShell(const std::string& script, const std::vector<std::string>& args) {
        std::vector<std::string> shellArgs = {"-c", script, testsupport::programPath("skelvor")};
        shellArgs.insert(shellArgs.end(), args.begin(), args.end());
        testsupport::RunOptions options;
        options.cwd = dir.path();
        options.timeoutSeconds = limitSeconds;
        return testsupport::run("/bin/sh", shellArgs, options);
    }
    // skelvor with redirections of its standard streams that the runner
    // can't make ("< /dev/null", ">&-").
    testsupport::Result runRedirected(const std::string& redirections, const std::vector<std::string>& args) {
        return runShell("exec \"$0\" \"$@\" " + redirections, args);
    }
};

void expectError(const testsupport::Result& r, const std::string& err, const std::string& out = "") {
    EXPECT_EQ(r.out, out);
    EXPECT_EQ(r.err, err);
    EXPECT_EQ(r.status, 1);
}

// ---------------------------------------------------------------- data paths

TEST_F(Hostile, ADeviceIsNoDataFile) {
    write("t.dd", "t|||\na|UChar|||\n");
    const struct {
        const char *path, *redirections, *named;
    } rows[] = {
        {"/dev/null", "", "/dev/null"},
        {"/dev/zero", "", "/dev/zero"},
        {"/dev/stdin", "< /dev/null", "/dev/stdin"},
        {"/dev/nul?", "", "/dev/null"},  // a pattern that finds a device
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.path);
        expectError(runRedirected(r.redirections, {r.path, "-d=t"}),
                    std::string("ERROR-STD022 Invalid argument : file \"") + r.named +
                        "\" is a character device, not a regular file or a named pipe\n");
    }
}

TEST_F(Hostile, ASetOfFilesNeverHoldsWhatIsNoFile) {
    write("t.dd", "t|||\na|UChar|||\nb|UChar|||\n");
    write("set/a1", "A");
    write("set/a2", "B");
    testsupport::Result whole = run({"set/a*", "-d=t"});
    EXPECT_EQ(whole.out, "0> a = 65\n1> b = 66\n");
    EXPECT_EQ(whole.status, 0);
    // a link to nothing that the pattern finds: a part that can't be a set
    ASSERT_EQ(::symlink("/nonexistent/x", dir.path("set/a3").c_str()), 0);
    expectError(run({"set/a*", "-d=t"}), "ERROR-STD022 Invalid argument : file \"set/a3\" can't be examined\n");
}

// ---------------------------------------------------------------- read buffer sizes

TEST_F(Hostile, BufferSizesBeyondWhatCanBeHad) {
    write("t.dd", "t|||\na|UChar|||\n");
    write("d.bin", "AB");
    const std::string invalid = "ERROR-MAIN002  : invalid buffer size definition -bs=";
    const std::string noMemory =
        "ERROR-STD012 Cannot allocate memory : cannot allocate read buffer in InputBStream::initFile\n";
    const struct {
        const char* size;
        std::string fromFile, fromPipe;  // standard error; none: the field is read
    } rows[] = {
        // sizes whose count of bytes no long holds
        {"-9223372036854775808", invalid + "-9223372036854775808 (KBytes)\n",
         invalid + "-9223372036854775808 (KBytes)\n"},
        {"9223372036854775807", invalid + "9223372036854775807 (KBytes)\n",
         invalid + "9223372036854775807 (KBytes)\n"},
        {"99999999999999999999", invalid + "99999999999999999999 (KBytes)\n",
         invalid + "99999999999999999999 (KBytes)\n"},
        {"9007199254740992", invalid + "9007199254740992 (KBytes)\n", invalid + "9007199254740992 (KBytes)\n"},
        // the largest: a file needs no more than its size, a pipe can't have it
        {"9007199254740991", "", noMemory},
        {"-9007199254740991", "", noMemory},
        {"1000000000", "", noMemory},
        {"0", "", ""},
        {"-1", "", ""},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.size);
        const std::string option = std::string("-bs=") + r.size;
        testsupport::Result file = run({"d.bin", "-d=t", option});
        EXPECT_EQ(file.err, r.fromFile);
        EXPECT_EQ(file.out, r.fromFile.empty() ? "0> a = 65\n" : "");
        EXPECT_EQ(file.status, r.fromFile.empty() ? 0 : 1);
        testsupport::Result pipe = run({"-", "-d=t", option}, "AB");
        EXPECT_EQ(pipe.err, r.fromPipe);
        EXPECT_EQ(pipe.out, r.fromPipe.empty() ? "00000000> a = 65\n" : "");
        EXPECT_EQ(pipe.status, r.fromPipe.empty() ? 0 : 1);
    }
}

TEST_F(Hostile, AWholeFileBufferForAFileLargerThanMemory) {
    // a file with a hole, twice the size of the machine's memory
    const long long size = 2LL * ::sysconf(_SC_PHYS_PAGES) * ::sysconf(_SC_PAGESIZE);
    const std::string path = write("huge.bin", "");
    if (::truncate(path.c_str(), static_cast<off_t>(size)) != 0) GTEST_SKIP() << "no file of that size here";
    write("t.dd", "t|||\na|UChar|||\n");
    expectError(run({"huge.bin", "-d=t", "-bs=0"}),
                "ERROR-STD012 Cannot allocate memory : cannot allocate read buffer in InputBStream::initFile\n");
    // the default buffer reads it
    testsupport::Result r = run({"huge.bin", "-d=t"});
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, 0);
    ::unlink(path.c_str());
}

// ---------------------------------------------------------------- output that can't be written

TEST_F(Hostile, OutputThatCantBeWrittenIsAnError) {
    write("t.dd", "t|||\na|UChar|||\nb|UChar|||\n");
    write("d.bin", "AB");
    const std::string full = "ERROR-STD028 No space left on device : write error on standard output\n";
    const std::string closed = "ERROR-STD009 Bad file descriptor : write error on standard output\n";
    const struct {
        std::vector<std::string> args;
        const char* redirections;
        std::string err;
    } rows[] = {
        {{"d.bin", "-d=t"}, "> /dev/full", full},
        {{"d.bin", "-d=t"}, ">&-", closed},
        {{"d.bin", "-d=t", "-b"}, "> /dev/full", full},
        {{"d.bin", "-d=t", "-b"}, ">&-", closed},
        {{"d.bin", "-d=t", "-i"}, "> /dev/full", full},
        {{"d.bin", "-d=t", "-base", "-r"}, ">&-", closed},
        // nothing to write: nothing fails
        {{"d.bin", "-d=t", "nothing"}, ">&-", "WARNING-MAIN : nothing no match found\n"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.args.back() + " " + r.redirections);
        testsupport::Result result = runRedirected(r.redirections, r.args);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, r.err);
        EXPECT_EQ(result.status, r.err == full || r.err == closed ? 1 : 0);
    }
}

// ---------------------------------------------------------------- running out of memory

TEST_F(Hostile, RunningOutOfMemoryEndsWithStatusOne) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizers' shadow memory doesn't fit under a limit of the address space";
#endif
    // 300 MB of zero bytes in a String: its escaped text alone takes five
    // times that, beyond a limit of 1.5 GB
    const std::string path = write("zeros.bin", "");
    ASSERT_EQ(::truncate(path.c_str(), 314572800), 0);
    write("s.dd", "s|||\ns|String||314572800\n");
    testsupport::Result r = runShell("ulimit -v 1500000 && exec \"$0\" \"$@\" > /dev/null", {"zeros.bin", "-d=s"});
    EXPECT_EQ(r.err.rfind("ERROR-", 0), 0u) << r.err;
    EXPECT_NE(r.err.find("bad_alloc"), std::string::npos) << r.err;
    EXPECT_EQ(r.status, 1);
    ::unlink(path.c_str());
}

// ---------------------------------------------------------------- dictionaries that are no dictionaries

TEST_F(Hostile, APipeOrADeviceIsNoDictionary) {
    write("d.bin", "AB");
    write("fifo.dd", "f|||\na|UChar|||\n");
    ASSERT_EQ(::mkfifo(dir.path("fifo").c_str(), 0600), 0);
    write("sub.dd", "s|||\ns|@fifo|||\n");
    const struct {
        const char *dictionary, *err;
    } rows[] = {
        // the bare name exists, so it is the one chosen, and refused: it would block
        {"-d=fifo", "ERROR-STD022 Invalid argument : dictionary \"fifo\" is a named pipe, not a regular file\n"},
        {"-d=sub", "ERROR-STD022 Invalid argument : dictionary \"fifo\" is a named pipe, not a regular file\n"},
        {"-d=/dev/null",
         "ERROR-STD022 Invalid argument : dictionary \"/dev/null\" is a character device, not a regular file\n"},
        {"-u=/dev/zero",
         "ERROR-STD022 Invalid argument : dictionary \"/dev/zero\" is a character device, not a regular file\n"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.dictionary);
        std::vector<std::string> args = {"d.bin", r.dictionary};
        if (r.dictionary[1] == 'u') args.push_back("-d=fifo.dd");
        expectError(run(args), r.err);
    }
}

TEST_F(Hostile, ABareNameBesideItsDictionary) {
    write("d.bin", "AB");
    write("plain.dd", "p|||\nfromdd|UChar|||\n");
    // only the ".dd" file: it is the dictionary
    EXPECT_EQ(run({"d.bin", "-d=plain"}).out, "0> fromdd = 65\n");
    // a bare file of that name is chosen first, when it is a dictionary
    write("plain", "p|||\nbare|UChar|||\n");
    EXPECT_EQ(run({"d.bin", "-d=plain"}).out, "0> bare = 65\n");
    // and refused when it is data: binary from its first line on
    write("plain", std::string("AB\0\x01\n", 5));
    expectError(run({"d.bin", "-d=plain"}),
                "ERROR-VEXA015 dictionary error : header line with a zero byte (binary data) in dictionary 'plain'\n");
    // a folder of that name stands for its index.dd
    ::unlink(dir.path("plain").c_str());
    write("plain/index.dd", "i|||\nindexed|UChar|||\n");
    EXPECT_EQ(run({"d.bin", "-d=plain"}).out, "0> indexed = 65\n");
}

TEST_F(Hostile, AFieldWhoseTextIsTooLongForAText) {
    // 440 MB of zero bytes: escaped, five characters each, beyond 32 bits
    const std::string path = write("zeros.bin", "");
    ASSERT_EQ(::truncate(path.c_str(), 440000000), 0);
    write("s.dd", "s|||\ns|String||440000000\n");
    expectError(run({"zeros.bin", "-d=s"}),
                "ERROR-STD075 Value too large for defined data type : a text of 2200000000 characters is longer than "
                "a text can be\n",
                "000000000> s = ");
    ::unlink(path.c_str());
}

// ---------------------------------------------------------------- costly field patterns

std::string repeat(const std::string& piece, int n) {
    std::string s;
    for (int i = 0; i < n; ++i) s += piece;
    return s;
}

TEST_F(Hostile, AFieldPatternWithManyStarsMatchesInTime) {
    const std::string name = repeat("a", 60);
    write("d.bin", "AB");
    write("n.dd", "n|||\n" + name + "|UChar|||\nb|UChar|||\n");
    const std::string miss = repeat("*a", 40) + "*b";
    testsupport::Result none = run({"d.bin", "-d=n", miss});
    EXPECT_EQ(none.out, "");
    EXPECT_EQ(none.err, "WARNING-MAIN : " + miss + " no match found\n");
    EXPECT_EQ(none.status, 0);
    testsupport::Result found = run({"d.bin", "-d=n", repeat("*a", 60) + "*"});
    EXPECT_EQ(found.out, "0> " + name + " = 65\n");
    EXPECT_EQ(found.err, "");
    EXPECT_EQ(found.status, 0);
}

// ---------------------------------------------------------------- values at the edge of their range

// Little-endian bytes of a double given by its bits.
std::string doubleBits(unsigned long long bits) {
    std::string s;
    for (int i = 0; i < 8; ++i) s.push_back(static_cast<char>((bits >> (8 * i)) & 0xff));
    return s;
}

TEST_F(Hostile, DatesThatAreMissingInfiniteOrOutOfRange) {
    write("t.dd",
          "t|||LITTLE-ENDIAN\n"
          "nan|DateTime|2000||\n"
          "minusnan|DateTime|1970||\n"
          "inf|DateTime|2000||\n"
          "minusinf|DateTime|1970||\n"
          "huge|DateTime|1970||\n"
          "minushuge|DateTime|2000||\n"
          "near|DateTime|2000||\n"
          "day|Date|2000||\n");
    write("d.bin", doubleBits(0x7FF8000000000000ULL) + doubleBits(0xFFF8000000000000ULL) +
                       doubleBits(0x7FF0000000000000ULL) + doubleBits(0xFFF0000000000000ULL) +
                       doubleBits(0x7E37E43C8800759CULL) /* 1e300 */ + doubleBits(0xFE37E43C8800759CULL) +
                       doubleBits(0x4199739FDA000000ULL) /* 106751990.5 */ + std::string("\x00\x80", 2));
    testsupport::Result r = run({"d.bin", "-d=t"});
    EXPECT_EQ(r.out,
              "00> nan (date) = nan\n"
              "08> minusnan (date) = nan\n"
              "16> inf (date) = 19-JAN-2038 03:14:07.000000\n"
              "24> minusinf (date) = 13-DEC-1901 20:45:52.000000\n"
              "32> huge (date) = 19-JAN-2038 03:14:07.000000\n"
              "40> minushuge (date) = 13-DEC-1901 20:45:52.000000\n"
              "48> near (date) = 08-JAN-294277 12:00:00.000000\n"
              "56> day (date) = 15-APR-1910\n");
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, 0);
}

// ---------------------------------------------------------------- statements

TEST_F(Hostile, ALongLiteralInADefinitionsFileScansInTime) {
    write("d.bin", "ABC");
    write("defs", "c = \"" + repeat("a", 2000000) + "\"\n");
    write("p.dd", "p|||\ns|String||strlen(#c) - 1999998\n");
    testsupport::Result r = run({"d.bin", "-d=p", "-Ddefs"});
    EXPECT_EQ(r.out, "0> s = \"AB\"\n");
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.status, 0);
}

TEST_F(Hostile, ASizeStatementWithAVectorThatReadsItself) {
    write("d.bin", "AB");
    write("v.dd", "v|||\ns|String||a = vector(1); b = a@x(a[0]); a[0] + 1\n");
    expectError(run({"d.bin", "-d=v"}),
                "ERROR-CALC018 invalid operation : Operation \"vector\" is invalid or incompatible  (an element reads "
                "itself)\n",
                "0> s = ");
    // the vector itself as a size has no number: a size out of range
    write("w.dd", "w|||\ns|String||a = vector(1); b = a@x(a); a\n");
    expectError(run({"d.bin", "-d=w"}),
                "ERROR-VEXA002 value out-of-range : size reference \"a = vector(1); b = a@x(a); a\" of structure "
                "\"s\" returns -9223372036854775808\n",
                "0> s = ");
}

TEST_F(Hostile, ArraysOfARecordThatHoldsItselfPrintToTheDepthLimit) {
    // A record of fixed size that is an array of itself: printing it walks
    // down to the nesting limit without reading a byte, an array text
    // inside the other at each level.
    write("d.bin", "abcdef");
    write("t.dd", "t|||\na|@s|||\nc|UChar|||\n");
    write("s.dd", "s||4|\na|@s|||3\n");
    for (const char* mode : {"-a", "-x"}) {
        SCOPED_TRACE(mode);
        testsupport::Result r = run({"d.bin", "-d=t", mode});
        EXPECT_EQ(r.out.substr(0, 15), "0> a.a.0 (s) = ");
        EXPECT_EQ(r.err.substr(0, 84), "ERROR-VEXA008 reference recursion : reference recursion from structure "
                                       "[a.a.0.a.0.a.");
        EXPECT_NE(r.err.find("] (structure nested too deep)\n"), std::string::npos);
        EXPECT_EQ(r.status, 1);
    }
}

}  // namespace
