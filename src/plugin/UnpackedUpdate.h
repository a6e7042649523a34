#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace zuvo {

/// Why an unpacked archive must not be copied by an administrator, in words that name the entry; nothing if it may.
/// `files` is what `inspectUpdate` found in the archive: all of it must be there, and nothing else.
///
/// Files and folders may be copied, and links that stay within the top-level folder they are in:
///
///     plugin/docs/readme -> ../README           stays
///     plugin/all         -> ../other/secrets    leads out, as plugin/ alone is copied
///     plugin             -> elsewhere           leads out: the link itself is the top level
///
/// A link's path may climb only at its beginning: what follows a name in it may be a link too, from which ".." leads
/// somewhere else. A folder that cannot be looked through is refused, and so is a file with a second name (a hard link)
/// or with set-id rights. No link is followed.
[[nodiscard]] std::optional<std::string> unpackedRefusal(const std::string& folder,
                                                         const std::map<std::string, std::uint64_t>& files);

/// What is in the folder `parent`/`name`, as text with one line each, sorted by bytes:
///
///     d name/docs                          a folder
///     f 9F86...0A08  name/docs/readme      a file, by its SHA-256
///     l name/link -> docs/readme           a link
///     x name/run                           a file that its owner may execute, besides its "f" line
///
/// The line that runs with an administrator's rights makes the same text of its own copy by find and sha256sum. Nothing
/// if something cannot be read.
[[nodiscard]] std::optional<std::string> manifestOf(const std::string& parent, const std::string& name);

/// SHA-256 of a text, in lower-case hexadecimal digits.
[[nodiscard]] std::string sha256Of(const std::string& text);

} // namespace zuvo
