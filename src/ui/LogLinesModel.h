#pragma once

#include "pipeline/LocalPipeline.h"

#include <QAbstractListModel>
#include <QString>
#include <memory>
#include <qqmlregistration.h>
#include <string_view>

namespace zuvo {

/// The log of a run, a row for each line. A new line is told as one new row, however long the log is.
/// Roles: timestamp, line (plain text), colorName (see `logColor`).
class LogLinesModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("A page's model holds it")
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    explicit LogLinesModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

    /// Follows the log of that pipeline, or of none.
    void setPipeline(std::shared_ptr<LocalPipeline> pipeline);

    [[nodiscard]] int count() const { return m_count; }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// The lines from `first` to `last`, both included, in either order, as "mm:ss text" with line ends between.
    [[nodiscard]] QString plainText(int first, int last) const;

    /// "accent", "green", "blue" and "dim" stand for themselves, any other word for "muted".
    [[nodiscard]] static QString logColor(std::string_view name);

Q_SIGNALS:
    void countChanged();

private:
    enum Role { timestampRole = Qt::UserRole, lineRole, colorNameRole };

    void takeNewLines();
    void beginAnew();

    std::shared_ptr<LocalPipeline> m_pipeline;
    int m_count = 0; ///< of lines that the views have been told of
};

} // namespace zuvo
