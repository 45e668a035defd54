// Binders: lists of binders, the named-node list and its definitions files,
// the data binders over objects, fields and rows, and the error log that a
// format statement writes through them.
#include <gtest/gtest.h>

#include <sstream>

#include "calc/CalcBinderData.h"
#include "calc/CalcLogFormat.h"
#include "calc_testing.h"
#include "support/TempDir.h"

using namespace calctest;
using zun::CalcBinderDataSType;
using zun::CalcBinderDataType;

namespace {

// Captures the error log, and leaves the default form behind.
class LogCapture {
public:
    std::ostringstream out;
    LogCapture() : saved(zun::Exception::err_out) { zun::Exception::err_out = &out; }
    ~LogCapture() {
        zun::Exception::err_out = saved;
        zun::setLogFormat(nullptr);
    }

private:
    std::ostream* saved;
};

}  // namespace

TEST(CalcBinderNodeList, ASigilStandsInFrontOfTheName) {
    zun::CalcBinderNodeList list;
    list << new zun::CalcNodeConst<double>("x", 1) << new zun::CalcNodeConst<double>("x", 2)
         << new zun::CalcNodeConst<String>("name", "v");
    std::unique_ptr<CalcNode> hash(list.bindSymbol("#x"));
    ASSERT_NE(hash, nullptr);
    EXPECT_EQ(hash->nodeType(), CalcNode::TypeLink);
    EXPECT_EQ(text(hash->name), "#x");
    EXPECT_EQ(hash->valNum(), 2) << "searched from the last entry";
    EXPECT_EQ(list.bindSymbol("#"), nullptr);
    EXPECT_EQ(list.bindSymbol(""), nullptr);
    EXPECT_EQ(list.find("x"), list.data[1]);
    EXPECT_EQ(list.find("#x"), nullptr);
}

TEST(CalcBinderNodeList, DefinitionsFiles) {
    testsupport::TempDir dir;
    std::string file = dir.write("defs", "a = 1;\nb = 'text';  // a comment\nc = a * 2;\nd = a + 0.5; a*10\n");
    zun::CalcBinderNodeList list;
    EXPECT_EQ(list.readDefinitions(file.c_str()), 4) << "every assignment, not the final expression";
    EXPECT_NE(dynamic_cast<zun::CalcNodeConst<double>*>(list.find("a")), nullptr) << "an integer becomes a double";
    EXPECT_NE(dynamic_cast<zun::CalcNodeConst<String>*>(list.find("b")), nullptr);
    EXPECT_EQ(value("#c * #d", &list), 3);
    EXPECT_EQ(zun::CalcBinderNodeList().readDefinitions(nullptr), 0);
}

TEST(CalcBinderList, FirstAnswerWinsAndOwnedEntriesDie) {
    struct Dying : zun::CalcBinder {
        int& deaths;
        explicit Dying(int& deaths) : deaths(deaths) {}
        ~Dying() override { ++deaths; }
        CalcNode* bindSymbol(const char* name) override { return std::string(name) == "d" ? num(4) : nullptr; }
    };
    int deaths = 0;
    Binder first, second;
    first.values["x"] = 1;
    second.values["x"] = 2;
    second.values["y"] = 3;
    {
        zun::CalcBinderListT<zun::CalcBinder> list;
        list << first << second << new Dying(deaths) << static_cast<zun::CalcBinder*>(nullptr);
        EXPECT_EQ(list.size(), 3);
        EXPECT_EQ(value("x + y + d", &list), 8);
    }
    EXPECT_EQ(deaths, 1);
    delete new CalcParser("d", new Dying(deaths));
    EXPECT_EQ(deaths, 2) << "a binder given by pointer goes with the parser";
}

TEST(CalcBinderData, TheFieldsOfAnException) {
    zun::CalcErrorFunctionUnknown e("\"f\"");
    CalcBinderDataType<zun::Exception> err("err", &e);
    EXPECT_EQ(value("err.time.month", &err), e.time.month());
    EXPECT_EQ(strOf("err.time.monthstr", &err), text(e.time.monthStr()));
    EXPECT_EQ(value("err.time.dsec", &err), e.time.daySeconds());
    EXPECT_EQ(strOf("err.time", &err), text(e.time.str(-1)));
    auto whole = parse("err", &err);
    EXPECT_TRUE(std::isnan(whole->valNum())) << "an exception has no value of its own";
    EXPECT_TRUE(whole->valStr().isNull());
    EXPECT_THROW(parse("err.nothing", &err), zun::CalcErrorSymbolInvalid);

    // Another object, or none, without compiling again.
    auto code = parse("err.code + 1", &err);
    auto valid = parse("err()", &err);
    auto year = parse("err.time.year", &err);
    EXPECT_EQ(code->valNum(), 9);
    EXPECT_EQ(valid->valNum(), 1);
    err.setObject(nullptr);
    code->reset();
    year->reset();
    EXPECT_TRUE(std::isnan(code->valNum())) << "a null object is NA";
    EXPECT_EQ(valid->valNum(), 0);
    EXPECT_TRUE(std::isnan(year->valNum()));
    zun::CalcErrorIterator other("x");
    err.setObject(&other);
    code->reset();
    EXPECT_EQ(code->valNum(), 13);
}

