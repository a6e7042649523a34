#include "account/CloudProcessor.h"

#include "AccountFixture.h"
#include "base/Files.h"

#include <limits>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

const std::string boundary = "0E1F2A3B-0000-4000-8000-00000000ABCD";

const std::string story =
    R"({"segments":[{"index":0,"startTime":1.0,"endTime":9.0,"sourceClip":"a.wav","transcript":"hola",)"
    R"("translation":"hello"}],"structure":{"acts":[{"name":"Act 1","segments":[0]}],"totalDuration":8.0},)"
    R"("subtitles":[],"estimatedDuration":8.5})";

std::string status(const std::string& name, const std::string& progress, const std::string& result = {}) {
    return httpAnswer(200, R"({"status":")" + name + R"(","progress":)" + progress +
                               (result.empty() ? "" : R"(,"result":)" + result) + "}");
}

/// Counts the pauses that are asked for, and takes none.
class CloudProcessorTest : public AccountTest {
protected:
    CloudProcessorTest() { make(client()); }

    void make(const APIClient& client) {
        CloudProcessorParts parts;
        parts.newUuid = [] { return boundary; };
        parts.pause = [this](std::chrono::milliseconds duration) { return pauseFor(duration); };
        processor = CloudProcessor::create(client, std::move(parts));
        auto* sender = processor.get();
        QObject::connect(sender, &CloudProcessor::currentStepChanged, sender,
                         [this, sender] { shown.emplace_back(rawValue(sender->currentStep())); });
        QObject::connect(sender, &CloudProcessor::progressChanged, sender,
                         [this, sender] { progresses.push_back(sender->progress()); });
    }

    QCoro::Task<void> pauseFor(std::chrono::milliseconds duration) {
        pauses.push_back(duration);
        co_return;
    }

    void givenUploadAndStart() {
        server.then(answer(httpAnswer(200, R"({"jobId":"job-1"})")));
        server.then(answer(httpAnswer(200, "whatever")));
    }

    QCoro::Task<MiningResults> process() { return processor->processAudio(audio, "zuvo_ada", MiningMode::fullMine); }

    MiningResults results() { return runToEnd(process()); }

    /// The failure in words; what was printed meanwhile is in `printed`.
    std::string failure() {
        testing::internal::CaptureStdout();
        auto words = failureOf<CloudProcessorError>(process());
        printed = testing::internal::GetCapturedStdout();
        return words;
    }

    std::string uploadFailure(Behaviour behaviour) {
        server.then(std::move(behaviour));
        return failure();
    }

    const RawRequest& sent(std::size_t i) const { return server.requests().at(i); }

    const std::string audio = home.write("media/talk.wav", std::string("RIFF\0\xFF\r\n--", 10));
    std::shared_ptr<CloudProcessor> processor;
    std::vector<std::chrono::milliseconds> pauses;
    std::vector<std::string> shown;
    std::vector<double> progresses;
    std::string printed;
};

} // namespace

TEST(ProcessingStep, eachHasItsTextAndItsProgressInThisOrder) {
    const std::vector<std::pair<std::string, double>> expected = {{"Idle", 0.0},
                                                                  {"Extracting audio...", 0.1},
                                                                  {"Uploading to cloud...", 0.2},
                                                                  {"Transcribing...", 0.4},
                                                                  {"Analyzing story structure...", 0.6},
                                                                  {"Translating...", 0.8},
                                                                  {"Complete", 1.0},
                                                                  {"Error", 0.0}};
    std::vector<std::pair<std::string, double>> found;
    for (const auto step : allProcessingSteps)
        found.emplace_back(rawValue(step), progressOf(step));
    EXPECT_EQ(found, expected);
}

TEST_F(CloudProcessorTest, atFirstNothingIsUnderWay) {
    EXPECT_EQ(processor->currentStep(), ProcessingStep::idle);
    EXPECT_EQ(processor->progress(), 0.0);
    EXPECT_EQ(processor->errorMessage(), std::nullopt);
    EXPECT_FALSE(processor->results().has_value());
    EXPECT_EQ(CloudProcessor::maxPollingAttempts, 120);
}

