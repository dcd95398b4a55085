#include <algorithm>
#include <array>
#include <gtest/gtest.h>

#include "ObjectManager/Security/RandomBytes.h"

namespace {

TEST(RandomBytes, FillsEveryByteAndNoneBeyond) {
    // More than the system gives at once, and a guard behind.
    std::array<unsigned char, 1001> everSet = {};
    for (int turn = 0; turn < 20; ++turn) {
        std::array<unsigned char, 1001> bytes = {};
        Security::fillWithRandomBytes(bytes.data(), 1000);
        for (std::size_t index = 0; index < bytes.size(); ++index)
            everSet[index] |= bytes[index];
    }
    EXPECT_EQ(std::count(everSet.begin(), everSet.begin() + 1000, 0), 0);
    EXPECT_EQ(everSet[1000], 0);
}

TEST(RandomBytes, AreOthersEachTime) {
    std::array<unsigned char, 32> first = {};
    std::array<unsigned char, 32> second = {};
    Security::fillWithRandomBytes(first.data(), first.size());
    Security::fillWithRandomBytes(second.data(), second.size());
    EXPECT_NE(first, second);
}

}  // namespace
