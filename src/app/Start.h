#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <string>

namespace zuvo {

/// What the command line asks for. The application takes nothing but one URL of its own scheme.
struct StartArguments {
    std::optional<std::string> url; ///< to be opened, if one was given
    QString refusal;                ///< why it cannot start so; empty if it can
};

/// `arguments` without the program's name.
[[nodiscard]] StartArguments parseStartArguments(const QStringList& arguments);

} // namespace zuvo
