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

    /// The file's size as the rows show it, in decimal units; "0 B" for a file that is not there.
    [[nodiscard]] QString formattedSize() const;

    /// 999 gives "999 B", 1000 "1 KB", 730900000 "730.9 MB", 18400000000 "18.4 GB".
    [[nodiscard]] static QString formattedSize(double bytes);
};

} // namespace zuvo
