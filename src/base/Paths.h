#pragma once

#include <string>
#include <string_view>

namespace zuvo {

/// What follows the last "/" ("/a/b.wav" gives "b.wav"); slashes at the end are passed over ("/a/b/" gives "b").
[[nodiscard]] std::string lastPathComponent(std::string_view path);

/// What follows the last "." of the last component; empty if that "." stands first (".wav") or last ("a."), or if
/// there is none.
[[nodiscard]] std::string pathExtension(std::string_view path);

} // namespace zuvo
