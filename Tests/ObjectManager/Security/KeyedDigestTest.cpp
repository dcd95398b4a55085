#include <gtest/gtest.h>
#include <set>
#include <string>

#include "ObjectManager/Security/KeyedDigest.h"

namespace {

using Security::DigestKey;
using Security::KeyedDigest;

TEST(KeyedDigest, IsTheSameForTheSameTexts) {
    const DigestKey key;
    EXPECT_EQ(key.digest({"alice", "secret"}), key.digest({"alice", "secret"}));
}

TEST(KeyedDigest, DependsOnEveryTextAndOnWhereItEnds) {
    const DigestKey key;
    const std::set<KeyedDigest> digests = {
        key.digest({"alice", "secret"}),
        key.digest({"Alice", "secret"}),
        key.digest({"alice", "Secret"}),
        key.digest({"alices", "ecret"}),
        key.digest({"alicesecret", ""}),
        key.digest({"", "alicesecret"}),
        key.digest({"alicesecret"}),
        key.digest({"", ""}),
        key.digest({}),
    };
    EXPECT_EQ(digests.size(), 9U);
}

TEST(KeyedDigest, DependsOnTheKey) {
    EXPECT_NE(DigestKey().digest({"alice"}), DigestKey().digest({"alice"}));
}

}  // namespace
