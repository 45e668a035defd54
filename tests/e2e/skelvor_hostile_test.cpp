// skelvor on hostile input: paths that are no files, sizes and values at the
// edge of their range, output that can't be written, dictionaries that are no
// dictionaries. Each run must end with a clear error line and status 1, or
// with the right value; never a crash, a hang or a wrong value.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Harness.h"

namespace {

// A run that hangs ends at this limit with status -1.
const int limitSeconds = 20;

class Hostile : public ::testing::Test {
protected:
    e2e::TempDir dir;

    std::string write(const std::string& name, const std::string& bytes) { return dir.write(name, bytes); }

    e2e::Result run(const std::vector<std::string>& args) {
        e2e::RunOptions options;
        options.cwd = dir.path();
        options.timeoutSeconds = limitSeconds;
        return e2e::skelvor(args, options);
    }

    // skelvor through the shell, with the redirections of its standard
    // streams that the runner can't make ("< /dev/null", ">&-").
    e2e::Result runRedirected(const std::string& redirections, const std::vector<std::string>& args) {
        std::vector<std::string> shellArgs = {"-c", "exec \"$0\" \"$@\" " + redirections, SKELVOR_BIN};
        shellArgs.insert(shellArgs.end(), args.begin(), args.end());
        e2e::RunOptions options;
        options.cwd = dir.path();
        options.timeoutSeconds = limitSeconds;
        return e2e::run("/bin/sh", shellArgs, options);
    }
};

void expectError(const e2e::Result& r, const std::string& err, const std::string& out = "") {
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
    e2e::Result whole = run({"set/a*", "-d=t"});
    EXPECT_EQ(whole.out, "0> a = 65\n1> b = 66\n");
    EXPECT_EQ(whole.status, 0);
    // a link to nothing that the pattern finds: a part that can't be a set
    e2e::run("/bin/ln", {"-s", "/nonexistent/x", dir.path("set/a3")});
    expectError(run({"set/a*", "-d=t"}), "ERROR-STD022 Invalid argument : file \"set/a3\" can't be examined\n");
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
    e2e::Result none = run({"d.bin", "-d=n", miss});
    EXPECT_EQ(none.out, "");
    EXPECT_EQ(none.err, "WARNING-MAIN : " + miss + " no match found\n");
    EXPECT_EQ(none.status, 0);
    e2e::Result found = run({"d.bin", "-d=n", repeat("*a", 60) + "*"});
    EXPECT_EQ(found.out, "0> " + name + " = 65\n");
    EXPECT_EQ(found.err, "");
    EXPECT_EQ(found.status, 0);
}

// ---------------------------------------------------------------- statements

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

}  // namespace
