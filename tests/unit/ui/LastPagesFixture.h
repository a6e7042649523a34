#pragma once

#include "base/Fields.h"
#include "fakes/KeptDesktop.h"
#include "fakes/pipeline/PipelineFixture.h"
#include "resolve/Scripts.h"
#include "ui/MineViewModel.h"

#include <memory>
#include <string>
#include <vector>

namespace zuvo::tests {

/// A flow over a real pipeline in the pipeline fixture's world, for the pages that stand at its end.
class LastPagesFixture : public PipelineFixture {
protected:
    LastPagesFixture() {
        MineTools parts;
        parts.pipeline = pipeline;
        parts.clock = platform.clock;
        parts.desktop = desktop;
        flow = std::make_unique<MineViewModel>(std::move(parts));
    }

    /// A story whose moments lie in two clips, with two acts, three chapters and a card.
    static MiningResults givenStoryRecord() {
        auto story = storyOf({{0.0, 10.0}, {20.0, 40.0}, {50.0, 55.5}, {60.0, 70.0}});
        story.segments[0].sourceClip = "A.mov";
        story.segments[1].sourceClip = "B.wav";
        story.segments[2].sourceClip = "A.mov";
        story.segments[3].sourceClip = "B.wav";
        story.segments[0].chapter = "Light";
        story.segments[1].chapter = "Storm";
        story.segments[2].chapter = "Light";
        story.segments[3].chapter = "After";
        story.structure.acts = {{"Act 1", {0, 1, 2}}, {"Act 2", {3}}};
        story.subtitles = {{1.0, 2.0, "a card"}};
        story.estimatedDuration = 291.9;
        return story;
    }

    /// Lets the pipeline know these media, each so many seconds long.
    void givenProbed(const std::vector<std::string>& seconds) {
        std::vector<std::string> paths;
        for (const auto& length : seconds)
            paths.push_back(givenFile("P" + std::to_string(paths.size()) + ".wav", length));
        ended(pipeline->probeAllMedia(paths));
    }

    /// The pipeline's next builds end with this line.
    void givenBuildPrints(const std::string& line) {
        pipeline->writeSegmentsJsonPublic(givenStoryRecord().segments);
        tools->when(call("python3", {}), printed(line + "\n"));
    }

    /// Runs an audit that ends with this report.
    void givenReport(const AuditReport& report) {
        const std::vector<std::string> media = {givenFile("Cut.wav", "60.0")};
        pipeline->saveTranscriptCache(transcriptOf({{0.0, 10.0, "one two", "en"}}), media);
        tools->when(running(timelineClipsScript("/resolve/Modules", "Cut")),
                    printed(R"(SUCCESS:[{"sourceFile": ")" + media.front() +
                            R"(", "startFrame": 0, "endFrame": 24, "duration": 1.0}])" + "\n"));
        tools->when(running(timelineMediaScript("/resolve/Modules", "Cut")), printed(media.front() + "\n"));
        services->then(200, messagesAnswer(encodeRecord(report).dump()));
        ended(pipeline->auditTimeline("Cut"));
        ASSERT_TRUE(pipeline->auditReport()) << pipeline->errorMessage().value_or("");
    }

    std::shared_ptr<KeptDesktop> desktop = std::make_shared<KeptDesktop>();
    std::unique_ptr<MineViewModel> flow;
};

} // namespace zuvo::tests
