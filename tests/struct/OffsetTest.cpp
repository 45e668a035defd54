// Offset markers: fixed, relative and aligned places of fields.
#include "TreeFixture.h"
#include "struct/StructRec.h"

using treetest::errorOf;
using treetest::text;
using vexa::File;
using vexa::StructElem;

namespace {

class Offsets : public treetest::TreeTest {
protected:
    std::unique_ptr<File> file;
    StructElem& field(const char* path) { return *file->getRoot().getChild(path); }
};

}  // namespace

TEST_F(Offsets, AlignmentCountsFromTheParent) {
    dict("sub", "sub|||\na|String||3|\nb|UShort||||%%4\n");
    dict("r", "r|||\nlead|UChar|||\ns|@sub|||\nafter|UChar|||\n");
    file = open("r", std::string("\x01" "abc" "\0" "\x00\x07" "\x09", 8));
    EXPECT_EQ(field("s.b").getOffset(), 4);
    EXPECT_EQ(field("s.b").getPos(), 5);
    EXPECT_EQ(text(field("s.b").readAll(true)), "7");
    EXPECT_EQ(field("s").getSize(), 6);
    EXPECT_EQ(field("after").getPos(), 7);
}

TEST_F(Offsets, AlignmentOfOneAndZeroMovesNothing) {
    dict("r", "r|||\na|UChar|||\nb|UChar||||%%1\nc|UChar||||%%0\n");
    file = open("r", "xyz");
    EXPECT_EQ(field("b").getPos(), 1);
    EXPECT_EQ(field("c").getPos(), 2);
    auto& record = static_cast<vexa::StructRec&>(file->getRoot());
    ASSERT_EQ(record.markers.count, 2);
    EXPECT_EQ(record.markers[0]->getSize(), 0);
    EXPECT_EQ(record.markers[1]->getSize(), 0);
    EXPECT_EQ(text(record.markers[0]->getTypeStr(0)), "Alignment Offset");
    EXPECT_EQ(record.markers[0]->getType(), vexa::TypeAlignmentOffset);
    EXPECT_EQ(text(record.markers[0]->getUnit()), "bytes");
}

TEST_F(Offsets, NegativeRelativeOffsetOverlaps) {
    dict("sub", "sub|||\na|ULong||4|\nb|UShort||||-2\n");
    dict("r", "r|||\ns|@sub|||\nafter|UChar|||\n");
    file = open("r", std::string("\x00\x00\x01\x02\x05", 5));
    EXPECT_EQ(field("s.b").getPos(), 2);
    EXPECT_EQ(text(field("s.b").readAll(true)), "258");
    EXPECT_EQ(field("s").getSize(), 4);
    EXPECT_EQ(field("after").getPos(), 4);
    EXPECT_EQ(text(field("after").readAll(true)), "5");
}

TEST_F(Offsets, PlusZeroIsRelativeAndZeroGoesBack) {
    dict("r", "r|||\na|UShort|||\nb|UChar||||+0\nc|UChar||||0\nd|UChar||||+3\n");
    file = open("r", "\x01\x02\x03\x04\x05\x06\x07");
    EXPECT_EQ(field("b").getPos(), 2);
    EXPECT_EQ(field("c").getPos(), 0);
    EXPECT_EQ(field("d").getPos(), 4);
    auto& record = static_cast<vexa::StructRec&>(file->getRoot());
    EXPECT_EQ(record.markers[0]->getType(), vexa::TypeRelativeOffset);
    EXPECT_EQ(text(record.markers[0]->getTypeStr(0)), "Relative Offset");
    EXPECT_EQ(record.markers[1]->getType(), vexa::TypeOffset);
    EXPECT_EQ(text(record.markers[1]->getTypeStr(0)), "Offset");
    EXPECT_EQ(record.markers[0]->getSize(), 0);
}

TEST_F(Offsets, FixedOffsetsGoBothWays) {
    dict("r", "r|||\na|UChar||||5\nb|UChar||||1\nc|UChar|||\n");
    file = open("r", treetest::raw("\x00\x11\x22\x33\x44\x55"));
    EXPECT_EQ(text(field("a").readAll(true)), "85");
    EXPECT_EQ(text(field("b").readAll(true)), "17");
    EXPECT_EQ(field("c").getPos(), 2);
    // the record ends behind its last field, wherever the others stood
    EXPECT_EQ(file->getRoot().getSize(), 3);
}

TEST_F(Offsets, QuotedPercentIsAFixedPlace) {
    dict("r", "r|||\na|UChar|||\nb|UChar||||%8\n");
    file = open("r", std::string(10, '\x01'));
    EXPECT_EQ(field("b").getPos(), 8);
}

TEST_F(Offsets, MarkersAreNotFields) {
    dict("r", "r|||\na|UChar|||\nb|UChar||||%%4\n");
    file = open("r", "abcdef");
    EXPECT_EQ(file->getRoot().numElems(), 2);
    EXPECT_EQ(field("b").getType(), vexa::TypeUChar);
    EXPECT_EQ(text(file->getRoot().readAll(true)), "[97,101]");
}

TEST_F(Offsets, BadAlignments) {
    for (const char* bad : {"%%x", "%%-1", "%%", "%%4x"}) {
        dict("r", std::string("r|||\na|UChar|||\nb|UChar||||") + bad + "\n");
        file = open("r", "ab");
        EXPECT_EQ(errorOf([&] { file->getRoot().numElems(); }),
                  "Field \"b\" invalid negative alignment offset in dictionary '" + dictPath("r") + "'")
            << bad;
    }
}

TEST_F(Offsets, MarkerBeforeAnInvalidNameIsNotLeft) {
    dict("r", "r|||\na|UChar|||\nb.c|UChar||||4\n");
    file = open("r", "ab");
    EXPECT_EQ(errorOf([&] { file->getRoot().numElems(); }),
              "invalid field name \"b.c\" in dictionary '" + dictPath("r") + "'");
}
