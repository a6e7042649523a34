#include "fakes/pipeline/PipelineFixture.h"

#include <cstdio>
#include <unistd.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

std::string volume(const std::string& decibels) {
    return "[Parsed_volumedetect_1 @ 0x1] n_samples: 80000\n[Parsed_volumedetect_1 @ 0x1] mean_volume: " + decibels +
           " dB\n[Parsed_volumedetect_1 @ 0x1] max_volume: -3.0 dB\n";
}

class EnergyStage : public PipelineFixture {
protected:
    std::string givenStereoFile(const std::string& name, const std::string& left, const std::string& right) {
        auto path = givenFile(name, "100.0");
        tools->channelText[path] = "2\n";
        tools->volumeReport[path] = {{"c0", volume(left)}, {"c1", volume(right)}};
        return path;
    }

    std::string primaryChannel(const std::string& path) { return ended(pipeline->detectPrimaryChannel(path)); }

    /// An analysis of these lines, stopped by the service, as far as the energy is concerned.
    void analyze(std::vector<TranscriptSegment> lines) {
        services->thenFails("stopped here");
        auto transcript = transcriptOf(std::move(lines));
        EXPECT_FALSE(ended(pipeline->analyzeStory(transcript, 5.0, "auto", "style")).has_value());
    }

    void givenProbed(const std::vector<std::string>& paths) {
        ended(pipeline->probeAllMedia(paths));
        pipeline->reset();
        tools->requests.clear();
    }

    /// Media of a run without anything else of it: a project without a transcript knows only its paths.
    void givenMediaPaths(const std::vector<std::string>& paths) {
        SavedProject project;
        project.mediaPaths = paths;
        services->thenFails("stopped here");
        ended(pipeline->runFromProject(project, {}));
        pipeline->reset();
        tools->requests.clear();
        services->requests.clear();
    }

    std::string prompt() const { return services->requests.at(0).body; }
};

} // namespace

TEST_F(EnergyStage, aMonoFileIsAnsweredAfterOneLook) {
    const auto path = givenFile("A.wav", "100.0");
    EXPECT_EQ(primaryChannel(path), "");
    EXPECT_THAT(tools->requests, SizeIs(1));
}

TEST_F(EnergyStage, anUnreadableNumberOfChannelsCountsAsMono) {
    const auto path = givenStereoFile("A.wav", "-20.0", "-40.0");
    tools->channelText[path] = "N/A\n";
    EXPECT_EQ(primaryChannel(path), "");
    tools->channelText[path] = "2\n2\n";
    EXPECT_EQ(primaryChannel(path), "");
}

