#include "platform/NetworkReplies.h"

#include <QNetworkRequest>
#include <QString>
#include <QVariant>

namespace zuvo {

std::string replyFailure(const QNetworkReply& reply) {
    // What is aborted for another reason does not come here.
    if (reply.error() == QNetworkReply::OperationCanceledError)
        return "The request timed out";
    // What the network access says when it would have had to send the body a second time.
    if (reply.error() == QNetworkReply::ContentReSendError)
        return "Connection closed";
    const auto words = reply.errorString().toStdString();
    return words.empty() ? "Network error " + std::to_string(reply.error()) : words;
}

bool isWholeAnswer(const QNetworkReply& reply) {
    const auto status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid())
        return false;
    constexpr int firstFailureStatus = 400;
    // A redirect that asks for the body once more: nobody sends it, but the network access finds that it could not.
    constexpr int temporaryRedirect = 307;
    constexpr int permanentRedirect = 308;
    if (status.toInt() == temporaryRedirect || status.toInt() == permanentRedirect)
        return reply.error() == QNetworkReply::NoError || reply.error() == QNetworkReply::ContentReSendError;
    switch (reply.error()) {
    case QNetworkReply::NoError:
    case QNetworkReply::ProxyAuthenticationRequiredError:
    case QNetworkReply::ProtocolInvalidOperationError: // 400
        return true;
    case QNetworkReply::ContentReSendError:
    case QNetworkReply::ProtocolUnknownError:
    case QNetworkReply::ProtocolFailure:
        return false;
    case QNetworkReply::UnknownContentError:
        // A 4xx status that has no error of its own, or an answer that could not be decoded.
        return status.toInt() >= firstFailureStatus;
    default:
        // From here on the errors stand for statuses; below it for what went wrong on the way.
        return reply.error() >= QNetworkReply::ContentAccessDenied;
    }
}

} // namespace zuvo
