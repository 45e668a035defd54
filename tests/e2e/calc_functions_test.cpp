// skelvor-calc end to end: the numeric, geodesic, string and date functions.
#include "calc_expect.h"

using namespace calce2e;

TEST(CalcFunctions, NATests) {
    expectValue("isna(nan, null)", "1");
    expectValue("isna(nan, 1)", "0");
    expectValue("isna(\"\")", "0");
    expectValue("hasna(1, null)", "1");
    expectValue("isnullstr(null, nan)", "1");   // NaN as a text is the null text
    expectValue("hasnullstr(1, \"\")", "0");
    expectValue("isnan(\"x\", \"\")", "1");     // texts that are no number
    expectValue("hasnan(1, \"2\")", "0");
    expectValue("isfinite(1, infinity)", "0");
    expectValue("isna(vector(2)[nan, null])", "1");
    // an empty vector leaves no argument: the "is" forms hold, the "has" forms don't
    expectValue("a = vector(0); isna(a) << hasna(a) << minlookup(a) << isnan(min(a))", "\"10-11\"");
}

TEST(CalcFunctions, BitsMinMaxThreshold) {
    expectValue("bits(12,2) << bits(12,2,2) << bits(12,3,-2) << bits(-8,1,4)", "\"13312\"");
    expectValue("bits(5, 66)", "1");  // shift counts modulo 64
    expectValue("min(nan,2,1)", "1");
    expectValue("min(nan,nan)", "nan");
    expectValue("max(1,nan,3)", "3");
    expectValue("min(vector(3)[4,$1,9], 7)", "1");
    expectValue("threshold(1,2,3) << threshold(5,2,3) << threshold(2.5,2,3)", "\"-110\"");
    expectValue("threshold(nan,2,3) << threshold(5,2,nan)", "\"00\"");
    expectValue("min(3,-1/0,nan) << ' ' << max('7',5) << ' ' << threshold(2,2,3) << bits(1,nan,nan) << isfinite(1,1/0)",
                "\"-inf 7 000\"");
}

TEST(CalcFunctions, TableLookups) {
    expectValue("minlookup(5,0,10,20) << minlookup(-1,0,10,20) << minlookup(25,0,10,20)", "\"0-12\"");
    expectValue("maxlookup(5,0,10,20) << maxlookup(25,0,10,20)", "\"1-1\"");
    expectValue("minselect(5,0,10,20) << ' ' << maxselect(5,0,10,20)", "\"0 10\"");
    expectValue("maxselect(25,0,10)", "inf");
    expectValue("minselect(-5,0,10)", "-inf");
    expectValue("numlookup(10,0,10,20) << numlookup(nan,nan)", "\"1-1\"");
    expectValue("strlookup(\"b\",\"a\",\"b\") << strlookup(\"\",\"a\",null) << strlookup(null,null)", "\"11-1\"");
    expectValue("maxlookup(15, vector(3)[0,10,20])", "2");
    expectValue("minlookup(10,0,10,20) << maxlookup(10,0,10,20) << minlookup(nan,0,10) << maxlookup(nan,0,10) << "
                "numlookup(11,0,10)", "\"111-1-1\"");
    expectValue("minselect(25,0,10,20) << ' ' << minselect(25) << ' ' << maxselect(0,0,10)", "\"20 -inf 0\"");
}

TEST(CalcFunctions, RoundingAndLogarithms) {
    expectValue("round(2.5) << ' ' << round(-2.5) << ' ' << round(1.25,1) << ' ' << round(1234,-2)",
                "\"3 -2 1.3 1200\"");
    expectValue("floor(-2.5) << ' ' << floor(1.27,1) << ' ' << ceil(1.21,1) << ' ' << ceil(-2.5)",
                "\"-3 1.2 1.3 -2\"");
    expectValue("round(0, nan)", "0");  // the decimals of 0 are not read
    expectValue("floor(1.29, 1.9) << ' ' << ceil(-1.5) << ' ' << abs(-0) << isnan(floor(2.5, nan)) << "
                "isnan(round(nan))", "\"1.2 -1 011\"");
    expectValue("log(8, nan)", "nan");
    expectValue("log(1, nan)", "0");
    expectValue("log(0)", "-inf");
    expectValue("log(-1)", "nan");
    expectValue("log(8, 2)", "3");
    expectValue("log(8, -2)", "nan");
    expectValue("abs(-3) << ' ' << sqrt(16) << ' ' << sqrt(-1)", "\"3 4 \"");  // NaN as a text is null
}

