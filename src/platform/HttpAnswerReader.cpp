#include "platform/HttpAnswerReader.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <utility>

namespace zuvo {

namespace {

constexpr int switchingProtocols = 101;
constexpr int noContent = 204;
constexpr int notModified = 304;
constexpr int firstFinalStatus = 200;

constexpr const char* tooLong = "The answer is too long";
constexpr const char* closed = "Connection closed";
constexpr const char* noHttp = "The answer is not HTTP";
constexpr const char* unclearLength = "The length of the answer is not clear";

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t";
    const auto first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

/// The whole text as a number of that base, without a sign.
std::optional<std::int64_t> numberIn(std::string_view text, int base) {
    std::int64_t number = 0;
    if (text.starts_with('-'))
        return std::nullopt;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

} // namespace

void HttpAnswerReader::take(std::string_view bytes) {
    if (hasEnded())
        return;
    m_pending.append(bytes);
    while (!hasEnded() && step()) {
    }
    m_pending.erase(0, m_position);
    m_position = 0;
}

void HttpAnswerReader::close() {
    if (hasEnded())
        return;
    if (m_state == State::bodyToEnd)
        m_state = State::whole;
    else
        fail(closed);
}

/// Reads the next part; false if more bytes are needed for it.
bool HttpAnswerReader::step() {
    switch (m_state) {
    case State::bodyByLength:
        if (m_left == 0) {
            m_state = State::whole;
            return true;
        }
        return moveToBody(m_left);
    case State::bodyToEnd:
        return moveToBody(m_bodyLimit + 1);
    case State::chunk:
        if (m_left == 0) {
            m_state = State::chunkEnd;
            return true;
        }
        return moveToBody(m_left);
    case State::whole:
        return false;
    default:
        break;
    }
    const auto line = nextLine();
    if (!line)
        return false;
    if (m_state == State::statusLine)
        readStatusLine(*line);
    else if (m_state == State::headers && line->empty())
        endHead();
    else if (m_state == State::headers)
        readHeader(*line);
    else if (m_state == State::chunkSize)
        readChunkSize(*line);
    else if (m_state == State::chunkEnd && line->empty())
        m_state = State::chunkSize;
    else if (m_state == State::chunkEnd)
        fail("The chunks of the answer cannot be read");
    else if (m_state == State::trailers && line->empty())
        m_state = State::whole;
    return true;
}

/// The next line without its end.
std::optional<std::string_view> HttpAnswerReader::nextLine() {
    const auto end = m_pending.find('\n', m_position);
    const bool isThere = end != std::string::npos;
    const auto size = (isThere ? end + 1 : m_pending.size()) - m_position;
    if (m_headBytes + static_cast<std::int64_t>(size) > headLimit) {
        fail(m_hasHead ? "The chunks of the answer cannot be read" : "The head of the answer is too long");
        return std::nullopt;
    }
    if (!isThere)
        return std::nullopt;
    // The sizes of a long body's chunks are many, and each of them is short.
    if (m_state != State::chunkSize && m_state != State::chunkEnd)
        m_headBytes += static_cast<std::int64_t>(size);
    auto line = std::string_view(m_pending).substr(m_position, size - 1);
    m_position += size;
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

// "HTTP/1.1 200 OK"; the words at the end may be missing.
void HttpAnswerReader::readStatusLine(std::string_view line) {
    constexpr std::string_view version = "HTTP/1.";
    constexpr std::size_t statusStart = version.size() + 2;
    constexpr std::size_t statusSize = 3;
    const auto isDigit = [&line](std::size_t at) { return line[at] >= '0' && line[at] <= '9'; };
    const auto end = statusStart + statusSize;
    if (!line.starts_with(version) || line.size() < end || !isDigit(version.size()) ||
        line[version.size() + 1] != ' ' || !isDigit(statusStart) || !isDigit(statusStart + 1) ||
        !isDigit(statusStart + 2) || (line.size() > end && line[end] != ' ')) {
        fail(noHttp);
        return;
    }
    m_status = static_cast<int>(numberIn(line.substr(statusStart, statusSize), 10).value_or(0));
    if (m_status < 100)
        fail(noHttp);
    m_isChunked = false;
    m_length.reset();
    m_contentEncoding.clear();
    m_state = State::headers;
}

void HttpAnswerReader::readHeader(std::string_view line) {
    const auto colon = line.find(':');
    if (colon == std::string_view::npos || line.starts_with(' ') || line.starts_with('\t'))
        return; // a line that goes on from the one before, or nothing of ours
    const auto name = lowerCase(trimmed(line.substr(0, colon)));
    const auto value = trimmed(line.substr(colon + 1));
    if (name == "content-length") {
        readContentLength(value);
    } else if (name == "transfer-encoding") {
        m_isChunked = lowerCase(value) == "chunked";
        if (!m_isChunked && lowerCase(value) != "identity")
            fail("The answer is coded in a way that was not asked for");
    } else if (name == "content-encoding" && lowerCase(value) != "identity") {
        m_contentEncoding += (m_contentEncoding.empty() ? "" : ", ") + lowerCase(value);
    }
}

/// A length that is given twice must be the same.
void HttpAnswerReader::readContentLength(std::string_view value) {
    for (std::size_t start = 0; start <= value.size();) {
        const auto comma = std::min(value.find(',', start), value.size());
        const auto length = numberIn(trimmed(value.substr(start, comma - start)), 10);
        if (!length || (m_length && *m_length != *length)) {
            fail(unclearLength);
            return;
        }
        m_length = length;
        start = comma + 1;
    }
}

void HttpAnswerReader::endHead() {
    if (m_status < firstFinalStatus && m_status != switchingProtocols) {
        m_state = State::statusLine;
        return;
    }
    m_hasHead = true;
    if (m_status == switchingProtocols || m_status == noContent || m_status == notModified) {
        m_state = State::whole;
    } else if (m_isChunked) {
        m_state = State::chunkSize;
    } else if (m_length) {
        m_left = *m_length;
        m_state = State::bodyByLength;
        if (m_left > m_bodyLimit)
            fail(tooLong);
    } else {
        m_state = State::bodyToEnd;
    }
}

// "1F;name=value", the part from the ";" on being for nobody.
void HttpAnswerReader::readChunkSize(std::string_view line) {
    const auto size = numberIn(trimmed(line.substr(0, line.find(';'))), 16);
    if (!size) {
        fail("The chunks of the answer cannot be read");
        return;
    }
    m_left = *size;
    m_state = m_left == 0 ? State::trailers : State::chunk;
    if (m_left > m_bodyLimit - static_cast<std::int64_t>(m_body.size()))
        fail(tooLong);
}

/// Moves up to that many bytes to the body; false if there are none.
bool HttpAnswerReader::moveToBody(std::int64_t most) {
    const auto there = static_cast<std::int64_t>(m_pending.size() - m_position);
    const auto count = std::min(most, there);
    if (count == 0)
        return false;
    if (count > m_bodyLimit - static_cast<std::int64_t>(m_body.size()))
        return fail(tooLong);
    m_body.append(m_pending, m_position, static_cast<std::size_t>(count));
    m_position += static_cast<std::size_t>(count);
    m_left -= count;
    return true;
}

bool HttpAnswerReader::fail(const char* reason) {
    if (m_failure.empty())
        m_failure = reason;
    m_body.clear();
    return false;
}

} // namespace zuvo
