// The token rules: what a text becomes, and the columns and scanned text
// that every token leaves behind.
#include <gtest/gtest.h>

#include "calccore_testing.h"

using namespace calccore;
namespace T = zun::CalcToken;

TEST(CalcLexNames, DotsAndSigilsArePartOfNames) {
    EXPECT_EQ(lexed("a.b"), "NAME:a.b");
    EXPECT_EQ(lexed("a.b(1)"), "NAME:a.b ( INTEGER:1 )");
    EXPECT_EQ(lexed("#last $x a\\b c`d"), "NAME:#last NAME:$x NAME:a\\b NAME:c`d");
    EXPECT_EQ(lexed("12ab"), "NAME:12ab");
    EXPECT_EQ(lexed("."), "NAME:.");
    EXPECT_EQ(lexed("a\rb"), "NAME:a\rb") << "carriage return is a name character";
    EXPECT_EQ(lexed("\xe9t\xe9"), "NAME:\xe9t\xe9");
}

TEST(CalcLexNames, ColonsEndNamesSingly) {
    EXPECT_EQ(lexed("a:b"), "NAME:a : NAME:b");
    EXPECT_EQ(lexed("a::b"), "NAME:a::b");
    EXPECT_EQ(lexed("::x"), "NAME:::x");
    EXPECT_EQ(lexed("::"), ": :");
    EXPECT_EQ(lexed("a::"), "NAME:a : :");
}

TEST(CalcLexNumbers, AnExponentNeedsADecimalPoint) {
    EXPECT_EQ(lexed("12"), "INTEGER:12");
    EXPECT_EQ(lexed("1.5"), "FLOAT:1.5");
    EXPECT_EQ(lexed("1e5"), "NAME:1e5");
    EXPECT_EQ(lexed("1.e5"), "FLOAT:100000");
    EXPECT_EQ(lexed(".5e5"), "FLOAT:50000");
    EXPECT_EQ(lexed("1.5e"), "NAME:1.5e");
    EXPECT_EQ(lexed("1.5e3x"), "NAME:1.5e3x");
    EXPECT_EQ(lexed("1.5e+3x"), "FLOAT:1500 NAME:x");
    EXPECT_EQ(lexed("2.5E-1"), "FLOAT:0.25");
}

TEST(CalcLexOperators, FixedSpellings) {
    EXPECT_EQ(lexed("== != >= <= && || << >>"), "EQ NE GE LE AND OR SHL SHR");
    EXPECT_EQ(lexed("< > ! % ? @ & * ^ ~ + / : = | -"), "< > ! % ? @ & * ^ ~ + / : = | -");
    EXPECT_EQ(lexed("( ) , ; [ ]"), "( ) , ; [ ]");
}

TEST(CalcLexOperators, RunsBecomeOperOnlyByTheirLastCharacter) {
    EXPECT_EQ(lexed("a*-b"), "NAME:a * - NAME:b");
    EXPECT_EQ(lexed("a=-1"), "NAME:a = - INTEGER:1");
    EXPECT_EQ(lexed("a==-1"), "NAME:a EQ - INTEGER:1");
    EXPECT_EQ(lexed("a<-1"), "NAME:a < - INTEGER:1");
    EXPECT_EQ(lexed("a*!b"), "NAME:a * ! NAME:b");
    EXPECT_EQ(lexed("a*+b"), "NAME:a OPER:*+ NAME:b");
    EXPECT_EQ(lexed("a**b"), "NAME:a OPER:** NAME:b");
    EXPECT_EQ(lexed("a%%b"), "NAME:a % % NAME:b");
    EXPECT_EQ(lexed("!!a"), "OPER:!! NAME:a");
    EXPECT_EQ(lexed("a!=!b"), "NAME:a OPER:!=! NAME:b") << "a run with two exclamation marks";
}

TEST(CalcLexOperators, AMinusAfterPlusOrMinusAlwaysFuses) {
    EXPECT_EQ(lexed("a--b"), "NAME:a OPER:-- NAME:b");
    EXPECT_EQ(lexed("a+-b"), "NAME:a OPER:+- NAME:b");
    EXPECT_EQ(lexed("a - -b"), "NAME:a OPER:- - NAME:b");
    EXPECT_EQ(lexed("a + -b"), "NAME:a OPER:+ - NAME:b");
    EXPECT_EQ(lexed("a +\n\t-b"), "NAME:a OPER:+\n\t- NAME:b");
    EXPECT_EQ(lexed("- -a"), "OPER:- - NAME:a");
    EXPECT_EQ(lexed("! -a"), "! - NAME:a");
}

