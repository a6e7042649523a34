#pragma once

#include <string>
#include <vector>

namespace zuvo::endtoend {

// Marked keys: made so that no piece of them comes about by chance, and searched for in whatever form they might be
// kept in.

/// The part that all marked keys share and nothing else has.
inline constexpr const char* secretPart = "Q7SECRETZ";

/// The texts of which one stands wherever a marked key was written: as it is, in UTF-16, in hexadecimal digits of
/// either case, in Base64 at each of its three alignments, and backward.
[[nodiscard]] std::vector<std::string> tracesOfSecrets();

/// Whether a marked key can be read out of these bytes.
[[nodiscard]] bool holdsSecret(const std::string& bytes);

/// Files and folders below `folder` that hold a marked key, in their bytes, their name or what they link to. Those in
/// `known` (absolute paths) are passed over: the test put the key there.
[[nodiscard]] std::vector<std::string> secretsBelow(const std::string& folder,
                                                    const std::vector<std::string>& known = {});

} // namespace zuvo::endtoend
