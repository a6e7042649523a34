#include "steps/ReplyRecovery.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Cleaning

TEST(CleanReply, aFencedReplyIsReducedToTheObject) {
    EXPECT_EQ(cleanReply("```json\n{\"a\": 1}\n```\n"), "{\"a\": 1}");
    EXPECT_EQ(cleanReply("```\n{\"a\": 1}\n```"), "{\"a\": 1}");
}

TEST(CleanReply, aPrologueAndAnEpilogueAreCutOff) {
    EXPECT_EQ(cleanReply("Here is the story:\n{\"a\": {}}\nHope this helps!"), "{\"a\": {}}");
}

TEST(CleanReply, takesUnicodeWhiteSpaceFromItsEnds) {
    EXPECT_EQ(cleanReply("\u2028\u00A0\n no object \t\u3000"), "no object");
    EXPECT_EQ(cleanReply("\u00A0\n```json\n{}\n```\n"), "{}");
}

TEST(CleanReply, dropsTheFirstLineOfAFenceWhateverItSays) {
    EXPECT_EQ(cleanReply("```{\"lost\": 1}\nplain\n```"), "plain");
}

TEST(CleanReply, dropsEveryFenceAtTheTail) {
    EXPECT_EQ(cleanReply("```\nplain\n  ```\n``` end\n```"), "plain");
}

TEST(CleanReply, leavesAFenceInTheMiddle) {
    EXPECT_EQ(cleanReply("```\none\n```\ntwo"), "one\n```\ntwo");
}

TEST(CleanReply, aFenceWithNothingInItIsEmpty) {
    EXPECT_EQ(cleanReply("```"), "");
    EXPECT_EQ(cleanReply("```json\n```"), "");
}

TEST(CleanReply, aFenceThatDoesNotBeginTheTextIsPartOfThePrologue) {
    EXPECT_EQ(cleanReply("Sure!\n```json\n{\"a\": 1}\n```"), "{\"a\": 1}");
}

TEST(CleanReply, aTextThatLacksABraceStaysUncut) {
    EXPECT_EQ(cleanReply(" no braces "), "no braces");
    EXPECT_EQ(cleanReply("only { one"), "only { one");
    EXPECT_EQ(cleanReply("only } one"), "only } one");
    EXPECT_EQ(cleanReply(""), "");
}

TEST(CleanReply, bracesInTheWrongOrderLeaveTheTextUncut) {
    EXPECT_EQ(cleanReply("a } b { c"), "a } b { c");
    EXPECT_FALSE(decodeRecordText<MiningResults>(cleanReply("a } b { c")).value.has_value());
    EXPECT_EQ(tryManualParse(cleanReply("a } b { c")).has_value(), false);
}

// Strict decoding of a cleaned reply

std::string replyWith(const std::string& segments, const std::string& rest) {
    return R"({"segments":[)" + segments + "]" + rest + "}";
}

const std::string plainRest =
    R"(,"structure":{"acts":[{"name":"A","segments":[0]}],"totalDuration":999},"subtitles":[],"estimatedDuration":20.5)";

bool decodesStrictly(const std::string& text) {
    return decodeRecordText<MiningResults>(text).value.has_value();
}

MiningResults salvaged(const std::string& text) {
    const auto results = tryManualParse(text);
    EXPECT_TRUE(results.has_value()) << text;
    return results.value_or(MiningResults{});
}

TEST(ReplyRecovery, aReplyWithANullChapterDecodesStrictly) {
    EXPECT_TRUE(decodesStrictly(replyWith(
        R"({"index":0,"startTime":1,"endTime":9,"sourceClip":"s","transcript":"t","translation":"e","chapter":null})",
        plainRest)));
}

TEST(ReplyRecovery, aReplyWithoutAnyBraceFailsBothWays) {
    const auto text = cleanReply("I cannot help with that.");
    EXPECT_EQ(decodeRecordText<MiningResults>(text).failure, "the text is not valid JSON");
    EXPECT_FALSE(tryManualParse(text).has_value());
}

