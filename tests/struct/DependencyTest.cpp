// The dependency machinery: cached offsets and sizes registered with the
// arrays that can move them, and marked stale when those arrays move. The
// arrays hold records of hand-made fields, among them a string whose length
// is the field before it.
#include "TreeFixture.h"
#include "dict/CalcBinder.h"
#include "struct/Error.h"
#include "struct/StructAlias.h"
#include "struct/StructArray.h"
#include "struct/StructNum.h"
#include "struct/StructRec.h"
#include "struct/StructString.h"

using treetest::errorOf;
using treetest::text;
using vexa::StructAlias;
using vexa::StructArray;
using vexa::StructBase;
using vexa::StructElem;
using vexa::StructRec;
using zun::String;

namespace {

// A string whose length is the value of the field before it, as a size
// statement naming that field would give.
class LengthString : public vexa::StructString {
public:
    LengthString(StructElem* prev, StructElem* parent, const char* name)
        : vexa::StructString(prev, parent, name, nullptr, -1) {}
    void setSize() override {
        unsigned short n;
        prev->readUShort(n);
        size = n;
    }
    StructArray* getSizeDep() override {
        if (!known) {
            known = true;
            dep = getParentArray(0);
            size.registerWith(dep);
        }
        return dep;
    }

private:
    bool known = false;
    StructArray* dep = nullptr;
};

class Dependencies : public treetest::TreeTest {
protected:
    StructArray* items = nullptr;   // a field of the root, owned by it
    StructRec* item = nullptr;
    StructElem* len = nullptr;
    StructElem* textField = nullptr;
    StructElem* flag = nullptr;

    StructBase& root() { return file->getRoot(); }

    // An array of records of the empty dictionary "item", to be filled with
    // hand-made fields: the record's own code sizes it.
    StructArray* array(StructElem* prev, const char* name, const char* dims) {
        return new StructArray(("@" + dictPath("item")).c_str(), nullptr, "", prev, &root(), name, "", dims);
    }
    static StructRec* recordOf(StructElem* e) { return static_cast<StructRec*>(e); }

    // root: count (UChar), then an array "items" of 3 records {len, text, flag}.
    void buildVariable() {
        dict("item", "item|||\n");
        dict("r", "r|||\ncount|UChar|||\n");
        file = open("r", treetest::raw("\x03" "\x02" "ab" "\x0A" "\x00" "\x0B" "\x03" "xyz" "\x0C"));
        items = array(&root()[0], "items", "3");
        root().fields << items;
        item = recordOf(items->element);
        len = new vexa::StructNumUChar(nullptr, item, "len", nullptr, -1);
        textField = new LengthString(len, item, "text");
        flag = new vexa::StructNumUChar(textField, item, "flag", nullptr, -1);
        item->fields << len << textField << flag;
    }

    long slotIndex(vexa::DepCell& cell) {
        for (long i = 0; i < root().depSlots.count; ++i)
            if (root().depSlots[i] == &cell.value) {
                EXPECT_EQ(cell.slotIndex(), i);
                return i;
            }
        return -1;
    }
    bool registered(vexa::DepCell& cell) { return slotIndex(cell) >= 0; }
    static bool linked(StructArray& a, long index) {
        for (long i = 0; i < a.depLinks.count; ++i)
            if (a.depLinks[i] == index) return true;
        return false;
    }
    std::string value(StructElem& e) { return text(e.readAll(true)); }
};

}  // namespace

TEST_F(Dependencies, AMoveMarksWhatMovesStale) {
    buildVariable();
    (*items)[0];
    EXPECT_EQ(value(*textField), "\"ab\"");
    EXPECT_EQ(flag->getOffset(), 3);
    EXPECT_EQ(item->getSize(), 4);
    // a first child lies at 0 whatever the array does; so does a field behind a fixed-size first child
    EXPECT_FALSE(registered(len->offset));
    EXPECT_FALSE(registered(textField->offset));
    EXPECT_TRUE(registered(textField->size));
    EXPECT_TRUE(linked(*items, slotIndex(flag->offset)));
    EXPECT_TRUE(linked(*items, slotIndex(item->size)));
    EXPECT_EQ(flag->getOffsetDep(), items);
    EXPECT_EQ(item->getSizeDep(), items);
    EXPECT_EQ(len->getOffsetDep(), nullptr);
    EXPECT_EQ(textField->getOffsetDep(), nullptr);
    (*items)[1];
    EXPECT_EQ(flag->offset, -1);
    EXPECT_EQ(textField->size, -1);
    EXPECT_EQ(item->size, -1);
    EXPECT_EQ(len->offset, 0);
    EXPECT_EQ(textField->offset, 1);
    EXPECT_EQ(flag->getOffset(), 1);
    EXPECT_EQ(item->getSize(), 2);
    EXPECT_EQ(value(*flag), "11");
    EXPECT_EQ(value(*textField), "\"\"");
    (*items)[2];
    EXPECT_EQ(value(*flag), "12");
    EXPECT_EQ(value(*textField), "\"xyz\"");
    (*items)[0];
    EXPECT_EQ(value(*flag), "10");
    EXPECT_EQ(text(flag->getPathName()), "items.0.flag");
    EXPECT_EQ(items->getSize(), 11);
}

