#include "model/Style.h"

#include <algorithm>

namespace zuvo {

constexpr std::array<SliderDefinition, 6> SLIDER_DEFINITIONS = {{
    {"pace", "Pace", "Meditative", "High Energy", &StyleSliders::pace},
    {"structure", "Structure", "Freeform", "Rigid", &StyleSliders::structure},
    {"emotion", "Emotion", "Reserved", "Raw", &StyleSliders::emotion},
    {"length", "Length", "Tight Cut", "Extended", &StyleSliders::length},
    {"boldness", "Boldness", "Conservative", "Bold", &StyleSliders::boldness},
    {"silence", "Silence", "Fill", "Breathe", &StyleSliders::silence},
}};

constexpr std::array<StylePreset, 8> STYLE_PRESETS = {{
    {"cinema-verite",
     "Cinéma Vérité",
     "Observational, long takes, raw emotion",
     "eye",
     {0.2, 0.15, 0.8, 0.8, 0.4, 0.85}},
    {"corporate", "Corporate", "Tight, message-driven, clear arc", "briefcase", {0.7, 0.9, 0.3, 0.25, 0.1, 0.2}},
    {"roamwell",
     "Roamwell",
     "Experiential, curious, builds to intimacy",
     "fork.knife",
     {0.4, 0.6, 0.7, 0.65, 0.5, 0.6}},
    {"campfire", "Campfire", "Meditative, slow burn, poetic", "flame", {0.15, 0.3, 0.6, 0.9, 0.2, 0.9}},
    {"sizzle", "Sizzle", "Fast, high energy, best moments", "bolt", {0.95, 0.7, 0.85, 0.1, 0.7, 0.05}},
    {"essay",
     "Essay Film",
     "Intellectual, layered, thesis-driven",
     "text.book.closed",
     {0.35, 0.75, 0.4, 0.7, 0.6, 0.5}},
    {"outdoor", "Outdoor", "Energetic but grounded, sense of place", "mountain.2", {0.55, 0.5, 0.6, 0.5, 0.4, 0.7}},
    {"portrait",
     "Portrait",
     "Character-first, intimate deep dive",
     "person.crop.circle",
     {0.3, 0.45, 0.75, 0.7, 0.3, 0.65}},
}};

constexpr std::array<Language, 13> LANGUAGES = {{
    {"auto", "Auto-detect"},
    {"en", "English"},
    {"es", "Spanish"},
    {"fr", "French"},
    {"de", "German"},
    {"pt", "Portuguese"},
    {"it", "Italian"},
    {"ja", "Japanese"},
    {"zh", "Chinese"},
    {"ko", "Korean"},
    {"ar", "Arabic"},
    {"ru", "Russian"},
    {"hi", "Hindi"},
}};

const StylePreset* findPreset(std::string_view id) {
    const auto* const found = std::find_if(STYLE_PRESETS.begin(), STYLE_PRESETS.end(),
                                           [id](const StylePreset& preset) { return preset.id == id; });
    return found == STYLE_PRESETS.end() ? nullptr : found;
}

} // namespace zuvo
