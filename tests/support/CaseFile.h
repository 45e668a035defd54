// testsupport::CaseFile: an end-to-end case of the programs written as a text
// file (tests/cases/README.md describes the format), read into the steps it
// makes: files to write into the working folder, and runs of skelvor or
// skelvor-calc with what each must print and its exit status.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace testsupport {

struct CaseStep {
    int line = 0;      // where the step stands in the case file
    std::string text;  // the step's line as written, for messages
    // A file to write: its name below the working folder, its bytes.
    std::string name, bytes;
    // A run: the program's name ("skelvor", "skelvor-calc"), its arguments,
    // environment, standard input (the file input, through a pipe or as a
    // regular file; nothing without a name), and what it must print.
    std::string program;
    std::vector<std::string> args;
    std::vector<std::pair<std::string, std::string>> env;
    std::string input;
    bool inputIsPipe = false;
    std::string out, err;
    int status = 0;

    bool isRun() const { return !program.empty(); }
};

class CaseFile {
public:
    // Reads <folder>/case. The other files of the folder come first, as
    // files to write. workDir replaces $PWD in arguments, environment and
    // expected text. Throws std::runtime_error "<file>:<line>: <problem>".
    CaseFile(const std::string& folder, const std::string& workDir);

    std::string path;  // of the case file
    std::vector<CaseStep> steps;
};

// text in the notation of expected lines: each line behind prefix, in the
// escaped form (" (esc)") when it holds bytes other than printable ASCII,
// " (no-eol)" on a last line without a line feed.
std::string caseNotation(const std::string& text, const std::string& prefix);

}  // namespace testsupport
