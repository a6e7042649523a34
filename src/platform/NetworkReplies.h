#pragma once

#include <QNetworkReply>
#include <string>

namespace zuvo {

// What has become of a reply that has finished.

/// Whether what came is a whole HTTP answer, of whatever status, and not one broken off.
[[nodiscard]] bool isWholeAnswer(const QNetworkReply& reply);

/// Why there is no whole answer, in words; never empty. An abort counts as a time-out: whoever aborts for another
/// reason does not ask.
[[nodiscard]] std::string replyFailure(const QNetworkReply& reply);

} // namespace zuvo
