// DateTime values with no date or no integer form: NaN, infinities, numbers
// beyond the range of a date. Their text and their typed reads.
#include "TreeFixture.h"
#include "base/JulianDate.h"

using treetest::signatureOf;
using treetest::text;
using vexa::StructElem;

namespace {

class DateRange : public treetest::TreeTest {
protected:
    // nan, inf, big (1e300), minus (-1e300), day (1.5), big-endian
    void dates() {
        dict("d", "d|||\nnan|DateTime|2000||\ninf|DateTime|2000||\nbig|DateTime|1970||\n"
                  "minus|DateTime|2000||\nday|DateTime|2000||\n");
        file = open("d", treetest::raw("\x7F\xF8\x00\x00\x00\x00\x00\x00\x7F\xF0\x00\x00\x00\x00\x00\x00"
                                       "\x7E\x37\xE4\x3C\x88\x00\x75\x9C\xFE\x37\xE4\x3C\x88\x00\x75\x9C"
                                       "\x3F\xF8\x00\x00\x00\x00\x00\x00"));
    }
    // whole seconds in the text of a DateTime
    void SetUp() override { zun::JulianDate::d_precision = 0; }
    void TearDown() override { zun::JulianDate::d_precision = savedPrecision; }
    const int savedPrecision = zun::JulianDate::d_precision;
    template <class T>
    std::string readError(const char* name, T& (StructElem::*how)(T&)) {
        T v{};
        return signatureOf([&] { (field(name).*how)(v); });
    }
};

}  // namespace

TEST_F(DateRange, TextOfMissingAndClampedDates) {
    dates();
    const struct {
        const char *name, *text;
    } rows[] = {
        {"nan", "nan"},
        {"inf", "19-JAN-2038 03:14:07"},
        {"big", "19-JAN-2038 03:14:07"},
        {"minus", "13-DEC-1901 20:45:52"},
        {"day", "02-JAN-2000 12:00:00"},
    };
    for (const auto& r : rows) {
        zun::String s;
        EXPECT_EQ(text(field(r.name).readString(s, 0)), r.text) << r.name;
        std::stringstream out;
        field(r.name).readStr(out, 0);
        EXPECT_EQ(out.str(), r.text) << r.name;
    }
}

TEST_F(DateRange, IntegerReadsOfValuesWithoutOne) {
    dates();
    const std::string range = "VEXA002 value out-of-range : date of structure \"";
    const struct {
        const char* name;
        std::string sshort, ulong, sllong;  // the error of each read, "" for none
    } rows[] = {
        {"nan", range + "nan\" out of range for SShort: nan", range + "nan\" out of range for ULong: nan",
         range + "nan\" out of range for SLLong: nan"},
        {"inf", range + "inf\" out of range for SShort: inf", range + "inf\" out of range for ULong: inf",
         range + "inf\" out of range for SLLong: inf"},
        {"big", range + "big\" out of range for SShort: 1e+300", "", range + "big\" out of range for SLLong: 1e+300"},
        {"minus", range + "minus\" out of range for SShort: -1e+300", "",
         range + "minus\" out of range for SLLong: -1e+300"},
        {"day", "", "", ""},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(readError<short>(r.name, &StructElem::readSShort), r.sshort) << r.name;
        EXPECT_EQ(readError<unsigned long>(r.name, &StructElem::readULong), r.ulong) << r.name;
        EXPECT_EQ(readError<long long>(r.name, &StructElem::readSLLong), r.sllong) << r.name;
    }
}
