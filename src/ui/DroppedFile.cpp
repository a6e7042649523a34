#include "ui/DroppedFile.h"

#include "base/Numbers.h"
#include "platform/FileSystem.h"

namespace zuvo {

namespace {

QString inUnits(double number, int digits, const char* unit) {
    return QString::fromStdString(fixedText(number, digits)) + QLatin1String(unit);
}

} // namespace

QString DroppedFile::formattedSize() const {
    return formattedSize(static_cast<double>(fileSize(url.toLocalFile().toStdString()).value_or(0)));
}

QString DroppedFile::formattedSize(double bytes) {
    constexpr double giga = 1e9;
    constexpr double mega = 1e6;
    constexpr double kilo = 1000.0;
    if (bytes >= giga)
        return inUnits(bytes / giga, 1, " GB");
    if (bytes >= mega)
        return inUnits(bytes / mega, 1, " MB");
    if (bytes >= kilo)
        return inUnits(bytes / kilo, 0, " KB");
    return QString::number(truncated(bytes)) + QStringLiteral(" B");
}

} // namespace zuvo
