#include "standin/MessagesService.h"

#include "base/Json.h"
#include "base/Text.h"
#include "standin/Auditor.h"
#include "standin/StoryTeller.h"

namespace zuvo::standin {
namespace {

constexpr std::string_view invalidRequest = "invalid_request_error";
constexpr std::size_t bytesPerToken = 4; // a rough rate, for the usage figures alone

/// The text of the last message, which is the prompt; its content is a text or a list of text blocks.
std::optional<std::string> promptOf(const Json& body) {
    const auto messages = readObjects(body, "messages");
    if (!messages || messages->empty() || readText(*messages->back(), "role") != "user")
        return std::nullopt;
    if (auto text = readText(*messages->back(), "content"))
        return text;
    const auto blocks = readObjects(*messages->back(), "content");
    if (!blocks)
        return std::nullopt;
    std::string prompt;
    for (const Json* block : *blocks)
        prompt += readText(*block, "text").value_or("");
    return prompt;
}

Answer say(const std::string& model, const std::string& prompt, const std::string& text) {
    OrderedJson block;
    block["type"] = "text";
    block["text"] = text;
    OrderedJson tree;
    tree["id"] = "msg_standin";
    tree["type"] = "message";
    tree["role"] = "assistant";
    tree["model"] = model;
    tree["content"] = OrderedJson::array({std::move(block)});
    tree["stop_reason"] = "end_turn";
    tree["stop_sequence"] = nullptr;
    tree["usage"]["input_tokens"] = prompt.size() / bytesPerToken;
    tree["usage"]["output_tokens"] = text.size() / bytesPerToken;
    return {200, compactText(tree).value_or("{}")};
}

} // namespace

Answer messagesError(int status, std::string_view type, std::string_view message) {
    OrderedJson tree;
    tree["type"] = "error";
    tree["error"]["type"] = type;
    tree["error"]["message"] = message;
    return {status, compactText(tree).value_or("{}")};
}

Answer answerMessages(const RecordedRequest& request, const std::optional<std::string>& replyText) {
    if (request.method != "POST")
        return messagesError(405, invalidRequest, "Method Not Allowed");
    if (trimBlanks(request.header("x-api-key")).empty())
        return messagesError(401, "authentication_error", "x-api-key header is required");
    if (request.header("anthropic-version").empty())
        return messagesError(400, invalidRequest, "anthropic-version: header is required");
    if (request.header("content-type").rfind("application/json", 0) != 0)
        return messagesError(400, invalidRequest, "content-type: application/json is expected");
    const auto body = parseForeignJson(request.body);
    if (!body || !body->is_object())
        return messagesError(400, invalidRequest, "The request body is not valid JSON.");
    const auto model = readText(*body, "model");
    const auto maximum = readInteger(*body, "max_tokens");
    const auto prompt = promptOf(*body);
    if (!model || model->empty())
        return messagesError(400, invalidRequest, "model: Field required");
    if (!maximum || *maximum <= 0)
        return messagesError(400, invalidRequest, "max_tokens: Field required");
    if (!prompt)
        return messagesError(400, invalidRequest, "messages: a last message by the user is required");
    if (replyText)
        return say(*model, *prompt, *replyText);
    if (const auto story = readStoryPrompt(*prompt))
        return say(*model, *prompt, compactText(tellStory(*story)).value_or("{}"));
    if (const auto audit = readAuditPrompt(*prompt))
        return say(*model, *prompt, compactText(judgeCut(*audit)).value_or("{}"));
    return messagesError(400, invalidRequest, "This prompt holds no transcript to make a story of or to audit.");
}

} // namespace zuvo::standin
