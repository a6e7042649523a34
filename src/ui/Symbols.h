#pragma once

#include <QColor>
#include <QImage>
#include <QQuickImageProvider>
#include <QSize>
#include <QString>
#include <QStringList>

namespace zuvo {

/// The file behind a symbol's name: an SVG under ":/symbols/", all on the same 16-unit grid. Empty for a name that the
/// table lacks.
[[nodiscard]] QString symbolFile(const QString& name);

/// Every name in the table.
[[nodiscard]] QStringList symbolNames();

/// The drawings are regular; heavier ones are drawn with broader strokes.
enum class SymbolWeight { regular, semibold, bold };

/// The symbol in one colour; a null image for a name that the table lacks, no colour, or a size that cannot be.
[[nodiscard]] QImage symbolImage(const QString& name, const QColor& color, const QSize& size,
                                 SymbolWeight weight = SymbolWeight::regular);

/// "image://symbols/{name}/{#rrggbb or #aarrggbb}", with "/semibold" or "/bold" behind it for a heavier one
class SymbolProvider final : public QQuickImageProvider {
public:
    SymbolProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace zuvo
