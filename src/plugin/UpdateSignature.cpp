#include "plugin/UpdateSignature.h"

#include "base/Files.h"
#include "platform/FileSystem.h"
#include "plugin/UpdateArchive.h"

#include <QByteArray>
#include <memory>
#include <openssl/evp.h>
#include <optional>

namespace zuvo {

namespace {

constexpr std::size_t keyBytes = 32;
constexpr std::uint64_t signatureBytes = 64;

struct FreeKey {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct FreeContext {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

/// OpenSSL's bytes are unsigned.
const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

bool signs(const std::string& signature, const std::string& message, const std::string& publicKey) {
    const std::unique_ptr<EVP_PKEY, FreeKey> key(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytesOf(publicKey), publicKey.size()));
    const std::unique_ptr<EVP_MD_CTX, FreeContext> context(EVP_MD_CTX_new());
    return key && context && EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1 &&
           EVP_DigestVerify(context.get(), bytesOf(signature), signature.size(), bytesOf(message), message.size()) == 1;
}

} // namespace

UpdateSignature::UpdateSignature(const std::string& publicKeyBase64) {
    const auto decoded = QByteArray::fromBase64Encoding(QByteArray::fromStdString(publicKeyBase64),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    if (decoded && decoded.decoded.size() == static_cast<qsizetype>(keyBytes))
        m_publicKey = decoded.decoded.toStdString();
}

bool UpdateSignature::isValid(const std::string& archive, const std::string& signature) const {
    const auto archiveBytes = fileSize(archive);
    if (m_publicKey.empty() || fileSize(signature) != signatureBytes || !archiveBytes ||
        *archiveBytes > updateLimits.packedBytes)
        return false;
    const auto message = readFile(archive, *archiveBytes);
    const auto signed64 = readFile(signature, signatureBytes);
    return message && signed64 && signs(*signed64, *message, m_publicKey);
}

std::string builtInUpdateKey() {
    return ZUVO_UPDATE_KEY;
}

} // namespace zuvo
