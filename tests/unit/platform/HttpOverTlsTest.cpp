// Requests over https, to a server with a certificate made for the test.

#include "platform/Http.h"

#include "fakes/CoroutineTest.h"
#include "fakes/TemporaryFolder.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <gmock/gmock.h>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;

namespace {

QByteArray bytesOf(const std::string& path) {
    QFile file(QString::fromStdString(path));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
    return file.readAll();
}

/// What a server of one connection does; it counts what it has received.
class HttpOverTls : public testing::Test {
protected:
    void SetUp() override {
        const auto key = QString::fromStdString(folder / "key.pem");
        const auto certificate = QString::fromStdString(folder / "certificate.pem");
        const auto status = QProcess::execute(
            QStringLiteral("openssl"),
            {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"), QStringLiteral("rsa:2048"),
             QStringLiteral("-nodes"), QStringLiteral("-subj"), QStringLiteral("/CN=localhost"),
             QStringLiteral("-addext"), QStringLiteral("subjectAltName=DNS:localhost"), QStringLiteral("-keyout"), key,
             QStringLiteral("-out"), certificate});
        ASSERT_EQ(status, 0);
        own = QSslCertificate(bytesOf(folder / "certificate.pem"));
        ASSERT_FALSE(own.isNull());
        auto configuration = server.sslConfiguration();
        configuration.setLocalCertificate(own);
        configuration.setPrivateKey(QSslKey(bytesOf(folder / "key.pem"), QSsl::Rsa));
        server.setSslConfiguration(configuration);
        QObject::connect(&server, &QSslServer::pendingConnectionAvailable, &server, [this] { serve(); });
        ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    }
    void TearDown() override { QSslConfiguration::setDefaultConfiguration(before); }

    /// As if its maker were among those whom the system trusts.
    void givenTheCertificateIsTrusted() const {
        auto configuration = before;
        configuration.addCaCertificate(own);
        QSslConfiguration::setDefaultConfiguration(configuration);
    }

    [[nodiscard]] HttpRequest request(std::size_t bodyBytes, const std::string& host = "localhost") const {
        HttpRequest request;
        request.url = "https://" + host + ":" + std::to_string(server.serverPort()) + "/v1/path";
        request.headers = {{"x-api-key", "made-up-key"}};
        request.body.assign(bodyBytes, 'b');
        request.timeout = 15s;
        return request;
    }

    void serve() {
        auto* socket = server.nextPendingConnection();
        ++connections;
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            received += socket->readAll().toStdString();
            const auto head = received.find("\r\n\r\n");
            if (hasAnswered || head == std::string::npos || received.size() < head + 4 + awaitedBodyBytes)
                return;
            hasAnswered = true;
            socket->write(QByteArray::fromStdString(answer));
            socket->flush();
            socket->disconnectFromHost();
        });
    }

    TemporaryFolder folder;
    QSslConfiguration before = QSslConfiguration::defaultConfiguration();
    QSslCertificate own;
    QSslServer server;
    std::string answer = "HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\nsecret";
    std::size_t awaitedBodyBytes = 0;
    std::string received;
    int connections = 0;
    bool hasAnswered = false;
};

} // namespace

TEST_F(HttpOverTls, aRequestOfManyMegabytesArrivesWholeAndIsAnswered) {
    givenTheCertificateIsTrusted();
    awaitedBodyBytes = 5'000'000;
    const auto got = runToEnd(NetworkHttpClient().send(request(awaitedBodyBytes)));
    EXPECT_EQ(got.failure, "");
    EXPECT_EQ(got.status, 200);
    EXPECT_EQ(got.body, "secret");
    EXPECT_EQ(connections, 1);
    EXPECT_THAT(received, testing::StartsWith("POST /v1/path HTTP/1.1\r\nHost: localhost:"));
    EXPECT_EQ(received.size(), received.find("\r\n\r\n") + 4 + awaitedBodyBytes);
}

TEST_F(HttpOverTls, anAnswerBeforeTheBodyHasBeenSentIsTheAnswer) {
    givenTheCertificateIsTrusted();
    answer = "HTTP/1.1 401 Unauthorized\r\nContent-Length: 9\r\n\r\nwrong key";
    const auto got = runToEnd(NetworkHttpClient().send(request(30'000'000)));
    EXPECT_EQ(got.failure, "");
    EXPECT_EQ(got.status, 401);
    EXPECT_EQ(got.body, "wrong key");
    EXPECT_EQ(connections, 1);
}

TEST_F(HttpOverTls, aServerWhoseCertificateNobodyVouchesForGetsNoKey) {
    const auto got = runToEnd(NetworkHttpClient().send(request(10)));
    EXPECT_THAT(got.failure, testing::HasSubstr("certificate"));
    EXPECT_EQ(got.status, 0);
    runEventLoop(100ms);
    EXPECT_EQ(received, "");
}

TEST_F(HttpOverTls, aCertificateOfAnotherNameIsRefused) {
    givenTheCertificateIsTrusted();
    const auto got = runToEnd(NetworkHttpClient().send(request(10, "127.0.0.1")));
    EXPECT_THAT(got.failure, testing::HasSubstr("certificate"));
    runEventLoop(100ms);
    EXPECT_EQ(received, "");
}
