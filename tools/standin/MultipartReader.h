#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo::standin {

/// One field of a form. `data` points into the body that was read.
struct FormPart {
    std::string name;
    std::optional<std::string> fileName;
    std::string contentType;
    std::string_view data;
};

/// The parts of a multipart/form-data body, in order. The grammar read here:
///
///     "--" boundary CRLF { header CRLF } CRLF data CRLF "--" boundary ... CRLF "--" boundary "--" [ CRLF ]
///
/// Nothing if the content type names no boundary, a part has no name, or the closing boundary is missing: a body that
/// was cut short is never half read. The caller keeps `body` alive as long as the parts.
[[nodiscard]] std::optional<std::vector<FormPart>> readMultipart(std::string_view contentType, std::string_view body);

} // namespace zuvo::standin
