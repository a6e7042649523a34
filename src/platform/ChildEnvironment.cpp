#include "platform/ChildEnvironment.h"

#include <QString>
#include <array>
#include <cstdlib>
#include <map>

namespace zuvo {

namespace {

constexpr std::array secretVariables = {"OPENAI_API_KEY", "ANTHROPIC_API_KEY"};

/// What `withdrawKeys` has taken, by name.
std::map<std::string, std::string>& withdrawn() {
    static std::map<std::string, std::string> keys;
    return keys;
}

} // namespace

QProcessEnvironment childEnvironment() {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : secretVariables)
        environment.remove(QString::fromLatin1(name));
    return environment;
}

std::optional<std::string> startVariable(const std::string& name) {
    if (const char* value = std::getenv(name.c_str()))
        return std::string(value);
    const auto key = withdrawn().find(name);
    if (key == withdrawn().end())
        return std::nullopt;
    return key->second;
}

void withdrawKeys() {
    for (const char* name : secretVariables) {
        const char* value = std::getenv(name);
        if (value == nullptr)
            continue;
        withdrawn()[name] = value;
        ::unsetenv(name);
    }
}

} // namespace zuvo
