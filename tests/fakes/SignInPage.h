#pragma once

#include "fakes/CoroutineTest.h"
#include "platform/Http.h"

#include <chrono>
#include <string>
#include <utility>

namespace zuvo::tests {

/// The link behind the one button of the page at `url`, as a browser gets it: the service's sign-in page, which leads
/// back to the program. Empty if there is no such page or link.
inline std::string linkOfSignInPage(std::string url) {
    NetworkHttpClient browser;
    HttpRequest request;
    request.url = std::move(url);
    request.method = "GET";
    request.timeout = std::chrono::seconds(15);
    const auto page = runToEnd(browser.send(request));
    const std::string start = "href=\"";
    const auto from = page.body.find(start);
    if (from == std::string::npos)
        return {};
    const auto link = page.body.substr(from + start.size());
    return link.substr(0, link.find('"'));
}

} // namespace zuvo::tests
