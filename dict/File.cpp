#include "dict/File.h"

#include <cstdio>
#include <cstdlib>

#include "base/Exception.h"
#include "input/FileUtils.h"
#include "input/InputServer.h"
#include "input/InputStream.h"
#include "struct/StructBase.h"

using zun::InputStream;
using zun::String;

namespace vexa {

namespace {

InputStream::ByteOrder streamOrder(File::ByteOrder order) {
    return static_cast<InputStream::ByteOrder>(static_cast<int>(order));
}

// The non-empty words of text split at ":", appended to list.
void appendWords(const char* text, zun::ObjAppendList<String>& list) {
    if (!text) return;
    String all(text);
    for (int i = 0;; ++i) {
        String word = all.word(i, ':');
        if (word.isNull()) break;
        if (!word.isEmpty()) list << word;
    }
}

// The words of VEXA_AUXFILE_PATH_<folder> with each "/" of folder as "_".
void appendFolderPath(const String& folder, zun::ObjAppendList<String>& list) {
    String variable("VEXA_AUXFILE_PATH_");
    variable += folder;
    variable.swap('/', '_');
    appendWords(std::getenv(variable.str()), list);
}

}  // namespace

File::File(const char* dictionary, const char* dataFile, long bufferKBytes, ByteOrder order) {
    char option[32];
    std::snprintf(option, sizeof option, "%ld", bufferKBytes);
    // "data.bin::basic" or "data.bin::buffer:64" names its own driver and
    // option, which then take the place of the buffer of the given size.
    String path(dataFile), driver, driverOption;
    if (dataFile && !zun::FileUtils::checkFile(dataFile) &&
        zun::InputServer::splitDriverPath(path, driver, driverOption) && !driver.isEmpty()) {
        build(dictionary, resolveDataFile(path.str(), order, driver.str(), driverOption.text), order);
        return;
    }
    build(dictionary, resolveDataFile(dataFile, order, "buffer", option), order);
}

File::File(const char* dictionary, const char* dataFile, ByteOrder order, const char* driver, const char* option) {
    build(dictionary, resolveDataFile(dataFile, order, driver, option), order);
}

File::File(const char* dictionary, InputStream* stream) {
    build(dictionary, stream, OrderNone);
}

File::File(const char* dictionary, const char* name, const char* text, int length, ByteOrder order) {
    int streamOrderValue = order == OrderNone ? OrderBig : order;
    InputStream* stream = new zun::InputSStream(text, length, name, streamOrderValue);
    build(dictionary, stream, order);
}

File::~File() {
    delete root;
}

void File::build(const char* dictionary, InputStream* stream, ByteOrder order) {
    root = new StructBase(dictionary ? dictionary : "", stream);
    if (order != OrderNone) root->input->setByteOrder(order);
}

String File::fileParameters(String& fileName) {
    int amp = fileName.find('&');
    if (amp < 1) return String(nullptr);
    String parameters = fileName.substr(amp);
    fileName = fileName.substr(0, amp - 1);
    return parameters;
}

void File::addGlobalParameter(const char* name, long long value) {
    StructBase::addParameter(name, value, StructBase::globalParameters());
}

void File::addGlobalParameter(const char* name, double value) {
    StructBase::addParameter(name, value, StructBase::globalParameters());
}

void File::addGlobalParameter(const char* name, const char* value) {
    StructBase::addParameter(name, value, StructBase::globalParameters());
}

void File::removeGlobalParameter(const char* name) {
    StructBase::removeParameter(name, StructBase::globalParameters());
}

void File::addParameter(const char* name, long long value) {
    StructBase::addParameter(name, value, root->parameters);
}

void File::addParameter(const char* name, double value) {
    StructBase::addParameter(name, value, root->parameters);
}

void File::addParameter(const char* name, const char* value) {
    StructBase::addParameter(name, value, root->parameters);
}

void File::removeParameter(const char* name) {
    StructBase::removeParameter(name, root->parameters);
}

String File::getName() const {
    return String(root->input->name());
}

long File::getPhysicalSize() const {
    return root->input->size();
}

long File::importDictionary(const char* name) {
    return root->importDictionary(name);
}

InputStream* File::resolveDataFile(const char* path, ByteOrder order, const char* driver, const char* option) {
    zun::InputServer& server = zun::InputServer::getInstance();
    String given(path);
    if (given.cmp("//", 2) != 0) {
        InputStream::ByteOrder o = order == OrderNone ? InputStream::HwOrder : streamOrder(order);
        try {
            return server.getFile(path, o, driver, option);
        } catch (zun::StdError& e) {
            // Only a path that names no file may stand for a folder; a file
            // that can't be read, or a buffer that can't be had, is the answer.
            if (e.code() != 2) throw;
            const char* name = std::getenv("VEXA_DEFAULT_DATAFILE");
            String second = given + "/" + (name ? name : "index");
            return server.getFile(second.str(), o, driver, option);
        }
    }
    String rest = given.substr(2);
    String base = zun::FileUtils::baseName(rest.str(), false);
    String folder = zun::FileUtils::dirName(rest.str(), false);
    zun::ObjAppendList<String> search;
    appendFolderPath(folder, search);
    zun::ObjAppendList<String> roots;
    appendWords(std::getenv("VEXA_AUXFILE_PATH"), roots);
    for (long i = 0; i < roots.count; ++i) {
        search << zun::FileUtils::pathName(folder.str(), roots[i].str());
        search << roots[i];
    }
    if (search.count == 0) return resolveDataFile(rest.str(), order, driver, option);
    String full = zun::FileUtils::pathName(base.str(), search[0].str());
    return resolveDataFile(full.str(), order, driver, option);
}

InputStream* File::resolveAuxFile(const char* path, ByteOrder order, const char* driver, const char* option,
                                  const char* folder) {
    String given(path);
    String base = zun::FileUtils::baseName(given.str(), false);
    String pathFolder = zun::FileUtils::dirName(given.str(), false);
    zun::ObjAppendList<String> search;
    if (folder) {
        search << zun::FileUtils::pathName(pathFolder.str(), folder);
        search << String(folder);
    }
    appendFolderPath(pathFolder, search);
    zun::ObjAppendList<String> roots;
    appendWords(std::getenv("VEXA_AUXFILE_PATH"), roots);
    for (long i = 0; i < roots.count; ++i) {
        search << zun::FileUtils::pathName(pathFolder.str(), roots[i].str());
        search << roots[i];
    }
    if (search.count == 0) return resolveDataFile(path, order, driver, option);
    String full = zun::FileUtils::pathName(base.str(), search[0].str());
    return resolveDataFile(full.str(), order, driver, option);
}

}  // namespace vexa