TEST_F(Dependencies, SlotsAreTakenOnceAndGoWithTheirElement) {
    buildVariable();
    (*items)[0];
    flag->getOffset();
    long links = items->depLinks.count, slots = root().depSlots.count, index = slotIndex(flag->offset);
    (*items)[2];
    flag->getOffset();
    item->getSize();
    EXPECT_EQ(root().depSlots.count, slots + 1);  // the record's size, asked for the first time
    EXPECT_EQ(items->depLinks.count, links + 1);
    EXPECT_EQ(root().allocDep(flag->offset), -1);
    // a removed slot stays linked and is skipped
    vexa::DepCell spare(5);
    long spareIndex = root().allocDep(spare);
    items->linkBack(spareIndex);
    root().removeDep(spare);
    EXPECT_EQ(root().depSlots[spareIndex], nullptr);
    EXPECT_TRUE(linked(*items, spareIndex));
    (*items)[1];
    EXPECT_EQ(spare, 5);
    EXPECT_EQ(flag->offset, -1);
    EXPECT_EQ(root().depSlots[index], &flag->offset.value);
    vexa::DepCell missing(0);
    root().removeDep(missing);  // not registered: no error
    {
        // a cell that goes takes its slot along
        vexa::DepCell scoped;
        scoped.registerWith(items);
        EXPECT_TRUE(scoped.isRegistered());
        spareIndex = scoped.slotIndex();
    }
    EXPECT_EQ(root().depSlots[spareIndex], nullptr);
    items->linkBack(-1);        // a negative slot adds nothing
    EXPECT_FALSE(linked(*items, -1));
    // a deleted element takes its slots along
    EXPECT_EQ(textField->getSize(), 0);
    item->fields.del(1);
    delete flag;
    EXPECT_EQ(root().depSlots[index], nullptr);
    (*items)[0];  // walks the links without touching the deleted field
    EXPECT_EQ(textField->size, -1);
}

