// skelvor-calc end to end: values, rows, parameters and the errors of the
// command line and of the statement.
#include <string>

#include "calc_expect.h"

using namespace calce2e;

namespace {

const std::string usageHead =
    "Usage: skelvor-calc [-n <count>] [-D <name>=<value>] ... [-D<definitions-file>] ... <statement>\n";

// The run fails with status 1 and its standard error begins with head.
void expectErrHead(const std::vector<std::string>& args, const std::string& head) {
    e2e::Result r = e2e::calc(args);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err.substr(0, head.size()), head);
}

}  // namespace

TEST(CalcProgramValues, OneStatementOneLine) {
    expectValue("a = 2; b = a * a; a + b / 8", "2.5");
    expectValue("'a' << \"b\"", "\"ab\"");
    expectValue("0/0", "nan");
    expectValue("", "nan");  // an empty statement is the null node
}

TEST(CalcProgramRows, OneLinePerRow) {
    expectRows(3, "iter * 2", "0\n2\n4\n");
    expectOut({"iter", "-n", "2"}, "0\n1\n");  // options in any order
    expectRows(0, "iter", "");
    expectRows(3, "v = iter + 1; v * v", "1\n4\n9\n");  // variables are reset per row
}

TEST(CalcProgramParameters, TextParameters) {
    expectOut({"-D", "w=12", "#w * 2"}, "24\n");
    expectOut({"-D", "s=abc", "#s"}, "\"abc\"\n");
    expectOut({"-D", "e=", "#e"}, "\"\"\n");
    expectOut({"-D", "x=a=b", "#x"}, "\"a=b\"\n");
    expectOut({"-D", "a=1", "-D", "a=2", "#a"}, "\"2\"\n");  // the later definition is found first
    expectOut({"-D", "k=7", "$k << #k"}, "\"77\"\n");          // any one character before the name
    expectErr({"-D", "k=7", "k"}, "ERROR-CALC010 invalid symbol : \"k\"\n");
    expectOut({"-n", "2", "-D", "k=10", "#k + iter"}, "10\n11\n");
}

TEST(CalcProgramParameters, DefinitionsFiles) {
    e2e::TempDir dir;
    std::string defs = dir.write("params.def", "a = 2;\nb = 'x';  // a comment\nc = a * 10;\n");
    expectOut({"-D" + defs, "#c << #b"}, "\"20x\"\n");
    std::string more = dir.write("more.def", "a = 5");
    expectOut({"-D" + defs, "-D" + more, "#a"}, "5\n");
    expectOut({"-D" + dir.path("missing.def"), "1"}, "1\n");  // a file that can't be opened is empty
    expectErr({"-D" + dir.write("bad.def", "a = ;"), "1"},
              "ERROR-CALC001 parse error : in statement ( >>> a = ; <<< )\n");
    expectErr({"-D" + dir.write("unknown.def", "a = b + 1"), "1"}, "ERROR-CALC010 invalid symbol : \"b\"\n");
    // a definitions file has no iterator at all
    expectErr({"-n", "2", "-D" + dir.write("rows.def", "x = iter;"), "1"},
              "ERROR-CALC012 error creating iterator : no bindIterator function\n");
}

TEST(CalcProgramErrors, MissingStatement) {
    const std::string missing = "ERROR-MAIN001  : missing arguments\n";
    expectErrHead({}, missing + usageHead);
    expectErrHead({"-n", "2"}, missing + usageHead);
}

TEST(CalcProgramErrors, OptionsAndTheirValues) {
    expectErr({"-n", "x", "1"}, "ERROR-MAIN002  : invalid row count for -n option: \"x\"\n");
    expectErr({"-n", "-3", "1"}, "ERROR-MAIN002  : invalid row count for -n option: \"-3\"\n");
    expectErr({"1", "-n"}, "ERROR-MAIN002  : missing row count after -n option\n");
    expectErr({"1", "-D"}, "ERROR-MAIN002  : missing definition after -D option\n");
    expectErr({"-D", "novalue", "1"}, "ERROR-MAIN002  : invalid definition after -D option: \"novalue\"\n");
    expectErrHead({"1", "2"}, "ERROR-MAIN001  : invalid option(s): 2 \n" + usageHead);
}

TEST(CalcProgramErrors, StatementErrors) {
    expectError("1+", "ERROR-CALC001 parse error : in statement ( >>> 1+ <<< )");
    expectError("x", "ERROR-CALC010 invalid symbol : \"x\"");
    expectError("#p", "ERROR-CALC010 invalid symbol : \"#p\"");
}

TEST(CalcProgramErrors, IteratorsNeedRows) {
    const std::string noIterator = "ERROR-CALC012 error creating iterator : no bindIterator function";
    for (const char* statement : {"iter", "recurse(self + 1)", "recurse0(1)", "lastof(1)", "sort(1)"})
        expectError(statement, noIterator);
    expectErr({"-n", "2", "iter1"}, noIterator + "\n");  // the rows are the innermost level only
    expectErr({"-n", "2", "lastof(iter2)"}, noIterator + "\n");
}
