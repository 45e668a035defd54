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
    TestError(const char* family, int code, const char* message, const char* title = "", bool decorated = false)
        : Exception(message), fam(family), ttl(title), num(code), decorated(decorated) {}
    const char* family() const override { return fam; }
    int code() const override { return num; }
    const char* title() const override { return ttl; }
    // a message that the class builds itself, beyond the stored text
    String msg() const override { return decorated ? message + " [decorated]" : message; }

private:
    const char *fam, *ttl;
    int num;
    bool decorated;
};

class ExceptionLog : public ::testing::Test {
protected:
    std::ostringstream out;
    std::ostream* saved = Exception::err_out;
    void SetUp() override { Exception::err_out = &out; }
    void TearDown() override { Exception::err_out = saved; }
};

}  // namespace

TEST(Exception, SignatureAndErrno) {
    EXPECT_EQ(TestError("MAIN", 1, "").signature(), "MAIN001");
    EXPECT_EQ(TestError("CALC", 0, "").signature(), "CALC");
    EXPECT_EQ(TestError("CALC", -4, "").signature(), "CALC");
    EXPECT_EQ(TestError("VEXA", 1234, "").signature(), "VEXA1234");
    errno = ENOENT;
    StdError e("x");
    EXPECT_EQ(e.signature(), "STD002");
    EXPECT_EQ(errno, 0);
    EXPECT_STREQ(e.title(), "No such file or directory");
    StdError none("y", 0);
    EXPECT_STREQ(none.title(), "");
    zun::JulianDate now;
    now.init();
    EXPECT_LE(now.usec, none.timeStamp().usec);
}

TEST(Exception, RecordFreezesEverything) {
    auto* record = new ExceptionRecord(TestError("VEXA", 7, "bad", "a title", true));
    ExceptionRecord copy(*record);
    delete record;
    EXPECT_STREQ(copy.family(), "VEXA");
    EXPECT_EQ(copy.code(), 7);
    EXPECT_STREQ(copy.title(), "a title");
    EXPECT_EQ(copy.msg(), "bad [decorated]");
}

TEST(Exception, ChainReplacesAndCopiesDeeply) {
    TestError top("MAIN", 2, "top");
    EXPECT_EQ(&top.chain(StdError("first", 5)), &top);
    top.chain(StdError("second", 2));
    ASSERT_NE(top.chained, nullptr);
    EXPECT_EQ(top.chained->msg(), "second");
    TestError copy(top);
    EXPECT_NE(copy.chained, top.chained);
    EXPECT_EQ(copy.chained->msg(), "second");
    TestError assigned("X", 0, "");
    assigned = top;
    EXPECT_EQ(assigned.chained->code(), 2);
    top.chain(*top.chained);  // what is already in the chain
    EXPECT_EQ(top.chained->msg(), "second");
}

TEST_F(ExceptionLog, DefaultLinesWithTheDeepestCauseFirst) {
    TestError("MAIN", 1, "missing arguments").log("ERROR-");
    TestError("MAIN", 0, "x no match found").log("WARNING-");
    TestError("CALC", 3, "", "operator expected").log(nullptr, "ignored suffix");
    StdError("", 0).log("E-");
    TestError("CALC", -2, "neg", "not shown").log("E-");
    TestError top("VEXA", 4, "top", "t4"), middle("CALC", 2, "middle", "t2");
    middle.chain(StdError("bottom", 2));
    top.chain(middle);
    top.log("ERROR-");
    EXPECT_EQ(out.str(),
              "ERROR-MAIN001  : missing arguments\n"
              "WARNING-MAIN : x no match found\n"
              "CALC003 operator expected\n"
              "E-STD\n"
              "E-CALC : neg\n"
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
    Exception::log_fmt = "err.sig";
    e.log("W-", "!");
    EXPECT_EQ(hookSeen, "W-STD002!");
    e.logDefault("W-");
    EXPECT_EQ(out.str(), "W-STD002 No such file or directory : m\nW-STD002 No such file or directory : m\n");
    Exception::log_fmt.setNull();
    Exception::formatLogger = savedHook;
}
