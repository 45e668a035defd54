// The error frame of both programs: every error line it logs ends the run
// with status 1, whatever was thrown.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <stdexcept>

#include "base/Exception.h"
#include "tool/MainError.h"

namespace {

char program[] = "program";
char* argv[] = {program, nullptr};

int frameStatus(int (*body)(int, char**)) { return mainFrame(1, argv, body, nullptr); }

}  // namespace

TEST(MainFrame, EveryErrorLineEndsWithStatusOne) {
    const struct {
        const char* name;
        int (*body)(int, char**);
        const char* err;  // a pattern of standard error
    } rows[] = {
        {"out of memory", [](int, char**) -> int { throw std::bad_alloc(); }, "^ERROR-STD.* : std::bad_alloc\n$"},
        {"another std::exception", [](int, char**) -> int { throw std::runtime_error("broken"); },
         "^ERROR-STD.* : broken\n$"},
        {"anything else", [](int, char**) -> int { throw 7; }, "^ERROR-STD"},
        {"an error in a value", [](int, char**) -> int { throw MainError(2, "bad value"); },
         "^ERROR-MAIN002  : bad value\n$"},
        {"a system error", [](int, char**) -> int { throw zun::StdError("gone", 2); },
         "^ERROR-STD002 No such file or directory : gone\n$"},
    };
    for (const auto& r : rows)
        EXPECT_EXIT(std::exit(frameStatus(r.body)), ::testing::ExitedWithCode(1), r.err) << r.name;
    EXPECT_EXIT(std::exit(frameStatus([](int, char**) { return 0; })), ::testing::ExitedWithCode(0), "^$");
}
