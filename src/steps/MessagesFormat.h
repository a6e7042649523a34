#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zuvo {

// The request and answer of the messages service.

/// The JSON body of a request with the whole prompt as one user message.
[[nodiscard]] std::optional<std::string> messagesRequestBody(const std::string& prompt);

/// The `text` of the first object of `content` whose `type` is "text"; nothing if the body is no JSON object, has no
/// list of objects `content`, no such object, or that object has no text.
[[nodiscard]] std::optional<std::string> messagesReplyText(std::string_view body);

} // namespace zuvo