TEST(ReplyRecovery, aSegmentWithoutTranslationIsSalvagedWithAnEmptyOne) {
    const auto text = replyWith(
        R"({"index":5,"startTime":1,"endTime":9,"sourceClip":"s","transcript":"t","chapter":"C"})", plainRest);
    EXPECT_FALSE(decodesStrictly(text));
    EXPECT_EQ(compactText(encodeRecord(salvaged(text))),
              R"({"segments":[{"index":5,"startTime":1.0,"endTime":9.0,"sourceClip":"s","transcript":"t",)"
              R"("translation":"","chapter":"C"}],"structure":{"acts":[{"name":"A","segments":[0]}],)"
              R"("totalDuration":8.0},"subtitles":[],"estimatedDuration":20.5})");
}

TEST(ReplyRecovery, anIndexOfTextTypeIsSalvagedAsTheOffset) {
    const auto text = replyWith(
        R"({"index":"3","startTime":1,"endTime":9,"sourceClip":"s","transcript":"t","translation":"e"})", plainRest);
    EXPECT_FALSE(decodesStrictly(text));
    EXPECT_EQ(salvaged(text).segments.at(0).index, 0);
}

TEST(ReplyRecovery, aMissingStructureGivesNoActsAndAComputedTotal) {
    const auto text =
        replyWith(R"({"index":0,"startTime":1,"endTime":9,"sourceClip":"s","transcript":"t","translation":"e"},)"
                  R"({"index":1,"startTime":20,"endTime":32.5,"sourceClip":"s","transcript":"t","translation":"e"})",
                  R"(,"subtitles":[],"estimatedDuration":20)");
    EXPECT_FALSE(decodesStrictly(text));
    const auto results = salvaged(text);
    EXPECT_THAT(results.structure.acts, IsEmpty());
    EXPECT_EQ(results.structure.totalDuration, 20.5);
}

TEST(ReplyRecovery, anEstimatedDurationOfTextTypeIsSalvagedAsTheComputedTotal) {
    const auto results =
        salvaged(replyWith(R"({"startTime":1,"endTime":9.25})", R"(,"estimatedDuration":"5 minutes")"));
    EXPECT_EQ(results.estimatedDuration, 8.25);
}

TEST(ReplyRecovery, aSegmentWithoutEndTimeIsDroppedAndTheOtherKeepsItsIndexOrOffset) {
    const auto byIndex = salvaged(replyWith(R"({"index":0,"startTime":1},{"index":7,"startTime":2,"endTime":9})", ""));
    ASSERT_EQ(byIndex.segments.size(), 1u);
    EXPECT_EQ(byIndex.segments[0].index, 7);
    const auto byOffset = salvaged(replyWith(R"({"startTime":1},{"startTime":2,"endTime":9})", ""));
    ASSERT_EQ(byOffset.segments.size(), 1u);
    EXPECT_EQ(byOffset.segments[0].index, 1);
}

TEST(ReplyRecovery, everyKeyOfASegmentHasItsDefault) {
    EXPECT_EQ(compactText(encodeRecord(salvaged(replyWith(R"({"startTime":2,"endTime":9.5})", "")))),
              R"({"segments":[{"index":0,"startTime":2.0,"endTime":9.5,"sourceClip":"source","transcript":"",)"
              R"("translation":""}],"structure":{"acts":[],"totalDuration":7.5},"subtitles":[],)"
              R"("estimatedDuration":7.5})");
}

TEST(ReplyRecovery, aValueOfTheWrongTypeCountsAsMissing) {
    const auto results = salvaged(replyWith(
        R"({"index":3.7,"startTime":2,"endTime":9.5,"sourceClip":1,"transcript":null,"translation":{},"chapter":2},)"
        R"({"index":true,"startTime":2,"endTime":9.5},{"startTime":"2","endTime":9},{"startTime":true,"endTime":9})",
        ""));
    ASSERT_EQ(results.segments.size(), 2u);
    EXPECT_EQ(results.segments[0].index, 0);
    EXPECT_EQ(results.segments[0].sourceClip, "source");
    EXPECT_EQ(results.segments[0].transcript, "");
    EXPECT_EQ(results.segments[0].translation, "");
    EXPECT_EQ(results.segments[0].chapter, std::nullopt);
    EXPECT_EQ(results.segments[1].index, 1);
}