TEST_F(CloudProcessorTest, aJobGoesThroughAllStepsToItsStory) {
    givenUploadAndStart();
    server.then(answer(status("transcribing", "0.45")));
    server.then(answer(status("analyzing", "0.6")));
    server.then(answer(status("translating", "0.8")));
    server.then(answer(status("complete", "0.95", story)));
    const auto got = results();
    EXPECT_EQ(compactText(encodeRecord(got)), story);
    ASSERT_TRUE(processor->results().has_value());
    EXPECT_EQ(compactText(encodeRecord(*processor->results())), story);
    EXPECT_EQ(processor->errorMessage(), std::nullopt);
    EXPECT_THAT(shown, ElementsAre("Uploading to cloud...", "Transcribing...", "Analyzing story structure...",
                                   "Translating...", "Complete"));
    EXPECT_THAT(progresses, ElementsAre(0.2, 0.4, 0.45, 0.6, 0.8, 0.95, 1.0));
    EXPECT_THAT(pauses, ElementsAre(5s, 5s, 5s)) << "between the questions, and not behind the last";
}

TEST_F(CloudProcessorTest, theRequestsGoToThePathsWithThePrefixTwice) {
    givenUploadAndStart();
    server.then(answer(status("complete", "1", story)));
    (void)results();
    ASSERT_EQ(requestCount(), 3U);
    EXPECT_EQ(sent(0).requestLine(), "POST /api/v1/api/v1/upload HTTP/1.1");
    EXPECT_EQ(sent(1).requestLine(), "POST /api/v1/api/v1/process HTTP/1.1");
    EXPECT_EQ(sent(2).requestLine(), "GET /api/v1/api/v1/jobs/job-1 HTTP/1.1");
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_THAT(sent(i).header("Authorization"), ElementsAre("Bearer zuvo_ada"));
    EXPECT_EQ(sent(1).body, R"({"jobId":"job-1","mode":"Full Mine"})");
    EXPECT_EQ(sent(2).body, "");
    for (std::size_t i = 1; i < 3; ++i) {
        EXPECT_THAT(sent(i).header("User-Agent"), ElementsAre("Zuvo-Manager/1.0.0"));
        EXPECT_THAT(sent(i).header("Content-Type"), ElementsAre("application/json"));
    }
}

TEST_F(CloudProcessorTest, theUploadIsOnePartWithTheFileByteForByte) {
    givenUploadAndStart();
    server.then(answer(status("complete", "1", story)));
    (void)results();
    EXPECT_THAT(sent(0).header("Content-Type"), ElementsAre("multipart/form-data; boundary=" + boundary));
    EXPECT_THAT(sent(0).header("User-Agent"), Not(testing::Contains(HasSubstr("Zuvo"))));
    EXPECT_EQ(sent(0).body, "--" + boundary +
                                "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"talk.wav\"\r\n"
                                "Content-Type: audio/wav\r\n\r\n" +
                                std::string("RIFF\0\xFF\r\n--", 10) + "\r\n--" + boundary + "--\r\n");
}

TEST_F(CloudProcessorTest, theRawValueOfTheModeIsSentNotItsLabel) {
    const std::vector<std::pair<MiningMode, std::string>> modes = {
        {MiningMode::storyMine, "Story Mine"}, {MiningMode::structure, "Structure"}, {MiningMode::audit, "Audit Mine"}};
    for (const auto& [mode, rawValue] : modes) {
        givenUploadAndStart();
        server.then(answer(status("complete", "1", story)));
        (void)runToEnd(processor->processAudio(audio, "t", mode));
        EXPECT_EQ(sent(requestCount() - 2).body, R"({"jobId":"job-1","mode":")" + rawValue + R"("})");
    }
}

TEST_F(CloudProcessorTest, aFileNameDoesNotBreakOutOfItsHeader) {
    const auto hostile = home.write("a\"; name=\"x\r\nX-Evil: 1\r\n\r\n.wav", "RIFF");
    givenUploadAndStart();
    server.then(answer(status("complete", "1", story)));
    (void)runToEnd(processor->processAudio(hostile, "t", MiningMode::fullMine));
    EXPECT_THAT(sent(0).body,
                StartsWith("--" + boundary +
                           "\r\nContent-Disposition: form-data; name=\"file\"; "
                           "filename=\"a%22; name=%22x%0D%0AX-Evil: 1%0D%0A%0D%0A.wav\"\r\nContent-Type: audio/wav"));
}

