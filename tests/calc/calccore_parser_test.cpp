// The parser: the forms of the grammar, precedence, statements and the
// binding of names, functions and iterators.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>

#include "calccore_testing.h"

using namespace calccore;

namespace {

CalcParser* parse(const char* statement, zun::CalcBinder& b) { return new CalcParser(statement, b); }

}  // namespace

TEST(CalcParserProgram, AnEmptyTextIsTheNullNode) {
    CalcParser p("", static_cast<zun::CalcBinder*>(nullptr));
    ASSERT_NE(p.result, nullptr);
    EXPECT_EQ(p.result->nodeType(), CalcNode::TypeNull);
    EXPECT_TRUE(std::isnan(p.valNum()));
    EXPECT_EQ(text(p.valPrint()), "nan");
    CalcParser q("  // only a comment", static_cast<zun::CalcBinder*>(nullptr));
    EXPECT_EQ(q.result->nodeType(), CalcNode::TypeNull);
}

TEST(CalcParserProgram, AssignmentsAndTheFinalExpression) {
    EXPECT_EQ(value("a=1;b=a+1"), 2);
    EXPECT_EQ(value("a=1;a=2;a"), 2) << "the later assignment shadows";
    EXPECT_EQ(value("a=3;"), 3);
    EXPECT_EQ(value("a=2; b=a*a; a+b"), 6);
    CalcParser p("a=1;b=2", static_cast<zun::CalcBinder*>(nullptr));
    EXPECT_EQ(p.result->nodeType(), CalcNode::TypeLink) << "a link to the last assignment";
    EXPECT_EQ(p.valNum(), 2);
    EXPECT_NE(p.getVar("a"), nullptr);
    EXPECT_EQ(p.getVar("b")->valNum(), 2);
    EXPECT_EQ(p.getVar("c"), nullptr);
    EXPECT_EQ(p.getVar(nullptr), p.result);
}

TEST(CalcParserProgram, EveryAssignmentStays) {
    CalcParser p("a=1; b=2; a=a+2; 7", static_cast<zun::CalcBinder*>(nullptr));
    std::list<CalcNode*> vars;
    EXPECT_EQ(p.listVars(vars, "*", nullptr, true), 3);
    std::vector<std::string> names;
    for (CalcNode* v : vars) names.push_back(text(v->name));
    EXPECT_EQ(names, (std::vector<std::string>{"a", "b", "a"}));
    EXPECT_EQ(vars.back()->valNum(), 3);
    std::list<CalcNode*> onlyA;
    EXPECT_EQ(p.listVars(onlyA, "a", nullptr, true), 2);
}

TEST(CalcParserProgram, AnExpressionMayOnlyStandLast) {
    EXPECT_EQ(errorOf<zun::CalcError>("1;2"), "in statement ( >>> 1; <<< )");
    EXPECT_EQ(errorOf<zun::CalcError>("a=1;2;3"), "in statement ( >>> a=1;2; <<< )");
    EXPECT_EQ(errorOf<zun::CalcError>("a=1;;"), "in statement ( >>> a=1;; <<< )");
}

TEST(CalcParserProgram, AVariableCantSeeItself) {
    EXPECT_EQ(errorOf<zun::CalcErrorSymbolInvalid>("a=a+1"), "\"a\"");
    TestBinder b;
    b.values["a"] = 10;
    EXPECT_EQ(value("a=a+1", b), 11);
}

TEST(CalcParserPrimary, Constants) {
    EXPECT_EQ(value("42"), 42);
    EXPECT_EQ(value("2.5"), 2.5);
    EXPECT_EQ(print("'it'"), "\"it\"");
    EXPECT_EQ(print("\"it\""), "\"it\"");
    EXPECT_DOUBLE_EQ(value("pi"), 3.141592653589793);
    EXPECT_TRUE(std::isinf(value("infinity")));
    double n = value("nan");
    std::uint64_t bits;
    std::memcpy(&bits, &n, sizeof bits);
    EXPECT_EQ(bits, 0xFFF8000000000000ull);
    CalcParser p("null", static_cast<zun::CalcBinder*>(nullptr));
    EXPECT_EQ(p.valType(), zun::ValStr);
    EXPECT_TRUE(p.valStr().isNull());
}

