// Checks of skelvor-calc runs: whole standard output, standard error and exit
// status of one statement.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Harness.h"

namespace calce2e {

// The statement succeeds and prints out, nothing on standard error.
inline void expectOut(const std::vector<std::string>& args, const std::string& out) {
    SCOPED_TRACE(args.empty() ? std::string() : args.back());
    e2e::Result r = e2e::calc(args);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, out);
    EXPECT_EQ(r.err, "");
}

// One value, one line.
inline void expectValue(const std::string& statement, const std::string& value) {
    expectOut({statement}, value + "\n");
}

// One line per row of -n rows; lines holds them all, each ended by "\n".
inline void expectRows(int rows, const std::string& statement, const std::string& lines) {
    expectOut({"-n", std::to_string(rows), statement}, lines);
}

// The run fails with status 1, prints nothing, and logs err (one "ERROR-"
// line, ended by "\n").
inline void expectErr(const std::vector<std::string>& args, const std::string& err) {
    SCOPED_TRACE(args.empty() ? std::string() : args.back());
    e2e::Result r = e2e::calc(args);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, err);
}

inline void expectError(const std::string& statement, const std::string& err) {
    expectErr({statement}, err + "\n");
}

}  // namespace calce2e
