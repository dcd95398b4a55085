#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "ObjectManager/Security/BasicAuthenticator.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Tests/ObjectManager/Security/BasicField.h"
#include "Tests/ObjectManager/Security/Hashes.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/RecordingStreams.h"
#include "Tests/Support/Threads.h"

namespace {

using Security::BasicAuthenticator;
using Security::CredentialCheckerOptions;
using Security::SecretText;
using Security::User;
using Security::UserTable;

// A connection from which nothing may be read.
class UntouchedInput : public TSKGenericHTTPIStream {
  public:
    unsigned long read(char* /*buffer*/, unsigned long /*length*/) override {
        ADD_FAILURE() << "The input was read";
        return 0;
    }
};

class BasicAuthenticatorTest : public testing::Test {
  protected:
    CredentialCheckerOptions countingOptions() {
        CredentialCheckerOptions options;
        options.verify = [this](const SecretText& password, const std::string& hash) {
            ++hashes_;
            return Security::verifyPassword(password, hash);
        };
        return options;
    }

    // The name in the token of a request with these fields; "refused" without.
    static std::string authenticate(
        BasicAuthenticator& authenticator,
        const std::vector<std::pair<const char*, std::string>>& fields) {
        TSKHTTPRequest request("GET", "/", "HTTP/1.1");
        for (const auto& [name, value] : fields)
            request.setHeaderField(name, TSKString(value), true);
        UntouchedInput input;
        RecordedOutput output;
        TSKSmrPtr<urma::security::ISecurityToken> token;
        const bool isAccepted = authenticator.authenticateRequest(request, input, output, token);
        EXPECT_EQ(output.writes, 0);
        EXPECT_EQ(isAccepted, token != nullptr);
        return isAccepted ? token->getUserName().data() : "refused";
    }
    static std::string authenticate(BasicAuthenticator& authenticator, std::string_view user,
                                    std::string_view password) {
        return authenticate(authenticator, {{"Authorization", basicField(user, password)}});
    }

    // Whether a request with these fields is decided on quickly.
    [[nodiscard]] bool isQuick(
        const std::vector<std::pair<const char*, std::string>>& fields) const {
        TSKHTTPRequest request("GET", "/", "HTTP/1.1");
        for (const auto& [name, value] : fields)
            request.setHeaderField(name, TSKString(value), true);
        return authenticator_.decidesQuickly(request);
    }

