#include <gtest/gtest.h>

#include "ObjectManager/Host/LocalAuthenticator.h"
#include "Tests/Support/RecordingStreams.h"

namespace {

TEST(LocalAuthenticator, LetsEverybodyInAsTheUserLocal) {
    Host::LocalAuthenticator authenticator;
    TSKHTTPRequest request("GET", "/", "HTTP/1.1");
    EmptyInput input;
    RecordedOutput output;
    TSKSmrPtr<urma::security::ISecurityToken> token;
    EXPECT_TRUE(authenticator.authenticateRequest(request, input, output, token));
    ASSERT_TRUE(token);
    EXPECT_EQ(token->getUserName(), "local");
    EXPECT_EQ(output.text, "");
}

}  // namespace
