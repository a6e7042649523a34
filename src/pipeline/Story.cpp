// From a transcript to a story: the model chooses, and what it chose is measured against the sound.

#include "base/Secrets.h"
#include "base/Text.h"
#include "pipeline/LocalPipeline.h"
#include "platform/ServiceAddresses.h"
#include "steps/EnergyAudit.h"
#include "steps/MessagesFormat.h"
#include "steps/ReplyRecovery.h"
#include "steps/StoryPrompt.h"

namespace zuvo {

namespace {

// User-perceived characters that are shown of what is foreign.
constexpr std::size_t shownHttpErrorCharacters = 300;
constexpr std::size_t shownReplyCharacters = 200;
constexpr std::size_t shownPreviewCharacters = 300;

std::string shown(const std::string& body, std::size_t characters, const char* otherwise) {
    return isValidUtf8(body) ? firstCharacters(body, characters) : otherwise;
}

} // namespace

QCoro::Task<std::optional<MiningResults>> LocalPipeline::analyzeStory(TranscriptResult transcript, double targetMinutes,
                                                                      std::string language, std::string stylePrompt) {
    const auto self = shared_from_this();
    StoryPromptInput input;
    input.targetMinutes = targetMinutes;
    input.style = std::move(stylePrompt);
    input.totalDuration = transcript.segments.empty() ? 0.0 : transcript.segments.back().end;
    input.sourceLanguage = language == "auto" ? transcript.language : language;
    const auto profile = co_await measureEnergy(transcript);
    // The request is paid for: nobody is to pay for a story that they no longer want.
    if (m_cancelled)
        co_return std::nullopt;
    log("  Sending " + std::to_string(characterCount(profile.annotatedTranscript)) +
            " chars to Claude (energy-annotated)...",
        LogColor::dim);
    input.thresholds = profile.thresholds;
    input.transcript = profile.annotatedTranscript;

    const auto reply = co_await askModel(storyPrompt(input), KeyState::logged);
    if (!reply)
        co_return std::nullopt;
    auto story = decodeReply(*reply);
    if (!story)
        co_return std::nullopt;
    auto audited = auditEnergy(std::move(*story), profile.sources, profile.samples, profile.thresholds.quietThreshold);
    for (auto& line : audited.lines)
        log(std::move(line.text), line.color.c_str());
    co_return std::move(audited.results);
}

QCoro::Task<std::optional<std::string>> LocalPipeline::askModel(std::string prompt, KeyState keyState) {
    const auto body = messagesRequestBody(prompt);
    if (!body)
        co_return std::nullopt;
    const auto address = messagesAddress(m_platform.environment);
    if (address.isRefused()) {
        log("  Claude request failed: " + address.refusal, LogColor::accent);
        co_return std::nullopt;
    }
    const auto key = anthropicKey();
    if (keyState == KeyState::logged)
        logKeyState(key);

    HttpRequest request;
    request.url = address.url;
    request.headers = {{"x-api-key", key}, {"anthropic-version", "2023-06-01"}, {"content-type", "application/json"}};
    request.body = *body;
    request.timeout = m_timeouts.messages;
    const auto answer = co_await m_platform.http->send(std::move(request));
    if (answer.hasFailed()) {
        log("  Claude request failed: " + answer.failure, LogColor::accent);
        co_return std::nullopt;
    }
    if (!answer.isSuccess()) {
        log("  Claude HTTP error: " + shown(withoutKeys(answer.body), shownHttpErrorCharacters, "unknown"),
            LogColor::accent);
        co_return std::nullopt;
    }
    auto text = messagesReplyText(answer.body);
    if (!text)
        log("  Claude response parse error: " + shown(withoutKeys(answer.body), shownReplyCharacters, "empty"),
            LogColor::accent);
    co_return text;
}

void LocalPipeline::logKeyState(const std::string& key) {
    if (!key.empty()) {
        log("🔑 API key found (" + shownBeginning(key) + "...)", LogColor::dim);
        return;
    }
    // The request is sent all the same, and the service's own words follow.
    log("⚠️ API key is EMPTY — checked env, ~/.config/anthropic/api_key, ~/.zshrc", LogColor::accent);
    log("  Home dir: " + m_platform.environment.realHomeDir, LogColor::dim);
    log("  Fix: echo $ANTHROPIC_API_KEY > ~/.config/anthropic/api_key", LogColor::dim);
}

std::optional<std::string> LocalPipeline::cleanedReply(const std::string& reply) {
    auto cleaned = cleanReply(reply);
    if (isValidUtf8(cleaned))
        return cleaned;
    log("  Could not encode cleaned JSON", LogColor::accent);
    return std::nullopt;
}

void LocalPipeline::logDecodeFailure(const std::string& failure, const std::string& cleaned) {
    logForeign("  JSON decode error: " + failure, LogColor::accent);
    log("  Response preview: " + firstCharacters(withoutKeys(cleaned), shownPreviewCharacters) + "...", LogColor::dim);
}

std::optional<MiningResults> LocalPipeline::decodeReply(const std::string& reply) {
    const auto cleaned = cleanedReply(reply);
    if (!cleaned)
        return std::nullopt;
    auto decoded = decodeRecordText<MiningResults>(*cleaned);
    if (decoded.value)
        return std::move(decoded.value);
    logDecodeFailure(decoded.failure, *cleaned);
    auto recovered = tryManualParse(*cleaned);
    if (recovered)
        log("  ✓ Recovered via manual parse", LogColor::green);
    return recovered;
}

} // namespace zuvo
