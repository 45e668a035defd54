// String and date functions through expression texts.
#include <gtest/gtest.h>

#include "base/JulianDate.h"
#include "calc/CalcError.h"
#include "oper_testnodes.h"

using namespace calctest;

namespace {

struct StrCase {
    const char* text;
    const char* value;
};

}  // namespace

TEST(FuncStrParse, TextValues) {
    const StrCase cases[] = {
        {"strfill(3)", "   "},
        {"strfill(2,\"ab\")", "abab"},
        {"strfill(0,\"x\")", ""},
        {"strmin(\"b\",null,\"a\")", "a"},
        {"strmax(\"b\",null,\"a\")", "b"},
        {"strmin(null)", "<null>"},
        {"insert(\"abc\",null,1)", "abc"},
        {"\"abc\"[1,2]", "bc"},
        {"\"abc\"[1]", "bc"},
        {"substr(\"abc\",1,2)", "bc"},
        {"substr(null,1)", "<null>"},
        {"padstr(\"7\", 3, \"0\")", "007"},
        {"words(\"a b c\", \" \", 1, 2)", "b c"},
        {"trim(\"  x  \")", "x"},
        {"swap(\"a-b-c\", \"-\", \"+\")", "a+b+c"},
        {"uppercase(\"ab\") << lowercase(\"CD\")", "ABcd"},
        {"char(72) << char(105)", "Hi"},
        {"escape(\"a\\\\b\")", "a\\\\b"},
        {"v=vector(3)[\"b\",\"a\",\"c\"]; strmin(v)", "a"},
        {"strfill(2.9,\"ab\")", "abab"},
        {"padstr(\"ab\", -5, \"*\")", "ab***"},
        {"padstr(\"ab\", 5, \"xy\")", "xyxab"},
        {"padstr(\"abcdef\", 3)", "abcdef"},
        {"substr(\"abcdef\", -2, 0)", "a"},
        {"substr(\"abc\", 1, 99)", "bc"},
        {"words(\"a=b=c\", \"=;\", 1, -1)", "b=c"},
        {"words(\"a=b\", \"=\", 5)", "<null>"},
        {"words(\"a=b\", null, 1)", "a=b"},
        {"words(\"a=b\", \"\", 0)", "a=b"},
        {"insert(\"abc\", \"XY\", 10)", "abcXY"},
        {"trim(\"xxabxx\", \"xyz\")", "ab"},
        {"trim(\"   \")", " "},
        {"swap(\"a.b.c\", \".\", null)", "abc"},
        {"swap(\"a.b\", null, \"x\")", "a.b"},
        {"swap(\"a.b\", \"\", \"x\")", "a.b"},
        {"strmax(null, null)", "<null>"},
        {"char(65.9)", "A"},
        {"char(0)", ""},
    };
    for (const StrCase& c : cases) EXPECT_EQ(strOf(c.text), c.value) << c.text;
}

TEST(FuncStrParse, NumberValues) {
    EXPECT_EQ(numOf("strfind(null,\"a\")"), -1);
    EXPECT_EQ(numOf("strfind(\"abcabc\",\"c\",3)"), 5);
    EXPECT_EQ(numOf("strlen(null)"), 0);
    EXPECT_EQ(numOf("strlen(\"abc\")"), 3);
    EXPECT_EQ(numOf("ascii(\"A\")"), 65);
    EXPECT_EQ(numOf("strcount(\"a.b.c\", \".\")"), 2);
    EXPECT_EQ(numOf("isnumber(\"1\", \"2.5\", 3)"), 1);
    EXPECT_EQ(numOf("isdecimal(\"1\")"), 0);
    EXPECT_EQ(numOf("isinteger(\"-4\")"), 1);
    EXPECT_EQ(numOf("isalpha(\"a b\")"), 0);
    EXPECT_EQ(numOf("isalpha(\"abc1\", \"\")"), 1);
    EXPECT_EQ(numOf("isinteger(\"12\", \"\")"), 0);
    EXPECT_EQ(numOf("isnumber(\"1e5\")"), 0);
    EXPECT_EQ(numOf("isdecimal(\"1.5\", \"-0.25\")"), 1);
    EXPECT_EQ(numOf("strcount(\"aaaa\", \"aa\")"), 2);
    EXPECT_EQ(numOf("strcount(\"abc\", \"\")"), -1);
    EXPECT_EQ(numOf("strcount(null, \"a\")"), 0);
    EXPECT_EQ(numOf("strfind(\"abc\", null)"), 0);
    EXPECT_EQ(numOf("strlen(12.5)"), 4);
    EXPECT_EQ(numOf("datenum(\"02-JAN-2000 12:00:00\")"), 1.5);
    EXPECT_EQ(numOf("datenum(\"01-JAN-2000\", 1999)"), 365);
}

TEST(FuncStrParse, DateTextForms) {
    EXPECT_EQ(strOf("datestr(0)"), strOf("datestr(0,2000)"));
    EXPECT_EQ(strOf("datestr(0)"), zun::JulianDate(0).str(-1).str());
    EXPECT_EQ(strOf("datestr(0) iso"), zun::JulianDate(0).strIso(-1, false).str());
    EXPECT_EQ(strOf("datestr(0) ISO"), strOf("datestr(0) iso"));
    EXPECT_EQ(strOf("datestr(1, 2001) iso").substr(0, 10), "2001-01-02");
    EXPECT_THROW(strOf("datestr(0) dmy"), zun::CalcErrorOperatorExpected);
}

TEST(FuncStrParse, WrongCalls) {
    EXPECT_THROW(strOf("\"abc\"[1,2,3]"), zun::CalcErrorArgsTooMany);
    EXPECT_THROW(strOf("words(\"a\", \" \")"), zun::CalcErrorArgsMissing);
    EXPECT_THROW(strOf("strcount(\"a\")"), zun::CalcErrorArgsMissing);
    EXPECT_THROW(strOf("trim(\"a\", \"b\", \"c\")"), zun::CalcErrorArgsTooMany);
}
