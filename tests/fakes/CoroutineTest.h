#pragma once

#include <QCoreApplication>
#include <QCoroTask>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace zuvo::tests {

/// How long a test waits for anything before it fails.
inline constexpr std::chrono::seconds patience{20};

/// Runs the event loop for that long, so that what should not happen has had its time.
inline void runEventLoop(std::chrono::milliseconds duration) {
    QEventLoop loop;
    QTimer::singleShot(duration, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
    // What was to be deleted later while a click of a test was handled, no loop of ours being there, waits for this.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// Runs the event loop until `isSo` holds; false if it does not within the limit.
inline bool waitUntil(const std::function<bool()>& isSo, std::chrono::milliseconds limit = patience) {
    const auto end = std::chrono::steady_clock::now() + limit;
    constexpr std::chrono::milliseconds slice{2};
    while (!isSo()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        runEventLoop(slice);
    }
    return true;
}

namespace detail {

struct Nothing {};

template <typename T>
using Stored = std::conditional_t<std::is_void_v<T>, Nothing, T>;

template <typename T>
struct Ending {
    std::optional<Stored<T>> value;
    std::exception_ptr failure;

    [[nodiscard]] bool hasEnded() const { return value.has_value() || failure != nullptr; }
};

template <typename T>
QCoro::Task<void> drive(QCoro::Task<T> task, std::shared_ptr<Ending<T>> ending) {
    try {
        if constexpr (std::is_void_v<T>) {
            co_await task;
            ending->value.emplace();
        } else {
            ending->value.emplace(co_await task);
        }
    } catch (...) {
        ending->failure = std::current_exception();
    }
}

} // namespace detail

/// A task that runs while the test does other things; `result` waits for its end.
template <typename T>
class RunningTask {
public:
    explicit RunningTask(QCoro::Task<T> task) { detail::drive<T>(std::move(task), m_ending); }

    [[nodiscard]] bool hasEnded() const { return m_ending->hasEnded(); }

    /// What the task returned; what it threw is thrown here. Throws std::runtime_error if it has not ended within the
    /// limit; the task then stays as it is.
    T result(std::chrono::milliseconds limit = patience) {
        if (!waitUntil([this] { return m_ending->hasEnded(); }, limit))
            throw std::runtime_error("The task did not end within " + std::to_string(limit.count()) + " ms");
        if (m_ending->failure)
            std::rethrow_exception(m_ending->failure);
        if constexpr (!std::is_void_v<T>)
            return std::move(*m_ending->value);
    }

private:
    std::shared_ptr<detail::Ending<T>> m_ending = std::make_shared<detail::Ending<T>>();
};

/// Runs a task to its end: see `RunningTask::result`.
template <typename T>
T runToEnd(QCoro::Task<T> task, std::chrono::milliseconds limit = patience) {
    return RunningTask<T>(std::move(task)).result(limit);
}

} // namespace zuvo::tests
