// Texts whose length would pass the 32-bit length of a String: an error that
// says so, never a length that wraps.
#include <gtest/gtest.h>

#include <cerrno>
#include <climits>

#include "base/Exception.h"
#include "base/String.h"

using zun::String;

TEST(StringLength, ALengthBeyondThirtyTwoBitsIsAnError) {
    String s("ab");
    try {
        s.pad(INT_MIN);
        FAIL() << "padded to " << s.length;
    } catch (zun::StdError& e) {
        EXPECT_EQ(e.code(), EOVERFLOW);
        EXPECT_STREQ(e.msg().str(), "a text of 2147483648 characters is longer than a text can be");
    }
    EXPECT_EQ(s, "ab");  // left as it was
    EXPECT_EQ(s.pad(-5, "."), "ab...");
}
