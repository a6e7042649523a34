#include "standin/StoryTeller.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

using namespace zuvo;
using namespace zuvo::standin;

namespace {

AnnotatedLine line(double start, double end, Loudness loudness = Loudness::loud, std::string text = "words") {
    return {start, end, loudness, std::move(text)};
}

testing::Matcher<Passage> passage(double start, double end) {
    return testing::AllOf(testing::Field(&Passage::start, testing::DoubleEq(start)),
                          testing::Field(&Passage::end, testing::DoubleEq(end)));
}

/// `count` loud lines of `length` seconds from `start`, without a break.
std::vector<AnnotatedLine> run(double start, int count, double length) {
    std::vector<AnnotatedLine> lines;
    for (int index = 0; index < count; ++index)
        lines.push_back(line(start + index * length, start + (index + 1) * length));
    return lines;
}

std::vector<AnnotatedLine> joined(std::initializer_list<std::vector<AnnotatedLine>> runs) {
    std::vector<AnnotatedLine> lines;
    for (const auto& piece : runs)
        lines.insert(lines.end(), piece.begin(), piece.end());
    return lines;
}

TEST(StoryPromptReader, readsTheTargetAndEveryAnnotatedLine) {
    const auto request = readStoryPrompt("Some talk [1.0-2.0s] 🔊 inside a line\n- Target edit: 2 min (150s)\n\n"
                                         "[1.2-4.1s] 🔇 Who are you?\n[5.5-10.9s] 🔊 I am Maren [laughs].\n"
                                         "[11.0-12.0s] 🔉 Yes.\n");
    ASSERT_TRUE(request);
    EXPECT_DOUBLE_EQ(request->targetSeconds, 150.0);
    ASSERT_EQ(request->lines.size(), 3U);
    EXPECT_DOUBLE_EQ(request->lines[0].start, 1.2);
    EXPECT_DOUBLE_EQ(request->lines[0].end, 4.1);
    EXPECT_EQ(request->lines[0].loudness, Loudness::quiet);
    EXPECT_EQ(request->lines[1].loudness, Loudness::loud);
    EXPECT_EQ(request->lines[1].text, "I am Maren [laughs].");
    EXPECT_EQ(request->lines[2].loudness, Loudness::medium);
}

TEST(StoryPromptReader, aPromptWithoutTargetOrWithoutLinesAsksForNoStory) {
    EXPECT_FALSE(readStoryPrompt("[1.2-4.1s] 🔊 Who are you?"));
    EXPECT_FALSE(readStoryPrompt("Target edit: 2 min (120s)"));
    EXPECT_FALSE(readStoryPrompt("Target edit: 2 min (120s)\n[1.2-4.1s] loud\n[a-bs] 🔊 x\n[1-2] 🔊 y"));
    EXPECT_FALSE(readStoryPrompt(""));
}

TEST(Passages, aRunOfLoudLinesIsAPassage) {
    EXPECT_THAT(findPassages(run(10, 3, 4)), testing::ElementsAre(passage(10, 22)));
}

TEST(Passages, mediumAndQuietLinesEndARun) {
    EXPECT_THAT(findPassages({line(0, 5), line(5, 10), line(10, 14, Loudness::medium), line(14, 19), line(19, 24),
                              line(24, 28, Loudness::quiet), line(28, 40)}),
                testing::ElementsAre(passage(0, 10), passage(14, 24), passage(28, 40)));
}

TEST(Passages, aLongPauseEndsARun) {
    EXPECT_THAT(findPassages(joined({run(0, 2, 5), run(12.0, 2, 5)})), testing::ElementsAre(passage(0, 22)));
    EXPECT_THAT(findPassages(joined({run(0, 2, 5), run(12.1, 2, 5)})),
                testing::ElementsAre(passage(0, 10), passage(12.1, 22.1)));
}

TEST(Passages, shorterThanEightSecondsIsNone) {
    EXPECT_THAT(findPassages({line(0, 7.9)}), testing::IsEmpty());
    EXPECT_THAT(findPassages({line(0, 8)}), testing::ElementsAre(passage(0, 8)));
}

TEST(Passages, exactlyThirtySecondsStayWhole) {
    EXPECT_THAT(findPassages(run(0, 5, 6)), testing::ElementsAre(passage(0, 30)));
}

TEST(Passages, aLongerRunIsCutBetweenLinesIntoEvenPieces) {
    EXPECT_THAT(findPassages(run(0, 12, 5)), testing::ElementsAre(passage(0, 20), passage(20, 40), passage(40, 60)));
}

TEST(Passages, aSingleLineOfMoreThanThirtySecondsIsLeftOut) {
    EXPECT_THAT(findPassages(joined({run(0, 2, 5), {line(10, 50)}, run(50, 2, 5)})),
                testing::ElementsAre(passage(0, 10), passage(50, 60)));
}

TEST(Choice, allPassagesFitALargeTarget) {
    EXPECT_THAT(choosePassages(findPassages({line(0, 10), line(20, 35), line(50, 59)}), 300),
                testing::ElementsAre(passage(0, 10), passage(20, 35), passage(50, 59)));
}

TEST(Choice, theLongestAreTakenAndStandInOrderOfTime) {
    EXPECT_THAT(choosePassages(findPassages({line(0, 20), line(30, 40), line(50, 75)}), 50),
                testing::ElementsAre(passage(0, 20), passage(50, 75)));
}

TEST(Choice, onePastTheTargetIsShortenedByWholeLines) {
    EXPECT_THAT(choosePassages(findPassages(run(0, 5, 5)), 21), testing::ElementsAre(passage(0, 20)));
    EXPECT_THAT(choosePassages(findPassages(run(0, 5, 5)), 9), testing::IsEmpty());
}

StoryRequest requestOf(int passages) {
    StoryRequest request{600.0, {}};
    for (int index = 0; index < passages; ++index)
        request.lines.push_back(line(index * 20.0, index * 20.0 + 10.0, Loudness::loud, "Nothing but harbour"));
    return request;
}

TEST(Story, standsInThreeActs) {
    const OrderedJson acts = tellStory(requestOf(7))["structure"]["acts"];
    ASSERT_EQ(acts.size(), 3U);
    EXPECT_EQ(acts[0]["segments"], OrderedJson({0, 1}));
    EXPECT_EQ(acts[1]["segments"], OrderedJson({2, 3}));
    EXPECT_EQ(acts[2]["segments"], OrderedJson({4, 5, 6}));
    EXPECT_EQ(acts[0]["name"], "Act 1: Beginnings");
}

TEST(Story, hasFewerActsThanThreeWithFewerSegments) {
    EXPECT_EQ(tellStory(requestOf(2))["structure"]["acts"].size(), 2U);
    EXPECT_EQ(tellStory(requestOf(1))["structure"]["acts"].size(), 1U);
}

TEST(Story, withoutAPassageIsEmptyButWhole) {
    const OrderedJson story = tellStory({300.0, {line(0, 3)}});
    EXPECT_EQ(story["segments"], OrderedJson::array());
    EXPECT_EQ(story["structure"]["acts"], OrderedJson::array());
    EXPECT_EQ(story["subtitles"], OrderedJson::array());
    EXPECT_EQ(story["estimatedDuration"], 0.0);
}

TEST(Story, aSegmentHoldsItsTimesTextAndChapter) {
    const OrderedJson story = tellStory({300.0,
                                         {line(5.5, 10.9, Loudness::loud, "I build boats."),
                                          line(11.4, 17.2, Loudness::loud, "My father kept a lighthouse."),
                                          line(20.0, 24.0, Loudness::quiet, "And then?"),
                                          line(25.0, 35.0, Loudness::loud, "Then my father kept a kettle.")}});
    const OrderedJson& first = story["segments"][0];
    EXPECT_EQ(first["index"], 0);
    EXPECT_EQ(first["startTime"], 5.5);
    EXPECT_EQ(first["endTime"], 17.2);
    EXPECT_EQ(first["sourceClip"], "source");
    EXPECT_EQ(first["transcript"], "I build boats. My father kept a lighthouse.");
    EXPECT_EQ(first["translation"], first["transcript"]);
    EXPECT_EQ(first["chapter"], "Lighthouse");
    EXPECT_EQ(story["segments"][1]["chapter"], "Kettle");
    EXPECT_EQ(story["structure"]["totalDuration"], 21.7);
    EXPECT_EQ(story["estimatedDuration"], 21.7);
}

TEST(Story, aPassageWithoutALongWordHasANumberedChapter) {
    EXPECT_EQ(tellStory({300.0, {line(0, 10, Loudness::loud, "I am so on it")}})["segments"][0]["chapter"],
              "Chapter 1");
}

TEST(Story, subtitlesSplitALineIntoCardsOfAtMostSevenWords) {
    const OrderedJson cards = tellStory({300.0, {line(10, 20, Loudness::loud, "a b c d e f g h i j")}})["subtitles"];
    ASSERT_EQ(cards.size(), 2U);
    EXPECT_EQ(cards[0], OrderedJson({{"startTime", 10.0}, {"endTime", 15.0}, {"text", "a b c d e"}}));
    EXPECT_EQ(cards[1], OrderedJson({{"startTime", 15.0}, {"endTime", 20.0}, {"text", "f g h i j"}}));
}

} // namespace
