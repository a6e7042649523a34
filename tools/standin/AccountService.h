#pragma once

#include "model/Account.h"
#include "standin/CloudJobs.h"
#include "standin/Exchange.h"
#include "standin/SampleKnowledge.h"

#include <optional>
#include <string>
#include <string_view>

namespace zuvo::standin {

/// The service that a path (without its query) belongs to: one of the account's, or `none`.
[[nodiscard]] Service accountServiceOf(std::string_view path);

/// True for the services that `AccountService` answers for.
[[nodiscard]] bool isOfAccount(Service service);

/// An error object of the account service's form: {"error":...}.
[[nodiscard]] Answer accountError(int status, std::string_view message);

/// Plays the product's own web service: who is signed in, the newest plugin, mining jobs, and the pages in the browser.
///
///     me        GET   /api/v1/me                         bearer token
///     version   GET   /api/v1/version
///     upload    POST  /api/v1/api/v1/upload              bearer token
///     process   POST  /api/v1/api/v1/process             bearer token
///     jobs      GET   /api/v1/api/v1/jobs/ID             bearer token
///     archive   GET   /downloads/zuvo-plugin.zip
///     page      GET   /plugin-auth?callback=..., /billing
///
/// A token is any text that begins with "zuvo_", as those of the sign-in page do; with another, or none, 401. 405 for
/// another method.
class AccountService {
public:
    /// `base` is the service's own address without a path, for the links in its answers.
    [[nodiscard]] Answer answer(const RecordedRequest& request, const SampleKnowledge& sample, const std::string& base);

    void setAccount(UserInfo account) { m_account = std::move(account); }
    void setVersion(VersionInfo version) { m_version = std::move(version); }
    void setArchive(std::string bytes) { m_archive = std::move(bytes); }
    [[nodiscard]] CloudJobs& jobs() { return m_jobs; }

private:
    [[nodiscard]] Answer describeAccount() const;
    [[nodiscard]] Answer describeVersion(const std::string& base) const;
    [[nodiscard]] Answer giveArchive() const;

    UserInfo m_account{"user-1", "Robin Editor", "robin@example.com", 120, "Pro"};
    std::optional<VersionInfo> m_version; ///< without one, the archive's own version
    std::optional<std::string> m_archive; ///< without one, the archive that was built along
    CloudJobs m_jobs;
};

} // namespace zuvo::standin
