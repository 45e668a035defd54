// Running the built programs from tests: a scratch folder for the files a test
// writes, and a runner that captures standard output, standard error and the
// exit status of one process.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace e2e {

struct Result {
    int status = -1;   // exit status; 128+signal when killed; -1 on timeout
    std::string out;   // standard output
    std::string err;   // standard error
};

struct RunOptions {
    std::string input;                  // written to standard input, then closed
    bool inputIsFile = false;           // give the input through a regular file instead of a pipe
    std::vector<std::pair<std::string, std::string>> env;  // set in the child
    std::string cwd;                    // working folder of the child; empty keeps the test's
    int timeoutSeconds = 60;
};

// Runs program with args (args[0] is not the program name). The variables
// VEXA_DICTIONARY_PATH, VEXA_AUXFILE_PATH* and VEXA_DEFAULT_DATAFILE are
// removed from the child's environment unless options.env sets them.
Result run(const std::string& program, const std::vector<std::string>& args,
           const RunOptions& options = RunOptions());

Result skelvor(const std::vector<std::string>& args, const RunOptions& options = RunOptions());
Result calc(const std::vector<std::string>& args, const RunOptions& options = RunOptions());

// A fresh folder under the system's temporary folder, removed with its contents.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return root; }
    std::string path(const std::string& name) const { return root + "/" + name; }
    // Writes bytes to name (folders on the way are made) and returns the full path.
    std::string write(const std::string& name, const std::string& bytes) const;
    std::string read(const std::string& name) const;
    std::string mkdir(const std::string& name) const;

private:
    std::string root;
};

// Bytes from a list of values 0..255: bytes({0x01, 0xff}).
std::string bytes(std::initializer_list<int> values);

}  // namespace e2e
