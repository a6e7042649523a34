#include "ui/FootageFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace zuvo {

QUrl FootageFolder::url() const {
    for (const auto& folder : {m_last, QStandardPaths::writableLocation(QStandardPaths::MoviesLocation)}) {
        if (!folder.isEmpty() && QFileInfo(folder).isDir())
            return QUrl::fromLocalFile(folder);
    }
    return QUrl::fromLocalFile(QDir::homePath());
}

void FootageFolder::remember(const QList<QUrl>& files) {
    if (!files.isEmpty() && files.constFirst().isLocalFile())
        m_last = QFileInfo(files.constFirst().toLocalFile()).path();
}

} // namespace zuvo
