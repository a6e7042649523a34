#pragma once

#include "ui/WindowDriver.h"

#include <QAccessible>
#include <string>
#include <vector>

namespace zuvo::tests {

/// What a screen reader is told of one thing in the window.
struct Told {
    QAccessible::Role role;
    std::string name;
    std::string description;
    std::string value; ///< what a field holds or a slider stands at
    QAccessible::State state;
    int depth = 0; ///< in the tree; the window's is 0
    QObject* object = nullptr;
};

/// All that is told of what the window shows, from top to bottom.
[[nodiscard]] std::vector<Told> toldOf(WindowDriver& driver);

/// Whether something of that role is for the user to operate.
[[nodiscard]] bool isOperated(QAccessible::Role role);

/// Every control of the page is told with a role that says how it is operated, and with a name.
void expectAllNamed(WindowDriver& driver);

/// The tree as text for a person to read: a line for each thing, indented by its depth.
[[nodiscard]] std::string asText(const std::vector<Told>& told);

} // namespace zuvo::tests
