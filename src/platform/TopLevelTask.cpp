#include "platform/TopLevelTask.h"

#include <QDebug>
#include <QTimer>
#include <exception>
#include <string>
#include <utility>

namespace zuvo {

namespace {

QCoro::Task<void> watch(std::string name, std::function<QCoro::Task<void>()> start) {
    std::string failure;
    try {
        co_await start();
        co_return;
    } catch (const std::exception& error) {
        failure = error.what();
    } catch (...) {
        failure = "no exception of a known kind";
    }
    qCritical("The task %s failed: %s", name.c_str(), failure.c_str());
}

} // namespace

void startTopLevelTask(QObject* owner, const char* name, std::function<QCoro::Task<void>()> start) {
    QTimer::singleShot(0, owner, [name = std::string(name), start = std::move(start)] { watch(name, start); });
}

} // namespace zuvo
