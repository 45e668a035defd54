// Offset markers as elements of their record; where they place fields is
// checked end to end.
#include "TreeFixture.h"
#include "struct/StructRec.h"

using treetest::errorOf;
using treetest::text;

namespace {

class Offsets : public treetest::TreeTest {};

}  // namespace

TEST_F(Offsets, MarkersTakeNoRoomAndAreNotFields) {
    dict("r", "r|||\na|UShort|||\nb|UChar||||+0\nc|UChar||||0\nd|UChar||||%%1\ne|UChar||||%%0\nf|UChar||||5\n");
    file = open("r", treetest::raw("\x01\x02\x03\x04\x05\x06\x07"));
    EXPECT_EQ(field("d").getPos(), 1);
    EXPECT_EQ(field("e").getPos(), 2);
    EXPECT_EQ(file->getRoot().numElems(), 6);
    EXPECT_EQ(text(file->getRoot().readAll(true)), "[258,3,1,2,3,6]");
    // the record ends behind its last field, wherever the others stood
    EXPECT_EQ(file->getRoot().getSize(), 6);
    auto& record = static_cast<vexa::StructRec&>(file->getRoot());
    ASSERT_EQ(record.markers.count, 5);
    const struct {
        vexa::ElemType type;
        const char* text;
    } kinds[] = {{vexa::TypeRelativeOffset, "Relative Offset"}, {vexa::TypeOffset, "Offset"},
                 {vexa::TypeAlignmentOffset, "Alignment Offset"}, {vexa::TypeAlignmentOffset, "Alignment Offset"},
                 {vexa::TypeOffset, "Offset"}};
    for (long i = 0; i < 5; ++i) {
        EXPECT_EQ(record.markers[i]->getType(), kinds[i].type) << i;
        EXPECT_EQ(text(record.markers[i]->getTypeStr(0)), kinds[i].text) << i;
        EXPECT_EQ(record.markers[i]->getSize(), 0) << i;
        EXPECT_EQ(text(record.markers[i]->getUnit()), "bytes") << i;
    }
}

TEST_F(Offsets, NegativeRelativeOffsetOverlapsInsideItsRecord) {
    dict("sub", "sub|||\na|ULong||4|\nb|UShort||||-2\n");
    dict("r", "r|||\ns|@sub|||\nafter|UChar|||\n");
    file = open("r", treetest::raw("\x00\x00\x01\x02\x05"));
    EXPECT_EQ(text(field("s.b").readAll(true)), "258");
    EXPECT_EQ(field("s").getSize(), 4);
    EXPECT_EQ(text(field("after").readAll(true)), "5");
}

TEST_F(Offsets, MarkerBeforeAnInvalidNameIsNotLeft) {
    dict("r", "r|||\na|UChar|||\nb.c|UChar||||4\n");
    file = open("r", "ab");
    EXPECT_EQ(errorOf([&] { file->getRoot().numElems(); }),
              "invalid field name \"b.c\" in dictionary '" + dictPath("r") + "'");
}

TEST_F(Offsets, PositionsBeyondSixtyFourBitsFailInsteadOfWrapping) {
    // A field that would lie past the largest position names itself; nothing
    // is read from a wrapped-round place.
    dict("r", "r|||\na|UChar||||+9223372036854775807\nb|UChar|||\n");
    file = open("r", "abcdef");
    EXPECT_EQ(field("a").getPos(), 9223372036854775807L);
    EXPECT_EQ(errorOf([&] { field("b").getPos(); }),
              "field \"b\" lies beyond the range of positions (9223372036854775807 + 1)");
    dict("s", "s|||\nx|UChar|||\ny|UChar||||-9223372036854775807\nw|UChar||||-9223372036854775807\n");
    file = open("s", "abcdef");
    EXPECT_EQ(errorOf([&] { field("w").getPos(); }),
              "field \"w\" lies beyond the range of positions (-9223372036854775805 + -9223372036854775807)");
}
