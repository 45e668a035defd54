// CalcScanner: where an expression ends inside a longer text, and what kind
// of expression the text was.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "calc/CalcScanner.h"
#include "calccore_testing.h"

using namespace calccore;
using zun::CalcScanner;

namespace {

// A comma-separated list split the way the dictionary reader does it.
std::vector<std::string> split(const char* list) {
    std::vector<std::string> parts;
    String rest(list);
    while (rest.text) {
        CalcScanner scanner(rest.text);
        parts.push_back(text(scanner.scan()));
        if (scanner.atEnd() || scanner.stopChar != ',') break;
        rest = scanner.skip(1).flush();
    }
    return parts;
}

int kindOf(const char* source) {
    CalcScanner scanner(source);
    scanner.scan();
    return scanner.exprKind;
}

}  // namespace

TEST(CalcScannerScan, AnEmptyTextIsAnEmptyExpression) {
    CalcScanner scanner("");
    EXPECT_EQ(scanner.stopChar, -1);
    String s = scanner.scan();
    EXPECT_FALSE(s.isNull());
    EXPECT_EQ(s.length, 0);
    EXPECT_EQ(scanner.stopChar, 0);
    EXPECT_EQ(scanner.exprKind, CalcScanner::KindNone);
}

TEST(CalcScannerScan, StopsAtTheFirstTokenTheGrammarRefuses) {
    CalcScanner a("f(a,b),c");
    EXPECT_EQ(text(a.scan()), "f(a,b)");
    EXPECT_EQ(a.stopChar, ',');
    EXPECT_EQ(text(a.skip(1).flush()), "c");

    CalcScanner b("'a,b',c");
    EXPECT_EQ(text(b.scan()), "'a,b'");

    CalcScanner c("a + , b");
    EXPECT_EQ(text(c.scan()), "a + ") << "not a whole expression, still cut at the comma";
    EXPECT_EQ(c.stopChar, ',');

    CalcScanner d("x 1");
    EXPECT_EQ(text(d.scan()), "x ") << "no error forms for a missing operator";
    EXPECT_EQ(d.stopChar, '1');

    CalcScanner e("a ** b");
    EXPECT_EQ(text(e.scan()), "a ") << "no OPER rule";
}

TEST(CalcScannerScan, TheWholeTextWhenItParses) {
    CalcScanner s("a = 1; b = a[2] + f(x, 'y') @m(1) kw; c ? d : e // end");
    String all = s.scan();
    EXPECT_EQ(text(all), "a = 1; b = a[2] + f(x, 'y') @m(1) kw; c ? d : e // end");
    EXPECT_EQ(s.stopChar, 0);
    EXPECT_TRUE(s.atEnd());
    EXPECT_TRUE(s.scan().isNull()) << "nothing left";
}

TEST(CalcScannerScan, TheStreamStandsAtTheStop) {
    std::istringstream in("ab(1,2) , rest");
    CalcScanner s(in);
    EXPECT_EQ(text(s.scan()), "ab(1,2) ");
    EXPECT_EQ(static_cast<long>(in.tellg()), 8);
    EXPECT_EQ(in.get(), ',');
}

TEST(CalcScannerScan, ScanSkipsFirst) {
    CalcScanner s("xx1+2");
    EXPECT_EQ(text(s.scan(2)), "1+2");
    CalcScanner t("ab");
    EXPECT_TRUE(t.scan(5).isNull()) << "a skip past the end marks the end";
}

TEST(CalcScannerScan, KeepsTheSemanticValueOfAnOuterParse) {
    Calclval.integer = 4242;
    CalcScanner s("'x', y");
    s.scan();
    EXPECT_EQ(Calclval.integer, 4242);
}

TEST(CalcScannerSplit, CommasInsideCallsStringsAndBracketsDontSplit) {
    std::vector<std::string> parts = split("1, f(2,3), 'x,y', a[1,2], {u,v}");
    EXPECT_EQ(parts, (std::vector<std::string>{"1", " f(2,3)", " 'x,y'", " a[1,2]", " {u,v}"}));
    EXPECT_EQ(split("n"), (std::vector<std::string>{"n"}));
    EXPECT_EQ(split("a,"), (std::vector<std::string>{"a", ""}));
}

TEST(CalcScannerKind, WhatTheWholeInputWas) {
    EXPECT_EQ(kindOf("12"), CalcScanner::KindInteger);
    EXPECT_EQ(kindOf("-12"), CalcScanner::KindInteger);
    EXPECT_EQ(kindOf("1.5"), CalcScanner::KindFloat);
    EXPECT_EQ(kindOf(" -.5 "), CalcScanner::KindFloat);
    EXPECT_EQ(kindOf("\"a\""), CalcScanner::KindDQString);
    EXPECT_EQ(kindOf("'a'"), CalcScanner::KindSQString);
    EXPECT_EQ(kindOf("abc"), CalcScanner::KindName);
    EXPECT_EQ(kindOf("{a b}"), CalcScanner::KindBraced);
    EXPECT_EQ(kindOf("a+1"), CalcScanner::KindOther);
    EXPECT_EQ(kindOf("(1)"), CalcScanner::KindOther);
    EXPECT_EQ(kindOf("-x"), CalcScanner::KindOther);
    EXPECT_EQ(kindOf("f()"), CalcScanner::KindOther);
    EXPECT_EQ(kindOf("a=1"), CalcScanner::KindOther);
    EXPECT_EQ(kindOf("a=1;"), CalcScanner::KindOther);
    EXPECT_EQ(kindOf("  "), CalcScanner::KindNone);
    EXPECT_EQ(kindOf("1,2"), CalcScanner::KindInteger) << "what stands before the stop, when whole";
    EXPECT_EQ(kindOf("f(a,b),c"), CalcScanner::KindOther);
    EXPECT_EQ(kindOf("a + , b"), CalcScanner::KindNone) << "cut short inside: the top isn't reached";
}

TEST(CalcScannerLimits, TheStackGrowsToTenThousand) {
    std::string deep = std::string(3000, '(') + "1" + std::string(3000, ')');
    CalcScanner ok(deep.c_str());
    EXPECT_EQ(ok.scan().length, static_cast<int>(deep.size()));

    std::string tooDeep = std::string(12000, '(') + "1" + std::string(12000, ')');
    CalcScanner cut(tooDeep.c_str());
    String part = cut.scan();
    EXPECT_LT(part.length, 12000);
    EXPECT_EQ(std::string(part.text ? part.text : "", part.length), std::string(part.length, '('));
}
