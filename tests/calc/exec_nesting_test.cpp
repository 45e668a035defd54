// exec inside exec: a text that runs itself again through a variable stops
// with an error at a fixed depth instead of running out of stack, and the
// depth is given back after a failure.
#include <gtest/gtest.h>

#include <string>

#include "calc_testing.h"

using namespace calctest;

namespace {

// "a0 = \"1\"; a1 = \"exec(a0)\"; ... ; exec(a<depth-1>)": depth execs run one
// inside the other.
std::string chain(int depth) {
    std::string text = "a0 = \"1\"; ";
    for (int i = 1; i < depth; ++i)
        text += "a" + std::to_string(i) + " = \"exec(a" + std::to_string(i - 1) + ")\"; ";
    return text + "exec(a" + std::to_string(depth - 1) + ")";
}

const char* const tooDeep = "statements nested too deep in call to function \"exec\"";

std::string failure(const std::function<void()>& read) {
    try {
        read();
    } catch (zun::CalcErrorFunctionCallInvalid& e) {
        return e.msg().str();
    }
    return "";
}

}  // namespace

TEST(CalcExecNesting, ATextThatRunsItselfFails) {
    auto p = parse("a = \"exec(a)\"; exec(a)");
    EXPECT_EQ(failure([&] { p->valNum(); }), tooDeep);
    EXPECT_EQ(failure([&] { p->valStr(); }), tooDeep);
    EXPECT_EQ(failure([&] { p->valType(); }), tooDeep);
    EXPECT_EQ(failure([&] { p->valRaw(); }), tooDeep);
    EXPECT_EQ(failure([&] { p->valPrint(); }), tooDeep);
}

TEST(CalcExecNesting, DeepChainsRunUpToTheLimit) {
    EXPECT_EQ(failure([] { parse(chain(65).c_str())->valNum(); }), tooDeep);
    // the failure gave its depth back
    EXPECT_EQ(value(chain(64).c_str()), 1);
    EXPECT_EQ(text(parse(chain(64).c_str())->valStr()), "1");
}
