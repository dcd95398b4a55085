#include <gtest/gtest.h>
#include <set>
#include <string>

#include "ObjectManager/Security/CredentialText.h"
#include "ObjectManager/Security/RandomPassword.h"

namespace {

TEST(RandomPassword, Has20UnambiguousCharactersOfWhichAllOccur) {
    std::set<char> seen;
    std::set<std::string> passwords;
    for (int turn = 0; turn < 100; ++turn) {
        const Security::SecretText password = Security::makeRandomPassword();
        EXPECT_EQ(password.size(), 20U);
        EXPECT_EQ(Security::faultOfPassword(password.view()), "");
        seen.insert(password.view().begin(), password.view().end());
        passwords.emplace(password.view());
    }
    EXPECT_EQ(std::string(seen.begin(), seen.end()), "23456789abcdefghijkmnpqrstuvwxyz");
    EXPECT_EQ(passwords.size(), 100U);
}

}  // namespace
