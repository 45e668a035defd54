// Path names, downward paths, references and wildcard lists.
#include "TreeFixture.h"
#include "struct/Error.h"
#include "struct/StructAlias.h"

using treetest::errorOf;
using treetest::signatureOf;
using treetest::text;
using vexa::File;
using vexa::StructAlias;
using vexa::StructElem;

namespace {

class Paths : public treetest::TreeTest {
protected:
    std::unique_ptr<File> file;

    void SetUp() override {
        dict("leaf", "leaf|||\nx|UChar|||\ny|UShort|||\n");
        dict("mid", "mid|||\nk|UChar|||\ninner|@leaf|||\n");
        dict("r", "r|||\ncount|UChar|||\nhead|@mid|||\ntail|UChar|||\n");
        file = open("r", treetest::raw("\x01\x02\x03\x00\x04\x05"));
    }
    StructElem& root() { return file->getRoot(); }
    StructElem& field(const char* path) { return *root().getChild(path); }

    std::string ref(StructElem& from, const char* text, bool self, int* upOut = nullptr) {
        int up = 99;
        std::unique_ptr<StructAlias> alias(from.getRef(text, up, self));
        if (upOut) *upOut = up;
        return treetest::text(alias->resolve()->getPathName()) + "@" + std::to_string(up);
    }

    static std::string names(zun::ObjAppendList<StructElem*>& list) {
        std::string out;
        for (long i = 0; i < list.count; ++i) out += (i ? "," : "") + text(list[i]->getPathName());
        return out;
    }
    static std::string names(zun::ObjAppendListP<StructAlias>& list) {
        std::string out;
        for (long i = 0; i < list.count; ++i) out += (i ? "," : "") + text(list[i].resolve()->getPathName());
        return out;
    }
};

}  // namespace

TEST_F(Paths, PathNamesAndLevels) {
    EXPECT_EQ(text(field("head.inner.y").getPathName()), "head.inner.y");
    EXPECT_EQ(text(root().getPathName()), "");
    EXPECT_EQ(field("head.inner.y").getStructLevel(), 3);
    EXPECT_EQ(root().getStructLevel(), 0);
    StructElem& y = field("head.inner.y");
    EXPECT_EQ(text(y.getPathName(0)), "head.inner.y");
    EXPECT_EQ(text(y.getPathName(1)), "inner.y");
    EXPECT_EQ(text(y.getPathName(2)), "y");
    EXPECT_EQ(text(y.getPathName(5)), "y");
    EXPECT_EQ(text(y.getPathName(-1)), "inner.y");
    EXPECT_EQ(text(y.getPathName(-2)), "head.inner.y");
    EXPECT_EQ(&y.getParent(), &field("head.inner"));
    EXPECT_EQ(signatureOf([&] { root().getParent(); }), "VEXA016 no parent to root structure : ");
}

TEST_F(Paths, DownwardPaths) {
    EXPECT_EQ(root().getChild(nullptr), &root());
    EXPECT_EQ(root().getChild(""), &root());
    EXPECT_EQ(field("head").getChild(""), &field("head"));
    EXPECT_EQ(field("tail").getChild(nullptr), &field("tail"));
    EXPECT_EQ(text(field("head.inner.y").readAll(true)), "4");
    EXPECT_EQ(errorOf([&] { field("head."); }), "field [head.] in structure [root]");
    EXPECT_EQ(errorOf([&] { field("nope.x"); }), "field [nope] in structure [root]");
    EXPECT_EQ(errorOf([&] { field("head.inner.q"); }), "field [q] in structure [head.inner]");
    EXPECT_EQ(signatureOf([&] { field("tail.x"); }), "VEXA005 invalid field name : field [x] in structure [tail]");
    EXPECT_EQ(errorOf([&] { field(".head"); }), "field [.head] in structure [root]");
    EXPECT_EQ(field("tail").numElems(), -1);
    EXPECT_EQ(signatureOf([&] { field("tail")[0]; }), "VEXA006 invalid field index : index (0) in structure [tail]");
}