TEST(CalcParserPrimary, VariablesComeBeforeBuiltinsAndBinders) {
    TestBinder b;
    b.values["x"] = 1;
    EXPECT_EQ(value("pi=3; pi", b), 3);
    EXPECT_EQ(value("x=5; x", b), 5);
    EXPECT_EQ(value("x", b), 1);
    b.values["pi"] = 9;
    EXPECT_DOUBLE_EQ(value("pi", b), 3.141592653589793) << "builtins before binders";
}

TEST(CalcParserPrimary, BracedNamesAskTheBindersOnly) {
    TestBinder b;
    b.values["a b"] = 4;
    b.values["pi"] = 9;
    EXPECT_EQ(value("{a b} + 1", b), 5);
    EXPECT_EQ(value("{pi}", b), 9);
    EXPECT_EQ(errorOf<zun::CalcErrorSymbolInvalid>("v=1; {v}", &b), "\"v\"");
    EXPECT_EQ(errorOf<zun::CalcErrorSymbolInvalid>("{nan}"), "\"nan\"");
}

TEST(CalcParserPrimary, IteratorNames) {
    TestBinder b;
    b.offerIterator = true;
    b.rows = 3;
    b.index = 2;
    EXPECT_EQ(value("iter * 10", b), 20);
    EXPECT_EQ(value("iter1", b), 2);
    EXPECT_EQ(b.iteratorLevels, (std::vector<int>{0, 1}));
    CalcParser p("iter", b);
    EXPECT_EQ(p.constLevel(), 0);
    EXPECT_EQ(text(p.result->name), "iter0");
    EXPECT_EQ(errorOf<zun::CalcErrorSymbolInvalid>("iterx", &b), "\"iterx\"") << "not an iterator name";
}

TEST(CalcParserPrimary, IteratorsThatNoBinderOffers) {
    EXPECT_EQ(errorOf<zun::CalcErrorIterator>("iter"), "no bindIterator function");
    TestBinder b;
    EXPECT_EQ(errorOf<zun::CalcError>("iter", &b), "<bare text: no bindIterator function>");
}

TEST(CalcParserPrimary, FunctionsFromBindersBeforeBuiltins) {
    TestBinder b;
    bool nullArgs = false;
    b.functions["min"] = [](zun::ObjAppendListP<CalcNode>* args) -> CalcNode* {
        delete args;
        return new zun::CalcNodeConst<double>("mine", 77);
    };
    b.functions["none"] = [&nullArgs](zun::ObjAppendListP<CalcNode>* args) -> CalcNode* {
        nullArgs = args == nullptr;
        delete args;
        return new zun::CalcNodeConst<double>("none", 1);
    };
    EXPECT_EQ(value("min(1, 2)", b), 77);
    EXPECT_EQ(value("none()", b), 1);
    EXPECT_TRUE(nullArgs) << "no arguments pass a null list";
    EXPECT_EQ(value("max(1, 2)", b), 2);
}

TEST(CalcParserPrimary, ArgumentsAreOfferedTheFunctionName) {
    TestBinder b;
    b.nodes["refuse"] = [] {
        Probe* p = new Probe();
        p->refuseOperands = true;
        return p;
    };
    EXPECT_EQ(errorOf<zun::CalcErrorFunctionCallInvalid>("max(1, refuse)", &b),
              "Argument 2 is not authorised in call to function \"max\"");
}

TEST(CalcParserPrecedence, ArithmeticLevels) {
    EXPECT_EQ(value("2+3*4"), 14);
    EXPECT_EQ(value("2*3^2"), 18);
    EXPECT_EQ(value("2^3^2"), 64) << "power is left-associative";
    EXPECT_EQ(value("10-4-3"), 3);
    EXPECT_EQ(value("24/4/3"), 2);
    EXPECT_EQ(value("-2^2"), 4) << "a prefix operator takes the primary alone";
    EXPECT_EQ(value("!0+1"), 2);
    EXPECT_EQ(value("1 + (-2)"), -1);
}

