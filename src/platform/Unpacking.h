#pragma once

#include <cstdint>
#include <string>

namespace zuvo {

/// The body of an answer in its own bytes, or why there is none.
struct UnpackedBody {
    std::string body;
    std::string failure; ///< empty if it could be unpacked
};

/// Unpacks what came with that Content-Encoding (in small letters): gzip or deflate, or nothing for an empty one.
/// Nobody asks for it, but some send it. More than `limit` bytes, a damaged or cut body and any other encoding are
/// failures.
[[nodiscard]] UnpackedBody unpackedBody(std::string packed, const std::string& encoding, std::int64_t limit);

} // namespace zuvo
