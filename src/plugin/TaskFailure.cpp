#include "plugin/TaskFailure.h"

#include <exception>

namespace zuvo {

QCoro::Task<std::optional<std::string>> failureOf(QCoro::Task<> task) {
    std::optional<std::string> failure;
    try {
        co_await std::move(task);
    } catch (const std::exception& error) {
        failure = error.what();
    }
    co_return failure;
}

} // namespace zuvo