TEST(ReplyRecovery, aWholeNumberWrittenWithAFractionIsAnInteger) {
    EXPECT_EQ(salvaged(replyWith(R"({"index":3.0,"startTime":2,"endTime":9})", "")).segments.at(0).index, 3);
}

TEST(ReplyRecovery, anActHasADefaultForEachKey) {
    const auto acts = salvaged(replyWith(R"({"startTime":2,"endTime":9})",
                                         R"(,"structure":{"acts":[{},{"name":2,"segments":[0,1.0]},)"
                                         R"({"name":"C","segments":[0,"1"]},{"name":"D","segments":[0,2.5]},)"
                                         R"({"name":"E","segments":3}]})"))
                          .structure.acts;
    ASSERT_EQ(acts.size(), 5u);
    EXPECT_EQ(acts[0].name, "Untitled");
    EXPECT_THAT(acts[0].segments, IsEmpty());
    EXPECT_EQ(acts[1].name, "Untitled");
    EXPECT_THAT(acts[1].segments, ElementsAre(0, 1));
    // With one element of another kind it is no list of integers.
    for (const std::size_t i : {2u, 3u, 4u})
        EXPECT_THAT(acts[i].segments, IsEmpty()) << acts[i].name;
}

TEST(ReplyRecovery, actsThatAreNoListOfObjectsAreNone) {
    for (const char* rest : {R"(,"structure":[])", R"(,"structure":{"acts":{}})", R"(,"structure":null)",
                             R"(,"structure":{"acts":[{"name":"A"},"B"]})"})
        EXPECT_THAT(salvaged(replyWith(R"({"startTime":2,"endTime":9})", rest)).structure.acts, IsEmpty()) << rest;
}

TEST(ReplyRecovery, aSubtitleThatLacksAKeyIsDropped) {
    const auto subtitles = salvaged(replyWith(R"({"startTime":2,"endTime":9})",
                                              R"(,"subtitles":[{"startTime":1,"endTime":2,"text":"a"},)"
                                              R"({"endTime":2,"text":"b"},{"startTime":1,"text":"c"},)"
                                              R"({"startTime":1,"endTime":2},{"startTime":1,"endTime":"2","text":"d"},)"
                                              R"({"startTime":3,"endTime":4,"text":""}])"))
                               .subtitles;
    ASSERT_EQ(subtitles.size(), 2u);
    EXPECT_EQ(subtitles[0].text, "a");
    EXPECT_EQ(subtitles[1].startTime, 3.0);
}

TEST(ReplyRecovery, subtitlesWithOneElementThatIsNoObjectAreNone) {
    EXPECT_THAT(salvaged(replyWith(R"({"startTime":2,"endTime":9})",
                                   R"(,"subtitles":[{"startTime":1,"endTime":2,"text":"a"},null])"))
                    .subtitles,
                IsEmpty());
}

TEST(ReplyRecovery, theTotalIsNeverReadFromTheText) {
    const auto results = salvaged(replyWith(R"({"startTime":2,"endTime":9})", plainRest));
    EXPECT_EQ(results.structure.totalDuration, 7.0);
    EXPECT_EQ(results.estimatedDuration, 20.5);
}

TEST(ReplyRecovery, nothingIsLeftWithoutAListOfObjectsOrWithoutATimedSegment) {
    for (const char* text : {"", "[]", "null", "{}", R"({"segments":{}})", R"({"segments":[]})",
                             R"({"segments":[{"startTime":1}]})", R"({"segments":[{"startTime":1,"endTime":2},3]})"})
        EXPECT_FALSE(tryManualParse(text).has_value()) << text;
}

TEST(ReplyRecovery, aReplyCutOffInTheMiddleCannotBeSalvaged) {
    EXPECT_FALSE(tryManualParse(cleanReply(R"({"segments":[{"startTime":1,"endTime":9},{"startTime":12,"en)")));
}

} // namespace
} // namespace zuvo
