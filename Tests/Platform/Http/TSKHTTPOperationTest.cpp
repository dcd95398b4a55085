#include <climits>
#include <gtest/gtest.h>
#include <string>

#include "Platform/Http/TSKHTTPOperation.h"
#include "Platform/Http/TSKHTTPRequest.h"

namespace {

std::string fieldsOf(const TSKHTTPOperation& operation) {
    std::string text;
    for (const TSKHTTPOperation::HeaderField& field : operation.getHeaderFields())
        text += std::string(field.name.data()) + "=" + field.value.data() + ";";
    return text;
}

class TSKHTTPOperationTest : public testing::Test {
  protected:
    TSKHTTPRequest operation_{"GET", "/", "HTTP/1.1"};
};

TEST_F(TSKHTTPOperationTest, KnowsItsProtocol) {
    EXPECT_EQ(operation_.getProtocol(), "HTTP/1.1");
}

TEST_F(TSKHTTPOperationTest, HasNoFieldsAtFirst) {
    EXPECT_EQ(operation_.getHeaderField("Host"), nullptr);
    EXPECT_EQ(operation_.getContentLength(), 0U);
    EXPECT_EQ(fieldsOf(operation_), "");
}

TEST_F(TSKHTTPOperationTest, FieldNamesAreFoundInAnyCase) {
    operation_.setHeaderField("Content-Type", "text/xml", false);
    ASSERT_NE(operation_.getHeaderField("CONTENT-TYPE"), nullptr);
    EXPECT_EQ(*operation_.getHeaderField("content-type"), "text/xml");
}

TEST_F(TSKHTTPOperationTest, SettingReplacesAllFieldsOfThatNameInPlace) {
    operation_.setHeaderField("A", "1", false);
    operation_.setHeaderField("B", "2", false);
    operation_.setHeaderField("a", "3", true);
    operation_.setHeaderField("C", "4", false);
    EXPECT_EQ(fieldsOf(operation_), "A=1;B=2;a=3;C=4;");
    operation_.setHeaderField("a", "5", false);
    EXPECT_EQ(fieldsOf(operation_), "a=5;B=2;C=4;");
}

TEST_F(TSKHTTPOperationTest, KeepingExistingFieldsAddsAnother) {
    operation_.setHeaderField("A", "1", true);
    operation_.setHeaderField("A", "2", true);
    EXPECT_EQ(fieldsOf(operation_), "A=1;A=2;");
    EXPECT_EQ(*operation_.getHeaderField("A"), "1");
}

TEST_F(TSKHTTPOperationTest, AFieldMayBeSetFromItself) {
    operation_.setHeaderField("A", "1", false);
    const TSKHTTPOperation::HeaderField& field = operation_.getHeaderFields().front();
    operation_.setHeaderField(field.name, field.value, false);
    operation_.setHeaderField(field.name, field.value, true);
    EXPECT_EQ(fieldsOf(operation_), "A=1;A=1;");
}

TEST_F(TSKHTTPOperationTest, ContentLengthIsAField) {
    operation_.setContentLength(ULONG_MAX);
    EXPECT_EQ(operation_.getContentLength(), ULONG_MAX);
    operation_.setContentLength(0);
    EXPECT_EQ(operation_.getContentLength(), 0U);
    EXPECT_EQ(fieldsOf(operation_), "Content-Length=0;");
}

TEST_F(TSKHTTPOperationTest, AContentLengthThatIsNoNumberCountsAsNone) {
    for (const char* const value :
         {"", " 1", "1 ", "-1", "+1", "0x1", "1,1", "18446744073709551616"}) {
        operation_.setHeaderField("Content-Length", value, false);
        EXPECT_EQ(operation_.getContentLength(), 0U) << '"' << value << '"';
    }
    operation_.setHeaderField("content-length", "17", false);
    EXPECT_EQ(operation_.getContentLength(), 17U);
}

TEST_F(TSKHTTPOperationTest, ContentTypeIsAField) {
    operation_.setContentType("text/html");
    operation_.setContentType("text/xml");
    EXPECT_EQ(fieldsOf(operation_), "Content-Type=text/xml;");
}

}  // namespace
