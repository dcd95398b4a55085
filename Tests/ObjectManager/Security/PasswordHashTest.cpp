#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Security/PasswordHash.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/ObjectManager/Security/Hashes.h"
#include "Tests/Support/AllocationProbe.h"

namespace {

using Security::hashPassword;
using Security::isPasswordHash;
using Security::SecretText;
using Security::verifyPassword;

// What hashing says against a password or the options.
std::string errorIn(std::string_view password, const Security::PasswordHashOptions& options) {
    try {
        return "hashed: " + hashPassword(SecretText(password), options);
    } catch (const TeskBaseException& exception) {
        return exception.getMessage().data();
    }
}

TEST(PasswordHash, IsYescryptByDefault) {
    const std::string hash = hashPassword(SecretText("secret"));
    EXPECT_EQ(hash.substr(0, 7), "$y$j9T$");
    EXPECT_TRUE(isPasswordHash(hash));
    EXPECT_TRUE(verifyPassword(SecretText("secret"), hash));
    EXPECT_FALSE(verifyPassword(SecretText("Secret"), hash));
}

TEST(PasswordHash, HasASaltOfItsOwn) {
    EXPECT_NE(cheapHash("secret"), cheapHash("secret"));
}

TEST(PasswordHash, EveryMethodOfCryptIsVerified) {
    // Made by `openssl passwd` and by crypt(3), of the password "secret".
    for (const char* hash : kHashesOfSecret) {
        EXPECT_TRUE(isPasswordHash(hash)) << hash;
        EXPECT_TRUE(verifyPassword(SecretText("secret"), hash)) << hash;
        EXPECT_FALSE(verifyPassword(SecretText("secreT"), hash)) << hash;
    }
}

TEST(PasswordHash, WhatIsNoCompleteHashIsRefused) {
    const std::string hash = kSha512OfSecret;
    EXPECT_TRUE(isPasswordHash(hash));
    for (std::size_t length = 0; length < hash.size(); ++length)
        EXPECT_FALSE(isPasswordHash(hash.substr(0, length))) << length;
    for (const std::string& text :
         {hash + "x", hash + ":", hash + " ", hash + "\r", " " + hash, "x" + hash,
          std::string("secret"), std::string("abJnggxhB/yWI"), std::string("*"), std::string("!"),
          std::string("!") + hash, std::string("$9$salt$") + std::string(86, 'a'),
          std::string("$apr1$salt$") + std::string(22, 'a'),
          "$6$" + std::string(400, 's') + "$" + std::string(86, 'a')})
        EXPECT_FALSE(isPasswordHash(text)) << text;
}

TEST(PasswordHash, APasswordThatCannotBeUsedIsNotHashed) {
    EXPECT_EQ(errorIn("", kCheapHashing), "The password cannot be used: it is empty");
    EXPECT_EQ(errorIn(std::string(512, 'a'), kCheapHashing),
              "The password cannot be used: it is longer than 511 bytes");
    EXPECT_EQ(errorIn(std::string_view("a\0b", 3), kCheapHashing),
              "The password cannot be used: it contains control characters or is not UTF-8");
}

TEST(PasswordHash, TheLongestPasswordCountsToItsLastByte) {
    const std::string password(511, 'a');
    const std::string hash = cheapHash(password);
    EXPECT_TRUE(verifyPassword(SecretText(password), hash));
    EXPECT_FALSE(verifyPassword(SecretText(password.substr(1)), hash));
    EXPECT_FALSE(verifyPassword(SecretText(password + "a"), hash));
}

TEST(PasswordHash, APasswordThatGoesOnBehindAZeroByteIsAnotherOne) {
    const std::string hash = cheapHash("a");
    EXPECT_FALSE(verifyPassword(SecretText(std::string_view("a\0b", 3)), hash));
}

TEST(PasswordHash, UnknownMethodsAndCostsAreRefused) {
    EXPECT_EQ(errorIn("secret", {.method = "$9$"}),
              "This system cannot make such password hashes: Invalid argument");
    EXPECT_EQ(errorIn("secret", {.method = "$y$", .cost = 1000}),
              "This system cannot make such password hashes: Invalid argument");
}

TEST(PasswordHash, NothingIsVerifiedByWhatIsNoHash) {
    EXPECT_FALSE(verifyPassword(SecretText("secret"), ""));
    EXPECT_FALSE(verifyPassword(SecretText("secret"), "*"));
    EXPECT_FALSE(verifyPassword(SecretText("secret"), "secret"));
    // crypt(3) would complete it.
    EXPECT_FALSE(verifyPassword(SecretText("secret"), "$6$salt"));
}

TEST(PasswordHash, LeavesNoPasswordInMemory) {
    const SecretText password("correct horse battery staple");
    AllocationProbe::lookFor(password.view());
    const std::string hash = hashPassword(password, kCheapHashing);
    EXPECT_TRUE(verifyPassword(password, hash));
    EXPECT_EQ(AllocationProbe::remainsFound(), 0U);
    AllocationProbe::lookFor("");
}

}  // namespace
