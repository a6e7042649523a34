// Which requests a proxy sees: none to an http address, since it would read the key; of one to an https address host
// and port alone.

#include "platform/Proxies.h"

#include "fakes/CoroutineTest.h"
#include "fakes/RawServer.h"
#include "fakes/TemporaryFolder.h"
#include "platform/Download.h"
#include "platform/Http.h"

#include <array>
#include <gmock/gmock.h>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr const char* key = "made-up-key-of-a-test";

/// Everywhere that a desktop or a shell names a proxy; their former values come back with the end of the test.
class ProxyVariables {
public:
    ProxyVariables() {
        for (const auto* name : names) {
            m_former.emplace_back(name, qEnvironmentVariableIsSet(name), qgetenv(name));
            qunsetenv(name);
        }
    }
    ~ProxyVariables() {
        for (const auto& [name, wasSet, value] : m_former) {
            if (wasSet)
                qputenv(name, value);
            else
                qunsetenv(name);
        }
    }
    ProxyVariables(const ProxyVariables&) = delete;
    ProxyVariables& operator=(const ProxyVariables&) = delete;

    static void set(const char* name, const std::string& value) { qputenv(name, QByteArray::fromStdString(value)); }

    static constexpr std::array names = {"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY",
                                         "all_proxy",  "ALL_PROXY",  "no_proxy",    "NO_PROXY"};

private:
    std::vector<std::tuple<const char*, bool, QByteArray>> m_former;
};

class Proxies : public testing::Test {
protected:
    Proxies() {
        proxy.thenAlways(answerAndClose(httpAnswer(502, "by way of the proxy")));
        server.thenAlways(answer(httpAnswer(200, "from the server")));
    }

    void givenProxyFor(const std::vector<const char*>& names) {
        for (const auto* name : names)
            ProxyVariables::set(name, proxy.url());
    }

    [[nodiscard]] HttpAnswer post(const std::string& url) {
        HttpRequest request{url, {{"x-api-key", key}}, "the sound of an interview", 5s};
        return runToEnd(client.send(std::move(request)));
    }

    [[nodiscard]] DownloadOutcome download(const std::string& url) {
        return runToEnd(downloader.fetch(url, disk / "file"));
    }

    ProxyVariables withoutProxies;
    TemporaryFolder disk;
    RawServer proxy;
    RawServer server;
    NetworkHttpClient client;
    NetworkDownloader downloader{DownloadLimits{1'000'000, 5s}};
};

} // namespace

TEST_F(Proxies, aRequestToAnHttpAddressGoesThroughNoProxy) {
    givenProxyFor({"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"});
    // 0.0.0.0 is this machine too, but no loopback address, which Qt would spare by itself.
    for (const auto& url : {server.url("/v1/messages"), "http://0.0.0.0:" + std::to_string(server.port()) + "/v1"}) {
        SCOPED_TRACE(url);
        const auto got = post(url);
        EXPECT_EQ(got.failure, "");
        EXPECT_EQ(got.body, "from the server");
    }
    EXPECT_EQ(proxy.connectionCount(), 0);
}

TEST_F(Proxies, aPrivateNetworkIsReachedThroughNoProxy) {
    givenProxyFor({"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"});
    for (const auto* url :
         {"http://10.0.0.1:8080/v1", "http://192.168.1.4/", "http://[fd00::1]:1/", "http://localhost/"})
        EXPECT_EQ(proxyFor(QUrl(QString::fromLatin1(url))).type(), QNetworkProxy::NoProxy) << url;
}

TEST_F(Proxies, aDownloadFromAnHttpAddressGoesThroughNoProxy) {
    givenProxyFor({"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"});
    EXPECT_EQ(download(server.url("/plugin.zip")).failure, "");
    EXPECT_EQ(disk.read("file"), "from the server");
    EXPECT_EQ(proxy.connectionCount(), 0);
}

TEST_F(Proxies, ofARequestToAnHttpsAddressTheProxySeesHostAndPortAlone) {
    for (const auto* variable : {"https_proxy", "HTTPS_PROXY"}) {
        SCOPED_TRACE(variable);
        const ProxyVariables fresh;
        givenProxyFor({variable});
        const auto before = proxy.requests().size();
        const auto got = post("https://service.invalid/v1/messages");
        EXPECT_TRUE(got.hasFailed());
        ASSERT_EQ(proxy.requests().size(), before + 1);
        const auto& seen = proxy.requests().back();
        EXPECT_EQ(seen.requestLine(), "CONNECT service.invalid:443 HTTP/1.1");
        EXPECT_THAT(seen.head + seen.body, Not(HasSubstr(key)));
        EXPECT_THAT(seen.head + seen.body, Not(HasSubstr("interview")));
    }
}

TEST_F(Proxies, aDownloadFromAnHttpsAddressGoesThroughTheProxyToo) {
    givenProxyFor({"HTTPS_PROXY", "https_proxy"});
    EXPECT_NE(download("https://service.invalid/plugin.zip").failure, "");
    ASSERT_FALSE(proxy.requests().empty());
    EXPECT_EQ(proxy.requests().front().requestLine(), "CONNECT service.invalid:443 HTTP/1.1");
}

TEST_F(Proxies, aProxyThatIsNotThereIsNamedInTheFailure) {
    std::string gone;
    {
        const RawServer closed;
        gone = "127.0.0.1:" + std::to_string(closed.port());
    }
    ProxyVariables::set("https_proxy", "http://" + gone);
    EXPECT_EQ(post("https://service.invalid/v1/messages").failure, "Proxy connection refused: " + gone);
}

TEST_F(Proxies, anHttpsAddressThatNeedsNoProxyGoesThroughNone) {
    givenProxyFor({"HTTPS_PROXY", "https_proxy"});
    for (const auto* variable : {"no_proxy", "NO_PROXY"})
        ProxyVariables::set(variable, "127.0.0.1,service.invalid");
    EXPECT_EQ(post("https://service.invalid/v1/messages").failure, "Host service.invalid not found");
    EXPECT_EQ(proxy.connectionCount(), 0);
}
