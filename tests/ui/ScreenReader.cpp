#include "ui/ScreenReader.h"

#include <QMetaEnum>
#include <QQuickItem>
#include <algorithm>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <utility>

namespace zuvo::tests {

namespace {

void collect(QAccessibleInterface* interface, int depth, std::vector<Told>& told) {
    if (interface == nullptr || !interface->isValid() || interface->state().invisible)
        return;
    const auto words = [interface](QAccessible::Text which) { return interface->text(which).toStdString(); };
    auto value = words(QAccessible::Value);
    if (auto* const number = interface->valueInterface())
        value = number->currentValue().toString().toStdString();
    told.push_back({interface->role(), words(QAccessible::Name), words(QAccessible::Description), std::move(value),
                    interface->state(), depth, interface->object()});
    for (int i = 0; i < interface->childCount(); ++i)
        collect(interface->child(i), depth + 1, told);
}

std::string statesOf(const QAccessible::State& state) {
    std::string words;
    const std::pair<bool, const char*> all[] = {{state.disabled, "disabled"}, {state.focused, "has the keyboard"},
                                                {state.selected, "selected"}, {state.checked, "checked"},
                                                {state.expanded, "open"},     {state.passwordEdit, "hidden"},
                                                {state.readOnly, "read only"}};
    for (const auto& [holds, word] : all)
        words += holds ? std::string(words.empty() ? "" : ", ") + word : "";
    return words.empty() ? "" : " (" + words + ")";
}

} // namespace

std::vector<Told> toldOf(WindowDriver& driver) {
    QAccessible::setActive(true);
    std::vector<Told> told;
    collect(QAccessible::queryAccessibleInterface(&driver.window()), 0, told);
    return told;
}

bool isOperated(QAccessible::Role role) {
    switch (role) {
    case QAccessible::Button:
    case QAccessible::PageTab:
    case QAccessible::EditableText:
    case QAccessible::CheckBox:
    case QAccessible::RadioButton:
    case QAccessible::ComboBox:
    case QAccessible::Slider:
    case QAccessible::Link:
        return true;
    default:
        return false;
    }
}

void expectAllNamed(WindowDriver& driver) {
    const auto told = toldOf(driver);
    ASSERT_GT(told.size(), 1U) << "nothing is told";
    for (const auto& each : told) {
        const auto what = each.object == nullptr ? "" : each.object->metaObject()->className();
        EXPECT_NE(each.role, QAccessible::NoRole) << what << " " << each.name;
        if (isOperated(each.role) || each.state.focusable) {
            EXPECT_NE(each.name, "") << what << " has no name";
        }
    }
    for (auto* item : driver.shownItems()) {
        if (!item->inherits("QQuickAbstractButton") && !item->inherits("QQuickTextField"))
            continue;
        const auto isIt = [item](const Told& each) {
            return each.object == item && (isOperated(each.role) || each.role == QAccessible::ListItem);
        };
        EXPECT_TRUE(std::any_of(told.begin(), told.end(), isIt))
            << item->objectName().toStdString() << " is not told of";
    }
}

std::string asText(const std::vector<Told>& told) {
    constexpr std::size_t indent = 2;
    const auto roles = QMetaEnum::fromType<QAccessible::Role>();
    std::string text;
    for (const auto& each : told) {
        const auto* role = roles.valueToKey(each.role);
        text +=
            fmt::format("{}{} \"{}\"{}{}\n", std::string(static_cast<std::size_t>(each.depth) * indent, ' '),
                        role == nullptr ? "?" : role, each.name,
                        each.value.empty() || each.value == each.name ? "" : " = " + each.value, statesOf(each.state));
    }
    return text;
}

} // namespace zuvo::tests
