#pragma once

#include "account/AuthManager.h"
#include "fakes/CoroutineTest.h"
#include "fakes/KeptDesktop.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/pipeline/FakeTools.h"

#include <QSignalSpy>
#include <gmock/gmock.h>
#include <memory>
#include <string>

namespace zuvo::tests {

/// An account service that answers as planned, and a home folder of the test's own.
class AccountPageTest : public testing::Test {
protected:
    AccountPageTest() { newManager(); }

    void newManager() { manager = std::make_shared<AuthManager>(client(), desktop, tokenFile); }

    [[nodiscard]] APIClient client() const {
        AccountAddresses addresses;
        addresses.baseURL = "https://service.test/api/v1";
        addresses.authURL = "https://service.test/plugin-auth";
        addresses.billingURL = "https://service.test/billing";
        return {services, addresses};
    }

    [[nodiscard]] static std::string userAsJson(const std::string& name, const std::string& plan = "Studio",
                                                const std::string& credits = "42") {
        return R"({"id":"u1","name":")" + name + R"(","email":"ada@example.com","credits":)" + credits +
               R"(,"plan":")" + plan + R"("})";
    }

    void givenSignedIn(const std::string& user) {
        services->then(200, user);
        runToEnd(manager->signInWithToken("zuvo_token"));
        ASSERT_TRUE(manager->isSignedIn());
        services->requests.clear();
    }

    static void turn() { runEventLoop(std::chrono::milliseconds(20)); }

    [[nodiscard]] bool waitForCalls(std::size_t count) const {
        return waitUntil([this, count] { return calls->count() >= count; });
    }

    TemporaryFolder disk;
    std::string tokenFile = disk / "home/.zuvo/token.json";
    std::shared_ptr<CallCounter> calls = std::make_shared<CallCounter>();
    std::shared_ptr<FakeHttpClient> services = std::make_shared<FakeHttpClient>(calls);
    std::shared_ptr<KeptDesktop> desktop = std::make_shared<KeptDesktop>();
    std::shared_ptr<AuthManager> manager;
};

} // namespace zuvo::tests
