#pragma once

#include <QProcessEnvironment>
#include <optional>
#include <string>

namespace zuvo {

/// The environment of every child process: the program's own, without the keys of the model services.
[[nodiscard]] QProcessEnvironment childEnvironment();

/// A variable that the program was started with; nothing if it is not set. Knows the keys after `withdrawKeys` too.
[[nodiscard]] std::optional<std::string> startVariable(const std::string& name);

/// Takes the keys out of the program's own environment, so that no child gets them that a library starts by itself (a
/// browser, a scanner of sound plugins). Called by a program before anything else runs; `startVariable` keeps them.
void withdrawKeys();

} // namespace zuvo
