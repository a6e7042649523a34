#include "ui/Symbols.h"

#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace zuvo {

namespace {

constexpr int standardEdge = 16;
constexpr int largestEdge = 4096; ///< pixels; no page asks for a symbol of that size

using Row = std::pair<std::string_view, std::string_view>;

// Symbol name, file name without ".svg". Sorted by symbol name.
constexpr std::array table = {
    Row{"arrow.clockwise", "arrow-clockwise"},
    Row{"arrow.down.circle.fill", "arrow-down-circle-fill"},
    Row{"arrow.down.doc", "file-earmark-arrow-down"},
    Row{"arrow.left", "arrow-left"},
    Row{"arrow.right", "arrow-right"},
    Row{"arrow.triangle.2.circlepath", "arrow-repeat"},
    Row{"arrow.triangle.swap", "arrow-left-right"},
    Row{"bolt", "lightning"},
    Row{"briefcase", "briefcase"},
    Row{"checkmark", "check-lg"},
    Row{"checkmark.circle.fill", "check-circle-fill"},
    Row{"chevron.down", "chevron-down"},
    Row{"chevron.right", "chevron-right"},
    Row{"chevron.up", "chevron-up"},
    Row{"chevron.up.chevron.down", "chevron-expand"},
    Row{"circle", "circle"},
    Row{"circle.fill", "circle-fill"},
    Row{"clock", "clock"},
    Row{"clock.arrow.circlepath", "clock-history"},
    Row{"creditcard.fill", "credit-card-fill"},
    Row{"diamond.fill", "diamond-fill"},
    Row{"doc.badge.plus", "file-earmark-plus"},
    Row{"doc.on.doc", "files"},
    Row{"doc.plaintext", "file-text"},
    Row{"doc.richtext", "file-earmark-richtext"},
    Row{"doc.text", "file-earmark-text"},
    Row{"doc.text.magnifyingglass", "doc-text-magnifyingglass"}, // ours
    Row{"exclamationmark.triangle.fill", "exclamation-triangle-fill"},
    Row{"eye", "eye"},
    Row{"film", "film"},
    Row{"film.stack", "film-stack"}, // ours
    Row{"flame", "fire"},
    Row{"folder", "folder"},
    Row{"fork.knife", "fork-knife"}, // ours
    Row{"globe", "globe"},
    Row{"hand.thumbsdown", "hand-thumbs-down"},
    Row{"hand.thumbsdown.fill", "hand-thumbs-down-fill"},
    Row{"hand.thumbsup", "hand-thumbs-up"},
    Row{"hand.thumbsup.fill", "hand-thumbs-up-fill"},
    Row{"key.fill", "key-fill"},
    Row{"lightbulb.fill", "lightbulb-fill"},
    Row{"link", "link-45deg"},
    Row{"list.bullet", "list-ul"},
    Row{"list.bullet.rectangle", "card-list"},
    Row{"list.number", "list-ol"},
    Row{"magnifyingglass", "search"},
    Row{"megaphone.fill", "megaphone-fill"},
    Row{"mountain.2", "mountains"}, // ours
    Row{"paintbrush", "brush"},
    Row{"person.circle", "person-circle"},
    Row{"person.crop.circle", "person-circle"},
    Row{"play.fill", "play-fill"},
    Row{"plus", "plus-lg"},
    Row{"plus.circle.fill", "plus-circle-fill"},
    Row{"puzzlepiece.extension.fill", "puzzle-fill"},
    Row{"rectangle.on.rectangle.angled", "rectangle-on-rectangle-angled"}, // ours
    Row{"rectangle.portrait.and.arrow.right", "box-arrow-right"},
    Row{"rectangle.stack", "collection"},
    Row{"rectangle.stack.badge.play", "collection-play"},
    Row{"slider.horizontal.3", "sliders"},
    Row{"sparkles", "stars"},
    Row{"square.and.arrow.down.fill", "box-arrow-in-down"},
    Row{"star.fill", "star-fill"},
    Row{"stop.fill", "stop-fill"},
    Row{"text.book.closed", "book"},
    Row{"text.bubble", "chat-left-text"},
    Row{"trash", "trash"},
    Row{"trash.fill", "trash-fill"},
    Row{"wand.and.stars", "magic"},
    Row{"waveform", "waveform"},
    Row{"waveform.badge.magnifyingglass", "waveform-badge-magnifyingglass"}, // ours
    Row{"xmark", "x-lg"},
    Row{"xmark.circle.fill", "x-circle-fill"},
};

} // namespace

QString symbolFile(const QString& name) {
    const auto key = name.toStdString();
    const auto* const found =
        std::find_if(table.begin(), table.end(), [&key](const Row& row) { return row.first == key; });
    if (found == table.end())
        return {};
    return QStringLiteral(":/symbols/%1.svg").arg(QString::fromUtf8(found->second));
}

QStringList symbolNames() {
    QStringList names;
    for (const auto& row : table)
        names.append(QString::fromUtf8(row.first));
    return names;
}

namespace {

/// By how much a stroke grows on each of its sides, as a share of the drawing's edge. A stroke is a sixteenth wide.
double growth(SymbolWeight weight) {
    switch (weight) {
    case SymbolWeight::regular:
        break;
    case SymbolWeight::semibold:
        return 0.011;
    case SymbolWeight::bold:
        return 0.018;
    }
    return 0.0;
}

/// The drawing, and for a heavier one the same a little to each side.
void draw(QPainter& painter, QSvgRenderer& drawing, const QSize& size, double shift) {
    const QRectF place({0.0, 0.0}, QSizeF(size));
    drawing.render(&painter, place);
    if (shift == 0.0)
        return;
    const double across = shift * size.width();
    const double down = shift * size.height();
    for (const auto& way : {QPointF(across, 0.0), QPointF(-across, 0.0), QPointF(0.0, down), QPointF(0.0, -down)})
        drawing.render(&painter, place.translated(way));
}

} // namespace

QImage symbolImage(const QString& name, const QColor& color, const QSize& size, SymbolWeight weight) {
    const auto file = symbolFile(name);
    if (file.isEmpty() || !color.isValid() || size.isEmpty() || size.width() > largestEdge ||
        size.height() > largestEdge)
        return {};
    QSvgRenderer drawing(file);
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    draw(painter, drawing, size, growth(weight));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

namespace {

/// Of an id cut into its parts; nothing if it is none.
std::optional<SymbolWeight> weightOf(const QStringList& parts) {
    constexpr int withoutWeight = 2;
    if (parts.size() == withoutWeight)
        return SymbolWeight::regular;
    if (parts.size() != withoutWeight + 1)
        return std::nullopt;
    if (parts.last() == QLatin1String("semibold"))
        return SymbolWeight::semibold;
    if (parts.last() == QLatin1String("bold"))
        return SymbolWeight::bold;
    return std::nullopt;
}

} // namespace

QImage SymbolProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    const auto parts = id.split(QLatin1Char('/'));
    const auto weight = weightOf(parts);
    const auto wanted = QSize(requestedSize.width() > 0 ? requestedSize.width() : standardEdge,
                              requestedSize.height() > 0 ? requestedSize.height() : standardEdge);
    auto image = weight ? symbolImage(parts[0], QColor(parts[1]), wanted, *weight) : QImage();
    if (size != nullptr)
        *size = image.size();
    return image;
}

} // namespace zuvo
