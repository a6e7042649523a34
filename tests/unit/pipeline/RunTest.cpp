#include "fakes/pipeline/PipelineFixture.h"

#include <set>

using namespace zuvo;
using namespace zuvo::tests;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

class Run : public PipelineFixture {};

} // namespace

TEST_F(Run, theLogOfAMineOfTwoFilesReadsLineByLine) {
    tools->audioBytes = std::string(2'340'000, 's');
    const auto footage = givenFootage();
    givenServicesAnswer();
    mine(footage);

    EXPECT_THAT(
        log(),
        ElementsAre(
            "[dim] $ zuvo mine --files 2 --mode full-mine", "[muted] Using 2 dropped files...", "[dim]   → A.wav",
            "[dim]   → B.wav", "[muted] 📋 Probing 2 source files...", "[dim]   A.wav: 3:20, TC: none, 48000Hz",
            "[dim]   B.wav: 2:30, TC: none, 48000Hz", "[green] ✓ Probed 2 files",
            "[muted] Extracting audio from files...", "[muted] Audio extracted — 2.3 MB",
            "[muted] Preparing audio chunks...", "[muted] Split into 2 chunks for Whisper",
            "[accent] ⛏ Transcribing with Whisper...", "[dim]   Transcribing chunk 1/2...",
            "[dim]   Transcribing chunk 2/2...", "[muted] 3 segments · 6 words",
            "[accent] ⛏ Claude analyzing story structure...", "[dim]   Extracting audio energy profile...",
            "[dim]   A.wav: 200s extracted", "[dim]   B.wav: 150s extracted",
            "[dim]   Energy: 2 loud, 0 medium, 1 quiet — thresholds: quiet<-20dB<med<-20dB<loud",
            "[dim]   Sending 76 chars to Claude (energy-annotated)...", "[dim] 🔑 API key found (anthropic-ke...)",
            "[muted] 📋 Source clip map: A.wav: 0.0s–200.0s, B.wav: 200.0s–350.0s",
            "[accent] 💎 Found 1 acts · 2 moments", "[accent] ⛏ Re-transcribing selected moments at word level...",
            "[dim]   Word transcribing segment 1/2...", "[dim]   Word transcribing segment 2/2...",
            "[green] ✓ 3 words transcribed across 2 segments", "[green] ✓ Exported SRT, transcript, and story brief",
            "[dim]   Wrote 2 segments to cache", "[muted] Segments file written — ready for export",
            "[green] ✓ Complete — we found gems!"));
}

TEST_F(Run, everyLineCarriesTheMinuteAndSecondOfTheClockAndAnIdentityOfItsOwn) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    mine(footage);
    std::set<std::string> ids;
    for (const auto& line : pipeline->logs()) {
        EXPECT_EQ(line.timestamp, "17:36");
        ids.insert(line.id);
    }
    EXPECT_EQ(ids.size(), pipeline->logs().size());
}

TEST_F(Run, stepAndProgressPassThroughTheirFixedPoints) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    mine(footage);
    // Probing and transcription advance by the number of files and of chunks.
    EXPECT_THAT(takeChanges(),
                ElementsAre("step Connecting to Resolve...", "progress 0.02", "progress 0.035", "progress 0.05",
                            "step Extracting audio...", "step Preparing audio chunks...", "progress 0.1",
                            "step Transcribing with Whisper...", "progress 0.15", "progress 0.3", "progress 0.45",
                            "step Analyzing story structure...", "progress 0.7", "step Translating...", "progress 0.85",
                            "step Building timeline...", "progress 1", "step Complete"));
}

