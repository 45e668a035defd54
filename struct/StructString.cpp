#include "struct/StructString.h"

#include <limits>
#include <new>

#include "struct/Error.h"
#include "struct/StructBase.h"

using zun::String;

namespace vexa {

String& readStringBytes(StructElem& e, String& target, int append) {
    if (!append) target = "";
    long n = e.getSize();
    if (n <= 0) return target;
    e.checkExtent(n);
    // A text holds at most INT_MAX bytes.
    if (n > std::numeric_limits<int>::max() - 1 - target.length)
        throw ErrorReadInvalid(e.getPathName().str(), e.getTypeStr(0).str(), "String");
    char* place;
    try {
        place = target.append(nullptr, static_cast<int>(n));
    } catch (std::bad_alloc&) {
        e.readFailed(*e.getBase()->input);
    }
    e.readCPtr(place, n);
    return target;
}

std::stringstream& readStrBytes(StructElem& e, std::stringstream& out, int append) {
    if (!append) out.flush();
    char* data = e.readData();
    out << data;
    delete[] data;
    return out;
}

// ---------------------------------------------------------------------------

String StructString::getTypeStr(int) { return String("String"); }

String& StructString::readString(String& target, int append) {
    return readStringBytes(*this, target, append);
}

std::stringstream& StructString::readStr(std::stringstream& out, int append) {
    return readStrBytes(*this, out, append);
}

String StructString::readAll(bool /*compress*/) {
    String text("");
    readString(text, 1);
    text.escape(true);
    text.quote('"');
    return text;
}

// ---------------------------------------------------------------------------

String StructVarString::getTypeStr(int) { return String("String"); }

String& StructVarString::readString(String& target, int append) {
    return readStringBytes(*this, target, append);
}

std::stringstream& StructVarString::readStr(std::stringstream& out, int append) {
    return readStrBytes(*this, out, append);
}

String StructVarString::readAll(bool /*compress*/) {
    String text("\"");
    readString(text, 1);
    text.swap("\n", "\\n");
    text.swap("\t", "\\t");
    text += '"';
    return text;
}

// ---------------------------------------------------------------------------

String StructAChar::getTypeStr(int) { return String("AChar"); }

String& StructAChar::readString(String& target, int append) {
    if (!append) target = "";
    char c = readChar();
    if (c) target += c;
    return target;
}

std::stringstream& StructAChar::readStr(std::stringstream& out, int append) {
    if (!append) out.flush();
    out.put(readChar());
    return out;
}

String StructAChar::readAll(bool /*compress*/) {
    String text("");
    readString(text, 0);
    if (text.isEmpty()) return String("'\\0'");
    text.escape(true);
    text.quote('\'');
    return text;
}

// ---------------------------------------------------------------------------

String StructNull::getTypeStr(int) { return String("Null"); }

String StructNull::readAll(bool /*compress*/) { return String("(null)"); }

String& StructNull::readString(String& target, int append) {
    if (!append) target = "";
    return target;
}

std::stringstream& StructNull::readStr(std::stringstream& out, int append) {
    if (!append) out.flush();
    return out;
}

}  // namespace vexa
