// Levels of change of composite nodes, and what reducing a long statement asks
// of its leaves.
#include <gtest/gtest.h>

#include <string>

#include "calccore_testing.h"

using namespace calccore;

namespace {

// A variable leaf of level 0 that counts how often it is asked for its level.
class LevelCounter : public CalcNode {
public:
    static inline long asked = 0;
    LevelCounter() : CalcNode("counter") {}
    Type nodeType() override { return TypeData; }
    int valType() override { return zun::ValNum; }
    int constLevel() override {
        ++asked;
        return 0;
    }
    double valNum() override { return 1; }
};

int levelOf(const char* statement, TestBinder& b) {
    CalcParser p(statement, b);
    return p.constLevel();
}

}  // namespace

TEST(CalcLevels, TheLowestLevelWhateverItsPlace) {
    TestBinder b;
    b.offerIterator = true;
    b.rows = 2;
    EXPECT_EQ(levelOf("iter2 + iter1", b), 1);
    EXPECT_EQ(levelOf("iter1 + iter2", b), 1);
    EXPECT_EQ(levelOf("iter2 * 3 - iter1", b), 1);
    EXPECT_EQ(levelOf("iter2 - iter1 * 3", b), 1);
    EXPECT_EQ(levelOf("min(iter2, 5, iter1)", b), 1);
    EXPECT_EQ(levelOf("iter3 + 1 ? iter2 : iter", b), 0);
    EXPECT_EQ(levelOf("-iter2", b), 2);
    EXPECT_EQ(levelOf("1 + 2 * pi", b), -1);
}

TEST(CalcLevels, ReducingAChainAsksEachLeafAFewTimes) {
    TestBinder b;
    b.nodes["v"] = [] { return new LevelCounter(); };
    for (int terms : {100, 1000}) {
        std::string text = "v";
        for (int i = 1; i < terms; ++i) text += i % 2 ? " + v * 3" : " - v";
        LevelCounter::asked = 0;
        CalcParser p(text.c_str(), b);
        EXPECT_EQ(p.valNum(), 1 + (terms / 2) * 3 - (terms - 1) / 2);
        EXPECT_LT(LevelCounter::asked, 4L * terms) << terms << " terms";
    }
}