TEST(CalcParserPrecedence, LogicAndComparisonLevels) {
    EXPECT_EQ(value("4|1&2"), 4);
    EXPECT_EQ(value("0||1&&0"), 0);
    EXPECT_EQ(value("1<2==1"), 1);
    EXPECT_EQ(value("2==2&&3==3"), 1);
    EXPECT_EQ(value("1?2:0?3:4"), 3) << "(1?2:0)?3:4";
    EXPECT_EQ(print("1+2<<3"), "\"33\"") << "the suffix operator binds less than +";
}

TEST(CalcParserPrecedence, OperBindsLeastOfAll) {
    TestBinder b;
    b.nodes["obj"] = [] { return new Probe("obj"); };
    EXPECT_EQ(value("obj ** 2*2", b), 5004) << "obj ** (2*2)";
    EXPECT_EQ(value("obj ** 2 ** 3", b), 5002003) << "left-associative";
}

TEST(CalcParserPrecedence, ComparisonsDontChain) {
    EXPECT_EQ(errorOf<zun::CalcError>("1==1==1"), "in statement ( >>> 1==1== <<< )");
    EXPECT_THROW(CalcParser("1==1~1", static_cast<zun::CalcBinder*>(nullptr)), zun::CalcError);
    EXPECT_THROW(CalcParser("1<2<3", static_cast<zun::CalcBinder*>(nullptr)), zun::CalcError);
}

TEST(CalcParserConflict, ABareParenthesisedNameStartsACast) {
    TestBinder b;
    b.values["a"] = 3;
    EXPECT_EQ(errorOf<zun::CalcError>("(a)", &b), "in statement ( >>> (a) <<< )");
    EXPECT_EQ(errorOf<zun::CalcError>("(a)+1", &b), "in statement ( >>> (a)+ <<< )");
    EXPECT_EQ(errorOf<zun::CalcErrorOperatorExpected>("(a)-1", &b), "in statement ((a) >>>  <<< -1)");
    EXPECT_EQ(errorOf<zun::CalcErrorOperatorExpected>("(a) 1", &b), "in statement ((a) >>>   <<< 1)");
    EXPECT_EQ(value("(a+0)", b), 3);
    EXPECT_EQ(value("(1)"), 1);
    EXPECT_THROW(CalcParser("((a))", b), zun::CalcError) << "the inner one is the cast form too";
}

TEST(CalcParserConflict, ACastFunctionOfABinder) {
    TestBinder b;
    b.functions["(int)"] = [](zun::ObjAppendListP<CalcNode>* args) -> CalcNode* {
        double v = std::trunc(args->data[0]->valNum());
        delete args;
        return new zun::CalcNodeConst<double>("int", v);
    };
    EXPECT_EQ(value("(int) 2.7 + 1", b), 3) << "the cast takes its operand before +";
}

TEST(CalcParserErrors, AnOperRunWithoutMeaning) {
    TestBinder b;
    b.values["a"] = 1;
    b.values["b"] = 2;
    EXPECT_EQ(errorOf<zun::CalcErrorOperatorInvalid>("a**b", &b), "(**) in statement (a >>> ** <<< b)");
    EXPECT_EQ(errorOf<zun::CalcErrorOperatorInvalid>("1 + -2"), "(+ -) in statement (1  >>> + - <<< 2)");
}

