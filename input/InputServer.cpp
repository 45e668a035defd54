#include "input/InputServer.h"

#include <climits>

#include "input/FileUtils.h"
#include "input/InputBStream.h"
#include "input/InputBasicFile.h"
#include "input/InputMultiFile.h"

namespace zun {

InputServer* InputServer::input_srv = nullptr;

InputServer& InputServer::getInstance() {
    static InputServer instance;
    input_srv = &instance;
    return instance;
}

InputServer::InputServer() : defaultDriver("buffer") {
    addDriver("multi", getFile<InputMultiFile>, "buffer:2");
    addDriver("basic", getFile<InputBasicFile>, nullptr);
    addDriver("fstream", getFile<InputFStream>, nullptr);
    addDriver("memory", getFile<InputBStream>, nullptr);
    addDriver("buffer", getFile<InputBStream>, "2");
    addDriver("bmulti", getBufferedMulti, "2");
}

void InputServer::addDriver(const char* name, Factory factory, const char* defaultOption) {
    drivers << new String(name);
    options << new String(defaultOption);
    factories << factory;
}

long InputServer::findDriver(const char* name) const {
    for (long i = drivers.count - 1; i >= 0; --i)
        if (drivers[i] == name) return i;
    return -1;
}

void InputServer::setDriverOption(const char* option, const char* driver) {
    long i = findDriver(driver ? driver : defaultDriver.str());
    if (i >= 0 && options[i].text) options[i] = option;
}

bool InputServer::splitDriverPath(String& path, String& driver, String& option) {
    int at = path.find("::", 1);
    if (at < 1) return false;
    String named = path.substr(at + 2);
    path = String(path.text, at);
    int colon = named.find(':');
    driver = colon >= 0 ? String(named.text, colon) : named;
    option = colon >= 0 ? named.substr(colon + 1) : String(nullptr);
    return true;
}

InputStream* InputServer::getFile(const char* pathText, InputStream::ByteOrder order, const char* driverText,
                                  const char* optionText) const {
    String path(pathText);
    String driver(driverText);
    String option(optionText);
    bool driverGiven = driver.text && driver.length > 0;
    if (!driverGiven && path.text) {
        // "file::driver:option" names the driver inside the path
        if (splitDriverPath(path, driver, option)) driverGiven = driver.length > 0;
    }
    if (option.text && option.length == 0) option.setNull();
    if (!driverGiven) {
        driver = defaultDriver;
        option.setNull();
    }
    if (!path.text || FileUtils::checkFile(path.text) || driver.match("*multi*")) {
        long i = findDriver(driver.text);
        if (i < 0) return nullptr;
        if (!option.text) option = options[i];
        else if (!options[i].text) return nullptr;
        return factories[i](path.text, order, option.text);
    }
    // not a file: the set of files that the path names, by the first driver
    if (!driverGiven) return factories[0](path.text, order, nullptr);
    String multiOption(driver);
    if (option.text) {
        multiOption += ':';
        multiOption += option;
    }
    return factories[0](path.text, order, multiOption.text);
}

template <>
InputStream* InputServer::getFile<InputBasicFile>(const char* path, InputStream::ByteOrder order, const char* option) {
    if (option) return nullptr;
    return new InputBasicFile(path, order);
}

template <>
InputStream* InputServer::getFile<InputFStream>(const char* path, InputStream::ByteOrder order, const char* option) {
    if (option || !path) return nullptr;
    return new InputFStream(path, order);
}

namespace {

// The buffer size of an option in kilobytes; false for a non-integer.
bool bufferBytes(const char* option, unsigned long& bytes) {
    bytes = 0;
    if (!option) return true;
    String kb(option);
    if (!kb.isInteger()) return false;
    long n = kb.toLong();
    // the sign is dropped; the count of bytes must fit a long
    const long most = LONG_MAX / 1024;
    if (n < -most || n > most) return false;
    if (n < 0) n = -n;
    bytes = static_cast<unsigned long>(n) * 1024;
    return true;
}

}  // namespace

template <>
InputStream* InputServer::getFile<InputBStream>(const char* path, InputStream::ByteOrder order, const char* option) {
    unsigned long bytes;
    if (!bufferBytes(option, bytes)) return nullptr;
    return new InputBStream(path, order, bytes, false);
}

InputStream* InputServer::getBufferedMulti(const char* path, InputStream::ByteOrder order, const char* option) {
    unsigned long bytes;
    if (!bufferBytes(option, bytes)) return nullptr;
    return new InputBStream(path, order, bytes, true);
}

template <>
InputStream* InputServer::getFile<InputMultiFile>(const char* path, InputStream::ByteOrder order, const char* option) {
    String driver(option);
    String partOption(nullptr);
    int colon = driver.find(':');
    if (colon >= 0) {
        partOption = driver.substr(colon + 1);
        driver = String(driver.text, colon);
    }
    return new InputMultiFile(path, order, driver.text, partOption.text);
}

}  // namespace zun
