// What libTeskPlatform.so shows to the programs that load it.

#include <gtest/gtest.h>
#include <sstream>
#include <string>

#include "Tests/Support/Command.h"

namespace {

TEST(PlatformExports, NothingOfTheStandardLibrary) {
    std::istringstream symbols(outputOf(
        "nm --dynamic --defined-only --demangle --format=just-symbols '" PLATFORM_FILE "'"));
    int count = 0;
    for (std::string symbol; std::getline(symbols, symbol); ++count)
        EXPECT_FALSE(symbol.starts_with("std::")) << symbol;
    EXPECT_GT(count, 100);
}

}  // namespace
