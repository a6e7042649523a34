#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>
#include <qqmlregistration.h>

namespace zuvo {

/// Where a dialog that asks for footage opens. It remembers for as long as the program runs.
class FootageFolder : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    using QObject::QObject;

    /// The folder that files were chosen from last, else the desktop's folder for films, else the home folder: the
    /// first of them that is there.
    Q_INVOKABLE [[nodiscard]] QUrl url() const;
    /// Remembers the folder of these files, if they are files of this machine.
    Q_INVOKABLE void remember(const QList<QUrl>& files);

private:
    QString m_last; ///< a path; empty before the first files
};

} // namespace zuvo