    std::atomic<int> hashes_ = 0;
    BasicAuthenticator authenticator_{
        UserTable(
            {{"alice", kSha512OfSecret}, {"J\xC3\xBCrgen", cheapHash("p\xC3\xA4ss:w\xC3\xB6rd")}}),
        countingOptions()};
};

TEST_F(BasicAuthenticatorTest, LetsUsersInAndTellsTheirNames) {
    EXPECT_EQ(authenticate(authenticator_, "alice", "secret"), "alice");
    EXPECT_EQ(authenticate(authenticator_, "J\xC3\xBCrgen", "p\xC3\xA4ss:w\xC3\xB6rd"),
              "J\xC3\xBCrgen");
}

TEST_F(BasicAuthenticatorTest, RefusesWrongPasswordsAndUnknownUsersAtTheSameCost) {
    EXPECT_EQ(authenticate(authenticator_, "alice", "Secret"), "refused");
    EXPECT_EQ(hashes_, 1);
    EXPECT_EQ(authenticate(authenticator_, "bob", "secret"), "refused");
    EXPECT_EQ(hashes_, 2);
}

TEST_F(BasicAuthenticatorTest, RefusesRequestsWithoutCredentialsWithoutHashing) {
    EXPECT_EQ(authenticate(authenticator_, {}), "refused");
    EXPECT_EQ(authenticate(authenticator_, {{"Authorization", ""}}), "refused");
    EXPECT_EQ(authenticate(authenticator_, {{"Authorization", "Bearer YWxpY2U6c2VjcmV0"}}),
              "refused");
    EXPECT_EQ(
        authenticate(authenticator_, {{"Proxy-Authorization", basicField("alice", "secret")}}),
        "refused");
    EXPECT_EQ(hashes_, 0);
}

TEST_F(BasicAuthenticatorTest, TheFieldIsFoundInAnyCase) {
    const std::string field = basicField("alice", "secret");
    EXPECT_EQ(authenticate(authenticator_, {{"Host", "a"}, {"aUTHORIZATION", field}}), "alice");
}

TEST_F(BasicAuthenticatorTest, RefusesARequestThatSaysTwiceWhoIsCalling) {
    const std::string field = basicField("alice", "secret");
    EXPECT_EQ(authenticate(authenticator_,
                           {{"Authorization", field}, {"Host", "a"}, {"authorization", field}}),
              "refused");
    EXPECT_EQ(hashes_, 0);
}

TEST_F(BasicAuthenticatorTest, HashesARightPasswordOnce) {
    for (int turn = 0; turn < 3; ++turn)
        EXPECT_EQ(authenticate(authenticator_, "alice", "secret"), "alice");
    EXPECT_EQ(hashes_, 1);
}

TEST_F(BasicAuthenticatorTest, ForgetsWhatItVerifiedWhenTheUsersChange) {
    EXPECT_EQ(authenticate(authenticator_, "alice", "secret"), "alice");
    authenticator_.setUsers(UserTable({User{"alice", kSha512OfSecret}}));
    EXPECT_EQ(authenticate(authenticator_, "alice", "secret"), "alice");
    EXPECT_EQ(hashes_, 2);

    authenticator_.setUsers(UserTable({User{"alice", cheapHash("new")}}));
    EXPECT_EQ(authenticate(authenticator_, "alice", "secret"), "refused");
    EXPECT_EQ(authenticate(authenticator_, "alice", "new"), "alice");

    authenticator_.setUsers(UserTable({User{"bob", cheapHash("new")}}));
    EXPECT_EQ(authenticate(authenticator_, "alice", "new"), "refused");
    EXPECT_EQ(authenticate(authenticator_, "bob", "new"), "bob");
}

TEST_F(BasicAuthenticatorTest, DecidesQuicklyWhereThereIsNothingToHash) {
    const std::string field = basicField("alice", "wrong");
    EXPECT_TRUE(isQuick({}));
    EXPECT_TRUE(isQuick({{"Authorization", "Bearer YWxpY2U6c2VjcmV0"}}));
    EXPECT_TRUE(isQuick({{"Authorization", field}, {"Authorization", field}}));
    EXPECT_FALSE(isQuick({{"Authorization", field}}));
    EXPECT_EQ(hashes_, 0);
}

TEST_F(BasicAuthenticatorTest, DecidesQuicklyOnUsersThatItHasLetInBefore) {
    const std::string right = basicField("alice", "secret");
    const std::string wrong = basicField("alice", "wrong");
    EXPECT_FALSE(isQuick({{"Authorization", right}}));
    EXPECT_EQ(authenticate(authenticator_, "alice", "secret"), "alice");
    EXPECT_EQ(authenticate(authenticator_, "alice", "wrong"), "refused");
    EXPECT_TRUE(isQuick({{"Authorization", right}}));
    EXPECT_FALSE(isQuick({{"Authorization", wrong}}));

    authenticator_.setUsers(UserTable({{"alice", kSha512OfSecret}, {"bob", cheapHash("another")}}));
    EXPECT_TRUE(isQuick({{"Authorization", right}}));
    authenticator_.setUsers(UserTable({User{"alice", cheapHash("secret")}}));
    EXPECT_FALSE(isQuick({{"Authorization", right}}));
}

TEST_F(BasicAuthenticatorTest, CanBeInstalled) {
    const auto authenticator =
        TSKSmrPtr<BasicAuthenticator>::make(UserTable({User{"alice", kSha512OfSecret}}));
    AuthenticationHelper::setAuthenticator(authenticator);
    TSKHTTPRequest request("GET", "/", "HTTP/1.1");
    request.setHeaderField("Authorization", TSKString(basicField("alice", "secret")), false);
    EmptyInput input;
    RecordedOutput output;
    TSKSmrPtr<urma::security::ISecurityToken> token;
    EXPECT_TRUE(AuthenticationHelper::authenticateRequest(request, input, output, token));
    EXPECT_EQ(token->getUserName(), "alice");
    AuthenticationHelper::setAuthenticator(nullptr);
}

TEST_F(BasicAuthenticatorTest, LeavesNoPasswordInMemory) {
    const std::string password = "correct horse battery staple";
    BasicAuthenticator authenticator(UserTable({User{"alice", cheapHash(password)}}));
    const std::string right = basicField("alice", password);
    const std::string wrong = basicField("bob", password);
    AllocationProbe::lookFor(password);
    EXPECT_EQ(authenticate(authenticator, {{"Authorization", right}}), "alice");
    EXPECT_EQ(authenticate(authenticator, {{"Authorization", right}}), "alice");
    EXPECT_EQ(authenticate(authenticator, {{"Authorization", wrong}}), "refused");
    EXPECT_EQ(AllocationProbe::remainsFound(), 0U);
    AllocationProbe::lookFor("");
}

TEST_F(BasicAuthenticatorTest, UsersChangeWhileManyThreadsAuthenticate) {
    const UserTable users({User{"alice", kSha512OfSecret}});
    runOnThreads(6, [&](int index) {
        for (int turn = 0; turn < 20; ++turn) {
            if (index == 0)
                authenticator_.setUsers(users);
            else if (index == 1)
                EXPECT_EQ(authenticate(authenticator_, "alice", "wrong"), "refused");
            else
                EXPECT_EQ(authenticate(authenticator_, "alice", "secret"), "alice");
        }
    });
}

TEST_F(BasicAuthenticatorTest, KeepsItsUsersWhenThereIsNoMemoryForOthers) {
    const UserTable former({User{"alice", kSha512OfSecret}});
    const std::string hash = cheapHash("new");
    std::string expected = "alice";
    const std::size_t failures = AllocationProbe::failEachAllocation(
        [&] {
            authenticator_.setUsers(former);
            expected = "alice";
            authenticator_.setUsers(UserTable({User{"bob", hash}}));
            // Sorting can do with less memory.
            expected = "refused";
        },
        [&] { EXPECT_EQ(authenticate(authenticator_, "alice", "secret"), expected); });
    EXPECT_GT(failures, 2U);
    EXPECT_EQ(authenticate(authenticator_, "bob", "new"), "bob");
}

}  // namespace
