// Running the built programs from tests: a runner that captures standard
// output, standard error and the exit status of one process.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace testsupport {

struct Result {
    int status = -1;  // exit status; 128+signal when killed; -1 on timeout
    std::string out;  // standard output
    std::string err;  // standard error
};

struct RunOptions {
    std::string input;      // written to standard input through a pipe, then closed
    std::string inputFile;  // when set, the regular file opened as standard input instead
    std::vector<std::pair<std::string, std::string>> env;  // set in the child
    std::string cwd;                                       // working folder of the child; empty keeps the test's
    int timeoutSeconds = 60;
};

// Runs program with args (args[0] is not the program name). The variables
// VEXA_* are removed from the child's environment unless options.env sets
// them.
Result run(const std::string& program, const std::vector<std::string>& args, const RunOptions& options = RunOptions());

// The path of a built program: "skelvor" or "skelvor-calc".
std::string programPath(const std::string& name);

}  // namespace testsupport
