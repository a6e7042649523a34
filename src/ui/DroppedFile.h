#pragma once

#include "model/Media.h"

#include <QString>
#include <QUrl>
#include <QUuid>
#include <optional>

namespace zuvo {

/// A media file that the user dropped or chose.
struct DroppedFile {
    QUuid id = QUuid::createUuid(); ///< by which the record is found again
    QUrl url;
    std::optional<ProbeResult> probeResult; ///< none until it arrives
    bool isProbing = true;                  ///< until the probe has returned

    [[nodiscard]] QString filename() const { return url.fileName(); }
};

} // namespace zuvo
