#pragma once

#include "account/AuthManager.h"
#include "base/Fields.h"
#include "fakes/KeptDesktop.h"
#include "fakes/pipeline/PipelineFixture.h"
#include "resolve/Scripts.h"
#include "ui/MineViewModel.h"

#include <QSignalSpy>
#include <QUrl>
#include <memory>
#include <string>
#include <vector>

namespace zuvo::tests {

/// A flow over a real pipeline in the pipeline fixture's world.
class MineTest : public PipelineFixture {
protected:
    MineTest() { newFlow(); }

    /// The flow as after a new showing of The Mine, over the fixture's present pipeline.
    void newFlow() {
        flow.reset();
        const auto addresses = accountAddresses(platform.environment);
        const APIClient client(services, addresses);
        MineTools parts;
        parts.authManager = std::make_shared<AuthManager>(client, desktop, home + "/.zuvo/token.json");
        parts.resolveBridge = ResolveBridge::create(platform, {interpreter});
        parts.cloudProcessor = CloudProcessor::create(client, {platform.newUuid});
        parts.pipeline = pipeline;
        parts.clock = platform.clock;
        flow = std::make_unique<MineViewModel>(std::move(parts));
    }

    // Given.

    static DroppedFile dropped(const std::string& path) {
        DroppedFile file;
        file.url = QUrl::fromLocalFile(QString::fromStdString(path));
        return file;
    }

    void givenDropped(const std::vector<std::string>& paths) {
        std::vector<DroppedFile> files;
        for (const auto& path : paths)
            files.push_back(dropped(path));
        flow->setDroppedFiles(std::move(files));
    }

    /// The footage, dropped, with services that answer a whole mine of it.
    void givenDroppedFootage() {
        givenDropped(givenFootage());
        givenServicesAnswer();
    }

    /// A timeline in Resolve on which the footage lies, chosen.
    void givenTimeline(const std::string& name) {
        const auto media = givenFootage();
        tools->when(running(timelineMediaScript("/resolve/Modules", name)),
                    printed(media.at(0) + "\n" + media.at(1) + "\n"));
        flow->setSourceMode(SourceMode::resolve);
        flow->setSelectedTimeline(name);
    }

    void givenStep(MineStep step) { flow->advanceTo(step); }

    static SavedProject projectCalled(const std::string& name) {
        SavedProject project;
        project.timeline = name;
        project.createdAt = 1.0;
        project.language = "es";
        project.mediaPaths = {"/footage/A.wav", "/footage/B.wav"};
        project.transcript = {{0.0, 2.0, "hola"}};
        project.targetMinutes = 12.0;
        return project;
    }

    /// Three moments of 10, 20 and 5.5 s, an act and a card.
    static MiningResults analysedStory() {
        auto story = storyOf({{0.0, 10.0}, {20.0, 40.0}, {50.0, 55.5}});
        story.structure.acts = {{"Act 1", {0, 1, 2}}};
        story.structure.totalDuration = 35.5;
        story.subtitles = {{1.0, 2.0, "a card"}};
        story.estimatedDuration = 99.0;
        return story;
    }

    // When.

    [[nodiscard]] bool runEnds() const {
        return waitUntil(
            [this] { return pipeline->step() == PipelineStep::complete || pipeline->step() == PipelineStep::error; });
    }

    /// The event loop turns often enough for what was started to begin.
    static void turn() { runEventLoop(std::chrono::milliseconds(20)); }

    // Then.

    [[nodiscard]] std::string firstLine() const { return log().empty() ? std::string() : log().front(); }

    /// Nothing was asked of any tool or service, and the pipeline stands as at first.
    void thenNothingRan() {
        turn();
        EXPECT_EQ(calls->count(), 0U);
        EXPECT_EQ(pipeline->step(), PipelineStep::idle);
        EXPECT_THAT(pipeline->logs(), testing::IsEmpty());
    }

    std::string interpreter = disk.write("bin/python3", "");
    std::shared_ptr<KeptDesktop> desktop = std::make_shared<KeptDesktop>();
    std::unique_ptr<MineViewModel> flow;
};

template <class Record>
std::string jsonOf(const Record& record) {
    return encodeRecord(record).dump();
}

} // namespace zuvo::tests
