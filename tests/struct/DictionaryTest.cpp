// The dictionary reader's column rules and the element factory; the messages
// that skelvor shows for broken dictionaries are checked end to end.
#include "TreeFixture.h"
#include "dict/Dictionary.h"
#include "struct/Error.h"

using treetest::errorOf;
using treetest::text;
using vexa::Dictionary;
using zun::String;

namespace {

class Reader : public treetest::TreeTest {
protected:
    // The error of reading a dictionary of one field line, or "made " and
    // the type text of the element it made.
    std::string line(const std::string& fieldLine) {
        dict("one", "one|||\n" + fieldLine + "\n");
        file = open("one", std::string(16, '\0'));
        std::string type;
        std::string error = errorOf([&] { type = text(file->getRoot()[0].getTypeStr(0)); });
        std::string suffix = " in dictionary '" + dictPath("one") + "'";
        if (error.size() > suffix.size() && error.compare(error.size() - suffix.size(), suffix.size(), suffix) == 0)
            return error.substr(0, error.size() - suffix.size());
        return error.empty() ? "made " + type : error;
    }

    // The columns that extractColumns finds in text, slots 3 to 5 marked.
    std::string columns(const char* lineText) {
        dict("cols", "cols|||\n");
        Dictionary d(dictPath("cols").c_str());
        std::strcpy(d.line, lineText);
        String cols[6];
        std::string out = std::to_string(d.extractColumns(cols, 6, 1u << 3 | 1u << 4 | 1u << 5)) + ":";
        for (const String& col : cols) out += col.isNull() ? "~" : "[" + text(col) + "]";
        return out;
    }
};

}  // namespace

TEST_F(Reader, ColumnsAreCutTrimmedStarredAndQuoted) {
    const char* rows[][2] = {
        {"a|UChar||", "3:[a][UChar][]~~~"}, {"a|UChar|||", "4:[a][UChar][][]~~"},
        {"   a \t| b |*unit|*9|1|x|extra", "6:[a][b][][][1][x]"}, {"a|b|   |", "3:[a][b][ ]~~~"},
        {"", "0:~~~~~~"}, {"   ", "0:~~~~~~"}, {"\tx|y", "2:[x][y]~~~~"},
        // "%" quotes only in the marked slots
        {"n|t|%u|%a|b%|%%|%abc", "6:[n][t][%u][a|b][][abc]"}, {"n|t|u|%%8%||%%4", "6:[n][t][u][%8][][%4]"},
        {"n|t|u|s|d|%8", "6:[n][t][u][s][d][8]"},
    };
    for (const auto& r : rows) EXPECT_EQ(columns(r[0]), r[1]) << r[0];
}

TEST_F(Reader, FieldNamesAndPaths) {
    for (const char* good : {"abc_9#x~", "", "a-b"}) EXPECT_TRUE(Dictionary::fieldNameValid(String(good))) << good;
    for (const char* bad : {"-a", "a.b", "a b", "a\tb", "a,b", "a*", "a?", "a\"", "a'", "a<", "a>"})
        EXPECT_FALSE(Dictionary::fieldNameValid(String(bad))) << bad;
    const struct {
        const char* path;
        int result;
        const char* head;
    } rows[] = {{"a.b.c", 2, "a"}, {".a.b", 4, ".a.b"}, {"abc", 3, "abc"}, {"a.", 2, "a"}};
    for (const auto& r : rows) {
        String head;
        EXPECT_EQ(Dictionary::getStructField(r.path, head), r.result) << r.path;
        EXPECT_EQ(text(head), r.head) << r.path;
    }
}

TEST_F(Reader, LinesAndTheFactory) {
    const char* rows[][2] = {
        {"a|UChar|||", "made UChar"}, {" ~x|UChar|||", "made UChar"}, {"a|UChar|||1", "made UChar"},
        {"~a|UChar", "made UChar"}, {"~a|SelectMap||x", "SelectMap array reference list is invalid \"\""},
        {"~a|SelectMap|r|x", "made (*SLong)"}, {"~a|SelectMap|r, s,t|x", "made (*(3*SLong))"},
        {"~a|SelectMap|r,,s|x", "made (*SLong)"}, {"~a|InverseMap|r|x", "made (*SLong)"},
        {"~a|Auxiliary||x", "unsupported virtual field \"a\""}, {"~a|Bogus||1", "unknown virtual field type \"Bogus\""},
        {"~a b|UChar||1", "invalid field name \"a b\""},
        {"a|UChar|||1+0", "made (1*UChar)"}, {"a|UChar|||   ", "dimension reference \" \" of structure \"a\" returns nan"},
        {"a|UChar|||4", "made (4*UChar)"}, {"~a|UChar||1|3", "made (3*UChar)"}, {"~a|aUChar||1", "unknown virtual field type \"aUChar\""},
        {"a|UChar|||-4", "array \"a\" invalid negative array dimension \"-4\""},
        {"a|UChar|||2,-1", "array \"a\" invalid negative array dimension \"-1\""},
        {"a|UShort||,6|3,1+1", "made (3*(2*UShort))"}, {"a|?Char|alts||", "invalid sub dictionary \"Char\""},
        {"a|SChar||1|", "made SChar"}, {"a|AChar||0|", "made AChar"}, {"a|ULLong||5|", "made ULLong"},
        {"a|SLong||8|", "invalid size for Long field '8'"}, {"a|UShort||3|", "invalid size for Short field '3'"},
        {"a|Date||4|", "made Date"}, {"a|aXLLong||6|", "made aSLLong"}, {"a|aDateTime|1970|20|", "made aDateTime"},
        {"a|String||0|", "made String"}, {"a|String|||", "invalid size for String field ''"},
        {"a|String||-3|", "a invalid negative size '-3'"}, {"a|UShort||n*2|", "made UShort"},
        {"a|float|||", "unknown field type \"float\""}, {"a|Spare||8|", "made (8*UChar)"},
        {"a|?x|alts||", "invalid sub dictionary \"x\""}, {"a|Null|||", "made Null"},
    };
    for (const auto& r : rows) EXPECT_EQ(line(r[0]), r[1]) << r[0];
}

TEST_F(Reader, NaturalSizes) {
    dict("n", "n|||\na|SLong|||\nb|ULong||4|\nc|UChar|||\nd|Float||0|\ne|Date|||\nf|String||3|\ng|aUChar||2|\n");
    file = open("n", std::string(32, '\0'));
    const long sizes[] = {8, 4, 1, 0, 2, 3, 2};
    for (long i = 0; i < 7; ++i) EXPECT_EQ(file->getRoot()[i].getSize(), sizes[i]) << i;
}

TEST_F(Reader, ElemTypeWords) {
    const struct {
        const char* word;
        int type;
    } rows[] = {{"UShort", vexa::TypeUShort}, {"Relative Offset", vexa::TypeRelativeOffset},
                {"aDateTime", vexa::TypeADateTime}, {"Record", vexa::TypeRecord}, {"Array", vexa::TypeArray},
                {"ushort", vexa::TypeNone}, {"", vexa::TypeNone}, {nullptr, vexa::TypeNone}};
    for (const auto& r : rows) EXPECT_EQ(vexa::elemType(r.word), r.type) << (r.word ? r.word : "(null)");
    EXPECT_STREQ(vexa::elemTypeName(vexa::TypeSpare), "Spare");
    EXPECT_STREQ(vexa::elemTypeName(99), "");
}
