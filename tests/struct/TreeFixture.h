// Helpers of the structure tree tests: a scratch folder for dictionaries and
// data, files in memory, and the text of errors.
#pragma once

#include <gtest/gtest.h>

#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>

#include "base/Exception.h"
#include "dict/File.h"
#include "struct/StructBase.h"
#include "struct/StructElem.h"

namespace treetest {

// A fresh folder under the temporary folder, removed with its contents.
class TempFolder {
public:
    TempFolder() {
        const char* tmp = std::getenv("TMPDIR");
        std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/treetest.XXXXXX";
        char* made = ::mkdtemp(&pattern[0]);
        root = made ? made : "";
    }
    ~TempFolder() {
        if (!root.empty())
            ::nftw(root.c_str(), [](const char* p, const struct stat*, int, struct FTW*) { return ::remove(p); }, 16,
                   FTW_DEPTH | FTW_PHYS);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& path() const { return root; }
    std::string path(const std::string& name) const { return root + "/" + name; }
    // Writes bytes to name, making the folders on the way; returns the full path.
    std::string write(const std::string& name, const std::string& bytes) const {
        std::string full = path(name);
        for (size_t at = full.find('/', root.size() + 1); at != std::string::npos; at = full.find('/', at + 1))
            ::mkdir(full.substr(0, at).c_str(), 0700);
        std::ofstream out(full, std::ios::binary);
        out << bytes;
        return full;
    }

private:
    std::string root;
};

// Sets an environment variable (unsets it for a null value) for the life of
// the object, then restores it.
class EnvVar {
public:
    EnvVar(const char* name, const char* value) : name(name) {
        const char* old = std::getenv(name);
        hadOld = old != nullptr;
        if (old) oldValue = old;
        if (value) ::setenv(name, value, 1);
        else ::unsetenv(name);
    }
    EnvVar(const char* name, const std::string& value) : EnvVar(name, value.c_str()) {}
    ~EnvVar() {
        if (hadOld) ::setenv(name, oldValue.c_str(), 1);
        else ::unsetenv(name);
    }

private:
    const char* name;
    bool hadOld;
    std::string oldValue;
};

// A test with a scratch folder for its dictionaries; VEXA_DICTIONARY_PATH
// is unset unless the test sets it.
class TreeTest : public ::testing::Test {
protected:
    TempFolder dir;
    EnvVar dictionaryPath{"VEXA_DICTIONARY_PATH", nullptr};

    // Writes a dictionary file "<name>.dd" from its lines.
    void dict(const std::string& name, const std::string& lines) { dir.write(name + ".dd", lines); }
    // The path of the dictionary name as the reader opens it.
    std::string dictPath(const std::string& name) const { return dir.path(name + ".dd"); }

    // A file named "data.bin" over bytes in memory, read through the
    // dictionary <name> of the scratch folder.
    std::unique_ptr<vexa::File> open(const std::string& name, const std::string& bytes,
                                     vexa::File::ByteOrder order = vexa::File::OrderNone) {
        return openNamed(dir.path(name), bytes, order);
    }
    // The same with the dictionary name as the reader gets it.
    std::unique_ptr<vexa::File> openNamed(const std::string& dictionary, const std::string& bytes,
                                          vexa::File::ByteOrder order = vexa::File::OrderNone) {
        return std::make_unique<vexa::File>(dictionary.c_str(), "data.bin", bytes.data(),
                                            static_cast<int>(bytes.size()), order);
    }
};

// The message of what a call throws, or "" when it throws nothing.
template <class F>
std::string errorOf(F f) {
    try {
        f();
    } catch (zun::Exception& e) {
        return e.msg().str();
    } catch (zun::String& s) {
        return std::string("thrown string: ") + s.str();
    }
    return "";
}

// "FAMILYnnn title : message" of what a call throws.
template <class F>
std::string signatureOf(F f) {
    try {
        f();
    } catch (zun::Exception& e) {
        return std::string(e.signature().str()) + " " + e.title() + " : " + e.msg().str();
    }
    return "";
}

// The bytes of a string literal, zero bytes included.
template <size_t N>
std::string raw(const char (&bytes)[N]) {
    return std::string(bytes, N - 1);
}

inline std::string text(const zun::String& s) { return s.isNull() ? std::string("(null string)") : s.str(); }

}  // namespace treetest
