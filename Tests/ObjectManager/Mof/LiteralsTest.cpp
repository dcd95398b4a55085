#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Mof/Literals.h"

namespace {

using Mof::Literal;

// Collects faults as "OFFSET MESSAGE"; the texts begin at offset 100.
class LiteralsTest : public testing::Test {
  protected:
    std::string number(std::string_view text) {
        const Literal literal = Mof::integerLiteral(text, kOffset, onError_);
        EXPECT_EQ(literal.kind, Literal::Kind::kInteger);
        return (literal.isNegative ? "-" : "") + std::to_string(literal.magnitude);
    }
    double real(std::string_view text) { return Mof::realLiteral(text, kOffset, onError_).real; }
    std::string text(std::string_view literal) {
        return std::string(std::string_view(Mof::unescape(literal, kOffset, onError_)));
    }
    std::uint16_t character(std::string_view text) {
        return Mof::characterLiteral(text, kOffset, onError_).character;
    }

    static constexpr std::size_t kOffset = 100;

    std::vector<std::string> faults_;
    Mof::ReportFault onError_ = [this](std::size_t offset, const std::string& message) {
        faults_.push_back(std::to_string(offset) + " " + message);
    };
};

using Faults = std::vector<std::string>;

TEST_F(LiteralsTest, NumbersAreDecimalOctalHexadecimalOrBinary) {
    EXPECT_EQ(number("0"), "0");
    EXPECT_EQ(number("42"), "42");
    EXPECT_EQ(number("017"), "15");
    EXPECT_EQ(number("0x1F"), "31");
    EXPECT_EQ(number("0X1f"), "31");
    EXPECT_EQ(number("101b"), "5");
    EXPECT_EQ(number("0101B"), "5");
    EXPECT_EQ(number("+7"), "7");
    EXPECT_EQ(number("-7"), "-7");
    EXPECT_EQ(number("-0x10"), "-16");
    EXPECT_EQ(faults_, Faults());
}

TEST_F(LiteralsTest, NumbersHaveSixtyFourBits) {
    EXPECT_EQ(number("18446744073709551615"), "18446744073709551615");
    EXPECT_EQ(number("-9223372036854775808"), "-9223372036854775808");
    EXPECT_EQ(faults_, Faults());
    (void)number("18446744073709551616");
    (void)number("-9223372036854775809");
    (void)number("0x10000000000000000");
    EXPECT_EQ(faults_, Faults(3, "100 this number does not fit into 64 bits"));
}

TEST_F(LiteralsTest, RealsHaveADecimalPoint) {
    EXPECT_EQ(real("1.5"), 1.5);
    EXPECT_EQ(real("-.25"), -0.25);
    EXPECT_EQ(real("+1.5E+3"), 1500);
    EXPECT_EQ(real("1.0e-2"), 0.01);
    EXPECT_EQ(faults_, Faults());
    (void)real("1.0e999");
    EXPECT_EQ(faults_, Faults({"100 this number is beyond the range of real64"}));
}

TEST_F(LiteralsTest, TextsWithoutEscapesStayAsTheyAre) {
    EXPECT_EQ(text(""), "");
    EXPECT_EQ(text("a b"), "a b");
}

TEST_F(LiteralsTest, EveryEscapeStandsForItsCharacter) {
    EXPECT_EQ(text(R"(\b\t\n\f\r\"\'\\)"), "\b\t\n\f\r\"'\\");
    EXPECT_EQ(text(R"(a\x41z)"), "aAz");
    EXPECT_EQ(text(R"(\x9)"), "\t");
    EXPECT_EQ(text(R"(\xFC\X20ac.)"), "\xC3\xBC\xE2\x82\xAC.");
    EXPECT_EQ(text(R"(\x00411)"), "A1");  // four digits at the most
    EXPECT_EQ(text(R"(\xD83D\xDE00)"), "\xF0\x9F\x98\x80");
    EXPECT_EQ(text(R"(\XD83D\XDE00\xd83d\Xde00)"), "\xF0\x9F\x98\x80\xF0\x9F\x98\x80");
    EXPECT_EQ(faults_, Faults());
}

TEST_F(LiteralsTest, EscapesThatMeanNothingAreFaults) {
    EXPECT_EQ(text(R"(a\qb)"), "ab");
    EXPECT_EQ(text(R"(\x)"), "");
    EXPECT_EQ(text(R"(\xg)"), "g");
    EXPECT_EQ(text(R"(\x0)"), "");
    EXPECT_EQ(text(R"(\xD83D)"), "");
    EXPECT_EQ(text(R"(\xDE00)"), "");
    EXPECT_EQ(text(R"(\xD83D\x41)"), "");
    EXPECT_EQ(text(R"(\xD83D\xg)"), "g");
    EXPECT_EQ(faults_,
              Faults({"101 this escape does not exist", "100 \\x needs hexadecimal digits",
                      "100 \\x needs hexadecimal digits", "100 this escape stands for no character",
                      "100 this escape stands for no character",
                      "100 this escape stands for no character",
                      "100 this escape stands for no character",
                      "100 this escape stands for no character"}));
}

TEST_F(LiteralsTest, CharactersAreOneOfTheBasicPlane) {
    EXPECT_EQ(character("A"), 0x41);
    EXPECT_EQ(character("\xC3\xBC"), 0xFC);
    EXPECT_EQ(character("\xE2\x82\xAC"), 0x20AC);
    EXPECT_EQ(character(R"(\n)"), '\n');
    EXPECT_EQ(character(R"(\x20AC)"), 0x20AC);
    EXPECT_EQ(faults_, Faults());
    (void)character("AB");
    (void)character("\xF0\x9F\x98\x80");
    EXPECT_EQ(faults_, Faults(2, "100 a char16 literal holds one character of the basic plane"));
}

TEST_F(LiteralsTest, AnEscapeThatMeansNothingIsTheOnlyFaultOfACharacter) {
    (void)character(R"(\x0)");
    (void)character(R"(\q)");
    EXPECT_EQ(faults_, Faults({"100 this escape stands for no character",
                               "100 this escape does not exist"}));
}

bool isLineEnd(char byte) {
    return byte == '\n' || byte == '\r';
}

// As readString, one byte after the other.
Mof::StringText plainReadString(std::string_view text) {
    std::size_t position = 1;
    while (position < text.size() && !isLineEnd(text[position])) {
        if (text[position] == '"')
            return {.length = position + 1, .isClosed = true};
        const bool isEscape = text[position] == '\\';
        if (isEscape && (position + 1 == text.size() || isLineEnd(text[position + 1])))
            break;
        position += isEscape ? 2 : 1;
    }
    return {.length = position, .isClosed = false};
}

TEST(ReadString, EndsAtTheFirstQuotationMarkThatIsNotEscapedOrWithTheLine) {
    constexpr std::string_view kBytes = "a\"\\\n\r";
    constexpr std::size_t kLongest = 7;
    std::vector<std::string> texts = {"\""};
    for (std::size_t index = 0; index < texts.size(); ++index) {
        const std::string text = texts[index];
        const Mof::StringText string = Mof::readString(text);
        const Mof::StringText plain = plainReadString(text);
        ASSERT_EQ(string.length, plain.length) << text;
        ASSERT_EQ(string.isClosed, plain.isClosed) << text;
        for (const char byte : kBytes) {
            if (text.size() < kLongest)
                texts.push_back(text + byte);
        }
    }
}

}  // namespace
