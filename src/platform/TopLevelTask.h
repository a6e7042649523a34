#pragma once

#include <QCoroTask>
#include <QObject>
#include <functional>

namespace zuvo {

/// Starts a task that nobody awaits, once the event loop turns, and not at all if `owner` is gone by then. A failure
/// that leaves the task ends in a line on standard error ("The task {name} failed: ..."). `start` is run and dropped:
/// what the task needs after its first wait must be its own.
void startTopLevelTask(QObject* owner, const char* name, std::function<QCoro::Task<void>()> start);

} // namespace zuvo
