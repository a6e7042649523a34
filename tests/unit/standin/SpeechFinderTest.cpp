#include "standin/SpeechFinder.h"

#include <cmath>
#include <gmock/gmock.h>

using namespace zuvo::standin;

namespace {

/// An envelope in steps of 0.1 s out of pieces of (seconds, dB).
Envelope levels(std::initializer_list<std::pair<double, double>> pieces) {
    Envelope envelope{0.1, {}};
    for (const auto& [seconds, level] : pieces)
        envelope.levels.insert(envelope.levels.end(), static_cast<std::size_t>(std::lround(seconds * 10)), level);
    return envelope;
}

std::vector<Stretch> find(const Envelope& envelope) {
    return findSpeech(envelope, 0, envelope.levels.size());
}

testing::Matcher<Stretch> stretch(double start, double end) {
    return testing::AllOf(testing::Field(&Stretch::start, testing::DoubleNear(start, 1e-6)),
                          testing::Field(&Stretch::end, testing::DoubleNear(end, 1e-6)));
}

TEST(SpeechFinder, whatRisesAboveTheBackgroundIsSpeech) {
    EXPECT_THAT(find(levels({{2, -70}, {4, -25}, {2, -70}})), testing::ElementsAre(stretch(2, 6)));
}

TEST(SpeechFinder, aBreathDoesNotEndAStretchAndAPauseDoes) {
    EXPECT_THAT(find(levels({{2, -70}, {4, -25}, {0.4, -70}, {4, -25}, {2, -70}, {4, -25}, {2, -70}})),
                testing::ElementsAre(stretch(2, 10.4), stretch(12.4, 16.4)));
}

TEST(SpeechFinder, aKnockIsNoSpeech) {
    EXPECT_THAT(find(levels({{5, -70}, {0.2, -20}, {5, -70}})), testing::IsEmpty());
}

TEST(SpeechFinder, aLongStretchIsGivenInEqualPiecesOfAtMostTenSeconds) {
    EXPECT_THAT(find(levels({{6, -70}, {24, -20}})),
                testing::ElementsAre(stretch(6, 14), stretch(14, 22), stretch(22, 30)));
    EXPECT_THAT(find(levels({{6, -70}, {10, -20}})), testing::ElementsAre(stretch(6, 16)));
}

TEST(SpeechFinder, aShortStretchJoinsACloseNeighbour) {
    EXPECT_THAT(find(levels({{5, -70}, {2, -20}, {0.8, -70}, {4, -20}, {5, -70}})),
                testing::ElementsAre(stretch(5, 11.8)));
}

TEST(SpeechFinder, aSteadySoundIsSpeechFromEndToEnd) {
    EXPECT_THAT(find(levels({{6, -18}})), testing::ElementsAre(stretch(0, 6)));
}

TEST(SpeechFinder, silenceAndNothingHoldNoSpeech) {
    EXPECT_THAT(find(levels({{20, -90}})), testing::IsEmpty());
    EXPECT_THAT(find(levels({{20, -65}})), testing::IsEmpty());
    EXPECT_THAT(find(levels({})), testing::IsEmpty());
}

TEST(SpeechFinder, onlyTheGivenRangeIsSearched) {
    const Envelope envelope = levels({{4, -20}, {4, -70}, {4, -20}});
    EXPECT_THAT(findSpeech(envelope, 60, 500), testing::ElementsAre(stretch(8, 12)));
}

TEST(SpeechFinder, aStretchIsDescribedInSixWordsSpreadEvenly) {
    const HeardLine line = describeSpeech({3.2, 7.8});
    EXPECT_EQ(line.text, "Speech from 3.2 to 7.8 seconds.");
    ASSERT_EQ(line.words.size(), 6U);
    EXPECT_EQ(line.words[2].word, "3.2");
    EXPECT_DOUBLE_EQ(line.words[0].start, 3.2);
    EXPECT_NEAR(line.words[3].start, 5.5, 1e-9);
    EXPECT_NEAR(line.words[5].end, 7.8, 1e-9);
}

} // namespace
