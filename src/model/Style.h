#pragma once

#include "base/Fields.h"

#include <array>
#include <string_view>

namespace zuvo {

/// How the story is to feel, each from 0.0 to 1.0.
struct StyleSliders {
    double pace = 0.5;
    double structure = 0.5;
    double emotion = 0.5;
    double length = 0.5;
    double boldness = 0.3; ///< on the boundary between low and middle, and counts as middle
    double silence = 0.5;

    bool operator==(const StyleSliders&) const = default;

    static constexpr auto fields() {
        using S = StyleSliders;
        return std::tuple(Field{"pace", &S::pace}, Field{"structure", &S::structure}, Field{"emotion", &S::emotion},
                          Field{"length", &S::length}, Field{"boldness", &S::boldness}, Field{"silence", &S::silence});
    }
};

/// One slider as the pages show it.
struct SliderDefinition {
    std::string_view id;
    std::string_view label;
    std::string_view low;  ///< caption of the low end
    std::string_view high; ///< caption of the high end
    double StyleSliders::*keyPath;
};

/// A named set of slider values. `icon` is a symbol name.
struct StylePreset {
    std::string_view id;
    std::string_view name;
    std::string_view description;
    std::string_view icon;
    StyleSliders sliders;
};

/// A source language that can be chosen. "auto" leaves the choice to the transcription service.
struct Language {
    std::string_view code;
    std::string_view name;
};

// In display order.
extern const std::array<SliderDefinition, 6> SLIDER_DEFINITIONS;
extern const std::array<StylePreset, 8> STYLE_PRESETS;
extern const std::array<Language, 13> LANGUAGES;

/// The preset with this id, or nullptr.
[[nodiscard]] const StylePreset* findPreset(std::string_view id);

} // namespace zuvo
