// The typed reads of leaves; how skelvor prints each leaf is checked end to end.
#include <sstream>

#include "TreeFixture.h"
#include "base/JulianDate.h"

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

    // s = -2, u = 65534, ul = 2147483649, ll = 256, f = 1.5, d = -pi, sc = -128, uc = 200
    void numbers() {
        dict("num", "numbers|||\ns|SShort|||\nu|UShort|||\nul|ULong||4|\nll|SLLong|||\nf|Float|||\nd|Double|||\n"
                    "sc|SChar|||\nuc|UChar|||\n");
        file = open("num", treetest::raw("\xFF\xFE\xFF\xFE\x80\x00\x00\x01\x00\x00\x00\x00\x00\x00\x01\x00"
                                         "\x3F\xC0\x00\x00\xC0\x09\x21\xFB\x54\x44\x2D\x18\x80\xC8"));
    }
};

}  // namespace

TEST_F(Leaves, TypedReadsWidenOnly) {
    numbers();
    unsigned long ul = 0;
    EXPECT_EQ(field("s").readULong(ul), 0xFFFFFFFFFFFFFFFEul);
    short s = 0;
    EXPECT_EQ(field("u").readSShort(s), -2);
    long l = 0;
    EXPECT_EQ(field("ul").readSLong(l), 2147483649l);
    double d = 0;
    EXPECT_DOUBLE_EQ(field("ll").readDouble(d), 256.0);
    float f = 0;
    EXPECT_FLOAT_EQ(field("f").readFloat(f), 1.5f);
    unsigned long long ull = 0;
    EXPECT_EQ(field("sc").readULLong(ull), static_cast<unsigned long long>(-128));
    EXPECT_EQ(field("uc").readSLong(l), 200);
    EXPECT_EQ(field("uc").readChar(), static_cast<char>(200));
    zun::JulianDate date;
    const struct {
        std::string error, expected;
    } refused[] = {
        {errorOf([&] { field("ll").readFloat(f); }), "field [ll] (SLLong) cannot be read as 'Float'"},
        {errorOf([&] { field("f").readSLong(l); }), "field [f] (Float) cannot be read as 'SLong'"},
        {errorOf([&] { field("d").readFloat(f); }), "field [d] (Double) cannot be read as 'Float'"},
        {errorOf([&] { field("s").readChar(); }), "field [s] (SShort) cannot be read as 'UChar'"},
        {errorOf([&] { field("s").readDateTime(date); }), "field [s] (SShort) cannot be read as 'DateTime'"},
    };
    for (const auto& r : refused) EXPECT_EQ(r.error, r.expected);

    std::stringstream out;
    out << "x=";
    field("f").readStr(out, 0);
    field("s").readStr(out, 1);
    EXPECT_EQ(out.str(), "x=1.5-2");  // the stream forms append behind what is there
    zun::String target("keep ");
    EXPECT_EQ(text(field("uc").readString(target, 1)), "keep 200");
    EXPECT_EQ(text(field("uc").readString(target, 0)), "200");
}

TEST_F(Leaves, UnsignedSixtyFourBitsConvertAsUnsigned) {
    dict("n", "n|||\nu|ULLong|||\n");
    file = open("n", std::string(8, '\xFF'));
    double d = 0;
    EXPECT_DOUBLE_EQ(field("u").readDouble(d), 18446744073709551615.0);
}

