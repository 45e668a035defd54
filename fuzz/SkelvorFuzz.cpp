// Fuzz target: a dictionary, a sub-dictionary, data and arguments through
// skelvor's own run (skelvorMain), as "skelvor <folder>/data.bin -d=<folder>/t
// <arguments>" with a scratch folder holding t.dd, s.dd and data.bin, and its
// standard output in a file of bounded size there. The
// input's parts are separated by a line "----" (FuzzTarget.h).
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "calc/CalcNode.h"
#include "fuzz/FuzzTarget.h"
#include "struct/StructBase.h"
#include "tool/Reader.h"

namespace {

std::string folder;  // below $TMPDIR, else /tmp
const char* const files[] = {"t.dd", "s.dd", "data.bin", "out"};

// Standard output goes to the file "out", emptied before each input, and no
// file of the process may grow beyond this: a run that would print more
// (a billion elements of no size, all asked for) meets a write error and
// ends there, as it would on a full disk, instead of printing for minutes.
const rlim_t outputLimit = 64 << 20;

std::string path(const char* name) { return folder + "/" + name; }

void writeFile(const char* name, const std::string& bytes) {
    std::ofstream(path(name), std::ios::binary | std::ios::trunc)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const char* tmp = getenv("TMPDIR");
    folder = std::string(tmp && *tmp ? tmp : "/tmp") + "/skelvor-fuzz-XXXXXX";
    if (!mkdtemp(&folder[0])) abort();
    atexit([] {
        for (const char* name : files) unlink(path(name).c_str());
        rmdir(folder.c_str());
    });
    fuzz::silence();
    int out = open(path("out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (out < 0 || dup2(out, 1) < 0) abort();
    close(out);
    struct rlimit limit = {outputLimit, outputLimit};
    setrlimit(RLIMIT_FSIZE, &limit);
    for (const char* name : {"VEXA_DICTIONARY_PATH", "VEXA_DEFAULT_DATAFILE", "VEXA_AUXFILE_PATH"}) unsetenv(name);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<std::string> parts = fuzz::split(std::string(reinterpret_cast<const char*>(data), size));
    for (int part : {fuzz::Dictionary, fuzz::SubDictionary, fuzz::Data}) writeFile(files[part], parts[part]);
    if (ftruncate(1, 0) != 0 || lseek(1, 0, SEEK_SET) != 0) abort();
    signal(SIGXFSZ, SIG_IGN);  // libFuzzer's own handler would end the process
    std::vector<std::string> args{"skelvor", path("data.bin"), "-d=" + path("t")};
    const std::string& rest = parts[fuzz::Arguments];
    for (size_t from = 0; from < rest.size();) {
        size_t end = std::min(rest.find('\n', from), rest.size());
        std::string arg = rest.substr(from, end - from);
        if (!arg.empty() && arg.find('\0') == std::string::npos) args.push_back(arg);
        from = end + 1;
    }
    fuzz::run(skelvorMain, args);
    // -D adds parameters for the run of the process: each input starts without
    zun::CalcBinderNodeList& parameters = vexa::StructBase::globalParameters();
    while (parameters.count > 0) delete parameters.take(parameters.count - 1);
    return 0;
}
