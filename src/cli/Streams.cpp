#include "cli/Streams.h"

#include "base/Text.h"

#include <cstdio>

namespace zuvo {

void print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void tell(const std::string& text) {
    std::fputs((withoutControlCharacters(text) + "\n").c_str(), stderr);
}

ExitStatus failWith(const std::string& message) {
    tell("zuvo: " + message);
    return ExitStatus::failed;
}

} // namespace zuvo
