#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Index/SourceHash.h"

namespace {

// As "printf TEXT | openssl dgst -sha256 -binary | base64" says.
TEST(SourceHash, IsTheHashInBase64) {
    EXPECT_EQ(Index::sourceHash(""), "'sha256-47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hSuFU='");
    EXPECT_EQ(Index::sourceHash("abc"), "'sha256-ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0='");
}

}  // namespace
