#pragma once

#include "standin/AccountService.h"
#include "standin/Exchange.h"
#include "standin/Failure.h"
#include "standin/SampleKnowledge.h"

#include <QObject>
#include <QString>
#include <memory>
#include <vector>

namespace zuvo::standin {

class HttpFront;

/// Plays the remote services on a loopback address, over real sockets, and keeps what it was sent.
///
/// Paths: transcription under `/v1/audio/transcriptions`, messages under `/v1/messages`, the account's as
/// `AccountService` tells; any other path is 404. It lives on the thread that made it and answers from that thread's
/// event loop.
class StandIn : public QObject {
    Q_OBJECT

public:
    /// The sample interview's folder, installed beside the program or in the sources (OwnFiles.h).
    [[nodiscard]] static QString defaultSampleFolder();

    explicit StandIn(const QString& sampleFolder = defaultSampleFolder(), QObject* parent = nullptr);
    ~StandIn() override;

    /// True if the sample's transcript could be read; without it, speech is only found, not known.
    [[nodiscard]] bool knowsSample() const { return !m_sample.files.empty(); }

    /// Begins to answer on 127.0.0.1; port 0 takes a free one. False if the port is taken.
    [[nodiscard]] bool listen(quint16 port = 0);
    [[nodiscard]] quint16 port() const;

    [[nodiscard]] QString transcriptionBase() const; ///< for OPENAI_BASE_URL, "/v1" included
    [[nodiscard]] QString messagesBase() const;      ///< for ANTHROPIC_BASE_URL
    [[nodiscard]] QString accountBase() const;       ///< for ZUVO_SERVICE_URL, without a path

    /// Who /me says is signed in.
    void setAccount(UserInfo account) { m_account.setAccount(std::move(account)); }
    /// What /version says; until then 0.2.0 with the address of the archive.
    void setVersion(VersionInfo version) { m_account.setVersion(std::move(version)); }
    /// What is downloaded as the plugin's archive; until then a good one of version 0.2.0.
    void setArchive(std::string bytes) { m_account.setArchive(std::move(bytes)); }
    /// The jobs of the cloud, whose statuses and result can be set.
    [[nodiscard]] CloudJobs& jobs() { return m_account.jobs(); }

    /// From now on those requests of the service fail. The latest order that covers a request decides.
    void fail(Service service, const Failure& failure, Occasion occasion = {});
    /// Forgets all orders.
    void failNothing();

    /// All requests so far, in the order in which they had arrived whole; also those that were answered badly or not.
    [[nodiscard]] const std::vector<RecordedRequest>& requests() const { return m_requests; }
    [[nodiscard]] std::vector<RecordedRequest> requests(Service service) const;
    /// Forgets the requests so far, which are kept with their sound: some 10 MB for each piece of a mine.
    void forgetRequests() { m_requests.clear(); }
    /// Connections opened so far, whether or not a request came over them.
    [[nodiscard]] int connectionCount() const;

Q_SIGNALS:
    /// A request has arrived and been kept; its answer has not been sent yet.
    void requestArrived();

private:
    friend class HttpFront;

    struct Standing {
        FailureOrder order;
        int seen = 0; ///< requests of the service since the order
    };

    [[nodiscard]] Failure takeFailure(Service service);
    [[nodiscard]] Answer answer(const RecordedRequest& request, const Failure& failure);
    [[nodiscard]] Answer rightAnswer(const RecordedRequest& request, const std::optional<std::string>& replyText);

    SampleKnowledge m_sample;
    AccountService m_account;
    std::unique_ptr<HttpFront> m_front;
    std::vector<RecordedRequest> m_requests;
    std::vector<Standing> m_standing;
};

} // namespace zuvo::standin
