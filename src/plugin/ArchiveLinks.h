#pragma once

#include <optional>
#include <string>

namespace zuvo {

/// Why an unpacked archive must not be copied by an administrator, in words that name the entry; nothing if it may.
///
/// Files and folders may be copied, and links that stay within the top-level folder they lie in:
///
///     plugin/docs/readme -> ../README           stays
///     plugin/all         -> ../other/secrets    leads out, as plugin/ alone is copied
///     plugin             -> elsewhere           leads out: the link itself is the top level
///
/// A link's path may climb only at its beginning: what follows a name in it may be a link too, from which ".." leads
/// somewhere else. A folder that cannot be looked through is refused. No link is followed.
[[nodiscard]] std::optional<std::string> archiveRefusal(const std::string& folder);

} // namespace zuvo
