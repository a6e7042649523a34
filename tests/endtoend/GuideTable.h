#pragma once

#include <map>
#include <string>
#include <vector>

namespace zuvo::endtoend {

/// A row of the user guide's table of troubles.
struct Trouble {
    std::string what;               ///< the first cell, by which the row is known
    std::vector<std::string> lines; ///< what the program writes then, each line without the white space before it
};

/// The rows under the heading "When it fails" of docs/user-guide.md, in the guide's order. Nothing else in the guide is
/// read.
[[nodiscard]] std::vector<Trouble> troublesOfTheGuide();

/// A line of the guide with what stands in braces filled in, such as "{file}" by talk.wav. A name that has no value
/// fails the test.
[[nodiscard]] std::string filledIn(std::string line, const std::map<std::string, std::string>& values);

} // namespace zuvo::endtoend
