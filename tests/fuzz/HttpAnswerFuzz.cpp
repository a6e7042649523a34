// The bytes of a server on a connection, whole and in pieces of any size.

#include "Fuzzing.h"
#include "platform/HttpAnswerReader.h"

#include <string>

using namespace zuvo;

namespace {

constexpr std::int64_t bodyLimit = 4096;

struct Outcome {
    bool isWhole = false;
    int status = 0;
    std::string failure;
    std::string body;

    bool operator==(const Outcome&) const = default;
};

Outcome readInPieces(std::string_view bytes, std::size_t pieceSize) {
    HttpAnswerReader reader(bodyLimit);
    for (std::size_t at = 0; at < bytes.size(); at += pieceSize)
        reader.take(bytes.substr(at, pieceSize));
    reader.close();
    fuzzing::require(reader.hasEnded());
    fuzzing::require(reader.isWhole() != reader.hasFailed());
    fuzzing::require(!reader.isWhole() || reader.hasHead());
    return {reader.isWhole(), reader.status(), reader.failure(), reader.takeBody()};
}

} // namespace

ZUVO_FUZZ_TARGET {
    const auto whole = readInPieces(text, text.size() + 1);
    fuzzing::require(whole.body.size() <= bodyLimit);
    fuzzing::require(whole.isWhole || whole.body.empty());
    if (whole.isWhole)
        fuzzing::require(whole.status == 101 || (whole.status >= 200 && whole.status <= 999));
    for (const std::size_t pieceSize : {1UL, 3UL, 64UL})
        fuzzing::require(readInPieces(text, pieceSize) == whole);
    // A body of a length that is said once comes back as it was.
    if (text.size() > bodyLimit)
        return;
    const auto answer =
        "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(text.size()) + "\r\n\r\n" + std::string(text);
    fuzzing::require(readInPieces(answer, 7).body == text);
}
