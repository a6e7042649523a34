#include "platform/Clock.h"

#include <QLocale>

namespace zuvo {

std::string defaultDateText(const QDateTime& date) {
    return QLocale::c().toString(date.toUTC(), QStringLiteral("yyyy-MM-dd HH:mm:ss +0000")).toStdString();
}

std::string shortTimeText(const QDateTime& date) {
    return QLocale::c().toString(date.toLocalTime(), QStringLiteral("h:mm AP")).toStdString();
}

double secondsSince1970(const QDateTime& date) {
    constexpr double millisecondsPerSecond = 1000.0;
    return static_cast<double>(date.toMSecsSinceEpoch()) / millisecondsPerSecond;
}

} // namespace zuvo