TEST(CalcParserErrors, MissingOperators) {
    TestBinder b;
    b.values["x"] = 1;
    EXPECT_EQ(errorOf<zun::CalcErrorOperatorExpected>("x 1", &b), "in statement (x >>>   <<< 1)");
    EXPECT_EQ(errorOf<zun::CalcErrorOperatorExpected>("x y", &b), "in statement (x >>>   <<< y)");
    EXPECT_EQ(errorOf<zun::CalcErrorOperatorExpected>("x 'a'", &b), "in statement (x >>>   <<< 'a')");
    EXPECT_EQ(errorOf<zun::CalcErrorOperatorExpected>("x 2.5", &b), "in statement (x >>>   <<< 2.5)");
    EXPECT_EQ(errorOf<zun::CalcErrorOperatorExpected>("x max(1)", &b), "in statement (x >>>   <<< max(1))");
    EXPECT_EQ(errorOf<zun::CalcErrorOperatorExpected>("1 (2)", &b), "in statement (1 >>>   <<< (2))");
    EXPECT_EQ(errorOf<zun::CalcErrorOperatorExpected>("1 {x}", &b), "in statement (1 >>>   <<< {x})");
}

TEST(CalcParserErrors, PrefixSequencesAndSuffixNot) {
    TestBinder b;
    b.values["a"] = 1;
    EXPECT_EQ(errorOf<zun::CalcError>("- -a", &b), "in statement ( >>> - - <<< )");
    EXPECT_EQ(errorOf<zun::CalcErrorUnarySeqInvalid>("! -a", &b), "in statement ( >>> ! -a <<< )");
    EXPECT_EQ(errorOf<zun::CalcErrorUnarySeqInvalid>("2*-!a", &b), "in statement (2* >>> -!a <<< )");
    EXPECT_EQ(errorOf<zun::CalcErrorOperationInvalid>("a !", &b),
              "Operation \"! (unary NOT)\" is invalid or incompatible");
}

TEST(CalcParserErrors, SelfOutsideARecursion) {
    EXPECT_EQ(errorOf<zun::CalcErrorUnboundSelf>("1 + self"),
              "self reference used outside of a recursion function definition in statement (1 +  >>> self <<< )");
}

TEST(CalcParserErrors, SyntaxErrorsMarkFromTheStartToTheOffendingToken) {
    EXPECT_EQ(errorOf<zun::CalcError>("1+"), "in statement ( >>> 1+ <<< )");
    EXPECT_EQ(errorOf<zun::CalcError>(")"), "in statement ( >>> ) <<< )");
    EXPECT_EQ(errorOf<zun::CalcError>("f(1,,2)"), "in statement ( >>> f(1,, <<< )");
    EXPECT_EQ(errorOf<zun::CalcError>("a = 1; }"), "in statement ( >>> a = 1; } <<< )");
    EXPECT_EQ(errorOf<zun::CalcError>("1 +\n)"), "in statement ( >>> 1 +\\n) <<< )") << "the text is escaped";
}

TEST(CalcParserErrors, ASyntaxErrorIsTheBaseClass) {
    try {
        CalcParser("1+", static_cast<zun::CalcBinder*>(nullptr));
        FAIL() << "no error";
    } catch (zun::CalcError& e) {
        EXPECT_EQ(e.code(), 1);
        EXPECT_EQ(text(e.signature()), "CALC001");
        EXPECT_STREQ(e.title(), "parse error");
    }
}

TEST(CalcParserErrors, Messages) {
    EXPECT_EQ(text(zun::CalcErrorArgsMissing("f", 2).message), "Function \"f\" takes at least 2 argument(s)");
    EXPECT_EQ(text(zun::CalcErrorArgsTooMany("f", 1).message), "Function \"f\" takes at most 1 argument(s)");
    EXPECT_EQ(text(zun::CalcErrorFunctionCallInvalid("f", "bad").message), "bad in call to function \"f\"");
    EXPECT_EQ(text(zun::CalcErrorSymbolInvalid("ctx", "s").message), "ctx while evaluating symbol \"s\"");
    EXPECT_EQ(text(zun::CalcErrorOperationInvalid("op", "why").message),
              "Operation \"op\" is invalid or incompatible  (why)");
    zun::CalcErrorOperatorInvalid e("(x)");
    e.chainStmt("a\tb", 3, 3);
    EXPECT_EQ(text(e.message), "(x) in statement (a\\t >>> b <<< )");
    EXPECT_EQ(text(zun::CalcError("abc", 9, 12).message), "in statement (abc >>>  <<< )") << "columns past the end";
}