TEST_F(Leaves, AsciiNumbersParse) {
    dict("a", "a|||\nsl|aSLong||5|\nus|aUShort||4|\nul|aULong||3|\nuc|aUChar||3|\nf|aFloat||4|\nd|aDouble||6|\n");
    file = open("a", std::string("  -1212AB   3.50.25-1e300"));
    long l = 0;
    EXPECT_EQ(field("sl").readSLong(l), -12);
    unsigned short us = 0;
    EXPECT_EQ(field("us").readUShort(us), 12);
    unsigned long ul = 7;
    EXPECT_EQ(field("ul").readULong(ul), 0u);
    double d = 0;
    EXPECT_DOUBLE_EQ(field("uc").readDouble(d), 3.5);
    EXPECT_EQ(field("uc").readSLong(l), 3);
    EXPECT_EQ(field("uc").readChar(), 3);
    float f = 0;
    EXPECT_FLOAT_EQ(field("f").readFloat(f), 0.25f);
    EXPECT_DOUBLE_EQ(field("d").readDouble(d), -1e300);
    EXPECT_EQ(errorOf([&] { field("uc").readUShort(us); }), "field [uc] (aUChar) cannot be read as 'UShort'");
    EXPECT_EQ(errorOf([&] { field("ul").readSLong(l); }), "field [ul] (aULong) cannot be read as 'SLong'");
}

TEST_F(Leaves, CharactersStringsAndNull) {
    dict("s", "s|||\nz|AChar|||\nt|String||4|\nnothing|Null|||\n");
    file = open("s", std::string("\0AB\0C", 5));
    zun::String s;
    EXPECT_EQ(field("t").readString(s, 0).length, 4);
    std::stringstream out, one;
    field("t").readStr(out, 0);
    EXPECT_EQ(out.str(), "AB");
    field("z").readStr(one, 0);
    EXPECT_EQ(one.str(), std::string(1, '\0'));
    EXPECT_TRUE(field("nothing").getUnit().isNull());
    EXPECT_EQ(hex("nothing"), "(null string)");
    EXPECT_EQ(text(field("nothing").getTypeStr(0)), "Null");
}

TEST_F(Leaves, DatesAsNumbers) {
    dict("d", "d|||\nb|Date|1970||\nc|DateTime|2000||\na|aDateTime|2000|20|\n");
    file = open("d", treetest::raw("\x00\x01\x3F\xE0\x00\x00\x00\x00\x00\x00") + "02-JAN-2000 06:00:00");
    double d = 0;
    EXPECT_DOUBLE_EQ(field("b").readDouble(d), 1.0);
    zun::JulianDate date;
    EXPECT_EQ(field("c").readDateTime(date).usec, 43200000000ll);
    EXPECT_EQ(field("a").readDateTime(date).usec, 86400000000ll + 21600000000ll);
    // the number of days, the microseconds of the day, or all microseconds
    const char* dates[] = {"c", "a"};
    const long long days[] = {0, 1}, dayUsec[] = {43200000000ll, 21600000000ll}, usec[] = {43200000000ll, 108000000000ll};
    for (int i = 0; i < 2; ++i) {
        short s = 7;
        unsigned long ul = 0;
        long long ll = 0;
        EXPECT_EQ(field(dates[i]).readSShort(s), days[i]) << dates[i];
        EXPECT_EQ(static_cast<long long>(field(dates[i]).readULong(ul)), dayUsec[i]) << dates[i];
        EXPECT_EQ(field(dates[i]).readSLLong(ll), usec[i]) << dates[i];
    }
    EXPECT_DOUBLE_EQ(field("a").readDouble(d), 1.25);
    EXPECT_EQ(text(field("c").getTypeStr(0)), "DateTime");
}

TEST_F(Leaves, AFailedReadLeavesTheFieldAsItWas) {
    dict("e", "e|||\na|UShort|||\nb|ULong||4|\n");
    file = open("e", treetest::raw("\x00\x01\x00\x00"));
    EXPECT_EQ(all("a"), "1");
    EXPECT_EQ(treetest::signatureOf([&] { field("b").readAll(true); }),
              "STD005 Input/output error : reading field \"b\" [2,4] in \"data.bin\"");
    EXPECT_EQ(field("b").getPos(), 2);
    EXPECT_EQ(errorOf([&] { field("b").readHex(true); }), "reading field \"b\" [2,4] in \"data.bin\"");
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
    numbers();
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
