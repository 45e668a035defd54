// skelvor-calc end to end: operators, precedence, the order in which operands
// are read, folding, print forms and the token rules as a user meets them.
#include "calc_expect.h"

using namespace calce2e;

TEST(CalcOperators, Arithmetic) {
    expectValue("1+2*3", "7");
    expectValue("8/2/2", "2");
    expectValue("2^3^2", "64");   // (2^3)^2
    expectValue("-2^2", "4");     // the prefix binds to the primary
    expectValue("1/0", "inf");
    expectValue("-1/0", "-inf");
    expectValue("0*nan", "0");    // the right operand of a zero is not read
    expectValue("nan*0", "nan");
    expectValue("-0*nan", "0");   // nor after a negative zero, and the product is a positive zero
    expectValue("1*-2", "-2");
    expectValue("1 + (-2)", "-1");
    expectValue("a = 3; (a+0)", "3");
    expectValue("1 +! 2", "1");   // "+!" is no operator run: plus, then not
}

TEST(CalcOperators, ModuloKeepsItsSignRule) {
    expectValue("5 % 3", "2");
    expectValue("-5 % 3", "1");
    expectValue("5 % -3", "5");
    expectValue("-5 % -3", "-2");
    expectValue("7 % -3", "4");
    expectValue("6 % -3", "3");
    expectValue("5.5 % 2", "1.5");
    expectValue("5 % 0", "nan");
}

TEST(CalcOperators, ComparisonsChosenByTheLeftOperand) {
    expectValue("nan == nan", "0");
    expectValue("nan != nan", "1");
    expectValue("!nan", "0");
    expectValue("nan && 1", "1");
    expectValue("1 == \"1.0\"", "1");   // numbers
    expectValue("\"1.0\" == 1", "0");   // texts
    expectValue("\"\" == null", "1");
    expectValue("null == \"\"", "0");
    expectValue("null == null", "0");
    expectValue("\"b\" > \"a\"", "1");
    expectValue("\"a\" >= \"b\"", "0");
    expectValue("\"abc\" ~ \"a*\"", "1");
    expectValue("('abc' ~ 'b*') << ('abc' ~ 'a?c') << ('abc' ~ null) << (null ~ '*')", "\"0110\"");
    expectValue("(null < 'zzz') << ('b' <= 'a') << (3 >= 3) << (2 > 3) << ('10' == 10) << (nan < 1) << (-0 == 0)",
                "\"0010101\"");
    expectValue("(0 || nan) << (1 && 0) << !0", "\"101\"");
    expectValue("\"a\" + \"b\"", "nan");
}

TEST(CalcOperators, BitsAndTexts) {
    expectValue("3 & 5", "1");
    expectValue("3 | 5", "7");
    expectValue("nan | 0", "-9.22337203685478e+18");
    expectValue("\"ab\" << \"cd\"", "\"abcd\"");
    expectValue("\"ab\" >> \"cd\"", "\"cdab\"");
    expectValue("1 << 2 + 3", "\"15\"");
    expectValue("null << \"x\"", "\"x\"");
    expectValue("isnullstr(null << null)", "1");
}

TEST(CalcOperators, PrecedenceAndAssociativity) {
    expectValue("1 ? 2 : 3 ? 4 : 5", "4");  // (1 ? 2 : 3) ? 4 : 5
    expectValue("0 ? 2 : 0 ? 4 : 5", "5");
    expectValue("1 || 0 && 0", "1");
    expectValue("1 | 2 & 3", "3");
    expectValue("1 < 2 == 1", "1");
    expectValue("2 * 3 % 4", "2");
    expectValue("-(2)^2", "4");
    expectValue("!0 + 1", "2");
    expectError("1<2<3", "ERROR-CALC001 parse error : in statement ( >>> 1<2< <<< )");
    expectError("1==2~3", "ERROR-CALC001 parse error : in statement ( >>> 1==2~ <<< )");
}

TEST(CalcOperators, LogicOperatorsFoldOnAConstantOperand) {
    // The surviving operand replaces the operator, its value not made 0 or 1.
    expectRows(3, "1 && iter", "0\n1\n2\n");
    expectRows(3, "iter && 1", "0\n1\n2\n");
    expectRows(3, "iter && 0", "0\n0\n0\n");
    expectRows(3, "0 || iter", "0\n1\n2\n");
    expectRows(3, "iter || 0", "0\n1\n2\n");
    expectRows(3, "iter || 1", "1\n1\n1\n");
    // With no constant side the result is 0 or 1.
    expectRows(3, "iter && iter + 4", "0\n1\n1\n");
    expectRows(3, "iter || iter + 4", "1\n1\n1\n");
}

