#include "account/APIError.h"

namespace zuvo {

namespace {

std::string describe(APIError::Kind kind, int statusCode, const std::string& detail) {
    switch (kind) {
    case APIError::Kind::httpError:
        return "Server error " + std::to_string(statusCode) + ": " + detail;
    case APIError::Kind::decodingError:
        return "Failed to parse response: " + detail;
    case APIError::Kind::networkError:
        return "Network error: " + detail;
    case APIError::Kind::invalidURL:
        return "Invalid URL";
    case APIError::Kind::invalidResponse:
        break;
    }
    return "Invalid server response";
}

} // namespace

APIError::APIError(Kind kind, int statusCode, std::string detail)
    : m_kind(kind), m_statusCode(statusCode), m_description(describe(kind, statusCode, detail)) {}

} // namespace zuvo
