#include "model/Style.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

TEST(StyleSliders, defaultToTheMiddleWithBoldnessOnTheBoundary) {
    const StyleSliders sliders;
    EXPECT_EQ(sliders.pace, 0.5);
    EXPECT_EQ(sliders.structure, 0.5);
    EXPECT_EQ(sliders.emotion, 0.5);
    EXPECT_EQ(sliders.length, 0.5);
    EXPECT_EQ(sliders.boldness, 0.3);
    EXPECT_EQ(sliders.silence, 0.5);
}

TEST(StyleSliders, areEqualIfAllSixAre) {
    const StyleSliders sliders;
    EXPECT_EQ(sliders, StyleSliders());
    for (const auto& definition : SLIDER_DEFINITIONS) {
        StyleSliders other;
        other.*(definition.keyPath) = 0.9;
        EXPECT_NE(sliders, other) << definition.id;
    }
}

struct SliderRow {
    const char* id;
    const char* label;
    const char* low;
    const char* high;
    double StyleSliders::*field;
};

TEST(SliderDefinitions, areTheseInDisplayOrder) {
    const SliderRow rows[] = {
        {"pace", "Pace", "Meditative", "High Energy", &StyleSliders::pace},
        {"structure", "Structure", "Freeform", "Rigid", &StyleSliders::structure},
        {"emotion", "Emotion", "Reserved", "Raw", &StyleSliders::emotion},
        {"length", "Length", "Tight Cut", "Extended", &StyleSliders::length},
        {"boldness", "Boldness", "Conservative", "Bold", &StyleSliders::boldness},
        {"silence", "Silence", "Fill", "Breathe", &StyleSliders::silence},
    };
    ASSERT_EQ(std::size(rows), SLIDER_DEFINITIONS.size());
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const auto& definition = SLIDER_DEFINITIONS[i];
        EXPECT_EQ(definition.id, rows[i].id);
        EXPECT_EQ(definition.label, rows[i].label);
        EXPECT_EQ(definition.low, rows[i].low);
        EXPECT_EQ(definition.high, rows[i].high);
        EXPECT_EQ(definition.keyPath, rows[i].field);
    }
}

struct PresetRow {
    const char* id;
    const char* name;
    const char* description;
    const char* icon;
    double pace, structure, emotion, length, boldness, silence;
};

TEST(StylePresets, areTheseInDisplayOrder) {
    const PresetRow rows[] = {
        {"cinema-verite", "Cinéma Vérité", "Observational, long takes, raw emotion", "eye", 0.2, 0.15, 0.8, 0.8, 0.4,
         0.85},
        {"corporate", "Corporate", "Tight, message-driven, clear arc", "briefcase", 0.7, 0.9, 0.3, 0.25, 0.1, 0.2},
        {"roamwell", "Roamwell", "Experiential, curious, builds to intimacy", "fork.knife", 0.4, 0.6, 0.7, 0.65, 0.5,
         0.6},
        {"campfire", "Campfire", "Meditative, slow burn, poetic", "flame", 0.15, 0.3, 0.6, 0.9, 0.2, 0.9},
        {"sizzle", "Sizzle", "Fast, high energy, best moments", "bolt", 0.95, 0.7, 0.85, 0.1, 0.7, 0.05},
        {"essay", "Essay Film", "Intellectual, layered, thesis-driven", "text.book.closed", 0.35, 0.75, 0.4, 0.7, 0.6,
         0.5},
        {"outdoor", "Outdoor", "Energetic but grounded, sense of place", "mountain.2", 0.55, 0.5, 0.6, 0.5, 0.4, 0.7},
        {"portrait", "Portrait", "Character-first, intimate deep dive", "person.crop.circle", 0.3, 0.45, 0.75, 0.7, 0.3,
         0.65},
    };
    ASSERT_EQ(std::size(rows), STYLE_PRESETS.size());
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const auto& row = rows[i];
        const auto& preset = STYLE_PRESETS[i];
        EXPECT_EQ(preset.id, row.id);
        EXPECT_EQ(preset.name, row.name);
        EXPECT_EQ(preset.description, row.description);
        EXPECT_EQ(preset.icon, row.icon);
        const StyleSliders sliders{row.pace, row.structure, row.emotion, row.length, row.boldness, row.silence};
        EXPECT_EQ(preset.sliders, sliders) << row.id;
    }
}

TEST(StylePresets, areFoundByIdAlone) {
    for (const auto& preset : STYLE_PRESETS)
        EXPECT_EQ(findPreset(preset.id), &preset);
    EXPECT_EQ(findPreset("Campfire"), nullptr);
    EXPECT_EQ(findPreset(""), nullptr);
    EXPECT_EQ(findPreset("unknown-id"), nullptr);
}

TEST(Languages, areTheseInOrder) {
    const std::pair<const char*, const char*> rows[] = {
        {"auto", "Auto-detect"}, {"en", "English"}, {"es", "Spanish"},  {"fr", "French"},  {"de", "German"},
        {"pt", "Portuguese"},    {"it", "Italian"}, {"ja", "Japanese"}, {"zh", "Chinese"}, {"ko", "Korean"},
        {"ar", "Arabic"},        {"ru", "Russian"}, {"hi", "Hindi"},
    };
    ASSERT_EQ(std::size(rows), LANGUAGES.size());
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(LANGUAGES[i].code, rows[i].first);
        EXPECT_EQ(LANGUAGES[i].name, rows[i].second);
    }
}

} // namespace
} // namespace zuvo
