#include "struct/Error.h"

using zun::String;

namespace vexa {

String Error::pathText(const char* path) {
    return String(path && *path ? path : "root");
}

namespace {

String bracket(const char* text) {
    String s(text ? text : "");
    s.quote('[');
    return s;
}

}  // namespace

ErrorReadInvalid::ErrorReadInvalid(const char* path, const char* type, const char* requested) {
    message = String("field ") + bracket(pathText(path).str()) + " (" + (type ? type : "") + ") cannot be read as '" +
              (requested ? requested : "") + "'";
}

ErrorFieldNameInvalid::ErrorFieldNameInvalid(const char* path, const char* field) {
    message = String("field ") + bracket(field) + " in structure " + bracket(pathText(path).str());
}

ErrorFieldIndexInvalid::ErrorFieldIndexInvalid(const char* path, long index) {
    message = "index (";
    message << index;
    message += String(") in structure ") + bracket(pathText(path).str());
}

ErrorReferenceInvalid::ErrorReferenceInvalid(const char* path, const char* reference, const char* reason) {
    message = String("reference ") + bracket(reference) + " in structure " + bracket(pathText(path).str());
    if (reason) message += String(" (") + reason + ")";
}

ErrorReferenceRecursion::ErrorReferenceRecursion(const char* path, const char* reason) {
    message = String("reference recursion from structure ") + bracket(pathText(path).str());
    if (reason) message += String(" (") + reason + ")";
}

ErrorArrayIndexInvalid::ErrorArrayIndexInvalid(const char* path, const char* index)
    : ErrorArray("") {
    message = String("array ") + bracket(pathText(path).str()) + " index " + bracket(index) + " is invalid";
}

ErrorArrayIndexOverflow::ErrorArrayIndexOverflow(const char* path) : ErrorArray("") {
    message = String("array ") + bracket(pathText(path).str());
}

ErrorArrayIndexUnderflow::ErrorArrayIndexUnderflow(const char* path) : ErrorArray("") {
    message = String("array ") + bracket(pathText(path).str());
}

ErrorAliasInvalid::ErrorAliasInvalid(const char* path, const char* reason) {
    message = pathText(path) + " (" + (reason ? reason : "") + ")";
}

ErrorDictionary::ErrorDictionary(const char* dictionary, const char* text) {
    message = String(text ? text : "") + " in dictionary '" + (dictionary ? dictionary : "") + "'";
}

}  // namespace vexa
