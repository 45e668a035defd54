// Binders: lists of binders, the named-node list and its definitions files,
// and the data binders over objects, fields and rows.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>

#include "calc/CalcBinderData.h"
#include "calccore_testing.h"

using namespace calccore;
using zun::CalcBinderDataSType;
using zun::CalcBinderDataType;
using zun::CalcNodeConst;

namespace {

// A file with the given contents, removed with the object.
class TempFile {
public:
    explicit TempFile(const std::string& contents) {
        char name[] = "/tmp/calccore-defsXXXXXX";
        int fd = mkstemp(name);
        path = name;
        if (fd >= 0) {
            ssize_t written = write(fd, contents.data(), contents.size());
            (void)written;
            close(fd);
        }
    }
    ~TempFile() { unlink(path.c_str()); }
    const char* c_str() const { return path.c_str(); }

private:
    std::string path;
};

class Dying : public zun::CalcBinder {
public:
    int* deaths;
    explicit Dying(int* deaths) : deaths(deaths) {}
    ~Dying() override { ++*deaths; }
    CalcNode* bindSymbol(const char* name) override {
        return std::string(name) == "d" ? new CalcNodeConst<double>("d", 4) : nullptr;
    }
};

double read(const char* statement, zun::CalcBinder& b) {
    CalcParser p(statement, b);
    return p.valNum();
}

std::string readText(const char* statement, zun::CalcBinder& b) {
    CalcParser p(statement, b);
    return text(p.valStr());
}

}  // namespace

TEST(CalcBinderNodeList, ASigilStandsInFrontOfTheName) {
    zun::CalcBinderNodeList list;
    list << new CalcNodeConst<double>("x", 1) << new CalcNodeConst<double>("x", 2)
         << new CalcNodeConst<String>("name", "v");
    EXPECT_EQ(list.bindSymbol("x"), nullptr);
    std::unique_ptr<CalcNode> hash(list.bindSymbol("#x"));
    ASSERT_NE(hash, nullptr);
    EXPECT_EQ(hash->nodeType(), CalcNode::TypeLink);
    EXPECT_EQ(text(hash->name), "#x");
    EXPECT_EQ(hash->valNum(), 2) << "searched from the last entry";
    std::unique_ptr<CalcNode> dollar(list.bindSymbol("$x"));
    ASSERT_NE(dollar, nullptr);
    EXPECT_EQ(list.bindSymbol("#"), nullptr);
    EXPECT_EQ(list.bindSymbol(""), nullptr);
    EXPECT_EQ(list.find("x"), list.data[1]);
    EXPECT_EQ(list.find("#x"), nullptr);
    EXPECT_EQ(readText("#name << '!'", list), "v!");
}

TEST(CalcBinderNodeList, ADefinitionsFileGivesItsVariables) {
    TempFile file("a = 1;\nb = 'text';  // a comment\nc = a * 2;\nd = a + 0.5\n");
    zun::CalcBinderNodeList list;
    EXPECT_EQ(list.readDefinitions(file.c_str()), 4);
    ASSERT_EQ(list.count, 4);
    EXPECT_NE(dynamic_cast<CalcNodeConst<double>*>(list.find("a")), nullptr) << "an integer becomes a double";
    EXPECT_EQ(list.find("a")->valNum(), 1);
    EXPECT_NE(dynamic_cast<CalcNodeConst<String>*>(list.find("b")), nullptr);
    EXPECT_EQ(text(list.find("b")->valStr()), "text");
    EXPECT_EQ(list.find("c")->valNum(), 2);
    EXPECT_EQ(list.find("d")->valNum(), 1.5);
    EXPECT_EQ(read("#c * #d", list), 3);
}

TEST(CalcBinderNodeList, EveryAssignmentAndNoFinalExpression) {
    TempFile file("a=1; a=a+1; a*10");
    zun::CalcBinderNodeList list;
    EXPECT_EQ(list.readDefinitions(file.c_str()), 2);
    EXPECT_EQ(list.data[0]->valNum(), 1);
    EXPECT_EQ(list.data[1]->valNum(), 2);
    EXPECT_EQ(read("#a", list), 2) << "the later one is found first";
}

TEST(CalcBinderNodeList, MissingAndBadDefinitionsFiles) {
    zun::CalcBinderNodeList list;
    EXPECT_EQ(list.readDefinitions("/nonexistent/calccore.defs"), 0);
    EXPECT_EQ(list.readDefinitions(nullptr), 0);
    TempFile bad("a = ;");
    EXPECT_THROW(list.readDefinitions(bad.c_str()), zun::CalcError);
    TempFile unknown("a = b + 1");
    EXPECT_THROW(list.readDefinitions(unknown.c_str()), zun::CalcErrorSymbolInvalid);
    EXPECT_EQ(list.count, 0);
}

TEST(CalcBinderList, FirstAnswerWinsAndOwnedEntriesDie) {
    int deaths = 0;
    TestBinder first;
    first.values["x"] = 1;
    TestBinder second;
    second.values["x"] = 2;
    second.values["y"] = 3;
    {
        zun::CalcBinderListT<zun::CalcBinder> list;
        list << first << second << new Dying(&deaths) << static_cast<zun::CalcBinder*>(nullptr);
        EXPECT_EQ(list.size(), 3);
        EXPECT_EQ(read("x + y + d", list), 8);
    }
    EXPECT_EQ(deaths, 1);
    delete new CalcParser("d", new Dying(&deaths));
    EXPECT_EQ(deaths, 2) << "a binder given by pointer goes with the parser";
}