// An exec whose text compiles but fails when evaluated tells which operand
// was read first.
TEST(CalcOperators, OrderInWhichOperandsAreRead) {
    const std::string p = "exec(\"1+exec('p')\")", q = "exec(\"1+exec('q')\")";
    const std::string t = "exec(\"'a' << exec('p')\")";  // a text that reads p
    const std::string pFirst = "ERROR-CALC010 invalid symbol : \"p\"", qFirst = "ERROR-CALC010 invalid symbol : \"q\"";
    for (const char* op : {"+", "-", "*", "<", "<=", "==", "!=", ">>", "&&", "&", "|"})
        expectError(p + " " + op + " " + q, pFirst);
    for (const char* op : {">", ">=", "/", "^", "%", "<<", "~"}) expectError(p + " " + op + " " + q, qFirst);
    // text comparisons read their right operand first; > and >= exchange their operands
    for (const char* op : {"==", "!=", "<", "<="}) expectError(t + " " + op + " " + q, qFirst);
    for (const char* op : {">", ">="}) expectError(t + " " + op + " " + q, pFirst);
    expectError("insert(" + p + ", " + q + ", 1)", qFirst);
    expectError("datestr(" + p + ", " + q + ")", qFirst);
    expectValue("0 && " + q, "0");
    expectValue("1 || " + q, "1");
    expectValue("0 * " + q, "0");
}

TEST(CalcOperators, PrintForms) {
    expectValue("1/3", "0.333333333333333");
    expectValue("2^60", "1.15292150460685e+18");
    expectValue("123456789012345.6", "123456789012346");
    expectValue("-0", "-0");
    expectValue("pi", "3.14159265358979");
    expectValue("-infinity", "-inf");
    expectValue("-nan", "nan");
    expectValue("null", "\"\"");
    expectValue("\"tab\\there\\\\\"", "\"tab\\there\\\\\"");
    expectValue("\"\\r\\b\\f\"", "\"\\r\\d008\\d012\"");
    expectValue("\"\xc3\xa9\"", "\"\\d195\\d169\"");
    expectValue("'it\"s'", "\"it\"s\"");  // quotes are not escaped
}

TEST(CalcOperators, TokenRules) {
    expectValue("1.e2 + .5e1 + 1.5e+1", "120");
    expectError("1e5", "ERROR-CALC010 invalid symbol : \"1e5\"");  // an exponent needs a decimal point
    expectError("1.5e+3x", "ERROR-CALC003 operator expected : in statement (1.5e+3 >>>  <<< x)");
    expectValue("12ab = 3; a.b = 4; #c = 5; ::d = 6; 12ab + a.b + #c + ::d", "18");
    expectValue("1 // a comment", "1");
    expectValue("\"a\\101\\18b\\777\"", "\"aAb\\d255\"");
    expectValue("1 + 'a\n2", "3");  // a string ends at a new line, dropped
    expectValue("\"a\\\nb\"", "\"a\\nb\"");
    expectValue("\"open", "nan");
    expectError("a:b", "ERROR-CALC010 invalid symbol : \"a\"");
    expectError("1 + -2", "ERROR-CALC002 invalid operator : (+ -) in statement (1  >>> + - <<< 2)");
    expectError("1--2", "ERROR-CALC002 invalid operator : (--) in statement (1 >>> -- <<< 2)");
    expectError("1*+2", "ERROR-CALC002 invalid operator : (*+) in statement (1 >>> *+ <<< 2)");
    expectError("1 !== 2", "ERROR-CALC002 invalid operator : (!==) in statement (1  >>> !== <<<  2)");
    expectError("- -1", "ERROR-CALC001 parse error : in statement ( >>> - - <<< )");
    expectError("1 {ab", "ERROR-CALC001 parse error : in statement ( >>> 1 { <<< )");
    expectError("\"a\\", "ERROR-CALC001 parse error : in statement (\"a >>> \\\\ <<< )");
}

TEST(CalcOperators, BracedNamesAndKeywords) {
    expectOut({"-D", "k=3", "{#k} + 1"}, "4\n");
    expectError("{pi}", "ERROR-CALC010 invalid symbol : \"pi\"");  // outside names only
    expectValue("datestr(0) {iso}", "\"2000-01-01T00:00:00.000000\"");
}
