#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/Security/BasicAuthenticator.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Tests/ObjectManager/Security/BasicField.h"
#include "Tests/ObjectManager/Security/Hashes.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/RecordingStreams.h"
#include "Tests/Support/Threads.h"

namespace {

using Security::BasicAuthenticator;
using Security::CheckerHooks;
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
    CheckerHooks countingHooks() {
        CheckerHooks hooks;
        hooks.verify = [this](const SecretText& password, const std::string& hash) {
            ++hashes_;
            return Security::verifyPassword(password, hash);
        };
        return hooks;
    }

    using Fields = std::vector<std::pair<const char*, std::string>>;

    static TSKHTTPRequest makeRequest(const Fields& fields) {
        TSKHTTPRequest request("GET", "/", "HTTP/1.1");
        for (const auto& [name, value] : fields)
            request.setHeaderField(name, TSKString(value), true);
        return request;
    }
    static TSKHTTPRequest makeRequest(std::string_view user, std::string_view password) {
        return makeRequest({{"Authorization", basicField(user, password)}});
    }

    // The name in the token that a request gets; "refused" without.
    static std::string authenticate(BasicAuthenticator& authenticator, TSKHTTPRequest& request) {
        UntouchedInput input;
        RecordedOutput output;
        TSKSmrPtr<urma::security::ISecurityToken> token;
        const bool isAccepted = authenticator.authenticateRequest(request, input, output, token);
        EXPECT_EQ(output.writes, 0);
        EXPECT_EQ(isAccepted, token != nullptr);
        return isAccepted ? token->getUserName().data() : "refused";
    }
    static std::string authenticate(BasicAuthenticator& authenticator, const Fields& fields) {
        TSKHTTPRequest request = makeRequest(fields);
        return authenticate(authenticator, request);
    }
    static std::string authenticate(BasicAuthenticator& authenticator, std::string_view user,
                                    std::string_view password) {
        TSKHTTPRequest request = makeRequest(user, password);
        return authenticate(authenticator, request);
    }

    [[nodiscard]] bool needsPasswordHash(const Fields& fields) const {
        return needsPasswordHash(makeRequest(fields));
    }
    [[nodiscard]] bool needsPasswordHash(const TSKHTTPRequest& request) const {
        return authenticator_.unverifiedLogin(request).has_value();
    }