TEST(CalcBinderData, TheFieldsOfAnException) {
    zun::CalcErrorFunctionUnknown e("\"f\"");
    CalcBinderDataType<zun::Exception> err("err", &e);
    EXPECT_EQ(read("err.code", err), 8);
    EXPECT_EQ(readText("err.family", err), "CALC");
    EXPECT_EQ(readText("err.sig", err), "CALC008");
    EXPECT_EQ(readText("err.title", err), "function unknown");
    EXPECT_EQ(readText("err.msg", err), "\"f\"");
    EXPECT_EQ(read("err.time.year", err), e.time.year());
    EXPECT_EQ(read("err.time.month", err), e.time.month());
    EXPECT_EQ(readText("err.time.monthstr", err), text(e.time.monthStr()));
    EXPECT_EQ(read("err.time.dsec", err), e.time.daySeconds());
    EXPECT_EQ(readText("err.time", err), text(e.time.str(-1)));
    EXPECT_EQ(read("err()", err), 1);
    CalcParser whole("err", err);
    EXPECT_TRUE(std::isnan(whole.valNum())) << "an exception has no value of its own";
    EXPECT_TRUE(whole.valStr().isNull());
    EXPECT_THROW(CalcParser("err.nothing", err), zun::CalcErrorSymbolInvalid);
}

TEST(CalcBinderData, ObjectsSwitchWithoutReparsing) {
    zun::CalcErrorFunctionUnknown e("\"f\"");
    CalcBinderDataType<zun::Exception> err("err", &e);
    CalcParser code("err.code + 1", err);
    CalcParser valid("err()", err);
    CalcParser year("err.time.year", err);
    EXPECT_EQ(code.valNum(), 9);
    EXPECT_EQ(valid.valNum(), 1);
    err.setObject(nullptr);
    code.reset();
    year.reset();
    EXPECT_TRUE(std::isnan(code.valNum())) << "a null object is NA";
    EXPECT_EQ(valid.valNum(), 0);
    EXPECT_TRUE(std::isnan(year.valNum()));
    zun::CalcErrorIterator other("x");
    err.setObject(&other);
    code.reset();
    EXPECT_EQ(code.valNum(), 13);
}

TEST(CalcBinderData, NumbersAndTexts) {
    double d = 1.5;
    CalcBinderDataSType<double> v("v", &d);
    CalcParser twice("v * 2", v);
    EXPECT_EQ(twice.valNum(), 3);
    d = 4;
    twice.reset();
    EXPECT_EQ(twice.valNum(), 8);
    EXPECT_EQ(twice.constLevel(), 0);

    const char* t = "12";
    CalcBinderDataSType<const char*> s("s", &t);
    CalcParser plus("s + 1", s);
    EXPECT_EQ(plus.valNum(), 13);
    t = nullptr;
    CalcParser none("s", s);
    EXPECT_EQ(none.valType(), zun::ValStr);
    EXPECT_TRUE(none.valStr().isNull());

    String owned("abc");
    CalcBinderDataSType<String> str("str", &owned);
    EXPECT_THROW(CalcParser("str.x", str), zun::CalcErrorSymbolInvalid) << "no fields";
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
    EXPECT_EQ(read("err.seq", names), 3) << "the prefix err matches, its fields don't: the next binder answers";
    EXPECT_EQ(read("ab", names), 2);
    EXPECT_EQ(read("a", names), 1);
    EXPECT_THROW(CalcParser("errx", names), zun::CalcErrorSymbolInvalid);
}

TEST(CalcBinderData, Dates) {
    zun::JulianDate date;
    ASSERT_TRUE(date.init("05-MAR-2004 12:30:15"));
    CalcBinderDataType<zun::JulianDate> d("d", &date);
    EXPECT_EQ(read("d.year", d), 2004);
    EXPECT_EQ(read("d.month", d), 3);
    EXPECT_EQ(read("d.mday", d), 5);
    EXPECT_EQ(read("d.hour * 100 + d.min", d), 1230);
    EXPECT_EQ(read("d.sec", d), 15);
    EXPECT_EQ(readText("d.monthstr", d), "March");
    EXPECT_DOUBLE_EQ(read("d", d), static_cast<double>(date.usec) / 86400000000.0);
    EXPECT_EQ(readText("d", d), text(date.str(-1)));
}

TEST(CalcBinderDataIterator, RowsAndTheirFields) {
    int values[] = {10, 20, 30};
    zun::CalcBinderDataIterator rows;
    CalcBinderDataSType<int> v("v");
    rows << v;
    for (int& x : values) rows.rows << static_cast<const void*>(&x);
    CalcParser p("v + iter", rows);
    rows.setIndex(0);
    EXPECT_EQ(p.valNum(), 10);
    rows.setIndex(2);
    p.reset();
    EXPECT_EQ(p.valNum(), 32);
    rows.setIndex(5);
    p.reset();
    EXPECT_TRUE(std::isnan(p.valNum())) << "no row there";
    EXPECT_EQ(errorOf<zun::CalcError>("iter1", &rows), "<bare text: invalid iterator reference>");

    zun::CalcIterator* it = rows.bindIterator(0);
    EXPECT_EQ(it->count(), 3);
    it->setIndex(1);
    EXPECT_EQ(rows.getIndex(), 1);
    it->incIndex();
    EXPECT_EQ(it->getIndex(), 2);
    EXPECT_EQ(it->level, 0);
    delete it;
    zun::CalcBinderDataIterator empty;
    EXPECT_EQ(empty.count(), 0);
}
