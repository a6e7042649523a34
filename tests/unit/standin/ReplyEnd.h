#pragma once

#include <QEventLoop>
#include <QNetworkReply>
#include <QTimer>
#include <chrono>
#include <gtest/gtest.h>

namespace zuvo::standin::test {

/// A test that waits longer has failed.
inline constexpr std::chrono::milliseconds patience = std::chrono::seconds(30);

/// Waits until the reply has finished, well or not.
inline void waitForEnd(QNetworkReply& reply) {
    QEventLoop loop;
    QObject::connect(&reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(patience, &loop, [&] {
        ADD_FAILURE() << "no end of the request";
        reply.abort();
    });
    if (!reply.isFinished())
        loop.exec();
}

} // namespace zuvo::standin::test
