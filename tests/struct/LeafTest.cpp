// Numeric, character, text and date leaves read from bytes in memory.
#include <cmath>
#include <sstream>

#include "TreeFixture.h"
#include "base/JulianDate.h"
#include "struct/StructAlias.h"

using treetest::errorOf;
using treetest::text;
using vexa::File;
using vexa::StructElem;

namespace {

class Leaves : public treetest::TreeTest {
protected:
    std::unique_ptr<File> file;

    StructElem& field(const char* name) { return *file->getRoot().getChild(name); }
    std::string all(const char* name) { return text(field(name).readAll(true)); }
    std::string hex(const char* name) { return text(field(name).readHex(true)); }
    std::string hexNum(const char* name) { return text(field(name).readHexNum(true)); }
};

const char numbers[] =
    "s|SShort|||\n"
    "u|UShort|||\n"
    "l|SLong|||\n"
    "ul|ULong||4|\n"
    "ll|SLLong|||\n"
    "ull|ULLong||6|\n"
    "f|Float|||\n"
    "d|Double|||\n"
    "sc|SChar|||\n"
    "uc|UChar|||\n";

std::string bigEndianNumbers() {
    std::string b;
    b += std::string("\xFF\xFE", 2);                                   // s = -2
    b += std::string("\xFF\xFE", 2);                                   // u = 65534
    b += std::string("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFD", 8);           // l = -3
    b += std::string("\x80\x00\x00\x01", 4);                           // ul = 2147483649
    b += std::string("\x00\x00\x00\x00\x00\x00\x01\x00", 8);           // ll = 256
    b += std::string("\x01\x00\x00\x00\x00\x02", 6);                   // ull = 2^40 + 2
    b += std::string("\x3F\xC0\x00\x00", 4);                           // f = 1.5
    b += std::string("\xC0\x09\x21\xFB\x54\x44\x2D\x18", 8);           // d = -pi
    b += std::string("\x80", 1);                                       // sc = -128
    b += std::string("\xC8", 1);                                       // uc = 200
    return b;
}

// The same values with each field's bytes reversed.
std::string littleEndianNumbers() {
    std::string big = bigEndianNumbers();
    const int widths[] = {2, 2, 8, 4, 8, 6, 4, 8, 1, 1};
    std::string out;
    size_t at = 0;
    for (int w : widths) {
        std::string part = big.substr(at, w);
        out.append(part.rbegin(), part.rend());
        at += w;
    }
    return out;
}

}  // namespace

TEST_F(Leaves, BinaryNumbersBigEndian) {
    dict("num", std::string("numbers|||\n") + numbers);
    file = open("num", bigEndianNumbers());
    EXPECT_EQ(all("s"), "-2");
    EXPECT_EQ(all("u"), "65534");
    EXPECT_EQ(all("l"), "-3");
    EXPECT_EQ(all("ul"), "2147483649");
    EXPECT_EQ(all("ll"), "256");
    EXPECT_EQ(all("ull"), "1099511627778");
    EXPECT_EQ(all("f"), "1.5");
    EXPECT_EQ(all("d"), "-3.14159");
    EXPECT_EQ(all("sc"), "-128");
    EXPECT_EQ(all("uc"), "200");
    EXPECT_EQ(field("uc").getPos(), 43);
    EXPECT_EQ(field("d").getSize(), 8);
    EXPECT_EQ(file->getRoot().getSize(), 44);
}

TEST_F(Leaves, BinaryNumbersLittleEndian) {
    dict("num", std::string("numbers|||LITTLE-ENDIAN\n") + numbers);
    file = open("num", littleEndianNumbers());
    EXPECT_EQ(all("s"), "-2");
    EXPECT_EQ(all("u"), "65534");
    EXPECT_EQ(all("l"), "-3");
    EXPECT_EQ(all("ul"), "2147483649");
    EXPECT_EQ(all("ll"), "256");
    EXPECT_EQ(all("ull"), "1099511627778");
    EXPECT_EQ(all("f"), "1.5");
    EXPECT_EQ(all("d"), "-3.14159");
    EXPECT_EQ(all("sc"), "-128");
    EXPECT_EQ(all("uc"), "200");
}

TEST_F(Leaves, ByteOrderOverrideBeatsTheDictionary) {
    dict("num", std::string("numbers|||BIG-ENDIAN\n") + numbers);
    file = open("num", littleEndianNumbers(), File::OrderLittle);
    EXPECT_EQ(all("u"), "65534");
    EXPECT_EQ(all("ull"), "1099511627778");
}

