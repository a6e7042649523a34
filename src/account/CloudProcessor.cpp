#include "account/CloudProcessor.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Secrets.h"
#include "base/Text.h"
#include "model/FileLimits.h"
#include "platform/ForeignWords.h"

#include <QCoroTimer>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

namespace zuvo {

namespace {

/// Between two questions; with `maxPollingAttempts` of them a job has about ten minutes.
constexpr std::chrono::seconds pollingPause{5};

// The base address ends in the same prefix already: the service listens below both.
constexpr const char* uploadEndpoint = "/api/v1/upload";
constexpr const char* processEndpoint = "/api/v1/process";
constexpr const char* jobsEndpoint = "/api/v1/jobs/";

QCoro::Task<void> sleepInEventLoop(std::chrono::milliseconds duration) {
    co_await QCoro::sleepFor(duration);
}

std::string readingFailure(const std::string& path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        return std::make_error_code(std::errc::is_a_directory).message();
    const auto size = std::filesystem::file_size(path, ignored);
    if (!ignored && size > FileLimits::sound)
        return std::make_error_code(std::errc::file_too_large).message();
    errno = 0;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    const std::error_code error(file == nullptr && errno != 0 ? errno : EIO, std::generic_category());
    if (file != nullptr)
        std::fclose(file);
    return error.message();
}

/// A name that stands in quotes in a header: what would end it there is percent-encoded, as browsers do.
std::string quotableName(const std::string& name) {
    return replaceAll(replaceAll(replaceAll(name, "\"", "%22"), "\r", "%0D"), "\n", "%0A");
}

// The body of an upload:
//
//     --{boundary}\r\n
//     Content-Disposition: form-data; name="file"; filename="{file name}"\r\n
//     Content-Type: audio/wav\r\n
//     \r\n
//     {the file's bytes}\r\n
//     --{boundary}--\r\n
std::string uploadBody(const std::string& boundary, const std::string& fileName, const std::string& audio) {
    const auto head = "--" + boundary + "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" +
                      quotableName(fileName) + "\"\r\nContent-Type: audio/wav\r\n\r\n";
    const auto tail = "\r\n--" + boundary + "--\r\n";
    std::string body;
    body.reserve(head.size() + audio.size() + tail.size());
    body.append(head).append(audio).append(tail);
    return body;
}

/// What the service says, for a page, with the token masked should it have repeated that.
std::string wordsOf(const std::string& text, const std::string& token) {
    const std::array keys = {token};
    return pageText(withMaskedKeys(text, keys));
}

std::string jobIdOf(const HttpAnswer& answer, const std::string& token) {
    if (answer.hasFailed())
        throw CloudProcessorError::uploadFailed(answer.failure);
    if (answer.status == 0)
        throw CloudProcessorError::uploadFailed("Invalid response");
    if (!answer.isSuccess())
        throw CloudProcessorError::uploadFailed(
            "HTTP " + std::to_string(answer.status) + ": " +
            (isValidUtf8(answer.body) ? wordsOf(answer.body, token) : "Unknown error"));
    auto decoded = decodeRecordText<wire::UploadResponse>(answer.body);
    if (!decoded.value)
        throw CloudProcessorError::uploadFailed(decoded.failure);
    return std::move(decoded.value->jobId);
}

/// Foreign words for standard output.
std::string printable(const std::string& failure, const std::string& token) {
    return withoutControlCharacters(wordsOf(failure, token));
}

void printFailedAttempt(int attempt, const std::string& failure) {
    std::fputs(("Polling attempt " + std::to_string(attempt) + " failed: " + failure + "\n").c_str(), stdout);
    std::fflush(stdout);
}

} // namespace

std::string_view rawValue(ProcessingStep step) {
    switch (step) {
    case ProcessingStep::idle:
        return "Idle";
    case ProcessingStep::extracting:
        return "Extracting audio...";
    case ProcessingStep::uploading:
        return "Uploading to cloud...";
    case ProcessingStep::transcribing:
        return "Transcribing...";
    case ProcessingStep::analyzing:
        return "Analyzing story structure...";
    case ProcessingStep::translating:
        return "Translating...";
    case ProcessingStep::complete:
        return "Complete";
    case ProcessingStep::error:
        break;
    }
    return "Error";
}

double progressOf(ProcessingStep step) {
    switch (step) {
    case ProcessingStep::extracting:
        return 0.1;
    case ProcessingStep::uploading:
        return 0.2;
    case ProcessingStep::transcribing:
        return 0.4;
    case ProcessingStep::analyzing:
        return 0.6;
    case ProcessingStep::translating:
        return 0.8;
    case ProcessingStep::complete:
        return 1.0;
    case ProcessingStep::idle:
    case ProcessingStep::error:
        break;
    }
    return 0.0;
}

CooperativePause eventLoopPause() {
    return sleepInEventLoop;
}

CloudProcessor::CloudProcessor(APIClient client, CloudProcessorParts parts)
    : m_client(std::move(client)), m_parts(std::move(parts)) {}

std::shared_ptr<CloudProcessor> CloudProcessor::create(APIClient client, CloudProcessorParts parts) {
    // The last holder may be a task that the processor's own signal ended: it goes only with the next turn.
    return {new CloudProcessor(std::move(client), std::move(parts)),
            [](CloudProcessor* processor) { processor->deleteLater(); }};
}

QCoro::Task<MiningResults> CloudProcessor::processAudio(std::string filePath, std::string token, MiningMode mode) {
    const auto self = shared_from_this();
    setErrorMessage(std::nullopt);
    setResults(std::nullopt);
    setStep(ProcessingStep::uploading);
    setProgress(progressOf(ProcessingStep::uploading));
    const auto jobId = co_await uploadAudio(std::move(filePath), token);

    setStep(ProcessingStep::transcribing);
    setProgress(progressOf(ProcessingStep::transcribing));
    co_await startProcessing(jobId, token, mode);
    auto story = co_await pollForResults(jobId, token);

    setStep(ProcessingStep::complete);
    setProgress(progressOf(ProcessingStep::complete));
    setResults(story);
    co_return story;
}

QCoro::Task<std::string> CloudProcessor::uploadAudio(std::string filePath, std::string token) {
    const auto& addresses = m_client.addresses();
    if (addresses.isRefused())
        throw CloudProcessorError::uploadFailed(addresses.refusal);
    auto audio = readFile(filePath, FileLimits::sound);
    if (!audio)
        throw CloudProcessorError::uploadFailed(readingFailure(filePath));
    const auto boundary = m_parts.newUuid();
    HttpRequest request;
    request.url = addresses.baseURL + uploadEndpoint;
    request.headers = {{"Authorization", "Bearer " + token},
                       {"Content-Type", "multipart/form-data; boundary=" + boundary}};
    request.body = uploadBody(boundary, lastPathComponent(filePath), *audio);
    request.timeout = m_client.timeout();
    request.answerLimit = accountAnswerLimit;
    audio.reset();
    const auto http = m_client.http();
    const auto answer = co_await http->send(std::move(request));
    auto jobId = jobIdOf(answer, token);
    co_return jobId;
}

QCoro::Task<void> CloudProcessor::startProcessing(std::string jobId, std::string token, MiningMode mode) {
    const wire::ProcessRequest request{std::move(jobId), std::string(texts(mode).rawValue)};
    auto body = compactText(encodeRecord(request)).value_or("{}"); // texts alone can always be written
    std::string failure;
    try {
        const std::string endpoint = processEndpoint;
        const std::string method = "POST";
        co_await m_client.request(endpoint, std::move(token), method, std::move(body));
        co_return;
    } catch (const std::exception& error) {
        failure = error.what();
    }
    throw CloudProcessorError::processingFailed(failure);
}

QCoro::Task<MiningResults> CloudProcessor::pollForResults(std::string jobId, std::string token) {
    const auto endpoint = jobsEndpoint + jobId;
    for (int attempt = 0; attempt < maxPollingAttempts; ++attempt) {
        std::string failure;
        try {
            const auto body = co_await m_client.request(endpoint, token);
            auto decoded = decodeRecordText<wire::JobStatusResponse>(body);
            failure = std::move(decoded.failure);
            auto story = decoded.value ? takeIn(std::move(*decoded.value)) : std::nullopt;
            if (story)
                co_return std::move(*story);
        } catch (const CloudProcessorError&) {
            throw;
        } catch (const std::exception& error) {
            failure = error.what();
        }
        if (!failure.empty())
            printFailedAttempt(attempt, printable(failure, token));
        co_await m_parts.pause(pollingPause);
    }
    throw CloudProcessorError::pollingTimeout();
}

std::optional<MiningResults> CloudProcessor::takeIn(wire::JobStatusResponse status) {
    if (status.progress > m_progress)
        setProgress(status.progress);
    if (status.status == "transcribing")
        setStep(ProcessingStep::transcribing);
    else if (status.status == "analyzing")
        setStep(ProcessingStep::analyzing);
    else if (status.status == "translating")
        setStep(ProcessingStep::translating);
    else if (status.status == "error")
        throw CloudProcessorError::processingFailed("Server reported error");
    else if (status.status == "complete" && !status.result)
        throw CloudProcessorError::invalidResults();
    else if (status.status == "complete")
        return std::move(status.result);
    return std::nullopt;
}

void CloudProcessor::setStep(ProcessingStep step) {
    if (m_currentStep == step)
        return;
    m_currentStep = step;
    Q_EMIT currentStepChanged();
}

void CloudProcessor::setProgress(double progress) {
    if (m_progress == progress)
        return;
    m_progress = progress;
    Q_EMIT progressChanged();
}

void CloudProcessor::setErrorMessage(std::optional<std::string> message) {
    if (m_errorMessage == message)
        return;
    m_errorMessage = std::move(message);
    Q_EMIT errorMessageChanged();
}

void CloudProcessor::setResults(std::optional<MiningResults> results) {
    if (!m_results && !results)
        return;
    m_results = std::move(results);
    Q_EMIT resultsChanged();
}

} // namespace zuvo
