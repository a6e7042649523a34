#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <qqmlregistration.h>

namespace zuvo {

/// The font families of the pages: of each kind the first that the machine has, else the desktop's own.
class Fonts : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString text READ text CONSTANT)
    Q_PROPERTY(QString mono READ mono CONSTANT)
    Q_PROPERTY(QString rounded READ rounded CONSTANT)
public:
    explicit Fonts(QObject* parent = nullptr);

    [[nodiscard]] const QString& text() const { return m_text; }
    [[nodiscard]] const QString& mono() const { return m_mono; }
    [[nodiscard]] const QString& rounded() const { return m_rounded; }

    /// The first of `wanted` among `installed`, else `fallback`.
    [[nodiscard]] static QString firstInstalled(const QStringList& wanted, const QStringList& installed,
                                                const QString& fallback);

private:
    QString m_text;
    QString m_mono;
    QString m_rounded;
};

} // namespace zuvo
