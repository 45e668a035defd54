// testsupport::TempDir: a fresh folder under the system's temporary folder for
// the files a test writes, removed with its contents; and the bytes tests
// write into such files.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <stdexcept>
#include <string>

namespace testsupport {

class TempDir {
public:
    TempDir() : root((std::filesystem::temp_directory_path() / "skelvor-test-XXXXXX").string()) {
        if (!::mkdtemp(&root[0])) throw std::runtime_error("mkdtemp failed");
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(root, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return root; }
    std::string path(const std::string& name) const { return root + "/" + name; }
    // Writes bytes to name (folders on the way are made) and returns the full path.
    std::string write(const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream f(path(name), std::ios::binary | std::ios::trunc);
        if (!f.write(bytes.data(), static_cast<std::streamsize>(bytes.size())))
            throw std::runtime_error("can't write " + name);
        return path(name);
    }
    std::string read(const std::string& name) const {
        std::ostringstream s;
        s << std::ifstream(path(name), std::ios::binary).rdbuf();
        return s.str();
    }

private:
    std::string root;
};

// n bytes where byte i is i mod 251, so that every place can be told apart.
inline std::string pattern(size_t n) {
    std::string s(n, 0);
    for (size_t i = 0; i < n; ++i) s[i] = static_cast<char>(i % 251);
    return s;
}

// Bytes from a list of values 0..255: bytes({0x01, 0xff}).
inline std::string bytes(std::initializer_list<int> values) {
    std::string s;
    for (int v : values) s.push_back(static_cast<char>(v & 0xff));
    return s;
}

}  // namespace testsupport
