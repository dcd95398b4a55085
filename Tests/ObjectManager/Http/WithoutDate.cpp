#include "Tests/ObjectManager/Http/WithoutDate.h"

#include <cmath>
#include <ctime>
#include <gtest/gtest.h>
#include <regex>

std::string withoutDate(const std::string& answer) {
    const std::size_t begin = answer.find("\r\n") + 2;
    const std::size_t end = answer.find("\r\n", begin) + 2;
    const std::string line = answer.substr(begin, end - begin);
    const std::regex form(
        "Date: (Mon|Tue|Wed|Thu|Fri|Sat|Sun), [0-9]{2} "
        "(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [0-9]{4} "
        "[0-9]{2}:[0-9]{2}:[0-9]{2} GMT\r\n");
    EXPECT_TRUE(std::regex_match(line, form)) << "in: " << answer.substr(0, 300);
    std::tm time{};
    EXPECT_NE(strptime(line.c_str(), "Date: %a, %d %b %Y %H:%M:%S GMT\r\n", &time), nullptr);
    EXPECT_LT(std::abs(std::difftime(timegm(&time), std::time(nullptr))), 300);
    return std::string(answer).erase(begin, line.size());
}
