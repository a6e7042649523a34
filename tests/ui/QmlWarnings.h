#pragma once

namespace zuvo::tests {

/// From now on a test during which a page warns of anything (an undefined value, a binding loop, a missing item) fails.
/// Called once, before the tests run.
void failOnQmlWarnings();

} // namespace zuvo::tests
