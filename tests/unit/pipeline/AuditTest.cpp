#include "fakes/pipeline/PipelineFixture.h"

#include "base/Json.h"
#include "resolve/Scripts.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr const char* report = R"({"coveragePercent": 12.5, "usedSegments": [],
    "buriedGold": [{"startTime": 1.0, "endTime": 2.0, "text": "t", "reason": "r", "emotionalWeight": 4}],
    "redundancies": [], "alternates": [], "themeGaps": ["boats"], "confidenceScore": 82.7, "summary": "s"})";

// A cut of A.wav, 24 to 264 frames into it, whose footage was mined earlier in this start of the program: lines 0-10,
// 100-110 and 310-320.
class Audit : public PipelineFixture {
protected:
    void givenMinedFootage() {
        media = givenAFinishedMine();
        tools->requests.clear();
        services->requests.clear();
    }

    void givenCut(const std::string& name = cut) {
        givenClips(R"([{"sourceFile": ")" + media.at(0) + R"(", "startFrame": 0, "endFrame": 264, "duration": 11.0},)" +
                       R"({"sourceFile": ")" + media.at(0) + R"(", "startFrame": 0, "endFrame": 24, "duration": 1.0}])",
                   name);
        tools->when(running(timelineMediaScript("/resolve/Modules", name)),
                    printed(media.at(0) + "\n" + media.at(1) + "\n"));
    }

    void givenClips(const std::string& json, const std::string& name = cut) {
        tools->when(running(timelineClipsScript("/resolve/Modules", name)), printed("SUCCESS:" + json + "\n"));
    }

    void audit(const std::string& name = cut) { ended(pipeline->auditTimeline(name)); }

    void thenFailedWith(const std::string& message) const {
        EXPECT_EQ(pipeline->step(), PipelineStep::error);
        EXPECT_EQ(pipeline->errorMessage(), message);
        EXPECT_EQ(log().back(), "[accent] ✗ " + message);
        EXPECT_FALSE(pipeline->auditReport());
    }

    std::optional<std::vector<TimelineClip>> clips(const ProcessOutcome& outcome) {
        tools->when(call("python3", {}), outcome);
        return ended(pipeline->readTimelineClips(cut));
    }

    std::optional<AuditReport> analyzed(const std::string& reply) {
        services->then(200, messagesAnswer(reply));
        std::vector<UsedSegment> used;
        return ended(pipeline->analyzeAudit("the prompt", std::move(used)));
    }

    static constexpr const char* cut = "Cut";
    std::vector<std::string> media;
};

} // namespace

TEST_F(Audit, readsLineByLineAndEndsWithAReport) {
    givenMinedFootage();
    givenCut();
    services->then(200, messagesAnswer(report));
    audit();
    EXPECT_THAT(
        log(), ElementsAre(
                   "[dim] $ zuvo audit --timeline Cut", "[muted] Reading existing timeline from Resolve...",
                   "[green] ✓ Found 2 clips using 1 source files", "[green] ✓ Found 2 total source files in media pool",
                   "[accent] ⛏ Loading cached transcripts...", "[green] ✓ Loaded transcript — 3 segments · 6 words",
                   "[muted] Mapping used clips to transcript...", "[dim]   Used: 12.0s / 320s (4%)",
                   "[accent] ⛏ Claude analyzing for buried gold...", "[accent] 💎 Found 1 gold moments · 0 redundancies",
                   "[green]   Confidence score: 82/100", "[green] ✓ Audit complete!"));
    ASSERT_TRUE(pipeline->auditReport());
    EXPECT_EQ(pipeline->auditReport()->coveragePercent, 12.5);
    EXPECT_THAT(pipeline->auditReport()->themeGaps, ElementsAre("boats"));
}

TEST_F(Audit, stepAndProgressPassThroughTheirFixedPoints) {
    givenMinedFootage();
    givenCut();
    services->then(200, messagesAnswer(report));
    audit();
    EXPECT_THAT(takeChanges(),
                ElementsAre("step Idle", "progress 0", "step Connecting to Resolve...", "progress 0.05",
                            "progress 0.15", "progress 0.25", "step Analyzing story structure...", "progress 0.4",
                            "progress 0.5", "progress 0.6", "progress 1", "step Complete"));
}

