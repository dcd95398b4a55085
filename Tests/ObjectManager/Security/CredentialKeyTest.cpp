#include <gtest/gtest.h>
#include <set>
#include <string>

#include "ObjectManager/Security/CredentialKey.h"

namespace {

using Security::CredentialDigest;
using Security::CredentialKey;

TEST(CredentialKey, TheSameCredentialHasTheSameDigest) {
    const CredentialKey key;
    EXPECT_EQ(key.digest("alice", "secret", "hash"), key.digest("alice", "secret", "hash"));
}

TEST(CredentialKey, EveryPartCountsAndSoDoesWhereItEnds) {
    const CredentialKey key;
    const std::set<CredentialDigest> digests = {
        key.digest("alice", "secret", "hash"), key.digest("Alice", "secret", "hash"),
        key.digest("alice", "Secret", "hash"), key.digest("alice", "secret", "Hash"),
        key.digest("alices", "ecret", "hash"), key.digest("alice", "secreth", "ash"),
        key.digest("alicesecret", "", "hash"), key.digest("", "", ""),
    };
    EXPECT_EQ(digests.size(), 8U);
}

TEST(CredentialKey, AnotherKeyMakesAnotherDigest) {
    EXPECT_NE(CredentialKey().digest("alice", "secret", "hash"),
              CredentialKey().digest("alice", "secret", "hash"));
}

TEST(CredentialKey, ChoosesTheSameForANameAndEveryNumberForSomeName) {
    const CredentialKey key;
    std::set<std::size_t> chosen;
    for (int number = 0; number < 200; ++number) {
        const std::string name = std::to_string(number);
        chosen.insert(key.choose(name, 5));
        EXPECT_EQ(key.choose(name, 5), key.choose(name, 5));
        EXPECT_EQ(key.choose(name, 1), 0U);
    }
    EXPECT_EQ(chosen, (std::set<std::size_t>{0, 1, 2, 3, 4}));
}

}  // namespace
