#pragma once

#include <QCoroTask>
#include <optional>
#include <string>

namespace zuvo {

/// What went wrong in `task`, in the words of what it threw; nothing if it ended well.
QCoro::Task<std::optional<std::string>> failureOf(QCoro::Task<> task);

} // namespace zuvo
