// A scratch folder for the files of a benchmark program, removed at the end.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <stdlib.h>
#include <string>

class ScratchFolder {
public:
    std::string dir;

    ScratchFolder() {
        char pattern[] = "/tmp/skelvor-bench.XXXXXX";
        dir = mkdtemp(pattern);
    }
    ~ScratchFolder() {
        std::string command = "rm -rf '" + dir + "'";
        if (std::system(command.c_str()) != 0) std::fprintf(stderr, "could not remove %s\n", dir.c_str());
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string path(const std::string& name) const { return dir + "/" + name; }

    void write(const std::string& name, const std::string& bytes) const {
        FILE* f = std::fopen(path(name).c_str(), "wb");
        std::fwrite(bytes.data(), 1, bytes.size(), f);
        std::fclose(f);
    }
};