TEST_F(Run, theToolsAreCalledInOrderWithExactlyTheseArguments) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    mine(footage);
    EXPECT_THAT(
        commands(),
        ElementsAre(
            "ffprobe|-v|quiet|-print_format|json|-show_format|-show_streams|{footage}/A.wav",
            "ffprobe|-v|quiet|-print_format|json|-show_format|-show_streams|{footage}/B.wav",
            "ffmpeg|-y|-f|concat|-safe|0|-i|{cache}/concat.txt|-ac|1|-ar|16000|-acodec|pcm_s16le|{cache}/"
            "extracted_audio.wav",
            "ffprobe|-v|quiet|-show_entries|format=duration|-of|csv=p=0|{cache}/extracted_audio.wav",
            "ffmpeg|-y|-i|{cache}/extracted_audio.wav|-ss|0.0|-t|300.0|-ac|1|-ar|16000|-acodec|pcm_s16le|{cache}/"
            "chunks/chunk_000.wav",
            "ffmpeg|-y|-i|{cache}/extracted_audio.wav|-ss|300.0|-t|300.0|-ac|1|-ar|16000|-acodec|pcm_s16le|{cache}/"
            "chunks/chunk_001.wav",
            "ffprobe|-v|quiet|-show_entries|format=duration|-of|csv=p=0|{cache}/chunks/chunk_000.wav",
            "ffprobe|-v|quiet|-show_entries|format=duration|-of|csv=p=0|{cache}/chunks/chunk_001.wav",
            "ffprobe|-hide_banner|-i|{footage}/A.wav|-show_entries|stream=channels|-of|default=nw=1:nk=1",
            "ffmpeg|-y|-hide_banner|-nostats|-i|{footage}/A.wav|-af|aresample=1000|-ac|1|-ar|1000|-f|s16le|-acodec|pcm_"
            "s16le|{tmp}/zuvo_pcm_{uuid}.raw",
            "ffmpeg|-y|-hide_banner|-nostats|-i|{footage}/B.wav|-af|aresample=1000|-ac|1|-ar|1000|-f|s16le|-acodec|pcm_"
            "s16le|{tmp}/zuvo_pcm_{uuid}.raw",
            "ffmpeg|-y|-i|{cache}/extracted_audio.wav|-ss|0.0|-t|10.0|-ac|1|-ar|16000|-acodec|pcm_s16le|{cache}/word_"
            "seg_0.wav",
            "ffmpeg|-y|-i|{cache}/extracted_audio.wav|-ss|100.0|-t|10.5|-ac|1|-ar|16000|-acodec|pcm_s16le|{cache}/word_"
            "seg_1.wav"));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(Run, theStoryIsPublishedWithItsTranscriptItsFolderAndItsSources) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    mine(footage);
    ASSERT_TRUE(pipeline->results());
    ASSERT_EQ(pipeline->results()->segments.size(), 2U);
    EXPECT_EQ(pipeline->results()->segments[1].sourceClip, "A.wav");
    EXPECT_EQ(pipeline->results()->estimatedDuration, 21.0);
    ASSERT_TRUE(pipeline->lastTranscript());
    EXPECT_EQ(pipeline->lastTranscript()->language, "en");
    EXPECT_EQ(pipeline->lastTranscript()->segments.at(2).start, 310.0);
    EXPECT_EQ(pipeline->lastExportDir(), exportsPath("Dropped Files (2)"));
    EXPECT_EQ(pipeline->lastMediaPaths(), footage);
    EXPECT_EQ(pipeline->probeResults().size(), 2U);
    EXPECT_EQ(pipeline->errorMessage(), std::nullopt);
    EXPECT_EQ(pipeline->buildResult(), std::nullopt);
}

TEST_F(Run, twoDroppedFilesNameTheExportFolderAndTheProjectByTheirNumber) {
    const auto footage = givenFootage();
    givenServicesAnswer();
    mine(footage);
    EXPECT_TRUE(exists(exportsPath("Dropped Files (2)/subtitles.srt")));
    EXPECT_TRUE(exists(exportsPath("Dropped Files (2)/project.json")));
    const auto projects = pipeline->listProjects();
    ASSERT_EQ(projects.size(), 1U);
    EXPECT_EQ(projects[0].timeline, "Dropped Files (2)");
    EXPECT_TRUE(projects[0].results.has_value());
}

TEST_F(Run, oneDroppedFileIsNamedWithoutItsExtensionWhereverThatStands) {
    EXPECT_EQ(displayName({"/footage/a.mov.mov"}), "a");
    EXPECT_EQ(displayName({"/footage/my.movie.mov"}), "myie");
    EXPECT_EQ(displayName({"/footage/a.wav", "/footage/b.wav"}), "Dropped Files (2)");
    EXPECT_EQ(displayName({}), "Dropped Files (0)");
}

