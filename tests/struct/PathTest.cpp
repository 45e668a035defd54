// Path names, references, wildcard lists and aliases; how skelvor reports a
// field that isn't there is checked end to end.
#include "TreeFixture.h"
#include "struct/Error.h"
#include "struct/StructAlias.h"

using treetest::errorOf;
using treetest::signatureOf;
using treetest::text;
using vexa::StructAlias;
using vexa::StructElem;

namespace {

class Paths : public treetest::TreeTest {
protected:
    void SetUp() override {
        dict("leaf", "leaf|||\nx|UChar|||\ny|UShort|||\n");
        dict("mid", "mid|||\nk|UChar|||\ninner|@leaf|||\n");
        dict("r", "r|||\ncount|UChar|||\nhead|@mid|||\ntail|UChar|||\n");
        file = open("r", treetest::raw("\x01\x02\x03\x00\x04\x05"));
    }
    StructElem& root() { return file->getRoot(); }

    // "path@up" of what text refers to from the field from.
    std::string ref(const char* from, const char* refText, bool self) {
        int up = 99;
        std::unique_ptr<StructAlias> alias(field(from).getRef(refText, up, self));
        return text(alias->resolve()->getPathName()) + "@" + std::to_string(up);
    }
    template <class List>
    static std::string names(List& list) {
        std::string out;
        for (long i = 0; i < list.count; ++i) out += (i ? "," : "") + text(path(list.data[i]));
        list.flush();
        return out;
    }
    static zun::String path(StructElem* e) { return e->getPathName(); }
    static zun::String path(StructAlias* a) { return a->resolve()->getPathName(); }
};

}  // namespace

TEST_F(Paths, PathNamesLevelsAndDownwardPaths) {
    StructElem& y = field("head.inner.y");
    EXPECT_EQ(text(root().getPathName()), "");
    EXPECT_EQ(y.getStructLevel(), 3);
    EXPECT_EQ(root().getStructLevel(), 0);
    const std::pair<int, const char*> levels[] = {{0, "head.inner.y"}, {1, "inner.y"}, {2, "y"},
                                                  {5, "y"}, {-1, "inner.y"}, {-2, "head.inner.y"}};
    for (const auto& l : levels) EXPECT_EQ(text(y.getPathName(l.first)), l.second) << l.first;
    EXPECT_EQ(&y.getParent(), &field("head.inner"));
    EXPECT_EQ(signatureOf([&] { root().getParent(); }), "VEXA016 no parent to root structure : ");
    EXPECT_EQ(root().getChild(nullptr), &root());
    EXPECT_EQ(field("head").getChild(""), &field("head"));
    EXPECT_EQ(text(y.readAll(true)), "4");
    EXPECT_EQ(errorOf([&] { field("nope.x"); }), "field [nope] in structure [root]");
    EXPECT_EQ(errorOf([&] { field(".head"); }), "field [.head] in structure [root]");
    EXPECT_EQ(field("tail").numElems(), -1);
    EXPECT_EQ(signatureOf([&] { field("tail")[0]; }), "VEXA006 invalid field index : index (0) in structure [tail]");
    EXPECT_EQ(field("tail").hasName("tail"), &field("tail"));
    EXPECT_EQ(field("tail").hasName("tai"), nullptr);
    EXPECT_EQ(field("tail").matchesName("?ail"), &field("tail"));
    EXPECT_EQ(field("tail").matchesName("h*"), nullptr);
}

