// skelvor-calc on hostile statements: values that refer to themselves,
// patterns and literals built to cost time, sizes at the limit, output that
// can't be written. Each run must end with its value, or with a clear error
// line and status 1; never a crash or a hang.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Process.h"
#include "support/TempDir.h"

namespace {

// A run that hangs ends at this limit with status -1.
const int limitSeconds = 20;

testsupport::Result calc(const std::vector<std::string>& args, const std::string& cwd = "") {
    testsupport::RunOptions options;
    options.cwd = cwd;
    options.timeoutSeconds = limitSeconds;
    return testsupport::run(testsupport::programPath("skelvor-calc"), args, options);
}

void expectRun(const testsupport::Result& r, int status, const std::string& out, const std::string& err) {
    EXPECT_EQ(r.out, out);
    EXPECT_EQ(r.err, err);
    EXPECT_EQ(r.status, status);
}

const char* const readsItself =
    "ERROR-CALC018 invalid operation : Operation \"vector\" is invalid or incompatible  (an element reads itself)\n";

// ---------------------------------------------------------------- vectors that name themselves

TEST(CalcHostile, AVectorElementThatReadsItsOwnVector) {
    const struct {
        const char *statement, *out, *err;
    } rows[] = {
        // an element that is the vector: printing it has no end
        {"a = vector(1); a@x(a)", "", readsItself},
        {"a = vector(1); b = a@x(a); a", "", readsItself},
        {"a = vector(1); b = a@x(a); vector(a)", "", readsItself},
        // an element that reads itself, directly or through another
        {"a = vector(1); b = a@x(a[0]); a[0]", "", readsItself},
        {"a = vector(2); b = a@x(a[1], a[0]); a[0] + 1", "", readsItself},
        // reads of other elements, of sizes, of the vector as a whole: values
        {"a = vector(2); b = a@x(5, a[0]); a[1]", "5\n", ""},
        {"a = vector(2)[1, 2]; b = a@x(a[1], a[0]); a", "{2,1}\n", ""},
        {"a = vector(1); b = a@x(a@size(0)); a", "{1}\n", ""},
        {"a = vector(1); b = a@x(a); min(a)", "nan\n", ""},
        {"a = vector(1); b = a@x(a); isna(a) + a@dims", "2\n", ""},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.statement);
        expectRun(calc({r.statement}), *r.err ? 1 : 0, r.out, r.err);
    }
}

TEST(CalcHostile, AVectorThatNamesItselfInADefinitionsFile) {
    testsupport::TempDir dir;
    dir.write("defs", "a = vector(1); b = a@x(a); c = 7\n");
    expectRun(calc({"-Ddefs", "#c"}, dir.path()), 0, "7\n", "");
    dir.write("defs", "a = vector(1); b = a@x(a[0]); c = a[0]\n");
    expectRun(calc({"-Ddefs", "#c"}, dir.path()), 1, "", readsItself);
}

// ---------------------------------------------------------------- output that can't be written

// skelvor-calc through the shell, with a redirection of its standard output.
testsupport::Result calcRedirected(const std::string& redirection, const std::vector<std::string>& args) {
    std::vector<std::string> shellArgs = {"-c", "exec \"$0\" \"$@\" " + redirection, testsupport::programPath("skelvor-calc")};
    shellArgs.insert(shellArgs.end(), args.begin(), args.end());
    testsupport::RunOptions options;
    options.timeoutSeconds = limitSeconds;
    return testsupport::run("/bin/sh", shellArgs, options);
}

TEST(CalcHostile, OutputThatCantBeWrittenIsAnError) {
    const std::string full = "ERROR-STD028 No space left on device : write error on standard output\n";
    const std::string closed = "ERROR-STD009 Bad file descriptor : write error on standard output\n";
    const struct {
        std::vector<std::string> args;
        const char* redirection;
        std::string err;
    } rows[] = {
        {{"1 + 1"}, "> /dev/full", full},
        {{"1 + 1"}, ">&-", closed},
        // many rows: the first that fails ends the run, reported once
        {{"-n", "100000000", "iter"}, "> /dev/full", full},
        {{"-n", "100000000", "iter"}, ">&-", closed},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.args.back() + " " + r.redirection);
        expectRun(calcRedirected(r.redirection, r.args), 1, "", r.err);
    }
}

// ---------------------------------------------------------------- costly patterns, texts and sizes

std::string repeat(const std::string& piece, int n) {
    std::string s;
    for (int i = 0; i < n; ++i) s += piece;
    return s;
}

TEST(CalcHostile, LargeVectorsAreBuiltAndPrintedInTime) {
    const struct {
        std::string statement, out;
    } rows[] = {
        // the largest vector, of a constant and of a list of constants
        {"vector(400000)[7]", "{7" + repeat(",7", 399999) + "}\n"},
        {"a = vector(1000000)[1, \"x\", -2.5]; strlen(a[999997]) + a[999998] + a@size(0)", "999998.5\n"},
        // elements that depend on their place, or on the generation before
        {"a = vector(30000)[$1 * 2]; a[29999] + a@size(0)", "89998\n"},
        {"a = vector(150, 150)[$1 - $2]; a[149, 0] - a[0, 149]", "298\n"},
        {"a = vector(30000)[1][$0 + 1]; a[12345]", "2\n"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.statement);
        expectRun(calc({r.statement}), 0, r.out, "");
    }
}

TEST(CalcHostile, PatternsWithManyStarsMatchInTime) {
    const std::string as = repeat("a", 200);
    const struct {
        std::string statement, out;
    } rows[] = {
        {"\"" + as + "\" ~ \"" + repeat("*a", 40) + "*b\"", "0\n"},
        {"\"" + as + "b\" ~ \"" + repeat("*a", 40) + "*b\"", "1\n"},
        {"\"" + as + "\" ~ \"" + repeat("*a", 201) + "\"", "0\n"},
        {"\"" + as + "\" ~ \"" + repeat("*?", 200) + "\"", "1\n"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.statement.substr(0, 60));
        expectRun(calc({r.statement}), 0, r.out, "");
    }
}

TEST(CalcHostile, LongTokensScanInTime) {
    // one token of each kind, as long as a command line argument may be
    const int n = 120000;
    const struct {
        std::string statement, out;
    } rows[] = {
        {"strlen(\"" + repeat("a", n) + "\")", "120000\n"},
        {"strlen('" + repeat("\\101", n / 4) + "')", "30000\n"},
        {"x = 1" + repeat(" ", n) + "; x + 1", "2\n"},
        {"1 //" + repeat("c", n), "1\n"},
        {"-" + repeat("0", n) + "7", "-7\n"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.statement.substr(0, 20));
        expectRun(calc({r.statement}), 0, r.out, "");
    }
    // a definitions file has no such limit
    testsupport::TempDir dir;
    dir.write("defs", "c = \"" + repeat("b", 2000000) + "\"\n");
    expectRun(calc({"-Ddefs", "strlen(#c)"}, dir.path()), 0, "2000000\n", "");
}

}  // namespace
