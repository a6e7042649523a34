#pragma once

#include <QNetworkProxy>
#include <QUrl>

namespace zuvo {

/// The proxy for a request to `url`. An http address is on this machine or its private network, and what is sent there
/// is not encrypted: it never goes through a proxy. An https address goes through the proxy that the system names
/// (HTTPS_PROXY and NO_PROXY, else the desktop's settings), which sees host and port alone.
[[nodiscard]] QNetworkProxy proxyFor(const QUrl& url);

} // namespace zuvo
