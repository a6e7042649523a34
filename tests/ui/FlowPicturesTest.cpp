#include "ui/FlowFixture.h"
#include "ui/TakePicture.h"

#include <QTest>
#include <filesystem>

// A picture of every state of the first three pages, written and checked as in PicturesTest.cpp.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class FlowPictures : public FlowFixture {
protected:
    void take(const QString& name) { takePicture(*driver, name); }

    void takeInEverySize(const QString& name) {
        take(name);
        driver->resize(900, 600);
        take(name + QStringLiteral("-minimum-window"));
        driver->resize(2560, 1440);
        take(name + QStringLiteral("-large-window"));
        driver->resize(1100, 750);
    }

    [[nodiscard]] DroppedFile fileOfSize(const std::string& name, std::uintmax_t bytes) {
        DroppedFile file;
        file.url = givenFile(name);
        std::filesystem::resize_file(file.url.toLocalFile().toStdString(), bytes); // takes no room
        return file;
    }

    void givenTwoFiles() {
        auto recorder = fileOfSize("Faro_Interview_A001.wav", 730'900'000);
        recorder.isProbing = false;
        recorder.probeResult = ProbeResult();
        recorder.probeResult->duration = 2538.4;
        recorder.probeResult->sampleRate = 48000;
        flow().setDroppedFiles({recorder, fileOfSize("Faro_Interview_B002.mov", 1'840'000'000)});
    }

    void givenSavedMine(const std::string& name, std::optional<std::size_t> clips, double minutes,
                        const std::optional<std::string>& preset) {
        std::optional<MiningResults> results;
        if (clips) {
            results.emplace();
            results->segments.resize(*clips);
        }
        pipeline().setResults(std::move(results));
        TranscriptResult transcript;
        transcript.language = "es";
        transcript.segments.resize(1204);
        pipeline().saveProject(name, transcript, {"/media/a.wav"}, preset, minutes);
        pipeline().setResults(std::nullopt);
    }
};

} // namespace

TEST_F(FlowPictures, setup) {
    launch();
    driver->hover(QStringLiteral("filesTab"));
    takeInEverySize(QStringLiteral("02-setup-a-empty"));
    givenTwoFiles();
    takeInEverySize(QStringLiteral("02-setup-b-files"));
    driver->find(QStringLiteral("actionButton"))->forceActiveFocus(Qt::TabFocusReason);
    take(QStringLiteral("02-setup-f-keyboard"));
    driver->click(QStringLiteral("languagePicker"));
    takeInEverySize(QStringLiteral("02-setup-g-languages"));
}

TEST_F(FlowPictures, setupWithFilesHeldOverOthers) {
    launch();
    givenTwoFiles();
    dragOver({givenFile("a.wav")});
    takeInEverySize(QStringLiteral("02-setup-h-more-files-held-over"));
    dragAway();
    std::vector<DroppedFile> many;
    for (int i = 0; i < 24; ++i) {
        many.push_back(fileOfSize("Faro_Interview_A" + std::to_string(100 + i) + ".mxf", 730'900'000));
        many.back().isProbing = i > 20;
    }
    flow().setDroppedFiles(many);
    takeInEverySize(QStringLiteral("02-setup-i-many-files"));
}

TEST_F(FlowPictures, setupWithResolve) {
    givenResolve("Faro — Documentary 2026", "Faro Interview — Assembly\nFaro Interview — Cut 2\n");
    launch();
    driver->click(QStringLiteral("resolveTab"));
    ASSERT_TRUE(driver->waitForText(QStringLiteral("Connected")));
    ASSERT_TRUE(waitUntil([this] { return flow().resolveBridge()->timelines().size() == 2; }));
    takeInEverySize(QStringLiteral("02-setup-c-resolve-no-timeline"));
    flow().setSelectedTimeline("Faro Interview — Assembly");
    driver->click(QStringLiteral("mode3"));
    takeInEverySize(QStringLiteral("02-setup-c-resolve"));
}

TEST_F(FlowPictures, setupWithoutResolve) {
    launch();
    driver->click(QStringLiteral("resolveTab"));
    takeInEverySize(QStringLiteral("02-setup-c-resolve-not-connected"));
}

TEST_F(FlowPictures, setupWithRecentMines) {
    launch();
    givenSavedMine("Market Women of Cambados", 18, 8, "cinema-verite");
    givenSavedMine("Dropped Files (2)", std::nullopt, 12, std::nullopt);
    givenSavedMine("Faro Interview — Assembly", 11, 5, "campfire");
    flow().listProjects();
    dragOver({givenFile("a.wav")});
    takeInEverySize(QStringLiteral("02-setup-d-recent-mines"));
    givenTwoFiles();
    takeInEverySize(QStringLiteral("02-setup-d-recent-mines-and-files"));
}

TEST_F(FlowPictures, style) {
    launch();
    givenTwoFiles();
    flow().setupNext();
    thenStepIs(MineStep::style);
    takeInEverySize(QStringLiteral("03-lantern-c-closed"));
    flow().setDirectorNotes(
        "The grandfather and the light. Keep the storm in the middle, end on why he still climbs the "
        "stairs. Skip the part about the pension office.");
    driver->resize(1100, 1248);
    driver->click(QStringLiteral("preset3"));
    driver->click(QStringLiteral("fineTuneToggle"));
    driver->hover(QStringLiteral("preset7"));
    take(QStringLiteral("03-lantern-a-fine-tune-full-scroll"));
    takeInEverySize(QStringLiteral("03-lantern-a-fine-tune"));
    flow().setDirectorNotes("");
    driver->click(QStringLiteral("magicModeCard"));
    takeInEverySize(QStringLiteral("03-lantern-b-magic"));
}

TEST_F(FlowPictures, dig) {
    launch();
    constexpr std::chrono::milliseconds longEnoughToLook{15000};
    world.services.fail(standin::Service::messages, standin::Failure::late(longEnoughToLook));
    flow().setDroppedFiles({});
    drop({sample(1), sample(2)});
    flow().setupNext();
    flow().styleNext();
    ASSERT_TRUE(waitUntil([this] { return pipeline().step() == PipelineStep::analyzing; }));
    ASSERT_TRUE(waitUntil([this] { return !world.services.requests(standin::Service::messages).empty(); }));
    takeInEverySize(QStringLiteral("04-dig-a-running"));
    driver->click(QStringLiteral("cancelButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("keepButton")));
    takeInEverySize(QStringLiteral("04-dig-b-cancel"));
    driver->click(QStringLiteral("keepButton"));
    ASSERT_TRUE(waitUntil([this] { return flow().currentStep() == MineStep::review; }, longEnoughToLook + patience));
}

TEST_F(FlowPictures, digThatFailed) {
    launch();
    world.services.fail(standin::Service::transcription,
                        standin::Failure::status(401,
                                                 R"({"error": {"message": "Incorrect API key provided: made-up.",)"
                                                 R"( "type": "invalid_request_error", "code": "invalid_api_key"}})"));
    drop({sample(1)});
    flow().setupNext();
    flow().styleNext();
    ASSERT_TRUE(driver->waitFor(QStringLiteral("errorBanner")));
    takeInEverySize(QStringLiteral("04-dig-c-error"));
}

TEST_F(FlowPictures, aWholeMineOfTheSample) {
    constexpr std::chrono::milliseconds longEnoughToLook{2500};
    launch();
    take(QStringLiteral("12-mine-a-nothing-dropped"));
    tools->hold(probing(".m4a"));
    drop({sample(1), sample(2)});
    take(QStringLiteral("12-mine-b-probing"));
    tools->release();
    ASSERT_TRUE(waitUntil([this] {
        const auto& files = flow().droppedFiles();
        return !files.front().isProbing && !files.back().isProbing;
    }));
    take(QStringLiteral("12-mine-c-probed"));
    driver->click(QStringLiteral("actionButton"));
    thenStepIs(MineStep::style);
    take(QStringLiteral("12-mine-d-style"));
    world.services.fail(standin::Service::transcription, standin::Failure::late(longEnoughToLook));
    world.services.fail(standin::Service::messages, standin::Failure::late(longEnoughToLook));
    scrollTo(QStringLiteral("actionButton"));
    driver->click(QStringLiteral("actionButton"));
    ASSERT_TRUE(waitUntil([this] { return pipeline().step() == PipelineStep::transcribing; }));
    take(QStringLiteral("12-mine-e-transcribing"));
    ASSERT_TRUE(waitUntil([this] { return pipeline().step() == PipelineStep::analyzing; }));
    take(QStringLiteral("12-mine-f-analyzing"));
    thenStepIs(MineStep::review);
    take(QStringLiteral("12-mine-g-review"));
    EXPECT_EQ(pipeline().step(), PipelineStep::complete);
}