TEST_F(Audit, beginsWithAResetAndForgetsTheReportBefore) {
    givenMinedFootage();
    givenCut();
    services->then(200, messagesAnswer(report));
    audit();
    ASSERT_TRUE(pipeline->auditReport());
    EXPECT_FALSE(pipeline->results());
    int changes = 0;
    QObject::connect(pipeline.get(), &LocalPipeline::auditReportChanged, [&changes] { ++changes; });
    audit("Missing");
    EXPECT_EQ(changes, 1);
    thenFailedWith("Could not read timeline clips from Resolve");
    EXPECT_EQ(log().front(), "[dim] $ zuvo audit --timeline Missing");
}

TEST_F(Audit, thePromptHoldsTheMarkedTranscriptAndTheFigures) {
    givenMinedFootage();
    givenCut();
    services->then(200, messagesAnswer(report));
    audit();
    ASSERT_THAT(services->requests, SizeIs(1));
    const auto body = parseForeignJson(services->requests[0].body);
    ASSERT_TRUE(body);
    EXPECT_EQ((*body)["max_tokens"], 8000);
    ASSERT_THAT((*body)["messages"], SizeIs(1));
    const std::string prompt = (*body)["messages"][0]["content"];
    EXPECT_THAT(prompt, HasSubstr("- An editor cut together 2 clips from this interview\n"
                                  "- They used 4% of the total footage (12.0s out of 320s)\n"));
    EXPECT_THAT(prompt, HasSubstr("FULL TRANSCRIPT:\n[USED] [0.0s → 10.0s] one two three\n"
                                  "[UNUSED] [100.0s → 110.0s] four five\n[UNUSED] [310.0s → 320.0s] six\n\n"));
    EXPECT_THAT(prompt, HasSubstr("\"coveragePercent\": 3.75,"));
}

TEST_F(Audit, theRequestIsTheOneOfTheStoryWithoutAWordOfTheKey) {
    givenMinedFootage();
    givenCut();
    services->then(200, messagesAnswer(report));
    audit();
    const auto& request = services->requests.at(0);
    using Header = std::pair<std::string, std::string>;
    EXPECT_EQ(request.url, "https://api.anthropic.com/v1/messages");
    EXPECT_THAT(request.headers,
                ElementsAre(Header("x-api-key", "anthropic-key-0123456789"), Header("anthropic-version", "2023-06-01"),
                            Header("content-type", "application/json")));
    EXPECT_EQ(request.timeout, std::chrono::seconds(180));
    thenLogLacks("key");
}

TEST_F(Audit, anEmptyTimelineFailsForWantOfMedia) {
    givenMinedFootage();
    givenClips("[]");
    audit();
    thenLogHas("[green] ✓ Found 0 clips using 0 source files");
    thenFailedWith("Could not access source media");
}

TEST_F(Audit, withoutATranscriptFromThisStartItSaysWhatToDo) {
    media = givenFootage();
    givenCut();
    audit();
    thenFailedWith("No cached transcripts found. Run Full Mine or Story Mine first to generate transcripts.");
    EXPECT_EQ(pipeline->progress(), 0.25);
    EXPECT_THAT(services->requests, IsEmpty());
}

TEST_F(Audit, aTranscriptWithoutLinesIsNone) {
    media = givenFootage();
    givenCut();
    pipeline->saveTranscriptCache({}, media);
    audit();
    thenFailedWith("No cached transcripts found. Run Full Mine or Story Mine first to generate transcripts.");
}

TEST_F(Audit, noReportIsAFailure) {
    givenMinedFootage();
    givenCut();
    services->then(529, "overloaded");
    audit();
    thenLogHas("[accent]   Claude HTTP error: overloaded");
    thenFailedWith("Claude analysis failed");
    EXPECT_EQ(pipeline->progress(), 0.6);
}

TEST_F(Audit, aReplyWithoutSummaryEndsAfterTwoLinesOfDecoding) {
    givenMinedFootage();
    givenCut();
    services->then(200, messagesAnswer(R"({"coveragePercent": 1, "usedSegments": [], "buriedGold": [],
        "redundancies": [], "alternates": [], "themeGaps": [], "confidenceScore": 1})"));
    audit();
    thenFailedWith("Claude analysis failed");
    const auto lines = log();
    EXPECT_THAT(lines.at(lines.size() - 3), HasSubstr("[accent]   JSON decode error: "));
    EXPECT_THAT(lines.at(lines.size() - 3), HasSubstr("summary"));
    EXPECT_THAT(lines.at(lines.size() - 2), HasSubstr("[dim]   Response preview: {\"coveragePercent\": 1, "));
}

