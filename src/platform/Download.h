#pragma once

#include <QCoroTask>
#include <chrono>
#include <cstdint>
#include <string>

namespace zuvo {

/// Whether something may be downloaded from there: https, or http to this machine. What is fetched is installed, so
/// nobody on the way may put another thing in its place.
[[nodiscard]] bool isDownloadAddress(const std::string& url);

/// What has become of a download.
struct DownloadOutcome {
    std::string failure; ///< why there is no file; empty if there is one

    [[nodiscard]] bool hasFailed() const { return !failure.empty(); }
};

/// Fetches files.
class Downloader {
public:
    Downloader() = default;
    virtual ~Downloader() = default;
    Downloader(const Downloader&) = delete;
    Downloader& operator=(const Downloader&) = delete;

    /// Writes what `url` answers, of whatever status, to the file `path`. An answer that ended early, came encoded, or
    /// does not state its length (HTTP/2 apart) is a failure. After a failure no part of it is left, and a
    /// file that was there before stays. Never fails as a coroutine. The task does not need the object once it has
    /// started.
    virtual QCoro::Task<DownloadOutcome> fetch(std::string url, std::string path) = 0;
};

/// What a download is broken off at.
struct DownloadLimits {
    std::int64_t bytes = 64LL * 1024 * 1024;   ///< a longer answer is a failure
    std::chrono::milliseconds silence{60'000}; ///< the longest time without a byte
    int redirects = 16;                        ///< more of them in a row are a failure
};

/// The platform's network access. The request asks for an answer that is not compressed, has no other header of ours
/// and carries no cookie. Redirects are followed,
/// here alone, to where `isDownloadAddress` holds. The network access may ask once more where a connection closes
/// unanswered: unlike a request to a paid service, that costs nothing.
class NetworkDownloader final : public Downloader {
public:
    explicit NetworkDownloader(DownloadLimits limits = {}) : m_limits(limits) {}

    QCoro::Task<DownloadOutcome> fetch(std::string url, std::string path) override;

private:
    DownloadLimits m_limits;
};

} // namespace zuvo
