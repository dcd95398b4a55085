#include <gtest/gtest.h>

#include "ObjectManager/Security/AnonymousAuthenticator.h"
#include "Tests/Support/RecordingStreams.h"

namespace {

TEST(AnonymousAuthenticator, AcceptsEveryRequestForTheUserAnonymous) {
    Security::AnonymousAuthenticator authenticator;
    RecordedOutput output;
    EmptyInput input;
    TSKHTTPRequest request("GET", "/", "HTTP/1.1");
    TSKSmrPtr<urma::security::ISecurityToken> token;
    EXPECT_TRUE(authenticator.authenticateRequest(request, input, output, token));
    ASSERT_TRUE(token);
    EXPECT_EQ(token->getUserName(), "anonymous");
    EXPECT_EQ(output.text, "");
}

}  // namespace