TEST_F(Paths, References) {
    const struct {
        const char *from, *ref;
        bool self;
        const char* target;
    } rows[] = {
        {"head.k", "inner.x", true, "head.inner.x@0"}, {"head.k", "", true, "head@0"}, {"head.k", "", false, "head.k@0"},
        {"head.k", ".", true, "@-1"}, {"head.k", ".tail", false, "tail@-1"}, {"head.k", "-.count", true, "count@0"},
        {"head.k", "--.count", true, "count@0"}, {"head", "+inner.y", true, "head.inner.y@0"},
        {"head", "inner", false, "head.inner@0"}, {"head.inner.x", "-.-.tail", true, "tail@0"},
    };
    for (const auto& r : rows) EXPECT_EQ(ref(r.from, r.ref, r.self), r.target) << r.from << " " << r.ref;
    int up;
    EXPECT_EQ(signatureOf([&] { delete field("head").getRef("+", up, true); }),
              "VEXA007 invalid reference : reference [+] in structure [head] (invalid field definition)");
    const char* bad[][3] = {{"", "x", "reference [x] in structure [root]"},
                            {"head.k", "-.-.x", "reference [-.-.x] in structure [head.k]"},
                            {"head.k", "--.--.x", "reference [--.--.x] in structure [head.k]"},
                            {"head.k", "nothing", "field [nothing] in structure [head]"}};
    for (const auto& b : bad) EXPECT_EQ(errorOf([&] { delete field(b[0]).getRef(b[1], up, true); }), b[2]) << b[1];
}

TEST_F(Paths, ElementAndAliasLists) {
    zun::ObjAppendList<StructElem*> elems;
    EXPECT_EQ(root().childList(0, "*", false, elems), 3);
    EXPECT_EQ(names(elems), "count,head,tail");
    EXPECT_EQ(root().childList(0, "head.*", false, elems), 2);
    EXPECT_EQ(names(elems), "head.k,head.inner");
    EXPECT_EQ(root().childList(0, "tail.x", false, elems), 0);
    EXPECT_EQ(root().childList(0, "*", true, elems), 5);
    EXPECT_EQ(names(elems), "count,head.k,head.inner.x,head.inner.y,tail");
    EXPECT_EQ(root().childList(0, "h*.i*.?", false, elems), 2);
    EXPECT_EQ(names(elems), "head.inner.x,head.inner.y");
    EXPECT_EQ(root().childList(0, "", false, elems), 1);
    EXPECT_EQ(elems[0], &root());

    zun::ObjAppendListP<StructAlias> aliases;
    EXPECT_EQ(root().childList("*", false, aliases), 3);
    EXPECT_EQ(names(aliases), "count,head,tail");
    EXPECT_EQ(root().childList("head.inner", true, aliases), 2);
    EXPECT_EQ(names(aliases), "head.inner.x,head.inner.y");
    EXPECT_EQ(root().childList("c*", false, aliases), 1);
    EXPECT_EQ(root().childList("zzz", false, aliases), 0);
    EXPECT_EQ(errorOf([&] { root().childList("#x", false, aliases); }), "field [#x] in structure [root]");
}

TEST_F(Paths, Aliases) {
    StructAlias onTail(field("tail"));
    EXPECT_EQ(onTail.level, 1);
    EXPECT_EQ(onTail.getParent().target, &root());
    EXPECT_EQ(onTail.getParent().level, 0);
    EXPECT_EQ(signatureOf([&] { onTail.getParent().getParent(); }), "VEXA016 no parent to root structure : ");
    EXPECT_EQ(onTail.getChild(nullptr).target, &field("tail"));
    StructAlias deep(root(), "head.inner");
    EXPECT_EQ(deep.target, &field("head.inner"));
    EXPECT_EQ(deep.arrays.count, 0);
    EXPECT_EQ(deep.getField(1).target, &field("head.inner.y"));
    EXPECT_EQ(text(deep.getTypeStr(0)), "Record'leaf");
    long v = 0;
    EXPECT_EQ(StructAlias(root(), "head.inner.y").readRef(v), 4);
    EXPECT_TRUE(deep.isFixedType(0));
    EXPECT_TRUE(deep.isFixedSize(0));
    StructAlias frozen(field("head.inner.y"), 0);
    EXPECT_EQ(frozen.level, 0);
    StructAlias copy = frozen;
    copy = deep;
    EXPECT_EQ(copy.target, deep.target);
}
