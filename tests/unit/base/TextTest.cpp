#include "base/Text.h"

#include <array>
#include <gmock/gmock.h>

namespace zuvo {
namespace {

using testing::ElementsAre;

struct CountCase {
    const char* name;
    std::string text;
    std::size_t characters;
};

class CharacterCount : public testing::TestWithParam<CountCase> {};

TEST_P(CharacterCount, countsWhatAReaderSees) {
    EXPECT_EQ(characterCount(GetParam().text), GetParam().characters);
}

INSTANTIATE_TEST_SUITE_P(
    Text, CharacterCount,
    testing::Values(CountCase{"empty", "", 0}, CountCase{"ascii", "abc", 3}, CountCase{"precomposedLetter", "é", 1},
                    CountCase{"letterWithCombiningMark", "e\u0301", 1},
                    CountCase{"twoCombiningMarks", "a\u0323\u0302b", 2},
                    CountCase{"carriageReturnAndLineFeed", "\r\n", 1},
                    CountCase{"lineFeedAndCarriageReturn", "\n\r", 2}, CountCase{"twoFlags", "🇩🇪🇫🇷", 2},
                    CountCase{"oneAndAHalfFlags", "🇩🇪🇫", 2}, CountCase{"familyOfThree", "👨\u200D👩\u200D👧", 1},
                    CountCase{"thumbWithSkinTone", "👍🏽", 1},
                    CountCase{"emojiWithVariationSelector", "⚠\uFE0F ok", 4},
                    CountCase{"hangulJamo", "\u1112\u1161\u11AB", 1}, CountCase{"devanagariVowelSign", "नि", 1},
                    CountCase{"loneCombiningMark", "\u0301", 1}, CountCase{"zeroByte", std::string("a\0b", 3), 3},
                    CountCase{"invalidBytesOneEach",
                              "a\xFF\xFE"
                              "b",
                              4},
                    CountCase{"truncatedSequence", "\xE2\x82", 2},
                    CountCase{"markBehindAnInvalidByte", "\xFF\u0301", 2}, CountCase{"surrogate", "\xED\xA0\x80", 3}),
    [](const auto& row) { return row.param.name; });

TEST(FirstCharacters, neverCutsThroughACluster) {
    EXPECT_EQ(firstCharacters("e\u0301te\u0301", 1), "e\u0301");
    EXPECT_EQ(firstCharacters("👨\u200D👩\u200D👧!", 1), "👨\u200D👩\u200D👧");
    EXPECT_EQ(firstCharacters("🇩🇪🇫🇷", 1), "🇩🇪");
}

TEST(FirstCharacters, givesTheWholeTextIfItHasFewer) {
    EXPECT_EQ(firstCharacters("abc", 3), "abc");
    EXPECT_EQ(firstCharacters("abc", 4), "abc");
    EXPECT_EQ(firstCharacters("", 4), "");
}

TEST(FirstCharacters, givesNothingForACountOfZero) {
    EXPECT_EQ(firstCharacters("abc", 0), "");
}

TEST(FirstCharacters, keepsInvalidBytesAsTheyStand) {
    EXPECT_EQ(firstCharacters("\xFF\xFE"
                              "a",
                              2),
              "\xFF\xFE");
}

TEST(Utf8, acceptsEveryLengthUpToTheLastCodePoint) {
    EXPECT_TRUE(isValidUtf8(""));
    EXPECT_TRUE(isValidUtf8(std::string("\0", 1)));
    EXPECT_TRUE(isValidUtf8("aé€🔊"));
    EXPECT_TRUE(isValidUtf8("\xF4\x8F\xBF\xBF"));
}

TEST(Utf8, refusesWhatIsNotWellFormed) {
    for (const std::string bytes : {"\x80", "\xC3", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                                    "\xF8\x88\x80\x80\x80", "\xFF", "ok\xE2\x82", "\xE2\x28\xA1"}) {
        EXPECT_FALSE(isValidUtf8(bytes)) << testing::PrintToString(bytes);
        EXPECT_EQ(decodeUtf8(bytes), std::nullopt);
    }
}

TEST(Utf8, decodingGivesTheBytesThemselves) {
    EXPECT_EQ(decodeUtf8("Vérité"), "Vérité");
}

TEST(TrimBlanks, takesU0020AloneFromBothEnds) {
    EXPECT_EQ(trimBlanks("  a b  "), "a b");
    EXPECT_EQ(trimBlanks(" \ta\n "), "\ta\n");
    EXPECT_EQ(trimBlanks("\u00A0a\u00A0"), "\u00A0a\u00A0");
    EXPECT_EQ(trimBlanks("   "), "");
    EXPECT_EQ(trimBlanks(""), "");
}

TEST(TrimBlanksAndTabs, leavesLineEnds) {
    EXPECT_EQ(trimBlanksAndTabs("\t a \t"), "a");
    EXPECT_EQ(trimBlanksAndTabs(" \na\n "), "\na\n");
}

TEST(TrimWhiteSpace, takesEveryUnicodeWhiteSpace) {
    const std::string all = "\t\n\v\f\r \u0085\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009"
                            "\u200A\u2028\u2029\u202F\u205F\u3000";
    EXPECT_EQ(trimWhiteSpace(all + "a" + all + "b" + all), "a" + all + "b");
    EXPECT_EQ(trimWhiteSpace(all), "");
    EXPECT_EQ(trimWhiteSpace(""), "");
}

TEST(TrimWhiteSpace, leavesWhatOnlyLooksLikeWhiteSpace) {
    for (const std::string text : {"\u200Ba\u200B", "\uFEFFa", "\u180Ea", "\u2060a"})
        EXPECT_EQ(trimWhiteSpace(text), text);
}

TEST(TrimWhiteSpace, leavesInvalidBytes) {
    EXPECT_EQ(trimWhiteSpace(" \xA0 "), "\xA0");
    EXPECT_EQ(trimWhiteSpace(" \xE3\x80 "), "\xE3\x80");
}

TEST(Split, keepsEmptyPieces) {
    EXPECT_THAT(split("", ','), ElementsAre(""));
    EXPECT_THAT(split("a,", ','), ElementsAre("a", ""));
    EXPECT_THAT(split(",a,,b", ','), ElementsAre("", "a", "", "b"));
}

TEST(SplitAtBlanks, dropsEmptyPiecesAndSeparatesAtU0020Alone) {
    EXPECT_THAT(splitAtBlanks("  one  two\tthree\nfour "), ElementsAre("one", "two\tthree\nfour"));
    EXPECT_THAT(splitAtBlanks("   "), ElementsAre());
    EXPECT_THAT(splitAtBlanks(""), ElementsAre());
}

TEST(Join, putsTheSeparatorBetweenPiecesOnly) {
    EXPECT_EQ(join({}, ", "), "");
    EXPECT_EQ(join({"a"}, ", "), "a");
    EXPECT_EQ(join({"a", "", "b"}, ", "), "a, , b");
}

TEST(ReplaceAll, doesNotLookAtReplacedTextAgain) {
    EXPECT_EQ(replaceAll("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(replaceAll("aaa", "aa", "b"), "ba");
    EXPECT_EQ(replaceAll("a-b-", "-", ""), "ab");
}

TEST(ReplaceAll, changesNothingForAnEmptyText) {
    EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
}

TEST(FillPlaceholders, putsEveryValueInItsPlaceInOnePass) {
    const std::array<Placeholder, 2> placeholders = {{{"{a}", "1 {b} {a}"}, {"{b}", ""}}};
    EXPECT_EQ(fillPlaceholders("{a}-{b}-{a}", placeholders), "1 {b} {a}--1 {b} {a}");
    EXPECT_EQ(fillPlaceholders("{c} {{b}} {a", placeholders), "{c} {} {a");
    EXPECT_EQ(fillPlaceholders("", placeholders), "");
}

TEST(FillPlaceholders, ofTwoNamesThatFitTheEarlierHolds) {
    const std::array<Placeholder, 2> placeholders = {{{"{a", "x"}, {"{a}", "y"}}};
    EXPECT_EQ(fillPlaceholders("{a}", placeholders), "x}");
}

TEST(PluralS, isEmptyForExactlyOne) {
    EXPECT_EQ(pluralS(0), "s");
    EXPECT_EQ(pluralS(1), "");
    EXPECT_EQ(pluralS(2), "s");
}

TEST(AsciiLowered, changesTheLettersFromAToZAlone) {
    EXPECT_EQ(asciiLowered("Clip 01.WAV"), "clip 01.wav");
    EXPECT_EQ(asciiLowered("@AZ[`az{"), "@az[`az{");
    EXPECT_EQ(asciiLowered("ÄÖÜ\xFF"), "ÄÖÜ\xFF");
    EXPECT_EQ(asciiLowered(""), "");
}

TEST(Text, controlCharactersAreReplacedForATerminal) {
    EXPECT_EQ(withoutControlCharacters("a\x1b[31m\a\r\tb\x7F"), "a\uFFFD[31m\uFFFD\uFFFD\uFFFDb\uFFFD");
    EXPECT_EQ(withoutControlCharacters("\u0080\u009B\u009F"), "\uFFFD\uFFFD\uFFFD") << "the second set too";
    EXPECT_EQ(withoutControlCharacters(std::string_view("\0", 1)), "\uFFFD");
    EXPECT_EQ(withoutControlCharacters("a\nb\n"), "a\nb\n");
}

TEST(Text, aNameStaysOnItsLine) {
    EXPECT_EQ(harmlessText("a\nb\x1B[0m\r\n"), "a\uFFFDb\uFFFD[0m\uFFFD\uFFFD");
    EXPECT_EQ(harmlessText("a\u2028b\u2029c\u0085d"), "a\uFFFDb\uFFFDc\uFFFDd");
}

TEST(Text, whatReordersALineIsShown) {
    // "evil\u202Egpj.wav" would be read as "evilvaw.jpg".
    EXPECT_EQ(harmlessText("evil\u202Egpj.wav"), "evil\uFFFDgpj.wav");
    for (const char* mark : {"\u061C", "\u200E", "\u200F", "\u202A", "\u202B", "\u202C", "\u202D", "\u202E", "\u2066",
                             "\u2067", "\u2068", "\u2069"}) {
        EXPECT_EQ(harmlessText(mark), "\uFFFD");
        EXPECT_EQ(withoutControlCharacters(std::string("a") + mark + "\n"), "a\uFFFD\n");
    }
}

TEST(Text, theNeighboursOfWhatIsShownStay) {
    for (const std::string text : {"\u00A0", "\u061B\u061D", "\u200D\u2010", "\u2027\u202F", "\u2065\u206A"})
        EXPECT_EQ(harmlessText(text), text);
}

TEST(Text, eachByteThatIsNoTextIsShown) {
    EXPECT_EQ(harmlessText("\xFF"), "\uFFFD");
    EXPECT_EQ(harmlessText("a\xC2"), "a\uFFFD");
    EXPECT_EQ(harmlessText("a\xC2\x9B"
                           "b"),
              "a\uFFFDb")
        << "U+009B, which terminals take for an escape";
    EXPECT_EQ(withoutControlCharacters("\xED\xA0\x80\n"), "\uFFFD\uFFFD\uFFFD\n") << "a surrogate";
}

TEST(Text, ordinaryTextStaysAsItIs) {
    for (const std::string text :
         {"", "é 東京 🔊 — “x”", "\u00A0\u00A9", "naïve 日本 👩‍🚀 ", "עברית العربية"}) {
        EXPECT_EQ(harmlessText(text), text);
        EXPECT_EQ(withoutControlCharacters(text + "\n"), text + "\n");
    }
}

} // namespace
} // namespace zuvo
