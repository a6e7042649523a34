#include "endtoend/GuideTable.h"

#include "endtoend/World.h"

#include <gmock/gmock.h>
#include <regex>

namespace zuvo::endtoend {
namespace {

/// The cells of "| a | b | c |" without the blanks around them.
std::vector<std::string> cellsOf(const std::string& row) {
    static const std::regex cell(R"(\|\s*([^|]*?)\s*(?=\|))");
    std::vector<std::string> cells;
    for (std::sregex_iterator found(row.begin(), row.end(), cell), end; found != end; ++found)
        cells.push_back((*found)[1]);
    return cells;
}

/// What stands in `back quotes`.
std::vector<std::string> quotedIn(const std::string& cell) {
    static const std::regex quoted("`([^`]*)`");
    std::vector<std::string> texts;
    for (std::sregex_iterator found(cell.begin(), cell.end(), quoted), end; found != end; ++found)
        texts.push_back((*found)[1]);
    return texts;
}

} // namespace

std::vector<Trouble> troublesOfTheGuide() {
    std::vector<Trouble> troubles;
    bool isUnderHeading = false;
    int rows = 0;
    for (const auto& line : linesOf(bytesOf(ZUVO_TEST_FOLDER "/../docs/user-guide.md"))) {
        if (line.starts_with("#"))
            isUnderHeading = line == "## When it fails";
        // The first two rows are the columns' names and the line below them.
        if (!isUnderHeading || !line.starts_with("|") || ++rows <= 2)
            continue;
        const auto cells = cellsOf(line);
        EXPECT_EQ(cells.size(), 3U) << line;
        EXPECT_FALSE(cells.at(2).empty()) << "what helps? " << line;
        troubles.push_back({cells.at(0), quotedIn(cells.at(1))});
    }
    return troubles;
}

std::string filledIn(std::string line, const std::map<std::string, std::string>& values) {
    std::string filled;
    std::size_t position = 0;
    for (auto open = line.find('{'); open != std::string::npos; open = line.find('{', position)) {
        const auto close = line.find('}', open);
        const auto name = line.substr(open + 1, close - open - 1);
        const auto value = values.find(name);
        EXPECT_NE(value, values.end()) << "no value for {" << name << "}";
        filled += line.substr(position, open - position) + (value == values.end() ? "?" : value->second);
        position = close + 1;
    }
    return filled + line.substr(position);
}

} // namespace zuvo::endtoend