TEST(CalcBinderData, NumbersTextsAndDates) {
    double d = 1.5;
    CalcBinderDataSType<double> v("v", &d);
    auto twice = parse("v * 2", &v);
    EXPECT_EQ(twice->valNum(), 3);
    d = 4;
    twice->reset();
    EXPECT_EQ(twice->valNum(), 8);
    EXPECT_EQ(twice->constLevel(), 0);

    const char* t = "12";
    CalcBinderDataSType<const char*> s("s", &t);
    EXPECT_EQ(value("s + 1", &s), 13);
    t = nullptr;
    auto none = parse("s", &s);
    EXPECT_EQ(none->valType(), zun::ValStr);
    EXPECT_TRUE(none->valStr().isNull());
    String owned("abc");
    CalcBinderDataSType<String> text2("str", &owned);
    EXPECT_THROW(parse("str.x", &text2), zun::CalcErrorSymbolInvalid) << "no fields";

    zun::JulianDate date;
    ASSERT_TRUE(date.init("05-MAR-2004 12:30:15"));
    CalcBinderDataType<zun::JulianDate> when("d", &date);
    EXPECT_EQ(strOf("d.year << d.month << d.mday << d.hour << d.min << d.sec << d.monthstr", &when),
              "200435123015March");
    EXPECT_DOUBLE_EQ(value("d", &when), static_cast<double>(date.usec) / 86400000000.0);
    EXPECT_EQ(strOf("d", &when), text(date.str(-1)));
}

TEST(CalcBinderData, OverlappingPrefixes) {
    zun::CalcErrorFunctionUnknown e("\"f\"");
    int seq = 3;
    double a = 1, ab = 2;
    CalcBinderDataType<zun::Exception> err("err", &e);
    CalcBinderDataSType<int> errSeq("err.seq", &seq);
    CalcBinderDataSType<double> first("a", &a);
    CalcBinderDataSType<double> second("ab", &ab);
    zun::CalcBinderListT<zun::CalcBinderData> names;
    names << err << errSeq << first << second;
    EXPECT_EQ(value("err.seq", &names), 3) << "the prefix err matches, its fields don't: the next binder answers";
    EXPECT_EQ(value("ab", &names), 2);
    EXPECT_EQ(value("a", &names), 1);
    EXPECT_THROW(parse("errx", &names), zun::CalcErrorSymbolInvalid);
}

TEST(CalcBinderData, RowsAndTheirFields) {
    int values[] = {10, 20, 30};
    zun::CalcBinderDataIterator rows;
    CalcBinderDataSType<int> v("v");
    rows << v;
    for (int& x : values) rows.rows << static_cast<const void*>(&x);
    auto p = parse("v + iter", &rows);
    rows.setIndex(0);
    EXPECT_EQ(p->valNum(), 10);
    rows.setIndex(2);
    p->reset();
    EXPECT_EQ(p->valNum(), 32);
    rows.setIndex(5);
    p->reset();
    EXPECT_TRUE(std::isnan(p->valNum())) << "no row there";
    EXPECT_EQ(errorOf<zun::CalcError>("iter1", &rows), "<bare text: invalid iterator reference>");

    std::unique_ptr<zun::CalcIterator> it(rows.bindIterator(0));
    EXPECT_EQ(it->count(), 3);
    it->setIndex(1);
    EXPECT_EQ(rows.getIndex(), 1);
    it->incIndex();
    EXPECT_EQ(it->getIndex(), 2);
    EXPECT_EQ(zun::CalcBinderDataIterator().count(), 0);
}

TEST(CalcLogFormat, OneLinePerExceptionTheCauseFirst) {
    LogCapture log;
    zun::setLogFormat("prefix << err.sig << ':' << err.seq << ' ' << err.msg << suffix");
    zun::CalcErrorFunctionUnknown cause("\"f\"");
    zun::CalcErrorSymbolInvalid top("x");
    top.chain(cause);
    top.log("ERR-", "!");
    EXPECT_EQ(log.out.str(), "ERR-CALC008:1 \"f\"!\nERR-CALC010:0 \"x\"!\n");

    log.out.str("");
    std::string format = "err.family << ' ' << err.code << ' ' << err.title << ' ' << err.time.year << ' ' << "
                         "(pid == " + std::to_string(getpid()) + ") << (ppid > 0) << (err() + 0)";
    zun::setLogFormat(format.c_str());
    zun::CalcErrorIterator e("none");
    e.log("", nullptr);
    EXPECT_EQ(log.out.str(), "CALC 12 error creating iterator " + std::to_string(e.time.year()) + " 111\n");
}

TEST(CalcLogFormat, AFormatThatFailsIsDroppedForTheDefaultForm) {
    LogCapture log;
    zun::setLogFormat("err.code +");
    zun::CalcErrorSymbolInvalid e("x");
    e.log("ERROR-");
    EXPECT_EQ(log.out.str(),
              "ERROR-CALC001 parse error : in statement ( >>> err.code + <<< )\n"
              "ERROR-CALC010 invalid symbol : \"x\"\n");
    EXPECT_TRUE(zun::Exception::log_fmt.isNull());
    log.out.str("");
    e.log("ERROR-");
    EXPECT_EQ(log.out.str(), "ERROR-CALC010 invalid symbol : \"x\"\n") << "the format is gone for good";

    log.out.str("");
    zun::setLogFormat("err.nothing");
    zun::CalcErrorIterator other("none");
    other.log("W-");
    EXPECT_EQ(log.out.str(), "W-CALC010 invalid symbol : \"err.nothing\"\nW-CALC012 error creating iterator : none\n");

    log.out.str("");
    zun::setLogFormat("'never'");
    zun::setLogFormat("");
    e.log("ERROR-");
    EXPECT_EQ(log.out.str(), "ERROR-CALC010 invalid symbol : \"x\"\n") << "an empty format is the default form";
}
