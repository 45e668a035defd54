// Every kind of leaf as skelvor prints it: binary numbers in both byte
// orders, numbers written as text, dates, texts, characters and Null, with
// their hexadecimal columns.
#include <gtest/gtest.h>

#include "skelvor_testing.h"

namespace {

using e2e::bytes;
using skelvortest::expectOut;
using skelvortest::expectRun;

class Leaves : public skelvortest::SkelvorTest {};

const char* const numbersFields =
    "sc|SChar|||\n"
    "uc|UChar|||\n"
    "ss|SShort|||\n"
    "us|UShort|||\n"
    "sl3|SLong||3\n"
    "ul4|ULong||4\n"
    "sl|SLong|||\n"
    "sll5|SLLong||5\n"
    "ull|ULLong|||\n"
    "f|Float|||\n"
    "d|Double|||\n";

TEST_F(Leaves, BinaryNumbersBigEndian) {
    write("num.dd", std::string("num|binary numbers||\n") + numbersFields);
    write("num.bin", bytes({0xFE, 0xC8, 0xFF, 0xFE, 0xFF, 0xFE, 0xFF, 0xFF, 0xFE, 0xEE, 0x6B, 0x28, 0x00,
                            0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFB, 0x80, 0x00, 0x00, 0x00, 0x01,
                            0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x3F, 0xC0, 0x00, 0x00,
                            0xBF, 0xB9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}));
    expectOut(run({"num.bin", "-d=num", "-x"}),
              "00> sc = -2 ; FE\n"
              "01> uc = 200 ; C8\n"
              "02> ss = -2 ; FF FE\n"
              "04> us = 65534 ; FF FE\n"
              "06> sl3 = -2 ; FF FF FE\n"
              "09> ul4 = 4000000000 ; EE 6B 28 00\n"
              "13> sl = -5 ; FF FF FF FF FF FF FF FB\n"
              "21> sll5 = -549755813887 ; 80 00 00 00 01\n"
              "26> ull = 18446744073709551615 ; FF FF FF FF FF FF FF FF\n"
              "34> f = 1.5 ; 3F C0 00 00\n"
              "38> d = -0.1 ; BF B9 99 99 99 99 99 9A\n");
}

TEST_F(Leaves, BinaryNumbersLittleEndian) {
    write("num.dd", std::string("num|binary numbers||LITTLE-ENDIAN\n") + numbersFields);
    write("num.bin", bytes({0xFE, 0xC8, 0xFE, 0xFF, 0xFE, 0xFF, 0xFE, 0xFF, 0xFF, 0x00, 0x28, 0x6B, 0xEE,
                            0xFB, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01, 0x00, 0x00, 0x00, 0x80,
                            0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0xC0, 0x3F,
                            0x9A, 0x99, 0x99, 0x99, 0x99, 0x99, 0xB9, 0xBF}));
    // the values of the big-endian file; the hexadecimal column keeps the file's order
    expectOut(run({"num.bin", "-d=num", "-x"}),
              "00> sc = -2 ; FE\n"
              "01> uc = 200 ; C8\n"
              "02> ss = -2 ; FE FF\n"
              "04> us = 65534 ; FE FF\n"
              "06> sl3 = -2 ; FE FF FF\n"
              "09> ul4 = 4000000000 ; 00 28 6B EE\n"
              "13> sl = -5 ; FB FF FF FF FF FF FF FF\n"
              "21> sll5 = -549755813887 ; 01 00 00 00 80\n"
              "26> ull = 18446744073709551615 ; FF FF FF FF FF FF FF FF\n"
              "34> f = 1.5 ; 00 00 C0 3F\n"
              "38> d = -0.1 ; 9A 99 99 99 99 99 B9 BF\n");
}

TEST_F(Leaves, CodingStandardOfTheHeaderAndTheOverride) {
    const std::string fields = "s|UShort|||\nt|SLong||3\n";
    write("big.dd", "big|||BIG-ENDIAN\n" + fields);
    write("none.dd", "none|||\n" + fields);
    write("little.dd", "little|||little-endian\n" + fields);
    write("local.dd", "local|||Local\n" + fields);
    write("data.bin", bytes({0x01, 0x02, 0xFF, 0xFF, 0xFE}));
    const std::string asBig = "0> s = 258\n2> t = -2\n";
    const std::string asLittle = "0> s = 513\n2> t = -65537\n";
    const std::string asMachine = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? asLittle : asBig;

    expectOut(run({"data.bin", "-d=big"}), asBig);
    expectOut(run({"data.bin", "-d=none"}), asBig);
    expectOut(run({"data.bin", "-d=little"}), asLittle);
    expectOut(run({"data.bin", "-d=local"}), asMachine);
    expectOut(run({"data.bin", "-d=big", "-cs=little"}), asLittle);
    expectOut(run({"data.bin", "-d=little", "-cs=big"}), asBig);
    expectOut(run({"data.bin", "-d=none", "-cs=local"}), asMachine);
    write("odd.dd", "odd|||MIDDLE-ENDIAN\ns|UShort|||\n");
    const std::string odd =
        "ERROR-VEXA015 dictionary error : invalid coding standard \"MIDDLE-ENDIAN\" in dictionary 'odd.dd'\n";
    expectRun(run({"data.bin", "-d=odd"}), 1, "", odd);
    expectRun(run({"data.bin", "-d=odd", "-cs=big"}), 1, "", odd);  // the override doesn't save the header
}

const char* const asciiFields =
    "a|aSLong|m|5\n"
    "b|aUShort||4\n"
    "c|aULong||3\n"
    "d|aUChar||3\n"
    "e|aFloat||4\n"
    "f|aDouble||4\n"
    "g|aSShort||3\n"
    "h|aULLong||3\n"
    "i|aSLLong||3\n"
    "j|aSChar||2\n";

const char* const asciiBytes = "  -1212AB   2583.5 -2.5-2 7-9200-1";

TEST_F(Leaves, AsciiNumbersShowTheirTextAndTheirBytes) {
    write("asc.dd", std::string("asc|||\n") + asciiFields);
    write("asc.bin", asciiBytes);
    expectOut(run({"asc.bin", "-d=asc", "-x"}),
              "00> a (m) = \"  -12\" ; 20 20 2D 31 32\n"
              "05> b = \"12AB\" ; 31 32 41 42\n"
              "09> c = \"   \" ; 20 20 20\n"
              "12> d = \"258\" ; 32 35 38\n"
              "15> e = \"3.5 \" ; 33 2E 35 20\n"
              "19> f = \"-2.5\" ; 2D 32 2E 35\n"
              "23> g = \"-2 \" ; 2D 32 20\n"
              "26> h = \"7-9\" ; 37 2D 39\n"
              "29> i = \"200\" ; 32 30 30\n"
              "32> j = \"-1\" ; 2D 31\n");
}

TEST_F(Leaves, AsciiNumbersInBinaryFormInTheFilesByteOrder) {
    write("big.dd", std::string("big|||\n") + asciiFields);
    write("little.dd", std::string("little|||LITTLE-ENDIAN\n") + asciiFields);
    write("asc.bin", asciiBytes);
    expectOut(run({"asc.bin", "-d=big", "-xn"}),
              "00> a (m) = \"  -12\" ; FF FF FF FF FF FF FF F4\n"
              "05> b = \"12AB\" ; 00 0C\n"
              "09> c = \"   \" ; 00 00 00 00 00 00 00 00\n"
              "12> d = \"258\" ; 02\n"
              "15> e = \"3.5 \" ; 40 60 00 00\n"
              "19> f = \"-2.5\" ; C0 04 00 00 00 00 00 00\n"
              "23> g = \"-2 \" ; FF FE\n"
              "26> h = \"7-9\" ; 00 00 00 00 00 00 00 07\n"
              "29> i = \"200\" ; 00 00 00 00 00 00 00 C8\n"
              "32> j = \"-1\" ; FF\n");
    expectOut(run({"asc.bin", "-d=little", "-xn", "a", "b", "e", "f", "g"}),
              "00> a (m) = \"  -12\" ; F4 FF FF FF FF FF FF FF\n"
              "05> b = \"12AB\" ; 0C 00\n"
              "15> e = \"3.5 \" ; 00 00 60 40\n"
              "19> f = \"-2.5\" ; 00 00 00 00 00 00 04 C0\n"
              "23> g = \"-2 \" ; FE FF\n");
    // the override counts as the file's order
    expectOut(run({"asc.bin", "-d=little", "-xn", "-cs=big", "b"}), "05> b = \"12AB\" ; 00 0C\n");
}

TEST_F(Leaves, DatesFromDaysAndFromText) {
    write("dt.dd",
          "dt|dates||\n"
          "d0|Date|||\n"
          "d1|Date|1970||\n"
          "d4|Date|2000|4\n"
          "d5|Date|1999||\n"
          "t|DateTime|||\n"
          "t2|DateTime|1970||\n"
          "k|aDateTime||19\n");
    std::string data = bytes({0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x03, 0xFF, 0xFF,
                              0x3F, 0xE0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                              0x3F, 0xF4, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00});
    write("dt.bin", data + "2004-03-05T12:00:00");
    expectOut(run({"dt.bin", "-d=dt"}),
              "00> d0 (date) = 01-JAN-2000\n"
              "02> d1 (date) = 02-JAN-1970\n"
              "04> d4 (date) = 04-JAN-2000\n"
              "08> d5 (date) = 31-DEC-1998\n"
              "10> t (date) = 01-JAN-2000 12:00:00.000000\n"
              "18> t2 (date) = 02-JAN-1970 06:00:00.000000\n"
              "26> k (date) = 2004-03-05T12:00:00\n");
}

TEST_F(Leaves, TextsCharactersAndNull) {
    write("txt.dd",
          "txt|texts||\n"
          "s|String||4\n"
          "odd|String|code|3\n"
          "v|String||#n\n"
          "none|String||0\n"
          "z|Null|||\n"
          "c|AChar|||\n"
          "c0|AChar|||\n");
    write("txt.bin", std::string("AB\0C", 4) + bytes({0x01, 0x5C, 0xFF}) + "x\ny\tz" + std::string("A\0", 2));
    expectOut(run({"txt.bin", "-d=txt", "-D", "n=5", "-x"}),
              "00> s = \"AB\\d000C\" ; 41 42 00 43\n"
              "04> odd (code) = \"\\d001\\\\\\d255\" ; 01 5C FF\n"
              "07> v = \"x\\ny\\tz\" ; 78 0A 79 09 7A\n"
              "12> none = \"\" ; \n"
              "12> z = (null) ; \n"
              "12> c = 'A' ; 41\n"
              "13> c0 = '\\0' ; 00\n");
}

TEST_F(Leaves, NumbersOfNoSize) {
    write("zero.dd", "zero|||\ns|UShort||0\nl|SLong||0\nc|UChar||0\nnext|UChar|||\n");
    write("data.bin", bytes({0x07}));
    // they take no room; a character of no size can't be read
    expectOut(run({"data.bin", "-d=zero", "s", "l", "next"}), "0> s = 0\n0> l = 0\n0> next = 7\n");
    expectRun(run({"data.bin", "-d=zero", "c"}), 1, "0> c = ",
              "ERROR-VEXA003 invalid read request : field [c] (UChar) cannot be read as 'UChar'\n");
}

}  // namespace
