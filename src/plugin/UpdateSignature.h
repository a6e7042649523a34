#pragma once

#include <string>

namespace zuvo {

/// Checks updates against the one public key whose owner may publish them.
///
/// A signature is Ed25519 over the archive's bytes, as 64 bytes in a file of its own.
class UpdateSignature {
public:
    /// The 32 bytes of the public key in base64. With any other text nothing is ever valid.
    explicit UpdateSignature(const std::string& publicKeyBase64);

    /// Whether the file `signature` signs the file `archive`. False too if either cannot be read.
    [[nodiscard]] bool isValid(const std::string& archive, const std::string& signature) const;

private:
    std::string m_publicKey; ///< bytes; empty if the text was not a key
};

/// The public key that this build was given (`ZUVO_UPDATE_KEY`), in base64; empty if it was given none.
[[nodiscard]] std::string builtInUpdateKey();

} // namespace zuvo
