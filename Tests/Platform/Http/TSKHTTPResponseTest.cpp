#include <gtest/gtest.h>
#include <stdexcept>

#include "Platform/Http/TSKHTTPResponse.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"
#include "Tests/Support/RecordingStreams.h"

namespace {

TEST(TSKHTTPResponse, WritesTheWholeHeadInOnePiece) {
    TSKHTTPResponse response("HTTP/1.1", "200", "OK");
    response.setHeaderField("Connection", "close", false);
    response.setContentLength(1234);
    response.setContentType("text/xml");
    RecordedOutput output;
    response.writeResponseTo(output);
    EXPECT_EQ(output.text,
              "HTTP/1.1 200 OK\r\n"
              "Connection: close\r\n"
              "Content-Length: 1234\r\n"
              "Content-Type: text/xml\r\n"
              "\r\n");
    EXPECT_EQ(output.writes, 1);
}

TEST(TSKHTTPResponse, WritesAHeadWithoutFieldsAndReason) {
    RecordedOutput output;
    TSKHTTPResponse("HTTP/1.0", "404", "").writeResponseTo(output);
    EXPECT_EQ(output.text, "HTTP/1.0 404 \r\n\r\n");
}

TEST(TSKHTTPResponse, TellsStatusCodeAndReason) {
    const TSKHTTPResponse response("HTTP/1.1", "404", "File Not Found");
    EXPECT_EQ(response.getStatusCode(), "404");
    EXPECT_EQ(response.getReason(), "File Not Found");
}

void expectRefused(const TSKHTTPResponse& response, const char* message) {
    RecordedOutput output;
    try {
        response.writeResponseTo(output);
        ADD_FAILURE() << "written: " << output.text;
    } catch (const TeskBaseException& exception) {
        EXPECT_EQ(exception.getErrorCode(), CIM_ERR_INVALID_PARAMETER);
        EXPECT_EQ(exception.getMessage(), message);
    }
    EXPECT_EQ(output.writes, 0);
}

TEST(TSKHTTPResponse, RefusesFieldValuesThatHoldLineBreaksOrZeroBytes) {
    for (const TSKString& value : {TSKString("a\rb"), TSKString("a\n"), TSKString("\0", 1),
                                   TSKString("a\r\nSet-Cookie: b")}) {
        TSKHTTPResponse response("HTTP/1.1", "200", "OK");
        response.setHeaderField("X-Good", "good", false);
        response.setHeaderField("X-Bad", value, false);
        expectRefused(response, "A header field holds a line break or a zero byte");
    }
}

TEST(TSKHTTPResponse, RefusesFieldNamesThatAreNoTokens) {
    for (const TSKString& name :
         {TSKString("a\rb"), TSKString("a\nb"), TSKString("a\0b", 3), TSKString(""),
          TSKString("a b"), TSKString("a:"), TSKString("\xc3\xa4")}) {
        TSKHTTPResponse response("HTTP/1.1", "200", "OK");
        response.setHeaderField(name, "value", false);
        expectRefused(response, "The name of a header field is no token");
    }
}

TEST(TSKHTTPResponse, RefusesABrokenReason) {
    expectRefused({"HTTP/1.1", "200", "OK\r\nX: y"},
                  "The reason holds a line break or a zero byte");
}

TEST(TSKHTTPResponse, RefusesABrokenStatusCode) {
    for (const char* const code : {"", "20", "2000", "20x", "-20", "20\n"})
        expectRefused({"HTTP/1.1", code, "OK"}, "The status code is not three digits");
}

TEST(TSKHTTPResponse, RefusesOtherProtocols) {
    for (const char* const protocol :
         {"", "HTTP/2", "HTTP/2.0", "HTTP/1.", "HTTP/1.10", "http/1.1", "HTTP/1.1\n"})
        expectRefused({protocol, "200", "OK"}, "The protocol is not HTTP/1.x");
}

class BrokenOutput : public RecordedOutput {
  public:
    void write(const char* /*data*/, unsigned long /*length*/) override {
        throw std::runtime_error("connection lost");
    }
};

TEST(TSKHTTPResponse, PassesOnWhatTheStreamThrows) {
    BrokenOutput output;
    EXPECT_THROW(TSKHTTPResponse("HTTP/1.1", "200", "OK").writeResponseTo(output),
                 std::runtime_error);
}

}  // namespace
