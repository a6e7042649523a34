#include "fakes/pipeline/PipelineFixture.h"

#include <filesystem>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class TranscriptCache : public PipelineFixture {
protected:
    TranscriptResult transcript() const {
        return transcriptOf({{0.5, 10.0, "uno", "es"}, {10.0, 20.0, "", "en"}}, "es");
    }

    void givenLegacyChunk(const std::string& project, const std::string& file, const std::string& text) {
        write(home + "/.brindlecot/" + project + "/chunks/" + file, text);
    }

    const std::vector<std::string> media = {"/m/B-roll.wav", "/m/A.wav"};
};

} // namespace

TEST_F(TranscriptCache, theFolderIsNamedByTheLowestThirtyOneBitsInHexadecimal) {
    std::string hashed;
    platform.textHash = [&hashed](const std::string& text) {
        hashed = text;
        return 0xffffffff8000abcdULL;
    };
    pipeline = LocalPipeline::create(platform);
    EXPECT_EQ(pipeline->cacheDir(media), cachePath("transcripts/abcd"));
    EXPECT_EQ(hashed, "/m/A.wav|/m/B-roll.wav");
}

TEST_F(TranscriptCache, theSamePathsInAnotherOrderGiveTheSameFolderWithinOneLaunch) {
    EXPECT_EQ(pipeline->cacheDir({"/m/A.wav", "/m/B.wav"}), pipeline->cacheDir({"/m/B.wav", "/m/A.wav"}));
    EXPECT_NE(pipeline->cacheDir({"/m/A.wav"}), pipeline->cacheDir({"/m/B.wav"}));
}

TEST_F(TranscriptCache, theFileIsCompactAndHoldsTheLanguageOnce) {
    now = QDateTime::fromMSecsSinceEpoch(1'772'601'456'250, Qt::UTC);
    pipeline->saveTranscriptCache(transcript(), media);
    EXPECT_EQ(read(pipeline->cacheDir(media) + "/transcript.json"),
              R"({"language":"es","segments":[{"start":0.5,"end":10.0,"text":"uno"},)"
              R"({"start":10.0,"end":20.0,"text":""}],"mediaPaths":["/m/B-roll.wav","/m/A.wav"],)"
              R"("createdAt":1772601456.25})");
}

TEST_F(TranscriptCache, whatWasSavedIsFoundWithTheFilesLanguageInEveryLine) {
    pipeline->saveTranscriptCache(transcript(), media);
    const auto found = pipeline->loadCachedTranscript({"/m/A.wav", "/m/B-roll.wav"});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->language, "es");
    ASSERT_THAT(found->segments, SizeIs(2));
    EXPECT_EQ(found->segments[0].start, 0.5);
    EXPECT_EQ(found->segments[1].language, "es");
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(TranscriptCache, afterANewStartOfTheProgramItIsNotFoundAndStaysBehind) {
    pipeline->saveTranscriptCache(transcript(), media);
    const auto folder = pipeline->cacheDir(media);
    givenNewLaunch(2);
    EXPECT_NE(pipeline->cacheDir(media), folder);
    EXPECT_FALSE(pipeline->loadCachedTranscript(media).has_value());
    EXPECT_TRUE(exists(folder));
}

TEST_F(TranscriptCache, afterANewStartTheEarlierToolsFilesAreFoundInstead) {
    pipeline->saveTranscriptCache(transcript(), media);
    givenLegacyChunk("Boat", "A_wav_0.json", R"({"segments": [{"start": 1.0, "end": 2.0, "text": "hola"}]})");
    givenNewLaunch(2);
    const auto found = pipeline->loadCachedTranscript(media);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->language, "es");
    EXPECT_EQ(found->segments.at(0).text, "hola");
    EXPECT_THAT(log(), ElementsAre("[dim]   Found cached transcripts in ~/.brindlecot/Boat/"));
}

TEST_F(TranscriptCache, aBrokenFileFallsThroughToTheEarlierToolsFilesAndIsNoFailure) {
    const auto file = pipeline->cacheDir(media) + "/transcript.json";
    givenLegacyChunk("Boat", "A_wav_0.json", R"({"segments": [{"text": "hola"}]})");
    for (const std::string broken :
         {"{\"language\": \"en\", \"segm", "", "[]", R"({"language": "en", "segments": []})"}) {
        write(file, broken);
        const auto found = pipeline->loadCachedTranscript(media);
        ASSERT_TRUE(found) << broken;
        EXPECT_EQ(found->segments.at(0).text, "hola");
    }
    std::filesystem::remove_all(home + "/.brindlecot");
    EXPECT_FALSE(pipeline->loadCachedTranscript(media).has_value());
}

