#pragma once

#include "standin/Exchange.h"

#include <optional>
#include <string>
#include <string_view>

namespace zuvo::standin {

inline constexpr std::string_view messagesPath = "/v1/messages";

/// The answer to a messages request, with a story worked out from the prompt. `replyText`, if given, is said instead.
/// 401 without a key, 405 for a method other than POST, 400 for a missing version, another content type, a body of
/// another shape or a prompt that asks for no story; the body then is an error object.
[[nodiscard]] Answer answerMessages(const RecordedRequest& request, const std::optional<std::string>& replyText = {});

/// An error object of this service's form.
[[nodiscard]] Answer messagesError(int status, std::string_view type, std::string_view message);

} // namespace zuvo::standin
