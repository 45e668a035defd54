// The token rules, the columns and scanned text that tokens leave behind, and
// the scanner that finds where one expression ends inside a longer text.
#include <gtest/gtest.h>

#include <sstream>

#include "calc/CalcLex.h"
#include "calc/CalcScanner.h"
#include "calc_testing.h"

using namespace calctest;
using zun::CalcScanner;
namespace T = zun::CalcToken;

namespace {

struct Token {
    int kind;
    std::string value;
    int first, last;
};

std::vector<Token> tokens(const std::string& source, zun::CalcLex& lex) {
    std::istringstream in(source);
    lex.rearm(in);
    std::vector<Token> out;
    for (int kind; (kind = lex.nextToken()) != 0;) {
        Token t{kind, "", lex.location.first_column, lex.location.last_column};
        if (T::hasString(kind)) {
            t.value = text(*Calclval.str);
            delete Calclval.str;
        } else if (kind == T::INTEGER) {
            t.value = std::to_string(Calclval.integer);
        } else if (kind == T::FLOAT) {
            char buf[40];
            std::snprintf(buf, sizeof buf, "%g", Calclval.real);
            t.value = buf;
        }
        out.push_back(t);
    }
    return out;
}

// The tokens written "KIND:value" or as their character, blank-separated.
std::string lexed(const std::string& source) {
    static const char* const names[] = {"SQ", "DQ", "INTEGER", "FLOAT", "NAME", "BRACED", "INVALID", "EQ",
                                        "NE", "GE", "LE", "AND", "OR", "SHR", "SHL", "OPER"};
    zun::CalcLex lex;
    std::string out;
    for (const Token& t : tokens(source, lex)) {
        if (!out.empty()) out += ' ';
        if (t.kind >= T::SQ_STRING && t.kind <= T::OPER) {
            out += names[t.kind - T::SQ_STRING];
            if (!t.value.empty()) out += ":" + t.value;
        } else {
            out += static_cast<char>(t.kind);
        }
    }
    return out;
}

}  // namespace

TEST(CalcLex, Tokens) {
    const char* const cases[][2] = {
        // names take dots, sigils, backslashes, carriage returns and high bytes; colons end them singly
        {"a.b(1)", "NAME:a.b ( INTEGER:1 )"}, {"#last $x a\\b c`d", "NAME:#last NAME:$x NAME:a\\b NAME:c`d"},
        {".", "NAME:."}, {"a\rb", "NAME:a\rb"}, {"\xe9t\xe9", "NAME:\xe9t\xe9"}, {"a::b", "NAME:a::b"},
        {"::x", "NAME:::x"}, {"::", ": :"}, {"a::", "NAME:a : :"},
        // an exponent needs a decimal point
        {"1.e5", "FLOAT:100000"}, {".5e5", "FLOAT:50000"}, {"1.5e", "NAME:1.5e"}, {"1.5e3x", "NAME:1.5e3x"},
        {"2.5E-1", "FLOAT:0.25"},
        // operators; a run becomes OPER only by its last character, a minus after + or - always fuses
        {"== != >= <= && || << >>", "EQ NE GE LE AND OR SHL SHR"},
        {"< > ! % ? @ & * ^ ~ + / : = | -", "< > ! % ? @ & * ^ ~ + / : = | -"}, {"( ) , ; [ ]", "( ) , ; [ ]"},
        {"a*-b", "NAME:a * - NAME:b"}, {"a=-1", "NAME:a = - INTEGER:1"}, {"a==-1", "NAME:a EQ - INTEGER:1"},
        {"a<-1", "NAME:a < - INTEGER:1"}, {"a*!b", "NAME:a * ! NAME:b"}, {"a**b", "NAME:a OPER:** NAME:b"},
        {"a%%b", "NAME:a % % NAME:b"}, {"!!a", "OPER:!! NAME:a"}, {"a!=!b", "NAME:a OPER:!=! NAME:b"},
        {"a+-b", "NAME:a OPER:+- NAME:b"}, {"a +\n\t-b", "NAME:a OPER:+\n\t- NAME:b"}, {"! -a", "! - NAME:a"},
        // comments run to the end of the line; a slash continues an operator run
        {"a//c", "NAME:a"}, {"a+//c", "NAME:a OPER:+// NAME:c"},
        // braced names stay on one line
        {"{a b}", "BRACED:a b"}, {"{}", "BRACED"}, {"}", "INVALID:}"}, {"{a\nb}", "INVALID:{ NAME:a NAME:b INVALID:}"},
        {"{a{b}", "INVALID:{ NAME:a BRACED:b"},
        // strings: octal escapes of up to three digits, other escapes drop the backslash
        {"'a,b'", "SQ:a,b"}, {"\"it's\"", "DQ:it's"}, {"'say \"x\"'", "SQ:say \"x\""}, {"'\\1234'", "SQ"},
        {"'\\n\\t\\r\\b\\f'", "SQ:\n\t\r\b\f"}, {"'\\q\\'\\\\'", "SQ:q'\\"}, {"''", "SQ"},
    };
    for (const auto& c : cases) EXPECT_EQ(lexed(c[0]), c[1]) << c[0];
    EXPECT_EQ(lexed(std::string("a\0b", 3)), std::string("NAME:a INVALID:\0 NAME:b", 23));
    zun::CalcLex lex;
    EXPECT_EQ(tokens("'a\\0b'", lex).at(0).value, std::string("a\0b", 3));
}

