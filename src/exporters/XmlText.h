#pragma once

#include <string>
#include <string_view>

namespace zuvo::exporters {

/// The text with &, <, >, " and ' as entities, each once. All else stays as it is: a character that XML does not know
/// (a control character, invalid UTF-8) makes the document one that readers refuse.
[[nodiscard]] std::string xmlEscaped(std::string_view text);

} // namespace zuvo::exporters
