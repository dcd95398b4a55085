#include "Tests/ObjectManager/Http/WithoutDate.h"

#include <array>
#include <cmath>
#include <ctime>
#include <gtest/gtest.h>

std::string withoutDate(const std::string& response) {
    const std::size_t begin = response.find("\r\n") + 2;
    const std::size_t end = response.find("\r\n", begin) + 2;
    const std::string line = response.substr(begin, end - begin);
    constexpr const char* kForm = "Date: %a, %d %b %Y %H:%M:%S GMT\r\n";
    std::tm time{};
    EXPECT_NE(strptime(line.c_str(), kForm, &time), nullptr) << "in: " << response.substr(0, 300);
    std::array<char, 100> written{};
    EXPECT_NE(std::strftime(written.data(), written.size(), kForm, &time), 0U);
    EXPECT_EQ(line, written.data());
    EXPECT_LT(std::abs(std::difftime(timegm(&time), std::time(nullptr))), 300);
    return std::string(response).erase(begin, line.size());
}