    std::atomic<int> hashes_ = 0;
    BasicAuthenticator authenticator_{
        UserTable(
            {{"alice", kSha512OfSecret}, {"J\xC3\xBCrgen", cheapHash("p\xC3\xA4ss:w\xC3\xB6rd")}}),
        {},
        countingHooks()};
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

TEST_F(BasicAuthenticatorTest, NeedsNoPasswordHashWhereThereIsNothingToHash) {
    const std::string field = basicField("alice", "wrong");
    EXPECT_FALSE(needsPasswordHash({}));
    EXPECT_FALSE(needsPasswordHash({{"Authorization", "Bearer YWxpY2U6c2VjcmV0"}}));
    EXPECT_FALSE(needsPasswordHash({{"Authorization", field}, {"Authorization", field}}));
    EXPECT_TRUE(needsPasswordHash({{"Authorization", field}}));
    EXPECT_EQ(hashes_, 0);
}

TEST_F(BasicAuthenticatorTest, NeedsNoPasswordHashForUsersThatWereAuthenticatedBefore) {
    const std::string right = basicField("alice", "secret");
    const std::string wrong = basicField("alice", "wrong");
    EXPECT_TRUE(needsPasswordHash({{"Authorization", right}}));
    EXPECT_EQ(authenticate(authenticator_, "alice", "secret"), "alice");
    EXPECT_EQ(authenticate(authenticator_, "alice", "wrong"), "refused");
    EXPECT_FALSE(needsPasswordHash({{"Authorization", right}}));
    EXPECT_TRUE(needsPasswordHash({{"Authorization", wrong}}));

    authenticator_.setUsers(UserTable({{"alice", kSha512OfSecret}, {"bob", cheapHash("another")}}));
    EXPECT_FALSE(needsPasswordHash({{"Authorization", right}}));
    authenticator_.setUsers(UserTable({User{"alice", cheapHash("secret")}}));
    EXPECT_TRUE(needsPasswordHash({{"Authorization", right}}));
}

TEST_F(BasicAuthenticatorTest, APreparedRequestIsACopy) {
    TSKHTTPRequest request("GET", "/a", "HTTP/1.0");
    request.setHeaderField("Host", "b", false);
    request.setHeaderField("Authorization", TSKString(basicField("alice", "secret")), false);
    const std::unique_ptr<TSKHTTPRequest> prepared = authenticator_.prepare(request);
    EXPECT_EQ(prepared->getMethod(), "GET");
    EXPECT_EQ(prepared->getUri(), "/a");
    EXPECT_EQ(prepared->getProtocol(), "HTTP/1.0");
    ASSERT_EQ(prepared->getHeaderFields().size(), 2U);
    EXPECT_EQ(*prepared->getHost(), "b");
}

TEST_F(BasicAuthenticatorTest, APreparedRequestIsAuthenticatedLikeAnyOther) {
    const auto right = authenticator_.prepare(makeRequest("alice", "secret"));
    EXPECT_TRUE(needsPasswordHash(*right));
    EXPECT_EQ(authenticate(authenticator_, *right), "alice");
    EXPECT_FALSE(needsPasswordHash(*right));
    EXPECT_EQ(authenticate(authenticator_, *right), "alice");
    EXPECT_EQ(hashes_, 1);

    const auto wrong = authenticator_.prepare(makeRequest("alice", "wrong"));
    EXPECT_EQ(authenticate(authenticator_, *wrong), "refused");
    const auto without = authenticator_.prepare(makeRequest({}));
    EXPECT_FALSE(needsPasswordHash(*without));
    EXPECT_EQ(authenticate(authenticator_, *without), "refused");
    EXPECT_EQ(hashes_, 2);
}

TEST_F(BasicAuthenticatorTest, EqualCredentialsAreToldByEqualTexts) {
    const auto first = authenticator_.unverifiedLogin(makeRequest("alice", "secret"));
    const auto second = authenticator_.unverifiedLogin(makeRequest("alice", "secret"));
    const auto wrong = authenticator_.unverifiedLogin(makeRequest("alice", "Secret"));
    ASSERT_TRUE(first && second && wrong);
    EXPECT_EQ(first->user, "alice");
    EXPECT_EQ(first->credentials, second->credentials);
    EXPECT_NE(first->credentials, wrong->credentials);
}

TEST_F(BasicAuthenticatorTest, PreparedRequestsWithEqualCredentialsShareOneHash) {
    for (const char* const password : {"secret", "wrong"}) {
        hashes_ = 0;
        const bool isRight = password == std::string("secret");
        std::vector<std::unique_ptr<TSKHTTPRequest>> requests;
        for (int count = 0; count < 5; ++count) {
            requests.push_back(authenticator_.prepare(makeRequest("alice", password)));
            EXPECT_TRUE(needsPasswordHash(*requests.back()));
        }
        EXPECT_EQ(authenticator_.verify(*requests.front()), isRight);
        for (const auto& request : requests) {
            EXPECT_FALSE(needsPasswordHash(*request));
            EXPECT_EQ(authenticate(authenticator_, *request), isRight ? "alice" : "refused");
        }
        EXPECT_EQ(hashes_, 1) << password;
    }
    EXPECT_TRUE(needsPasswordHash(*authenticator_.prepare(makeRequest("alice", "wrong"))));
}

TEST_F(BasicAuthenticatorTest, WhatIsVerifiedAfterTheUsersHaveChangedIsVerifiedForTheNewOnes) {
    const auto prepared = authenticator_.prepare(makeRequest("alice", "secret"));
    authenticator_.setUsers(UserTable({User{"alice", cheapHash("new")}}));
    EXPECT_FALSE(authenticator_.verify(*prepared));
    EXPECT_FALSE(needsPasswordHash(*prepared));
    EXPECT_EQ(authenticate(authenticator_, *prepared), "refused");
    EXPECT_EQ(hashes_, 1);
}

TEST_F(BasicAuthenticatorTest, APasswordThatWasRevokedAfterARequestWasPreparedIsRefused) {
    EXPECT_EQ(authenticate(authenticator_, "alice", "secret"), "alice");
    const auto prepared = authenticator_.prepare(makeRequest("alice", "secret"));
    EXPECT_FALSE(needsPasswordHash(*prepared));
    authenticator_.setUsers(UserTable({User{"alice", cheapHash("new")}}));
    EXPECT_TRUE(needsPasswordHash(*prepared));
    EXPECT_EQ(authenticate(authenticator_, *prepared), "refused");
    authenticator_.setUsers(UserTable());
    EXPECT_EQ(authenticate(authenticator_, *prepared), "refused");
}

TEST_F(BasicAuthenticatorTest, APasswordThatWasSetAfterARequestWasPreparedIsAccepted) {
    const auto prepared = authenticator_.prepare(makeRequest("alice", "new"));
    authenticator_.setUsers(UserTable({User{"alice", cheapHash("new")}}));
    EXPECT_EQ(authenticate(authenticator_, *prepared), "alice");
}

TEST_F(BasicAuthenticatorTest, TheCredentialsOfAPreparedRequestAreThoseOfItsHeaderField) {
    const auto prepared = authenticator_.prepare(makeRequest("alice", "secret"));
    prepared->setHeaderField("Authorization", TSKString(basicField("alice", "wrong")), false);
    EXPECT_EQ(authenticate(authenticator_, *prepared), "refused");
    prepared->setHeaderField("Authorization", TSKString(basicField("alice", "secret")), false);
    EXPECT_EQ(authenticate(authenticator_, *prepared), "alice");
    prepared->setHeaderField("Authorization", TSKString(basicField("alice", "secret")), true);
    EXPECT_EQ(authenticate(authenticator_, *prepared), "refused");
}

TEST_F(BasicAuthenticatorTest, ARequestThatAnotherAuthenticatorPreparedIsCheckedAnew) {
    BasicAuthenticator other(UserTable({User{"alice", cheapHash("other")}}));
    const auto prepared = other.prepare(makeRequest("alice", "other"));
    EXPECT_EQ(authenticate(authenticator_, *prepared), "refused");
    EXPECT_EQ(authenticate(other, *prepared), "alice");
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
    static_cast<void>(authenticator.prepare(makeRequest({{"Authorization", right}})));
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
            else if (index == 2)
                EXPECT_EQ(authenticate(authenticator_,
                                       *authenticator_.prepare(makeRequest("alice", "secret"))),
                          "alice");
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

TEST_F(BasicAuthenticatorTest, TheUserOfACertificateNeedsNoPassword) {
    const auto plain = authenticator_.prepare(makeRequest({}), "CN=bob");
    EXPECT_EQ(authenticate(authenticator_, *plain), "CN=bob");
    EXPECT_EQ(authenticator_.userOf(*plain), "CN=bob");
    const auto withPassword = authenticator_.prepare(makeRequest("alice", "wrong"), "CN=bob");
    EXPECT_FALSE(needsPasswordHash(*withPassword));
    EXPECT_EQ(authenticate(authenticator_, *withPassword), "CN=bob");
    // A header field cannot say so.
    TSKHTTPRequest forged = makeRequest({{"X-Certificate-User", "CN=bob"}});
    EXPECT_EQ(authenticate(authenticator_, forged), "refused");
}

}  // namespace
