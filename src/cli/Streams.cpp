#include "cli/Streams.h"

#include "base/Text.h"

#include <cstdio>
#include <unistd.h>

namespace zuvo {

void print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void printPath(const std::string& path) {
    print((::isatty(STDOUT_FILENO) == 1 ? harmlessText(path) : path) + "\n");
}

void tell(const std::string& text) {
    std::fputs((withoutControlCharacters(text) + "\n").c_str(), stderr);
}

ExitStatus failWith(const std::string& message) {
    tell("zuvo: " + message);
    return ExitStatus::failed;
}

} // namespace zuvo