TEST(CalcParserMembers, PropertiesMethodsAndIndices) {
    TestBinder b;
    Probe* probe = nullptr;
    b.nodes["obj"] = [&probe] {
        probe = new Probe("obj");
        probe->takeMethods = true;
        return probe;
    };
    CalcParser call("obj@m(1, 'a,b' , max(2))", b);
    EXPECT_EQ(call.valNum(), 3);
    EXPECT_EQ(probe->lastArgText, "1, 'a,b' , max(2)") << "the argument text as written";
    CalcParser index("obj[4,5]", b);
    EXPECT_EQ(index.valNum(), 2);
    EXPECT_EQ(probe->lastArgText, "4,5");
    EXPECT_EQ(errorOf<zun::CalcErrorPropertyInvalid>("1 + obj@size", &b),
              "\"size\" in statement (1 + obj >>> @size <<< )");
    EXPECT_EQ(errorOf<zun::CalcErrorMethodInvalid>("2@size(1)", &b), "\"size\"");
    EXPECT_EQ(errorOf<zun::CalcErrorOperatorInvalid>("2[0]", &b), "(operator::[]) in statement (2 >>> [0] <<< )");
}

TEST(CalcParserMembers, ArgumentsThatRefuseTheMethod) {
    TestBinder b;
    b.nodes["refuse"] = [] {
        Probe* p = new Probe();
        p->refuseOperands = true;
        return p;
    };
    b.nodes["obj"] = [] {
        Probe* p = new Probe("obj");
        p->takeMethods = true;
        return p;
    };
    EXPECT_EQ(errorOf<zun::CalcError>("obj@m(1, refuse)", &b), "<bare text: Argument 2 is not authorised>");
    EXPECT_EQ(errorOf<zun::CalcErrorFunctionCallInvalid>("'abc'[1, refuse]", &b),
              "operator::[] in call to function \"Argument 2 is not authorised\"");
    EXPECT_EQ(value("obj[refuse]", b), 1) << "the first index isn't asked";
}

TEST(CalcParserMembers, TheIndexOfATextIsItsSubstring) {
    EXPECT_EQ(print("'abcd'[1]"), "\"bcd\"");
    EXPECT_EQ(print("'abcd'[1,2]"), "\"bc\"");
    EXPECT_EQ(print("x='abcd'; x[2]"), "\"cd\"");
    EXPECT_THROW(CalcParser("'abcd'[1,2,3]", static_cast<zun::CalcBinder*>(nullptr)), zun::CalcErrorArgsTooMany);
}

TEST(CalcParserMembers, Keywords) {
    TestBinder b;
    Probe* probe = nullptr;
    b.nodes["obj"] = [&probe] { return probe = new Probe("obj"); };
    CalcParser p("obj kw + 1", b);
    EXPECT_EQ(p.valNum(), 6);
    EXPECT_EQ(probe->lastWord, "kw");
    EXPECT_EQ(value("obj {kw}", b), 5);
    EXPECT_THROW(CalcParser("obj other", b), zun::CalcErrorOperatorExpected);
    EXPECT_THROW(CalcParser("v = obj; v kw", b), zun::CalcErrorOperatorExpected) << "through a variable, via is set";
}

TEST(CalcParserAssignment, ANodeMayRefuseIt) {
    TestBinder b;
    b.nodes["fixed"] = [] {
        Probe* p = new Probe("fixed");
        p->refuseAssignment = true;
        return p;
    };
    EXPECT_EQ(errorOf<zun::CalcErrorAssignmentInvalid>("a=1; v = fixed + 0 ; w=2", &b), "<no error>");
    EXPECT_EQ(errorOf<zun::CalcErrorAssignmentInvalid>("a=1; v = fixed", &b),
              "Assignment of variable \"v\" is invalid in statement (a=1;  >>> v = fixed <<< )");
}

