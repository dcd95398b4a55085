#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Http/FailedLogins.h"
#include "Tests/Support/RecordingLogSink.h"

namespace {

using Lines = std::vector<std::string>;

class FailedLoginsTest : public testing::Test {
  protected:
    void add(std::string_view user, const char* client = "192.0.2.7") {
        logins_.add(Http::ClientAddress::parse(client).value(), user);
    }

    [[nodiscard]] static std::string line(const std::string& text) {
        return "HttpFrontEnd|2|2|" + text;
    }

    const LogRecording log_;
    std::chrono::steady_clock::time_point now_;
    Http::FailedLogins logins_{[this] { return now_; }};
};

TEST_F(FailedLoginsTest, NameClientAndUser) {
    add("alice");
    EXPECT_EQ(log_.lines(), Lines{line("Failed login from 192.0.2.7 as \"alice\"")});
    now_ += std::chrono::seconds(1);
    add("caf\xC3\xA9 \\ \n", "2001:db8::1");
    EXPECT_EQ(log_.lines().back(),
              line("Failed login from 2001:db8::1 as \"caf\\xc3\\xa9 \\\\ \\x0a\""));
}

TEST_F(FailedLoginsTest, HaveOneLineASecondAndACount) {
    for (int count = 0; count < 4; ++count)
        add("alice");
    now_ += std::chrono::milliseconds(999);
    add("alice");
    logins_.tellRest();
    EXPECT_EQ(log_.lines(), Lines{line("Failed login from 192.0.2.7 as \"alice\"")});
    now_ += std::chrono::milliseconds(1);
    add("bob");
    EXPECT_EQ(log_.lines().back(), line("Failed login from 192.0.2.7 as \"bob\"; 4 others before "
                                        "it are not shown"));
    add("alice");
    now_ += std::chrono::seconds(1);
    add("bob");
    EXPECT_EQ(log_.lines().back(),
              line("Failed login from 192.0.2.7 as \"bob\"; 1 other before it is not shown"));
}

TEST_F(FailedLoginsTest, OfTheLastSecondAreCountedAfterIt) {
    logins_.tellRest();
    EXPECT_EQ(log_.lines(), Lines());
    for (int count = 0; count < 3; ++count)
        add("alice");
    now_ += std::chrono::seconds(1);
    logins_.tellRest();
    EXPECT_EQ(log_.lines().back(), line("2 failed logins are not shown"));
    add("alice");
    now_ += std::chrono::seconds(1);
    logins_.tellRest();
    logins_.tellRest();
    EXPECT_EQ(log_.lines().size(), 3U);
    EXPECT_EQ(log_.lines().back(), line("1 failed login is not shown"));
}

}  // namespace