TEST(CalcFunctions, TrigonometryAndGeodesy) {
    expectValue("cos(0) + sin(pi/2) + tan(0)", "2");
    expectValue("acos(2)", "nan");
    expectValue("asin(1)", "1.5707963267949");
    expectValue("atan(1)", "0.785398163397448");
    expectValue("atan(1, -1)", "2.35619449019234");
    expectValue("atan(-1, -1)", "-2.35619449019234");
    expectValue("arclen(0,0,0,0)", "0");
    expectValue("arclen(0,0,pi/2,0)", "1.5707963267949");
    expectValue("arclen(0,0,0.1,0.1) HaverSine", "0.141303298696124");
    expectValue("arcbearing(0,0,1,0) << ' ' << arcbearing(0,0,0,1)", "\"1.5707963267949 0\"");
    expectValue("arcbearing(0,0,-1,0) << ' ' << arcbearing(0,0.5,0,-0.5)", "\"-1.5707963267949 3.14159265358979\"");
    expectError("arcdest(0,0,1,1)", "ERROR-CALC008 function unknown : \"arcdest\"");
    expectError("arcmidpoint(0,0,1,1)", "ERROR-CALC008 function unknown : \"arcmidpoint\"");
    expectError("arclen(0,0,0,0) iso", "ERROR-CALC003 operator expected : in statement (arclen(0,0,0,0) >>>   <<< iso)");
}

TEST(CalcFunctions, Texts) {
    expectValue("strfill(3) << '|' << strfill(2,'ab') << '|' << strfill(0,'x')", "\"   |abab|\"");
    expectValue("padstr('ab',5) << padstr('ab',-5,'*') << padstr('ab',5,'xy') << padstr('ab',4,null)",
                "\"   abab***xyxab  ab\"");
    expectValue("substr('abcdef',1,3) << substr('abcdef',4) << substr('abc',-5,0) << substr('abc',2,1)",
                "\"bcdefa\"");
    expectValue("'abcdef'[1,2] << 'abc'[2]", "\"bcc\"");
    expectValue("substr(12345,1,2)", "\"23\"");
    expectValue("strfind('abcabc','c') << strfind('abcabc','c',3) << strfind(null,'a') << strfind('abc','z')",
                "\"25-1-1\"");
    expectValue("words('a b c',' ',1) << '|' << words('a b c',' ',1,2) << '|' << words('a,b,,c',',',2)",
                "\"b|b c|\"");
    expectValue("words('a b', null, 0)", "\"a b\"");
    expectValue("insert('abc','X',1) << insert('abc',null,1) << insert('abc','X',10)", "\"aXbcabcabcX\"");
    expectValue("escape('a\\tb\\\\' << char(1))", "\"a\\\\tb\\\\\\\\\\\\d001\"");
    expectValue("trim('  ab  ') << '|' << trim('xxabxx','x') << '|' << trim('   ') << '|'", "\"ab|ab| |\"");
    expectValue("swap('a-b-c','-','+') << swap('a-b','-',null) << swap('aaa','a','aa')", "\"a+b+cabaaaaaa\"");
    expectValue("lowercase('AbC') << uppercase('AbC')", "\"abcABC\"");
    expectValue("char(65) << char(0) << char(256+66)", "\"AB\"");
    expectValue("ascii('A') << ascii('') << ascii(char(200))", "\"650-56\"");
    expectValue("strlen('abc') << strlen(null) << strlen(12345)", "\"305\"");
    expectValue("strmin('b',null,'a') << strmax('b','c','a')", "\"ac\"");
    expectValue("isnullstr(strmin(null))", "1");
    expectValue("strmax(vector(3)['x' << $1])", "\"x2\"");
    expectValue("strcount('abcabc','bc') << strcount('aaaa','aa') << strcount('abc','')", "\"22-1\"");
    expectValue("x = 'abcd'; strcount(null,'a') << strfind('abc',null) << strlen(12.5) << ' ' << x[2]", "\"004 cd\"");
    expectValue("strfill(2.9,'ab') << '|' << padstr('abcdef',3) << '|' << substr('abc',1,99) << '|' << "
                "words('a=b=c','=;',1,-1) << '|' << words('a=b','',0) << '|' << trim('xxabxx','xyz') << '|' << "
                "swap('a.b',null,'x') << swap('a.b','','x') << '|' << char(65.9) << insert('abc','XY',-3)",
                "\"abab|abcdef|bc|b=c|a=b|ab|a.ba.b|AXYabc\"");
    // empty is not null; what can't fit is
    expectValue("isnullstr(strfill(0,'x')) << isnullstr(strfill(nan)) << isnullstr(strfill(5,null)) << "
                "isnullstr(strmin('b','')) << isnullstr(words('a=b','=',5)) << isnullstr(strmax(null,null))",
                "\"000011\"");
    expectValue("isnullstr(strfill(3000000000,'ab')) << isnullstr(strfill(3000000000)) << "
                "isnullstr(padstr('a', -2147483648))", "\"111\"");
}

