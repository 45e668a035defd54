// fuzz_seeds <cases folder> <calc seeds folder> <skelvor seeds folder>: the
// runs of the end-to-end cases as seeds of the fuzz targets: each statement
// given to skelvor-calc with its rows, and each dictionary given to skelvor
// with its first sub-dictionary, its data and its other arguments.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>

#include "fuzz/FuzzTarget.h"
#include "support/CaseFile.h"

namespace fs = std::filesystem;

namespace {

using Files = std::map<std::string, std::string>;

std::string calcSeed(const testsupport::CaseStep& run) {
    long rows = -1;
    std::string statement;
    for (size_t i = 0; i < run.args.size(); ++i) {
        const std::string& a = run.args[i];
        if ((a == "-n" || a == "-D") && i + 1 < run.args.size()) {
            if (a == "-n") rows = std::atol(run.args[i + 1].c_str());
            ++i;
        } else if (a.rfind("-D", 0) != 0) {
            statement = a;
        }
    }
    return fuzz::rowsByte(rows) + statement;
}

// The file a name stands for: as it is, with ".dd", or the folder's index.
const std::string* find(const Files& files, std::string name, std::string* found = nullptr) {
    name = name.substr(0, name.find('&'));
    if (name.rfind("./", 0) == 0) name = name.substr(2);
    for (const std::string& candidate : {name + ".dd", name, name + "/index.dd", name + "/index"}) {
        auto at = files.find(candidate);
        if (at == files.end()) continue;
        if (found) *found = candidate;
        return &at->second;
    }
    return nullptr;
}

std::string skelvorSeed(const testsupport::CaseStep& run, const Files& files) {
    std::vector<std::string> parts(fuzz::PartCount);
    std::string dictionaryName;
    for (size_t i = 1; i < run.args.size(); ++i) {
        const std::string& a = run.args[i];
        if (a.rfind("-d=", 0) == 0 && dictionaryName.empty()) dictionaryName = a.substr(3);
        else parts[fuzz::Arguments] += (parts[fuzz::Arguments].empty() ? "" : "\n") + a;
    }
    const std::string* data = run.args.empty() ? nullptr : find(files, run.args[0] == "-" ? run.input : run.args[0]);
    if (data) parts[fuzz::Data] = *data;
    std::string path;
    if (const std::string* dictionary = find(files, dictionaryName, &path)) {
        // the first sub-dictionary becomes s.dd
        std::string& text = parts[fuzz::Dictionary] = *dictionary;
        size_t at = text.find("|@"), end = text.find_first_of("|&\n", at + 2);
        std::string folder = fs::path(path).parent_path().string();
        const std::string* sub = nullptr;
        if (at != std::string::npos && end != std::string::npos) {
            std::string name = text.substr(at + 2, end - at - 2);
            sub = find(files, name[0] == '/' || folder.empty() ? name : folder + "/" + name);
            if (sub) text.replace(at + 2, end - at - 2, "s");
        }
        if (sub) parts[fuzz::SubDictionary] = *sub;
    }
    return fuzz::join(parts);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: fuzz_seeds <cases folder> <calc seeds folder> <skelvor seeds folder>\n";
        return 2;
    }
    int count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(argv[1])) {
        if (entry.path().filename() != "case") continue;
        std::string folder = entry.path().parent_path().string();
        testsupport::CaseFile file(folder, "/tmp");
        Files files;
        for (const testsupport::CaseStep& step : file.steps) {
            if (!step.isRun()) {
                files[step.name] = step.bytes;
                continue;
            }
            bool calc = step.program == "skelvor-calc";
            std::string name = fs::path(folder).filename().string() + "-" + std::to_string(step.line);
            std::ofstream(fs::path(argv[calc ? 2 : 3]) / name, std::ios::binary)
                << (calc ? calcSeed(step) : skelvorSeed(step, files));
            ++count;
        }
    }
    std::cout << count << " seeds from " << argv[1] << "\n";
    return 0;
}
