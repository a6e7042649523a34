#include "platform/Proxies.h"

#include <QNetworkProxyFactory>
#include <QNetworkProxyQuery>

namespace zuvo {

namespace {

/// Whether the proxy passes the bytes of a connection on as they are, so that TLS reaches from end to end.
bool tunnels(const QNetworkProxy& proxy) {
    return proxy.type() == QNetworkProxy::NoProxy || proxy.type() == QNetworkProxy::HttpProxy ||
           proxy.type() == QNetworkProxy::Socks5Proxy;
}

} // namespace

QNetworkProxy proxyFor(const QUrl& url) {
    if (url.scheme() != QLatin1String("https"))
        return QNetworkProxy::NoProxy;
    const auto named = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url));
    for (const auto& proxy : named) {
        if (tunnels(proxy))
            return proxy;
    }
    return QNetworkProxy::NoProxy;
}

} // namespace zuvo
