#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <set>
#include <span>
#include <string>

#include "ObjectManager/Security/Credentials.h"
#include "ObjectManager/Security/Random.h"
#include "Platform/Util/TeskBaseException.h"

namespace {

TEST(RandomBytes, FillEveryByteAndNoneBeyond) {
    std::array<unsigned char, 257> everSet = {};
    for (int turn = 0; turn < 20; ++turn) {
        std::array<unsigned char, 257> bytes = {};
        Security::fillWithRandomBytes(std::span(bytes).first(256));
        for (std::size_t index = 0; index < bytes.size(); ++index)
            everSet[index] |= bytes[index];
    }
    EXPECT_EQ(std::count(everSet.begin(), everSet.begin() + 256, 0), 0);
    EXPECT_EQ(everSet[256], 0);
}

TEST(RandomBytes, DifferEachTime) {
    std::array<unsigned char, 32> first = {};
    std::array<unsigned char, 32> second = {};
    Security::fillWithRandomBytes(first);
    Security::fillWithRandomBytes(second);
    EXPECT_NE(first, second);
}

TEST(RandomBytes, AFailureOfTheSystemIsReported) {
    std::array<unsigned char, 257> tooMany = {};
    std::string message;
    try {
        Security::fillWithRandomBytes(tooMany);
    } catch (const TeskBaseException& exception) {
        message = exception.getMessage().data();
    }
    EXPECT_EQ(message, "The system has no random bytes: Input/output error");
}

TEST(GeneratedPassword, Has20UnambiguousCharactersOfWhichAllOccur) {
    std::set<char> seen;
    std::set<std::string> passwords;
    for (int turn = 0; turn < 100; ++turn) {
        const Security::SecretText password = Security::generatePassword();
        EXPECT_EQ(password.size(), 20U);
        EXPECT_EQ(Security::validatePassword(password.view()), "");
        seen.insert(password.view().begin(), password.view().end());
        passwords.emplace(password.view());
    }
    EXPECT_EQ(std::string(seen.begin(), seen.end()), "23456789abcdefghijkmnpqrstuvwxyz");
    EXPECT_EQ(passwords.size(), 100U);
}

}  // namespace
