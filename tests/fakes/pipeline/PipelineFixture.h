#pragma once

#include "fakes/CoroutineTest.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/pipeline/FakeTools.h"
#include "pipeline/LocalPipeline.h"

#include <gmock/gmock.h>

namespace zuvo::tests {

/// A pipeline in a world of its own: a home folder, a real home folder, tools, services, a stopped clock, counted UUIDs
/// ("UUID-1", "UUID-2", ...). Both keys are set as variables unless a test says otherwise.
///
/// The footage of most tests, whose figures are worked out by hand in the tests:
///
///     mine time   |-------------- A.wav, 200 s, -20 dB --------------|--------- B.wav, 150 s, -40 dB ---------|
///     chunks      |--------------------------- 300 s ---------------------------|--------- 50 s -------------|
///     lines       0-10, 100-110                                          (the second chunk's:) 310-320
///     moments     0-10, 100-110
class PipelineFixture : public testing::Test {
protected:
    PipelineFixture();

    // Given.

    /// A file in the footage folder, with what ffprobe says of it and samples of one amplitude. Gives its path.
    std::string givenFile(const std::string& name, const std::string& seconds, std::int16_t amplitude = loudAmplitude);

    /// A.wav and B.wav and the length of their common sound, and of the chunks. Gives the two paths.
    std::vector<std::string> givenFootage();

    /// Answers for a whole mine of the footage: two chunks, the story, the words of two moments.
    void givenServicesAnswer();
    void givenTranscription(const std::string& segments, const std::string& language = "en");
    void givenStory(const std::string& story);
    void givenWords(const std::string& words);

    /// A finished mine of the footage; what the pages saw of it is taken down. Gives the two paths.
    std::vector<std::string> givenAFinishedMine();

    /// A finished extraction in the cache folder.
    void givenExtractedAudio();

    /// The pipeline as after a new start of the program.
    void givenNewLaunch(std::uint64_t hashSeed);

    // When.

    void mine(std::vector<std::string> paths, MineChoices choices = {});

    template <class Result>
    static Result ended(QCoro::Task<Result> task) {
        return runToEnd(std::move(task));
    }

    // Then.

    /// All lines as "[color] text".
    [[nodiscard]] std::vector<std::string> log() const;
    void thenLogHas(const std::string& line) const;
    void thenLogLacks(const std::string& piece) const;
    [[nodiscard]] bool hasLine(const std::string& line) const;

    /// Every change of step and progress since the last call, as "step {text}" and "progress {number}", the number with
    /// six digits.
    [[nodiscard]] std::vector<std::string> takeChanges();

    /// Every call of a tool: its name and arguments with "|" between them, the world's folders and UUIDs as {cache},
    /// {footage}, {tmp} and {uuid}.
    [[nodiscard]] std::vector<std::string> commands() const;

    /// What lies in the folder for temporary files.
    [[nodiscard]] std::vector<std::string> temporaryFiles() const;

    [[nodiscard]] std::string cachePath(const std::string& name) const;
    [[nodiscard]] std::string exportsPath(const std::string& name) const;
    [[nodiscard]] static bool exists(const std::string& path);
    [[nodiscard]] static std::string read(const std::string& path);
    static void write(const std::string& path, const std::string& bytes);
    static void makeFolder(const std::string& path);

    /// About -20 and -40 dB relative to full scale.
    static constexpr std::int16_t loudAmplitude = 3277;
    static constexpr std::int16_t quietAmplitude = 328;

    TemporaryFolder disk;
    std::string home = disk.makeFolder("home");
    std::string realHome = disk.makeFolder("real-home");
    std::string temporary = disk.makeFolder("tmp");
    std::map<std::string, std::string> variables = {{"OPENAI_API_KEY", "openai-key-0123456789"},
                                                    {"ANTHROPIC_API_KEY", "anthropic-key-0123456789"}};
    mutable std::vector<std::string> variablesRead;
    QDateTime now{QDate(2026, 3, 4), QTime(5, 17, 36)};

    std::shared_ptr<CallCounter> calls = std::make_shared<CallCounter>();
    std::shared_ptr<FakeProcessRunner> tools = std::make_shared<FakeProcessRunner>(calls);
    std::shared_ptr<FakeHttpClient> services = std::make_shared<FakeHttpClient>(calls);
    Platform platform;
    std::shared_ptr<LocalPipeline> pipeline;

    /// Takes down the changes of step and progress of `pipeline`.
    void watch();

private:
    int m_uuids = 0;
    std::vector<std::string> m_changes;
};

/// The body of an upload of "sound" by the rules of the transcription service, with the first UUID as its boundary.
[[nodiscard]] std::string uploadBody(const std::string& granularity, const std::string& language,
                                     const std::string& fileName, const std::string& sound);

/// The messages service's answer around a reply text.
[[nodiscard]] std::string messagesAnswer(const std::string& replyText);

/// The story of the fixture's footage as the model gives it.
extern const char* const fixtureStory;

/// One transcript line and a transcript for tests of single stages.
[[nodiscard]] TranscriptResult transcriptOf(std::vector<TranscriptSegment> lines, std::string language = "en");

/// A story of moments with these times, numbered from 0, without acts.
[[nodiscard]] MiningResults storyOf(const std::vector<std::pair<double, double>>& times);

} // namespace zuvo::tests
