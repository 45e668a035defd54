// The dictionary reader's line and column rules, and the messages of the
// element factory.
#include "TreeFixture.h"
#include "dict/Dictionary.h"
#include "struct/Error.h"

using treetest::errorOf;
using treetest::text;
using vexa::Dictionary;
using vexa::File;
using vexa::StructElem;
using zun::ObjAppendList;
using zun::String;

namespace {

class Reader : public treetest::TreeTest {
protected:
    std::unique_ptr<File> file;

    // The error of reading a dictionary of one field line, or "" with the
    // type text of the element it made.
    std::string line(const std::string& fieldLine) {
        dict("one", "one|||\n" + fieldLine + "\n");
        std::string error = errorOf([&] { file = open("one", std::string(16, '\0')); });
        if (!error.empty()) return error;
        error = errorOf([&] { file->getRoot().numElems(); });
        std::string suffix = " in dictionary '" + dictPath("one") + "'";
        if (!error.empty()) {
            if (error.size() > suffix.size() && error.compare(error.size() - suffix.size(), suffix.size(), suffix) == 0)
                return error.substr(0, error.size() - suffix.size());
            return error;
        }
        return "made " + text(file->getRoot()[0].getTypeStr(0));
    }

    // The columns that extractColumns finds in text, slots 3 to 5 marked.
    std::string columns(const char* lineText, int slots = 6) {
        dict("cols", "cols|||\n");
        Dictionary d(dictPath("cols").c_str());
        std::strcpy(d.line, lineText);
        ObjAppendList<String> cols;
        for (int i = 0; i < slots; ++i) cols << String(i >= 3 ? "%" : "");
        int n = d.extractColumns(cols);
        std::string out = std::to_string(n) + ":";
        for (long i = 0; i < cols.count; ++i) out += cols[i].isNull() ? "~" : "[" + text(cols[i]) + "]";
        return out;
    }
};

}  // namespace

TEST_F(Reader, ColumnsAreCutTrimmedAndStarred) {
    EXPECT_EQ(columns("a|UChar||"), "3:[a][UChar][]~~~");
    EXPECT_EQ(columns("a|UChar|||"), "4:[a][UChar][][]~~");
    EXPECT_EQ(columns("   a \t| b |*unit|*9|1|x|extra"), "6:[a][b][][][1][x]");
    EXPECT_EQ(columns("a|b|   |"), "3:[a][b][ ]~~~");
    EXPECT_EQ(columns(""), "0:~~~~~~");
    EXPECT_EQ(columns("   "), "0:~~~~~~");
    EXPECT_EQ(columns("\tx|y"), "2:[x][y]~~~~");
}

TEST_F(Reader, PercentQuotesOnlyInMarkedSlots) {
    EXPECT_EQ(columns("n|t|%u|%a|b%|%%|%abc"), "6:[n][t][%u][a|b][][abc]");
    EXPECT_EQ(columns("n|t|u|%%8%||%%4"), "6:[n][t][u][%8][][%4]");
    EXPECT_EQ(columns("n|t|u|s|d|%8"), "6:[n][t][u][s][d][8]");
}

TEST_F(Reader, FieldNamesAndPaths) {
    EXPECT_TRUE(Dictionary::fieldNameValid(String("abc_9#x~")));
    EXPECT_TRUE(Dictionary::fieldNameValid(String("")));
    EXPECT_TRUE(Dictionary::fieldNameValid(String("a-b")));
    for (const char* bad : {"-a", "a.b", "a b", "a\tb", "a,b", "a*", "a?", "a\"", "a'", "a<", "a>"})
        EXPECT_FALSE(Dictionary::fieldNameValid(String(bad))) << bad;
    String head;
    EXPECT_EQ(Dictionary::getStructField("a.b.c", head), 2);
    EXPECT_EQ(text(head), "a");
    EXPECT_EQ(Dictionary::getStructField(".a.b", head), 4);
    EXPECT_EQ(text(head), ".a.b");
    EXPECT_EQ(Dictionary::getStructField("abc", head), 3);
    EXPECT_EQ(text(head), "abc");
    EXPECT_EQ(Dictionary::getStructField("a.", head), 2);
    EXPECT_EQ(text(head), "a");
}

TEST_F(Reader, CommentsBlanksAndTheLastLine) {
    dict("r",
         "#header|||\n"
         "# a comment\n"
         "\n"
         " \t \n"
         "  #x|UChar|||\n"
         "a|UChar|||\n"
         "b|UChar|||");
    file = open("r", "xyz");
    ASSERT_EQ(file->getRoot().numElems(), 2);
    EXPECT_EQ(text(file->getRoot()[0].elemName), "#x");
    EXPECT_EQ(text(file->getRoot()[1].elemName), "a");
    EXPECT_EQ(text(file->getRoot().recordType), "#header");
}

