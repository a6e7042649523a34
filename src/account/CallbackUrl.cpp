#include "account/CallbackUrl.h"

#include <QLatin1String>
#include <QString>
#include <QUrl>
#include <QUrlQuery>
#include <string_view>

namespace zuvo {

namespace {

constexpr std::string_view schemeAndSlashes = "zuvo-manager://";
constexpr std::string_view callbackHost = "callback";

/// Whether scheme and host are written exactly so: once parsed, both are in small letters and without encoding.
bool isWrittenAsCallback(std::string_view url) {
    if (!url.starts_with(schemeAndSlashes))
        return false;
    url.remove_prefix(schemeAndSlashes.size());
    auto authority = url.substr(0, url.find_first_of("/?#"));
    authority.remove_prefix(authority.rfind('@') + 1); // npos + 1 is 0
    return authority.substr(0, authority.find(':')) == callbackHost;
}

} // namespace

std::optional<std::string> tokenOfCallbackUrl(const std::string& url) {
    if (!isWrittenAsCallback(url))
        return std::nullopt;
    const QUrl parsed(QString::fromStdString(url), QUrl::TolerantMode);
    if (!parsed.isValid() || parsed.host() != QLatin1String("callback"))
        return std::nullopt;
    const auto items = QUrlQuery(parsed).queryItems(QUrl::FullyDecoded);
    for (const auto& [name, value] : items) {
        if (name != QLatin1String("token"))
            continue;
        // Null without a "=", empty with nothing behind it.
        return value.isNull() ? std::nullopt : std::optional(value.toStdString());
    }
    return std::nullopt;
}

} // namespace zuvo
