#pragma once

#include "model/Style.h"

#include <optional>
#include <string>

namespace zuvo {

/// The short text about style that goes into the story instruction. In magic mode sliders and preset are not read; an
/// unknown preset adds nothing; director's notes go with every mode. No line end at its end.
[[nodiscard]] std::string buildStylePrompt(const StyleSliders& sliders, const std::optional<std::string>& presetId,
                                           bool isMagicMode, const std::string& directorNotes);

} // namespace zuvo
