#include "platform/ServiceAddresses.h"

#include "base/Text.h"
#include "model/Constants.h"

#include <QHostAddress>
#include <QString>
#include <QUrl>
#include <array>

namespace zuvo {

namespace {

constexpr const char* transcriptionVariable = "OPENAI_BASE_URL";
constexpr const char* transcriptionDefault = "https://api.openai.com/v1";
constexpr const char* messagesVariable = "ANTHROPIC_BASE_URL";
constexpr const char* messagesDefault = "https://api.anthropic.com";
constexpr const char* accountVariable = "ZUVO_SERVICE_URL";
constexpr const char* accountDefault = "https://" ZUVO_SERVICE_HOST;

std::string withoutTrailingSlashes(std::string address) {
    while (address.ends_with('/'))
        address.pop_back();
    return address;
}

std::string baseAddress(const Environment& environment, const char* variable, const char* standard) {
    const auto set = trimWhiteSpace(environment.variable(variable).value_or(""));
    return withoutTrailingSlashes(set.empty() ? standard : set);
}

bool isPrivateAddress(const QHostAddress& address) {
    using Subnet = std::pair<QHostAddress, int>;
    static const std::array<Subnet, 7> privateNetworks = {
        QHostAddress::parseSubnet(QStringLiteral("127.0.0.0/8")),
        QHostAddress::parseSubnet(QStringLiteral("10.0.0.0/8")),
        QHostAddress::parseSubnet(QStringLiteral("172.16.0.0/12")),
        QHostAddress::parseSubnet(QStringLiteral("192.168.0.0/16")),
        QHostAddress::parseSubnet(QStringLiteral("169.254.0.0/16")),
        QHostAddress::parseSubnet(QStringLiteral("fc00::/7")),
        QHostAddress::parseSubnet(QStringLiteral("fe80::/10")),
    };
    if (address.isNull())
        return false;
    if (address == QHostAddress(QHostAddress::LocalHostIPv6))
        return true;
    for (const auto& network : privateNetworks) {
        if (address.protocol() == network.first.protocol() && address.isInSubnet(network))
            return true;
    }
    return false;
}

/// The host as it is written in a valid address without user and password.
std::string writtenHost(const std::string& base) {
    constexpr std::string_view slashes = "://";
    const auto start = base.find(slashes) + slashes.size();
    return base.substr(start, base.find_first_of(":/", start) - start);
}

/// The host is read from `base`. An IPv4 address must stand there as it is read: "127.1", "2130706433" and
/// "127.0.0.0b1" are 127.0.0.1 too, but nobody sees it.
bool isNearHost(const QString& host, const std::string& base) {
    if (host == QLatin1String("localhost"))
        return true;
    const QHostAddress address(host);
    const bool isPlain = address.protocol() != QAbstractSocket::IPv4Protocol || writtenHost(base) == host.toStdString();
    return isPlain && isPrivateAddress(address);
}

ServiceAddress serviceAddress(const std::string& base, const char* variable, const char* path) {
    auto refusal = refusalOfBaseAddress(base, variable);
    if (!refusal.empty())
        return {{}, std::move(refusal)};
    return {base + path, {}};
}

} // namespace

std::string refusalOfBaseAddress(const std::string& base, const std::string& variable) {
    const QUrl url(QString::fromStdString(base), QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty())
        return variable + " is no web address"; // not shown: it may hold a password
    if (url.authority().contains(QLatin1Char('@')) || url.hasQuery() || url.hasFragment())
        return variable + " must be scheme, host, port and path alone";
    if (url.scheme() == QLatin1String("https"))
        return {};
    if (url.scheme() == QLatin1String("http") && isNearHost(url.host(), base))
        return {};
    return variable + " must be https, or http to this machine or a private network: " + base;
}

bool isNearAddress(const std::string& url) {
    const QUrl parsed(QString::fromStdString(url), QUrl::StrictMode);
    return parsed.isValid() && isNearHost(parsed.host(), url);
}

ServiceAddress transcriptionAddress(const Environment& environment) {
    const auto base = baseAddress(environment, transcriptionVariable, transcriptionDefault);
    return serviceAddress(base, transcriptionVariable, "/audio/transcriptions");
}

ServiceAddress messagesAddress(const Environment& environment) {
    auto base = baseAddress(environment, messagesVariable, messagesDefault);
    constexpr std::string_view version = "/v1";
    if (base.ends_with(version))
        base.resize(base.size() - version.size());
    return serviceAddress(withoutTrailingSlashes(base), messagesVariable, "/v1/messages");
}

AccountAddresses accountAddresses(const Environment& environment) {
    const auto base = baseAddress(environment, accountVariable, accountDefault);
    auto refusal = refusalOfBaseAddress(base, accountVariable);
    if (refusal.empty() && !QUrl(QString::fromStdString(base)).path().isEmpty())
        refusal = std::string(accountVariable) + " must be scheme, host and port alone";
    if (!refusal.empty())
        return {{}, {}, {}, std::move(refusal)};
    const auto moved = [&base](std::string_view built) {
        return base + std::string(built.substr(std::string_view(accountDefault).size()));
    };
    return {moved(Constants::API::baseURL), moved(Constants::API::authURL), moved(Constants::API::billingURL), {}};
}

} // namespace zuvo