TEST_F(Audit, aCancelAtEachWaitEndsItWithoutAWord) {
    const std::vector<std::string> lastLines = {"[muted] Reading existing timeline from Resolve...",
                                                "[green] ✓ Found 2 total source files in media pool",
                                                "[accent] ⛏ Claude analyzing for buried gold..."};
    givenMinedFootage();
    givenCut();
    for (std::size_t wait = 0; wait < lastLines.size(); ++wait) {
        services->then(200, messagesAnswer(report));
        const auto before = calls->count();
        calls->inside = [&](std::size_t call) {
            if (call == before + wait + 1)
                pipeline->cancel();
        };
        audit();
        calls->inside = nullptr;
        EXPECT_EQ(log().back(), lastLines[wait]);
        EXPECT_EQ(pipeline->errorMessage(), std::nullopt);
        EXPECT_FALSE(pipeline->auditReport());
        services->forgetPlan();
        pipeline->reset();
    }
}

TEST_F(Audit, aStageThatGivesNothingFailsEvenACancelledAudit) {
    givenMinedFootage();
    calls->inside = [this](std::size_t) { pipeline->cancel(); };
    audit();
    thenFailedWith("Could not read timeline clips from Resolve");
}

TEST_F(Audit, clipsComeFromTheFirstLineOfSuccess) {
    const auto read = clips(printed("ERROR:small\nLOG:x\n SUCCESS:[{\"sourceFile\": \"/a\", \"startFrame\": 1, "
                                    "\"endFrame\": 2, \"duration\": 0.1}, {}]\nSUCCESS:[]\nERROR:late\n"));
    ASSERT_TRUE(read);
    ASSERT_THAT(*read, SizeIs(1));
    EXPECT_EQ(read->front().sourceFile, "/a");
    EXPECT_THAT(log(), ElementsAre("[accent]   ✗ small"));
    EXPECT_EQ(tools->requests.at(0).arguments.at(1), timelineClipsScript("/resolve/Modules", cut));
}

TEST_F(Audit, clipsThatAreNoListAreNone) {
    EXPECT_FALSE(clips(printed("SUCCESS:[{]\n")));
    EXPECT_THAT(log(), ElementsAre("[accent]   Failed to parse clip JSON"));
}

TEST_F(Audit, aScriptThatFailedOrSaidNothingGivesNoClips) {
    EXPECT_FALSE(clips(notLaunched()));
    EXPECT_THAT(log(), ElementsAre("[accent]   Python script failed"));
    pipeline->reset();
    EXPECT_FALSE(clips(printed("", false)));
    EXPECT_FALSE(clips(printed("ERROR:Timeline not found\n")));
    EXPECT_THAT(log(), ElementsAre("[accent]   ✗ Timeline not found"));
}

TEST_F(Audit, aNameThatWouldBreakOutOfItsQuotesIsNeverRun) {
    audit("x\\\"; import os");
    EXPECT_THAT(tools->requests, IsEmpty());
    thenFailedWith("Could not read timeline clips from Resolve");
}

TEST_F(Audit, aReplyInAFenceIsCleaned) {
    const auto decoded = analyzed("```json\n" + std::string(report) + "\n```");
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->confidenceScore, 82.7);
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(Audit, thereIsNoManualRecovery) {
    for (const char* reply : {R"({"coveragePercent": "12", "usedSegments": []})", "no JSON at all", "}{", "[]"}) {
        EXPECT_FALSE(analyzed(reply)) << reply;
        thenLogLacks("Recovered");
    }
}

TEST_F(Audit, anAnswerInAnotherShapeIsNamed) {
    services->then(200, R"({"content": []})");
    EXPECT_FALSE(ended(pipeline->analyzeAudit("p", {})));
    EXPECT_THAT(log(), ElementsAre(R"([accent]   Claude response parse error: {"content": []})"));
}

TEST_F(Audit, aDroppedConnectionIsNamed) {
    services->thenFails("Connection closed");
    EXPECT_FALSE(ended(pipeline->analyzeAudit("p", {})));
    EXPECT_THAT(log(), ElementsAre("[accent]   Claude request failed: Connection closed"));
}
