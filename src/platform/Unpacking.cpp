#include "platform/Unpacking.h"

#include <array>
#include <utility>
#include <zlib.h>

namespace zuvo {

namespace {

// zlib's own codes for the forms: 32 stands for "gzip or zlib, whichever it is", a negative one for neither's head.
constexpr int eitherForm = MAX_WBITS + 32;
constexpr int withoutHead = -MAX_WBITS;

constexpr const char* damaged = "The answer could not be unpacked";

UnpackedBody inflated(const std::string& packed, int form, std::int64_t limit) {
    z_stream stream{};
    if (inflateInit2(&stream, form) != Z_OK)
        return {{}, damaged};
    std::string input = packed; // zlib wants it writable
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    UnpackedBody outcome;
    int state = Z_OK;
    while (state == Z_OK) {
        std::array<char, 64UL * 1024> piece{};
        stream.next_out = reinterpret_cast<Bytef*>(piece.data());
        stream.avail_out = static_cast<uInt>(piece.size());
        state = inflate(&stream, Z_NO_FLUSH);
        outcome.body.append(piece.data(), piece.size() - stream.avail_out);
        if (static_cast<std::int64_t>(outcome.body.size()) > limit) {
            outcome = {{}, "The answer is too long"};
            break;
        }
    }
    inflateEnd(&stream);
    if (outcome.failure.empty() && state != Z_STREAM_END)
        outcome = {{}, damaged};
    return outcome;
}

} // namespace

UnpackedBody unpackedBody(std::string packed, const std::string& encoding, std::int64_t limit) {
    if (encoding.empty() || packed.empty())
        return {std::move(packed), {}};
    if (encoding == "gzip" || encoding == "x-gzip")
        return inflated(packed, eitherForm, limit);
    if (encoding != "deflate")
        return {{}, "The answer is packed in a way that was not asked for"};
    auto outcome = inflated(packed, eitherForm, limit);
    // Some send it without the head that the name asks for.
    return outcome.failure == damaged ? inflated(packed, withoutHead, limit) : outcome;
}

} // namespace zuvo