TEST_F(Dependencies, NestedArraysLinkOutward) {
    dict("item", "item|||\n");
    dict("r", "r|||\n");
    // outer: 2 rows of inner: 2 records {len, text}
    file = open("r", treetest::raw("\x01" "a" "\x00" "\x02" "bc" "\x01" "d"));
    items = array(nullptr, "outer", "2,2");
    root().fields << items;
    auto* inner = static_cast<StructArray*>(items->element);
    StructRec* rec = recordOf(inner->element);
    StructElem* l = new vexa::StructNumUChar(nullptr, rec, "len", nullptr, -1);
    StructElem* t = new LengthString(l, rec, "text");
    rec->fields << l << t;
    // the inner array's element offset moves with the outer array
    EXPECT_TRUE(registered(rec->offset));
    EXPECT_TRUE(linked(*items, slotIndex(rec->offset)));
    EXPECT_FALSE(linked(*inner, slotIndex(rec->offset)));
    (*items)[0];
    (*inner)[1];
    EXPECT_EQ(value(*t), "\"\"");
    EXPECT_TRUE(linked(*items, slotIndex(t->size)));
    EXPECT_TRUE(linked(*inner, slotIndex(t->size)));
    (*items)[1];
    EXPECT_EQ(rec->offset, -1);
    (*inner)[0];
    EXPECT_EQ(value(*t), "\"bc\"");
    (*inner)[1];
    EXPECT_EQ(value(*t), "\"d\"");
    EXPECT_EQ(t->getPos(), 7);
    EXPECT_EQ(text(t->getPathName()), "outer.1.1.text");

    const std::pair<StructArray*, StructArray*> found[] = {
        {t->getParentArray(0), inner}, {t->getParentArray(1), items}, {t->getParentArray(2), nullptr},
        {t->getParentArray(-1), nullptr}, {StructElem::innerDep(items, inner), inner},
        {StructElem::innerDep(inner, items), inner}, {StructElem::innerDep(nullptr, items), items},
        {StructElem::innerDep(items, nullptr), items}, {StructElem::innerDep(items, items), items}};
    for (const auto& f : found) EXPECT_EQ(f.first, f.second) << &f - found;

    // references climb the arrays
    int up = 0;
    std::unique_ptr<StructAlias> out(t->getRef("--.", up, true));
    EXPECT_EQ(out->target, &root());
    EXPECT_EQ(up, 2);
    std::unique_ptr<StructAlias> one(t->getRef("-.", up, true));
    EXPECT_EQ(one->target, inner);
    EXPECT_EQ(up, 0);
    EXPECT_EQ(errorOf([&] { delete t->getRef("-.x", up, true); }), "array [outer.1] index [x] is invalid");
    std::unique_ptr<StructAlias> fromInner(inner->getRef("", up, true));
    EXPECT_EQ(fromInner->target, &root());
    EXPECT_EQ(up, 1);
    EXPECT_EQ(errorOf([&] { delete rec->getRef("+", up, true); }),
              "reference [+] in structure [outer.1.1] (invalid field definition)");

    // an alias freezes the indices of the arrays around its element
    StructAlias frozen(*t, 0);
    ASSERT_EQ(frozen.arrays.count, 2);
    EXPECT_EQ(frozen.arrays[0], items);
    EXPECT_EQ(frozen.indices[0], 1);
    EXPECT_EQ(frozen.indices[1], 1);
    (*items)[0];
    (*inner)[0];
    EXPECT_EQ(value(*frozen.resolve()), "\"d\"");
    StructAlias upper = frozen.getParent().getParent();
    EXPECT_EQ(upper.target, inner);
    EXPECT_EQ(upper.arrays.count, 1);

    // an alias through a path remembers the indices it named
    StructAlias byPath(root(), "outer.0.1.text");
    (*items)[1];
    EXPECT_EQ(value(*byPath.resolve()), "\"\"");
    EXPECT_EQ(byPath.arrays.count, 2);
}

TEST_F(Dependencies, IteratorsFollowTheArraysAround) {
    buildVariable();
    vexa::CalcArrayIterator nearest(0, flag);
    EXPECT_EQ(nearest.array, items);
    EXPECT_EQ(nearest.count(), 3);
    nearest.setIndex(2);
    EXPECT_EQ(nearest.getIndex(), 2);
    EXPECT_EQ(value(*flag), "12");
    vexa::CalcArrayIterator none(1, flag);
    EXPECT_EQ(none.array, nullptr);
    EXPECT_EQ(none.count(), 0);
    EXPECT_EQ(none.getIndex(), 0);
    none.setIndex(4);
    vexa::CalcArrayIterator self(-1, items);
    EXPECT_EQ(self.array, items);
    EXPECT_EQ(treetest::signatureOf([&] { vexa::CalcArrayIterator top(0, &root()); }),
              "VEXA016 no parent to root structure : ");
}

TEST_F(Dependencies, LongRecordInsideAnArray) {
    dict("item", "item|||\n");
    dict("r", "r|||\n");
    const int n = 20000;
    std::string bytes(2 * n + 2, '\0');
    bytes[0] = 3;          // element 0: a length of 3, three bytes of text, then n - 2 more fields
    bytes[n + 1] = 9;      // the last field of element 0
    file = open("r", bytes);
    items = array(nullptr, "items", "2");
    root().fields << items;
    item = recordOf(items->element);
    StructElem* prev = new vexa::StructNumUChar(nullptr, item, "len", nullptr, -1);
    item->fields << prev;
    prev = new LengthString(prev, item, "text");
    item->fields << prev;
    for (int i = 2; i < n; ++i) {
        prev = new vexa::StructNumUChar(prev, item, ("f" + std::to_string(i)).c_str(), nullptr, -1);
        item->fields << prev;
    }
    (*items)[0];
    // the last field asks first: every offset and dependency before it is worked out
    EXPECT_EQ(prev->getOffset(), n + 1);
    EXPECT_EQ(value(*prev), "9");
    EXPECT_EQ(prev->getOffsetDep(), items);
    EXPECT_EQ(item->getSize(), n + 2);
}
