#include <gtest/gtest.h>

#include <cerrno>
#include <sstream>

#include "base/Exception.h"

using zun::Exception;
using zun::ExceptionRecord;
using zun::StdError;
using zun::String;

namespace {

class TestError : public Exception {
public:
    TestError(const char* family, int code, const char* message, const char* title = "")
        : Exception(message), fam(family), num(code), ttl(title) {}
    const char* family() const override { return fam; }
    int code() const override { return num; }
    const char* title() const override { return ttl; }

private:
    const char* fam;
    int num;
    const char* ttl;
};

// A message that the class builds itself, beyond the stored text.
class DecoratedError : public TestError {
public:
    using TestError::TestError;
    String msg() const override { return message + " [decorated]"; }
};

class ExceptionLog : public ::testing::Test {
protected:
    std::ostringstream out;
    std::ostream* saved = nullptr;
    void SetUp() override {
        saved = Exception::err_out;
        Exception::err_out = &out;
    }
    void TearDown() override { Exception::err_out = saved; }
};

}  // namespace

TEST(ExceptionBasics, Signature) {
    EXPECT_EQ(TestError("MAIN", 1, "").signature(), "MAIN001");
    EXPECT_EQ(StdError("x", 2).signature(), "STD002");
    EXPECT_EQ(TestError("CALC", 0, "").signature(), "CALC");
    EXPECT_EQ(TestError("CALC", -4, "").signature(), "CALC");
    EXPECT_EQ(TestError("VEXA", 1234, "").signature(), "VEXA1234");
}

TEST(ExceptionBasics, StdErrorTakesErrno) {
    errno = ENOENT;
    StdError e("x");
    EXPECT_EQ(e.code(), ENOENT);
    EXPECT_EQ(errno, 0);
    EXPECT_STREQ(e.family(), "STD");
    EXPECT_STREQ(e.title(), "No such file or directory");
    StdError none("y", 0);
    EXPECT_STREQ(none.title(), "");
    none.setCode(29);
    EXPECT_EQ(none.code(), 29);
}

TEST(ExceptionBasics, TimeStampIsNow) {
    zun::JulianDate now;
    now.init();
    StdError e("x", 1);
    EXPECT_LE(now.usec, e.timeStamp().usec);
    EXPECT_LE(e.timeStamp().usec - now.usec, 5000000);
}

TEST(ExceptionBasics, RecordFreezesEverything) {
    ExceptionRecord* record;
    {
        DecoratedError e("VEXA", 7, "bad", "a title");
        record = new ExceptionRecord(e);
    }
    EXPECT_STREQ(record->family(), "VEXA");
    EXPECT_EQ(record->code(), 7);
    EXPECT_STREQ(record->title(), "a title");
    EXPECT_EQ(record->msg(), "bad [decorated]");
    ExceptionRecord copy(*record);
    delete record;
    EXPECT_STREQ(copy.family(), "VEXA");
    EXPECT_EQ(copy.msg(), "bad [decorated]");
}

TEST(ExceptionBasics, ChainReplacesAndCopiesDeeply) {
    TestError top("MAIN", 2, "top");
    Exception& self = top.chain(StdError("first", 5));
    EXPECT_EQ(&self, &top);
    top.chain(StdError("second", 2));
    ASSERT_NE(top.chained, nullptr);
    EXPECT_EQ(top.chained->msg(), "second");
    TestError copy(top);
    EXPECT_NE(copy.chained, top.chained);
    EXPECT_EQ(copy.chained->msg(), "second");
    TestError assigned("X", 0, "");
    assigned = top;
    EXPECT_EQ(assigned.chained->code(), 2);
    // chaining what is already in the chain
    top.chain(*top.chained);
    EXPECT_EQ(top.chained->msg(), "second");
}

TEST(ExceptionBasics, ThrownByValueCaughtByReference) {
    try {
        StdError inner("inner", 2);
        TestError outer("MAIN", 1, "outer");
        outer.chain(inner);
        throw outer;
    } catch (Exception& e) {
        EXPECT_STREQ(e.family(), "MAIN");
        ASSERT_NE(e.chained, nullptr);
        EXPECT_STREQ(e.chained->family(), "STD");
    }
}

TEST_F(ExceptionLog, DefaultLines) {
    TestError("MAIN", 1, "missing arguments").log("ERROR-");
    StdError("\"x.dd\"", 2).log("ERROR-");
    TestError("MAIN", 0, "x no match found").log("WARNING-");
    EXPECT_EQ(out.str(),
              "ERROR-MAIN001  : missing arguments\n"
              "ERROR-STD002 No such file or directory : \"x.dd\"\n"
              "WARNING-MAIN : x no match found\n");
}

TEST_F(ExceptionLog, NoMessageNoPrefixNoSuffix) {
    TestError("CALC", 3, "", "operator expected").log(nullptr, "ignored suffix");
    StdError("", 0).log("E-");
    TestError("CALC", -2, "neg", "not shown").log("E-");
    EXPECT_EQ(out.str(), "CALC003 operator expected\nE-STD\nE-CALC : neg\n");
}

TEST_F(ExceptionLog, ChainPrintsDeepestCauseFirst) {
    TestError top("VEXA", 4, "top", "t4");
    TestError middle("CALC", 2, "middle", "t2");
    middle.chain(StdError("bottom", 2));
    top.chain(middle);
    top.log("ERROR-");
    EXPECT_EQ(out.str(),
              "ERROR-STD002 No such file or directory : bottom\n"
              "ERROR-CALC002 t2 : middle\n"
              "ERROR-VEXA004 t4 : top\n");
}

namespace {
std::string hookSeen;
void testHook(const Exception& e, const char* prefix, const char* suffix) {
    hookSeen = std::string(prefix) + e.signature().str() + (suffix ? suffix : "");
}
}  // namespace

TEST_F(ExceptionLog, FormatHookOnlyWithFormat) {
    auto savedHook = Exception::formatLogger;
    Exception::formatLogger = testHook;
    hookSeen.clear();
    StdError e("m", 2);
    e.log("W-", "!");
    EXPECT_EQ(hookSeen, "");  // no format: the default form
    EXPECT_EQ(out.str(), "W-STD002 No such file or directory : m\n");
    Exception::log_fmt = "err.sig";
    e.log("W-", "!");
    EXPECT_EQ(hookSeen, "W-STD002!");
    out.str("");
    e.logDefault("W-");
    EXPECT_EQ(out.str(), "W-STD002 No such file or directory : m\n");
    Exception::log_fmt.setNull();
    Exception::formatLogger = savedHook;
}
