#pragma once

#include <string>
#include <vector>

namespace zuvo::standin {

/// A spoken word; seconds from the start of the audio, end not included. The word carries its punctuation.
struct HeardWord {
    std::string word;
    double start = 0.0;
    double end = 0.0;
};

/// A line of speech: its words and the span from the first to the last.
struct HeardLine {
    double start = 0.0;
    double end = 0.0;
    std::string text;
    std::vector<HeardWord> words;
};

} // namespace zuvo::standin