TEST_F(TranscriptCache, aFileWithoutLinesIsAHit) {
    givenLegacyChunk("Boat", "A_wav_0.json", R"({"segments": [{"text": "hola"}]})");
    pipeline->saveTranscriptCache(transcriptOf({}, "en"), media);
    const auto found = pipeline->loadCachedTranscript(media);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->language, "en");
    EXPECT_THAT(found->segments, IsEmpty());
}

TEST_F(TranscriptCache, theMediaInTheFileAreNotCompared) {
    write(pipeline->cacheDir(media) + "/transcript.json",
          R"({"language":"en","segments":[],"mediaPaths":["/other.wav"],"createdAt":1})");
    EXPECT_TRUE(pipeline->loadCachedTranscript(media).has_value());
}

TEST_F(TranscriptCache, aFolderThatCannotBeMadeIsNoFailure) {
    write(cachePath("transcripts"), "a file where the folder should be");
    pipeline->saveTranscriptCache(transcript(), media);
    EXPECT_FALSE(pipeline->loadCachedTranscript(media).has_value());
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(TranscriptCache, withoutAnEarlierToolThereIsNothing) {
    EXPECT_FALSE(pipeline->loadLegacyBrindlecotCache(media).has_value());
    write(home + "/.brindlecot", "a file");
    EXPECT_FALSE(pipeline->loadLegacyBrindlecotCache(media).has_value());
}

TEST_F(TranscriptCache, chunksOfTheEarlierToolAreReadInOrderAndSortedByStart) {
    givenLegacyChunk("Boat", "A_wav_1.json",
                     R"({"segments": [{"start": 5, "end": 6, "text": "b"}, {"text": "first"}]})");
    givenLegacyChunk("Boat", "A_wav_0.json", R"({"segments": [{"start": 9, "end": 10, "text": "c"},
                                                              {"start": 5, "end": 6, "text": "a"}, {"start": 1}]})");
    givenLegacyChunk("Boat", "A_wav_2.json", "broken");
    givenLegacyChunk("Boat", "notes.txt", "A_wav");
    const auto found = pipeline->loadLegacyBrindlecotCache(media);
    ASSERT_TRUE(found);
    std::vector<std::string> texts;
    for (const auto& line : found->segments) {
        texts.push_back(line.text);
        EXPECT_EQ(line.language, "es");
    }
    EXPECT_THAT(texts, ElementsAre("first", "a", "b", "c"));
}

TEST_F(TranscriptCache, aBareNameWithHyphensMatchesUnderscores) {
    givenLegacyChunk("Boat", "B_roll_0.json", R"({"segments": [{"text": "hola"}]})");
    EXPECT_TRUE(pipeline->loadLegacyBrindlecotCache(media).has_value());
}

TEST_F(TranscriptCache, aFolderOfOtherMediaIsPassedOver) {
    givenLegacyChunk("Boat", "Unknown_wav_0.json", R"({"segments": [{"text": "hola"}]})");
    EXPECT_FALSE(pipeline->loadLegacyBrindlecotCache(media).has_value());
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(TranscriptCache, aMatchingFolderWithoutALineIsLoggedAndPassedOver) {
    givenLegacyChunk("Boat", "A_wav_0.json", R"({"segments": [{"start": 1.0}]})");
    EXPECT_FALSE(pipeline->loadLegacyBrindlecotCache(media).has_value());
    EXPECT_THAT(log(), ElementsAre("[dim]   Found cached transcripts in ~/.brindlecot/Boat/"));
}

TEST_F(TranscriptCache, clearCachesLeavesWhatWasPaidFor) {
    for (const auto* name : {"probe_results.json", "segments.json", "word_timestamps.json", "build_output.txt",
                             "build_debug.txt", "extracted_audio.wav", "word_seg_0.wav", "folder/file",
                             "transcripts/abcd/transcript.json", "chunks/chunk_000.wav"})
        write(cachePath(name), "x");
    write(home + "/Desktop/Zuvo_subtitles.srt", "x");
    write(home + "/Desktop/other.srt", "x");
    pipeline->clearCaches();
    std::vector<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(cachePath("")))
        left.push_back(entry.path().filename());
    EXPECT_THAT(left, testing::UnorderedElementsAre("transcripts", "chunks"));
    EXPECT_TRUE(exists(cachePath("transcripts/abcd/transcript.json")));
    EXPECT_TRUE(exists(cachePath("chunks/chunk_000.wav")));
    EXPECT_FALSE(exists(home + "/Desktop/Zuvo_subtitles.srt"));
    EXPECT_TRUE(exists(home + "/Desktop/other.srt"));
}

TEST_F(TranscriptCache, clearCachesResetsAndNeedsNoFolder) {
    ended(pipeline->probeAllMedia({}));
    pipeline->clearCaches();
    EXPECT_THAT(log(), IsEmpty());
    EXPECT_EQ(pipeline->step(), PipelineStep::idle);
    EXPECT_FALSE(exists(cachePath("")));
}
