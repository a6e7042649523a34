#include "standin/StandIn.h"

#include "standin/HttpFront.h"
#include "standin/MessagesService.h"
#include "standin/OwnFiles.h"
#include "standin/TranscriptionService.h"

#include <algorithm>

namespace zuvo::standin {
namespace {

Answer plainError(Service service, int status) {
    const std::string message = "The stand-in was told to answer with status " + std::to_string(status) + ".";
    if (service == Service::messages)
        return messagesError(status, "api_error", message);
    if (isOfAccount(service))
        return accountError(status, message);
    return transcriptionError(status, "server_error", message);
}

} // namespace

QString StandIn::defaultSampleFolder() {
    return ownSampleFolder();
}

StandIn::StandIn(const QString& sampleFolder, QObject* parent)
    : QObject(parent),
      m_sample(loadSample(sampleFolder.toStdString()).value_or(SampleKnowledge())),
      m_front(std::make_unique<HttpFront>(*this)) {}

StandIn::~StandIn() = default;

bool StandIn::listen(quint16 port) {
    return m_front->listenOnLoopback(port);
}

quint16 StandIn::port() const {
    return m_front->port();
}

QString StandIn::transcriptionBase() const {
    return messagesBase() + QStringLiteral("/v1");
}

QString StandIn::messagesBase() const {
    return accountBase();
}

QString StandIn::accountBase() const {
    return QStringLiteral("http://127.0.0.1:%1").arg(port());
}

void StandIn::fail(Service service, const Failure& failure, Occasion occasion) {
    m_standing.push_back({{service, failure, occasion}, 0});
}

void StandIn::failNothing() {
    m_standing.clear();
}

std::vector<RecordedRequest> StandIn::requests(Service service) const {
    std::vector<RecordedRequest> result;
    std::copy_if(m_requests.begin(), m_requests.end(), std::back_inserter(result),
                 [&](const RecordedRequest& request) { return request.service == service; });
    return result;
}

int StandIn::connectionCount() const {
    return m_front->connectionCount();
}

Failure StandIn::takeFailure(Service service) {
    Failure decided; // no delay: the right answer at once
    for (Standing& standing : m_standing) {
        if (standing.order.service != service)
            continue;
        const int number = standing.seen++;
        const Occasion& occasion = standing.order.occasion;
        if (number >= occasion.after && number - occasion.after < occasion.count)
            decided = standing.order.failure;
    }
    return decided;
}

Answer StandIn::rightAnswer(const RecordedRequest& request, const std::optional<std::string>& replyText) {
    if (isOfAccount(request.service))
        return m_account.answer(request, m_sample, accountBase().toStdString());
    if (request.service == Service::transcription)
        return answerTranscription(request, m_sample);
    if (request.service == Service::messages)
        return answerMessages(request, replyText);
    return transcriptionError(404, "invalid_request_error", "Unknown path: " + request.path);
}

Answer StandIn::answer(const RecordedRequest& request, const Failure& failure) {
    switch (failure.kind) {
    case FailureKind::status: {
        Answer answer = plainError(request.service, failure.statusCode);
        answer.body = failure.text.value_or(answer.body);
        return answer;
    }
    case FailureKind::unauthorized: {
        Answer answer = plainError(request.service, 401);
        answer.headers.emplace_back("WWW-Authenticate", "Basic realm=\"stand-in\"");
        return answer;
    }
    case FailureKind::redirect:
        return {302, "", {{"Location", failure.text.value_or("/")}}};
    case FailureKind::notJson:
        return {200, "<html>Not what you asked for</html>"};
    case FailureKind::wrongShape:
        return {200, R"({"unexpected":[1,2,3]})"};
    case FailureKind::body:
        return {200, failure.text.value_or("")};
    case FailureKind::drop:
    case FailureKind::stall:
        return {};
    case FailureKind::truncatedJson: {
        Answer answer = rightAnswer(request, {});
        answer.body.resize(answer.body.size() / 2);
        return answer;
    }
    case FailureKind::replyText:
        return rightAnswer(request, failure.text);
    case FailureKind::delayOnly:
    case FailureKind::cut:
        break;
    }
    return rightAnswer(request, {});
}

} // namespace zuvo::standin
