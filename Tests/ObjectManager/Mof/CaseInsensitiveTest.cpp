#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Mof/CaseInsensitive.h"

namespace {

using Mof::CaseInsensitiveEqual;
using Mof::CaseInsensitiveHash;

constexpr std::uint64_t kUsualKey = 0xCBF29CE484222325;  // what FNV-1a begins with elsewhere
constexpr std::size_t kBuckets = 1009;

// Names that fall into the same bucket of a table when the hash begins with `key`.
std::vector<std::string> namesThatCollide(std::uint64_t key, std::size_t count) {
    const CaseInsensitiveHash hash{key};
    std::vector<std::string> names;
    for (std::size_t number = 0; names.size() < count; ++number) {
        std::string name = "CIM_" + std::to_string(number);
        if (hash(name) % kBuckets == 0)
            names.push_back(std::move(name));
    }
    return names;
}

std::size_t fullestBucket(const std::vector<std::string>& names, std::uint64_t key) {
    const CaseInsensitiveHash hash{key};
    std::vector<std::size_t> buckets(kBuckets);
    for (const std::string& name : names)
        ++buckets[hash(name) % kBuckets];
    return *std::max_element(buckets.begin(), buckets.end());
}

TEST(CaseInsensitive, LettersAreTheSameInAnyCaseAndOtherBytesAreNot) {
    const CaseInsensitiveEqual equal;
    const CaseInsensitiveHash hash;
    EXPECT_TRUE(equal("CIM_aZ", "cim_Az"));
    EXPECT_EQ(hash("CIM_aZ"), hash("cim_Az"));
    EXPECT_FALSE(equal("a", "ab"));
    EXPECT_FALSE(equal("[", "{"));
    EXPECT_FALSE(equal("\xC3\x9C", "\xC3\xBC"));
}

TEST(CaseInsensitive, NamesChosenToCollideSpreadUnderAnotherKey) {
    constexpr std::size_t kNames = 1000;
    const std::vector<std::string> names = namesThatCollide(kUsualKey, kNames);
    EXPECT_EQ(fullestBucket(names, kUsualKey), kNames);
    for (const std::uint64_t key : {1U, 2U, 0x80000000U})
        EXPECT_LT(fullestBucket(names, key), 15U) << key;
}

TEST(CaseInsensitive, TheKeyIsTheProcesssOwn) {
    EXPECT_NE(CaseInsensitiveHash().key, kUsualKey);
    EXPECT_EQ(CaseInsensitiveHash().key, CaseInsensitiveHash().key);
}

}  // namespace
