#include "dict/Dictionary.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "base/Exception.h"
#include "input/FileUtils.h"
#include "input/InputStream.h"
#include "struct/Error.h"
#include "struct/StructBase.h"
#include "struct/StructElem.h"
#include "struct/StructOffset.h"

using zun::ObjAppendList;
using zun::String;
using zun::quoted;

namespace vexa {

namespace {

String dictionaryRoot() {
    const char* root = std::getenv("VEXA_DICTIONARY_PATH");
    return String(root ? root : "");
}

bool statPath(const String& path, bool& isDirectory) {
    struct stat st;
    if (::stat(path.str(), &st) != 0) return false;
    isDirectory = S_ISDIR(st.st_mode);
    return true;
}

// A dictionary is read from a regular file: a named pipe or a device would
// block or never end. A path that names nothing is left to the check that
// reports a missing file.
void refuseNonFile(const String& file) {
    struct stat st;
    bool other = ::stat(file.str(), &st) == 0 && !S_ISREG(st.st_mode);
    errno = 0;
    if (!other) return;
    String text("dictionary ");
    text += quoted(file);
    text += " is ";
    text += zun::FileUtils::kindName(file.str());
    text += ", not a regular file";
    throw zun::StdError(text.str(), 22);
}

}  // namespace

Dictionary::Dictionary(StructElem& elem, const char* dictionaryName) {
    line[0] = 0;
    String given(dictionaryName ? dictionaryName : "");
    int amp = given.find('&');
    if (amp >= 0) {
        String parameters = given.substr(amp + 1);
        given = amp > 0 ? given.substr(0, amp - 1) : String("");
        for (int i = 0;; ++i) {
            String piece = parameters.word(i, '&');
            if (piece.isNull()) break;
            if (piece.isEmpty()) continue;
            String parameter = piece.word(0, '=');
            int eq = piece.find('=');
            String value = eq >= 0 ? piece.substr(eq + 1) : String(nullptr);
            StructBase::addParameter(parameter.str(), value.isNull() ? nullptr : value.str(),
                                     elem.getBase()->parameters);
        }
    }
    String resolved;
    if (given.isEmpty()) {
        resolved = dictionaryRoot() + "/index";
    } else if (given[0] == '/') {
        resolved = dictionaryRoot();
        if (!resolved.isEmpty()) resolved += "/";
        resolved += given;
    } else if (given[0] == '+') {
        String parentPath = elem.parent ? String(elem.parent->getDictionaryPath()) : String("");
        int dot = parentPath.find('.', parentPath.length, true);
        resolved = dot >= 0 ? parentPath.substr(0, dot) : String("");
        resolved += "/";
        resolved += given;
        resolved += '\x01';
    } else {
        const String& own = elem.getDictionaryPath();
        int slash = own.find('/', own.length, true);
        resolved = slash >= 0 ? own.substr(0, slash) + given : given;
    }
    init(resolved.str());
}

Dictionary::Dictionary(const char* path) {
    line[0] = 0;
    init(path);
}

Dictionary::~Dictionary() {
    delete stream;
}

String Dictionary::path() const {
    return stream ? String(stream->name()) : String(nullptr);
}

void Dictionary::init(const char* given) {
    String file = given ? String(given) : dictionaryRoot() + "/";
    bool isDirectory = false;
    if (statPath(file, isDirectory)) {
        if (isDirectory) file += "/index.dd";
    } else if (statPath(file + ".dd", isDirectory)) {
        file += ".dd";
    }
    refuseNonFile(file);
    zun::FileUtils::pathNameCheck(file.str(), nullptr);
    stream = new zun::InputFStream(file.str());
    // Until the header is in, a failure fails the constructor: nobody else
    // would close the file.
    std::unique_ptr<zun::InputStream> closeOnFailure(stream);
    // The header counts even as the only line, without a newline.
    readLine();
    // Data that is no dictionary shows itself at once: a zero byte in the
    // header, which no text has. (In a later line it ends the line.)
    if (lineHoldsZero()) throw ErrorDictionary(path().str(), "header line with a zero byte (binary data)");
    closeOnFailure.release();
    String columns[4];
    extractColumns(columns, 4, 1u << 1 | 1u << 2);
    name = std::move(columns[0]);
    description = std::move(columns[1]);
    recordSize = std::move(columns[2]);
    codingStandard = std::move(columns[3]);
    if (name.isEmpty()) name = path();
}

bool Dictionary::readLine() {
    stream->getline(line, lineSize, '\n');
    if (stream->eof()) return false;
    if (stream->fail()) throwLineTooLong();
    return true;
}

bool Dictionary::lineHoldsZero() const {
    // what the last getline took, less the newline that it took if it found one
    long taken = static_cast<long>(static_cast<zun::InputStreamStl*>(stream)->stream()->gcount());
    bool newline = !stream->eof() && !stream->fail();
    return static_cast<long>(std::strlen(line)) < taken - (newline ? 1 : 0);
}

void Dictionary::throwLineTooLong() const {
    String text("line longer than ");
    text << lineSize - 1;
    text += " characters";
    throw ErrorDictionary(path().str(), text.str());
}

int Dictionary::extractColumns(String* columns, int slots, unsigned quotable) const {
    const char* p = line;
    while (*p == ' ') ++p;
    int found = 0;
    if (*p) {
        for (int i = 0; i < slots; ++i) {
            const char* start = p;
            const char* end;
            const char* next;
            if ((quotable >> i & 1u) && *p == '%') {
                start = p + 1;
                const char* close = std::strstr(start, "%|");
                end = close ? close : start + std::strlen(start);
                next = close ? close + 2 : end;
            } else {
                const char* bar = std::strchr(p, '|');
                end = bar ? bar : p + std::strlen(p);
                next = bar ? bar + 1 : end;
            }
            // Trimmed of blanks and tabs as String::trim does (a column of
            // nothing else keeps its first); one that begins with "*" is empty.
            auto blank = [](char c) { return c == ' ' || c == '\t'; };
            const char* first = start;
            while (first < end && blank(*first)) ++first;
            if (first == end) {
                if (end > start) end = start + 1;
            } else {
                start = first;
                while (end > start + 1 && blank(end[-1])) --end;
            }
            if (start < end && *start == '*') end = start;
            columns[i] = String(start, static_cast<int>(end - start));
            ++found;
            if (!*next) break;
            p = next;
        }
    }
    for (int i = found; i < slots; ++i) columns[i].setNull();
    return found;
}

StructElem* Dictionary::processNext(StructElem* prev, StructElem* parent, StructElem*& offsetElem) {
    offsetElem = nullptr;
    for (;;) {
        if (!readLine()) return nullptr;
        if (line[0] == '#') continue;
        const char* p = line;
        while (*p == ' ' || *p == '\t') ++p;
        if (!*p) continue;
        return makeElement(prev, parent, offsetElem);
    }
}

StructElem* Dictionary::makeElement(StructElem* prev, StructElem* parent, StructElem*& offsetElem) {
    FieldLine field;
    String* columns[] = {&field.name, &field.type, &field.unit, &field.size, &field.dims, &field.offset};
    String read[6];
    // size, dims and offset may be quoted with "%...%|"
    int count = extractColumns(read, 6, 1u << 3 | 1u << 4 | 1u << 5);
    for (int i = 0; i < 6; ++i) *columns[i] = std::move(read[i]);
    std::unique_ptr<StructElem> marker;
    try {
        if (line[0] == '~') {
            field.name = field.name.substr(1);
            field.type = "~" + field.type;
            checkFieldName(field.name);
            return parent->createChild(prev, field);
        }
        if (count < 4) throw ErrorDictionary(path().str(), "Missing Columns");
        const String& fieldName = field.name;
        const String& place = field.offset;
        if (!place.isEmpty()) {
            if (place[0] == '%') {
                String alignment = place.substr(1);
                if (!alignment.isInteger() || alignment[0] == '-' || alignment.toLong() < 0)
                    throw String("Field ") + quoted(fieldName) + " invalid negative alignment offset";
                marker.reset(new StructOffsetAlign(prev, parent, fieldName.str(), alignment.toLong()));
            } else if (!place.isInteger()) {
                marker.reset(new StructOffsetRef(prev, parent, fieldName.str(), place.str()));
            } else if (place.toLong() < 0 || place[0] == '+') {
                marker.reset(new StructOffsetRelative(prev, parent, fieldName.str(), place.toLong()));
            } else {
                marker.reset(new StructOffsetFixed(prev, parent, fieldName.str(), place.toLong()));
            }
            prev = marker.get();
        }
        checkFieldName(fieldName);
        StructElem* e = parent->createChild(prev, field);
        offsetElem = marker.release();
        return e;
    } catch (String& text) {
        throw ErrorDictionary(path().str(), text.str());
    } catch (zun::StdError& e) {
        if (e.code() != 2) throw;
        String text = String("invalid sub dictionary ") + quoted(field.type.substr(1));
        ErrorDictionary error(path().str(), text.str());
        error.chain(e);
        throw error;
    }
}

bool Dictionary::fieldNameValid(const String& fieldName) {
    if (fieldName[0] == '-') return false;
    for (int i = 0; i < fieldName.length; ++i)
        if (fieldName.text[i] && std::strchr("*? \t,\"'<>.", fieldName.text[i])) return false;
    return true;
}

void Dictionary::checkFieldName(const String& fieldName) const {
    if (fieldNameValid(fieldName)) return;
    String text = String("invalid field name ") + quoted(fieldName);
    throw ErrorDictionary(path().str(), text.str());
}

int Dictionary::getStructField(const char* fieldPath, String& head) {
    if (!fieldPath) {
        head = "";
        return 0;
    }
    const char* dot = std::strchr(fieldPath, '.');
    if (dot && dot > fieldPath) {
        head = String(fieldPath, static_cast<int>(dot - fieldPath));
        return static_cast<int>(dot - fieldPath) + 1;
    }
    head = fieldPath;
    return static_cast<int>(std::strlen(fieldPath));
}

}  // namespace vexa