TEST_F(Leaves, HexShowsFileBytesInFileOrder) {
    dict("num", std::string("numbers|||LITTLE-ENDIAN\n") + numbers);
    file = open("num", littleEndianNumbers());
    EXPECT_EQ(hex("s"), "FE FF");
    EXPECT_EQ(hexNum("s"), "FE FF");
    EXPECT_EQ(hex("ul"), "01 00 00 80");
    EXPECT_EQ(hex("uc"), "C8");
}

TEST_F(Leaves, NarrowSignedFieldsExtendTheSign) {
    dict("n", "n|||\na|SLong||3|\nb|ULong||3|\nc|SLLong||5|\n");
    file = open("n", std::string("\xFF\xFF\xFE\xFF\xFF\xFE\xFF\x00\x00\x00\x01", 11));
    EXPECT_EQ(all("a"), "-2");
    EXPECT_EQ(all("b"), "16777214");
    EXPECT_EQ(all("c"), "-4294967295");
}

TEST_F(Leaves, TypedReadsWidenOnly) {
    dict("num", std::string("numbers|||\n") + numbers);
    file = open("num", bigEndianNumbers());
    unsigned long ul = 0;
    EXPECT_EQ(field("s").readULong(ul), 0xFFFFFFFFFFFFFFFEul);
    short s = 0;
    EXPECT_EQ(field("u").readSShort(s), -2);
    long l = 0;
    EXPECT_EQ(field("ul").readSLong(l), 2147483649l);
    double d = 0;
    EXPECT_DOUBLE_EQ(field("ll").readDouble(d), 256.0);
    float f = 0;
    EXPECT_EQ(errorOf([&] { field("ll").readFloat(f); }), "field [ll] (SLLong) cannot be read as 'Float'");
    EXPECT_EQ(errorOf([&] { field("f").readSLong(l); }), "field [f] (Float) cannot be read as 'SLong'");
    EXPECT_EQ(errorOf([&] { field("d").readFloat(f); }), "field [d] (Double) cannot be read as 'Float'");
    EXPECT_FLOAT_EQ(field("f").readFloat(f), 1.5f);
    unsigned long long ull = 0;
    EXPECT_EQ(field("sc").readULLong(ull), static_cast<unsigned long long>(-128));
    EXPECT_EQ(field("uc").readSLong(l), 200);
    EXPECT_EQ(field("uc").readChar(), static_cast<char>(200));
    EXPECT_EQ(errorOf([&] { field("s").readChar(); }), "field [s] (SShort) cannot be read as 'UChar'");
    zun::JulianDate date;
    EXPECT_EQ(errorOf([&] { field("s").readDateTime(date); }), "field [s] (SShort) cannot be read as 'DateTime'");
}

TEST_F(Leaves, UnsignedSixtyFourBitsConvertAsUnsigned) {
    dict("n", "n|||\nu|ULLong|||\n");
    file = open("n", std::string(8, '\xFF'));
    double d = 0;
    EXPECT_DOUBLE_EQ(field("u").readDouble(d), 18446744073709551615.0);
    EXPECT_EQ(all("u"), "18446744073709551615");
}

TEST_F(Leaves, StreamFormsAppendBehindWhatIsThere) {
    dict("num", std::string("numbers|||\n") + numbers);
    file = open("num", bigEndianNumbers());
    std::stringstream out;
    out << "x=";
    field("f").readStr(out, 0);
    field("s").readStr(out, 1);
    EXPECT_EQ(out.str(), "x=1.5-2");
    zun::String target("keep ");
    field("uc").readString(target, 1);
    EXPECT_EQ(text(target), "keep 200");
    field("uc").readString(target, 0);
    EXPECT_EQ(text(target), "200");
}

TEST_F(Leaves, ZeroSizeNumberTakesNoRoom) {
    dict("n", "n|||\na|UShort||0|\nb|UChar|||\n");
    file = open("n", "\x07");
    EXPECT_EQ(field("a").getSize(), 0);
    EXPECT_EQ(field("b").getPos(), 0);
    EXPECT_EQ(all("b"), "7");
}

// ---------------------------------------------------------------------------

TEST_F(Leaves, AsciiNumbersParseAndPrintAsText) {
    dict("a", "a|||\nsl|aSLong||5|\nus|aUShort||4|\nul|aULong||3|\nuc|aUChar||3|\n");
    file = open("a", std::string("  -1212AB   3.5"));
    long l = 0;
    EXPECT_EQ(field("sl").readSLong(l), -12);
    EXPECT_EQ(all("sl"), "\"  -12\"");
    unsigned short us = 0;
    EXPECT_EQ(field("us").readUShort(us), 12);
    unsigned long ul = 7;
    EXPECT_EQ(field("ul").readULong(ul), 0u);
    double d = 0;
    EXPECT_DOUBLE_EQ(field("uc").readDouble(d), 3.5);
    EXPECT_EQ(field("uc").readSLong(l), 3);
    EXPECT_EQ(field("uc").readChar(), 3);
    EXPECT_EQ(errorOf([&] { field("uc").readUShort(us); }), "field [uc] (aUChar) cannot be read as 'UShort'");
    EXPECT_EQ(errorOf([&] { field("ul").readSLong(l); }), "field [ul] (aULong) cannot be read as 'SLong'");
    EXPECT_EQ(hex("sl"), "20 20 2D 31 32");
}