TEST(CalcLexComments, ACommentRunsToTheEndOfTheLine) {
    EXPECT_EQ(lexed("a // note\nb"), "NAME:a NAME:b");
    EXPECT_EQ(lexed("a//c"), "NAME:a");
    EXPECT_EQ(lexed("a+//c"), "NAME:a OPER:+// NAME:c") << "the slash continues the operator run";
}

TEST(CalcLexComments, ACommentCountsInTheColumns) {
    zun::CalcLex lex;
    std::vector<Token> t = tokens("x // note", &lex);
    ASSERT_EQ(t.size(), 1u);
    EXPECT_EQ(t[0].kind, T::NAME);
    EXPECT_EQ(lex.location.last_column, 9);
    EXPECT_EQ(text(lex.scanned()), "x // note");
}

TEST(CalcLexBraces, BracedNamesStayOnOneLine) {
    EXPECT_EQ(lexed("{a b}"), "BRACED:a b");
    EXPECT_EQ(lexed("{}"), "BRACED");
    EXPECT_EQ(lexed("{a"), "INVALID:{ NAME:a");
    EXPECT_EQ(lexed("}"), "INVALID:}");
    EXPECT_EQ(lexed("{a\nb}"), "INVALID:{ NAME:a NAME:b INVALID:}");
    EXPECT_EQ(lexed("{a{b}"), "INVALID:{ NAME:a BRACED:b");
}

TEST(CalcLexStrings, QuotesAndEscapes) {
    EXPECT_EQ(lexed("'a,b'"), "SQ:a,b");
    EXPECT_EQ(lexed("\"it's\""), "DQ:it's");
    EXPECT_EQ(lexed("'say \"x\"'"), "SQ:say \"x\"");
    EXPECT_EQ(lexed("'\\101'"), "SQ:A");
    EXPECT_EQ(lexed("'x\\18y'"), "SQ:xy") << "not octal: dropped whole";
    EXPECT_EQ(lexed("'\\1234'"), "SQ") << "too long for octal: dropped whole";
    EXPECT_EQ(lexed("'\\777'"), "SQ:\xff");
    EXPECT_EQ(lexed("'\\n\\t\\r\\b\\f'"), "SQ:\n\t\r\b\f");
    EXPECT_EQ(lexed("'\\q\\'\\\\'"), "SQ:q'\\");
    EXPECT_EQ(lexed("''"), "SQ");
}

TEST(CalcLexStrings, ANulByteEscapeIsKept) {
    std::vector<Token> t = tokens("'a\\0b'");
    ASSERT_EQ(t.size(), 1u);
    EXPECT_EQ(t[0].value, std::string("a\0b", 3));
}

TEST(CalcLexStrings, NewlinesAndTheEndOfInput) {
    EXPECT_EQ(lexed("'a\\\nb'"), "SQ:a\nb") << "an escaped newline goes on";
    EXPECT_EQ(lexed("'ab\ncd"), "NAME:cd") << "a newline drops the open string";
    EXPECT_EQ(lexed("x 'abc"), "NAME:x") << "the end of input drops it too";
    EXPECT_EQ(lexed("'ab\\"), "INVALID:\\");
}

TEST(CalcLexInvalid, StrayBytesAreInvalidTokens) {
    EXPECT_EQ(lexed(std::string("a\0b", 3)), std::string("NAME:a INVALID:\0 NAME:b", 23));
}

TEST(CalcLexColumns, ColumnsAreOffsetsIntoTheScannedText) {
    zun::CalcLex lex;
    std::vector<Token> t = tokens("ab +\t12 'x'", &lex);
    ASSERT_EQ(t.size(), 4u);
    EXPECT_EQ(t[0].first, 1);
    EXPECT_EQ(t[0].last, 2);
    EXPECT_EQ(t[1].first, 4);
    EXPECT_EQ(t[1].last, 4);
    EXPECT_EQ(t[2].first, 6);
    EXPECT_EQ(t[2].last, 7);
    EXPECT_EQ(t[3].first, 9);
    EXPECT_EQ(t[3].last, 11);
    EXPECT_EQ(text(lex.scanned()), "ab +\t12 'x'");
    EXPECT_EQ(text(lex.columnText(4, 7)), "+\t12");
}

TEST(CalcLexColumns, AFreshScanStartsOver) {
    zun::CalcLex lex;
    tokens("first 'open", &lex);
    std::vector<Token> t = tokens("b'", &lex);
    ASSERT_EQ(t.size(), 1u) << "the string state of the last scan is gone";
    EXPECT_EQ(t[0].kind, T::NAME);
    EXPECT_EQ(t[0].first, 1);
    EXPECT_EQ(text(lex.scanned()), "b'");
}
