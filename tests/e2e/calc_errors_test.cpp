// skelvor-calc end to end: each class of statement error that the language can
// raise, with its code, title, message and the marks in the statement.
#include <string>

#include "calc_expect.h"

using namespace calce2e;

TEST(CalcErrors, ParseErrorMarksFromTheStartToTheOffendingToken) {
    expectError("a=1;;b=2", "ERROR-CALC001 parse error : in statement ( >>> a=1;; <<< )");
    expectError("1 ? 2", "ERROR-CALC001 parse error : in statement ( >>> 1 ? 2 <<< )");
    // a bare (name) starts a cast, and is no expression
    expectError("(a)+1", "ERROR-CALC001 parse error : in statement ( >>> (a)+ <<< )");
    expectError("((a))", "ERROR-CALC001 parse error : in statement ( >>> ((a)) <<< )");
    expectError("1; 2", "ERROR-CALC001 parse error : in statement ( >>> 1; <<< )");
    expectError("f(1,,2)", "ERROR-CALC001 parse error : in statement ( >>> f(1,, <<< )");
    expectError("1 +\n)", "ERROR-CALC001 parse error : in statement ( >>> 1 +\\n) <<< )");  // the text is escaped
    expectErr({"-n", "2", "sort(iter)@reverse()"},
              "ERROR-CALC001 parse error : in statement ( >>> sort(iter)@reverse() <<< )\n");
    // Nesting deeper than the parser's stacks: the mark stands on the token where they ran out.
    std::string deep = std::string(250, '(') + "1" + std::string(250, ')');
    expectError(deep, "ERROR-CALC001 parse error : in statement (" + std::string(198, '(') + " >>> ( <<< )");
}

TEST(CalcErrors, InvalidOperator) {
    expectError("1 ** 2", "ERROR-CALC002 invalid operator : (**) in statement (1  >>> ** <<<  2)");
    expectError("(1)[0]", "ERROR-CALC002 invalid operator : (operator::[]) in statement ((1) >>> [0] <<< )");
}

TEST(CalcErrors, OperatorExpectedMarksTheGap) {
    expectError("1 2", "ERROR-CALC003 operator expected : in statement (1 >>>   <<< 2)");
    expectError("1 'a'", "ERROR-CALC003 operator expected : in statement (1 >>>   <<< 'a')");
    expectError("1 (2)", "ERROR-CALC003 operator expected : in statement (1 >>>   <<< (2))");
    expectError("1 2.5", "ERROR-CALC003 operator expected : in statement (1 >>>   <<< 2.5)");
    expectError("1 max(1)", "ERROR-CALC003 operator expected : in statement (1 >>>   <<< max(1))");
    expectError("1 {x}", "ERROR-CALC003 operator expected : in statement (1 >>>   <<< {x})");
    expectError("a=1; a y", "ERROR-CALC003 operator expected : in statement (a=1; a >>>   <<< y)");  // an unknown keyword
    expectError("(a)-1", "ERROR-CALC003 operator expected : in statement ((a) >>>  <<< -1)");       // no such cast
    expectError("a = 3; (a) 1", "ERROR-CALC003 operator expected : in statement (a = 3; (a) >>>   <<< 1)");
}

TEST(CalcErrors, PrefixSequences) {
    expectError("! -1", "ERROR-CALC004 forbidden compound operator sequence : in statement ( >>> ! -1 <<< )");
    expectError("-!1", "ERROR-CALC004 forbidden compound operator sequence : in statement ( >>> -!1 <<< )");
    expectError("2*-!1", "ERROR-CALC004 forbidden compound operator sequence : in statement (2* >>> -!1 <<< )");
}

TEST(CalcErrors, ArgumentCountsOfModifiers) {
    expectErr({"-n", "2", "sort(iter)@select(1,2)"},
              "ERROR-CALC007 too many function arguments : Function \"@select\" takes at most 1 argument(s)\n");
    expectErr({"-n", "2", "sort(iter)@reverse(1,1,1)"},
              "ERROR-CALC007 too many function arguments : Function \"@reverse\" takes at most 2 argument(s)\n");
}

TEST(CalcErrors, UnknownFunctionsAndSymbols) {
    expectError("f(1)", "ERROR-CALC008 function unknown : \"f\"");
    expectError("arcinter(1)", "ERROR-CALC008 function unknown : \"arcinter\"");
    expectError("a=a+1", "ERROR-CALC010 invalid symbol : \"a\"");
    expectError("a;b", "ERROR-CALC010 invalid symbol : \"a\"");
}

TEST(CalcErrors, SelfOutsideARecurrence) {
    const std::string head = "ERROR-CALC013 invalid self reference : self reference used outside of a recursion "
                             "function definition in statement ";
    expectError("1 + self * 2", head + "(1 +  >>> self <<<  * 2)");
    expectErr({"-n", "2", "recurse(self) + self"}, head + "(recurse(self) +  >>> self <<< )\n");
    expectErr({"-n", "2", "lastof(self)"}, head + "(lastof( >>> self <<< ))\n");
    expectError("exec('self')", head + "( >>> self <<< )");
}

TEST(CalcErrors, PropertiesAndMethods) {
    expectError("a = 1; 1 @ foo",
                "ERROR-CALC014 unsupported property or option : \"foo\" in statement (a = 1; 1  >>> @ foo <<< )");
    expectErr({"-n", "2", "sort(iter)@reverse2"},
              "ERROR-CALC014 unsupported property or option : \"reverse2\" in statement (sort(iter) >>> @reverse2 <<< )\n");
    expectError("pi@dims(1)", "ERROR-CALC015 unsupported method : \"dims\"");
    expectErr({"-n", "2", "sort(iter)@select(iter)@select(1)"}, "ERROR-CALC015 unsupported method : \"select\"\n");
}

TEST(CalcErrors, InvalidOperation) {
    expectError("1!", "ERROR-CALC018 invalid operation : Operation \"! (unary NOT)\" is invalid or incompatible");
}
