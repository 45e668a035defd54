// The typed reads of leaves; how skelvor prints each leaf is checked end to end.
#include <sstream>

#include "TreeFixture.h"
#include "base/JulianDate.h"

using treetest::errorOf;
using treetest::text;
using vexa::StructElem;

namespace {

class Leaves : public treetest::TreeTest {
protected:
    std::string all(const char* name) { return text(field(name).readAll(true)); }
    std::string hex(const char* name) { return text(field(name).readHex(true)); }
    // What a typed read of the field gives, as in read<long>(name, &StructElem::readSLong).
    template <class T>
    T read(const char* name, T& (StructElem::*how)(T&)) {
        T v{};
        return (field(name).*how)(v);
    }

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
    EXPECT_EQ(read<unsigned long>("s", &StructElem::readULong), 0xFFFFFFFFFFFFFFFEul);
    EXPECT_EQ(read<short>("u", &StructElem::readSShort), -2);
    EXPECT_EQ(read<long>("ul", &StructElem::readSLong), 2147483649l);
    EXPECT_DOUBLE_EQ(read<double>("ll", &StructElem::readDouble), 256.0);
    EXPECT_FLOAT_EQ(read<float>("f", &StructElem::readFloat), 1.5f);
    EXPECT_EQ(read<unsigned long long>("sc", &StructElem::readULLong), static_cast<unsigned long long>(-128));
    EXPECT_EQ(read<long>("uc", &StructElem::readSLong), 200);
    EXPECT_EQ(field("uc").readChar(), static_cast<char>(200));
    const struct {
        std::string error, expected;
    } refused[] = {
        {errorOf([&] { read<float>("ll", &StructElem::readFloat); }), "field [ll] (SLLong) cannot be read as 'Float'"},
        {errorOf([&] { read<long>("f", &StructElem::readSLong); }), "field [f] (Float) cannot be read as 'SLong'"},
        {errorOf([&] { read<float>("d", &StructElem::readFloat); }), "field [d] (Double) cannot be read as 'Float'"},
        {errorOf([&] { field("s").readChar(); }), "field [s] (SShort) cannot be read as 'UChar'"},
        {errorOf([&] { read<zun::JulianDate>("s", &StructElem::readDateTime); }),
         "field [s] (SShort) cannot be read as 'DateTime'"},
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
    EXPECT_DOUBLE_EQ(read<double>("u", &StructElem::readDouble), 18446744073709551615.0);
}

TEST_F(Leaves, AsciiNumbersParse) {
    dict("a", "a|||\nsl|aSLong||5|\nus|aUShort||4|\nul|aULong||3|\nuc|aUChar||3|\nf|aFloat||4|\nd|aDouble||6|\n");
    file = open("a", std::string("  -1212AB   3.50.25-1e300"));
    EXPECT_EQ(read<long>("sl", &StructElem::readSLong), -12);
    EXPECT_EQ(read<unsigned short>("us", &StructElem::readUShort), 12);
    EXPECT_EQ(read<unsigned long>("ul", &StructElem::readULong), 0u);
    EXPECT_DOUBLE_EQ(read<double>("uc", &StructElem::readDouble), 3.5);
    EXPECT_EQ(read<long>("uc", &StructElem::readSLong), 3);
    EXPECT_EQ(field("uc").readChar(), 3);
    EXPECT_FLOAT_EQ(read<float>("f", &StructElem::readFloat), 0.25f);
    EXPECT_DOUBLE_EQ(read<double>("d", &StructElem::readDouble), -1e300);
    EXPECT_EQ(errorOf([&] { read<unsigned short>("uc", &StructElem::readUShort); }),
              "field [uc] (aUChar) cannot be read as 'UShort'");
    EXPECT_EQ(errorOf([&] { read<long>("ul", &StructElem::readSLong); }), "field [ul] (aULong) cannot be read as 'SLong'");
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
    EXPECT_DOUBLE_EQ(read<double>("b", &StructElem::readDouble), 1.0);
    EXPECT_DOUBLE_EQ(read<double>("a", &StructElem::readDouble), 1.25);
    EXPECT_EQ(text(field("c").getTypeStr(0)), "DateTime");
    // all microseconds, the number of days, or the microseconds of the day
    const struct {
        const char* name;
        long long usec, days, dayUsec;
    } rows[] = {{"c", 43200000000ll, 0, 43200000000ll}, {"a", 108000000000ll, 1, 21600000000ll}};
    for (const auto& r : rows) {
        EXPECT_EQ(read<zun::JulianDate>(r.name, &StructElem::readDateTime).usec, r.usec) << r.name;
        EXPECT_EQ(read<long long>(r.name, &StructElem::readSLLong), r.usec) << r.name;
        EXPECT_EQ(read<short>(r.name, &StructElem::readSShort), r.days) << r.name;
        EXPECT_EQ(static_cast<long long>(read<unsigned long>(r.name, &StructElem::readULong)), r.dayUsec) << r.name;
    }
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
