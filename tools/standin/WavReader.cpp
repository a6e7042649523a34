#include "standin/WavReader.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace zuvo::standin {
namespace {

constexpr unsigned formatInteger = 1;
constexpr unsigned formatFloat = 3;
constexpr unsigned formatExtensible = 0xFFFE; // the real format stands in the first two bytes of the sub-format
constexpr std::size_t subFormatOffset = 24;
constexpr unsigned largestSampleRate = 768000;

struct Format {
    unsigned kind = 0;
    unsigned channels = 0;
    unsigned sampleRate = 0;
    unsigned bits = 0;
};

unsigned byteAt(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

unsigned word16(std::string_view bytes, std::size_t at) {
    return byteAt(bytes, at) | byteAt(bytes, at + 1) << 8U;
}

unsigned word32(std::string_view bytes, std::size_t at) {
    return word16(bytes, at) | word16(bytes, at + 2) << 16U;
}

std::optional<Format> readFormat(std::string_view chunk) {
    if (chunk.size() < 16)
        return std::nullopt;
    Format format{word16(chunk, 0), word16(chunk, 2), word32(chunk, 4), word16(chunk, 14)};
    if (format.kind == formatExtensible) {
        if (chunk.size() < subFormatOffset + 2)
            return std::nullopt;
        format.kind = word16(chunk, subFormatOffset);
    }
    const bool integers = format.kind == formatInteger &&
                          (format.bits == 8 || format.bits == 16 || format.bits == 24 || format.bits == 32);
    const bool floats = format.kind == formatFloat && format.bits == 32;
    const bool sane = format.channels > 0 && format.sampleRate > 0 && format.sampleRate <= largestSampleRate;
    return sane && (integers || floats) ? std::optional(format) : std::nullopt;
}

float sampleAt(std::string_view data, std::size_t at, const Format& format) {
    if (format.kind == formatFloat) {
        const float value = std::bit_cast<float>(static_cast<std::uint32_t>(word32(data, at)));
        return std::isnan(value) ? 0.0F : std::clamp(value, -1.0F, 1.0F);
    }
    if (format.bits == 8)
        return (static_cast<float>(byteAt(data, at)) - 128.0F) / 128.0F;
    std::uint32_t leftAligned = 0;
    for (unsigned index = 0; index < format.bits / 8; ++index)
        leftAligned |= static_cast<std::uint32_t>(byteAt(data, at + index)) << (32 - format.bits + 8 * index);
    return static_cast<float>(static_cast<std::int32_t>(leftAligned)) / 2147483648.0F;
}

Sound readSamples(std::string_view data, const Format& format) {
    const std::size_t width = format.bits / 8;
    const std::size_t frame = width * format.channels;
    Sound sound;
    sound.sampleRate = static_cast<int>(format.sampleRate);
    sound.samples.reserve(data.size() / frame);
    for (std::size_t at = 0; at + frame <= data.size(); at += frame) {
        float sum = 0.0F;
        for (std::size_t channel = 0; channel < format.channels; ++channel)
            sum += sampleAt(data, at + channel * width, format);
        sound.samples.push_back(sum / static_cast<float>(format.channels));
    }
    return sound;
}

} // namespace

std::optional<Sound> readWav(std::string_view bytes) {
    constexpr std::size_t chunkHeader = 8;
    if (bytes.size() < 12 || bytes.substr(0, 4) != "RIFF" || bytes.substr(8, 4) != "WAVE")
        return std::nullopt;
    std::optional<Format> format;
    std::size_t at = 12;
    while (bytes.size() - at >= chunkHeader) {
        const std::string_view id = bytes.substr(at, 4);
        const std::size_t stated = word32(bytes, at + 4);
        at += chunkHeader;
        const std::size_t size = std::min(stated, bytes.size() - at);
        const std::string_view chunk = bytes.substr(at, size);
        if (id == "fmt ") {
            format = readFormat(chunk);
            if (!format)
                return std::nullopt;
        } else if (id == "data") {
            return format ? std::optional(readSamples(chunk, *format)) : std::nullopt;
        }
        at = std::min(at + size + size % 2, bytes.size());
    }
    return std::nullopt;
}

} // namespace zuvo::standin