TEST(CalcLex, ColumnsAreOffsetsIntoTheScannedText) {
    zun::CalcLex lex;
    std::vector<Token> t = tokens("ab +\t12 'x'", lex);
    ASSERT_EQ(t.size(), 4u);
    const int columns[4][2] = {{1, 2}, {4, 4}, {6, 7}, {9, 11}};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(std::make_pair(t[i].first, t[i].last), std::make_pair(columns[i][0], columns[i][1])) << i;
    EXPECT_EQ(text(lex.scanned()), "ab +\t12 'x'");
    EXPECT_EQ(text(lex.columnText(4, 7)), "+\t12");

    ASSERT_EQ(tokens("x // note", lex).size(), 1u);
    EXPECT_EQ(lex.location.last_column, 9) << "a comment counts in the columns";
    EXPECT_EQ(text(lex.scanned()), "x // note");

    tokens("first 'open", lex);
    t = tokens("b'", lex);
    ASSERT_EQ(t.size(), 1u) << "a fresh scan forgets the open string of the last one";
    EXPECT_EQ(t[0].kind, T::NAME);
    EXPECT_EQ(t[0].first, 1);
}

TEST(CalcScanner, StopsAtTheFirstTokenTheGrammarRefuses) {
    CalcScanner empty("");
    EXPECT_EQ(empty.stopChar, -1);
    String s = empty.scan();
    EXPECT_FALSE(s.isNull());
    EXPECT_EQ(s.length, 0);
    EXPECT_EQ(empty.stopChar, 0);

    const char* const cases[][3] = {
        {"f(a,b),c", "f(a,b)", ","}, {"'a,b',c", "'a,b'", ","},
        {"a + , b", "a + ", ","},  // not a whole expression, still cut at the comma
        {"x 1", "x ", "1"},        // no error forms for a missing operator
        {"a ** b", "a ", "*"},     // no OPER rule
        {"a = 1; b = a[2] + f(x, 'y') @m(1) kw; c ? d : e // end",
         "a = 1; b = a[2] + f(x, 'y') @m(1) kw; c ? d : e // end", ""},
    };
    for (const auto& c : cases) {
        CalcScanner scanner(c[0]);
        EXPECT_EQ(text(scanner.scan()), c[1]) << c[0];
        EXPECT_EQ(scanner.stopChar, c[2][0]) << c[0];
    }
    CalcScanner whole(cases[5][0]);
    whole.scan();
    EXPECT_TRUE(whole.atEnd());
    EXPECT_TRUE(whole.scan().isNull()) << "nothing left";
    CalcScanner skipped("xx1+2");
    EXPECT_EQ(text(skipped.scan(2)), "1+2");
    CalcScanner past("ab");
    EXPECT_TRUE(past.scan(5).isNull()) << "a skip past the end marks the end";

    std::istringstream in("ab(1,2) , rest");
    CalcScanner stream(in);
    EXPECT_EQ(text(stream.scan()), "ab(1,2) ");
    EXPECT_EQ(static_cast<long>(in.tellg()), 8) << "the stream stands at the stop";

    Calclval.integer = 4242;
    CalcScanner("'x', y").scan();
    EXPECT_EQ(Calclval.integer, 4242) << "the semantic value of an outer parse is kept";
}

TEST(CalcScanner, ListsSplitAtTopLevelCommasOnly) {
    auto split = [](const char* list) {
        std::vector<std::string> parts;
        for (String rest(list); rest.text;) {
            CalcScanner scanner(rest.text);
            parts.push_back(text(scanner.scan()));
            if (scanner.atEnd() || scanner.stopChar != ',') break;
            rest = scanner.skip(1).flush();
        }
        return parts;
    };
    EXPECT_EQ(split("1, f(2,3), 'x,y', a[1,2], {u,v}"),
              (std::vector<std::string>{"1", " f(2,3)", " 'x,y'", " a[1,2]", " {u,v}"}));
    EXPECT_EQ(split("a,"), (std::vector<std::string>{"a", ""}));
}

TEST(CalcScanner, WhatTheWholeInputWas) {
    const std::pair<const char*, int> cases[] = {
        {"12", CalcScanner::KindInteger}, {"-12", CalcScanner::KindInteger}, {"1.5", CalcScanner::KindFloat},
        {" -.5 ", CalcScanner::KindFloat}, {"\"a\"", CalcScanner::KindDQString}, {"'a'", CalcScanner::KindSQString},
        {"abc", CalcScanner::KindName}, {"{a b}", CalcScanner::KindBraced}, {"a+1", CalcScanner::KindOther},
        {"(1)", CalcScanner::KindOther}, {"-x", CalcScanner::KindOther}, {"f()", CalcScanner::KindOther},
        {"a=1;", CalcScanner::KindOther}, {"  ", CalcScanner::KindNone},
        {"1,2", CalcScanner::KindInteger},  // what stands before the stop, when whole
        {"f(a,b),c", CalcScanner::KindOther},
        {"a + , b", CalcScanner::KindNone},  // cut short inside: the top isn't reached
    };
    for (const auto& c : cases) {
        CalcScanner scanner(c.first);
        scanner.scan();
        EXPECT_EQ(scanner.exprKind, c.second) << c.first;
    }
}

TEST(CalcScanner, TheStackGrowsToTenThousand) {
    std::string deep = std::string(3000, '(') + "1" + std::string(3000, ')');
    EXPECT_EQ(CalcScanner(deep.c_str()).scan().length, static_cast<int>(deep.size()));
    std::string tooDeep = std::string(12000, '(') + "1" + std::string(12000, ')');
    String part = CalcScanner(tooDeep.c_str()).scan();
    EXPECT_LT(part.length, 12000);
    EXPECT_EQ(text(part), std::string(part.length, '('));
}
