#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Pages/FirstSentence.h"

namespace {

std::string sentenceOf(const std::string& text) {
    return Pages::firstSentence(text, 1000);
}

TEST(FirstSentence, EndsWithAFullStopOrAQuestionOrExclamationMark) {
    EXPECT_EQ(sentenceOf("A disk. It turns."), "A disk.");
    EXPECT_EQ(sentenceOf("A disk? It turns."), "A disk?");
    EXPECT_EQ(sentenceOf("A disk! It turns."), "A disk!");
    EXPECT_EQ(sentenceOf("A disk."), "A disk.");
    EXPECT_EQ(sentenceOf("A disk"), "A disk");
    EXPECT_EQ(sentenceOf("A disk.  \n It turns."), "A disk.");
    EXPECT_EQ(sentenceOf("A disk. (It turns.)"), "A disk.");
    EXPECT_EQ(sentenceOf("A disk. 4 of them"), "A disk.");
}

TEST(FirstSentence, AMarkWithinAWordOrBeforeASmallLetterEndsNone) {
    EXPECT_EQ(sentenceOf("Version 2.41.0 of a disk. It turns."), "Version 2.41.0 of a disk.");
    EXPECT_EQ(sentenceOf("Disks, tapes etc. are media. They turn."),
              "Disks, tapes etc. are media.");
    EXPECT_EQ(sentenceOf("See DSP0004.pdf. It tells."), "See DSP0004.pdf.");
}

TEST(FirstSentence, AnAbbreviationEndsNone) {
    EXPECT_EQ(sentenceOf("Media, e.g. CDs, turn. They do."), "Media, e.g. CDs, turn.");
    EXPECT_EQ(sentenceOf("Media (i.e. CDs) turn. They do."), "Media (i.e. CDs) turn.");
    EXPECT_EQ(sentenceOf("Made by J. Smith. In 1999."), "Made by J. Smith.");
    EXPECT_EQ(sentenceOf("Disks vs. Tapes. More."), "Disks vs. Tapes.");
}

TEST(FirstSentence, IsOnOneLine) {
    EXPECT_EQ(sentenceOf("  A\tdisk\r\nthat \n turns.\nIt does."), "A disk that turns.");
}

TEST(FirstSentence, AnEmptyLineEndsIt) {
    EXPECT_EQ(sentenceOf("Disks\n\nA disk turns."), "Disks");
    EXPECT_EQ(sentenceOf("Disks \n \r\n A disk turns."), "Disks");
    EXPECT_EQ(sentenceOf("\n\nDisks\nturn."), "Disks turn.");
}

TEST(FirstSentence, ATextWithoutWordsHasNone) {
    EXPECT_EQ(sentenceOf(""), "");
    EXPECT_EQ(sentenceOf(" \n\t\r\n "), "");
}

TEST(FirstSentence, OneThatIsTooLongIsCutBetweenWords) {
    EXPECT_EQ(Pages::firstSentence("One two three.", 14), "One two three.");
    EXPECT_EQ(Pages::firstSentence("One two three.", 13), "One two…");
    EXPECT_EQ(Pages::firstSentence("One two three.", 7), "One two…");
    EXPECT_EQ(Pages::firstSentence("One two three.", 6), "One…");
    EXPECT_EQ(Pages::firstSentence("One. Two three.", 4), "One.");
}

TEST(FirstSentence, AWordThatIsTooLongIsCutBetweenCharacters) {
    EXPECT_EQ(Pages::firstSentence("Disk", 3), "Dis…");
    EXPECT_EQ(Pages::firstSentence("Größe", 3), "Gr…");
    EXPECT_EQ(Pages::firstSentence("Größe", 4), "Grö…");
    EXPECT_EQ(Pages::firstSentence("€€", 5), "€…");
    EXPECT_EQ(Pages::firstSentence("€", 2), "…");
}

TEST(FirstSentence, AnyBytesAreTaken) {
    const std::string bytes("\x80\xFF. \0\xC3", 6);
    EXPECT_EQ(sentenceOf(bytes), "\x80\xFF.");
    for (std::size_t most = 0; most < 4; ++most)
        EXPECT_LE(Pages::firstSentence("\x80\x80\x80\x80\x80", most).size(), most + 3);
}

}  // namespace
