#pragma once

#include <QPalette>

class QQmlEngine;

namespace zuvo {

/// The theme's colours as Qt's own controls ask for them: the pages set theirs by name, but the file dialog that stands
/// in where a desktop has none does not. The engine must know the pages.
[[nodiscard]] QPalette paletteOfTheme(QQmlEngine& engine);

} // namespace zuvo