TEST_F(CloudProcessorTest, aFileNameBeyondAsciiGoesOutAsItIs) {
    const auto named = home.write("entrevista día 東.mp3", "x");
    givenUploadAndStart();
    server.then(answer(status("complete", "1", story)));
    (void)runToEnd(processor->processAudio(named, "t", MiningMode::fullMine));
    EXPECT_THAT(sent(0).body, HasSubstr("filename=\"entrevista día 東.mp3\"\r\nContent-Type: audio/wav\r\n"));
}

TEST_F(CloudProcessorTest, eachUploadTakesABoundaryOfItsOwn) {
    int count = 0;
    CloudProcessorParts parts;
    parts.newUuid = [&count] { return "B" + std::to_string(++count); };
    parts.pause = [this](std::chrono::milliseconds duration) { return pauseFor(duration); };
    processor = CloudProcessor::create(client(), std::move(parts));
    server.thenAlways(answer(httpAnswer(500, "")));
    (void)failure();
    (void)failure();
    EXPECT_THAT(sent(0).body, StartsWith("--B1\r\n"));
    EXPECT_THAT(sent(1).body, StartsWith("--B2\r\n"));
}

// Uploads that fail

TEST_F(CloudProcessorTest, aFileThatCannotBeReadFailsTheUploadInThePlatformsWords) {
    EXPECT_EQ(failureOf<CloudProcessorError>(processor->processAudio(home / "missing.wav", "t", MiningMode::fullMine)),
              "Upload failed: No such file or directory");
    EXPECT_EQ(failureOf<CloudProcessorError>(processor->processAudio(home.path(), "t", MiningMode::fullMine)),
              "Upload failed: Is a directory");
    EXPECT_EQ(failureOf<CloudProcessorError>(processor->processAudio(audio + "/below", "t", MiningMode::fullMine)),
              "Upload failed: Not a directory");
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(CloudProcessorTest, aStatusOutside200To299FailsTheUploadWithItsBody) {
    EXPECT_EQ(uploadFailure(answer(httpAnswer(413, "too large"))), "Upload failed: HTTP 413: too large");
    EXPECT_EQ(uploadFailure(answer(httpAnswer(300, "x"))), "Upload failed: HTTP 300: x");
    EXPECT_EQ(uploadFailure(answer(httpAnswer(401, ""))), "Upload failed: HTTP 401: ");
    EXPECT_EQ(uploadFailure(answer(httpAnswer(500, "\xFF"))), "Upload failed: HTTP 500: Unknown error");
}

TEST_F(CloudProcessorTest, anAnswerToTheUploadOfAnotherShapeFailsIt) {
    EXPECT_EQ(uploadFailure(answer(httpAnswer(200, "{}"))), "Upload failed: jobId is missing");
    EXPECT_EQ(uploadFailure(answer(httpAnswer(200, R"({"jobId":7})"))), "Upload failed: jobId is not a text");
    EXPECT_EQ(uploadFailure(answer(httpAnswer(200, ""))), "Upload failed: the text is not valid JSON");
    EXPECT_EQ(uploadFailure(answer(httpAnswer(200, "{\"jobId\":\"\xFF\"}"))),
              "Upload failed: the text is not valid JSON");
}

TEST_F(CloudProcessorTest, anUploadIsSentOnceAndAClosedConnectionFailsIt) {
    server.thenAlways(closeUnanswered());
    EXPECT_EQ(failure(), "Upload failed: Connection closed");
    runEventLoop(aWhile);
    EXPECT_EQ(requestCount(), 1U);
}

TEST_F(CloudProcessorTest, anUploadFollowsNoRedirect) {
    RawServer elsewhere;
    EXPECT_EQ(uploadFailure(answer(httpAnswer(307, "moved", {"Location: " + elsewhere.url("/upload")}))),
              "Upload failed: HTTP 307: moved");
    EXPECT_EQ(elsewhere.connectionCount(), 0);
}

TEST_F(CloudProcessorTest, aServiceThatIsNotThereSlowOrRefusedFailsTheUpload) {
    make(clientWithoutService());
    EXPECT_THAT(failure(), StartsWith("Upload failed: "));
    EXPECT_THAT(failure(), Not(testing::Eq("Upload failed: ")));
    make(client(100ms));
    EXPECT_EQ(uploadFailure(stall()), "Upload failed: The request timed out");
    make(refusedClient());
    EXPECT_THAT(failure(), StartsWith("Upload failed: ZUVO_SERVICE_URL must be "));
}

TEST_F(CloudProcessorTest, aTokenWithALineEndIsNotSent) {
    EXPECT_EQ(failureOf<CloudProcessorError>(processor->processAudio(audio, "abc\r\nX-Evil: 1", MiningMode::fullMine)),
              "Upload failed: The value of the header Authorization holds a line end or another control character");
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(CloudProcessorTest, aFailureTouchesNeitherStepNorMessage) {
    EXPECT_EQ(uploadFailure(answer(httpAnswer(500, ""))), "Upload failed: HTTP 500: ");
    EXPECT_EQ(processor->currentStep(), ProcessingStep::uploading);
    EXPECT_EQ(processor->progress(), 0.2);
    EXPECT_EQ(processor->errorMessage(), std::nullopt);
    EXPECT_FALSE(processor->results().has_value());
}

TEST_F(CloudProcessorTest, aSecondJobBeginsAnew) {
    givenUploadAndStart();
    server.then(answer(status("complete", "1", story)));
    (void)results();
    EXPECT_EQ(uploadFailure(answer(httpAnswer(500, ""))), "Upload failed: HTTP 500: ");
    EXPECT_EQ(processor->currentStep(), ProcessingStep::uploading);
    EXPECT_EQ(processor->progress(), 0.2);
    EXPECT_FALSE(processor->results().has_value()) << "the former story is gone";
}

// Starts that fail

TEST_F(CloudProcessorTest, aStartThatFailsIsAFailedProcessing) {
    server.then(answer(httpAnswer(200, R"({"jobId":"job-1"})")));
    server.then(answer(httpAnswer(402, "no credits")));
    EXPECT_EQ(failure(), "Processing failed: Server error 402: no credits");
    EXPECT_EQ(processor->currentStep(), ProcessingStep::transcribing);
    EXPECT_EQ(processor->progress(), 0.4);
    EXPECT_THAT(pauses, IsEmpty());

    server.then(answer(httpAnswer(200, R"({"jobId":"job-1"})")));
    server.then(closeUnanswered());
    EXPECT_EQ(failure(), "Processing failed: Network error: Connection closed");
    EXPECT_EQ(requestCount(), 4U);
}

TEST_F(CloudProcessorTest, theAnswerToTheStartIsNotLookedAt) {
    server.then(answer(httpAnswer(200, R"({"jobId":"job-1"})")));
    server.then(answer(httpAnswer(299, "\xFF not JSON")));
    server.then(answer(status("complete", "1", story)));
    EXPECT_EQ(results().segments.size(), 1U);
}

TEST_F(CloudProcessorTest, anAccountsJobIdIsEncodedIntoTheStartWhateverItHolds) {
    server.then(answer(httpAnswer(200, R"({"jobId":"a\"b\\c\r\n\u0000é"})")));
    server.then(answer(httpAnswer(500, "")));
    (void)failure();
    EXPECT_EQ(sent(1).body, R"({"jobId":"a\"b\\c\r\n\u0000é","mode":"Full Mine"})");
}

// Polling

TEST_F(CloudProcessorTest, theProgressNeverFalls) {
    givenUploadAndStart();
    for (const std::string progress : {"0.5", "0.3", "-1", "-1e308", "0.5", "0.6"})
        server.then(answer(status("analyzing", progress)));
    server.then(answer(status("error", "0")));
    (void)failure();
    EXPECT_THAT(progresses, ElementsAre(0.2, 0.4, 0.5, 0.6));
    EXPECT_EQ(processor->progress(), 0.6);
}

TEST_F(CloudProcessorTest, aStatusWithoutAMeaningChangesNothingAndPollingGoesOn) {
    givenUploadAndStart();
    for (const std::string name : {"queued", "", "Complete", "COMPLETE", "uploading", "extracting", "\\u0000", "é"})
        server.then(answer(status(name, "0.4", story)));
    server.then(answer(status("complete", "0.4", story)));
    (void)results();
    EXPECT_EQ(requestCount(), 2U + 9U);
    EXPECT_THAT(shown, ElementsAre("Uploading to cloud...", "Transcribing...", "Complete"));
}

TEST_F(CloudProcessorTest, aStepMayGoBack) {
    givenUploadAndStart();
    server.then(answer(status("translating", "0.8")));
    server.then(answer(status("transcribing", "0.4")));
    server.then(answer(status("error", "0")));
    (void)failure();
    EXPECT_EQ(processor->currentStep(), ProcessingStep::transcribing);
    EXPECT_EQ(processor->progress(), 0.8);
}

TEST_F(CloudProcessorTest, theStatusErrorEndsThePollingAtOnce) {
    givenUploadAndStart();
    server.then(answer(status("error", "0.7", story)));
    EXPECT_EQ(failure(), "Processing failed: Server reported error");
    EXPECT_EQ(requestCount(), 3U);
    EXPECT_THAT(pauses, IsEmpty());
    EXPECT_EQ(processor->currentStep(), ProcessingStep::transcribing) << "the step error is never set";
    EXPECT_EQ(processor->errorMessage(), std::nullopt);
    EXPECT_EQ(processor->progress(), 0.7);
    EXPECT_EQ(printed, "");
}

TEST_F(CloudProcessorTest, aCompleteJobWithoutAResultHasInvalidResults) {
    for (const std::string result : {"", "null"}) {
        givenUploadAndStart();
        server.then(answer(status("complete", "1", result)));
        EXPECT_EQ(failure(), "Invalid results received from server");
        EXPECT_FALSE(processor->results().has_value());
        EXPECT_EQ(printed, "");
    }
}

TEST_F(CloudProcessorTest, aResultThatLacksARequiredKeyIsAFailedAttemptAndPollingGoesOnToTheTimeOut) {
    givenUploadAndStart();
    server.thenAlways(answer(status("complete", "0.5", R"({"segments":[],"subtitles":[],"estimatedDuration":1})")));
    EXPECT_EQ(failure(), "Processing timeout - please try again");
    EXPECT_EQ(requestCount(), 2U + 120U);
    EXPECT_EQ(pauses.size(), 120U);
    EXPECT_THAT(pauses, testing::Each(5000ms));
    EXPECT_THAT(printed, StartsWith("Polling attempt 0 failed: result.structure is missing\n"
                                    "Polling attempt 1 failed: result.structure is missing\n"));
    EXPECT_THAT(printed, testing::EndsWith("Polling attempt 119 failed: result.structure is missing\n"));
    EXPECT_EQ(processor->progress(), 0.4) << "nothing is taken from such an answer";
}

TEST_F(CloudProcessorTest, aJobThatNeverEndsTimesOutAfter120Attempts) {
    givenUploadAndStart();
    server.thenAlways(answer(status("analyzing", "0.6")));
    EXPECT_EQ(failure(), "Processing timeout - please try again");
    EXPECT_EQ(requestCount(), 2U + 120U);
    EXPECT_EQ(pauses.size(), 120U);
    EXPECT_EQ(printed, "");
    EXPECT_EQ(processor->currentStep(), ProcessingStep::analyzing);
}

TEST_F(CloudProcessorTest, theLastAttemptCounts) {
    givenUploadAndStart();
    for (int attempt = 0; attempt < 119; ++attempt)
        server.then(answer(status("analyzing", "0.6")));
    server.then(answer(status("complete", "1", story)));
    EXPECT_EQ(results().segments.size(), 1U);
    EXPECT_EQ(pauses.size(), 119U);
}

TEST_F(CloudProcessorTest, anAttemptThatFailsIsPrintedAndFollowedByTheNext) {
    givenUploadAndStart();
    server.then(answer(httpAnswer(500, "oops")));
    server.then(closeUnanswered());
    server.then(answer(httpAnswer(200, "")));
    server.then(answer(httpAnswer(401, "no")));
    server.then(answer(httpAnswer(404, "\x1b[31mno\a\xC2\x9B")));
    server.then(answer(status("error", "0")));
    EXPECT_EQ(failure(), "Processing failed: Server reported error");
    EXPECT_EQ(printed, "Polling attempt 0 failed: Server error 500: oops\n"
                       "Polling attempt 1 failed: Network error: Connection closed\n"
                       "Polling attempt 2 failed: the text is not valid JSON\n"
                       "Polling attempt 3 failed: Server error 401: no\n"
                       "Polling attempt 4 failed: Server error 404: \uFFFD[31mno\uFFFD\uFFFD\n");
    EXPECT_EQ(pauses.size(), 5U);
    EXPECT_EQ(requestCount(), 8U) << "no attempt is sent twice";
}

TEST_F(CloudProcessorTest, aTokenThatTheServiceRepeatsIsNotPrinted) {
    givenUploadAndStart();
    server.then(answer(httpAnswer(403, "zuvo_ada may not, zuvo_ada!")));
    server.then(answer(status("error", "0")));
    (void)failure();
    EXPECT_EQ(printed, "Polling attempt 0 failed: Server error 403: *** may not, ***!\n");
}

TEST_F(CloudProcessorTest, hostileStatusesAreFailedAttempts) {
    const std::vector<std::string> bodies = {
        R"({"status":"complete","progress":1e400})",
        R"({"status":"complete","progress":NaN})",
        R"({"status":"complete","progress":Infinity})",
        R"({"status":"complete","progress":"1"})",
        R"({"status":"complete","progress":true})",
        R"({"status":"complete"})",
        R"({"progress":1})",
        R"({"status":1,"progress":1})",
        R"({"status":"complete","progress":1,"result":[]})",
        R"({"status":"complete","progress":1,"result":"story"})",
        R"([{"status":"complete","progress":1}])",
        "{\"status\":\"\xFF\",\"progress\":1}",
        "null",
        std::string(300'000, '['),
    };
    givenUploadAndStart();
    for (const auto& body : bodies)
        server.then(answer(httpAnswer(200, body)));
    server.then(answer(status("error", "0")));
    EXPECT_EQ(failure(), "Processing failed: Server reported error");
    EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), static_cast<std::ptrdiff_t>(bodies.size()));
    EXPECT_EQ(processor->progress(), 0.4);
}

TEST_F(CloudProcessorTest, aProgressBeyondAllMeasureIsTakenAsItIsUntilTheJobIsComplete) {
    givenUploadAndStart();
    server.then(answer(status("analyzing", "1.5")));
    server.then(answer(status("analyzing", "1e308")));
    server.then(answer(status("complete", "0", story)));
    (void)results();
    EXPECT_THAT(progresses, ElementsAre(0.2, 0.4, 1.5, 1e308, 1.0));
}

TEST_F(CloudProcessorTest, aJobIdThatMakesNoAddressIsAFailedAttempt) {
    for (const std::string jobId : {"a b", R"(a\r\nX-Evil: 1)", R"(\u0000)"}) {
        const auto before = requestCount();
        server.then(answer(httpAnswer(200, R"({"jobId":")" + jobId + "\"}")));
        server.then(answer(httpAnswer(200, "")));
        EXPECT_EQ(failure(), "Processing timeout - please try again");
        EXPECT_THAT(printed, StartsWith("Polling attempt 0 failed: Invalid URL\n"));
        EXPECT_EQ(requestCount(), before + 2U);
    }
}

TEST_F(CloudProcessorTest, aJobIdLeadsToNoOtherHost) {
    RawServer elsewhere;
    const auto place = "127.0.0.1:" + std::to_string(elsewhere.port());
    for (const auto& jobId : {"@" + place + "/x", "//" + place + "/x", "../../../../" + place, "?x=http://" + place}) {
        server.then(answer(httpAnswer(200, R"({"jobId":")" + jobId + "\"}")));
        server.then(answer(httpAnswer(200, "")));
        server.then(answer(status("error", "0")));
        EXPECT_EQ(failure(), "Processing failed: Server reported error") << jobId;
    }
    EXPECT_EQ(elsewhere.connectionCount(), 0);
}

// Its life

TEST_F(CloudProcessorTest, aJobGoesOnWhenNobodyHoldsTheProcessorAnyMore) {
    givenUploadAndStart();
    server.then(held.hold());
    RunningTask<MiningResults> job(process());
    ASSERT_TRUE(waitForRequests(3));
    const std::weak_ptr<CloudProcessor> watched = processor;
    processor.reset();
    EXPECT_FALSE(watched.expired());
    held.give(status("complete", "1", story));
    EXPECT_EQ(job.result().segments.size(), 1U);
    EXPECT_TRUE(waitUntil([&watched] { return watched.expired(); }));
}

TEST_F(CloudProcessorTest, thePauseOfTheProgramLetsTheEventLoopTurn) {
    bool hasTurned = false;
    QTimer::singleShot(0, [&hasTurned] { hasTurned = true; });
    RunningTask<void> pause(eventLoopPause()(20ms));
    EXPECT_FALSE(pause.hasEnded());
    pause.result();
    EXPECT_TRUE(hasTurned);
}
