#pragma once

#include "base/Fields.h"
#include "model/MiningResults.h"

#include <optional>
#include <string>

/// What is said with the account service about a mine that it does itself. In a namespace of its own, since the program
/// knows another ProcessRequest, which starts a child process.
namespace zuvo::wire {

/// The answer to an upload.
struct UploadResponse {
    std::string jobId; ///< by which the job is started and asked after

    static constexpr auto fields() { return std::tuple(Field{"jobId", &UploadResponse::jobId}); }
};

/// Starts the work on what was uploaded.
struct ProcessRequest {
    std::string jobId;
    std::string mode; ///< raw value of the MiningMode, "Full Mine"

    static constexpr auto fields() {
        using S = ProcessRequest;
        return std::tuple(Field{"jobId", &S::jobId}, Field{"mode", &S::mode});
    }
};

/// How far a job is.
struct JobStatusResponse {
    std::string status;    ///< transcribing, analyzing, translating, complete, error; others mean nothing
    double progress = 0.0; ///< 0 to 1, unchecked
    std::optional<MiningResults> result;

    static constexpr auto fields() {
        using S = JobStatusResponse;
        return std::tuple(Field{"status", &S::status}, Field{"progress", &S::progress}, Field{"result", &S::result});
    }
};

} // namespace zuvo::wire
