// skelvor-calc end to end: values, rows, parameters and the errors of the
// command line and of the statement.
#include <gtest/gtest.h>

#include <string>

#include "Harness.h"

namespace {

const char* const usageHead = "Usage: skelvor-calc [-n <count>] [-D <name>=<value>] ... [-D<definitions-file>] ... <statement>\n";

void expectOutput(const e2e::Result& r, const std::string& out) {
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, out);
    EXPECT_EQ(r.err, "");
}

void expectError(const e2e::Result& r, const std::string& err) {
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, err);
}

}  // namespace

TEST(CalcProgramValues, OneStatementOneLine) {
    expectOutput(e2e::calc({"1+2"}), "3\n");
    expectOutput(e2e::calc({"a = 2; b = a * a; a + b / 8"}), "2.5\n");
    expectOutput(e2e::calc({"'a' << \"b\""}), "\"ab\"\n");
    expectOutput(e2e::calc({"'tab\\there'"}), "\"tab\\there\"\n");
    expectOutput(e2e::calc({"0/0"}), "nan\n");
    expectOutput(e2e::calc({""}), "nan\n");  // an empty statement is the null node
    expectOutput(e2e::calc({"1/3"}), "0.333333333333333\n");
}

TEST(CalcProgramValues, DatesAtMicrosecondPrecision) {
    expectOutput(e2e::calc({"datestr(0.5)"}), "\"01-JAN-2000 12:00:00.000000\"\n");
}

TEST(CalcProgramRows, OneLinePerRow) {
    expectOutput(e2e::calc({"-n", "3", "iter * 2"}), "0\n2\n4\n");
    expectOutput(e2e::calc({"iter", "-n", "2"}), "0\n1\n");  // options in any order
    expectOutput(e2e::calc({"-n", "0", "iter"}), "");
    expectOutput(e2e::calc({"-n", "4", "recurse(self + 1)"}), "1\n2\n3\n4\n");
    expectOutput(e2e::calc({"-n", "4", "lastof(iter * 10, 7)"}), "7\n0\n10\n20\n");
    expectOutput(e2e::calc({"-n", "3", "v = iter + 1; v * v"}), "1\n4\n9\n");  // variables are reset per row
}

TEST(CalcProgramParameters, TextParameters) {
    expectOutput(e2e::calc({"-D", "w=12", "#w * 2"}), "24\n");
    expectOutput(e2e::calc({"-D", "s=abc", "#s"}), "\"abc\"\n");
    expectOutput(e2e::calc({"-D", "e=", "#e"}), "\"\"\n");
    expectOutput(e2e::calc({"-D", "x=a=b", "#x"}), "\"a=b\"\n");
    expectOutput(e2e::calc({"-D", "a=1", "-D", "a=2", "#a"}), "\"2\"\n");  // the later definition is found first
    expectOutput(e2e::calc({"-n", "2", "-D", "k=10", "#k + iter"}), "10\n11\n");
}

TEST(CalcProgramParameters, DefinitionsFiles) {
    e2e::TempDir dir;
    std::string defs = dir.write("params.def", "a = 2;\nb = 'x';  // a comment\nc = a * 10;\n");
    expectOutput(e2e::calc({"-D" + defs, "#c << #b"}), "\"20x\"\n");
    std::string more = dir.write("more.def", "a = 5");
    expectOutput(e2e::calc({"-D" + defs, "-D" + more, "#a"}), "5\n");
    expectOutput(e2e::calc({"-D" + dir.path("missing.def"), "1"}), "1\n");  // a file that can't be opened is empty
}

TEST(CalcProgramErrors, MissingStatement) {
    const std::string missing = "ERROR-MAIN001  : missing arguments\n";
    e2e::Result none = e2e::calc({});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.out, "");
    EXPECT_EQ(none.err.substr(0, missing.size() + std::string(usageHead).size()), missing + usageHead);
    e2e::Result optionsOnly = e2e::calc({"-n", "2"});
    EXPECT_EQ(optionsOnly.status, 1);
    EXPECT_EQ(optionsOnly.err.substr(0, missing.size() + std::string(usageHead).size()), missing + usageHead);
}

TEST(CalcProgramErrors, OptionsAndTheirValues) {
    expectError(e2e::calc({"-n", "x", "1"}), "ERROR-MAIN002  : invalid row count for -n option: \"x\"\n");
    expectError(e2e::calc({"-n", "-3", "1"}), "ERROR-MAIN002  : invalid row count for -n option: \"-3\"\n");
    expectError(e2e::calc({"1", "-n"}), "ERROR-MAIN002  : missing row count after -n option\n");
    expectError(e2e::calc({"1", "-D"}), "ERROR-MAIN002  : missing definition after -D option\n");
    expectError(e2e::calc({"-D", "novalue", "1"}), "ERROR-MAIN002  : invalid definition after -D option: \"novalue\"\n");
    e2e::Result extra = e2e::calc({"1", "2"});
    EXPECT_EQ(extra.status, 1);
    EXPECT_EQ(extra.out, "");
    const std::string invalid = std::string("ERROR-MAIN001  : invalid option(s): 2 \n") + usageHead;
    EXPECT_EQ(extra.err.substr(0, invalid.size()), invalid);
}

TEST(CalcProgramErrors, StatementErrors) {
    expectError(e2e::calc({"1+"}), "ERROR-CALC001 parse error : in statement ( >>> 1+ <<< )\n");
    expectError(e2e::calc({"x"}), "ERROR-CALC010 invalid symbol : \"x\"\n");
    expectError(e2e::calc({"f(1)"}), "ERROR-CALC008 function unknown : \"f\"\n");
    expectError(e2e::calc({"1 + -2"}), "ERROR-CALC002 invalid operator : (+ -) in statement (1  >>> + - <<< 2)\n");
    expectError(e2e::calc({"#p"}), "ERROR-CALC010 invalid symbol : \"#p\"\n");
}

TEST(CalcProgramErrors, IteratorsNeedRows) {
    const std::string noIterator = "ERROR-CALC012 error creating iterator : no bindIterator function\n";
    expectError(e2e::calc({"iter"}), noIterator);
    expectError(e2e::calc({"recurse(self + 1)"}), noIterator);
    expectError(e2e::calc({"-n", "2", "iter1"}), noIterator);
}

TEST(CalcProgramErrors, ABadDefinitionsFile) {
    e2e::TempDir dir;
    std::string defs = dir.write("bad.def", "a = ;");
    expectError(e2e::calc({"-D" + defs, "1"}), "ERROR-CALC001 parse error : in statement ( >>> a = ; <<< )\n");
}
