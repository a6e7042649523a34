#include "plugin/UpdateSignature.h"

#include "UpdateFixture.h"

#include <QByteArray>
#include <memory>
#include <openssl/evp.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A key pair of the test's own, made when it is asked for.
class Publisher {
public:
    [[nodiscard]] std::string publicKey() const {
        std::string bytes(32, '\0');
        auto length = bytes.size();
        EXPECT_EQ(EVP_PKEY_get_raw_public_key(m_pair.get(), data(bytes), &length), 1);
        return QByteArray::fromStdString(bytes).toBase64().toStdString();
    }

    [[nodiscard]] std::string signatureOf(std::string message) const {
        std::string signature(64, '\0');
        auto length = signature.size();
        const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
        EXPECT_EQ(EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, m_pair.get()), 1);
        EXPECT_EQ(EVP_DigestSign(context.get(), data(signature), &length, data(message), message.size()), 1);
        return signature;
    }

private:
    static unsigned char* data(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> m_pair{EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"),
                                                               EVP_PKEY_free};
};

class SignedUpdate : public Update {
protected:
    SignedUpdate() {
        updateKey = publisher.publicKey();
        make();
        givenUpdate();
        givenGoodArchive();
        givenRealCopies();
    }

    void givenSignature(const std::string& bytes) { downloader->signature = disk.write("archive.sig", bytes); }

    Publisher publisher;
};

constexpr const char* notSigned = "The update is not signed by its publisher";

} // namespace

// The first two test vectors of RFC 8032, 7.1: keys and signatures that this library did not make.
TEST(UpdateSignature, holdsForTheStandardsOwnVectors) {
    const TemporaryFolder disk;
    const auto bytes = [](const char* hex) { return QByteArray::fromHex(hex).toStdString(); };
    const auto base64 = [](const char* hex) { return QByteArray::fromHex(hex).toBase64().toStdString(); };
    const auto empty = disk.write("empty", "");
    const auto emptySigned = disk.write(
        "empty.sig",
        bytes("e5564300c360ac729086e2cc806e828a84877f1eb8e5d974d873e065224901555fb8821590a33bacc61e39701cf9b4"
              "6bd25bf5f0595bbe24655141438e7a100b"));
    const auto one = disk.write("one", "\x72");
    const auto oneSigned = disk.write(
        "one.sig",
        bytes("92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da085ac1e43e15996e458f3613d0f11d8c"
              "387b2eaeb4302aeeb00d291612bb0c00"));
    const UpdateSignature first(base64("d75a980182b10ab7d54bfed3c964073a0ee172f3daa62325af021a68f707511a"));
    const UpdateSignature second(base64("3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c"));
    EXPECT_TRUE(first.isValid(empty, emptySigned));
    EXPECT_TRUE(second.isValid(one, oneSigned));
    EXPECT_FALSE(first.isValid(one, oneSigned));
    EXPECT_FALSE(second.isValid(empty, emptySigned));
    EXPECT_FALSE(first.isValid(one, emptySigned));
}

TEST(UpdateSignature, aTextThatIsNotAKeyAcceptsNothing) {
    const TemporaryFolder disk;
    const Publisher publisher;
    const auto archive = disk.write("a", "bytes");
    const auto signature = disk.write("a.sig", publisher.signatureOf("bytes"));
    const auto key = publisher.publicKey();
    ASSERT_TRUE(UpdateSignature(key).isValid(archive, signature));
    for (const auto& text : {std::string(), std::string("AAAA"), key.substr(4), key + "AAAA", "!" + key.substr(1)})
        EXPECT_FALSE(UpdateSignature(text).isValid(archive, signature)) << text;
}

TEST(UpdateSignature, aFileThatIsNotThereIsNotSigned) {
    const TemporaryFolder disk;
    const Publisher publisher;
    const UpdateSignature signature(publisher.publicKey());
    const auto archive = disk.write("a", "bytes");
    EXPECT_FALSE(signature.isValid(archive, disk / "missing"));
    EXPECT_FALSE(signature.isValid(disk / "missing", disk.write("a.sig", publisher.signatureOf("bytes"))));
}

TEST_F(SignedUpdate, aSignedUpdateIsInstalled) {
    givenSignature(publisher.signatureOf(disk.read("archive.zip")));
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_TRUE(manager->areUpdatesSigned());
    EXPECT_THAT(downloader->urls, ElementsAre("https://downloads.test/p.zip", "https://downloads.test/p.zip.sig"));
    EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/version.json"), R"({"version":"0.2"})");
}

TEST_F(SignedUpdate, anyOtherSignatureIsRefused) {
    const auto valid = publisher.signatureOf(disk.read("archive.zip"));
    auto changed = valid;
    changed[10] = static_cast<char>(changed[10] ^ 1);
    for (const auto& signature :
         {Publisher().signatureOf(disk.read("archive.zip")), changed, valid.substr(0, 63), valid + "\n",
          publisher.signatureOf("another archive"), std::string(), std::string("404 Not Found")}) {
        SCOPED_TRACE(signature.size());
        givenSignature(signature);
        downloadAndInstall();
        thenRefused(notSigned);
        EXPECT_THAT(processes->requests, IsEmpty()); // not even unpacked
    }
}

TEST_F(SignedUpdate, aSignatureThatCannotBeFetchedIsAFailure) {
    downloader->signatureOutcome.failure = "Connection refused";
    downloadAndInstall();
    thenRefused("The update's signature cannot be fetched: Connection refused");
}

TEST_F(SignedUpdate, aBuildWithABrokenKeyInstallsNothing) {
    updateKey = "not a key";
    make();
    givenUpdate();
    givenSignature(publisher.signatureOf(disk.read("archive.zip")));
    downloadAndInstall();
    thenRefused(notSigned);
}

TEST_F(SignedUpdate, withoutAKeyNoSignatureIsAskedFor) {
    updateKey.clear();
    make();
    givenUpdate();
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_FALSE(manager->areUpdatesSigned());
    EXPECT_THAT(downloader->urls, ElementsAre("https://downloads.test/p.zip"));
}
