#include <gtest/gtest.h>

#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Tests/Support/RecordingStreams.h"

namespace {

class Token : public urma::security::ISecurityToken {
  public:
    [[nodiscard]] TSKString getUserName() const override { return "alice"; }
};

// Lets alice in and challenges everybody else.
class Authenticator : public ITeskAuthenticator {
  public:
    bool authenticateRequest(TSKHTTPRequest& request, TSKGenericHTTPIStream& /*istr*/,
                             TSKGenericHTTPOStream& ostr,
                             TSKSmrPtr<urma::security::ISecurityToken>& token) override {
        const TSKString* user = request.getHeaderField("User");
        if (user == nullptr || !user->equals("alice")) {
            ostr.write("who?", 4);
            return false;
        }
        token = TSKSmrPtr<Token>::make();
        return true;
    }
};

class AuthenticationHelperTest : public testing::Test {
  protected:
    ~AuthenticationHelperTest() override { AuthenticationHelper::setAuthenticator(nullptr); }

    bool authenticate() {
        return AuthenticationHelper::authenticateRequest(request_, input_, output_, token_);
    }

    TSKHTTPRequest request_{"GET", "/", "HTTP/1.1"};
    EmptyInput input_;
    RecordedOutput output_;
    TSKSmrPtr<urma::security::ISecurityToken> token_;
};

TEST_F(AuthenticationHelperTest, RefusesEverybodyWithoutAnAuthenticator) {
    EXPECT_FALSE(authenticate());
    EXPECT_EQ(token_, nullptr);
}

TEST_F(AuthenticationHelperTest, AsksTheInstalledAuthenticator) {
    const auto authenticator = TSKSmrPtr<Authenticator>::make();
    EXPECT_EQ(AuthenticationHelper::setAuthenticator(authenticator), nullptr);
    EXPECT_FALSE(authenticate());
    EXPECT_EQ(output_.text, "who?");
    EXPECT_EQ(token_, nullptr);

    request_.setHeaderField("User", "alice", false);
    EXPECT_TRUE(authenticate());
    EXPECT_EQ(token_->getUserName(), "alice");
    EXPECT_EQ(AuthenticationHelper::setAuthenticator(nullptr), authenticator);
    EXPECT_FALSE(authenticate());
}

}  // namespace
