#pragma once

#include <QDateTime>
#include <functional>
#include <string>

namespace zuvo {

/// The present, as the program sees it. Tests stop it.
using Clock = std::function<QDateTime()>;

/// "yyyy-MM-dd HH:mm:ss +0000": the platform's default text form of a date.
[[nodiscard]] std::string defaultDateText(const QDateTime& date);

/// "h:mm AP" of the local time, whatever the desktop's language.
[[nodiscard]] std::string shortTimeText(const QDateTime& date);

/// Seconds since 1970, with milliseconds.
[[nodiscard]] double secondsSince1970(const QDateTime& date);

} // namespace zuvo
