#include <cctype>
#include <climits>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <new>
#include <sstream>
#include <string>
#include <string_view>

#include "Platform/Util/TSKString.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Threads.h"

namespace {

using namespace std::string_view_literals;

constexpr const char* kNull = nullptr;

// Longer than what a string keeps without a buffer.
const char* const kLong = "a text that is longer than the small one";

TSKString repeated(char character, unsigned long count) {
    return TSKString(std::string(count, character));
}

std::string_view viewOf(const TSKString& text) {
    return text;
}

TEST(TSKString, IsEmptyWhenMadeFromNothingNullOrTheEmptyText) {
    for (const TSKString& text : {TSKString(), TSKString(kNull), TSKString(""), TSKString(kNull, 0),
                                  TSKString(std::string_view())}) {
        EXPECT_TRUE(text.isEmpty());
        EXPECT_EQ(text.length(), 0U);
        EXPECT_STREQ(text.data(), "");
    }
}

TEST(TSKString, KeepsTextsOnBothSidesOfTheSmallCapacity) {
    for (const unsigned long length : {1UL, 14UL, 15UL, 16UL, 17UL, 1000UL}) {
        const std::string expected(length, 'x');
        const TSKString text(expected.c_str());
        EXPECT_EQ(text.length(), length);
        EXPECT_STREQ(text.data(), expected.c_str());
        EXPECT_EQ(text[length], '\0');
    }
}

TEST(TSKString, KeepsZeroBytes) {
    TSKString text("a\0b", 3);
    EXPECT_EQ(viewOf(text), "a\0b"sv);
    text += TSKString("\0c", 2);
    text += '\0';
    EXPECT_EQ(viewOf(text), "a\0b\0c\0"sv);
    EXPECT_FALSE(text.equals("a"));
    EXPECT_EQ(text.find('\0'), 1);
    EXPECT_EQ(text.reverseFind('\0'), 5);
    EXPECT_EQ(viewOf(text.substr(1, 3)), "\0b\0"sv);
}

TEST(TSKString, LongCopiesShareTheirBytes) {
    const TSKString text(kLong);
    const TSKString copy = text;
    EXPECT_EQ(copy.data(), text.data());
}

TEST(TSKString, CopiesOfLongTextsAllocateNothing) {
    const TSKString text(kLong);
    AllocationProbe::failAt(1);
    TSKString copy = text;
    copy = text;
    const TSKString moved = std::move(copy);
    const bool allocated = AllocationProbe::hasFailed();
    AllocationProbe::failAt(0);
    EXPECT_FALSE(allocated);
    EXPECT_EQ(moved, text);
}

TEST(TSKString, ChangingACopyLeavesTheOriginal) {
    for (const char* const original : {"Small", kLong}) {
        const TSKString text(original);
        TSKString appended = text;
        appended += "!";
        TSKString lowered = text;
        lowered.toLower();
        TSKString trimmed = text;
        trimmed.trim("aSl");
        TSKString replaced = text;
        replaced = "other";
        TSKString reserved = text;
        reserved.reserve(1000);
        EXPECT_STREQ(text.data(), original);
        EXPECT_EQ(std::string(appended.data()), std::string(original) + "!");
        EXPECT_STREQ(reserved.data(), original);
    }
}

TEST(TSKString, AppendingALongTextToTheEmptyOneSharesIt) {
    const TSKString text(kLong);
    TSKString copy;
    copy += text;
    EXPECT_EQ(copy.data(), text.data());
    copy += "!";
    EXPECT_STREQ(text.data(), kLong);
    EXPECT_EQ(std::string(copy.data()), std::string(kLong) + "!");
}

TEST(TSKString, AppendingToTheEmptyTextUsesTheRoomThatWasReserved) {
    TSKString text;
    text.reserve(1000);
    const char* const room = text.data();
    text += TSKString(kLong);
    EXPECT_EQ(text.data(), room);
    EXPECT_STREQ(text.data(), kLong);
}

TEST(TSKString, MovingLeavesTheEmptyText) {
    for (const char* const original : {"small", kLong}) {
        TSKString from(original);
        const TSKString to = std::move(from);
        EXPECT_STREQ(to.data(), original);
        EXPECT_TRUE(from.isEmpty());  // this is what is tested
        from += "new";
        EXPECT_STREQ(from.data(), "new");

        TSKString assigned(kLong);
        from = original;
        assigned = std::move(from);
        EXPECT_STREQ(assigned.data(), original);
        EXPECT_TRUE(from.isEmpty());
    }
}

TEST(TSKString, AssigningToItselfKeepsTheText) {
    for (const char* const original : {"", "small", kLong}) {
        TSKString text(original);
        const TSKString& same = text;
        text = same;
        EXPECT_STREQ(text.data(), original);
        text = std::move(const_cast<TSKString&>(same));
        EXPECT_STREQ(text.data(), original);
        text = text.data();
        EXPECT_STREQ(text.data(), original);
    }
}

TEST(TSKString, AssigningAPartOfItselfKeepsThatPart) {
    TSKString text(kLong);
    text = text.data() + 2;
    EXPECT_STREQ(text.data(), kLong + 2);
}

TEST(TSKString, AppendingItselfDoublesTheText) {
    for (const char* const original : {"ab", "12345678", "123456789012345", kLong}) {
        TSKString text(original);
        text += text;
        EXPECT_EQ(std::string(text.data()), std::string(original) + original);

        TSKString part(original);
        part += part.data() + 1;
        EXPECT_EQ(std::string(part.data()), std::string(original) + (original + 1));

        TSKString roomy(original);
        roomy.reserve(500);
        roomy += roomy;
        EXPECT_EQ(std::string(roomy.data()), std::string(original) + original);
    }
}

TEST(TSKString, AppendingNullOrNothingChangesNothing) {
    TSKString text("a");
    text += kNull;
    text += "";
    text += TSKString();
    text.append(kNull, 0);
    EXPECT_STREQ(text.data(), "a");
}

TEST(TSKString, AppendsAMillionBytesWithFewAllocations) {
    AllocationProbe::failAt(30);  // a doubling buffer needs 17
    TSKString text;
    for (int count = 0; count < 1'000'000; ++count)
        text += 'x';
    const bool allocatedMore = AllocationProbe::hasFailed();
    AllocationProbe::failAt(0);
    EXPECT_FALSE(allocatedMore);
    EXPECT_EQ(text, repeated('x', 1'000'000));
}

TEST(TSKString, AppendsUpToTheReservedLengthWithoutAllocating) {
    TSKString text;
    text.reserve(100);
    AllocationProbe::failAt(1);
    for (int count = 0; count < 100; ++count)
        text += 'x';
    const bool allocated = AllocationProbe::hasFailed();
    AllocationProbe::failAt(0);
    EXPECT_FALSE(allocated);
    EXPECT_EQ(text, repeated('x', 100));
}

TEST(TSKString, ExtendAppendsBytesForTheCallerToWrite) {
    for (const char* const original : {"", "small", "123456789012345", kLong}) {
        TSKString text(original);
        const TSKString copy = text;
        std::memcpy(text.extend(3), "end", 3);
        EXPECT_EQ(std::string(text.data()), std::string(original) + "end");
        (void)text.extend(0);
        EXPECT_EQ(std::string(text.data()), std::string(original) + "end");
        EXPECT_STREQ(copy.data(), original);
    }
}

TEST(TSKString, AFailedExtendLeavesTheText) {
    for (const char* const original : {"123456789012345", kLong}) {
        TSKString text(original);
        AllocationProbe::failAt(1);
        EXPECT_THROW((void)text.extend(100), std::bad_alloc);
        AllocationProbe::failAt(0);
        EXPECT_STREQ(text.data(), original);
    }
}

TEST(TSKString, ReservingLessThanItsLengthKeepsTheText) {
    TSKString text(kLong);
    text.reserve(0);
    text.reserve(3);
    EXPECT_STREQ(text.data(), kLong);
}

TEST(TSKString, RefusesLengthsThatNoMemoryHolds) {
    EXPECT_THROW(TSKString().reserve(ULONG_MAX), std::bad_alloc);
    EXPECT_THROW(TSKString().reserve(static_cast<unsigned long>(PTRDIFF_MAX)), std::bad_alloc);
    TSKString text("a");
    volatile unsigned long tooMuch = ULONG_MAX;  // the compiler would warn of the constant
    EXPECT_THROW(text.append("b", tooMuch), std::bad_alloc);
    EXPECT_STREQ(text.data(), "a");
}

TEST(TSKString, KeepsItsTextWhenAnAllocationFails) {
    TSKString text("Exactly15bytes.");
    const TSKString shared(kLong);
    const auto operation = [&] {
        TSKString work = text;
        work += " grows";
        TSKString lowered = shared;
        lowered.toLower();
        TSKString trimmed = shared;
        trimmed.trim("a");
        (void)TSKString().sprintf("%s and %s", kLong, kLong);
        (void)(shared + shared);
    };
    const std::size_t failures = AllocationProbe::failEachAllocation(operation, [&] {
        EXPECT_STREQ(text.data(), "Exactly15bytes.");
        EXPECT_STREQ(shared.data(), kLong);
    });
    EXPECT_GE(failures, 4U);

    AllocationProbe::failAt(1);
    EXPECT_THROW(text += " grows", std::bad_alloc);
    EXPECT_STREQ(text.data(), "Exactly15bytes.");
    AllocationProbe::failAt(1);
    EXPECT_THROW(text.sprintf("%s", kLong), std::bad_alloc);
    AllocationProbe::failAt(0);
    EXPECT_STREQ(text.data(), "Exactly15bytes.");
}

TEST(TSKString, ConcatenatesInEveryForm) {
    const TSKString a("a");
    const TSKString b("b");
    EXPECT_EQ(a + b, "ab");
    EXPECT_EQ(a + "b", "ab");
    EXPECT_EQ("a" + b, "ab");
    EXPECT_EQ(a + kNull, "a");
    EXPECT_EQ(kNull + b, "b");
    EXPECT_EQ(a + b + "c" + TSKString("d"), "abcd");
    EXPECT_EQ(TSKString(kLong) + kLong, repeated('x', 0) + kLong + kLong);
    EXPECT_EQ(a, "a");
    EXPECT_EQ(b, "b");
}

TEST(TSKString, EqualsComparesAllBytes) {
    const TSKString text("Abc");
    EXPECT_TRUE(text.equals("Abc"));
    EXPECT_TRUE(text.equals(TSKString("Abc")));
    EXPECT_FALSE(text.equals("abc"));
    EXPECT_FALSE(text.equals("Ab"));
    EXPECT_FALSE(text.equals("Abcd"));
    EXPECT_FALSE(text.equals(kNull));
    EXPECT_TRUE(TSKString().equals(kNull));
    EXPECT_TRUE(text == "Abc");
    EXPECT_TRUE(text != TSKString("abc"));
}

TEST(TSKString, OrdersByBytes) {
    EXPECT_LT(TSKString("B"), TSKString("a"));
    EXPECT_LT(TSKString("a"), TSKString("aa"));
    EXPECT_GT(TSKString("\xc3\xa4"), TSKString("z"));
    EXPECT_LT(TSKString(), TSKString("\0", 1));
}

TEST(TSKString, EqualsIgnoreCaseFoldsAsciiLettersOnly) {
    const TSKString text("Boolean-\xc3\x84[");
    EXPECT_TRUE(text.equalsIgnoreCase("bOOLEAN-\xc3\x84["));
    EXPECT_TRUE(text.isEqualCaseInsensitive("BOOLEAN-\xc3\x84["));
    EXPECT_TRUE(text.equalsIgnoreCase(TSKString("boolean-\xc3\x84[")));
    EXPECT_TRUE(text.isEqualCaseInsensitive(TSKString("boolean-\xc3\x84[")));
    EXPECT_FALSE(text.equalsIgnoreCase("boolean-\xc3\xa4["));  // not an ASCII letter
    EXPECT_FALSE(text.equalsIgnoreCase("boolean-\xc3\x84{"));  // '{' is '[' with the case bit
    EXPECT_FALSE(text.equalsIgnoreCase("boolean"));
    EXPECT_TRUE(TSKString().equalsIgnoreCase(kNull));
    EXPECT_FALSE(TSKString("@").equalsIgnoreCase("`"));
}

TEST(TSKString, EndsWithComparesExactlyForFlagZero) {
    const TSKString text("/root/Foo.wsdl");
    EXPECT_TRUE(text.endsWith(".wsdl", 0));
    EXPECT_FALSE(text.endsWith(".WSDL", 0));
    EXPECT_TRUE(text.endsWith(".WSDL", 1));
    EXPECT_TRUE(text.endsWith("/root/Foo.wsdl", 0));
    EXPECT_FALSE(text.endsWith("x/root/Foo.wsdl", 0));
    EXPECT_TRUE(text.endsWith("", 0));
    EXPECT_TRUE(text.endsWith(kNull, 0));
    EXPECT_FALSE(TSKString().endsWith("a", 0));
    EXPECT_TRUE(TSKString().endsWith("", 1));
}

TEST(TSKString, ContainsComparesExactlyForFlagZero) {
    const TSKString text("a/xsd/b");
    EXPECT_TRUE(text.contains("/xsd", 0));
    EXPECT_FALSE(text.contains("/XSD", 0));
    EXPECT_TRUE(text.contains("/XSD", 1));
    EXPECT_TRUE(text.contains("", 0));
    EXPECT_TRUE(text.contains("", 1));
    EXPECT_TRUE(text.contains(kNull, 0));
    EXPECT_FALSE(text.contains("/xsd/bc", 0));
    EXPECT_FALSE(text.contains("/xsd/bc", 1));
    EXPECT_FALSE(TSKString().contains("a", 1));
}

TEST(TSKString, FindGivesTheFirstPositionOrMinusOne) {
    const TSKString text("/a/b\xff");
    EXPECT_EQ(text.find('/'), 0);
    EXPECT_EQ(text.find('b'), 3);
    EXPECT_EQ(text.find('\xff'), 4);
    EXPECT_EQ(text.find('x'), -1);
    EXPECT_EQ(text.find('\0'), -1);  // the byte behind the text does not count
    EXPECT_EQ(TSKString().find('/'), -1);
}

TEST(TSKString, ReverseFindGivesTheLastPositionOrMinusOne) {
    const TSKString text("/a/b");
    EXPECT_EQ(text.reverseFind('/'), 2);
    EXPECT_EQ(text.reverseFind('x'), -1);
    EXPECT_EQ(TSKString("/").reverseFind('/'), 0);
    EXPECT_EQ(TSKString().reverseFind('/'), -1);
}

TEST(TSKString, FindTextStartsWhereItIsTold) {
    const TSKString text("1..2..3");
    EXPECT_EQ(text.find("..", 0), 1);
    EXPECT_EQ(text.find("..", 1), 1);
    EXPECT_EQ(text.find("..", 2), 4);
    EXPECT_EQ(text.find("..", 5), -1);
    EXPECT_EQ(text.find("..", -3), 1);
    EXPECT_EQ(text.find("..", INT_MAX), -1);
    EXPECT_EQ(text.find("1..2..3", 0), 0);
    EXPECT_EQ(text.find("1..2..3.", 0), -1);
    EXPECT_EQ(TSKString().find("..", 0), -1);
}

TEST(TSKString, FindTheEmptyTextAtTheStartUpToTheEnd) {
    const TSKString text("ab");
    EXPECT_EQ(text.find("", 0), 0);
    EXPECT_EQ(text.find("", 2), 2);
    EXPECT_EQ(text.find("", 3), -1);
    EXPECT_EQ(text.find(kNull, 1), 1);
}

TEST(TSKString, SubstrRunsToTheEndWhenTheLengthIsTooLarge) {
    const TSKString text("abcdef");
    EXPECT_EQ(text.substr(2, 3), "cde");
    EXPECT_EQ(text.substr(2, 4), "cdef");
    EXPECT_EQ(text.substr(2, 5), "cdef");
    EXPECT_EQ(text.substr(2, static_cast<unsigned long>(-7)), "cdef");
    EXPECT_EQ(text.substr(0, ULONG_MAX), "abcdef");
    EXPECT_EQ(text.substr(2, 0), "");
    EXPECT_EQ(text.substr(5, 1), "f");
    EXPECT_EQ(text.substr(6, 1), "");
    EXPECT_EQ(text.substr(7, 1), "");
    EXPECT_EQ(text.substr(ULONG_MAX, ULONG_MAX), "");
    EXPECT_EQ(TSKString().substr(0, 1), "");
}

TEST(TSKString, LeftAndRightGiveTheWholeTextWhenItIsShorter) {
    const TSKString text("abc");
    EXPECT_EQ(text.left(0), "");
    EXPECT_EQ(text.left(2), "ab");
    EXPECT_EQ(text.left(3), "abc");
    EXPECT_EQ(text.left(4), "abc");
    EXPECT_EQ(text.left(ULONG_MAX), "abc");
    EXPECT_EQ(text.right(0), "");
    EXPECT_EQ(text.right(2), "bc");
    EXPECT_EQ(text.right(3), "abc");
    EXPECT_EQ(text.right(4), "abc");
    EXPECT_EQ(text.right(ULONG_MAX), "abc");
    EXPECT_EQ(TSKString().left(TSKString().length() - 1), "");
    EXPECT_EQ(TSKString().right(1), "");
}

TEST(TSKString, ToLowerFoldsAsciiLettersInPlace) {
    TSKString text("/Root/CIMV2/[@Z\xc3\x84");
    EXPECT_EQ(&text.toLower(), &text);
    EXPECT_EQ(text, "/root/cimv2/[@z\xc3\x84");
    EXPECT_EQ(TSKString().toLower(), "");
}

TEST(TSKString, ToLowerOfALowerTextKeepsSharingIt) {
    const TSKString text(kLong);
    TSKString copy = text;
    copy.toLower();
    EXPECT_EQ(copy.data(), text.data());
}

// In Turkish capital I does not fold to i, and in an 8-bit locale other bytes are letters too.
TEST(TSKString, CaseFoldingDoesNotDependOnTheLocale) {
    const TemporaryDirectory directory;
    const std::string locale = directory / "tr_TR.ISO-8859-9";
    ASSERT_EQ(std::system(("localedef -i tr_TR -f ISO-8859-9 " + locale).c_str()), 0);
    ASSERT_EQ(setenv("LOCPATH", directory.path().c_str(), 1), 0);
    ASSERT_NE(std::setlocale(LC_ALL, "tr_TR.ISO-8859-9"), nullptr);
    ASSERT_NE(std::tolower('I'), 'i');
    ASSERT_EQ(std::tolower(0xc4), 0xe4);
    EXPECT_EQ(TSKString("TITLE\xc4").toLower(), "title\xc4");
    EXPECT_TRUE(TSKString("TITLE").equalsIgnoreCase("title"));
    EXPECT_FALSE(TSKString("\xc4").equalsIgnoreCase("\xe4"));
    EXPECT_TRUE(TSKString("TITLE").endsWith("itle", 1));
    EXPECT_TRUE(TSKString("TITLE").contains("itl", 1));
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
}

TEST(TSKString, TrimRemovesTheGivenBytesFromBothEnds) {
    EXPECT_EQ(TSKString("  a b  ").trim(" "), "a b");
    EXPECT_EQ(TSKString("\t a\t ").trim(" "), "\t a\t");
    EXPECT_EQ(TSKString("\t a\t ").trim(" \t"), "a");
    EXPECT_EQ(TSKString("   ").trim(" "), "");
    EXPECT_EQ(TSKString("a").trim(" "), "a");
    EXPECT_EQ(TSKString(" a ").trim(""), " a ");
    EXPECT_EQ(TSKString(" a ").trim(kNull), " a ");
    EXPECT_EQ(TSKString().trim(" "), "");
    TSKString text(" a ");
    EXPECT_EQ(&text.trim(" "), &text);
    EXPECT_EQ(text.trim(text.data()), "");
}

TEST(TSKString, LtoaWritesEveryNumberInEveryRadix) {
    EXPECT_EQ(TSKString("old").ltoa(0, 10), "0");
    EXPECT_EQ(TSKString().ltoa(-42, 10), "-42");
    EXPECT_EQ(TSKString().ltoa(LONG_MAX, 10), std::to_string(LONG_MAX).c_str());
    EXPECT_EQ(TSKString().ltoa(LONG_MIN, 10), std::to_string(LONG_MIN).c_str());
    EXPECT_EQ(TSKString().ltoa(255, 16), "ff");
    EXPECT_EQ(TSKString().ltoa(-255, 16), "-ff");
    EXPECT_EQ(TSKString().ltoa(35, 36), "z");
    EXPECT_EQ(viewOf(TSKString().ltoa(LONG_MIN, 2)), "-1" + std::string(63, '0'));
    EXPECT_EQ(TSKString().itoa(8080, 10), "8080");
}

TEST(TSKString, LtoaRefusesARadixWithoutDigits) {
    for (const int radix : {-10, 0, 1, 37}) {
        TSKString text("kept");
        try {
            text.ltoa(1, radix);
            ADD_FAILURE() << "no exception for radix " << radix;
        } catch (const TeskBaseException& exception) {
            EXPECT_EQ(exception.getErrorCode(), CIM_ERR_INVALID_PARAMETER);
            EXPECT_EQ(exception.getMessage(), "The radix must be from 2 to 36");
        }
        EXPECT_EQ(text, "kept");
    }
}

TEST(TSKString, AtolReadsTheLeadingDecimalNumber) {
    EXPECT_EQ(TSKString("42").atol(), 42);
    EXPECT_EQ(TSKString("  -42..7").atol(), -42);
    EXPECT_EQ(TSKString("+7").atol(), 7);
    EXPECT_EQ(TSKString("0x10").atol(), 0);
    EXPECT_EQ(TSKString("12\0"
                        "3",
                        4)
                  .atol(),
              12);
    EXPECT_EQ(TSKString("Max").atol(), 0);
    EXPECT_EQ(TSKString("-").atol(), 0);
    EXPECT_EQ(TSKString().atol(), 0);
    EXPECT_EQ(TSKString("99999999999999999999").atol(), LONG_MAX);
    EXPECT_EQ(TSKString("-99999999999999999999").atol(), LONG_MIN);
}

TEST(TSKString, SprintfReplacesTheText) {
    TSKString text("old");
    EXPECT_EQ(&text.sprintf("%s_INPUT", "Get"), &text);
    EXPECT_EQ(text, "Get_INPUT");
    EXPECT_EQ(text.sprintf("%s", ""), "");
    EXPECT_EQ(text.sprintf("%d%%", 5), "5%");
    EXPECT_EQ(text.sprintf("%15s", "a"), "              a");
    EXPECT_EQ(text.sprintf("%16s", "a"), "               a");
    EXPECT_EQ(text.sprintf("%5000s", "a").length(), 5000U);
}

TEST(TSKString, SprintfMayUseTheTextItself) {
    TSKString text(kLong);
    text.sprintf("%s|%s", text.data(), text.data());
    EXPECT_EQ(std::string(text.data()), std::string(kLong) + "|" + kLong);
}

TEST(TSKString, SprintfReportsWhatTheLibraryCannotFormat) {
    TSKString text("kept");
    const wchar_t unprintable[] = {static_cast<wchar_t>(0x7fffffff), 0};
    EXPECT_THROW(text.sprintf("%ls", unprintable), TeskBaseException);
    EXPECT_EQ(text, "kept");
}

TEST(TSKString, StreamsItsBytesAsTheyAre) {
    std::ostringstream stream;
    stream.width(10);
    stream << TSKString("a\0b", 3) << TSKString();
    EXPECT_EQ(stream.str(), "a\0b"sv);
}

TEST(TSKString, CopiesMayBeUsedByManyThreadsAtOnce) {
    const TSKString shared(kLong);
    runOnThreads(8, [&](int index) {
        for (int round = 0; round < 1000; ++round) {
            TSKString copy = shared;
            const TSKString another = copy;
            copy += static_cast<char>('a' + index);
            EXPECT_EQ(another, shared);
            EXPECT_EQ(copy.length(), shared.length() + 1);
        }
    });
    EXPECT_STREQ(shared.data(), kLong);
}

TEST(TSKString, TheLastCopyMayBeReleasedByAnyThread) {
    for (int round = 0; round < 200; ++round) {
        TSKString copies[4];
        {
            const TSKString text = TSKString(kLong) + "!";
            for (TSKString& copy : copies)
                copy = text;
        }
        runOnThreads(4, [&](int index) { copies[index] += 'x'; });
        for (const TSKString& copy : copies)
            EXPECT_EQ(copy, TSKString(kLong) + "!x");
    }
}

}  // namespace
