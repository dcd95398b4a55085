#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "ObjectManager/Security/SecretText.h"
#include "Tests/Support/AllocationProbe.h"

namespace {

using Security::SecretText;

constexpr std::string_view kSecret = "correct horse battery staple";

// How often the secret is found in memory that `operation` gave back.
template <typename Operation>
std::size_t remainsAfter(const Operation& operation) {
    AllocationProbe::lookFor(kSecret);
    operation();
    const std::size_t count = AllocationProbe::remainsFound();
    AllocationProbe::lookFor("");
    return count;
}

TEST(SecretText, IsEmptyAtFirst) {
    const SecretText text;
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(text.view(), "");
    EXPECT_STREQ(text.zeroTerminated(), "");
}

TEST(SecretText, HoldsACopyWithAZeroByteAtItsEnd) {
    const SecretText text(kSecret);
    EXPECT_EQ(text.view(), kSecret);
    EXPECT_EQ(text.size(), kSecret.size());
    EXPECT_FALSE(text.isEmpty());
    EXPECT_STREQ(text.zeroTerminated(), kSecret.data());
}

TEST(SecretText, GrowsByteByByte) {
    SecretText text;
    std::string expected;
    for (int count = 0; count < 1000; ++count) {
        const char byte = static_cast<char>('a' + count % 26);
        text.append(byte);
        expected += byte;
    }
    EXPECT_EQ(text.view(), expected);
    EXPECT_STREQ(text.zeroTerminated(), expected.c_str());
}

TEST(SecretText, AppendsToACopy) {
    SecretText text("ab");
    text.append('c');
    EXPECT_EQ(text.view(), "abc");
}

TEST(SecretText, MovesAndLeavesNothingBehind) {
    SecretText first(kSecret);
    SecretText second(std::move(first));
    EXPECT_EQ(second.view(), kSecret);
    EXPECT_EQ(first.view(), "");  // NOLINT(bugprone-use-after-move)
    first = std::move(second);
    EXPECT_EQ(first.view(), kSecret);
    EXPECT_EQ(second.view(), "");  // NOLINT(bugprone-use-after-move)
}

TEST(SecretText, TheProbeFindsWhatOthersLeave) {
    EXPECT_EQ(remainsAfter([] {
                  const std::string text(kSecret);
                  // Else the compiler sees that nobody reads the memory.
                  asm volatile("" : : "r"(text.data()) : "memory");
              }),
              1U);
}

TEST(SecretText, LeavesNothingInMemoryWhenItIsDestroyed) {
    EXPECT_EQ(remainsAfter([] { const SecretText text(kSecret); }), 0U);
}

TEST(SecretText, LeavesNothingInMemoryWhenItIsAssignedTo) {
    EXPECT_EQ(remainsAfter([] {
                  SecretText text(kSecret);
                  text = SecretText("other");
                  EXPECT_EQ(text.view(), "other");
              }),
              0U);
}

TEST(SecretText, LeavesNothingInMemoryWhenItGrows) {
    EXPECT_EQ(remainsAfter([] {
                  SecretText text(kSecret);
                  for (int count = 0; count < 1000; ++count)
                      text.append('x');
              }),
              0U);
}

}  // namespace