TEST_F(Leaves, AsciiHexNumFollowsTheByteOrder) {
    dict("big", "b|||\nn|aUShort||3|\nc|aSChar||4|\nl|aSLong||3|\n");
    dict("little", "l|||LITTLE-ENDIAN\nn|aUShort||3|\nc|aSChar||4|\nl|aSLong||3|\n");
    file = open("big", "258 -2 -10");
    EXPECT_EQ(hexNum("n"), "01 02");
    EXPECT_EQ(hexNum("c"), "FE");
    EXPECT_EQ(hexNum("l"), "FF FF FF FF FF FF FF F6");
    file = open("little", "258 -2 -10");
    EXPECT_EQ(hexNum("n"), "02 01");
    EXPECT_EQ(hexNum("l"), "F6 FF FF FF FF FF FF FF");
    EXPECT_EQ(hex("n"), "32 35 38");
}

TEST_F(Leaves, AsciiFloatAndDouble) {
    dict("a", "a|||\nf|aFloat||4|\nd|aDouble||6|\n");
    file = open("a", "0.25-1e300");
    float f = 0;
    EXPECT_FLOAT_EQ(field("f").readFloat(f), 0.25f);
    double d = 0;
    EXPECT_DOUBLE_EQ(field("d").readDouble(d), -1e300);
    EXPECT_EQ(hexNum("f"), "3E 80 00 00");
}

// ---------------------------------------------------------------------------

TEST_F(Leaves, CharactersAndStrings) {
    dict("s", "s|||\nz|AChar|||\na|AChar|||\nq|AChar|||\nt|String||4|\nu|String||3|\n");
    file = open("s", std::string("\0A\tAB\0Cx\\y", 10));
    EXPECT_EQ(all("z"), "'\\0'");
    EXPECT_EQ(all("a"), "'A'");
    EXPECT_EQ(all("q"), "'\\t'");
    zun::String s;
    field("t").readString(s, 0);
    EXPECT_EQ(s.length, 4);
    std::stringstream out;
    field("t").readStr(out, 0);
    EXPECT_EQ(out.str(), "AB");
    EXPECT_EQ(all("t"), "\"AB\\d000C\"");
    EXPECT_EQ(all("u"), "\"x\\\\y\"");
    std::stringstream one;
    field("z").readStr(one, 0);
    EXPECT_EQ(one.str(), std::string(1, '\0'));
}

TEST_F(Leaves, NullTakesNoRoomAndPrintsNull) {
    dict("n", "n|||\na|UChar|||\nnothing|Null|||\nb|UChar|||\n");
    file = open("n", "\x01\x02");
    EXPECT_EQ(all("nothing"), "(null)");
    EXPECT_EQ(field("b").getPos(), 1);
    EXPECT_TRUE(field("nothing").getUnit().isNull());
    EXPECT_EQ(hex("nothing"), "(null string)");
    EXPECT_EQ(text(file->getRoot().getTypeStr(0)), "Record'n");
    EXPECT_EQ(text(field("nothing").getTypeStr(0)), "Null");
}

TEST_F(Leaves, ZeroLengthVariableString) {
    dict("v", "v|||\ne|String||0|\nb|UChar|||\n");
    file = open("v", "\x05");
    EXPECT_EQ(all("e"), "\"\"");
    EXPECT_EQ(field("b").getPos(), 0);
}

// ---------------------------------------------------------------------------

