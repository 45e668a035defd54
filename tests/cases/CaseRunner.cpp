// case_runner <case folder>...: runs end-to-end cases written as files (the
// format is in README.md beside this file), each in a fresh temporary folder,
// and compares the whole standard output, standard error and exit status of
// each run. Differences are shown in the notation of the case file; the
// status is 1 when any run differs or a case can't be read.
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "support/CaseFile.h"
#include "support/Process.h"
#include "support/TempDir.h"

using namespace testsupport;

namespace {

// Runs step; false, with the differences on standard error, when any differs.
bool check(const CaseFile& file, const CaseStep& step, const TempDir& dir) {
    RunOptions options;
    options.cwd = dir.path();
    options.env = step.env;
    if (!step.input.empty() && !std::filesystem::is_regular_file(dir.path(step.input)))
        throw std::runtime_error(file.path + ":" + std::to_string(step.line) + ": no file " + step.input);
    if (step.inputIsPipe) options.input = dir.read(step.input);
    else if (!step.input.empty()) options.inputFile = dir.path(step.input);
    Result got = run(programPath(step.program), step.args, options);
    if (got.out == step.out && got.err == step.err && got.status == step.status) return true;

    std::cerr << file.path << ":" << step.line << ": " << step.text << "\n";
    auto show = [](const char* what, const std::string& expected, const std::string& actual, const char* prefix) {
        if (expected != actual)
            std::cerr << what << ", expected:\n"
                      << caseNotation(expected, prefix) << "but got:\n"
                      << caseNotation(actual, prefix);
    };
    show("standard output", step.out, got.out, "  ");
    show("standard error", step.err, got.err, "! ");
    if (got.status != step.status)
        std::cerr << "status, expected: [" << step.status << "] but got: [" << got.status << "]\n";
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: case_runner <case folder>...\n";
        return 2;
    }
    bool ok = true;
    for (int i = 1; i < argc; ++i) {
        try {
            TempDir dir;
            CaseFile file(argv[i], dir.path());
            int runs = 0, failed = 0;
            for (const CaseStep& step : file.steps) {
                if (!step.isRun()) {
                    dir.write(step.name, step.bytes);
                    continue;
                }
                ++runs;
                failed += !check(file, step, dir);
            }
            std::cout << file.path << ": " << runs - failed << " of " << runs << " runs as expected\n";
            ok = ok && failed == 0 && runs > 0;
        } catch (std::exception& e) {
            std::cerr << e.what() << "\n";
            ok = false;
        }
    }
    return ok ? 0 : 1;
}
