// Helpers of the structure tree tests: a scratch folder for dictionaries and
// data, files in memory, and the text of errors.
#pragma once

#include <gtest/gtest.h>

#include <stdlib.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "base/Exception.h"
#include "dict/File.h"
#include "struct/StructBase.h"
#include "struct/StructElem.h"
#include "support/TempDir.h"

namespace treetest {

// Unsets an environment variable for the life of the object.
class UnsetEnv {
public:
    explicit UnsetEnv(const char* name) : name(name) {
        const char* old = std::getenv(name);
        if (old) oldValue = old;
        hadOld = old != nullptr;
        ::unsetenv(name);
    }
    ~UnsetEnv() {
        if (hadOld) ::setenv(name, oldValue.c_str(), 1);
    }

private:
    const char* name;
    bool hadOld;
    std::string oldValue;
};

// A test with a scratch folder for its dictionaries, and no dictionary root.
class TreeTest : public ::testing::Test {
protected:
    testsupport::TempDir dir;
    UnsetEnv dictionaryPath{"VEXA_DICTIONARY_PATH"};
    std::unique_ptr<vexa::File> file;

    // The element at path below the root of file.
    vexa::StructElem& field(const char* path) { return *file->getRoot().getChild(path); }

    // Writes a dictionary file "<name>.dd" from its lines.
    void dict(const std::string& name, const std::string& lines) { dir.write(name + ".dd", lines); }
    // The path of the dictionary name as the reader opens it.
    std::string dictPath(const std::string& name) const { return dir.path(name + ".dd"); }

    // A file named "data.bin" over bytes in memory, read through the
    // dictionary <name> of the scratch folder.
    std::unique_ptr<vexa::File> open(const std::string& name, const std::string& bytes) {
        return openNamed(dir.path(name), bytes);
    }
    // The same with the dictionary name as the reader gets it.
    std::unique_ptr<vexa::File> openNamed(const std::string& dictionary, const std::string& bytes) {
        return std::make_unique<vexa::File>(dictionary.c_str(), "data.bin", bytes.data(),
                                            static_cast<int>(bytes.size()), vexa::File::OrderNone);
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
