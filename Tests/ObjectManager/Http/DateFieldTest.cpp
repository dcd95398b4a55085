#include <gtest/gtest.h>

#include "ObjectManager/Http/DateField.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"

namespace {

using Http::formatDateField;

TEST(DateField, IsWrittenAsRfc9110Shows) {
    EXPECT_EQ(formatDateField(784'111'777), "Date: Sun, 06 Nov 1994 08:49:37 GMT\r\n");
}

TEST(DateField, EveryDayAndMonthHasItsName) {
    EXPECT_EQ(formatDateField(0), "Date: Thu, 01 Jan 1970 00:00:00 GMT\r\n");
    EXPECT_EQ(formatDateField(1'709'164'800), "Date: Thu, 29 Feb 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(formatDateField(1'711'929'599), "Date: Sun, 31 Mar 2024 23:59:59 GMT\r\n");
    EXPECT_EQ(formatDateField(1'711'929'600), "Date: Mon, 01 Apr 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(formatDateField(1'715'040'000), "Date: Tue, 07 May 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(formatDateField(1'718'150'400), "Date: Wed, 12 Jun 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(formatDateField(1'721'347'200), "Date: Fri, 19 Jul 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(formatDateField(1'723'852'800), "Date: Sat, 17 Aug 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(formatDateField(1'725'840'000), "Date: Mon, 09 Sep 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(formatDateField(1'729'555'200), "Date: Tue, 22 Oct 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(formatDateField(1'735'603'200), "Date: Tue, 31 Dec 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(formatDateField(253'402'300'799), "Date: Fri, 31 Dec 9999 23:59:59 GMT\r\n");
}

TEST(DateField, TheCurrentOneIsNow) {
    EXPECT_EQ(withoutDate("HTTP/1.1 200 OK\r\n" + Http::currentDateField() + "\r\n"),
              "HTTP/1.1 200 OK\r\n\r\n");
    EXPECT_EQ(&Http::currentDateField(), &Http::currentDateField());
}

}  // namespace