TEST_F(Run, theLogOfOneFileCountsInTheSingular) {
    const auto path = givenFile("a.mov.mov", "200.0");
    tools->durationText[cachePath("extracted_audio.wav")] = "200.0\n";
    givenTranscription(R"({"start": 0.0, "end": 10.0, "text": "one"})");
    givenStory(fixtureStory);
    givenWords("");
    givenWords("");
    mine({path});
    thenLogHas("[muted] Using 1 dropped file...");
    thenLogHas("[muted] 📋 Probing 1 source file...");
    thenLogHas("[green] ✓ Probed 1 file");
    thenLogHas("[muted] Split into 1 chunk for Whisper");
    EXPECT_EQ(pipeline->lastExportDir(), exportsPath("a"));
    EXPECT_FALSE(exists(cachePath("concat.txt")));
}

TEST_F(Run, theModeStandsInTheFirstLineAloneAndChangesNoWork) {
    const auto footage = givenFootage();
    std::vector<std::vector<std::string>> logs;
    std::vector<std::vector<std::string>> work;
    for (const auto mode : {MiningMode::fullMine, MiningMode::storyMine, MiningMode::structure, MiningMode::audit}) {
        givenNewLaunch(static_cast<std::uint64_t>(mode) + 10);
        tools->requests.clear();
        givenServicesAnswer();
        MineChoices choices;
        choices.mode = mode;
        mine(footage, choices);
        logs.push_back(log());
        work.push_back(commands());
    }
    EXPECT_EQ(logs[0].front(), "[dim] $ zuvo mine --files 2 --mode full-mine");
    EXPECT_EQ(logs[1].front(), "[dim] $ zuvo mine --files 2 --mode story-mine");
    EXPECT_EQ(logs[2].front(), "[dim] $ zuvo mine --files 2 --mode structure");
    EXPECT_EQ(logs[3].front(), "[dim] $ zuvo mine --files 2 --mode audit-mine");
    for (std::size_t i = 1; i < logs.size(); ++i) {
        EXPECT_EQ(work[i], work[0]);
        EXPECT_TRUE(std::equal(logs[0].begin() + 1, logs[0].end(), logs[i].begin() + 1, logs[i].end()));
    }
}

TEST_F(Run, aStoryWithoutWordsStillGetsExportsAProjectAndItsEnd) {
    const auto footage = givenFootage();
    givenTranscription(R"({"start": 0.0, "end": 10.0, "text": "one"})");
    givenTranscription("");
    givenStory(fixtureStory);
    services->then(500, "busy");
    services->then(500, "busy");
    mine(footage);
    thenLogLacks("words transcribed");
    EXPECT_FALSE(exists(cachePath("word_timestamps.json")));
    EXPECT_TRUE(exists(exportsPath("Dropped Files (2)/subtitles.srt")));
    EXPECT_TRUE(exists(exportsPath("Dropped Files (2)/project.json")));
    EXPECT_TRUE(exists(cachePath("segments.json")));
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
}

TEST_F(Run, aStoryWhoseMomentsAreAllRejectedIsCompleteAndEmpty) {
    const auto footage = givenFootage();
    givenTranscription(R"({"start": 0.0, "end": 10.0, "text": "one"})");
    givenTranscription(R"({"start": 10.0, "end": 20.0, "text": "two"})");
    // The line in A is at -20 dB and the one in B at -40 dB; the moment lies in B.
    givenStory(R"({"segments": [{"index": 4, "startTime": 300.0, "endTime": 310.0, "sourceClip": "source",
                   "transcript": "t", "translation": "t"}],
                   "structure": {"acts": [{"name": "Act 1", "segments": [4]}], "totalDuration": 10.0},
                   "subtitles": [], "estimatedDuration": 10.0})");
    mine(footage);
    thenLogHas("[accent]   ✗ Reject seg 4: RMS -40.0dB < -20.0dB");
    thenLogHas("[dim]   Energy audit: 0 passed, 1 rejected");
    thenLogHas("[accent] 💎 Found 1 acts · 0 moments");
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    ASSERT_TRUE(pipeline->results());
    EXPECT_THAT(pipeline->results()->segments, IsEmpty());
    EXPECT_EQ(pipeline->results()->structure.acts.at(0).segments, std::vector<std::int64_t>{4});
    EXPECT_EQ(read(cachePath("segments.json")), "[]");
}

TEST_F(Run, theSizeLineIsLeftOutIfTheExtractedFileCannotBeRead) {
    const auto footage = givenFootage();
    tools->when(call("ffmpeg", {"concat"}), printed({}));
    givenServicesAnswer();
    mine(footage);
    thenLogLacks("Audio extracted");
    thenLogHas("[muted] Preparing audio chunks...");
}
