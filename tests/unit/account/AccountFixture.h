#pragma once

#include "account/APIClient.h"
#include "fakes/CoroutineTest.h"
#include "fakes/KeptDesktop.h"
#include "fakes/RawServer.h"
#include "fakes/TemporaryFolder.h"
#include "platform/ServiceAddresses.h"

#include <QPointer>
#include <QTcpSocket>
#include <chrono>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zuvo::tests {

/// What would be sent a second time, or told late, has been by then.
inline constexpr std::chrono::milliseconds aWhile{200};

inline const std::string adaAsJson =
    R"({"id":"u1","name":"Ada","email":"ada@example.com","credits":42,"plan":"Studio"})";
inline const std::string bobAsJson = R"({"id":"u2","name":"Bob","email":"bob@example.com","credits":7,"plan":"Free"})";

/// An answer that the test gives when it wants to.
class HeldAnswer {
public:
    /// What the server does: it keeps the connection. The plan must not outlive this object.
    [[nodiscard]] Behaviour hold() {
        return [this](QTcpSocket& socket) { m_socket = &socket; };
    }

    void give(const std::string& bytes) const {
        ASSERT_FALSE(m_socket.isNull()) << "no request has come that could be answered";
        m_socket->write(bytes.data(), static_cast<qint64>(bytes.size()));
    }

private:
    QPointer<QTcpSocket> m_socket;
};

/// The addresses that ZUVO_SERVICE_URL stands for.
inline AccountAddresses addressesAt(const std::string& serviceUrl) {
    Environment environment;
    environment.variable = [serviceUrl](const std::string& name) -> std::optional<std::string> {
        return name == "ZUVO_SERVICE_URL" ? std::optional(serviceUrl) : std::nullopt;
    };
    return accountAddresses(environment);
}

/// A home folder and an account service of the test's own.
class AccountTest : public testing::Test {
protected:
    void TearDown() override {
        EXPECT_THAT(desktop->files, testing::IsEmpty()) << "the account opens web addresses alone";
        EXPECT_THAT(desktop->revealed, testing::IsEmpty());
    }

    [[nodiscard]] APIClient client(std::chrono::milliseconds timeout = std::chrono::seconds(15)) const {
        return {http, addressesAt(server.url()), timeout};
    }

    /// Of a service that has gone: nobody listens at that port any more.
    [[nodiscard]] APIClient clientWithoutService() const {
        const RawServer gone;
        return {http, addressesAt(gone.url()), std::chrono::seconds(15)};
    }

    /// Of an address that is refused.
    [[nodiscard]] APIClient refusedClient() const { return {http, addressesAt("http://service.example")}; }

    [[nodiscard]] std::size_t requestCount() const { return server.requests().size(); }

    [[nodiscard]] bool waitForRequests(std::size_t count) const {
        return waitUntil([this, count] { return requestCount() >= count; });
    }

    TemporaryFolder home;
    HeldAnswer held;
    RawServer server;
    std::shared_ptr<NetworkHttpClient> http = std::make_shared<NetworkHttpClient>();
    std::shared_ptr<KeptDesktop> desktop = std::make_shared<KeptDesktop>();
    std::string tokenFile = home / ".zuvo/token.json";
};

/// "" if the task ended well, else what its APIError says.
template <class Error, class Result>
std::string failureOf(QCoro::Task<Result> task) {
    try {
        (void)runToEnd(std::move(task));
    } catch (const Error& error) {
        return error.errorDescription();
    }
    return {};
}

} // namespace zuvo::tests
