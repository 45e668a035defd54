// The folding of array texts, written in blocks, against the plain rule:
// a run of equal texts is written once with " (n times)" behind it.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "struct/TextSink.h"

namespace {

using Texts = std::vector<const std::string*>;

std::string plainFold(const Texts& texts, bool compress, char separator) {
    std::string out;
    for (size_t i = 0; i < texts.size();) {
        size_t j = i + 1;
        while (compress && j < texts.size() && *texts[j] == *texts[i]) ++j;
        if (i > 0) out += separator;
        out += *texts[i];
        if (j - i > 1) out += " (" + std::to_string(j - i) + " times)";
        i = j;
    }
    return out;
}

// Texts drawn from a few, so that runs form; some much longer than a block.
const std::vector<std::string> pool = {"1", "22", "1.5", "-nan", "", std::string(70000, 'x'), std::string(300, 'y')};

Texts drawTexts(std::mt19937& random, size_t count) {
    Texts texts;
    const std::string* last = &pool[0];
    for (size_t i = 0; i < count; ++i) {
        if (random() % 3 != 0) last = &pool[random() % pool.size()];
        texts.push_back(last);
    }
    return texts;
}

}  // namespace

TEST(TextFolder, FoldsAsThePlainRuleAcrossBlocks) {
    std::mt19937 random(5);
    for (int round = 0; round < 24; ++round) {
        Texts texts = drawTexts(random, round * 397 % 1500 + 1);
        for (bool compress : {true, false}) {
            vexa::StringSink sink;
            {
                vexa::TextFolder folder(sink, compress, ',');
                for (size_t i = 0; i < texts.size(); ++i) {
                    // every other value comes with bits that stand for its text
                    const std::string& t = *texts[i];
                    uint64_t key = std::hash<std::string>()(t);
                    if (i % 2 == 0 && folder.repeats(key)) continue;
                    if (i % 2 == 0) folder.add(key, t.data(), t.size());
                    else folder.add(t.data(), t.size());
                }
                folder.finish();
            }
            ASSERT_EQ(sink.text, plainFold(texts, compress, ',')) << round;
        }
    }
    vexa::StringSink empty;
    vexa::TextFolder none(empty, true, ',');
    none.finish();
    EXPECT_EQ(empty.text, "");
}
