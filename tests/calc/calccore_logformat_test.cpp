// The error log written by a format statement.
#include <gtest/gtest.h>

#include <unistd.h>

#include <sstream>
#include <string>

#include "calc/CalcLogFormat.h"
#include "calccore_testing.h"

using namespace calccore;

namespace {

// Captures the log, and leaves the default form behind.
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

TEST(CalcLogFormat, OneLinePerExceptionTheCauseFirst) {
    LogCapture log;
    zun::setLogFormat("prefix << err.sig << ':' << err.seq << ' ' << err.msg << suffix");
    zun::CalcErrorFunctionUnknown cause("\"f\"");
    zun::CalcErrorSymbolInvalid top("x");
    top.chain(cause);
    top.log("ERR-", "!");
    EXPECT_EQ(log.out.str(), "ERR-CALC008:1 \"f\"!\nERR-CALC010:0 \"x\"!\n");
}

TEST(CalcLogFormat, FieldsOfTheExceptionAndTheProcess) {
    LogCapture log;
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
}

TEST(CalcLogFormat, AnUnknownNameInTheFormat) {
    LogCapture log;
    zun::setLogFormat("err.nothing");
    zun::CalcErrorIterator e("none");
    e.log("W-");
    EXPECT_EQ(log.out.str(), "W-CALC010 invalid symbol : \"err.nothing\"\nW-CALC012 error creating iterator : none\n");
}

TEST(CalcLogFormat, NoFormatMeansTheDefaultForm) {
    LogCapture log;
    zun::setLogFormat("'never'");
    zun::setLogFormat("");
    zun::CalcErrorSymbolInvalid e("x");
    e.log("ERROR-");
    EXPECT_EQ(log.out.str(), "ERROR-CALC010 invalid symbol : \"x\"\n");
}