TEST_F(Reader, LineRules) {
    EXPECT_EQ(line("a|UChar"), "Missing Columns");
    EXPECT_EQ(line("a|UChar||"), "Missing Columns");
    EXPECT_EQ(line("a|UChar|||"), "made UChar");
    EXPECT_EQ(line("~a|UChar"), "unsupported virtual field \"a\"");
    EXPECT_EQ(line("~a|Bogus||1"), "unknown virtual field type \"Bogus\"");
    EXPECT_EQ(line(" ~x|UChar|||"), "made UChar");
    EXPECT_EQ(line("a.b|UChar|||"), "invalid field name \"a.b\"");
    EXPECT_EQ(line("-a|UChar|||"), "invalid field name \"-a\"");
    EXPECT_EQ(line("~a b|UChar||1"), "invalid field name \"a b\"");
    EXPECT_EQ(line("a|UChar|||1"), "made UChar");
    EXPECT_EQ(line("a|UChar|||1+0"), "unsupported array field \"a\"");
    EXPECT_EQ(line("a|UChar|||   "), "unsupported array field \"a\"");
    EXPECT_EQ(line("a|UChar|||4"), "unsupported array field \"a\"");
    EXPECT_EQ(line("~a|UChar||1|3"), "unsupported array field \"a\"");
    EXPECT_EQ(line(std::string("a|UChar|") + std::string(2100, 'u') + "||"), "line longer than 2047 characters");
    dict("long", std::string(2100, 'h') + "|||\n");
    EXPECT_EQ(errorOf([&] { open("long", ""); }),
              "line longer than 2047 characters in dictionary '" + dictPath("long") + "'");
}

TEST_F(Reader, FactoryMessages) {
    EXPECT_EQ(line("a|UChar||2|"), "invalid size for Char field '2'");
    EXPECT_EQ(line("a|SChar||1|"), "made SChar");
    EXPECT_EQ(line("a|AChar||0|"), "made AChar");
    EXPECT_EQ(line("a|XChar|||"), "unknown field type \"XChar\"");
    EXPECT_EQ(line("a|SLong||3|"), "made SLong");
    EXPECT_EQ(line("a|SLong||8|"), "invalid size for Long field '8'");
    EXPECT_EQ(line("a|ULLong||4|"), "invalid size for LLong field '4'");
    EXPECT_EQ(line("a|ULLong||5|"), "made ULLong");
    EXPECT_EQ(line("a|UShort||3|"), "invalid size for Short field '3'");
    EXPECT_EQ(line("a|XShort|||"), "made SShort");
    EXPECT_EQ(line("a|Float||8|"), "invalid size for Float field '8'");
    EXPECT_EQ(line("a|Double||4|"), "invalid size for Double field '4'");
    EXPECT_EQ(line("a|DateTime||4|"), "invalid size for DateTime field '4'");
    EXPECT_EQ(line("a|Date||1|"), "invalid size for Date field '1'");
    EXPECT_EQ(line("a|Date||4|"), "made Date");
    EXPECT_EQ(line("a|aUShort|||"), "invalid size for Ascii numeric field ''");
    EXPECT_EQ(line("a|aUShort||0|"), "invalid size for Ascii numeric field '0'");
    EXPECT_EQ(line("a|aBogus||2|"), "unknown field type \"aBogus\"");
    EXPECT_EQ(line("a|aXLLong||6|"), "made aSLLong");
    EXPECT_EQ(line("a|aDateTime|1970|20|"), "made aDateTime");
    EXPECT_EQ(line("a|String||0|"), "made String");
    EXPECT_EQ(line("a|String|||"), "invalid size for String field ''");
    EXPECT_EQ(line("a|String||-3|"), "a invalid negative size '-3'");
    EXPECT_EQ(line("a|UShort||n*2|"), "made UShort");
    EXPECT_EQ(line("a|Bogus|||"), "unknown field type \"Bogus\"");
    EXPECT_EQ(line("a|float|||"), "unknown field type \"float\"");
    EXPECT_EQ(line("a|Spare||8|"), "unsupported field type \"Spare\"");
    EXPECT_EQ(line("a|?x|alts||"), "unsupported union field \"a\"");
    EXPECT_EQ(line("a|Null|||"), "made Null");
    EXPECT_EQ(line("a|@missing|||"), "invalid sub dictionary \"missing\"");
}

TEST_F(Reader, NaturalSizes) {
    dict("n", "n|||\na|SLong|||\nb|ULong||4|\nc|UChar|||\nd|Float||0|\ne|Date|||\nf|String||3|\ng|aUChar||2|\n");
    file = open("n", std::string(32, '\0'));
    const long sizes[] = {8, 4, 1, 0, 2, 3, 2};
    for (long i = 0; i < 7; ++i) EXPECT_EQ(file->getRoot()[i].getSize(), sizes[i]) << i;
}

TEST_F(Reader, UnitColumnGoesToTheLeaf) {
    dict("u", "u|||\na|UShort|m/s||\nb|Date|1990||\nc|aDateTime|1990|4|\n");
    file = open("u", std::string(8, '\0'));
    EXPECT_EQ(text(file->getRoot()[0].getUnit()), "m/s");
    EXPECT_EQ(text(file->getRoot()[1].getUnit()), "date");
    EXPECT_EQ(text(file->getRoot()[2].getUnit()), "date");
}

TEST_F(Reader, ElemTypeWords) {
    EXPECT_EQ(vexa::elemType("UShort"), vexa::TypeUShort);
    EXPECT_EQ(vexa::elemType("Relative Offset"), vexa::TypeRelativeOffset);
    EXPECT_EQ(vexa::elemType("aDateTime"), vexa::TypeADateTime);
    EXPECT_EQ(vexa::elemType("Record"), vexa::TypeRecord);
    EXPECT_EQ(vexa::elemType("Array"), vexa::TypeArray);
    EXPECT_EQ(vexa::elemType("ushort"), vexa::TypeNone);
    EXPECT_EQ(vexa::elemType(""), vexa::TypeNone);
    EXPECT_EQ(vexa::elemType(nullptr), vexa::TypeNone);
    EXPECT_STREQ(vexa::elemTypeName(vexa::TypeSpare), "Spare");
    EXPECT_STREQ(vexa::elemTypeName(99), "");
}