TEST_F(Paths, NamesByExactTextAndByPattern) {
    StructElem& tail = field("tail");
    EXPECT_EQ(tail.hasName("tail"), &tail);
    EXPECT_EQ(tail.hasName("tai"), nullptr);
    EXPECT_EQ(tail.matchesName("t*"), &tail);
    EXPECT_EQ(tail.matchesName("?ail"), &tail);
    EXPECT_EQ(tail.matchesName("h*"), nullptr);
}

TEST_F(Paths, References) {
    StructElem& k = field("head.k");
    EXPECT_EQ(ref(k, "inner.x", true), "head.inner.x@0");
    EXPECT_EQ(ref(k, "", true), "head@0");
    EXPECT_EQ(ref(k, "", false), "head.k@0");
    EXPECT_EQ(ref(k, ".", true), "@-1");
    EXPECT_EQ(ref(k, ".tail", false), "tail@-1");
    EXPECT_EQ(ref(k, "-.count", true), "count@0");
    EXPECT_EQ(ref(k, "--.count", true), "count@0");
    EXPECT_EQ(ref(field("head"), "+inner.y", true), "head.inner.y@0");
    EXPECT_EQ(ref(field("head"), "inner", false), "head.inner@0");
    EXPECT_EQ(ref(field("head.inner.x"), "-.-.tail", true), "tail@0");
}

TEST_F(Paths, ReferenceErrors) {
    int up;
    EXPECT_EQ(signatureOf([&] { delete field("head").getRef("+", up, true); }),
              "VEXA007 invalid reference : reference [+] in structure [head] (invalid field definition)");
    EXPECT_EQ(errorOf([&] { delete root().getRef("x", up, true); }), "reference [x] in structure [root]");
    EXPECT_EQ(errorOf([&] { delete field("head.k").getRef("-.-.x", up, true); }),
              "reference [-.-.x] in structure [head.k]");
    EXPECT_EQ(errorOf([&] { delete field("head.k").getRef("--.--.x", up, true); }),
              "reference [--.--.x] in structure [head.k]");
    EXPECT_EQ(errorOf([&] { delete field("head.k").getRef("nothing", up, true); }),
              "field [nothing] in structure [head]");
}

TEST_F(Paths, ElementLists) {
    zun::ObjAppendList<StructElem*> out;
    EXPECT_EQ(root().childList(0, "*", false, out), 3);
    EXPECT_EQ(names(out), "count,head,tail");
    out.flush();
    EXPECT_EQ(root().childList(0, "head.*", false, out), 2);
    EXPECT_EQ(names(out), "head.k,head.inner");
    out.flush();
    EXPECT_EQ(root().childList(0, "tail.x", false, out), 0);
    EXPECT_EQ(root().childList(0, "*", true, out), 5);
    EXPECT_EQ(names(out), "count,head.k,head.inner.x,head.inner.y,tail");
    out.flush();
    EXPECT_EQ(root().childList(0, "h*.i*.?", false, out), 2);
    EXPECT_EQ(names(out), "head.inner.x,head.inner.y");
    out.flush();
    EXPECT_EQ(root().childList(0, "", false, out), 1);
    EXPECT_EQ(out[0], &root());
}

TEST_F(Paths, AliasLists) {
    zun::ObjAppendListP<StructAlias> out;
    EXPECT_EQ(root().childList("*", false, out), 3);
    EXPECT_EQ(names(out), "count,head,tail");
    out.flush();
    EXPECT_EQ(root().childList("head.inner", true, out), 2);
    EXPECT_EQ(names(out), "head.inner.x,head.inner.y");
    out.flush();
    EXPECT_EQ(root().childList("c*", false, out), 1);
    EXPECT_EQ(root().childList("zzz", false, out), 0);
    EXPECT_EQ(errorOf([&] { root().childList("#x", false, out); }), "field [#x] in structure [root]");
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
    EXPECT_EQ(frozen.arrays.count, 0);
    StructAlias copy = frozen;
    copy = deep;
    EXPECT_EQ(copy.target, deep.target);
}
