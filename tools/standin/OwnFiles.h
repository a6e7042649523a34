#pragma once

#include <QString>

namespace zuvo::standin {

/// The stand-in's own files: of an installed program "../share/zuvo-manager/sample" and ".../standin" beside it, of one
/// in its build folder those of the sources and of the build.
[[nodiscard]] QString ownSampleFolder();
[[nodiscard]] QString ownPluginArchive();

} // namespace zuvo::standin
