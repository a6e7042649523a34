#pragma once

#include <exception>
#include <string>

namespace zuvo {

/// Why a request to the account service gave nothing, in words for the user.
class APIError final : public std::exception {
public:
    enum class Kind {
        httpError,       ///< an answer with a status outside 200 to 299
        decodingError,   ///< an answer that is not the record asked for
        networkError,    ///< no answer came, or the service's address is refused
        invalidURL,      ///< base address and endpoint make no address; nothing was sent
        invalidResponse, ///< an answer without a status
    };

    /// `message` is the answer's body.
    static APIError httpError(int statusCode, std::string message) {
        return {Kind::httpError, statusCode, std::move(message)};
    }
    static APIError decodingError(std::string description) { return {Kind::decodingError, 0, std::move(description)}; }
    static APIError networkError(std::string description) { return {Kind::networkError, 0, std::move(description)}; }
    static APIError invalidURL() { return {Kind::invalidURL, 0, {}}; }
    static APIError invalidResponse() { return {Kind::invalidResponse, 0, {}}; }

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] int statusCode() const { return m_statusCode; } ///< of an httpError, else 0

    /// The words for the user, the same as `what()`.
    [[nodiscard]] const std::string& errorDescription() const { return m_description; }
    [[nodiscard]] const char* what() const noexcept override { return m_description.c_str(); }

private:
    APIError(Kind kind, int statusCode, std::string detail);

    Kind m_kind;
    int m_statusCode;
    std::string m_description;
};

} // namespace zuvo
