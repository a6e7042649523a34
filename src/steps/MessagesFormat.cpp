#include "steps/MessagesFormat.h"

#include "base/Json.h"

namespace zuvo {

namespace {

constexpr const char* modelName = "claude-sonnet-4-20250514";

/// Room for the answer. A story of a long mine comes near it; a reply cut off by it is no JSON any more.
constexpr int maximumAnswerTokens = 8000;

} // namespace

std::optional<std::string> messagesRequestBody(const std::string& prompt) {
    auto message = OrderedJson::object();
    message["role"] = "user";
    message["content"] = prompt;
    auto body = OrderedJson::object();
    body["model"] = modelName;
    body["max_tokens"] = maximumAnswerTokens;
    body["messages"] = OrderedJson::array();
    body["messages"].push_back(std::move(message));
    return compactText(body);
}

std::optional<std::string> messagesReplyText(std::string_view body) {
    const auto json = parseForeignJson(body);
    if (!json)
        return std::nullopt;
    const auto blocks = readObjects(*json, "content");
    if (!blocks)
        return std::nullopt;
    for (const auto* block : *blocks) {
        if (readText(*block, "type") == "text")
            return readText(*block, "text");
    }
    return std::nullopt;
}

} // namespace zuvo
