#include "platform/Platform.h"

#include <QByteArrayView>
#include <QHashFunctions>
#include <QUuid>

namespace zuvo {

namespace {

std::string randomUuid() {
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString();
}

std::uint64_t seededHash(const std::string& text) {
    return qHash(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())), QHashSeed::globalSeed());
}

} // namespace

Platform Platform::ofThisMachine() {
    return {Environment::ofThisMachine(),           [] { return QDateTime::currentDateTime(); }, randomUuid, seededHash,
            std::make_shared<ChildProcessRunner>(), std::make_shared<NetworkHttpClient>()};
}

} // namespace zuvo
