#include "standin/OwnFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace zuvo::standin {

namespace {

/// What is installed at that place below the programs' shared files; if it is not there, what was built.
QString installedElseBuilt(const QString& place, const QString& built) {
    const auto installed =
        QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/zuvo-manager/") + place);
    return QFileInfo::exists(installed) ? installed : built;
}

} // namespace

QString ownSampleFolder() {
    return installedElseBuilt(QStringLiteral("sample"), QStringLiteral(ZUVO_SAMPLE_FOLDER));
}

QString ownPluginArchive() {
    return installedElseBuilt(QStringLiteral("standin/zuvo-plugin.zip"), QStringLiteral(ZUVO_PLUGIN_ARCHIVE));
}

} // namespace zuvo::standin
