#include "platform/Http.h"

#include "platform/HttpExchange.h"

#include <QCoroFuture>
#include <algorithm>

namespace zuvo {

namespace {

bool holdsControlCharacter(const std::string& text) {
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7F;
    });
}

/// A line end in a header value (a key from a file, say) would start a header of its own.
std::string refusalOf(const HttpRequest& request) {
    for (const auto& [name, value] : request.headers) {
        if (holdsControlCharacter(value))
            return "The value of the header " + name + " holds a line end or another control character";
    }
    return {};
}

} // namespace

NetworkHttpClient::~NetworkHttpClient() {
    for (const auto& exchange : m_waiting) {
        if (!exchange.isNull())
            exchange->giveUp("The program ended the request");
    }
}

QCoro::Task<HttpAnswer> NetworkHttpClient::send(HttpRequest request) {
    HttpAnswer answer;
    answer.failure = refusalOf(request);
    if (answer.hasFailed())
        co_return answer;

    // The client may be gone when the answer comes: what is needed then lives in this frame.
    const auto limit = std::min(m_answerLimit, request.answerLimit);
    HttpExchange exchange(std::move(request), limit);
    std::erase_if(m_waiting, [](const QPointer<HttpExchange>& known) { return known.isNull(); });
    m_waiting.emplace_back(&exchange);
    exchange.start();
    auto ended = exchange.ended();
    co_await ended;
    answer = exchange.takeAnswer();
    co_return answer;
}

} // namespace zuvo
