#pragma once

#include "base/Fields.h"

#include <string>
#include <string_view>

namespace zuvo {

/// version.json in the folder of an installed plugin.
struct PluginVersionFile {
    std::string version;

    static constexpr auto fields() {
        using S = PluginVersionFile;
        return std::tuple(Field{"version", &S::version});
    }
};

/// Whether `version` is newer than `other`, number by number between the points; what is missing counts as 0. A piece
/// that is no integer as a whole is left out, so that a suffix takes its number along:
///
///     0.1.0-beta   0 1        0.1.0      0 1 0     neither is newer than the other
///     0.1.1        0 1 1      newer than 0.1.0-beta
///     1.x.3        1 3        newer than 1.2
///
/// An integer may have a sign; one that does not fit 64 bits is none.
[[nodiscard]] bool isNewerVersion(std::string_view version, std::string_view other);

} // namespace zuvo
