#pragma once

#include "base/Json.h"
#include "standin/Exchange.h"
#include "standin/SampleKnowledge.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zuvo::standin {

/// What one poll of a job is answered with.
struct JobStatus {
    std::string status;
    double progress = 0.0; ///< 0 to 1
    bool withResult = false;
};

/// The mining jobs of the account service: a sound is uploaded, its job started, and asked after until it is complete.
class CloudJobs {
public:
    /// Takes a multipart form with a file named "file", whatever it holds: {"jobId":...}. 400 for anything else.
    [[nodiscard]] Answer upload(const RecordedRequest& request);

    /// Takes {"jobId":...,"mode":...}. 400 for another shape or mode, 404 for a job that is not known.
    [[nodiscard]] Answer process(const RecordedRequest& request);

    /// The next status of a job, 404 for one that is not known. A job that was not started is "queued".
    [[nodiscard]] Answer poll(const std::string& jobId, const SampleKnowledge& sample);

    /// Successive polls of every job that is started from now on get these; the last one stays. At least one.
    void setStatuses(std::vector<JobStatus> statuses) { m_statuses = std::move(statuses); }

    /// Every status with a result has this one, whatever was uploaded.
    void setResult(OrderedJson result) { m_result = std::move(result); }

private:
    struct Job {
        std::string file;
        std::vector<JobStatus> statuses; ///< empty until it is started
        std::size_t polls = 0;
    };

    [[nodiscard]] std::optional<OrderedJson> resultOf(const Job& job, const SampleKnowledge& sample) const;

    std::vector<JobStatus> m_statuses = {
        {"transcribing", 0.4}, {"analyzing", 0.6}, {"translating", 0.8}, {"complete", 1.0, true}};
    std::optional<OrderedJson> m_result;
    std::map<std::string, Job> m_jobs;
};

} // namespace zuvo::standin