TEST_F(EnergyStage, bothChannelsAreMeasuredAtThreePlaces) {
    const auto path = givenStereoFile("A.wav", "-20.0", "-27.0");
    EXPECT_EQ(primaryChannel(path), "pan=1c|c0=c0");
    const std::string start = "ffmpeg|-hide_banner|-nostats|-i|{footage}/A.wav|-ss|";
    const std::string left = "|-t|5|-af|pan=1c|c0=c0,volumedetect|-f|null|-";
    const std::string right = "|-t|5|-af|pan=1c|c0=c1,volumedetect|-f|null|-";
    EXPECT_THAT(commands(), ElementsAre("ffprobe|-hide_banner|-i|{footage}/A.wav|-show_entries|stream=channels|-of|"
                                        "default=nw=1:nk=1",
                                        "ffprobe|-hide_banner|-i|{footage}/A.wav|-show_entries|format=duration|-of|"
                                        "default=nw=1:nk=1",
                                        start + "20.0" + left, start + "20.0" + right, start + "50.0" + left,
                                        start + "50.0" + right, start + "80.0" + left, start + "80.0" + right));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(EnergyStage, theClearlyLouderChannelIsTaken) {
    EXPECT_EQ(primaryChannel(givenStereoFile("left.wav", "-20.0", "-27.0")), "pan=1c|c0=c0");
    EXPECT_EQ(primaryChannel(givenStereoFile("right.wav", "-27.0", "-20.0")), "pan=1c|c0=c1");
    EXPECT_EQ(primaryChannel(givenStereoFile("near.wav", "-20.0", "-24.9")), "");
}

TEST_F(EnergyStage, threeMeasurementsDecideNothing) {
    const auto path = givenStereoFile("A.wav", "-20.0", "n/a");
    EXPECT_EQ(primaryChannel(path), "");
}

TEST_F(EnergyStage, anUnknownLengthIsMeasuredAsOfThreeHundredSeconds) {
    const auto path = givenStereoFile("A.wav", "-20.0", "-27.0");
    tools->durationText[path] = "N/A";
    (void)primaryChannel(path);
    EXPECT_EQ(tools->requests.at(2).arguments.at(5), "60.0");
    EXPECT_EQ(tools->requests.at(7).arguments.at(5), "240.0");
}

TEST_F(EnergyStage, aToolThatCannotBeLaunchedLeavesTheChannelsMixed) {
    const auto path = givenStereoFile("A.wav", "-20.0", "-27.0");
    tools->when(call("ffmpeg", {}), notLaunched());
    EXPECT_EQ(primaryChannel(path), "");
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(EnergyStage, theFirstSourceDecidesForAll) {
    const auto first = givenStereoFile("A.wav", "-20.0", "-27.0");
    const auto second = givenStereoFile("B.wav", "-27.0", "-20.0");
    givenProbed({first, second});
    analyze({{0.0, 10.0, "one", "en"}});
    thenLogHas("[dim]   Primary channel: LEFT");
    thenLogLacks("RIGHT");
    const auto lines = commands();
    EXPECT_EQ(lines.back(), "ffmpeg|-y|-hide_banner|-nostats|-i|{footage}/B.wav|-af|pan=1c|c0=c0,aresample=1000|-ac|1|"
                            "-ar|1000|-f|s16le|-acodec|pcm_s16le|{tmp}/zuvo_pcm_{uuid}.raw");
}

TEST_F(EnergyStage, theRightChannelIsNamedToo) {
    givenProbed({givenStereoFile("A.wav", "-27.0", "-20.0")});
    analyze({});
    thenLogHas("[dim]   Primary channel: RIGHT");
}

TEST_F(EnergyStage, withChannelsAlikeNothingIsSaidOfThem) {
    givenProbed({givenStereoFile("A.wav", "-20.0", "-20.0")});
    analyze({});
    thenLogLacks("Primary channel");
}

TEST_F(EnergyStage, aMissingFirstSourceDecidesNothingForTheOthers) {
    const auto first = givenStereoFile("A.wav", "-20.0", "-27.0");
    const auto second = givenStereoFile("B.wav", "-20.0", "-27.0");
    givenProbed({first, second});
    std::remove(first.c_str());
    analyze({{0.0, 10.0, "in the missing file", "en"}, {100.0, 110.0, "in the other", "en"}});
    thenLogLacks("Primary channel");
    thenLogLacks("A.wav");
    thenLogHas("[dim]   B.wav: 100s extracted");
    EXPECT_THAT(prompt(), HasSubstr("[0.0-10.0s] 🔇 in the missing file\\n[100.0-110.0s] 🔊 in the other\\n"));
}

TEST_F(EnergyStage, theFileOfSamplesIsReadAndRemoved) {
    const auto path = givenFile("A.wav", "2.0");
    const auto samples = ended(pipeline->extractPCM(path, ""));
    EXPECT_THAT(samples, SizeIs(2000));
    EXPECT_THAT(samples, Each(loudAmplitude));
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(EnergyStage, anOddLastByteIsDropped) {
    tools->when(writing(".raw"), [](const ProcessRequest& request) {
        write(request.arguments.back(), std::string("\x01\x00\xff\xff\x07", 5));
        return printed({});
    });
    EXPECT_THAT(ended(pipeline->extractPCM("/a.wav", "")), ElementsAre(1, -1));
}

TEST_F(EnergyStage, aFailedToolGivesNoSamplesAndLeavesNoFile) {
    tools->when(writing(".raw"), [](const ProcessRequest& request) {
        write(request.arguments.back(), "half of it");
        return failed();
    });
    EXPECT_THAT(ended(pipeline->extractPCM("/a.wav", "")), IsEmpty());
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(EnergyStage, aFileThatWasNotWrittenGivesNoSamples) {
    tools->when(writing(".raw"), printed({}));
    EXPECT_THAT(ended(pipeline->extractPCM("/a.wav", "")), IsEmpty());
}

TEST_F(EnergyStage, aTemporaryFolderOfAnotherKindGivesNoSamples) {
    write(temporary + "/zuvo-" + std::to_string(geteuid()), "a file where the folder should be");
    EXPECT_THAT(ended(pipeline->extractPCM("/a.wav", "")), IsEmpty());
    EXPECT_EQ(ended(pipeline->runProcessStderr("/tools/ffmpeg", {})), "");
    EXPECT_THAT(tools->requests, IsEmpty());
}

TEST_F(EnergyStage, aSourceWithoutSamplesIsSilentAndStopsNothing) {
    const auto path = givenFile("A.wav", "100.0");
    tools->samples.clear();
    givenProbed({path});
    analyze({{0.0, 10.0, "one", "en"}});
    thenLogHas("[dim]   A.wav: 0s extracted");
    thenLogHas("[dim]   Energy: 1 loud, 0 medium, 0 quiet — thresholds: quiet<-60dB<med<-60dB<loud");
}

TEST_F(EnergyStage, withoutAnySourceEveryLineIsAtTheFloorAndLoud) {
    analyze({{0.0, 10.0, "one", "en"}, {10.0, 20.0, "two", "en"}});
    EXPECT_THAT(log(), ElementsAre("[dim]   Extracting audio energy profile...",
                                   "[dim]   Energy: 2 loud, 0 medium, 0 quiet — thresholds: "
                                   "quiet<-60dB<med<-60dB<loud",
                                   // "[0.0-10.0s] 🔊 one" and "[10.0-20.0s] 🔊 two" with their line ends: 18 + 19
                                   "[dim]   Sending 37 chars to Claude (energy-annotated)...",
                                   "[dim] 🔑 API key found (anthropic-ke...)",
                                   "[accent]   Claude request failed: stopped here"));
}

TEST_F(EnergyStage, withoutProbeDataTheLengthsAreMeasuredAndAllFilesStartAtZero) {
    const auto first = givenFile("A.wav", "5.0");
    const auto second = givenFile("B.wav", "100.0", quietAmplitude);
    givenMediaPaths({first, second});
    // The first line fits into A; the second begins behind its end, and B reaches that far.
    analyze({{0.0, 4.0, "in A", "en"}, {50.0, 60.0, "in B", "en"}});
    EXPECT_EQ(commands().at(0), "ffprobe|-v|quiet|-show_entries|format=duration|-of|csv=p=0|{footage}/A.wav");
    EXPECT_EQ(commands().at(1), "ffprobe|-v|quiet|-show_entries|format=duration|-of|csv=p=0|{footage}/B.wav");
    thenLogHas("[dim]   A.wav: 5s extracted");
    EXPECT_THAT(prompt(), HasSubstr("[0.0-4.0s] 🔊 in A\\n[50.0-60.0s] 🔇 in B\\n"));
}

TEST_F(EnergyStage, aFileWhoseLengthIsUnknownHoldsNoLine) {
    const auto path = givenFile("A.wav", "100.0");
    tools->durationText.clear();
    givenMediaPaths({path});
    analyze({{0.0, 10.0, "one", "en"}});
    thenLogHas("[dim]   A.wav: 100s extracted");
    thenLogHas("[dim]   Energy: 1 loud, 0 medium, 0 quiet — thresholds: quiet<-60dB<med<-60dB<loud");
}

TEST_F(EnergyStage, aProbeFileThatIsNoObjectOfObjectsCountsAsNone) {
    write(cachePath("probe_results.json"), R"({"A.wav": 3})");
    givenMediaPaths({givenFile("A.wav", "100.0")});
    analyze({});
    EXPECT_EQ(commands().at(0), "ffprobe|-v|quiet|-show_entries|format=duration|-of|csv=p=0|{footage}/A.wav");
}

TEST_F(EnergyStage, sourcesFollowTheirTimecodesAndShortOnesTakeNoPlace) {
    const auto first = givenFile("late.wav", "100.0", quietAmplitude);
    const auto second = givenFile("early.wav", "100.0");
    const auto slate = givenFile("slate.wav", "9.9", 1000);
    write(cachePath("probe_results.json"), R"({"late.wav": {"path": ")" + first +
                                               R"(", "duration": 100.0, "startTimecodeSeconds": 7200.0},
              "early.wav": {"path": ")" + second +
                                               R"(", "duration": 100.0, "startTimecodeSeconds": 3600.0},
              "slate.wav": {"path": ")" + slate +
                                               R"(", "duration": 9.9, "startTimecodeSeconds": null}})");
    analyze({{0.0, 10.0, "one", "en"}, {100.0, 110.0, "two", "en"}});
    EXPECT_THAT(log(),
                testing::IsSupersetOf({"[dim]   early.wav: 100s extracted", "[dim]   late.wav: 100s extracted"}));
    thenLogLacks("slate");
    // A line that starts exactly where a file ends belongs to the later one.
    EXPECT_THAT(prompt(), HasSubstr("[0.0-10.0s] 🔊 one\\n[100.0-110.0s] 🔇 two\\n"));
}

TEST_F(EnergyStage, aLineWithoutTextCountsButIsNotSent) {
    givenProbed({givenFile("A.wav", "100.0")});
    analyze({{0.0, 10.0, "  ", "en"}, {10.0, 20.0, " two ", "en"}});
    thenLogHas("[dim]   Energy: 2 loud, 0 medium, 0 quiet — thresholds: quiet<-20dB<med<-20dB<loud");
    thenLogHas("[dim]   Sending 19 chars to Claude (energy-annotated)...");
    EXPECT_THAT(prompt(), HasSubstr("## TRANSCRIPT (energy-annotated)\\n[10.0-20.0s] 🔊 two\\n\\n\\n## SELECTION"));
}
