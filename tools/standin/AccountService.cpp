#include "standin/AccountService.h"

#include "base/Json.h"
#include "standin/AccountPages.h"
#include "standin/OwnFiles.h"

#include <QFile>
#include <QString>
#include <QUrl>
#include <QUrlQuery>
#include <map>

namespace zuvo::standin {
namespace {

constexpr std::string_view jobsPath = "/api/v1/api/v1/jobs/";
constexpr std::string_view archivePath = "/downloads/zuvo-plugin.zip";
constexpr std::string_view billingPath = "/billing";

/// The path by itself, as it is compared with the service's paths.
std::string pathOf(const QUrl& url) {
    return url.path().toStdString();
}

bool hasToken(const RecordedRequest& request) {
    return request.header("Authorization").rfind("Bearer zuvo_", 0) == 0;
}

bool needsToken(Service service) {
    return service == Service::me || service == Service::upload || service == Service::process ||
           service == Service::jobs;
}

std::string_view methodOf(Service service) {
    return service == Service::upload || service == Service::process ? "POST" : "GET";
}

Answer showPage(const QUrl& url) {
    if (pathOf(url) == billingPath)
        return billingPage();
    const QString callback = QUrlQuery(url).queryItemValue(QStringLiteral("callback"), QUrl::FullyDecoded);
    return signInPage(callback.toStdString());
}

} // namespace

Service accountServiceOf(std::string_view path) {
    static const std::map<std::string_view, Service> services{
        {"/api/v1/me", Service::me},
        {"/api/v1/version", Service::version},
        {"/api/v1/api/v1/upload", Service::upload},
        {"/api/v1/api/v1/process", Service::process},
        {archivePath, Service::archive},
        {"/plugin-auth", Service::page},
        {billingPath, Service::page},
    };
    if (path.rfind(jobsPath, 0) == 0)
        return Service::jobs;
    const auto found = services.find(path);
    return found == services.end() ? Service::none : found->second;
}

bool isOfAccount(Service service) {
    return service != Service::none && service != Service::transcription && service != Service::messages;
}

Answer accountError(int status, std::string_view message) {
    OrderedJson tree;
    tree["error"] = message;
    return {status, compactText(tree).value_or("{}")};
}

Answer AccountService::answer(const RecordedRequest& request, const SampleKnowledge& sample, const std::string& base) {
    const QUrl url(QString::fromStdString(request.path));
    if (request.method != methodOf(request.service))
        return accountError(405, "Method not allowed.");
    if (needsToken(request.service) && !hasToken(request))
        return accountError(401, "Invalid token.");
    switch (request.service) {
    case Service::me:
        return describeAccount();
    case Service::version:
        return describeVersion(base);
    case Service::upload:
        return m_jobs.upload(request);
    case Service::process:
        return m_jobs.process(request);
    case Service::jobs:
        return m_jobs.poll(pathOf(url).substr(jobsPath.size()), sample);
    case Service::archive:
        return giveArchive();
    case Service::page:
        return showPage(url);
    default:
        return accountError(404, "Not found.");
    }
}

Answer AccountService::describeAccount() const {
    OrderedJson tree;
    tree["id"] = m_account.id;
    tree["name"] = m_account.name;
    tree["email"] = m_account.email;
    tree["credits"] = m_account.credits;
    tree["plan"] = m_account.plan;
    return {200, compactText(tree).value_or("{}")};
}

Answer AccountService::describeVersion(const std::string& base) const {
    const VersionInfo version = m_version.value_or(VersionInfo{
        "0.2.0", base + std::string(archivePath), "Mines start from the timeline that is open.\nFewer clicks."});
    OrderedJson tree;
    tree["version"] = version.version;
    if (version.downloadURL)
        tree["download_url"] = *version.downloadURL;
    if (version.releaseNotes)
        tree["release_notes"] = *version.releaseNotes;
    return {200, compactText(tree).value_or("{}")};
}

Answer AccountService::giveArchive() const {
    const Headers headers{{"Content-Type", "application/zip"}};
    if (m_archive)
        return {200, *m_archive, headers};
    QFile file(ownPluginArchive());
    if (!file.open(QIODevice::ReadOnly))
        return accountError(500, "The plugin archive is not there: " + file.errorString().toStdString());
    return {200, file.readAll().toStdString(), headers};
}

} // namespace zuvo::standin
