#include "ui/Symbols.h"

#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace zuvo {

namespace {

constexpr int standardEdge = 16;

using Row = std::pair<std::string_view, std::string_view>;

// Symbol name, file name without ".svg". Sorted by symbol name.
constexpr std::array table = {
    Row{"arrow.clockwise", "arrow-clockwise"},
    Row{"arrow.down.circle.fill", "arrow-down-circle-fill"},
    Row{"arrow.right", "arrow-right"},
    Row{"arrow.triangle.2.circlepath", "arrow-repeat"},
    Row{"arrow.triangle.swap", "arrow-left-right"},
    Row{"checkmark", "check-lg"},
    Row{"checkmark.circle.fill", "check-circle-fill"},
    Row{"circle", "circle"},
    Row{"circle.fill", "circle-fill"},
    Row{"clock", "clock"},
    Row{"clock.arrow.circlepath", "clock-history"},
    Row{"creditcard.fill", "credit-card-fill"},
    Row{"diamond.fill", "diamond-fill"},
    Row{"doc.plaintext", "file-text"},
    Row{"doc.richtext", "file-earmark-richtext"},
    Row{"doc.text", "file-earmark-text"},
    Row{"exclamationmark.triangle.fill", "exclamation-triangle-fill"},
    Row{"film", "film"},
    Row{"film.stack", "film-stack"}, // ours
    Row{"folder", "folder"},
    Row{"globe", "globe"},
    Row{"hand.thumbsdown", "hand-thumbs-down"},
    Row{"hand.thumbsdown.fill", "hand-thumbs-down-fill"},
    Row{"hand.thumbsup", "hand-thumbs-up"},
    Row{"hand.thumbsup.fill", "hand-thumbs-up-fill"},
    Row{"key.fill", "key-fill"},
    Row{"list.bullet", "list-ul"},
    Row{"list.bullet.rectangle", "card-list"},
    Row{"list.number", "list-ol"},
    Row{"paintbrush", "brush"},
    Row{"person.circle", "person-circle"},
    Row{"plus.circle.fill", "plus-circle-fill"},
    Row{"puzzlepiece.extension.fill", "puzzle-fill"},
    Row{"rectangle.portrait.and.arrow.right", "box-arrow-right"},
    Row{"rectangle.stack.badge.play", "collection-play"},
    Row{"square.and.arrow.down.fill", "box-arrow-in-down"},
    Row{"star.fill", "star-fill"},
    Row{"text.bubble", "chat-left-text"},
    Row{"trash", "trash"},
    Row{"trash.fill", "trash-fill"},
    Row{"wand.and.stars", "magic"},
    Row{"waveform.badge.magnifyingglass", "waveform-badge-magnifyingglass"}, // ours
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

QImage symbolImage(const QString& name, const QColor& color, const QSize& size) {
    QSvgRenderer drawing(symbolFile(name));
    if (!drawing.isValid() || size.isEmpty())
        return {};
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

QImage SymbolProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    const auto slash = id.lastIndexOf(QLatin1Char('/'));
    const auto wanted = QSize(requestedSize.width() > 0 ? requestedSize.width() : standardEdge,
                              requestedSize.height() > 0 ? requestedSize.height() : standardEdge);
    auto image = symbolImage(id.left(slash), QColor(id.mid(slash + 1)), wanted);
    if (size != nullptr)
        *size = image.size();
    return image;
}

} // namespace zuvo
