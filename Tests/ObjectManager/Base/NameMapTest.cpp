#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Base/NameMap.h"

namespace {

using Base::CaseInsensitiveHash;

constexpr std::uint64_t kUsualKey = 0xCBF29CE484222325;  // what FNV-1a usually begins with
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

TEST(NameMap, FindsNamesInAnyCase) {
    Base::NameMap<int> numbers;
    numbers["CIM_aZ"] = 1;
    numbers["cim_Az"] = 2;
    numbers["CIM_aY"] = 3;
    EXPECT_EQ(numbers.size(), 2U);
    EXPECT_EQ(numbers.at("CIM_AZ"), 2);
    const Base::NameSet names = {"a", "A", "b"};
    EXPECT_EQ(names.size(), 2U);
    EXPECT_TRUE(names.contains("B"));
}

TEST(NameMap, NamesChosenToCollideSpreadUnderAnotherKey) {
    constexpr std::size_t kNames = 1000;
    const std::vector<std::string> names = namesThatCollide(kUsualKey, kNames);
    EXPECT_EQ(fullestBucket(names, kUsualKey), kNames);
    for (const std::uint64_t key : {1U, 2U, 0x80000000U})
        EXPECT_LT(fullestBucket(names, key), 15U) << key;
}

TEST(NameMap, TheKeyStaysTheSameInAProcess) {
    EXPECT_NE(CaseInsensitiveHash().key, kUsualKey);
    EXPECT_EQ(CaseInsensitiveHash().key, CaseInsensitiveHash().key);
}

}  // namespace
