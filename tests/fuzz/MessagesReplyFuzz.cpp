// The body that the messages service answered with, and any text at all as a prompt.

#include "Fuzzing.h"
#include "base/Json.h"
#include "base/Text.h"
#include "steps/MessagesFormat.h"

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    if (const auto reply = messagesReplyText(text))
        fuzzing::require(isValidUtf8(*reply));
    const auto body = messagesRequestBody(std::string(text));
    fuzzing::require(body.has_value());
    const auto request = parseForeignJson(*body);
    fuzzing::require(request.has_value());
    if (isValidUtf8(text))
        fuzzing::require(request->at("messages").at(0).at("content").get<std::string>() == text);
}
