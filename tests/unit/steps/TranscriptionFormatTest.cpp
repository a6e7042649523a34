#include "steps/TranscriptionFormat.h"

#include "support/GoldenFile.h"

#include <gtest/gtest.h>

#include <limits>

namespace zuvo {
namespace {

const std::string boundary = "2F1B0C6E-6E1C-4B7B-9E55-0A3F6F0D9A11";

std::size_t occurrences(const std::string& text, const std::string& piece) {
    std::size_t count = 0;
    for (auto at = text.find(piece); at != std::string::npos; at = text.find(piece, at + piece.size()))
        ++count;
    return count;
}

TEST(TranscriptionFrame, aRequestBySegmentsInALanguage) {
    const auto frame = transcriptionFrame(boundary, TimestampGranularity::segment, "es", "chunk_000.wav");
    tests::expectGolden(frame.head + "RIFFdata" + frame.tail, "transcription/body-segment-es.multipart");
}

TEST(TranscriptionFrame, aRequestByWordsInAnyLanguage) {
    const auto frame = transcriptionFrame(boundary, TimestampGranularity::word, "auto", "word_seg_0.wav");
    tests::expectGolden(frame.head + "RIFFdata" + frame.tail, "transcription/body-word-auto.multipart");
}

TEST(TranscriptionFrame, languageAutoGivesFewerPartsAndNoLanguagePart) {
    const auto automatic = transcriptionFrame(boundary, TimestampGranularity::segment, "auto", "a.wav");
    const auto body = automatic.head + "bytes" + automatic.tail;
    // model, response_format, timestamp_granularities[], file; with their boundaries stands the closing one.
    EXPECT_EQ(occurrences(body, "Content-Disposition"), 4U);
    EXPECT_EQ(occurrences(body, "--" + boundary), 5U);
    EXPECT_EQ(occurrences(body, "language"), 0U);
    const auto spanish = transcriptionFrame(boundary, TimestampGranularity::segment, "es", "a.wav");
    EXPECT_EQ(occurrences(spanish.head, "Content-Disposition"), 5U);
}

TEST(TranscriptionFrame, onlyTheExactWordAutoLeavesTheLanguageOut) {
    for (const auto* language : {"Auto", "auto ", ""}) {
        const auto frame = transcriptionFrame(boundary, TimestampGranularity::segment, language, "a.wav");
        EXPECT_EQ(occurrences(frame.head, "name=\"language\"\r\n\r\n" + std::string(language) + "\r\n"), 1U)
            << language;
    }
}

TEST(TranscriptionFrame, theFileNameGoesInAsItStands) {
    const auto frame = transcriptionFrame("B", TimestampGranularity::segment, "auto", "a \"b\"\nñ.wav");
    EXPECT_TRUE(frame.head.ends_with("--B\r\nContent-Disposition: form-data; name=\"file\"; filename=\"a \"b\"\nñ.wav\""
                                     "\r\nContent-Type: audio/wav\r\n\r\n"));
    EXPECT_EQ(frame.tail, "\r\n--B--\r\n");
}

TEST(TranscriptionFrame, theContentTypeNamesTheBoundaryWithoutPrefix) {
    EXPECT_EQ(multipartContentType(boundary), "multipart/form-data; boundary=2F1B0C6E-6E1C-4B7B-9E55-0A3F6F0D9A11");
}

TEST(TranscriptionAnswer, unknownKeysAreIgnored) {
    const auto decoded = decodeTranscription(
        R"({"task":"transcribe","language":"spanish","duration":9.5,"text":"Hola.","segments":[{"id":0,"start":0,"end":1.5,"text":" Hola.","tokens":[1]}]})");
    ASSERT_TRUE(decoded.value) << decoded.failure;
    EXPECT_EQ(decoded.value->text, "Hola.");
    EXPECT_EQ(decoded.value->language, "spanish");
    ASSERT_EQ(decoded.value->segments.size(), 1U);
    EXPECT_EQ(decoded.value->segments[0].start, 0.0);
    EXPECT_EQ(decoded.value->segments[0].end, 1.5);
    EXPECT_EQ(decoded.value->segments[0].text, " Hola.");
}

TEST(TranscriptionAnswer, anAnswerWithoutSegmentsFails) {
    EXPECT_FALSE(decodeTranscription(R"({"text":"Hola.","language":"es"})").value);
    EXPECT_FALSE(decodeTranscription(R"({"text":"Hola.","segments":null})").value);
    EXPECT_FALSE(decodeTranscription(R"({"segments":[]})").value);
    EXPECT_FALSE(decodeTranscription(R"({"text":"a","segments":[{"start":0,"end":1}]})").value);
    EXPECT_FALSE(decodeTranscription("<html>").value);
}

TEST(TranscriptionAnswer, anEmptySegmentListIsASuccessThatAddsNothing) {
    const auto decoded = decodeTranscription(R"({"text":"","segments":[]})");
    ASSERT_TRUE(decoded.value);
    EXPECT_TRUE(chunkLines(*decoded.value, 300.0).empty());
}

TEST(ChunkLines, aChunkStartsAfterTheMeasuredLengthOfThoseBefore) {
    const WhisperResponse response{"", "es", {{0.4, 2.0, "Hola"}}};
    const auto lines = chunkLines(response, 300.0);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_DOUBLE_EQ(lines[0].start, 300.4);
    EXPECT_DOUBLE_EQ(lines[0].end, 302.0);
    EXPECT_EQ(lines[0].language, "es");
}

TEST(ChunkLines, whiteSpaceAroundATextGoesAndAnEmptyTextStays) {
    const WhisperResponse response{"", "es", {{0, 1, " \n\u00A0Hola  amigo.\t"}, {1, 2, " \r\n "}, {2, 3, ""}}};
    const auto lines = chunkLines(response, 0.0);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].text, "Hola  amigo.");
    EXPECT_EQ(lines[1].text, "");
    EXPECT_EQ(lines[2].text, "");
}