TEST(CalcFunctions, TextTests) {
    expectValue("isnumber('12','1.5','-3') << isnumber('1e5')", "\"10\"");
    expectValue("isinteger('12','-3') << isinteger('1.5')", "\"10\"");
    expectValue("isdecimal('1.5') << isdecimal('12')", "\"10\"");
    expectValue("isalpha('ab12','') << isalpha('a b')", "\"10\"");
    expectValue("isinteger('12','') << isdecimal('1.5','-0.25')", "\"01\"");
}

TEST(CalcFunctions, Dates) {
    expectValue("datestr(0)", "\"01-JAN-2000 00:00:00.000000\"");
    expectValue("datestr(0, 2000) == datestr(0)", "1");
    expectValue("datestr(0) iso", "\"2000-01-01T00:00:00.000000\"");
    expectValue("datestr(1.5, 1970)", "\"02-JAN-1970 12:00:00.000000\"");
    expectValue("datestr(0, 1970) ISO", "\"1970-01-01T00:00:00.000000\"");
    expectValue("datestr(-1)", "\"31-DEC-1999 00:00:00.000000\"");
    expectValue("datestr(3/86400000000)", "\"01-JAN-2000 00:00:00.000003\"");
    expectValue("datestr(0.999999999999)", "\"01-JAN-2000 23:59:59.999999\"");
    expectValue("isnullstr(datestr(nan)) << isnullstr(datestr(infinity, 2000)) << isnullstr(datestr(1.0e300, 1990))",
                "\"111\"");
    expectValue("datenum(datestr(7000.25)) << ' ' << datenum(datestr(-400.75))", "\"7000.25 -400.75\"");
    expectValue("datenum('01-JAN-2000', 1999)", "365");
    expectValue("datenum('02-JAN-2000 12:00:00')", "1.5");
    expectValue("datenum('2004-03-05T12:00:00') << datenum('20040305T120000') << datenum('05/03/2004 12:00:00')",
                "\"1525.51525.51525.5\"");
    expectValue("datenum('02-jan-1970 06:00:00', 1970)", "1.25");
    expectValue("datenum('12-FEB-99') << ' ' << datenum('12-FEB-05')", "\"-323 1869\"");
    expectValue("datenum('12:00:00')", "0.5");  // a time alone is on the first day
    expectValue("datenum('xx') << datenum('01-FOO-2000')", "\"\"");
    expectValue("datenum(null) > 8000", "1");  // the present day
    expectValue("datestr(datenum('05-MAR-2004 12:00:00.5'))", "\"05-MAR-2004 12:00:00.500000\"");
}

TEST(CalcFunctions, ArgumentCounts) {
    expectError("min()", "ERROR-CALC006 missing function arguments : Function \"min\" takes at least 1 argument(s)");
    expectError("datestr(1,2,3)",
                "ERROR-CALC007 too many function arguments : Function \"datestr\" takes at most 2 argument(s)");
    std::string many = "isna(0";
    for (int i = 1; i <= 100; ++i) many += "," + std::to_string(i);
    expectError(many + ")",
                "ERROR-CALC007 too many function arguments : Function \"isna\" takes at most 100 argument(s)");
}
