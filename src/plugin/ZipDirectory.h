#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zuvo {

/// The number of entries by the last record of a zip archive:
///
///     ... entries ...| directory |"PK\5\6" 0 0 n n size offset commentLength| comment |
///                    ^ offset    ^ offset + size                                      ^ end of the file
///
/// Nothing unless the file ends as drawn, on one disk: readers of zip archives differ in where they look for a record
/// that has other bytes behind it, or a zip64 record in front of it, and so in what they unpack. An archive of the size
/// that an update may have needs no zip64.
[[nodiscard]] std::optional<std::uint64_t> readZipDirectoryEnd(const std::string& path);

} // namespace zuvo