TEST(ChunkLines, anAnswerWithoutLanguageGivesUnknown) {
    const auto lines = chunkLines({"", std::nullopt, {{0, 1, "a"}}}, 0.0);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].language, "unknown");
}

TEST(TimedWords, aWordWithAMissingEndIsDroppedTheOthersStay) {
    const auto words = readTimedWords(
        R"({"words":[{"word":"uno","start":0.12,"end":0.5},{"word":"dos","start":0.5},{"word":"tres","start":1,"end":2}]})");
    ASSERT_TRUE(words);
    ASSERT_EQ(words->size(), 2U);
    EXPECT_EQ((*words)[0].word, "uno");
    EXPECT_EQ((*words)[0].start, 0.12);
    EXPECT_EQ((*words)[0].end, 0.5);
    EXPECT_EQ((*words)[1].word, "tres");
    EXPECT_EQ((*words)[1].start, 1.0);
    EXPECT_EQ((*words)[1].end, 2.0);
}

TEST(TimedWords, elementsOfOtherKindsAreDropped) {
    const auto words = readTimedWords(
        R"({"words":[7,null,"x",{"word":1,"start":0,"end":1},{"word":"a","start":"0","end":1},{"word":"b","start":true,"end":1},{"word":"c","start":0,"end":null},{"word":" d","start":0,"end":1}]})");
    ASSERT_TRUE(words);
    ASSERT_EQ(words->size(), 1U);
    EXPECT_EQ((*words)[0].word, " d");
}

TEST(TimedWords, anEmptyListIsAList) {
    const auto words = readTimedWords(R"({"text":"a b","segments":[],"words":[]})");
    ASSERT_TRUE(words);
    EXPECT_TRUE(words->empty());
}

TEST(TimedWords, aBodyWithoutAListOfWordsGivesNothing) {
    for (const auto* body : {"", "no json", "[]", "null", "{}", R"({"words":null})", R"({"words":{}})",
                             R"({"words":"a"})", R"([{"word":"a","start":0,"end":1}])"})
        EXPECT_FALSE(readTimedWords(body)) << body;
}

TEST(WordTimestampsFile, isCompactWithAnEntryForAnEmptyListToo) {
    const auto text =
        wordTimestampsText({WordSegment{7, {{"Nunca", 0.12, 0.5}, {"día", 0.5, 1.0}}}, WordSegment{3, {}}});
    ASSERT_TRUE(text);
    tests::expectGolden(*text, "cache/word_timestamps.json");
}

TEST(WordTimestampsFile, aTimeThatJsonCannotWriteGivesNothing) {
    EXPECT_FALSE(wordTimestampsText({WordSegment{1, {{"a", 0.0, std::numeric_limits<double>::infinity()}}}}));
    EXPECT_FALSE(wordTimestampsText({WordSegment{1, {{"a", std::numeric_limits<double>::quiet_NaN(), 1.0}}}}));
}

TEST(WordCount, countsNonEmptyPiecesBetweenBlanks) {
    EXPECT_EQ(wordCount({}), 0U);
    EXPECT_EQ(wordCount({{0, 1, "", "es"}, {1, 2, "   ", "es"}}), 0U);
    EXPECT_EQ(wordCount({{0, 1, " one  two ", "es"}, {1, 2, "three\tfour\nfive six", "es"}}), 4U);
}

} // namespace
} // namespace zuvo
