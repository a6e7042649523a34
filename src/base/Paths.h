#pragma once

#include <string>
#include <string_view>

namespace zuvo {

/// What follows the last "/" ("/a/b.wav" gives "b.wav"); slashes at the end are passed over ("/a/b/" gives "b").
[[nodiscard]] std::string lastPathComponent(std::string_view path);

/// What follows the last "." of the last component; empty if that "." stands first (".wav") or last ("a."), or if
/// there is none.
[[nodiscard]] std::string pathExtension(std::string_view path);

/// The path without its extension and the "." before it: "/a/b.wav" gives "/a/b"; ".wav" and "a." stay as they are.
/// Slashes at the end of a path with an extension go too. A view into the argument.
[[nodiscard]] std::string_view withoutExtension(std::string_view path);

/// Whether the path begins with "/". No tool takes such a text for an address or an option.
[[nodiscard]] bool isAbsolutePath(std::string_view path);

} // namespace zuvo
