#include "ui/QmlWarnings.h"

#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <gtest/gtest.h>

namespace zuvo::tests {

namespace {

QStringList& warnings() {
    static QStringList kept;
    return kept;
}

QtMessageHandler& usualHandler() {
    static QtMessageHandler handler = nullptr;
    return handler;
}

bool isOfPages(const QMessageLogContext& context, const QString& message) {
    const auto category = QLatin1String(context.category);
    return category == QLatin1String("qml") || category == QLatin1String("js") ||
           category.startsWith(QLatin1String("qt.qml")) || category.startsWith(QLatin1String("qt.quick")) ||
           message.contains(QLatin1String("qrc:/")) || message.contains(QLatin1String("QML ")) ||
           message.startsWith(QLatin1String("QQuick"));
}

void keep(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    const bool isWarning = type == QtWarningMsg || type == QtCriticalMsg || type == QtFatalMsg;
    if (isWarning && isOfPages(context, message))
        warnings().append(message);
    usualHandler()(type, context, message);
}

class Listener final : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& /*test*/) override { warnings().clear(); }
    void OnTestEnd(const testing::TestInfo& /*test*/) override {
        for (const auto& warning : warnings())
            ADD_FAILURE() << "A page warned: " << warning.toStdString();
        warnings().clear();
    }
};

} // namespace

void failOnQmlWarnings() {
    usualHandler() = qInstallMessageHandler(keep);
    auto& listeners = testing::UnitTest::GetInstance()->listeners();
    // Before the printer, so that it tells of these failures as of others.
    auto* printer = listeners.Release(listeners.default_result_printer());
    listeners.Append(new Listener); // owned by the listeners
    listeners.Append(printer);
}

} // namespace zuvo::tests
