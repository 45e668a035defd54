// vexa::Dictionary: reads one data dictionary file. It finds the file, takes
// its header line, and hands out one element a line.
//
// Format: the first line is the header "name|description|size|coding
// standard". Then one line a field, "name|type|unit|size|dims|offset"; lines
// beginning with "#" are comments, blank lines are skipped, and a line
// beginning with "~" is a virtual field. Columns are cut at "|" and trimmed;
// a column beginning with "*" is empty; in the columns that allow it a
// leading "%" quotes up to "%|" or the end of the line.
#pragma once

#include "base/ObjAppendList.h"
#include "base/String.h"

namespace zun {
class InputStream;
}

namespace vexa {

class StructElem;

// The columns of one field line of a dictionary, as the element factory takes them.
struct FieldLine {
    zun::String name;
    zun::String type;
    zun::String unit;
    zun::String size;
    zun::String dims;     // array dimensions; empty or "1" for a scalar
    zun::String offset;   // where the field stands; empty: behind its predecessor

    // An array: a dims column that is neither empty nor the integer 1.
    bool isArray() const { return !dims.isEmpty() && !(dims.isInteger() && dims.toLong() == 1); }
};

class Dictionary {
public:
    static const int lineSize = 2048;

    zun::String name;             // header column 0, or the file's path when empty
    zun::String description;      // header column 1
    zun::String codingStandard;   // header column 3
    zun::String recordSize;       // header column 2
    zun::InputStream* stream = nullptr;  // the open file; owned
    char line[lineSize];          // the current line

    // Resolves name for elem (parameters behind "&", VEXA_DICTIONARY_PATH,
    // the folder of elem's dictionary) and opens the file.
    Dictionary(StructElem& elem, const char* name);
    // Opens a path as it stands (with the folder and ".dd" rules of init).
    explicit Dictionary(const char* path);
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;
    ~Dictionary();

    // Finds the file, opens it and takes the header.
    void init(const char* path);
    // Reads lines until the next element is made; null at the end of the
    // file. An offset marker made for the element's line goes to offsetElem
    // (else null) and stands between prev and the element.
    StructElem* processNext(StructElem* prev, StructElem* parent, StructElem*& offsetElem);
    // Splits the line into at most `slots` columns, trimmed; bit i of
    // `quotable` lets column i be quoted as "%...%|". Columns past the
    // last found are null. Answers the count found.
    int extractColumns(zun::String* columns, int slots, unsigned quotable) const;
    // The path of the open file.
    zun::String path() const;

    // False when name holds one of * ? blank tab , " ' < > . or begins with "-".
    static bool fieldNameValid(const zun::String& name);
    // Throws ErrorDictionary "invalid field name "x"" when the name isn't valid.
    void checkFieldName(const zun::String& name) const;
    // Puts in head the path up to its first "." (when that stands at index 1
    // or later) and returns the index behind that "."; else head is the whole
    // path and the result its length.
    static int getStructField(const char* path, zun::String& head);

private:
    // Reads the next line into `line`; false at the end of the file.
    bool readLine();
    // Whether the line just read held a zero byte, where its text ends.
    bool lineHoldsZero() const;
    [[noreturn]] void throwLineTooLong() const;
    StructElem* makeElement(StructElem* prev, StructElem* parent, StructElem*& offsetElem);
};

}  // namespace vexa
