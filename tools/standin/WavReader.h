#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace zuvo::standin {

/// Sound with one channel; samples lie within -1 to 1.
struct Sound {
    int sampleRate = 0;
    std::vector<float> samples;

    [[nodiscard]] double duration() const {
        return sampleRate > 0 ? static_cast<double>(samples.size()) / sampleRate : 0.0;
    }
};

/// A RIFF WAVE file as sound; several channels are averaged into one.
///
///     "RIFF" size "WAVE" { id size data [pad to even] }      with a "fmt " chunk before the "data" chunk
///
/// Integer samples of 8, 16, 24 or 32 bits and floats of 32 bits are read. A data size that is larger than what is
/// there, as writers to a pipe leave it, means "to the end". Nothing for anything else.
[[nodiscard]] std::optional<Sound> readWav(std::string_view bytes);

} // namespace zuvo::standin
