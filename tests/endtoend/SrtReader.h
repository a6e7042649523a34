#pragma once

#include <optional>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace zuvo::endtoend {

struct Card {
    int number = 0;
    double start = 0.0; ///< seconds
    double end = 0.0;   ///< seconds
    std::string text;   ///< its lines joined by blanks
};

/// Reads SubRip as a player does: number, times, lines of text up to an empty line. Nothing if the text is not of this
/// form to its end.
inline std::optional<std::vector<Card>> readSrt(const std::string& text) {
    static const std::regex times(R"((\d\d):(\d\d):(\d\d),(\d\d\d) --> (\d\d):(\d\d):(\d\d),(\d\d\d))");
    std::vector<Card> cards;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (line.empty())
            continue;
        Card card;
        std::smatch match;
        if (line.find_first_not_of("0123456789") != std::string::npos)
            return std::nullopt;
        card.number = std::stoi(line);
        if (!std::getline(stream, line) || !std::regex_match(line, match, times))
            return std::nullopt;
        const auto seconds = [&match](std::size_t first) {
            return std::stoi(match[first]) * 3600 + std::stoi(match[first + 1]) * 60 + std::stoi(match[first + 2]) +
                   std::stoi(match[first + 3]) / 1000.0;
        };
        card.start = seconds(1);
        card.end = seconds(5);
        while (std::getline(stream, line) && !line.empty())
            card.text += (card.text.empty() ? "" : " ") + line;
        if (card.text.empty())
            return std::nullopt;
        cards.push_back(card);
    }
    return cards;
}

} // namespace zuvo::endtoend
