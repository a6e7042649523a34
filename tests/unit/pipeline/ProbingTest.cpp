#include "fakes/pipeline/PipelineFixture.h"

#include "base/Json.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Probing : public PipelineFixture {
protected:
    void probe(std::vector<std::string> paths) { ended(pipeline->probeAllMedia(std::move(paths))); }
};

} // namespace

TEST_F(Probing, anEmptyListLogsItsFirstLineAndNothingElse) {
    write(cachePath("probe_results.json"), "from before");
    probe({});
    EXPECT_THAT(log(), ElementsAre("[muted] 📋 Probing 0 source files..."));
    EXPECT_EQ(read(cachePath("probe_results.json")), "from before");
}

TEST_F(Probing, aFileThatCannotBeProbedDoesNotStopTheOthers) {
    const auto good = givenFile("A.wav", "65.2");
    probe({"/gone/B.wav", good});
    EXPECT_THAT(log(), ElementsAre("[muted] 📋 Probing 2 source files...", "[accent]   ⚠ Failed to probe B.wav",
                                   "[dim]   A.wav: 1:05, TC: none, 48000Hz", "[green] ✓ Probed 1 file"));
}

TEST_F(Probing, whatIsNoJsonOrNoObjectIsAFailure) {
    tools->probeJson["/a.wav"] = "ffprobe: no such thing";
    tools->probeJson["/b.wav"] = "[]";
    tools->probeJson["/c.wav"] = "\xff\xfe";
    probe({"/a.wav", "/b.wav", "/c.wav"});
    EXPECT_THAT(log(), ElementsAre("[muted] 📋 Probing 3 source files...", "[accent]   ⚠ Failed to probe a.wav",
                                   "[accent]   ⚠ Failed to probe b.wav", "[accent]   ⚠ Failed to probe c.wav"));
}

TEST_F(Probing, ifAllFilesFailTheOldFileStaysOnDiskAndTheResultsAreEmpty) {
    probe({givenFile("A.wav", "65.2")});
    write(cachePath("probe_results.json"), "from before");
    probe({"/gone/B.wav"});
    EXPECT_EQ(read(cachePath("probe_results.json")), "from before");
    EXPECT_THAT(pipeline->probeResults(), IsEmpty());
}

TEST_F(Probing, anAnswerWithoutAnyKeyIsAResultWithEmptyFields) {
    tools->probeJson["/a.wav"] = "{}";
    probe({"/a.wav"});
    thenLogHas("[dim]   a.wav: 0:00, TC: none, unknown");
    thenLogHas("[green] ✓ Probed 1 file");
}

TEST_F(Probing, ofTwoFilesOfOneNameTheLaterIsKept) {
    const auto first = givenFile("one/A.wav", "20.0");
    const auto second = givenFile("two/A.wav", "30.0");
    probe({first, second});
    ASSERT_EQ(pipeline->probeResults().size(), 1U);
    EXPECT_EQ(pipeline->probeResults().at("A.wav").path, second);
    thenLogHas("[green] ✓ Probed 1 file");
}

TEST_F(Probing, theFileHoldsTheTwelveKeysOfTheLastRunsFilesAlone) {
    probe({givenFile("old.wav", "20.0")});
    tools->probeJson["/media/a.mov"] =
        R"({"format": {"duration": "12.5", "tags": {"timecode": "01:00:00;12"}},
            "streams": [{"codec_type": "video", "r_frame_rate": "30000/1001"}]})";
    probe({"/media/a.mov"});
    // 12 frames at 24 a second, whatever the file's rate.
    EXPECT_EQ(read(cachePath("probe_results.json")), R"({
  "a.mov": {
    "bitDepth": null,
    "channels": null,
    "codec": null,
    "duration": 12.5,
    "filename": "a.mov",
    "fps": 29.97002997002997,
    "hasAudio": false,
    "hasVideo": true,
    "path": "/media/a.mov",
    "sampleRate": null,
    "startTimecode": "01:00:00;12",
    "startTimecodeSeconds": 3600.5
  }
})");
}

TEST_F(Probing, aTimecodeStandsInTheLine) {
    tools->probeJson["/a.wav"] =
        R"({"format": {"duration": "3725.0", "tags": {"time_reference": "172800000"}},
            "streams": [{"codec_type": "audio", "sample_rate": "48000"}]})";
    probe({"/a.wav"});
    thenLogHas("[dim]   a.wav: 62:05, TC: 01:00:00:00, 48000Hz");
    EXPECT_EQ(pipeline->probeResults().at("a.wav").startTimecodeSeconds, 3600.0);
}

TEST_F(Probing, progressAdvancesByTheNumberOfFiles) {
    probe({givenFile("A.wav", "20.0"), givenFile("B.wav", "20.0"), givenFile("C.wav", "20.0"),
           givenFile("D.wav", "20.0")});
    // 0.02 and each time another quarter of 0.03.
    EXPECT_THAT(takeChanges(), ElementsAre("progress 0.02", "progress 0.0275", "progress 0.035", "progress 0.0425"));
}

TEST_F(Probing, cancelledBeforeTheFirstFileNothingIsAsked) {
    pipeline->cancel();
    probe({givenFile("A.wav", "20.0")});
    EXPECT_THAT(log(), ElementsAre("[muted] 📋 Probing 1 source file..."));
    EXPECT_THAT(tools->requests, IsEmpty());
}

TEST_F(Probing, aCacheFolderThatCannotBeMadeIsNoFailure) {
    write(home + "/Library/Caches", "a file where the folder should be");
    probe({givenFile("A.wav", "20.0")});
    EXPECT_EQ(log().back(), "[green] ✓ Probed 1 file");
    EXPECT_EQ(pipeline->probeResults().size(), 1U);
}

TEST_F(Probing, oneFileCanBeProbedAlone) {
    const auto path = givenFile("A.wav", "20.0");
    const auto result = ended(pipeline->probeMediaFile(path));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->duration, 20.0);
    EXPECT_THAT(log(), IsEmpty());
    EXPECT_THAT(pipeline->probeResults(), IsEmpty());
}