TEST_F(Leaves, DatesFromDayCounts) {
    dict("d", "d|||\na|Date|2000||\nb|Date|1970||\nc|DateTime|2000||\n");
    std::string bytes("\x00\x00\x00\x01", 4);
    bytes += std::string("\x3F\xE0\x00\x00\x00\x00\x00\x00", 8);   // 0.5
    file = open("d", bytes);
    EXPECT_EQ(all("a"), "01-JAN-2000");
    EXPECT_EQ(all("b"), "02-JAN-1970");
    EXPECT_EQ(text(field("a").getUnit()), "date");
    unsigned long ul = 0;
    EXPECT_EQ(field("c").readULong(ul), 43200000000ul);
    short s = 7;
    EXPECT_EQ(field("c").readSShort(s), 0);
    long long ll = 0;
    EXPECT_EQ(field("c").readSLLong(ll), 43200000000ll);
    double d = 0;
    EXPECT_DOUBLE_EQ(field("b").readDouble(d), 1.0);
    zun::JulianDate date;
    field("c").readDateTime(date);
    EXPECT_EQ(date.usec, 43200000000ll);
    int precision = zun::JulianDate::d_precision;
    zun::JulianDate::d_precision = 6;
    EXPECT_EQ(all("c"), "01-JAN-2000 12:00:00.000000");
    zun::JulianDate::d_precision = precision;
    EXPECT_EQ(text(field("c").getTypeStr(0)), "DateTime");
}

TEST_F(Leaves, DateTimeAsText) {
    dict("d", "d|||\na|aDateTime|2000|20|\n");
    file = open("d", "02-JAN-2000 06:00:00");
    zun::JulianDate date;
    field("a").readDateTime(date);
    EXPECT_EQ(date.usec, 86400000000ll + 21600000000ll);
    short s = 0;
    EXPECT_EQ(field("a").readSShort(s), 1);
    double d = 0;
    EXPECT_DOUBLE_EQ(field("a").readDouble(d), 1.25);
    unsigned long ul = 0;
    EXPECT_EQ(field("a").readULong(ul), 21600000000ul);
    long long ll = 0;
    EXPECT_EQ(field("a").readSLLong(ll), 108000000000ll);
    EXPECT_EQ(all("a"), "02-JAN-2000 06:00:00");
}

// ---------------------------------------------------------------------------

TEST_F(Leaves, ReadsPastTheEndFail) {
    dict("e", "e|||\na|UShort|||\nb|ULong||4|\nc|UChar|||\n");
    file = open("e", treetest::raw("\x00\x01\x00\x00"));
    EXPECT_EQ(all("a"), "1");
    EXPECT_EQ(treetest::signatureOf([&] { field("b").readAll(true); }),
              "STD005 Input/output error : reading field \"b\" [2,4] in \"data.bin\"");
    // the caches are untouched: the field can be asked again
    EXPECT_EQ(field("b").getPos(), 2);
    EXPECT_EQ(errorOf([&] { field("b").readHex(true); }), "reading field \"b\" [2,4] in \"data.bin\"");
    EXPECT_EQ(treetest::signatureOf([&] { field("c").readAll(true); }),
              "STD005 Input/output error : eof seeking field \"c\" at position 6 in \"data.bin\"");
}

TEST_F(Leaves, ReadCPtrCopiesAtMostMaxAndGivesTheSize) {
    dict("s", "s|||\nt|String||6|\n");
    file = open("s", "abcdef");
    char buffer[8] = "zzzzzzz";
    EXPECT_EQ(field("t").readCPtr(buffer, 3), 6);
    EXPECT_EQ(std::string(buffer), "abczzzz");
    char* data = field("t").readData();
    EXPECT_EQ(std::string(data), "abcdef");
    delete[] data;
    zun::RawBuffer raw;
    field("t").readBuf(raw, 0);
    field("t").readBuf(raw, 1);
    EXPECT_EQ(raw.count, 12);
    field("t").readBuf(raw, 0);
    EXPECT_EQ(raw.count, 6);
}

TEST_F(Leaves, ListReadsAppendOnSuccessOnly) {
    dict("num", std::string("numbers|||\n") + numbers);
    file = open("num", bigEndianNumbers());
    zun::ObjAppendList<long> longs;
    field("s").readSLongA(longs);
    file->getRoot().readSLongA(longs, "uc");
    ASSERT_EQ(longs.count, 2);
    EXPECT_EQ(longs[0], -2);
    EXPECT_EQ(longs[1], 200);
    zun::ObjAppendList<float> floats;
    EXPECT_NE(errorOf([&] { field("d").readFloatA(floats); }), "");
    EXPECT_EQ(floats.count, 0);
    zun::ObjAppendListP<zun::String> strings;
    field("d").readAllA(true, strings);
    // the object forms put the new entry in first: a failure leaves it empty
    EXPECT_EQ(errorOf([&] { file->getRoot().readStringA(strings); }),
              "field [root] (Record'numbers) cannot be read as 'String'");
    ASSERT_EQ(strings.count, 2);
    EXPECT_EQ(text(strings[0]), "-3.14159");
    EXPECT_EQ(text(strings[1]), "");
    zun::ObjAppendList<unsigned char> chars;
    field("uc").readUCharA(chars);
    EXPECT_EQ(chars[0], 200);
}