TEST(CalcParserNesting, ABinderMayCompileWhileAParseIsHalfWay) {
    TestBinder inner;
    inner.nodes["outer"] = [] {
        CalcParser nested("x = 'in' << 'ner'; strlen(x) * 2", static_cast<zun::CalcBinder*>(nullptr));
        return new Probe("outer");
    };
    // The lookahead behind "outer" is the NAME "kw", whose text must survive.
    EXPECT_EQ(value("outer kw", inner), 5);
    TestBinder sum;
    sum.nodes["six"] = [] {
        CalcParser nested("2*3", static_cast<zun::CalcBinder*>(nullptr));
        return new zun::CalcNodeConst<double>("six", nested.valNum());
    };
    EXPECT_EQ(value("six + 1", sum), 7) << "the lookahead '+' survives";
    EXPECT_EQ(value("f = six; f * six", sum), 36);
}

TEST(CalcParserLimits, NestingBeyondTheStack) {
    std::string deep = std::string(150, '(') + "1" + std::string(150, ')');
    EXPECT_EQ(value(deep.c_str()), 1);
    std::string tooDeep = std::string(300, '(') + "1" + std::string(300, ')');
    EXPECT_THROW(CalcParser(tooDeep.c_str(), static_cast<zun::CalcBinder*>(nullptr)), zun::CalcError);
    // Lenient: the parse stops where the stack ran out, and so does the stream.
    std::istringstream in(tooDeep);
    CalcParser p(in, static_cast<zun::CalcBinder*>(nullptr), true);
    EXPECT_GT(p.consumed, 100);
    EXPECT_LT(p.consumed, 300);
    EXPECT_EQ(static_cast<long long>(in.tellg()), p.consumed);
    EXPECT_TRUE(std::isnan(p.valNum())) << "nothing was built";
    std::istringstream bad("1+");
    EXPECT_THROW(CalcParser(bad, static_cast<zun::CalcBinder*>(nullptr), true), zun::CalcError)
        << "a syntax error isn't softened";
    std::istringstream whole("a = 1; a + 2  ");
    EXPECT_EQ(CalcParser(whole, static_cast<zun::CalcBinder*>(nullptr)).consumed, 14);
}

TEST(CalcParserNode, AParserIsANode) {
    TestBinder b;
    b.offerIterator = true;
    b.rows = 5;
    CalcParser p("k = iter * 2; k + 1", b);
    EXPECT_EQ(p.nodeType(), CalcNode::TypeParser);
    EXPECT_EQ(text(p.name), "root");
    EXPECT_EQ(p.constLevel(), 0);
    b.index = 3;
    EXPECT_EQ(p.valNum(), 7);
    b.index = 4;
    EXPECT_EQ(p.valNum(), 7) << "the variable keeps its value until reset";
    p.reset();
    EXPECT_EQ(p.valNum(), 9);
    String s;
    p.val(s);
    EXPECT_EQ(text(s), "9");
}

TEST(CalcParserNode, ReducingAParser) {
    CalcParser* constant = new CalcParser("2*3", static_cast<zun::CalcBinder*>(nullptr));
    CalcNode* folded = constant->reduce();
    ASSERT_NE(folded, nullptr);
    EXPECT_EQ(folded->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(folded->valNum(), 6);
    delete folded;
    delete constant;

    TestBinder b;
    b.offerIterator = true;
    CalcParser* bare = parse("iter + 1", b);
    CalcNode* given = bare->reduce();
    ASSERT_NE(given, nullptr) << "no variables: the parser gives its result up";
    EXPECT_EQ(bare->result, nullptr);
    delete bare;
    EXPECT_EQ(given->valNum(), 1);
    delete given;

    CalcParser* kept = parse("v = iter; v + 1", b);
    EXPECT_EQ(kept->reduce(), nullptr) << "a variable stays with its parser";
    delete kept;
}
