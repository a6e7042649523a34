#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zuvo {

/// Reads one answer of HTTP/1 from the bytes of a connection, in pieces of any size. The bytes are foreign: nothing is
/// kept beyond the limits below, and whatever is not an answer ends in a failure.
///
///     HTTP/1.1 401 Unauthorized\r\n     informational answers (1xx) before it are passed over
///     Name: value\r\n                   lines may end in "\n" alone
///     \r\n
///     body                              in chunks, or of Content-Length bytes, or up to the connection's end
class HttpAnswerReader {
public:
    /// Bytes of all status lines, headers, chunk sizes and trailers of one answer.
    static constexpr std::int64_t headLimit = 64LL * 1024;

    /// A body of more than `bodyLimit` bytes is a failure.
    explicit HttpAnswerReader(std::int64_t bodyLimit) : m_bodyLimit(bodyLimit) {}

    /// Takes the next bytes. What comes after a whole answer or a failure is dropped.
    void take(std::string_view bytes);

    /// The connection has ended: a body without a length is whole now, anything else unfinished is a failure.
    void close();

    [[nodiscard]] bool hasHead() const { return m_hasHead; } ///< the status and all headers are known
    [[nodiscard]] bool isWhole() const { return m_state == State::whole; }
    [[nodiscard]] bool hasFailed() const { return !m_failure.empty(); }
    [[nodiscard]] bool hasEnded() const { return isWhole() || hasFailed(); }

    [[nodiscard]] int status() const { return m_status; } ///< 0 without a head
    [[nodiscard]] const std::string& failure() const { return m_failure; }
    /// The values of Content-Encoding, in small letters; empty if the body is as it is.
    [[nodiscard]] const std::string& contentEncoding() const { return m_contentEncoding; }
    /// Moves the body out; any bytes.
    [[nodiscard]] std::string takeBody() { return std::move(m_body); }

private:
    enum class State { statusLine, headers, bodyByLength, bodyToEnd, chunkSize, chunk, chunkEnd, trailers, whole };

    bool step();
    std::optional<std::string_view> nextLine();
    void readStatusLine(std::string_view line);
    void readHeader(std::string_view line);
    void readContentLength(std::string_view value);
    void endHead();
    void readChunkSize(std::string_view line);
    bool moveToBody(std::int64_t most);
    bool fail(const char* reason);

    std::int64_t m_bodyLimit;
    State m_state = State::statusLine;
    std::string m_pending;
    std::size_t m_position = 0; ///< in `m_pending`
    std::int64_t m_headBytes = 0;
    bool m_hasHead = false;
    int m_status = 0;
    bool m_isChunked = false;
    std::optional<std::int64_t> m_length;
    std::int64_t m_left = 0; ///< bytes of the body by length, or of the chunk
    std::string m_contentEncoding;
    std::string m_body;
    std::string m_failure;
};

} // namespace zuvo
