#include "standin/CloudJobs.h"

#include "standin/AccountService.h"
#include "standin/Listener.h"
#include "standin/MultipartReader.h"
#include "standin/StoryTeller.h"
#include "standin/WavReader.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zuvo::standin {
namespace {

constexpr double targetSeconds = 300.0; // of a job's story, as nothing in a request names a length
constexpr std::array<std::string_view, 4> modes{"Full Mine", "Story Mine", "Structure", "Audit Mine"};

Answer describe(const JobStatus& status, const std::optional<OrderedJson>& result) {
    OrderedJson tree;
    tree["status"] = status.status;
    tree["progress"] = status.progress;
    if (result)
        tree["result"] = *result;
    return {200, compactText(tree).value_or("{}")};
}

Answer nameJob(const std::string& jobId) {
    OrderedJson tree;
    tree["jobId"] = jobId;
    return {200, compactText(tree).value_or("{}")};
}

Answer unknownJob() {
    return accountError(404, "There is no such job.");
}

} // namespace

Answer CloudJobs::upload(const RecordedRequest& request) {
    const auto parts = readMultipart(request.header("Content-Type"), request.body);
    if (!parts)
        return accountError(400, "The body is no readable multipart form.");
    const auto file = std::find_if(parts->begin(), parts->end(),
                                   [](const FormPart& part) { return part.name == "file" && part.fileName; });
    if (file == parts->end())
        return accountError(400, "The form holds no file.");
    const std::string jobId = "job-" + std::to_string(m_jobs.size() + 1);
    m_jobs[jobId].file = file->data;
    return nameJob(jobId);
}

Answer CloudJobs::process(const RecordedRequest& request) {
    const auto body = parseForeignJson(request.body);
    if (!body || !body->is_object())
        return accountError(400, "The request body is no JSON object.");
    const auto jobId = readText(*body, "jobId");
    const auto mode = readText(*body, "mode");
    if (!jobId || !mode || std::find(modes.begin(), modes.end(), *mode) == modes.end())
        return accountError(400, "A jobId and a known mode are required.");
    const auto job = m_jobs.find(*jobId);
    if (job == m_jobs.end())
        return unknownJob();
    job->second.statuses = m_statuses;
    job->second.polls = 0;
    return nameJob(*jobId);
}

Answer CloudJobs::poll(const std::string& jobId, const SampleKnowledge& sample) {
    const auto found = m_jobs.find(jobId);
    if (found == m_jobs.end())
        return unknownJob();
    Job& job = found->second;
    if (job.statuses.empty())
        return describe({"queued", 0.0}, {});
    const JobStatus status = job.statuses[std::min(job.polls++, job.statuses.size() - 1)];
    if (!status.withResult)
        return describe(status, {});
    const auto result = resultOf(job, sample);
    return result ? describe(status, result) : describe({"error", status.progress}, {});
}

/// Nothing if the file is no sound that can be read. Every line counts as loud: the story is of what is said.
std::optional<OrderedJson> CloudJobs::resultOf(const Job& job, const SampleKnowledge& sample) const {
    if (m_result)
        return m_result;
    const auto sound = readWav(job.file);
    if (!sound)
        return std::nullopt;
    StoryRequest request{targetSeconds, {}};
    for (const HeardLine& line : listen(sample, *sound))
        request.lines.push_back({line.start, line.end, Loudness::loud, line.text});
    return tellStory(request);
}

} // namespace zuvo::standin
