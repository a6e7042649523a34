#pragma once

#include "account/APIClient.h"
#include "account/CloudProcessorError.h"
#include "model/CloudJobs.h"
#include "model/Modes.h"

#include <QCoroTask>
#include <QObject>
#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zuvo {

/// How far a mine by the service is, as a page shows it.
enum class ProcessingStep { idle, extracting, uploading, transcribing, analyzing, translating, complete, error };

/// In the order in which a mine goes through them, `error` last.
inline constexpr std::array allProcessingSteps = {
    ProcessingStep::idle,      ProcessingStep::extracting,  ProcessingStep::uploading, ProcessingStep::transcribing,
    ProcessingStep::analyzing, ProcessingStep::translating, ProcessingStep::complete,  ProcessingStep::error};

/// The text to show for a step.
[[nodiscard]] std::string_view rawValue(ProcessingStep step);

/// The share of the whole, 0 to 1, at which a step begins.
[[nodiscard]] double progressOf(ProcessingStep step);

/// Waits that long without blocking the thread.
using CooperativePause = std::function<QCoro::Task<void>(std::chrono::milliseconds)>;

/// A pause in which the event loop turns.
[[nodiscard]] CooperativePause eventLoopPause();

/// What a `CloudProcessor` takes from the machine.
struct CloudProcessorParts {
    std::function<std::string()> newUuid; ///< a new random UUID at each call
    CooperativePause pause = eventLoopPause();
};

/// The other way to mine: the service is given an audio file, transcribes and analyses it, and is asked every 5 s
/// whether it has done. No page starts it yet.
///
/// Lives on the thread that made it. There is no cancelling. Held by shared_ptr alone: a started process keeps its
/// processor alive until it ends.
class CloudProcessor final : public QObject, public std::enable_shared_from_this<CloudProcessor> {
    Q_OBJECT
public:
    /// Questions about one job, 5 s apart, before it counts as timed out.
    static constexpr int maxPollingAttempts = 120;

    [[nodiscard]] static std::shared_ptr<CloudProcessor> create(APIClient client, CloudProcessorParts parts);

    [[nodiscard]] ProcessingStep currentStep() const { return m_currentStep; }
    [[nodiscard]] double progress() const { return m_progress; } ///< never falls while a job is polled
    [[nodiscard]] const std::optional<std::string>& errorMessage() const { return m_errorMessage; }
    /// The story of the last process that ended well; times are mine time of the uploaded file.
    [[nodiscard]] const std::optional<MiningResults>& results() const { return m_results; }

    /// Uploads the file and waits for the story, for at most 120 questions. Throws a CloudProcessorError through the
    /// task; `currentStep`, `progress` and `errorMessage` then stay as they were when it came to that.
    QCoro::Task<MiningResults> processAudio(std::string filePath, std::string token, MiningMode mode);

Q_SIGNALS:
    void currentStepChanged();
    void progressChanged();
    void errorMessageChanged();
    void resultsChanged(); ///< at every setting: two stories are not compared

private:
    CloudProcessor(APIClient client, CloudProcessorParts parts);

    /// The id of the job for the uploaded file.
    QCoro::Task<std::string> uploadAudio(std::string filePath, std::string token);
    QCoro::Task<void> startProcessing(std::string jobId, std::string token, MiningMode mode);
    QCoro::Task<MiningResults> pollForResults(std::string jobId, std::string token);

    /// What a job's status says: the story if it is complete, nothing if it is under way; else a CloudProcessorError.
    std::optional<MiningResults> takeIn(wire::JobStatusResponse status);

    void setStep(ProcessingStep step);
    void setProgress(double progress);
    void setErrorMessage(std::optional<std::string> message);
    void setResults(std::optional<MiningResults> results);

    APIClient m_client;
    CloudProcessorParts m_parts;
    ProcessingStep m_currentStep = ProcessingStep::idle;
    double m_progress = 0.0;
    std::optional<std::string> m_errorMessage;
    std::optional<MiningResults> m_results;
};

} // namespace zuvo
